// Bicubic interpolation of runs of points, all components of up to four rows at a time, see BicubicKernels.h.
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/warp/BicubicKernels.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/warp/BicubicVectors.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h> // must come before highway.h
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {
#if HWY_TARGET == HWY_SCALAR // vectors of one number: the processor has none that we know

const BicubicKernels& VectorKernels() {
    return BicubicKernels::Plain();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

// The four neighbours of a row are 16 bytes, a block: a vector holds one, two or four rows.
constexpr hn::CappedTag<std::uint8_t, 64> kBytes;
constexpr hn::Repartition<std::int16_t, decltype(kBytes)> kShorts;
constexpr hn::Repartition<std::int32_t, decltype(kBytes)> kInts;
constexpr hn::Repartition<std::int64_t, decltype(kBytes)> kLongs;
using Bytes = hn::VFromD<decltype(kBytes)>;
using Shorts = hn::VFromD<decltype(kShorts)>;
using Ints = hn::VFromD<decltype(kInts)>;
constexpr hn::FixedTag<std::uint8_t, 16> kRowBytes;
constexpr hn::RebindToFloat<decltype(kInts)> kFloats;
constexpr hn::FixedTag<std::int32_t, 4> kPixelInts;

constexpr int kBlocks = static_cast<int>(hn::MaxLanes(kInts) / hn::MaxLanes(kPixelInts));
constexpr int kVectors = kCubicTaps / kBlocks; // that hold the neighbours of a point

const std::uint8_t* TopLeftOf(const std::uint8_t* pixels, std::ptrdiff_t stride, std::int32_t x,
                              std::int32_t y) {
    return pixels + ((y >> kPhaseBits) - 1) * stride + ((x >> kPhaseBits) - 1) * kPixelBytes;
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

HWY_INLINE Shorts Arranged(Bytes rows, const std::uint8_t* order) {
    return hn::BitCast(kShorts, hn::TableLookupBytesOr0(rows, hn::LoadDup128(kBytes, order)));
}

// Pixels 0 and 1 (or 2 and 3) of every row, their components side by side as 16-bit numbers; and the alphas
// that belong to them.
alignas(16) constexpr std::uint8_t kFirstPair[16] = {0, 128, 4, 128, 1, 128, 5, 128,
                                                     2, 128, 6, 128, 3, 128, 7, 128};
alignas(16) constexpr std::uint8_t kSecondPair[16] = {8,  128, 12, 128, 9,  128, 13, 128,
                                                      10, 128, 14, 128, 11, 128, 15, 128};
alignas(16) constexpr std::uint8_t kFirstAlphas[16] = {3, 128, 7, 128, 3, 128, 7, 128,
                                                       3, 128, 7, 128, 3, 128, 7, 128};
alignas(16) constexpr std::uint8_t kSecondAlphas[16] = {11, 128, 15, 128, 11, 128, 15, 128,
                                                        11, 128, 15, 128, 11, 128, 15, 128};

// The weighted pixels of some rows.
HWY_INLINE Ints WeightedRows(Bytes rows, Shorts first, Shorts second) {
    return SumOfPairs(Arranged(rows, kFirstPair), first, Arranged(rows, kSecondPair), second);
}

// The same of colours times alpha and of 255 times alpha. Those products fill 16 bits without a sign: 32768
// is taken off, and in the end its share added.
HWY_INLINE Ints WeightedRowsWithAlpha(Bytes rows, Shorts first, Shorts second) {
    const Shorts middle = hn::Set(kShorts, INT16_MIN);
    const Bytes colours = hn::Or(rows, hn::BitCast(kBytes, hn::Set(kInts, INT32_C(-0x1000000))));
    const Shorts firstPair = hn::Mul(Arranged(colours, kFirstPair), Arranged(rows, kFirstAlphas));
    const Shorts secondPair = hn::Mul(Arranged(colours, kSecondPair), Arranged(rows, kSecondAlphas));
    const Ints sums = SumOfPairs(hn::Xor(firstPair, middle), first, hn::Xor(secondPair, middle), second);
    return hn::Sub(sums, SumOfPairs(hn::Add(first, second), middle, hn::Zero(kShorts), middle));
}

// The weighted neighbours of a point, in sums that are still to be added up over the blocks.
template <bool kHasAlpha>
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
        sums = hn::Add(
            sums, kHasAlpha ? WeightedRowsWithAlpha(rows, first, second) : WeightedRows(rows, first, second));
    }
    return sums;
}

// The sums of neighbouring blocks: of `a` in the even places, of `b` in the odd ones.
[[maybe_unused]] HWY_INLINE Ints SumNeighbouringBlocks(Ints a, Ints b) {
    const Ints straight = hn::OddEvenBlocks(b, a);
    return hn::Add(straight, hn::SwapAdjacentBlocks(hn::OddEvenBlocks(a, b)));
}

HWY_INLINE Ints OpaqueLevels(Ints sums) {
    return hn::ShiftRight<kProductBits>(hn::Add(sums, hn::Set(kInts, 1 << (kProductBits - 1))));
}

HWY_INLINE Ints LevelsWithAlpha(Ints sums) {
    alignas(16) static constexpr float kAlphaFactor[4] = {0, 0, 0, kPerAlphaLevel};
    const auto numbers = hn::ConvertTo(kFloats, sums);
    const auto alpha = hn::Broadcast<3>(numbers);
    const auto isVisible = hn::Ge(alpha, hn::Set(kFloats, kLeastVisible));
    const auto perAlpha = hn::IfThenElseZero(isVisible, hn::Div(hn::Set(kFloats, 255.0F), alpha));
    const auto alphaFactor = hn::LoadDup128(kFloats, kAlphaFactor);
    const auto isColour = hn::Eq(alphaFactor, hn::Zero(kFloats));
    const auto levels = hn::Mul(numbers, hn::IfThenElse(isColour, perAlpha, alphaFactor));
    const auto clamped = hn::Min(hn::Max(levels, hn::Zero(kFloats)), hn::Set(kFloats, 255.0F));
    return hn::ConvertTo(kInts, hn::Add(clamped, hn::Set(kFloats, 0.5F)));
}

// As many consecutive pixels as a vector has blocks.
template <bool kHasAlpha>
HWY_INLINE void Interpolate(const std::uint8_t* pixels, std::ptrdiff_t stride, const std::int32_t* x,
                            const std::int32_t* y, std::uint8_t* to) {
    const auto sumsOf = [=](int i) HWY_ATTR {
        return BlockSums<kHasAlpha>(TopLeftOf(pixels, stride, x[i], y[i]), stride, WeightsAt(x[i]),
                                    WeightsAt(y[i]));
    };
    Ints sums = sumsOf(0);
    if constexpr (kBlocks == 2) {
        sums = SumNeighbouringBlocks(sums, sumsOf(1));
    } else if constexpr (kBlocks == 4) {
        const auto sumHalves = [](Ints a, Ints b) HWY_ATTR {
            return hn::Add(hn::ConcatLowerLower(kInts, b, a), hn::ConcatUpperUpper(kInts, b, a));
        };
        const Ints evenPixels = sumHalves(sums, sumsOf(2));
        const Ints oddPixels = sumHalves(sumsOf(1), sumsOf(3));
        sums = SumNeighbouringBlocks(evenPixels, oddPixels);
    }
    const hn::Rebind<std::uint8_t, decltype(kInts)> bytes;
    const Ints levels = kHasAlpha ? LevelsWithAlpha(sums) : OpaqueLevels(sums);
    hn::StoreU(hn::DemoteTo(bytes, levels), bytes, to);
}

template <bool kHasAlpha>
HWY_INLINE void Sample(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                       std::uint8_t* to) {
    int i = 0;
    for (; i + kBlocks <= run.count; i += kBlocks) {
        Interpolate<kHasAlpha>(pixels, stride, run.x.data() + i, run.y.data() + i, to + i * kPixelBytes);
    }
    if (i < run.count) { // the last pixel again, to fill a vector
        std::array<std::int32_t, kBlocks> x;
        std::array<std::int32_t, kBlocks> y;
        std::array<std::uint8_t, kBlocks * kPixelBytes> last;
        for (int k = 0; k < kBlocks; ++k) {
            x[k] = run.x[std::min(i + k, run.count - 1)];
            y[k] = run.y[std::min(i + k, run.count - 1)];
        }
        Interpolate<kHasAlpha>(pixels, stride, x.data(), y.data(), last.data());
        std::memcpy(to + i * kPixelBytes, last.data(), static_cast<std::size_t>(run.count - i) * kPixelBytes);
    }
}

void SampleOpaque(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run, std::uint8_t* to) {
    Sample<false>(pixels, stride, run, to);
}

void SampleWithAlpha(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                     std::uint8_t* to) {
    Sample<true>(pixels, stride, run, to);
}

const BicubicKernels& VectorKernels() {
    static constexpr BicubicKernels kKernels{
        .SampleOpaque = SampleOpaque,
        .SampleWithAlpha = SampleWithAlpha,
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

const BicubicKernels& BicubicKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
