// The tool pages on one grid, see SliderPages.h.
#include "app/SliderPages.h"

#include "editor/SliderCatalogue.h"

#include <array>

namespace pictorel {
namespace {

using enum ControlKind;

// The grid, in pixels of a page 329 wide of which the last 12 are the scroll bar's when there is one.
constexpr int kRowPitch = 25;
constexpr int kRowHeight = 24;
constexpr int kGroupGap = 6;
constexpr int kTopWithButtons = 44;
constexpr int kTopWithoutButtons = 12;
constexpr int kMarkerLeft = 6;
constexpr int kIconLeft = 14;
constexpr int kIconSize = 20;
constexpr int kCaptionWithIcon = 40;
constexpr int kCaptionAlone = 14;
constexpr int kSliderLeft = 128;
constexpr int kSliderWidth = 140;
constexpr int kValueLeft = 272;
constexpr int kValueWidth = 44;
constexpr int kResetWidth = 92;
constexpr int kButtonHeight = 28;
constexpr int kColumnRight = kValueLeft + kValueWidth;

struct Page {
    SliderPage page;
    std::string_view panel;
    int top;
};

constexpr std::array kPages{
    Page{SliderPage::Adjustments, "Resizer_Adjustments", kTopWithButtons},
    Page{SliderPage::Filters, "Resizer_Filters", kTopWithButtons},
    Page{SliderPage::Effects, "Resizer_Effects", kTopWithoutButtons},
};

struct SliderPlace {
    std::string_view panel = "Resizer_Effects";
    int top = 0;
    bool shown = false;
    int icon = -1; // element of Cmd_Icon
};

struct Places {
    std::array<SliderPlace, kSliderCount> sliders;
    std::array<int, kPages.size()> resetTop{};
};

Places PlaceSliders() {
    Places places;
    int icon = 0;
    for (std::size_t p = 0; p < kPages.size(); ++p) {
        int top = kPages[p].top;
        for (const int slider : SlidersOfPage(kPages[p].page)) {
            if (slider < 0) {
                top += kGroupGap;
                continue;
            }
            const bool hasIcon = kPages[p].page == SliderPage::Adjustments;
            places.sliders[static_cast<std::size_t>(slider)] = {kPages[p].panel, top, true,
                                                                hasIcon ? icon++ : -1};
            top += kRowPitch;
        }
        places.resetTop[p] = top + kGroupGap;
    }
    return places;
}

std::string_view PanelOf(int slider, const SliderPlace& place) {
    const SliderPage page = SliderCatalogue()[static_cast<std::size_t>(slider)].page;
    return place.shown ? place.panel : kPages[static_cast<std::size_t>(page)].panel;
}

void AppendSliders(std::vector<ControlRow>& rows, const Places& places) {
    for (int i = 0; i < kSliderCount; ++i) {
        const SliderPlace& place = places.sliders[static_cast<std::size_t>(i)];
        const SliderRow& row = SliderCatalogue()[static_cast<std::size_t>(i)];
        const std::string_view panel = PanelOf(i, place);
        const int captionLeft = place.icon >= 0 ? kCaptionWithIcon : kCaptionAlone;
        // The value box of a two-sided slider is hidden: the caption of its right side stands there.
        const bool twoSided = i == kSharpenBlurSlider || i == kMaximalMinimalSlider;
        rows.push_back({"lbl_SliderName", i, Label, panel,
                        InPixels(captionLeft, place.top, kSliderLeft - captionLeft - 4, kRowHeight),
                        row.caption, "", place.shown});
        rows.push_back({"Slider_Tab",
                        i,
                        Slider,
                        panel,
                        InPixels(kSliderLeft, place.top, kSliderWidth, kRowHeight),
                        "",
                        "",
                        place.shown,
                        {row.minimum, row.maximum, row.defaultValue},
                        row.caption});
        rows.push_back({"lbl_SliderTab", i, Label, panel,
                        InPixels(kValueLeft, place.top, kValueWidth, kRowHeight), "", "",
                        place.shown && !twoSided});
        const bool hasToolTip = i == 0 || i >= kSharpenBlurSlider;
        rows.push_back({"Cmd_ResetEffects", i, PushButton, panel,
                        InPixels(kSliderLeft - 20, place.top + 3, 17, 17), "X", hasToolTip ? "Reset" : "",
                        false});
        rows.push_back({"Shape", i, Shape, panel, InPixels(kMarkerLeft, place.top + 6, 2, kRowHeight - 12),
                        "", "", place.shown});
    }
}

void AppendIcons(std::vector<ControlRow>& rows, const Places& places) {
    constexpr int kLastAdjustment = 14;
    const int bottom = places.sliders[kLastAdjustment].top + kRowHeight;
    rows.push_back({"GroupBox_Icons",
                    0,
                    GroupBox,
                    "Resizer_Adjustments",
                    InPixels(kIconLeft, kTopWithButtons, kIconSize, bottom - kTopWithButtons),
                    "",
                    "",
                    true,
                    {},
                    "Adjustment icons"});
    for (const SliderPlace& place : places.sliders) {
        if (place.icon >= 0) {
            const int inset = (kRowHeight - kIconSize) / 2;
            rows.push_back({"Cmd_Icon", place.icon, PushButton, "GroupBox_Icons",
                            InPixels(0, place.top - kTopWithButtons + inset, kIconSize, kIconSize)});
        }
    }
}

void AppendButtons(std::vector<ControlRow>& rows, const Places& places) {
    const auto oneClick = [&rows](int element, std::string_view panel, int column, std::string_view caption) {
        constexpr int kWidth = 98;
        constexpr int kPitch = 103;
        rows.push_back({"Cmd_Tab", element, PushButton, panel,
                        InPixels(12 + column * kPitch, 8, kWidth, kButtonHeight), caption});
    };
    oneClick(0, "Resizer_Adjustments", 0, "Auto Contrast");
    oneClick(1, "Resizer_Adjustments", 1, "Auto Levels");
    oneClick(2, "Resizer_Adjustments", 2, "Invert");
    rows.push_back({"Cmd_Tab", 3, PushButton, "Resizer_Resize",
                    InPixels(kColumnRight - kResetWidth, 346, kResetWidth, kButtonHeight), "Apply"});
    rows.push_back({"Cmd_Tab",
                    4,
                    PushButton,
                    "Resizer_Resize",
                    InPixels(228, 240, 26, 26),
                    "",
                    "",
                    true,
                    {},
                    "Lock proportions"});
    oneClick(5, "Resizer_Filters", 0, "Halftone");
    oneClick(6, "Resizer_Filters", 1, "Emboss");
    for (std::size_t p = 0; p < kPages.size(); ++p) {
        rows.push_back(
            {"Cmd_Reset", static_cast<int>(p), PushButton, kPages[p].panel,
             InPixels(kColumnRight - kResetWidth, places.resetTop[p], kResetWidth, kButtonHeight - 3),
             "Reset"});
    }
}

void AppendCaptions(std::vector<ControlRow>& rows, const Places& places) {
    const auto rightSide = [&](int element, int slider, std::string_view caption) {
        rows.push_back({"lbl_SliderNameRightSide", element, Label, "Resizer_Filters",
                        InPixels(kValueLeft, places.sliders[static_cast<std::size_t>(slider)].top,
                                 kValueWidth, kRowHeight),
                        caption});
    };
    rightSide(0, kSharpenBlurSlider, "Blur");
    rightSide(1, kMaximalMinimalSlider, "Minimal");
    rows.push_back(
        {"lbl_SliderName", 34, Label, "Resizer_Resize", InPixels(32, 216, 200, 22), "Width    X    Height"});
    rows.push_back(
        {"lbl_SliderName", 35, Label, "Resizer_Effects", InPixels(14, 300, 60, 20), "Temp", "", false});
    rows.push_back({"lbl_SliderName", 36, Label, "Resizer_Resize", InPixels(124, 302, 24, 26), "%"});
    rows.push_back(
        {"lbl_SliderName", 37, Label, "Resizer_Effects", InPixels(14, 300, 60, 20), "Temp", "", false});
    rows.push_back(
        {"lbl_SliderName", 38, Label, "GroupBox_Resize", InPixels(14, 28, 106, 24), "Original size :"});
    rows.push_back({"lbl_SliderName", 39, Label, "GroupBox_Resize", InPixels(14, 54, 106, 24), "New size :"});
}

} // namespace

void AppendSliderPages(std::vector<ControlRow>& rows) {
    const Places places = PlaceSliders();
    AppendButtons(rows, places); // first, so that the keyboard walks a page from top to bottom
    AppendIcons(rows, places);
    AppendSliders(rows, places);
    AppendCaptions(rows, places);
}

} // namespace pictorel
