// Makes the main window's controls, see ControlFactory.h.
#include "app/ControlFactory.h"

#include "app/ControlTable.h"
#include "controls/ComboBox.h"
#include "controls/ContainerPanel.h"
#include "controls/EditField.h"
#include "controls/GroupBox.h"
#include "controls/Label.h"
#include "controls/Line.h"
#include "controls/ProgressBar.h"
#include "controls/PushButton.h"
#include "controls/RadioButton.h"
#include "controls/ReportList.h"
#include "controls/ScrollBar.h"
#include "controls/Shape.h"
#include "controls/Slider.h"
#include "controls/TabControl.h"
#include "controls/UpDown.h"
#include "controls/WebBrowser.h"
#include "platform/Texts.h"
#include "view/PictureViewControl.h"

#include <QWidget>

#include <array>
#include <map>
#include <set>
#include <string>

namespace pictorel {
namespace {

using Maker = Control& (*)(QWidget* parent);

template <typename T>
Control& Make(QWidget* parent) {
    return *new T(parent); // the parent widget owns it
}

template <Qt::Orientation orientation>
Control& MakeScrollBar(QWidget* parent) {
    auto* const bar = new ScrollBar(parent);
    bar->SetOrientation(orientation);
    return *bar;
}

struct KindRow {
    ControlKind kind;
    Maker make;
};

constexpr std::array kKinds{
    KindRow{ControlKind::ContainerPanel, Make<ContainerPanel>},
    KindRow{ControlKind::PushButton, Make<PushButton>},
    KindRow{ControlKind::Line, Make<Line>},
    KindRow{ControlKind::ImageView, Make<PictureViewControl>},
    KindRow{ControlKind::HorizontalScrollBar, MakeScrollBar<Qt::Horizontal>},
    KindRow{ControlKind::VerticalScrollBar, MakeScrollBar<Qt::Vertical>},
    KindRow{ControlKind::GroupBox, Make<GroupBox>},
    KindRow{ControlKind::Label, Make<Label>},
    KindRow{ControlKind::Slider, Make<Slider>},
    KindRow{ControlKind::ProgressBar, Make<ProgressBar>},
    KindRow{ControlKind::TabControl, Make<TabControl>},
    KindRow{ControlKind::RadioButton, Make<RadioButton>},
    KindRow{ControlKind::ComboBox, Make<ComboBox>},
    KindRow{ControlKind::EditField, Make<EditField>},
    KindRow{ControlKind::UpDown, Make<UpDown>},
    KindRow{ControlKind::ReportList, Make<ReportList>},
    KindRow{ControlKind::Shape, Make<Shape>},
    KindRow{ControlKind::WebBrowser, Make<WebBrowser>},
};

static_assert(
    [] {
        for (std::size_t i = 0; i < kKinds.size(); ++i) {
            if (static_cast<std::size_t>(kKinds[i].kind) != i) {
                return false;
            }
        }
        return true;
    }(),
    "row i makes kind i");

// Names of control arrays: those with an element beyond 0, and the single-element ones that handlers index.
bool IsArray(std::string_view name, const std::set<std::string_view>& larger) {
    static constexpr std::array kSingleControls{
        std::string_view("Resizer_"),
        std::string_view("Line"),
        std::string_view("ProgressBar"),
        std::string_view("TabControl_"),
        std::string_view("HistoryList"),
        std::string_view("GroupBox_Canves"),
        std::string_view("GroupBox_Resize"),
        std::string_view("Combo_"),
        std::string_view("Txt_"),
        std::string_view("UpDown_"),
        std::string_view("WebBrowser1"),
    };
    if (larger.contains(name)) {
        return true;
    }
    for (const std::string_view single : kSingleControls) {
        if (name.starts_with(single)) {
            return false;
        }
    }
    return true;
}

QString ObjectName(const ControlRow& row, const std::set<std::string_view>& larger) {
    const QString name = FromView(row.name);
    return IsArray(row.name, larger) ? name + QStringLiteral("_%1").arg(row.index) : name;
}

void Describe(Control& control, const ControlRow& row) {
    control.SetCaption(FromView(row.caption));
    control.SetToolTip(FromView(row.toolTip));
    control.SetBounds(row.place);
    if (row.range.IsSet()) {
        control.SetValueRange(row.range.minimum, row.range.maximum, row.range.value, row.range.page);
    }
    if (!row.accessibleName.empty()) {
        control.Widget().setAccessibleName(FromView(row.accessibleName));
    }
}

// A panel on the tab control is one of its pages and scrolls where the window is low.
void AddPage(Control& tabControl, Control& panel, const ControlRow& row) {
    auto* const tabs = dynamic_cast<TabControl*>(&tabControl);
    auto* const page = dynamic_cast<ContainerPanel*>(&panel);
    if (tabs != nullptr && page != nullptr) {
        page->SetScrolling(true);
        page->setAccessibleName(FromView(row.caption));
        tabs->AddTab(FromView(row.caption), *page);
    }
}

} // namespace

ControlRegistry CreateControls(QWidget& window) {
    const auto rows = MainWindowControls();
    std::set<std::string_view> larger;
    for (const ControlRow& row : rows) {
        if (row.index > 0) {
            larger.insert(row.name);
        }
    }
    ControlRegistry registry;
    std::map<std::string_view, Control*> containers;
    for (const ControlRow& row : rows) {
        Control* const container = row.parent.empty() ? nullptr : containers.at(row.parent);
        QWidget* const parent = container == nullptr ? &window : &container->Interior();
        Control& control = kKinds.at(static_cast<std::size_t>(row.kind)).make(parent);
        control.Widget().setObjectName(ObjectName(row, larger));
        Describe(control, row);
        control.SetVisible(row.shown);
        if (container != nullptr) {
            AddPage(*container, control, row);
        }
        containers.try_emplace(row.name, &control);
        registry.Add(row.name, control);
    }
    return registry;
}

} // namespace pictorel
