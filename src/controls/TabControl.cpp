// Tabs, each showing one panel, see TabControl.h.
#include "controls/TabControl.h"

#include <QPainter>

namespace pictorel {
namespace {

constexpr int kTabHeight = 32; // pixels

} // namespace

TabControl::TabControl(QWidget* parent)
    : QWidget(parent), Control(static_cast<QWidget&>(*this)), tabs_(new QTabBar(this)) {
    tabs_->setExpanding(true);
    tabs_->setDrawBase(false);
    tabs_->setUsesScrollButtons(false);
    tabs_->setAccessibleName(tr("Tool pages"));
    connect(tabs_, &QTabBar::currentChanged, this, &TabControl::ShowSelected);
}

void TabControl::AddTab(const QString& caption, ContainerPanel& panel) {
    panels_.push_back(&panel);
    panel.SetFillsParent(true);
    tabs_->addTab(caption);
    ShowSelected();
}

void TabControl::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    tabs_->setGeometry(0, 0, width(), kTabHeight);
    for (ContainerPanel* const panel : panels_) {
        panel->Fill();
    }
}

void TabControl::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(palette().color(QPalette::Mid));
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, kTabHeight - 0.5, -0.5, -0.5), 4, 4);
}

void TabControl::StepTab(int by) {
    const int count = tabs_->count();
    tabs_->setCurrentIndex((tabs_->currentIndex() + by + count) % count);
}

// The focus in a page that goes stays with the tabs, instead of falling to whatever comes next.
void TabControl::ShowSelected() {
    const QWidget* const focus = window()->focusWidget();
    for (std::size_t i = 0; i < panels_.size(); ++i) {
        if (static_cast<int>(i) != tabs_->currentIndex() && panels_[i]->isAncestorOf(focus)) {
            tabs_->setFocus(Qt::OtherFocusReason);
        }
    }
    for (std::size_t i = 0; i < panels_.size(); ++i) {
        panels_[i]->setVisible(static_cast<int>(i) == tabs_->currentIndex());
    }
}

} // namespace pictorel
