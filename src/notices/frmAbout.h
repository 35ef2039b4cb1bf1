// The About window.
#pragma once

#include "notices/StringTable.h"

#include <QDialog>

namespace pictorel {

class frmAbout : public QDialog {
    Q_OBJECT

  public:
    // `version` is "major.minor"; the pictures come from `pictures`, the folder "pics".
    frmAbout(QWidget* owner, const StringTable& strings, const QString& version, const QString& pictures);
};

} // namespace pictorel
