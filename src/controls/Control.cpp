// What every control has, see Control.h.
#include "controls/Control.h"

#include <QWidget>

#include <string>

namespace pictorel {
namespace {

void RefuseNegative(const Control& control, float twips) {
    if (!(twips >= 0)) {
        throw ControlError(control.Name().toStdString() + ": a size cannot be " + std::to_string(twips));
    }
}

} // namespace

QString Control::Name() const {
    return widget_.objectName();
}

void Control::SetLeft(float twips) {
    place_.left = twips;
    Place();
}

void Control::SetTop(float twips) {
    place_.top = twips;
    Place();
}

void Control::SetWidth(float twips) {
    RefuseNegative(*this, twips);
    place_.width = twips;
    Place();
}

void Control::SetHeight(float twips) {
    RefuseNegative(*this, twips);
    place_.height = twips;
    Place();
}

void Control::SetBounds(const TwipsRect& place) {
    RefuseNegative(*this, place.width);
    RefuseNegative(*this, place.height);
    place_ = place;
    Place();
}

void Control::Place() {
    const int left = TwipsToPixels(place_.left);
    const int top = TwipsToPixels(place_.top);
    widget_.setGeometry(left, top, TwipsToPixels(place_.left + place_.width) - left,
                        TwipsToPixels(place_.top + place_.height) - top);
}

void Control::SetEnabled(bool enabled) {
    enabled_ = enabled;
    widget_.setEnabled(enabled);
}

void Control::SetVisible(bool visible) {
    widget_.setVisible(visible);
}

void Control::SetToolTip(const QString& text) {
    widget_.setToolTip(text);
}

void Control::RepaintNow() {
    if (widget_.isVisible()) {
        widget_.repaint();
    }
}

} // namespace pictorel
