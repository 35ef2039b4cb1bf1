// Operations that look at one pixel at a time, see PointOperations.h.
#include "picture/engine/PointOperations.h"

#include "picture/engine/kernels/base/Parameters.h"
#include "picture/engine/kernels/base/RowLoop.h"
#include "picture/engine/kernels/point/ByteMap.h"
#include "picture/engine/kernels/point/PointKernels.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace pictorel::engine {
namespace {

constexpr double kFarAway = 1e6; // no slider comes near; formulas stay exact well beyond

} // namespace

PixelArray Brightness(const PixelArray& source, int amount) {
    return AddToChannels(source, amount, amount, amount);
}

PixelArray Contrast(const PixelArray& source, double factor) {
    RequireRange("contrast", factor, -kFarAway, kFarAway);
    return ApplyMap(source, MakeByteMap([=](int c) { return 127.5 + (c - 127.5) * factor; }));
}

PixelArray Gamma(const PixelArray& source, double gamma) {
    RequireRange("gamma", gamma, 0, kFarAway);
    // The limit for 0 is what the formula gives for any gamma small enough to be an infinite exponent.
    return ApplyMap(source, MakeByteMap([=](int c) {
                        return gamma > 0 ? 255 * std::pow(c / 255.0, 1 / gamma) : (c < 255 ? 0.0 : 255.0);
                    }));
}

PixelArray AddToChannels(const PixelArray& source, int red, int green, int blue) {
    if (red == 0 && green == 0 && blue == 0) {
        return source;
    }
    ClampedSum sum{};
    const std::array<int, 4> amounts{blue, green, red, 0};
    for (std::size_t k = 0; k < amounts.size(); ++k) {
        const int amount = std::clamp(amounts[k], -255, 255);
        sum.lowest[k] = static_cast<std::uint8_t>(std::max(-amount, 0));
        sum.highest[k] = static_cast<std::uint8_t>(std::min(255 - amount, 255));
        sum.amount[k] = static_cast<std::uint8_t>(amount);
    }
    return MapRows(source, [&](const std::uint8_t* in, std::uint8_t* out, int width) {
        PointKernels::Best().AddRow(in, out, width, sum);
    });
}

PixelArray Colorize(const PixelArray& source, std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    const auto towards = [](int tint) { return MakeByteMap([=](int c) { return c * tint / 255.0; }); };
    return ApplyMaps(source, {towards(blue), towards(green), towards(red)});
}

PixelArray Invert(const PixelArray& source) {
    return MapRows(source, PointKernels::Best().InvertRow);
}

PixelArray Posterize(const PixelArray& source, int levels) {
    RequireRange("posterize", levels, 2, kFarAway);
    const double steps = std::min(levels, 256) - 1; // more levels than values change nothing
    return ApplyMap(source,
                    MakeByteMap([=](int c) { return std::floor(c * steps / 255 + 0.5) * 255 / steps; }));
}

PixelArray Threshold(const PixelArray& source, int level) {
    const int reachable = std::clamp(level, 0, 256);
    return MapRows(source, [=](const std::uint8_t* in, std::uint8_t* out, int width) {
        PointKernels::Best().ThresholdRow(in, out, width, reachable);
    });
}

PixelArray Saturation(const PixelArray& source, double amount) {
    RequireRange("saturation", amount, -1, 6);
    if (amount == 0) {
        return source;
    }
    const SaturationChange change(1 + amount);
    return MapRows(source, [=](const std::uint8_t* in, std::uint8_t* out, int width) {
        PointKernels::Best().SaturationRow(in, out, width, change);
    });
}

PixelArray Hue(const PixelArray& source, double degrees) {
    RequireRange("hue", degrees, -kFarAway, kFarAway);
    const double turn = std::fmod(degrees, 360.0);
    if (turn == 0) {
        return source;
    }
    constexpr long kUnit = HueTurn::kUnit;
    const long sextants = std::lround((turn < 0 ? turn + 360 : turn) / 60 * kUnit) % (6 * kUnit);
    const HueTurn hueTurn{static_cast<std::uint16_t>(sextants / kUnit),
                          static_cast<std::uint16_t>(sextants % kUnit)};
    return MapRows(source, [=](const std::uint8_t* in, std::uint8_t* out, int width) {
        PointKernels::Best().HueRow(in, out, width, hueTurn);
    });
}

PixelArray Lightness(const PixelArray& source, double amount) {
    RequireRange("lightness", amount, -1, 1);
    if (amount == 0) {
        return source;
    }
    return MapRows(source, [=](const std::uint8_t* in, std::uint8_t* out, int width) {
        PointKernels::Best().LightnessRow(in, out, width, static_cast<float>(amount));
    });
}

} // namespace pictorel::engine
