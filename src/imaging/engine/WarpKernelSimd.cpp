// Bicubic interpolation of runs of points, a pixel's four components at a time, see WarpSampler.h.
#include "imaging/engine/WarpKernel.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/engine/WarpKernelSimd.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h> // must come before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR // vectors of one number: the processor has none that we know

void SampleOpaqueRun(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                     std::uint8_t* to) {
    SampleOpaqueReference(pixels, stride, run, to);
}

void SampleWithAlphaRun(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                        std::uint8_t* to) {
    SampleWithAlphaReference(pixels, stride, run, to);
}

#else

constexpr hn::FixedTag<std::uint8_t, 16> kBytes;
constexpr hn::FixedTag<std::int16_t, 8> kShorts;
constexpr hn::FixedTag<std::int32_t, 4> kInts;
constexpr hn::FixedTag<float, 4> kFloats;
constexpr hn::FixedTag<std::uint8_t, 4> kPixel;
using Bytes = hn::VFromD<decltype(kBytes)>;
using Shorts = hn::VFromD<decltype(kShorts)>;
using Ints = hn::VFromD<decltype(kInts)>;
using Floats = hn::VFromD<decltype(kFloats)>;

constexpr std::ptrdiff_t kPixelBytes = PixelArray::kComponents;

const std::uint8_t* TopLeftOf(const std::uint8_t* pixels, std::ptrdiff_t stride, std::int32_t x,
                              std::int32_t y) {
    return pixels + ((y >> kPhaseBits) - 1) * stride + ((x >> kPhaseBits) - 1) * kPixelBytes;
}

const CubicWeights& WeightsOf(std::int32_t position) {
    return kCubicTable[static_cast<std::size_t>(position & (kPhases - 1))];
}

// Weights 2 pair and 2 pair + 1, repeated for the four components.
template <int kPair>
HWY_INLINE Shorts WeightPair(const CubicWeights& weights) {
    std::int32_t pair;
    std::memcpy(&pair, weights.data() + 2 * kPair, sizeof pair);
    return hn::BitCast(kShorts, hn::Set(kInts, pair));
}

// a[0] b[0] + a[1] b[1], a[2] b[2] + a[3] b[3], ... and the same of c and d.
HWY_INLINE Ints SumOfPairs(Shorts a, Shorts b, Shorts c, Shorts d) {
    Ints odd = hn::Zero(kInts);
    Ints even = hn::ReorderWidenMulAccumulate(kInts, a, b, hn::Zero(kInts), odd);
    even = hn::ReorderWidenMulAccumulate(kInts, c, d, even, odd);
    return hn::RearrangeToOddPlusEven(even, odd);
}

// The components of pixels 0 and 1 (or 2 and 3) side by side, as 16-bit numbers.
alignas(16) constexpr std::uint8_t kFirstPair[16] = {0, 128, 4, 128, 1, 128, 5, 128,
                                                     2, 128, 6, 128, 3, 128, 7, 128};
alignas(16) constexpr std::uint8_t kSecondPair[16] = {8,  128, 12, 128, 9,  128, 13, 128,
                                                      10, 128, 14, 128, 11, 128, 15, 128};

HWY_INLINE Ints RowSum(Bytes pixels, Shorts weights01, Shorts weights23) {
    const Shorts first = hn::BitCast(kShorts, hn::TableLookupBytesOr0(pixels, hn::Load(kBytes, kFirstPair)));
    const Shorts second =
        hn::BitCast(kShorts, hn::TableLookupBytesOr0(pixels, hn::Load(kBytes, kSecondPair)));
    const Ints sum = SumOfPairs(first, weights01, second, weights23);
    return hn::Add(sum, hn::Set(kInts, 1 << (kRowShift - 1)));
}

// The sums of two rows without their last kRowShift bits, side by side as 16-bit numbers.
HWY_INLINE Shorts RowPair(Ints upper, Ints lower) {
    return hn::OddEven(hn::BitCast(kShorts, hn::ShiftLeft<16 - kRowShift>(lower)),
                       hn::BitCast(kShorts, hn::ShiftRight<kRowShift>(upper)));
}

// The 4 x 4 neighbours of a point, a row a vector.
struct Neighbours {
    Bytes row0, row1, row2, row3;
};

HWY_INLINE Neighbours LoadNeighbours(const std::uint8_t* topLeft, std::ptrdiff_t stride) {
    return {hn::LoadU(kBytes, topLeft), hn::LoadU(kBytes, topLeft + stride),
            hn::LoadU(kBytes, topLeft + 2 * stride), hn::LoadU(kBytes, topLeft + 3 * stride)};
}

HWY_INLINE void InterpolateOpaque(const Neighbours& n, const CubicWeights& across, const CubicWeights& down,
                                  std::uint8_t* to) {
    const Shorts across01 = WeightPair<0>(across);
    const Shorts across23 = WeightPair<1>(across);
    const Shorts upper = RowPair(RowSum(n.row0, across01, across23), RowSum(n.row1, across01, across23));
    const Shorts lower = RowPair(RowSum(n.row2, across01, across23), RowSum(n.row3, across01, across23));
    const Ints sum = SumOfPairs(upper, WeightPair<0>(down), lower, WeightPair<1>(down));
    const Ints rounded = hn::ShiftRight<kColumnShift>(hn::Add(sum, hn::Set(kInts, 1 << (kColumnShift - 1))));
    hn::StoreU(hn::DemoteTo(kPixel, rounded), kPixel, to);
}

