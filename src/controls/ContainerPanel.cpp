// A panel that holds other controls, see ContainerPanel.h.
#include "controls/ContainerPanel.h"

#include <algorithm>

namespace pictorel {
namespace {

constexpr int kBottomMargin = 8; // pixels below the last control
constexpr int kEdge = 5;         // pixels that the parent keeps below the panel

} // namespace

ContainerPanel::ContainerPanel(QWidget* parent)
    : QScrollArea(parent), Control(static_cast<QWidget&>(*this)), interior_(new QWidget) {
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);
    setWidget(interior_);
    interior_->setAutoFillBackground(false); // what lies below the panel shows through
}

void ContainerPanel::SetScrolling(bool scrolling) {
    scrolling_ = scrolling;
    setVerticalScrollBarPolicy(scrolling ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    FitInterior();
}

void ContainerPanel::SetFillsParent(bool fills) {
    fillsParent_ = fills;
    Fill();
}

void ContainerPanel::Fill() {
    if (fillsParent_ && parentWidget() != nullptr) {
        resize(width(), std::max(TwipsToPixels(Height()), parentWidget()->height() - y() - kEdge));
    }
}

void ContainerPanel::Place() {
    Control::Place();
    Fill();
}

void ContainerPanel::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    FitInterior();
}

void ContainerPanel::showEvent(QShowEvent* event) {
    QScrollArea::showEvent(event);
    FitInterior();
}

void ContainerPanel::FitInterior() {
    int wanted = height();
    if (scrolling_) {
        for (const QObject* const child : interior_->children()) {
            const auto* const widget = qobject_cast<const QWidget*>(child);
            if (widget != nullptr && !widget->isHidden()) {
                wanted = std::max(wanted, widget->geometry().bottom() + kBottomMargin);
            }
        }
    }
    interior_->resize(width(), wanted);
}

} // namespace pictorel
