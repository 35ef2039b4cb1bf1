// A text that is a link, for the mouse and for the keyboard.
#pragma once

#include <QFocusEvent>
#include <QLabel>

namespace pictorel {

// Takes the focus as one stop of the Tab key, with the link marked: Enter follows it.
class LinkLabel : public QLabel {
    Q_OBJECT

  public:
    explicit LinkLabel(const QString& html, QWidget* parent = nullptr) : QLabel(html, parent) {
        setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    }

  protected:
    void focusInEvent(QFocusEvent* event) override {
        QLabel::focusInEvent(event);
        QLabel::focusNextPrevChild(true); // marks the link, which the toolkit leaves to a second Tab
    }
    bool focusNextPrevChild(bool next) override { return QWidget::focusNextPrevChild(next); }
};

} // namespace pictorel
