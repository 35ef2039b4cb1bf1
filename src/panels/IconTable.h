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

inline constexpr int kResetIcon = 1;
inline constexpr int kLockedIcon = 2;
inline constexpr int kUnlockedIcon = 3;
inline constexpr int kUpdateIcon = 24;
inline constexpr int kFirstAdjustmentIcon = 28; // of Cmd_Icon(0)

} // namespace pictorel
