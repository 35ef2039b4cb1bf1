// Which controls depend on an open picture, see EditingControls.h.
#include "app/EditingControls.h"

#include <array>
#include <string_view>

namespace pictorel {
namespace {

struct ElementRange {
    std::string_view name;
    int first = 0;
    int last = -1; // -1: to the end of the array
};

// Open, Cmd_Panel(0), is not among them; neither are the tabs, nor the Resize page's fields, which follow its
// mode.
constexpr std::array kRanges{
    ElementRange{"Cmd_Panel", 1, 7},
    ElementRange{"Cmd_RotateLeft"},
    ElementRange{"Cmd_RotateRight"},
    ElementRange{"Cmd_FlipV"},
    ElementRange{"Cmd_FlipH"},
    ElementRange{"Cmd_ActualSize"},
    ElementRange{"Cmd_ZoomFit"},
    ElementRange{"Cmd_ZoomOut"},
    ElementRange{"Cmd_ZoomIn"},
    ElementRange{"Slider_ImageZoom"},
    ElementRange{"lbl_ZoomPercent"},
    ElementRange{"lbl_ImageInfo"},
    ElementRange{"HistoryList"},
    ElementRange{"Slider_Tab"},
    ElementRange{"lbl_SliderName"},
    ElementRange{"lbl_SliderTab"},
    ElementRange{"lbl_SliderNameRightSide"},
    ElementRange{"Cmd_Tab"},
    ElementRange{"Cmd_Reset"},
    ElementRange{"Cmd_Icon"},
    ElementRange{"RadioButton_Resize"},
    ElementRange{"GroupBox_Resize"},
    ElementRange{"lbl_Resize"},
};

} // namespace

std::vector<Control*> PictureDependentControls(const ControlRegistry& registry) {
    std::vector<Control*> controls;
    for (const ElementRange& range : kRanges) {
        const auto array = registry.Array<Control>(std::string(range.name));
        const int last = range.last < 0 ? array.Count() - 1 : range.last;
        for (int i = range.first; i <= last; ++i) {
            controls.push_back(&array(i));
        }
    }
    return controls;
}

} // namespace pictorel