HWY_INLINE bool IsOpaque(const Neighbours& n) {
    const Bytes all = hn::And(hn::And(n.row0, n.row1), hn::And(n.row2, n.row3));
    const Bytes colours = hn::BitCast(kBytes, hn::Set(kInts, 0x00FFFFFF));
    return hn::AllTrue(kBytes, hn::Eq(hn::Or(all, colours), hn::Set(kBytes, 255)));
}

// Runs cross the source's rows, which no prefetcher of a processor foresees.
HWY_INLINE void PrefetchNeighbours(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                                   int i) {
    if (i < run.count) {
        const std::uint8_t* const topLeft = TopLeftOf(pixels, stride, run.x[i], run.y[i]);
        for (int row = 0; row < kCubicTaps; ++row) {
            hwy::Prefetch(topLeft + row * stride);
        }
    }
}

void SampleOpaqueRun(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                     std::uint8_t* to) {
    constexpr int kAhead = 16;
    for (int i = 0; i < run.count; ++i, to += kPixelBytes) {
        PrefetchNeighbours(pixels, stride, run, i + kAhead);
        const std::uint8_t* const topLeft = TopLeftOf(pixels, stride, run.x[i], run.y[i]);
        InterpolateOpaque(LoadNeighbours(topLeft, stride), WeightsOf(run.x[i]), WeightsOf(run.y[i]), to);
    }
}

// Adds to (blue, green, red times alpha, alpha) what the pixels of a row contribute.
HWY_INLINE Floats AddRow(Floats sums, const std::uint8_t* row, const CubicWeights& across, int down) {
    for (int column = 0; column < kCubicTaps; ++column) {
        const Floats pixel =
            hn::ConvertTo(kFloats, hn::PromoteTo(kInts, hn::LoadU(kPixel, row + column * kPixelBytes)));
        const Floats share =
            hn::Mul(hn::Broadcast<3>(pixel), hn::Set(kFloats, static_cast<float>(across[column] * down)));
        // The share itself is what alpha's place sums up.
        const Floats one = hn::Set(kFloats, 1.0F);
        const Floats factor = hn::IfThenElse(hn::FirstN(kFloats, 3), pixel, one);
        sums = hn::Add(sums, hn::Mul(share, factor));
    }
    return sums;
}

HWY_INLINE void InterpolateWithAlpha(const std::uint8_t* row, std::ptrdiff_t stride,
                                     const CubicWeights& across, const CubicWeights& down, std::uint8_t* to) {
    constexpr float kOne = 1 << (2 * kWeightBits);
    Floats sums = hn::Zero(kFloats);
    for (const int weight : down) {
        sums = AddRow(sums, row, across, weight);
        row += stride;
    }
    const Floats alpha = hn::Broadcast<3>(sums);
    const auto isVisible = hn::Ge(alpha, hn::Set(kFloats, kOne / 2));
    const Floats colours = hn::IfThenElseZero(isVisible, hn::Div(sums, alpha));
    const Floats levels =
        hn::IfThenElse(hn::FirstN(kFloats, 3), colours, hn::Div(sums, hn::Set(kFloats, kOne)));
    const Floats clamped = hn::Min(hn::Max(levels, hn::Zero(kFloats)), hn::Set(kFloats, 255.0F));
    const Ints rounded = hn::ConvertTo(kInts, hn::Add(clamped, hn::Set(kFloats, 0.5F)));
    hn::StoreU(hn::DemoteTo(kPixel, rounded), kPixel, to);
}

void SampleWithAlphaRun(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                        std::uint8_t* to) {
    for (int i = 0; i < run.count; ++i, to += kPixelBytes) {
        const std::uint8_t* const topLeft = TopLeftOf(pixels, stride, run.x[i], run.y[i]);
        const CubicWeights& across = WeightsOf(run.x[i]);
        const CubicWeights& down = WeightsOf(run.y[i]);
        const Neighbours neighbours = LoadNeighbours(topLeft, stride);
        if (IsOpaque(neighbours)) {
            InterpolateOpaque(neighbours, across, down, to);
        } else {
            InterpolateWithAlpha(topLeft, stride, across, down, to);
        }
    }
}

#endif // HWY_TARGET

} // namespace HWY_NAMESPACE
} // namespace pictorel::engine
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine {
HWY_EXPORT(SampleOpaqueRun);
HWY_EXPORT(SampleWithAlphaRun);

void SampleOpaque(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run, std::uint8_t* to) {
    HWY_DYNAMIC_DISPATCH(SampleOpaqueRun)(pixels, stride, run, to);
}

void SampleWithAlpha(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                     std::uint8_t* to) {
    HWY_DYNAMIC_DISPATCH(SampleWithAlphaRun)(pixels, stride, run, to);
}

} // namespace pictorel::engine
#endif // HWY_ONCE
