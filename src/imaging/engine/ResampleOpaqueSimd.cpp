// The two passes of resampling in 16-bit fixed point, in vectors, see ResampleOpaque.h. Products are summed
// in pairs: two rows, two columns.
#include "imaging/engine/ResampleOpaque.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/engine/ResampleOpaqueSimd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR

using scalar::SumColumnsFixed;
using scalar::SumRowsFixed;

#else

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

// The order of a pair of pixels that SumColumnsFixed reads, of the order in which they lie in a row.
ShortVector InPairs(ShortVector pixels) {
    alignas(16) static constexpr std::uint8_t kOrder[16] = {0, 1, 8,  9,  2, 3, 10, 11,
                                                            4, 5, 12, 13, 6, 7, 14, 15};
    return hn::BitCast(Shorts(),
                       hn::TableLookupBytes(hn::BitCast(Bytes(), pixels), hn::LoadDup128(Bytes(), kOrder)));
}

// Rows in pairs, whose bytes stand side by side: what one vector of components is summed to.
struct BlockSums {
    PairSums quarters[4];
};

HWY_INLINE void AddRows(BlockSums& sums, const std::uint8_t* upper, const std::uint8_t* lower,
                        ShortVector weights) {
    const Bytes bytes;
    const Shorts shorts;
    const auto zero = hn::Zero(bytes);
    const auto a = hn::LoadU(bytes, upper);
    const auto b = hn::LoadU(bytes, lower);
    const auto first = hn::InterleaveLower(bytes, a, b);
    const auto second = hn::InterleaveUpper(bytes, a, b);
    AddProducts(sums.quarters[0], hn::BitCast(shorts, hn::InterleaveLower(bytes, first, zero)), weights);
    AddProducts(sums.quarters[1], hn::BitCast(shorts, hn::InterleaveUpper(bytes, first, zero)), weights);
    AddProducts(sums.quarters[2], hn::BitCast(shorts, hn::InterleaveLower(bytes, second, zero)), weights);
    AddProducts(sums.quarters[3], hn::BitCast(shorts, hn::InterleaveUpper(bytes, second, zero)), weights);
}

HWY_INLINE IntVector Reduced(const PairSums& sums, int shift) {
    return hn::ShiftRightSame(hn::Add(Total(sums), hn::Set(Ints(), 1 << (shift - 1))), shift);
}

HWY_INLINE void StoreBlock(const BlockSums& sums, int shift, std::int16_t* to) {
    const Shorts shorts;
    const auto early = InPairs(
        hn::ReorderDemote2To(shorts, Reduced(sums.quarters[0], shift), Reduced(sums.quarters[1], shift)));
    const auto late = InPairs(
        hn::ReorderDemote2To(shorts, Reduced(sums.quarters[2], shift), Reduced(sums.quarters[3], shift)));
    if constexpr (hn::MaxLanes(Bytes()) == 32) {
        hn::StoreU(hn::ConcatLowerLower(shorts, late, early), shorts, to);
        hn::StoreU(hn::ConcatUpperUpper(shorts, late, early), shorts, to + hn::Lanes(shorts));
    } else {
        hn::StoreU(early, shorts, to);
        hn::StoreU(late, shorts, to + hn::Lanes(shorts));
    }
}

HWY_INLINE ShortVector PairOfWeights(const std::int16_t* weights) {
    std::int32_t both;
    std::memcpy(&both, weights, sizeof both);
    return hn::BitCast(Shorts(), hn::Set(Ints(), both));
}

template <int kBlocks>
HWY_INLINE void SumRowsBlocks(std::span<const std::uint8_t* const> rows,
                              std::span<const std::int16_t> weights, int shift, int offset,
                              std::int16_t* to) {
    const int block = static_cast<int>(hn::Lanes(Bytes()));
    BlockSums sums[kBlocks];
    for (BlockSums& sum : sums) {
        for (PairSums& quarter : sum.quarters) {
            quarter = NoSum();
        }
    }
    for (std::size_t i = 0; i < weights.size(); i += 2) {
        const auto factors = PairOfWeights(weights.data() + i);
        for (int k = 0; k < kBlocks; ++k) {
            AddRows(sums[k], rows[i] + offset + k * block, rows[i + 1] + offset + k * block, factors);
        }
    }
    for (int k = 0; k < kBlocks; ++k) {
        StoreBlock(sums[k], shift, to + offset + k * block);
    }
}

