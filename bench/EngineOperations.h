// The operations of the engine that benches time, with their amounts.
#pragma once

#include "picture/engine/Filters.h"
#include "picture/engine/Geometry.h"
#include "picture/engine/HistogramOperations.h"
#include "picture/engine/PointOperations.h"
#include "picture/engine/Resample.h"
#include "picture/engine/Stylize.h"

#include <cstdint>

namespace pictorel::bench {

using namespace pictorel::engine;

inline constexpr std::uint32_t kBlack = 0;

struct EngineOperation {
    const char* name;
    PixelArray (*run)(const PixelArray&);
};

// For 6000 x 4000 pixels, named as in the harness that times other libraries, which compares what has the
// same name.
inline constexpr EngineOperation kEngineOperations[] = {
    {"brightness", [](const PixelArray& p) { return Brightness(p, 30); }},
    {"contrast", [](const PixelArray& p) { return Contrast(p, 1.3); }},
    {"gamma", [](const PixelArray& p) { return Gamma(p, 2.2); }},
    {"posterize", [](const PixelArray& p) { return Posterize(p, 6); }},
    {"invert", [](const PixelArray& p) { return Invert(p); }},
    {"channel_add", [](const PixelArray& p) { return AddToChannels(p, 20, -10, 5); }},
    {"colorize_multiply", [](const PixelArray& p) { return Colorize(p, 255, 190, 140); }},
    {"threshold_luma", [](const PixelArray& p) { return Threshold(p, 128); }},
    {"saturation", [](const PixelArray& p) { return Saturation(p, 0.4); }},
    {"hue", [](const PixelArray& p) { return Hue(p, 40); }},
    {"lightness", [](const PixelArray& p) { return Lightness(p, 0.2); }},
    {"auto_contrast", [](const PixelArray& p) { return AutoContrast(p); }},
    {"auto_levels", [](const PixelArray& p) { return AutoLevels(p); }},
    {"equalize_luma", [](const PixelArray& p) { return Equalize(p, 1); }},
    {"gauss_1", [](const PixelArray& p) { return GaussianBlur(p, 1); }},
    {"gauss_3", [](const PixelArray& p) { return GaussianBlur(p, 3); }},
    {"gauss_10", [](const PixelArray& p) { return GaussianBlur(p, 10); }},
    {"unsharp_1", [](const PixelArray& p) { return UnsharpMask(p, 1); }},
    {"motion_h_41", [](const PixelArray& p) { return MotionBlur(p, 0, 41); }},
    {"motion_v_41", [](const PixelArray& p) { return MotionBlur(p, 90, 41); }},
    {"motion_30deg_41", [](const PixelArray& p) { return MotionBlur(p, 30, 41); }},
    {"zoom_blur_10pct", [](const PixelArray& p) { return ZoomBlur(p, 10); }},
    {"zoom_blur_50pct", [](const PixelArray& p) { return ZoomBlur(p, 50); }},
    {"min_3", [](const PixelArray& p) { return MinimumFilter(p, 1); }},
    {"max_3", [](const PixelArray& p) { return MaximumFilter(p, 1); }},
    {"min_11", [](const PixelArray& p) { return MinimumFilter(p, 5); }},
    {"max_11", [](const PixelArray& p) { return MaximumFilter(p, 5); }},
    {"mosaic_8", [](const PixelArray& p) { return Mosaic(p, 8); }},
    {"mosaic_50", [](const PixelArray& p) { return Mosaic(p, 50); }},
    {"emboss_3x3", [](const PixelArray& p) { return Emboss(p, 135, 3, 1); }},
    {"halftone_1", [](const PixelArray& p) { return Halftone(p, 4, 1); }},
    {"noise_uniform_20", [](const PixelArray& p) { return Noise(p, 8); }},
    {"diffuse_2", [](const PixelArray& p) { return Diffuse(p, 2, 100); }},
    {"flip_v", [](const PixelArray& p) { return MirrorTopToBottom(p); }},
    {"flip_h", [](const PixelArray& p) { return MirrorLeftToRight(p); }},
    {"rot90_cw", [](const PixelArray& p) { return QuarterTurnRight(p); }},
    {"rot90_ccw", [](const PixelArray& p) { return QuarterTurnLeft(p); }},
    {"rot180", [](const PixelArray& p) { return Rotate(p, 180, kBlack); }},
    {"rotate30_bicubic", [](const PixelArray& p) { return Rotate(p, 30, kBlack); }},
    {"skew_bicubic", [](const PixelArray& p) { return Skew(p, false, 16.7, kBlack); }},
    {"skew_v_bicubic", [](const PixelArray& p) { return Skew(p, true, 16.7, kBlack); }},
    {"perspective_bicubic", [](const PixelArray& p) { return Perspective(p, true, 30, kBlack); }},
    {"perspective_80_bicubic", [](const PixelArray& p) { return Perspective(p, true, 80, kBlack); }},
    {"twirl_bicubic", [](const PixelArray& p) { return Twirl(p, 180, kBlack); }},
    {"twirl_360_bicubic", [](const PixelArray& p) { return Twirl(p, 360, kBlack); }},
    {"reproduce_4", [](const PixelArray& p) { return Reproduce(p, 4); }},
    {"reproduce_7", [](const PixelArray& p) { return Reproduce(p, 7); }},
    {"resize_3000_lanczos", [](const PixelArray& p) { return Resize(p, 3000, 2000); }},
    {"resize_1920_lanczos", [](const PixelArray& p) { return Resize(p, 1920, 1280); }},
    {"resize_250_lanczos", [](const PixelArray& p) { return Resize(p, 250, 167); }},
};

} // namespace pictorel::bench
