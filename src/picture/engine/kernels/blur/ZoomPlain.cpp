// Sums along rays as plain loops, see ZoomKernels.h.
#include "picture/engine/kernels/base/Rounding.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/blur/ZoomKernels.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace pictorel::engine {
namespace {

std::int32_t ShareAt(std::int32_t position) {
    return position >> (kRayPositionBits - kRayShareBits) & (kRayShares - 1);
}

// The weighted means of the four rays around pixel i.
std::array<std::int32_t, kComponents> Mixed(const std::int16_t* means, const PixelsBetween& between, int i,
                                            int bitsLost) {
    const std::int64_t position = between.position + i * between.step;
    const CubicWeights& weights = MixWeightsAt(position);
    const std::int16_t* const first = means + ((position >> kRayPositionBits) - 1) * kComponents;
    std::array<std::int32_t, kComponents> sums{};
    for (int tap = 0; tap < kCubicTaps; ++tap) {
        for (int k = 0; k < kComponents; ++k) {
            const std::int32_t product = first[tap * kComponents + k] * weights[tap];
            sums[k] += bitsLost == 0 ? product : (product + (1 << (bitsLost - 1))) >> bitsLost;
        }
    }
    return sums;
}

void PremultiplyLine(const std::uint8_t* line, int pixels, std::int16_t* values) {
    for (int i = 0; i < pixels * kComponents; ++i) {
        const int factor = i % kComponents == 3 ? 255 : line[i | 3];
        values[i] = static_cast<std::int16_t>(
            std::uint32_t{kPremultiplied} * static_cast<std::uint32_t>(line[i] * factor) >> 16);
    }
}

void Crossings(const std::uint8_t* line, Crossing crossing, int rays, std::int16_t* values) {
    std::int32_t position = crossing.position;
    for (int i = 0; i < rays; ++i, position += crossing.step) {
        const std::uint8_t* const pixel = line + (position >> kRayPositionBits) * kComponents;
        for (int k = 0; k < kComponents; ++k) {
            const int ahead = (pixel[k + kComponents] - pixel[k]) * ShareAt(position);
            values[i * kComponents + k] = static_cast<std::int16_t>(pixel[k] * kRayShares + ahead);
        }
    }
}

void CrossingsPremultiplied(const std::int16_t* line, Crossing crossing, int rays, std::int16_t* values) {
    std::int32_t position = crossing.position;
    for (int i = 0; i < rays; ++i, position += crossing.step) {
        const std::int16_t* const value = line + (position >> kRayPositionBits) * kComponents;
        for (int k = 0; k < kComponents; ++k) {
            const int ahead = (value[k + kComponents] - value[k]) * ShareAt(position);
            values[i * kComponents + k] =
                static_cast<std::int16_t>(value[k] + ((ahead + kRayShares / 2) >> kRayShareBits));
        }
    }
}

void AddInterval(const std::int16_t* before, const std::int16_t* entering, int rays, std::int32_t* sums) {
    for (int i = 0; i < rays * kComponents; ++i) {
        sums[i] += before[i] + entering[i];
    }
}

void SlideRays(const RaySlide& slide, int rays, std::int32_t* sums, std::int16_t* means) {
    for (int i = 0; i < rays * kComponents; ++i) {
        sums[i] += slide.before[i] + slide.entering[i];
        sums[i] -= slide.leaves ? slide.inner[i] + slide.afterInner[i] : 0;
        const std::int32_t rest =
            slide.inner[i] * slide.innerShare + slide.afterInner[i] * slide.afterInnerShare;
        const auto whole = static_cast<float>(sums[i] + (rest >> slide.restShift));
        means[i] = static_cast<std::int16_t>(std::nearbyint(whole * slide.perLength));
    }
}

// As the products of the vectors, each is rounded to 1/64 of a level.
void MixRays(const std::int16_t* means, const PixelsBetween& between) {
    for (int i = 0; i < between.count; ++i) {
        const auto sums = Mixed(means, between, i, kWeightBits + 1);
        std::uint8_t* const pixel = between.pixels + i * between.pixelStep;
        for (int k = 0; k < 3; ++k) {
            pixel[k] = ClampToByte((sums[k] + kRayShares / 4) >> (kRayShareBits - 1));
        }
        pixel[3] = 255;
    }
}

void MixRaysWithAlpha(const std::int16_t* means, const PixelsBetween& between) {
    for (int i = 0; i < between.count; ++i) {
        const auto sums = Mixed(means, between, i, 0);
        std::uint8_t* const pixel = between.pixels + i * between.pixelStep;
        const float perAlpha = 255.0F / static_cast<float>(std::max(sums[3], 1 << kWeightBits));
        for (int k = 0; k < 3; ++k) {
            pixel[k] = RoundToByte(static_cast<float>(sums[k]) * perAlpha);
        }
        pixel[3] = RoundToByte(static_cast<float>(sums[3]) * kPerWeightedRay);
    }
}

constexpr ZoomKernels kPlain{
    .PremultiplyLine = PremultiplyLine,
    .Crossings = Crossings,
    .CrossingsPremultiplied = CrossingsPremultiplied,
    .AddInterval = AddInterval,
    .SlideRays = SlideRays,
    .MixRays = MixRays,
    .MixRaysWithAlpha = MixRaysWithAlpha,
};

} // namespace

const ZoomKernels& ZoomKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
