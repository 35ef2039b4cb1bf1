// Sums of products in pairs, as rows and columns are summed in fixed point, see ResampleKernels.h; included
// once for each kind of vectors.
#if defined(PICTOREL_PAIR_SUMS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef PICTOREL_PAIR_SUMS_INL_H
#undef PICTOREL_PAIR_SUMS_INL_H
#else
#define PICTOREL_PAIR_SUMS_INL_H
#endif

#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/resample/ResampleKernels.h"

#include <hwy/highway.h>

#include <cstring>

#if HWY_TARGET != HWY_SCALAR // which has no pairs of lanes

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// At most two blocks of 16 bytes: with more, joining the halves of vectors would no longer restore the order.
using Bytes = hn::CappedTag<std::uint8_t, 32>;
using Shorts = hn::Repartition<std::int16_t, Bytes>;
using Ints = hn::Repartition<std::int32_t, Bytes>;
using ByteVector = hn::Vec<Bytes>;
using ShortVector = hn::Vec<Shorts>;
using IntVector = hn::Vec<Ints>;

// Sums of products of neighbouring lanes.
struct PairSums {
    IntVector even;
    IntVector odd;
};

HWY_INLINE PairSums NoSum() {
    return {hn::Zero(Ints()), hn::Zero(Ints())};
}

HWY_INLINE void AddProducts(PairSums& sums, ShortVector a, ShortVector b) {
    sums.even = hn::ReorderWidenMulAccumulate(Ints(), a, b, sums.even, sums.odd);
}

HWY_INLINE IntVector Total(const PairSums& sums) {
    return hn::RearrangeToOddPlusEven(sums.even, sums.odd);
}

// The order of a pair of pixels in which columns are summed, of the order in which they lie in a row.
HWY_INLINE ShortVector InPairs(ShortVector pixels) {
    alignas(16) static constexpr std::uint8_t kOrder[16] = {0, 1, 8,  9,  2, 3, 10, 11,
                                                            4, 5, 12, 13, 6, 7, 14, 15};
    return hn::BitCast(Shorts(),
                       hn::TableLookupBytes(hn::BitCast(Bytes(), pixels), hn::LoadDup128(Bytes(), kOrder)));
}

HWY_INLINE IntVector Reduced(const PairSums& sums, int shift) {
    return hn::ShiftRightSame(hn::Add(Total(sums), hn::Set(Ints(), 1 << (shift - 1))), shift);
}

// One vector of sums, paired.
HWY_INLINE ShortVector Paired(const PairSums& lower, const PairSums& upper, int shift) {
    return InPairs(hn::ReorderDemote2To(Shorts(), Reduced(lower, shift), Reduced(upper, shift)));
}

HWY_INLINE ShortVector PairOfWeights(const std::int16_t* weights) {
    std::int32_t both;
    std::memcpy(&both, weights, sizeof both);
    return hn::BitCast(Shorts(), hn::Set(Ints(), both));
}

// One pixel, of the blocks of a vector added together.
template <class Sum>
HWY_INLINE hn::Vec<hn::FixedTag<std::int32_t, 4>> OfAllBlocks(Sum sum) {
    if constexpr (sizeof(Sum) == 32) {
        const hn::Half<Ints> half;
        return hn::Add(hn::LowerHalf(half, sum), hn::UpperHalf(half, sum));
    } else {
        return sum;
    }
}

// Calls store(row, x, sum) with the weighted sum of each of kRows rows' pixels, for every result pixel. Each
// block of 16 bytes holds two pixels, which take two weights; there are one or two blocks in a vector.
template <int kRows, class Store>
HWY_INLINE void SumColumnsOfRows(const PairedRows& from, int firstRow, const FixedWeights& columns,
                                 const Store& store) {
    const Bytes bytes;
    const Shorts shorts;
    const hn::Repartition<std::uint64_t, Bytes> words;
    constexpr std::size_t kStep = hn::MaxLanes(Shorts()) / 4; // weights
    alignas(32) static constexpr std::uint8_t kSpread[32] = {0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3,
                                                             4, 5, 6, 7, 4, 5, 6, 7, 4, 5, 6, 7, 4, 5, 6, 7};
    const auto spread = hn::LoadU(bytes, kSpread);
    for (int x = 0; x < columns.Length(); ++x) {
        const FixedWeights::Taps taps = columns[x];
        const std::int16_t* pixels = from[firstRow] + std::ptrdiff_t{taps.first} * kComponents;
        PairSums sums[kRows];
        for (PairSums& sum : sums) {
            sum = NoSum();
        }
        for (std::size_t i = 0; i < taps.weights.size(); i += kStep, pixels += hn::MaxLanes(Shorts())) {
            std::uint64_t four = 0;
            std::memcpy(&four, taps.weights.data() + i, kStep * sizeof(std::int16_t));
            const auto weights =
                hn::BitCast(shorts, hn::TableLookupBytes(hn::BitCast(bytes, hn::Set(words, four)), spread));
            for (int row = 0; row < kRows; ++row) {
                AddProducts(sums[row], hn::LoadU(shorts, pixels + row * from.stride), weights);
            }
        }
        for (int row = 0; row < kRows; ++row) {
            store(firstRow + row, x, OfAllBlocks(Total(sums[row])));
        }
    }
}

// Several rows together, which share the weights' spreading.
template <class Store>
HWY_INLINE void ForEachColumnSum(const PairedRows& from, const FixedWeights& columns, const Store& store) {
    constexpr int kTogether = 4;
    int row = 0;
    for (; row + kTogether <= from.count; row += kTogether) {
        SumColumnsOfRows<kTogether>(from, row, columns, store);
    }
    for (; row < from.count; ++row) {
        SumColumnsOfRows<1>(from, row, columns, store);
    }
}

constexpr hn::FixedTag<std::int32_t, 4> kPixelInts;
constexpr hn::FixedTag<std::uint8_t, 4> kPixelBytes;
using PixelInts = hn::Vec<decltype(kPixelInts)>;

} // namespace
} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
#endif
