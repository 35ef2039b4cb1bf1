// The inventory of the main window: every control with its kind, container, place and texts.
#pragma once

#include "controls/Twips.h"

#include <span>
#include <string_view>
#include <vector>

namespace pictorel {

enum class ControlKind {
    ContainerPanel,
    PushButton,
    Line,
    ImageView,
    HorizontalScrollBar,
    VerticalScrollBar,
    GroupBox,
    Label,
    Slider,
    ProgressBar,
    TabControl,
    RadioButton,
    ComboBox,
    EditField,
    UpDown,
    ReportList,
    Shape,
    WebBrowser,
};

// What sliders, scroll bars, spinners and the progress bar count.
struct ValueRange {
    int minimum = 0;
    int maximum = 0;
    int value = 0; // at first
    int page = 0;  // of a large step; 0 for the kind's own

    bool IsSet() const { return maximum > minimum; }
};

struct ControlRow {
    std::string_view name;
    int index; // elements of an array stand in index order
    ControlKind kind;
    std::string_view parent;
    TwipsRect place;               // relative to the parent; zero where the layout computes it
    std::string_view caption = {}; // of a page of the tab control: its tab's
    std::string_view toolTip = {};
    bool shown = true;
    ValueRange range = {};
    std::string_view accessibleName = {}; // where neither caption nor tool tip tells
};

// Parents before children, elements of an array in index order. The rows of the slider pages are computed
// from the slider catalogue, on one grid for all pages.
std::vector<ControlRow> MainWindowControls();

} // namespace pictorel
