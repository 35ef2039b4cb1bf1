// A text on the window, see Label.h.
#include "controls/Label.h"

#include "controls/SkinColours.h"

#include <QPainter>
#include <QStyle>

namespace pictorel {

Label::Label(QWidget* parent) : QLabel(parent), Control(static_cast<QWidget&>(*this)) {
    setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setTextFormat(Qt::PlainText);
}

void Label::SetDimmed(bool dimmed) {
    dimmed_ = dimmed;
    update();
}

void Label::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, width());
    QPalette colours = palette();
    if (dimmed_) {
        colours.setColor(QPalette::Active, QPalette::WindowText, QuietTextColour(colours));
        colours.setColor(QPalette::Inactive, QPalette::WindowText, QuietTextColour(colours));
    }
    style()->drawItemText(&painter, rect(), static_cast<int>(alignment()), colours, isEnabled(), shown,
                          QPalette::WindowText);
}

} // namespace pictorel
