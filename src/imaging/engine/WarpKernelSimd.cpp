// Bicubic interpolation of runs of points, all components of up to four rows at a time, see WarpSampler.h.
#include "imaging/engine/WarpKernel.h"

#include <algorithm>
#include <array>
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

// The four neighbours of a row are 16 bytes, a block: a vector holds one, two or four rows.
constexpr hn::CappedTag<std::uint8_t, 64> kBytes;
constexpr hn::Repartition<std::int16_t, decltype(kBytes)> kShorts;
constexpr hn::Repartition<std::int32_t, decltype(kBytes)> kInts;
constexpr hn::Repartition<std::int64_t, decltype(kBytes)> kLongs;
using Bytes = hn::VFromD<decltype(kBytes)>;
using Shorts = hn::VFromD<decltype(kShorts)>;
using Ints = hn::VFromD<decltype(kInts)>;
constexpr hn::FixedTag<std::uint8_t, 16> kRowBytes;
constexpr hn::FixedTag<std::int32_t, 4> kPixelInts;
constexpr hn::FixedTag<float, 4> kFloats;
using RowBytes = hn::VFromD<decltype(kRowBytes)>;
constexpr hn::FixedTag<std::uint8_t, 4> kPixel;
using Floats = hn::VFromD<decltype(kFloats)>;

constexpr std::ptrdiff_t kPixelBytes = PixelArray::kComponents;
constexpr int kBlocks = static_cast<int>(hn::MaxLanes(kInts) / hn::MaxLanes(kPixelInts));
constexpr int kVectors = kCubicTaps / kBlocks; // that hold the neighbours of a point

const std::uint8_t* TopLeftOf(const std::uint8_t* pixels, std::ptrdiff_t stride, std::int32_t x,
                              std::int32_t y) {
    return pixels + ((y >> kPhaseBits) - 1) * stride + ((x >> kPhaseBits) - 1) * kPixelBytes;
}

const CubicWeights& WeightsOf(std::int32_t position) {
    return kCubicTable[static_cast<std::size_t>(position & (kPhases - 1))];
}

// Neighbours of a point, kRows rows of them in a vector.
template <int kRows>
HWY_INLINE auto LoadRows(const std::uint8_t* first, std::ptrdiff_t stride) {
    if constexpr (kRows == 1) {
        return hn::LoadU(kRowBytes, first);
    } else {
        const auto upper = LoadRows<kRows / 2>(first, stride);
        const auto lower = LoadRows<kRows / 2>(first + kRows / 2 * stride, stride);
        return hn::Combine(hn::FixedTag<std::uint8_t, 16 * kRows>(), lower, upper);
    }
}

// Weights 2 pair and 2 pair + 1, repeated for the four components of every row.
template <int kPair>
HWY_INLINE Shorts AcrossPair(const CubicWeights& weights) {
    std::int32_t pair;
    std::memcpy(&pair, weights.data() + 2 * kPair, sizeof pair);
    return hn::BitCast(kShorts, hn::Set(kInts, pair));
}

// In each block the weight of its row.
HWY_INLINE Shorts DownWeights(const CubicWeights& weights, int i) {
    alignas(64) static constexpr std::uint8_t kRowOfBlock[64] = {
        0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 2, 3, 2, 3, 2, 3, 2, 3, 2, 3, 2, 3, 2, 3, 2, 3,
        4, 5, 4, 5, 4, 5, 4, 5, 4, 5, 4, 5, 4, 5, 4, 5, 6, 7, 6, 7, 6, 7, 6, 7, 6, 7, 6, 7, 6, 7, 6, 7};
    std::int64_t all;
    std::memcpy(&all, weights.data(), sizeof all);
    const Bytes order = hn::Load(kBytes, kRowOfBlock + static_cast<std::ptrdiff_t>(i) * 16 * kBlocks);
    return hn::BitCast(kShorts, hn::TableLookupBytes(hn::BitCast(kBytes, hn::Set(kLongs, all)), order));
}

