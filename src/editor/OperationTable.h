// The 36 operations: which imaging call each code makes, and with what.
#pragma once

#include "editor/ImageTransform.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace pictorel {

enum class Operation : std::int32_t {
    Brightness = 0,
    Contrast = 1,
    Saturation = 2,
    AutoContrast = 3,
    AutoLevels = 4,
    Gamma = 5,
    Hue = 6,
    Lightness = 7,
    Red = 8,
    Green = 9,
    Blue = 10,
    Invert = 11,
    Equalize = 12,
    Threshold = 13,
    Posterize = 14,
    Colorize = 15,
    SharpenOrBlur = 16,
    ZoomBlur = 17,
    MotionBlur = 18,
    GaussianBlur = 19,
    MaximalOrMinimal = 20,
    Noise = 21,
    Diffuse = 22,
    Emboss = 23,
    Mosaic = 24,
    Halftone = 25,
    FlipVertical = 26,
    FlipHorizontal = 27,
    Rotate = 28,
    Reproduce = 29,
    Skew = 30,
    Twirl = 31,
    Perspective = 32,
    TurnLeft = 33,
    TurnRight = 34,
    Resize = 35,
};

inline constexpr int kOperationCount = 36;

struct OperationParameters {
    std::int32_t value1 = 0;
    std::int32_t value2 = 0;
    std::int32_t value3 = 0;
};

struct OperationRow {
    Operation code;
    std::string_view name;
    // Makes the call; `background` is the colour of exposed area. Throws ImagingError from the engine,
    // NumberError where a parameter that must be a byte is none.
    void (*perform)(ImageTransform& transform, const OperationParameters& parameters, ColourValue background);
};

// One row a code, in code order.
std::span<const OperationRow, kOperationCount> OperationTable() noexcept;

} // namespace pictorel
