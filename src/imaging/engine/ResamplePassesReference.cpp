// The two passes of ResampleSeparable.h by plain scalar code.
#include "imaging/engine/ResampleSeparable.h"

#include <algorithm>
#include <array>

namespace pictorel::engine {
namespace {

constexpr int kComponents = PixelArray::kComponents;
using PixelSum = std::array<float, kComponents>;

std::uint8_t ToByte(float value) {
    return static_cast<std::uint8_t>(std::clamp(value, 0.0F, 255.0F) + 0.5F);
}

PixelSum SumOfTaps(const float* from, const AxisWeights::Taps& taps) {
    PixelSum sum{};
    const float* pixel = from + static_cast<std::ptrdiff_t>(taps.first) * kComponents;
    for (const float weight : taps.weights) {
        for (int c = 0; c < kComponents; ++c) {
            sum[c] += weight * pixel[c];
        }
        pixel += kComponents;
    }
    return sum;
}

} // namespace

void SumRowsReference(const std::uint8_t* from, std::ptrdiff_t stride, std::span<const float> weights,
                      int pixels, float* to) {
    const int components = pixels * kComponents;
    std::fill_n(to, components, 0.0F);
    for (const float weight : weights) {
        for (int i = 0; i < components; ++i) {
            to[i] += weight * static_cast<float>(from[i]);
        }
        from += stride;
    }
}

void SumRowsPremultipliedReference(const std::uint8_t* from, std::ptrdiff_t stride,
                                   std::span<const float> weights, int pixels, float* to) {
    const int components = pixels * kComponents;
    std::fill_n(to, components, 0.0F);
    for (const float weight : weights) {
        for (int i = 0; i < components; i += kComponents) {
            const float share = weight * static_cast<float>(from[i + 3]);
            for (int c = 0; c < 3; ++c) {
                to[i + c] += share * static_cast<float>(from[i + c]);
            }
            to[i + 3] += share;
        }
        from += stride;
    }
}

void SumColumnsReference(const float* from, const AxisWeights& columns, std::uint8_t* to) {
    for (int x = 0; x < columns.Length(); ++x, to += kComponents) {
        const PixelSum sum = SumOfTaps(from, columns[x]);
        for (int c = 0; c < kComponents; ++c) {
            to[c] = ToByte(sum[c]);
        }
    }
}

void SumColumnsPremultipliedReference(const float* from, const AxisWeights& columns, std::uint8_t* to) {
    for (int x = 0; x < columns.Length(); ++x, to += kComponents) {
        const PixelSum sum = SumOfTaps(from, columns[x]);
        const bool isVisible = sum[3] >= 0.5F; // below, alpha rounds to nothing and there is no colour
        for (int c = 0; c < 3; ++c) {
            to[c] = isVisible ? ToByte(sum[c] / sum[3]) : 0;
        }
        to[3] = ToByte(sum[3]);
    }
}

} // namespace pictorel::engine
