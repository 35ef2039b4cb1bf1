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

QString FromView(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

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

} // namespace

void CreateControls(QWidget& window, ControlRegistry& registry) {
    const auto rows = MainWindowControls();
    std::set<std::string_view> larger;
    for (const ControlRow& row : rows) {
        if (row.index > 0) {
            larger.insert(row.name);
        }
    }
    std::map<std::string_view, Control*> containers;
    for (const ControlRow& row : rows) {
        QWidget* const parent = row.parent.empty() ? &window : &containers.at(row.parent)->Interior();
        Control& control = kKinds.at(static_cast<std::size_t>(row.kind)).make(parent);
        QString name = FromView(row.name);
        if (IsArray(row.name, larger)) {
            name += QStringLiteral("_%1").arg(row.index);
        }
        control.Widget().setObjectName(name);
        control.SetCaption(FromView(row.caption));
        control.SetToolTip(FromView(row.toolTip));
        control.SetBounds(row.place);
        control.SetVisible(row.shown);
        containers.try_emplace(row.name, &control);
        registry.Add(row.name, control);
    }
}

} // namespace pictorel
