// Tab order and accessible names, see KeyboardWalk.h.
#include "app/KeyboardWalk.h"

#include "controls/ContainerPanel.h"
#include "controls/PushButton.h"
#include "controls/Slider.h"
#include "controls/TabControl.h"
#include "editor/SliderCatalogue.h"

#include <QWidget>

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
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

struct NameRow {
    const char* control;
    const char* name;
};

constexpr std::array kNames{
    NameRow{"Cmd_Tab_4", "Lock proportions"},
    NameRow{"Combo_ResizePredefined", "Predefined sizes"},
    NameRow{"GroupBox_Canves1", "Picture size and view tools"},
    NameRow{"GroupBox_Canves2", "View tools"},
    NameRow{"GroupBox_Icons_0", "Adjustment icons"},
    NameRow{"GroupBox_Resize", "Size setting summary"},
    NameRow{"HistoryList", "History"},
    NameRow{"ProgressBar", "Progress"},
    NameRow{"Resizer_Adjustments", "Adjustments"},
    NameRow{"Resizer_Effects", "Effects"},
    NameRow{"Resizer_Filters", "Filters"},
    NameRow{"Resizer_Main", "Editor"},
    NameRow{"Resizer_Resize", "Resize"},
    NameRow{"ScrollBar_ImageX_0", "Move the picture left or right"},
    NameRow{"ScrollBar_ImageY_0", "Move the picture up or down"},
    NameRow{"Slider_ImageZoom_0", "Zoom in percent"},
    NameRow{"TabControl_Effects", "Tools"},
    NameRow{"Txt_ImageHeight", "Height in pixels"},
    NameRow{"Txt_ImageWidth", "Width in pixels"},
    NameRow{"Txt_ResizePercent", "Percentage of original size"},
    NameRow{"UpDown_ImageHeight", "Step the height"},
    NameRow{"UpDown_ImageWidth", "Step the width"},
    NameRow{"UpDown_ResizePercent", "Step the percentage"},
};

} // namespace

void SetTabOrder(const ControlRegistry& controls) {
    Widgets toolBar;
    for (const char* const name : {"Cmd_Panel", "Cmd_Recommend"}) {
        for (Control* const button : controls.Array<Control>(name)) {
            toolBar.push_back(&button->Widget());
        }
    }
    Widgets order = AsRead(toolBar);
    AppendWithin(controls.Single<Control>("GroupBox_Canves1").Widget(), order);
    auto& tabs = controls.Single<TabControl>("TabControl_Effects");
    order.push_back(tabs.findChild<QTabBar*>());
    for (const char* const page :
         {"Resizer_Adjustments", "Resizer_Filters", "Resizer_Effects", "Resizer_Resize"}) {
        AppendWithin(controls.Single<ContainerPanel>(page).Interior(), order);
    }
    order.push_back(&controls.Single<Control>("HistoryList").Widget());
    for (std::size_t i = 1; i < order.size(); ++i) {
        QWidget::setTabOrder(order[i - 1], order[i]);
    }
}

void NameControls(const ControlRegistry& controls) {
    const QWidget& window = *controls.Single<Control>("Resizer_Main").Widget().window();
    for (const NameRow& row : kNames) {
        if (auto* const widget = window.findChild<QWidget*>(QString::fromLatin1(row.control))) {
            widget->setAccessibleName(QString::fromLatin1(row.name));
        }
    }
    const auto sliders = controls.Array<Slider>("Slider_Tab");
    for (int i = 0; i < kSliderCount; ++i) {
        controls.Array<PushButton>("Cmd_ResetEffects")(i).setAccessibleName(
            QObject::tr("Reset %1").arg(sliders(i).accessibleName()));
    }
    int icon = 0;
    for (const int slider : SlidersOfPage(SliderPage::Adjustments)) {
        if (slider >= 0) { // not a gap
            controls.Array<PushButton>("Cmd_Icon")(icon++).setAccessibleName(
                sliders(slider).accessibleName());
        }
    }
    for (PushButton* const button : window.findChildren<PushButton*>()) {
        if (button->text().isEmpty() && button->accessibleName().isEmpty()) {
            button->setAccessibleName(button->toolTip());
        }
    }
}

} // namespace pictorel