// a[0] b[0] + a[1] b[1], a[2] b[2] + a[3] b[3], ... and the same of c and d.
HWY_INLINE Ints SumOfPairs(Shorts a, Shorts b, Shorts c, Shorts d) {
    Ints odd = hn::Zero(kInts);
    Ints even = hn::ReorderWidenMulAccumulate(kInts, a, b, hn::Zero(kInts), odd);
    even = hn::ReorderWidenMulAccumulate(kInts, c, d, even, odd);
    return hn::RearrangeToOddPlusEven(even, odd);
}

// Pixels 0 and 1 (or 2 and 3) of every row, their components side by side as 16-bit numbers.
HWY_INLINE Shorts FirstPair(Bytes rows) {
    alignas(16) static constexpr std::uint8_t kOrder[16] = {0, 128, 4, 128, 1, 128, 5, 128,
                                                            2, 128, 6, 128, 3, 128, 7, 128};
    return hn::BitCast(kShorts, hn::TableLookupBytesOr0(rows, hn::LoadDup128(kBytes, kOrder)));
}

HWY_INLINE Shorts SecondPair(Bytes rows) {
    alignas(16) static constexpr std::uint8_t kOrder[16] = {8,  128, 12, 128, 9,  128, 13, 128,
                                                            10, 128, 14, 128, 11, 128, 15, 128};
    return hn::BitCast(kShorts, hn::TableLookupBytesOr0(rows, hn::LoadDup128(kBytes, kOrder)));
}

// The weighted neighbours of a point, in sums that are still to be added up over the blocks.
HWY_INLINE Ints BlockSums(const std::uint8_t* topLeft, std::ptrdiff_t stride, const CubicWeights& across,
                          const CubicWeights& down) {
    const Shorts across01 = AcrossPair<0>(across);
    const Shorts across23 = AcrossPair<1>(across);
    Ints sums = hn::Zero(kInts);
    for (int i = 0; i < kVectors; ++i) {
        const Bytes rows = LoadRows<kBlocks>(topLeft + i * kBlocks * stride, stride);
        const Shorts rowWeights = DownWeights(down, i);
        const Shorts first = hn::MulFixedPoint15(across01, rowWeights);
        const Shorts second = hn::MulFixedPoint15(across23, rowWeights);
        sums = hn::Add(sums, SumOfPairs(FirstPair(rows), first, SecondPair(rows), second));
    }
    return sums;
}

// The sums of neighbouring blocks: of `a` in the even places, of `b` in the odd ones.
HWY_INLINE Ints SumNeighbouringBlocks(Ints a, Ints b) {
    const Ints straight = hn::OddEvenBlocks(b, a);
    return hn::Add(straight, hn::SwapAdjacentBlocks(hn::OddEvenBlocks(a, b)));
}

HWY_INLINE void StorePixels(Ints sums, std::uint8_t* to) {
    const Ints rounded = hn::ShiftRight<kProductBits>(hn::Add(sums, hn::Set(kInts, 1 << (kProductBits - 1))));
    const hn::Rebind<std::uint8_t, decltype(kInts)> bytes;
    hn::StoreU(hn::DemoteTo(bytes, rounded), bytes, to);
}

// As many consecutive pixels as a vector has blocks.
template <int kPixels>
HWY_INLINE void InterpolateOpaque(const std::uint8_t* pixels, std::ptrdiff_t stride, const std::int32_t* x,
                                  const std::int32_t* y, std::uint8_t* to) {
    const auto sumsOf = [=](int i) HWY_ATTR {
        return BlockSums(TopLeftOf(pixels, stride, x[i], y[i]), stride, WeightsOf(x[i]), WeightsOf(y[i]));
    };
    if constexpr (kPixels == 1) {
        StorePixels(sumsOf(0), to);
    } else if constexpr (kPixels == 2) {
        StorePixels(SumNeighbouringBlocks(sumsOf(0), sumsOf(1)), to);
    } else {
        const auto sumHalves = [](Ints a, Ints b) HWY_ATTR {
            return hn::Add(hn::ConcatLowerLower(kInts, b, a), hn::ConcatUpperUpper(kInts, b, a));
        };
        const Ints evenPixels = sumHalves(sumsOf(0), sumsOf(2));
        const Ints oddPixels = sumHalves(sumsOf(1), sumsOf(3));
        StorePixels(SumNeighbouringBlocks(evenPixels, oddPixels), to);
    }
}

