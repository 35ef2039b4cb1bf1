// Tab order and accessible names, see KeyboardWalk.h.
#include "app/KeyboardWalk.h"

#include "editor/SliderCatalogue.h"

#include <QWidget>

#include <algorithm>
#include <iterator>
#include <vector>

namespace pictorel {
namespace {

using Widgets = std::vector<QWidget*>;

QPoint Middle(const QWidget* widget) {
    return widget->mapTo(widget->window(), widget->rect().center());
}

// Rows from top to bottom, each from left to right.
Widgets AsRead(Widgets widgets) {
    constexpr int kSameRow = 8; // pixels between the middles of neighbours
    std::sort(widgets.begin(), widgets.end(),
              [](const QWidget* a, const QWidget* b) { return Middle(a).y() < Middle(b).y(); });
    for (auto row = widgets.begin(); row != widgets.end();) {
        const auto end = std::find_if(row, widgets.end(), [top = Middle(*row).y()](const QWidget* widget) {
            return Middle(widget).y() > top + kSameRow;
        });
        std::sort(row, end, [](const QWidget* a, const QWidget* b) { return Middle(a).x() < Middle(b).x(); });
        row = end;
    }
    return widgets;
}

void AppendWithin(const QWidget& container, Widgets& order) {
    Widgets inside;
    const auto children = container.findChildren<QWidget*>();
    std::copy_if(children.begin(), children.end(), std::back_inserter(inside), [&](const QWidget* child) {
        // A list that drops down is a window of its own.
        return child->focusPolicy() != Qt::NoFocus && child->window() == container.window();
    });
    const Widgets read = AsRead(inside);
    order.insert(order.end(), read.begin(), read.end());
}

} // namespace

void SetTabOrder(const MainControls& controls) {
    Widgets toolBar;
    for (const auto* const array : {&controls.Cmd_Panel, &controls.Cmd_Recommend}) {
        toolBar.insert(toolBar.end(), array->begin(), array->end());
    }
    Widgets order = AsRead(toolBar);
    order.push_back(&controls.ScrollBar_ImageX(0));
    order.push_back(&controls.ScrollBar_ImageY(0));
    AppendWithin(controls.GroupBox_Canves1, order);
    order.push_back(controls.TabControl_Effects.findChild<QTabBar*>());
    for (ContainerPanel* const page : {&controls.Resizer_Adjustments, &controls.Resizer_Filters,
                                       &controls.Resizer_Effects, &controls.Resizer_Resize}) {
        AppendWithin(page->Interior(), order);
    }
    order.push_back(&controls.HistoryList);
    for (std::size_t i = 1; i < order.size(); ++i) {
        QWidget::setTabOrder(order[i - 1], order[i]);
    }
}

void NameControls(const MainControls& controls) {
    for (const auto& [slider, right] : {std::pair{kSharpenBlurSlider, 0}, {kMaximalMinimalSlider, 1}}) {
        controls.Slider_Tab(slider).setAccessibleName(controls.Slider_Tab(slider).accessibleName() +
                                                      QStringLiteral(" / ") +
                                                      controls.lbl_SliderNameRightSide(right).Caption());
    }
    for (int i = 0; i < kSliderCount; ++i) {
        controls.Cmd_ResetEffects(i).setAccessibleName(
            QObject::tr("Reset %1").arg(controls.Slider_Tab(i).accessibleName()));
    }
    int icon = 0;
    for (const int slider : SlidersOfPage(SliderPage::Adjustments)) {
        if (slider >= 0) { // not a gap
            controls.Cmd_Icon(icon++).setAccessibleName(controls.Slider_Tab(slider).accessibleName());
        }
    }
    for (PushButton* const button : controls.Resizer_Main.window()->findChildren<PushButton*>()) {
        if (button->text().isEmpty() && button->accessibleName().isEmpty()) {
            button->setAccessibleName(button->toolTip());
        }
    }
}

} // namespace pictorel
