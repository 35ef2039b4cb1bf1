// The About window.
#pragma once

#include <QDialog>

#include "notices/StringTable.h"

namespace pictorel {

class frmAbout : public QDialog {
    Q_OBJECT

  public:
    // `version` is "major.minor"; the pictures come from `pictures`, the folder "pics".
    frmAbout(QWidget* owner, const StringTable& strings, const QString& version, const QString& pictures);
};

} // namespace pictorel
