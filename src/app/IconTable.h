// The icon files of the folder "pics" and their ids in the icon store.
#pragma once

#include <array>
#include <string_view>

namespace pictorel {

struct IconRow {
    int id;
    std::string_view file; // below the application folder
};

inline constexpr std::array<IconRow, 34> kIcons{{
    {1, "\\pics\\img_reset.png"},       {2, "\\pics\\img_lock.png"},
    {3, "\\pics\\img_lockopen.png"},    {4, "\\pics\\img_open.png"},
    {5, "\\pics\\img_undo.png"},        {6, "\\pics\\img_redo.png"},
    {7, "\\pics\\img_print.png"},       {8, "\\pics\\img_save.png"},
    {9, "\\pics\\img_zoomin.png"},      {10, "\\pics\\img_zoomout.png"},
    {11, "\\pics\\img_flipv.png"},      {12, "\\pics\\img_fliph.png"},
    {13, "\\pics\\img_rotateleft.png"}, {14, "\\pics\\img_rotateright.png"},
    {15, "\\pics\\img_bestfit.png"},    {16, "\\pics\\img_actualsize.png"},
    {17, "\\pics\\img_scanner.png"},    {18, "\\pics\\img_tools.png"},
    {20, "\\pics\\img_about.png"},      {24, "\\pics\\img_update.png"},
    {26, "\\pics\\img_tw.png"},         {27, "\\pics\\img_fb.png"},
    {28, "\\pics\\img_brightness.png"}, {29, "\\pics\\img_contrast.png"},
    {30, "\\pics\\img_saturation.png"}, {31, "\\pics\\img_gamma.png"},
    {32, "\\pics\\img_hue.png"},        {33, "\\pics\\img_lightness.png"},
    {34, "\\pics\\img_red.png"},        {35, "\\pics\\img_green.png"},
    {36, "\\pics\\img_blue.png"},       {37, "\\pics\\img_colorizer.png"},
    {38, "\\pics\\img_colorizeg.png"},  {39, "\\pics\\img_colorizeb.png"},
}};

static_assert(
    [] {
        for (std::size_t i = 1; i < kIcons.size(); ++i) {
            if (kIcons[i - 1].id >= kIcons[i].id) {
                return false;
            }
        }
        return true;
    }(),
    "the store is filled in id order");

// A picture of the store on an element of a control array.
struct ButtonImage {
    std::string_view array;
    int element;
    int icon;
};

inline constexpr std::array<ButtonImage, 19> kButtonImages{{
    {"Cmd_Tab", 4, 2},         {"Cmd_Panel", 0, 4},       {"Cmd_Panel", 1, 8},        {"Cmd_Panel", 2, 5},
    {"Cmd_Panel", 3, 6},       {"Cmd_Panel", 4, 7},       {"Cmd_Panel", 5, 17},       {"Cmd_Panel", 6, 18},
    {"Cmd_Panel", 7, 20},      {"Cmd_ZoomIn", 0, 9},      {"Cmd_ZoomOut", 0, 10},     {"Cmd_FlipV", 0, 11},
    {"Cmd_FlipH", 0, 12},      {"Cmd_RotateLeft", 0, 13}, {"Cmd_RotateRight", 0, 14}, {"Cmd_ZoomFit", 0, 15},
    {"Cmd_ActualSize", 0, 16}, {"Cmd_Recommend", 0, 26},  {"Cmd_Recommend", 1, 27},
}};

inline constexpr int kResetIcon = 1;
inline constexpr int kUpdateIcon = 24;
inline constexpr int kFirstAdjustmentIcon = 28; // of Cmd_Icon(0)

} // namespace pictorel
