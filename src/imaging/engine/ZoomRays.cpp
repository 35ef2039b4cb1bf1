// Running sums along rays as plain loops, see ZoomRays.h.
#include "imaging/engine/ZoomRays.h"

#include "imaging/engine/Rounding.h"

#include <algorithm>

namespace pictorel::engine::scalar {

constexpr int kComponents = 4;

void PairPixels(const PixelLine& line, int count, bool hasAlpha, std::int16_t* pairs) {
    for (int i = 0; i <= count; ++i) {
        const std::uint8_t* const pixel =
            line.pixels + std::clamp(line.first + i, 0, line.size - 1) * line.step;
        for (int k = 0; k < kComponents; ++k) {
            const int factor = hasAlpha && k < 3 ? pixel[3] : 255;
            const auto value = static_cast<std::int16_t>((pixel[k] * factor * kRayValueUnit + 127) / 255);
            if (i < count) {
                pairs[(i * kComponents + k) * 2] = value;
            }
            if (i > 0) {
                pairs[((i - 1) * kComponents + k) * 2 + 1] = value;
            }
        }
    }
}

void AddCrossings(const std::int16_t* pairs, Crossing crossing, int rays, const std::int32_t* before,
                  std::int32_t* after) {
    std::int32_t position = crossing.position;
    for (int i = 0; i < rays * kComponents; ++i) {
        const std::int16_t* const pair =
            pairs + (position >> kRayPositionBits) * kComponents * 2 + i % kComponents * 2;
        const int share = position >> (kRayPositionBits - kRayShareBits) & (kRayShares - 1);
        after[i] = before[i] + pair[0] * (kRayShares - share) + pair[1] * share;
        position += i % kComponents == kComponents - 1 ? crossing.step : 0;
    }
}

void MeansOf(const Stretch& s, int rays, float* means) {
    for (int i = 0; i < rays * kComponents; ++i) {
        const auto whole = static_cast<float>(s.outer[i] - s.inner[i]);
        const auto last = static_cast<float>(s.beyondOuter[i] - s.outer[i]) * 0.5F;
        const auto first = static_cast<float>(s.inner[i] - s.beforeInner[i]) * s.shareBefore;
        const auto second = static_cast<float>(s.beyondInner[i] - s.inner[i]) * s.shareBeyond;
        means[i] = (whole + last + (first - second)) * s.perLength;
    }
}

void MixMeans(const float* means, const PixelsBetween& between, bool hasAlpha) {
    for (int i = 0; i < between.count; ++i) {
        const double position = between.position + i * between.step;
        const int ray = std::clamp(static_cast<int>(position), 0, between.lastRay);
        const float share = std::clamp(static_cast<float>(position - ray), 0.0F, 1.0F);
        float mean[kComponents];
        for (int k = 0; k < kComponents; ++k) {
            const float* const left = means + ray * kComponents + k;
            mean[k] = left[0] + (left[kComponents] - left[0]) * share;
        }
        const float perAlpha = hasAlpha ? 255.0F / std::max(mean[3], 1.0F / 1024) : 1.0F;
        std::uint8_t* const pixel = between.pixels + i * between.pixelStep;
        for (int k = 0; k < 3; ++k) {
            pixel[k] = RoundToByte(mean[k] * perAlpha);
        }
        pixel[3] = hasAlpha ? RoundToByte(mean[3]) : 255;
    }
}

} // namespace pictorel::engine::scalar
