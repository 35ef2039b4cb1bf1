// The two passes of ResampleSeparable.h with vector instructions.
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/resample/SeparableKernels.h"

#include <algorithm>
#include <cstddef>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/resample/SeparableVectors.cpp"
#include <hwy/foreach_target.h> // must come before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {
#if HWY_TARGET == HWY_SCALAR // vectors of one number: the processor has none that we know

const SeparableKernels& VectorKernels() {
    return SeparableKernels::Plain();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

constexpr hn::ScalableTag<float> kWide;
using Wide = hn::VFromD<decltype(kWide)>;
constexpr hn::FixedTag<float, 4> kPixel;
using Pixel = hn::VFromD<decltype(kPixel)>;

HWY_INLINE Wide LoadBytes(const std::uint8_t* from) {
    const hn::Rebind<std::uint8_t, decltype(kWide)> bytes;
    const hn::Rebind<std::int32_t, decltype(kWide)> ints;
    return hn::ConvertTo(kWide, hn::PromoteTo(ints, hn::LoadU(bytes, from)));
}

// Colours times alpha, and alpha.
HWY_INLINE Wide LoadPremultiplied(const std::uint8_t* from) {
    alignas(16) static constexpr float kAlphaOnly[4] = {0, 0, 0, 1};
    const Wide components = LoadBytes(from);
    const auto isAlpha = hn::Gt(hn::LoadDup128(kWide, kAlphaOnly), hn::Zero(kWide));
    const Wide one = hn::Set(kWide, 1.0F);
    return hn::Mul(hn::Broadcast<3>(components), hn::IfThenElse(isAlpha, one, components));
}

// Sums rows from component `first` on while whole groups of kVectors vectors fit; returns where it stopped.
template <int kVectors, class Load>
HWY_INLINE int SumRowGroups(const std::uint8_t* from, std::ptrdiff_t stride, std::span<const float> weights,
                            int first, int components, float* to, const Load& load) {
    const int lanes = static_cast<int>(hn::Lanes(kWide));
    int i = first;
    for (; i + kVectors * lanes <= components; i += kVectors * lanes) {
        Wide sums[kVectors];
        for (Wide& sum : sums) {
            sum = hn::Zero(kWide);
        }
        const std::uint8_t* row = from + i;
        for (const float weight : weights) {
            const Wide factor = hn::Set(kWide, weight);
            for (int k = 0; k < kVectors; ++k) {
                sums[k] = hn::Add(sums[k], hn::Mul(load(row + k * lanes), factor));
            }
            row += stride;
        }
        for (int k = 0; k < kVectors; ++k) {
            hn::StoreU(sums[k], kWide, to + i + k * lanes);
        }
    }
    return i;
}

void SumRows(const std::uint8_t* from, std::ptrdiff_t stride, std::span<const float> weights, int pixels,
             float* to) {
    const int components = pixels * static_cast<int>(kPixelBytes);
    const auto load = [](const std::uint8_t* p) HWY_ATTR { return LoadBytes(p); };
    int done = SumRowGroups<4>(from, stride, weights, 0, components, to, load);
    done = SumRowGroups<1>(from, stride, weights, done, components, to, load);
    const int rest = (components - done) / static_cast<int>(kPixelBytes);
    SeparableKernels::Plain().SumRows(from + done, stride, weights, rest, to + done);
}

void SumRowsPremultiplied(const std::uint8_t* from, std::ptrdiff_t stride, std::span<const float> weights,
                          int pixels, float* to) {
    const int components = pixels * static_cast<int>(kPixelBytes);
    const auto load = [](const std::uint8_t* p) HWY_ATTR { return LoadPremultiplied(p); };
    int done = SumRowGroups<4>(from, stride, weights, 0, components, to, load);
    done = SumRowGroups<1>(from, stride, weights, done, components, to, load);
    const int rest = (components - done) / static_cast<int>(kPixelBytes);
    SeparableKernels::Plain().SumRowsPremultiplied(from + done, stride, weights, rest, to + done);
}

// No fused product and sum: every processor is to give the same picture.
HWY_INLINE Pixel AddTap(Pixel sum, const float* pixel, float weight) {
    return hn::Add(sum, hn::Mul(hn::LoadU(kPixel, pixel), hn::Set(kPixel, weight)));
}

// Two sums side by side, since each addition waits for the one before.
HWY_INLINE Pixel SumOfTaps(const float* from, const AxisWeights::Taps& taps) {
    Pixel even = hn::Zero(kPixel);
    Pixel odd = hn::Zero(kPixel);
    const float* pixel = from + taps.first * kPixelBytes;
    const float* const weights = taps.weights.data();
    const std::size_t count = taps.weights.size();
    std::size_t i = 0;
    for (; i + 2 <= count; i += 2, pixel += 2 * kPixelBytes) {
        even = AddTap(even, pixel, weights[i]);
        odd = AddTap(odd, pixel + kPixelBytes, weights[i + 1]);
    }
    if (i < count) {
        even = AddTap(even, pixel, weights[i]);
    }
    return hn::Add(even, odd);
}

HWY_INLINE void StorePixel(Pixel value, std::uint8_t* to) {
    const hn::FixedTag<std::uint8_t, 4> bytes;
    const hn::FixedTag<std::int32_t, 4> ints;
    const Pixel clamped = hn::Min(hn::Max(value, hn::Zero(kPixel)), hn::Set(kPixel, 255.0F));
    hn::StoreU(hn::DemoteTo(bytes, hn::ConvertTo(ints, hn::Add(clamped, hn::Set(kPixel, 0.5F)))), bytes, to);
}

void SumColumns(const float* from, const AxisWeights& columns, std::uint8_t* to) {
    for (int x = 0; x < columns.Length(); ++x, to += kPixelBytes) {
        StorePixel(SumOfTaps(from, columns[x]), to);
    }
}

void SumColumnsPremultiplied(const float* from, const AxisWeights& columns, std::uint8_t* to) {
    const auto isColour = hn::FirstN(kPixel, 3);
    for (int x = 0; x < columns.Length(); ++x, to += kPixelBytes) {
        const Pixel sum = SumOfTaps(from, columns[x]);
        const Pixel alpha = hn::Broadcast<3>(sum);
        const auto isVisible = hn::Ge(alpha, hn::Set(kPixel, 0.5F));
        const Pixel colours = hn::IfThenElseZero(isVisible, hn::Div(sum, alpha));
        StorePixel(hn::IfThenElse(isColour, colours, sum), to);
    }
}

const SeparableKernels& VectorKernels() {
    static constexpr SeparableKernels kKernels{
        .SumRows = SumRows,
        .SumRowsPremultiplied = SumRowsPremultiplied,
        .SumColumns = SumColumns,
        .SumColumnsPremultiplied = SumColumnsPremultiplied,
    };
    return kKernels;
}

#endif

} // namespace
} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine {

HWY_EXPORT(VectorKernels);

const SeparableKernels& SeparableKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
