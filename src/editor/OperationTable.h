// The 36 operations, one row each: code, caption, the fineness of its preview, and what it does.
#pragma once

#include "editor/Image_Mods.h"
#include "picture/engine/Window.h"

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

// The numbers that a slider or a button gives an operation.
struct Values {
    std::int32_t value1 = 0;
    std::int32_t value2 = 0;
    std::int32_t value3 = 0;
};

// How fine a copy of the picture the preview of an operation has to start from to tell the truth.
enum class Fineness {
    Ordinary, // enough for most
    Light,    // fewer pixels, for what takes long and can be told from them: what moves pixels
    Grain,    // as few of a picture whose grain is averaged, every pixel where it is seen: noise
    Extremes, // more pixels, for the brightest and the darkest of a square, which averaging loses soonest
};

struct OperationRow {
    Operation code;
    std::string_view caption; // as the history names it where no slider or button has a name of its own
    Fineness fineness;

    // The numbers become parameters, the engine works. `background` is the colour of exposed area. Throws
    // ImagingError from the engine, NumberError where a number that must be a byte is none.
    PixelArray (*apply)(const PixelArray& picture, const Values& values, ColourValue background);

    // The same where pixels come from anywhere in the picture, so that a part of the result takes the whole
    // of it: just the window of the result. Null where a part of the picture with some margin is enough.
    PixelArray (*applyWithin)(const PixelArray& picture, const Values& values, ColourValue background,
                              const engine::OptionalWindow& window) = nullptr;
};

// One row a code, in code order.
std::span<const OperationRow, kOperationCount> OperationTable() noexcept;

const OperationRow& RowOf(Operation operation) noexcept;

} // namespace pictorel
