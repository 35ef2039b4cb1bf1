// The two passes of ResampleSeparable.h by plain scalar code.
#include "picture/engine/kernels/base/Rounding.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/resample/SeparableKernels.h"

#include <algorithm>
#include <array>

namespace pictorel::engine {
namespace {

using PixelSum = std::array<float, kComponents>;

// Every other tap into a sum of its own, as the vector code does so that additions need not wait for each
// other.
PixelSum SumOfTaps(const float* from, const AxisWeights::Taps& taps) {
    std::array<PixelSum, 2> sums{};
    const float* pixel = from + static_cast<std::ptrdiff_t>(taps.first) * kComponents;
    for (std::size_t i = 0; i < taps.weights.size(); ++i, pixel += kComponents) {
        for (int c = 0; c < kComponents; ++c) {
            sums[i % 2][c] += taps.weights[i] * pixel[c];
        }
    }
    for (int c = 0; c < kComponents; ++c) {
        sums[0][c] += sums[1][c];
    }
    return sums[0];
}

void SumRows(const std::uint8_t* from, std::ptrdiff_t stride, std::span<const float> weights, int pixels,
             float* to) {
    const int components = pixels * kComponents;
    std::fill_n(to, components, 0.0F);
    for (const float weight : weights) {
        for (int i = 0; i < components; ++i) {
            to[i] += weight * static_cast<float>(from[i]);
        }
        from += stride;
    }
}

void SumRowsPremultiplied(const std::uint8_t* from, std::ptrdiff_t stride, std::span<const float> weights,
                          int pixels, float* to) {
    const int components = pixels * kComponents;
    std::fill_n(to, components, 0.0F);
    for (const float weight : weights) {
        for (int i = 0; i < components; i += kComponents) {
            for (int c = 0; c < 3; ++c) {
                to[i + c] += weight * static_cast<float>(from[i + c] * from[i + 3]);
            }
            to[i + 3] += weight * static_cast<float>(from[i + 3]);
        }
        from += stride;
    }
}

void SumColumns(const float* from, const AxisWeights& columns, std::uint8_t* to) {
    for (int x = 0; x < columns.Length(); ++x, to += kComponents) {
        const PixelSum sum = SumOfTaps(from, columns[x]);
        for (int c = 0; c < kComponents; ++c) {
            to[c] = RoundToByte(sum[c]);
        }
    }
}

void SumColumnsPremultiplied(const float* from, const AxisWeights& columns, std::uint8_t* to) {
    for (int x = 0; x < columns.Length(); ++x, to += kComponents) {
        const PixelSum sum = SumOfTaps(from, columns[x]);
        const bool isVisible = sum[3] >= 0.5F; // below, alpha rounds to nothing and there is no colour
        for (int c = 0; c < 3; ++c) {
            to[c] = isVisible ? RoundToByte(sum[c] / sum[3]) : 0;
        }
        to[3] = RoundToByte(sum[3]);
    }
}

constexpr SeparableKernels kPlain{
    .SumRows = SumRows,
    .SumRowsPremultiplied = SumRowsPremultiplied,
    .SumColumns = SumColumns,
    .SumColumnsPremultiplied = SumColumnsPremultiplied,
};

} // namespace

const SeparableKernels& SeparableKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
