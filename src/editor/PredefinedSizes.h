// The sizes that the Resize page offers by name.
#pragma once

#include <array>
#include <string_view>

namespace pictorel {

struct PredefinedSize {
    std::string_view label;
    std::string_view data; // "width,height" in pixels
};

inline constexpr std::array<PredefinedSize, 20> kPredefinedSizes{{
    {"Photo - Landscape 2 x 3 (900 x 600)", "900,600"},
    {"Photo - Landscape 4 x 6 (1800 x 1200)", "1800,1200"},
    {"Photo - Landscape 5 x 7 (2100 x 1500)", "2100,1500"},
    {"Photo - Landscape 8 x 10 (3000 x 2400)", "3000,2400"},
    {"Photo - Portrait 2 x 3 (600 x 900)", "600,900"},
    {"Photo - Portrait 4 x 6 (1200 x 1800)", "1200,1800"},
    {"Photo - Portrait 5 x 7 (1500 x 2100)", "1500,2100"},
    {"Photo - Portrait 8 x 10 (2400 x 3000)", "2400,3000"},
    {"Web - (320 x 240)", "320,240"},
    {"Web - (640 x 480)", "640,480"},
    {"Web - (800 x 600)", "800,600"},
    {"Web - (1024 x 768)", "1024,768"},
    {"Web - (1152 x 864)", "1152,864"},
    {"Web - (1280 x 1024)", "1280,1024"},
    {"Web - (1600 x 1200)", "1600,1200"},
    {"Mobile & Devices - (176 x 208)", "176,208"},
    {"Mobile & Devices - (176 x 220)", "176,220"},
    {"Mobile & Devices - (208 x 320)", "208,320"},
    {"Mobile & Devices - (240 x 320)", "240,320"},
    {"Mobile & Devices - (352 x 416)", "352,416"},
}};

// The size in parentheses at a label's end is the data with " x " for the comma.
constexpr bool LabelNamesItsData(const PredefinedSize& size) {
    const auto open = size.label.rfind('(');
    const auto comma = size.data.find(',');
    const std::string_view inside = size.label.substr(open + 1, size.label.size() - open - 2);
    return inside.substr(0, comma) == size.data.substr(0, comma) && inside.substr(comma, 3) == " x " &&
           inside.substr(comma + 3) == size.data.substr(comma + 1);
}
static_assert([] {
    for (const PredefinedSize& size : kPredefinedSizes) {
        if (!LabelNamesItsData(size)) {
            return false;
        }
    }
    return true;
}());

} // namespace pictorel
