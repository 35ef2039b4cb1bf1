// A list to choose from, each entry with a data text.
#pragma once

#include "controls/Control.h"

#include <QComboBox>

namespace pictorel {

class ComboBox : public QComboBox, public Control {
    Q_OBJECT

  public:
    explicit ComboBox(QWidget* parent);

    void Clear() { clear(); }
    void AddEntry(const QString& label, const QString& dataText) { addItem(label, dataText); }
    QString SelectedText() const { return currentText(); }
    QString SelectedData() const { return currentData().toString(); }
    void Select(int row) { setCurrentIndex(row); } // -1: none

  protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace pictorel