void SampleOpaqueRun(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                     std::uint8_t* to) {
    int i = 0;
    for (; i + kBlocks <= run.count; i += kBlocks) {
        InterpolateOpaque<kBlocks>(pixels, stride, run.x.data() + i, run.y.data() + i, to + i * kPixelBytes);
    }
    if (i < run.count) { // the last pixel again, to fill a vector
        std::array<std::int32_t, kBlocks> x;
        std::array<std::int32_t, kBlocks> y;
        std::array<std::uint8_t, kBlocks * kPixelBytes> last;
        for (int k = 0; k < kBlocks; ++k) {
            x[k] = run.x[std::min(i + k, run.count - 1)];
            y[k] = run.y[std::min(i + k, run.count - 1)];
        }
        InterpolateOpaque<kBlocks>(pixels, stride, x.data(), y.data(), last.data());
        std::memcpy(to + i * kPixelBytes, last.data(), static_cast<std::size_t>(run.count - i) * kPixelBytes);
    }
}

// Adds to (blue, green, red times alpha, alpha) what the pixels of a row contribute.
HWY_INLINE Floats AddRow(Floats sums, const std::uint8_t* row, const CubicWeights& across, int down) {
    for (int column = 0; column < kCubicTaps; ++column) {
        const Floats pixel =
            hn::ConvertTo(kFloats, hn::PromoteTo(kPixelInts, hn::LoadU(kPixel, row + column * kPixelBytes)));
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
    const auto rounded = hn::ConvertTo(kPixelInts, hn::Add(clamped, hn::Set(kFloats, 0.5F)));
    hn::StoreU(hn::DemoteTo(kPixel, rounded), kPixel, to);
}

HWY_INLINE bool IsOpaque(const std::uint8_t* topLeft, std::ptrdiff_t stride) {
    const auto row = [=](int i) HWY_ATTR { return hn::LoadU(kRowBytes, topLeft + i * stride); };
    const RowBytes all = hn::And(hn::And(row(0), row(1)), hn::And(row(2), row(3)));
    const RowBytes colours = hn::BitCast(kRowBytes, hn::Set(kPixelInts, 0x00FFFFFF));
    return hn::AllTrue(kRowBytes, hn::Eq(hn::Or(all, colours), hn::Set(kRowBytes, 255)));
}

void SampleWithAlphaRun(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                        std::uint8_t* to) {
    SampleRun opaque; // consecutive points
    const auto topLeftOf = [&](int i) { return TopLeftOf(pixels, stride, run.x[i], run.y[i]); };
    for (int i = 0; i < run.count; i += std::max(opaque.count, 1)) {
        opaque.count = 0;
        while (i + opaque.count < run.count && IsOpaque(topLeftOf(i + opaque.count), stride)) {
            opaque.x[opaque.count] = run.x[i + opaque.count];
            opaque.y[opaque.count] = run.y[i + opaque.count];
            ++opaque.count;
        }
        if (opaque.count > 0) {
            SampleOpaqueRun(pixels, stride, opaque, to + i * kPixelBytes);
        } else {
            InterpolateWithAlpha(topLeftOf(i), stride, WeightsOf(run.x[i]), WeightsOf(run.y[i]),
                                 to + i * kPixelBytes);
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

void FetchAhead(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run, std::int32_t across,
                std::int32_t down) {
    constexpr int kStep = 4; // what lies between is fetched for the next rows of the result
    for (int i = 0; i < run.count; i += kStep) {
        const std::ptrdiff_t x = (run.x[i] + across) >> kPhaseBits;
        const std::ptrdiff_t y = (run.y[i] + down) >> kPhaseBits;
        hwy::Prefetch(pixels + y * stride + x * PixelArray::kComponents);
    }
}

void SampleOpaque(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run, std::uint8_t* to) {
    HWY_DYNAMIC_DISPATCH(SampleOpaqueRun)(pixels, stride, run, to);
}

void SampleWithAlpha(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                     std::uint8_t* to) {
    HWY_DYNAMIC_DISPATCH(SampleWithAlphaRun)(pixels, stride, run, to);
}

} // namespace pictorel::engine
#endif // HWY_ONCE