void SumRowsFixed(std::span<const std::uint8_t* const> rows, std::span<const std::int16_t> weights, int bits,
                  int components, std::int16_t* to) {
    const int block = static_cast<int>(hn::Lanes(Bytes()));
    int offset = 0;
    for (; offset + 2 * block <= components; offset += 2 * block) {
        SumRowsBlocks<2>(rows, weights, bits - kSumFraction, offset, to);
    }
    for (; offset < components; offset += block) {
        SumRowsBlocks<1>(rows, weights, bits - kSumFraction, offset, to);
    }
}

// One pixel, of the blocks of a vector added together.
template <class Sum>
hn::Vec<hn::FixedTag<std::int32_t, 4>> OfAllBlocks(Sum sum) {
    if constexpr (sizeof(Sum) == 32) {
        const hn::Half<Ints> half;
        return hn::Add(hn::LowerHalf(half, sum), hn::UpperHalf(half, sum));
    } else {
        return sum;
    }
}

// Each block of 16 bytes holds two pixels, which take two weights; there are one or two blocks in a vector.
void SumColumnsFixed(const std::int16_t* from, const FixedWeights& columns, std::uint8_t* to) {
    const Bytes bytes;
    const Shorts shorts;
    const hn::Repartition<std::uint64_t, Bytes> words;
    constexpr std::size_t kStep = hn::MaxLanes(Shorts()) / 4; // weights
    alignas(32) static constexpr std::uint8_t kSpread[32] = {0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3,
                                                             4, 5, 6, 7, 4, 5, 6, 7, 4, 5, 6, 7, 4, 5, 6, 7};
    const auto spread = hn::LoadU(bytes, kSpread);
    const hn::FixedTag<std::int32_t, 4> pixel;
    const hn::FixedTag<std::uint8_t, 4> result;
    const int shift = columns.Bits() + kSumFraction;
    const auto half = hn::Set(pixel, 1 << (shift - 1));
    for (int x = 0; x < columns.Length(); ++x, to += PixelArray::kComponents) {
        const FixedWeights::Taps taps = columns[x];
        const std::int16_t* pixels = from + std::ptrdiff_t{taps.first} * PixelArray::kComponents;
        PairSums sums = NoSum();
        for (std::size_t i = 0; i < taps.weights.size(); i += kStep, pixels += hn::MaxLanes(Shorts())) {
            std::uint64_t four = 0;
            std::memcpy(&four, taps.weights.data() + i, kStep * sizeof(std::int16_t));
            const auto weights = hn::TableLookupBytes(hn::BitCast(bytes, hn::Set(words, four)), spread);
            AddProducts(sums, hn::LoadU(shorts, pixels), hn::BitCast(shorts, weights));
        }
        const auto sum = OfAllBlocks(Total(sums));
        const auto rounded = hn::ShiftRightSame(hn::Add(sum, half), shift);
        hn::StoreU(hn::DemoteTo(result, rounded), result, to);
    }
}

#endif
} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine {

HWY_EXPORT(SumRowsFixed);
HWY_EXPORT(SumColumnsFixed);

namespace simd {

void SumRowsFixed(std::span<const std::uint8_t* const> rows, std::span<const std::int16_t> weights, int bits,
                  int components, std::int16_t* to) {
    HWY_DYNAMIC_DISPATCH(SumRowsFixed)(rows, weights, bits, components, to);
}

void SumColumnsFixed(const std::int16_t* from, const FixedWeights& columns, std::uint8_t* to) {
    HWY_DYNAMIC_DISPATCH(SumColumnsFixed)(from, columns, to);
}

} // namespace simd
} // namespace pictorel::engine
#endif
