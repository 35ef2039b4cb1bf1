// What the operations on single pixels do to one row, as plain loops, see PointKernels.h.
#include "picture/engine/kernels/base/Luma.h"
#include "picture/engine/kernels/base/Rounding.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/base/WholePixel.h"
#include "picture/engine/kernels/point/PointKernels.h"

#include <algorithm>
#include <cmath>

namespace pictorel::engine {
namespace {

// The extremes and their sum: HSL on a scale of 0..255 (Smith 1978, "Color gamut transform pairs"): lightness
// is sum / 510.
struct Extremes {
    float lowest;
    float highest;

    explicit Extremes(const std::uint8_t* p)
        : lowest(std::min({p[0], p[1], p[2]})), highest(std::max({p[0], p[1], p[2]})) {}

    float Sum() const { return lowest + highest; }
};

void AddRow(const std::uint8_t* in, std::uint8_t* out, int width, const ClampedSum& sum) {
    for (int x = 0; x < width; ++x, in += kComponents, out += kComponents) {
        for (std::size_t k = 0; k < kComponents; ++k) {
            out[k] =
                static_cast<std::uint8_t>(std::clamp(in[k], sum.lowest[k], sum.highest[k]) + sum.amount[k]);
        }
    }
}

void InvertRow(const std::uint8_t* in, std::uint8_t* out, int width) {
    for (int x = 0; x < width; ++x, in += kComponents, out += kComponents) {
        out[0] = static_cast<std::uint8_t>(255 - in[0]);
        out[1] = static_cast<std::uint8_t>(255 - in[1]);
        out[2] = static_cast<std::uint8_t>(255 - in[2]);
        out[3] = in[3];
    }
}

void ThresholdRow(const std::uint8_t* in, std::uint8_t* out, int width, int level) {
    for (int x = 0; x < width; ++x, in += kComponents, out += kComponents) {
        const std::uint8_t value = ScaledLuma(in) >= level * kLumaUnit ? 255 : 0;
        out[0] = value;
        out[1] = value;
        out[2] = value;
        out[3] = in[3];
    }
}

void SaturationRow(const std::uint8_t* in, std::uint8_t* out, int width, const SaturationChange& change) {
    constexpr int kHalf = 1 << (SaturationChange::kBits - 1);
    for (int x = 0; x < width; ++x, in += kComponents, out += kComponents) {
        const float luma = static_cast<float>(ScaledLuma(in)) * change.lumaFactor;
        const std::int32_t rest = static_cast<std::int32_t>(luma) + kHalf;
        for (int k = 0; k < 3; ++k) {
            out[k] = ClampToByte((in[k] * change.factor + rest) >> SaturationChange::kBits);
        }
        out[3] = in[3];
    }
}

// Turning the hue keeps lightness and saturation and with them the extremes: each component follows the same
// trapezoid between them, blue and red a third of a turn away from green on either side. Hue is kept in
// sextants times the spread, 0..6 from red over yellow, green, cyan, blue and magenta. So everything is a
// whole number but for the turn, which can be rounded before it is added.
void HueRow(const std::uint8_t* in, std::uint8_t* out, int width, const HueTurn& turn) {
    for (int x = 0; x < width; ++x, in += kComponents, out += kComponents) {
        const int blue = in[0];
        const int green = in[1];
        const int red = in[2];
        const int lowest = std::min({blue, green, red});
        const int highest = std::max({blue, green, red});
        const int spread = highest - lowest;
        int hue = red - green + 4 * spread;
        if (red == highest) {
            hue = green < blue ? green - blue + 6 * spread : green - blue;
        } else if (green == highest) {
            hue = blue - red + 2 * spread;
        }
        hue += turn.sextants * spread + (((2 * spread * turn.fraction) >> 16) + 1) / 2;
        hue = hue >= 6 * spread ? hue - 6 * spread : hue;
        const auto between = [&](int share) {
            return static_cast<std::uint8_t>(lowest + std::clamp(share, 0, spread));
        };
        out[0] = between(2 * spread - std::abs(hue - 4 * spread));
        out[1] = between(2 * spread - std::abs(hue - 2 * spread));
        out[2] = between(std::abs(hue - 3 * spread) - spread);
        out[3] = in[3];
    }
}

// HSL saturation is spread / (255 - |sum - 255|), so keeping hue and saturation while the sum changes scales
// each component's distance from the middle by the quotient of those denominators. No result leaves 0..255.
void LightnessRow(const std::uint8_t* in, std::uint8_t* out, int width, float amount) {
    for (int x = 0; x < width; ++x, in += kComponents, out += kComponents) {
        const Extremes e(in);
        const float sum = e.Sum();
        const float newSum = sum + (amount > 0 ? 510.0F - sum : sum) * amount;
        // At black and white the room is 0, and so is every distance from the middle.
        const float room = std::max(255.0F - std::abs(sum - 255.0F), 1.0F);
        const float scale = (255.0F - std::abs(newSum - 255.0F)) / room;
        for (int k = 0; k < 3; ++k) {
            const float exact = newSum * 0.5F + (static_cast<float>(in[k]) - sum * 0.5F) * scale;
            out[k] = static_cast<std::uint8_t>(std::nearbyint(exact));
        }
        out[3] = in[3];
    }
}

void LumaRow(const std::uint8_t* in, std::uint8_t* luma, int width) {
    for (int x = 0; x < width; ++x) {
        luma[x] = static_cast<std::uint8_t>(Luma(in + static_cast<std::ptrdiff_t>(x) * kComponents));
    }
}

constexpr PointKernels kPlain{
    .AddRow = AddRow,
    .InvertRow = InvertRow,
    .ThresholdRow = ThresholdRow,
    .SaturationRow = SaturationRow,
    .HueRow = HueRow,
    .LightnessRow = LightnessRow,
    .LumaRow = LumaRow,
};

} // namespace

const PointKernels& PointKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
