// The Tools window: the maker's other products, each with its web page.
#pragma once

#include "notices/StringTable.h"

#include <QDialog>

namespace pictorel {

class frmTools : public QDialog {
    Q_OBJECT

  public:
    frmTools(QWidget* owner, const StringTable& strings);
};

} // namespace pictorel
