// The two passes of resampling in 16-bit fixed point, in vectors, see ResampleFixed.h. Products are summed
// in pairs: two rows, two columns.
#include "picture/engine/kernels/base/Streaming.h"
#include "picture/engine/kernels/resample/ResampleFixed.h"

#include <cmath>
#include <cstring>
#include <vector>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/resample/ResampleFixedSimd.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR

using scalar::Premultiply;
using scalar::SumColumnsFixed;
using scalar::SumColumnsToSums;
using scalar::SumPremultipliedColumns;
using scalar::SumPremultipliedRows;
using scalar::SumRowsFixed;
using scalar::SumSumsFixed;

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

// One vector of sums, paired.
HWY_INLINE ShortVector Paired(const PairSums& lower, const PairSums& upper, int shift) {
    return InPairs(hn::ReorderDemote2To(Shorts(), Reduced(lower, shift), Reduced(upper, shift)));
}

HWY_INLINE void StoreBlock(const BlockSums& sums, int shift, std::int16_t* to) {
    const Shorts shorts;
    const auto early = Paired(sums.quarters[0], sums.quarters[1], shift);
    const auto late = Paired(sums.quarters[2], sums.quarters[3], shift);
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
    constexpr int kAhead = 256; // bytes; no processor follows hundreds of rows at once
    for (std::size_t i = 0; i < weights.size(); i += 2) {
        FetchAhead(rows[i] + offset + kAhead);
        FetchAhead(rows[i + 1] + offset + kAhead);
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

// Sums of rows of 16 bits, for a vector of components: its halves, each block on its own.
struct WideSums {
    PairSums lower;
    PairSums upper;
};

// Calls store(k, sums) for kVectors vectors of components from `offset` on, which share the weights'
// spreading.
template <int kVectors, class Store>
HWY_INLINE void SumWideRows(std::span<const std::int16_t* const> rows, std::span<const std::int16_t> weights,
                            int offset, const Store& store) {
    const Shorts shorts;
    WideSums sums[kVectors];
    for (WideSums& sum : sums) {
        sum = {NoSum(), NoSum()};
    }
    for (std::size_t i = 0; i < weights.size(); i += 2) {
        const auto factors = PairOfWeights(weights.data() + i);
        const std::int16_t* const upper = rows[i] + offset;
        const std::int16_t* const lower = rows[i + 1] + offset;
        for (int k = 0; k < kVectors; ++k) {
            const auto a = hn::LoadU(shorts, upper + k * hn::Lanes(shorts));
            const auto b = hn::LoadU(shorts, lower + k * hn::Lanes(shorts));
            AddProducts(sums[k].lower, hn::InterleaveLower(shorts, a, b), factors);
            AddProducts(sums[k].upper, hn::InterleaveUpper(shorts, a, b), factors);
        }
    }
    for (int k = 0; k < kVectors; ++k) {
        store(offset + k * static_cast<int>(hn::Lanes(shorts)), sums[k]);
    }
}

// The same for all vectors of `components`.
template <class Store>
HWY_INLINE void SumAllWideRows(std::span<const std::int16_t* const> rows,
                               std::span<const std::int16_t> weights, int components, const Store& store) {
    constexpr int kTogether = 4;
    const int lanes = static_cast<int>(hn::Lanes(Shorts()));
    int c = 0;
    for (; c + kTogether * lanes <= components; c += kTogether * lanes) {
        SumWideRows<kTogether>(rows, weights, c, store);
    }
    for (; c + lanes <= components; c += lanes) {
        SumWideRows<1>(rows, weights, c, store);
    }
}

void SumPremultipliedRows(std::span<const std::int16_t* const> rows, std::span<const std::int16_t> weights,
                          int bits, int components, std::int16_t* to) {
    SumAllWideRows(rows, weights, components, [=](int c, const WideSums& sums) HWY_ATTR {
        hn::StoreU(Paired(sums.lower, sums.upper, bits + 1), Shorts(), to + c);
    });
}

// Pixels of 2 kPairs vectors of components, summed in 16 bits, are given to store(offset, bytes).
template <int kPairs, class Store>
HWY_INLINE void SumProducts(std::span<const std::int16_t* const> rows, std::span<const std::int16_t> weights,
                            int fraction, int offset, const Store& store) {
    const Shorts shorts;
    const hn::Half<Bytes> half;
    const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(shorts));
    ShortVector sums[2 * kPairs];
    for (ShortVector& sum : sums) {
        sum = hn::Set(shorts, static_cast<std::int16_t>(1 << (fraction - 1)));
    }
    for (std::size_t i = 0; i < weights.size(); ++i) {
        const auto weight = hn::Set(shorts, weights[i]);
        const std::int16_t* const row = rows[i] + offset;
        for (int k = 0; k < 2 * kPairs; ++k) {
            sums[k] = hn::Add(sums[k], hn::MulFixedPoint15(hn::LoadU(shorts, row + k * lanes), weight));
        }
    }
    const auto pixels = [=](ShortVector sum)
                            HWY_ATTR { return hn::DemoteTo(half, hn::ShiftRightSame(sum, fraction)); };
    for (int k = 0; k < kPairs; ++k) {
        store(offset + 2 * k * static_cast<int>(lanes),
              hn::Combine(Bytes(), pixels(sums[2 * k + 1]), pixels(sums[2 * k])));
    }
}

void SumSumsFixed(std::span<const std::int16_t* const> rows, std::span<const std::int16_t> weights, int bits,
                  int components, bool streams, std::uint8_t* to) {
    const Bytes bytes;
    const int fraction = bits + kSumFraction - kRoundedBits;
    const auto store = [=](int offset, ByteVector pixels) HWY_ATTR {
        streams ? hn::Stream(pixels, bytes, to + offset) : hn::Store(pixels, bytes, to + offset);
    };
    constexpr int kPairs = 4;
    const int one = static_cast<int>(hn::Lanes(bytes));
    int c = 0;
    for (; c + kPairs * one <= components; c += kPairs * one) {
        SumProducts<kPairs>(rows, weights, fraction, c, store);
    }
    for (; c + one <= components; c += one) {
        SumProducts<1>(rows, weights, fraction, c, store);
    }
    hwy::FlushStream();
    std::vector<const std::int16_t*> rest(rows.begin(), rows.end());
    for (const std::int16_t*& row : rest) {
        row += c;
    }
    scalar::SumSumsFixed(rest, weights, bits, components - c, streams, to + c);
}

void Premultiply(const std::uint8_t* pixels, int count, std::int16_t* to) {
    const Shorts shorts;
    const hn::Half<Bytes> bytes;
    alignas(16) static constexpr std::uint8_t kAlphas[16] = {6,  7,  6,  7,  6,  7,  128, 128,
                                                             14, 15, 14, 15, 14, 15, 128, 128};
    alignas(16) static constexpr std::int16_t kForAlpha[8] = {0, 0, 0, 255, 0, 0, 0, 255};
    const auto alphaOrder = hn::LoadDup128(Bytes(), kAlphas);
    const auto forAlpha = hn::LoadDup128(shorts, kForAlpha);
    for (int i = 0; i < count; i += static_cast<int>(hn::MaxLanes(shorts))) {
        const auto wide = hn::PromoteTo(shorts, hn::LoadU(bytes, pixels + i));
        const auto alphas = hn::TableLookupBytesOr0(hn::BitCast(Bytes(), wide), alphaOrder);
        const auto product = hn::Mul(wide, hn::Or(hn::BitCast(shorts, alphas), forAlpha));
        hn::StoreU(hn::Xor(product, hn::Set(shorts, INT16_MIN)), shorts, to + i);
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
        const std::int16_t* pixels = from[firstRow] + std::ptrdiff_t{taps.first} * PixelArray::kComponents;
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

HWY_INLINE PixelInts Shifted(PixelInts sum, int shift) {
    return hn::ShiftRightSame(hn::Add(sum, hn::Set(kPixelInts, 1 << (shift - 1))), shift);
}

void SumColumnsFixed(const PairedRows& from, const FixedWeights& columns, std::uint8_t* to,
                     std::ptrdiff_t toStride) {
    const int shift = columns.Bits() + kSumFraction;
    ForEachColumnSum(from, columns, [=](int row, int x, PixelInts sum) HWY_ATTR {
        hn::StoreU(hn::DemoteTo(kPixelBytes, Shifted(sum, shift)), kPixelBytes,
                   to + row * toStride + x * PixelArray::kComponents);
    });
}

void SumColumnsToSums(const PairedRows& from, const FixedWeights& columns, std::int16_t* to,
                      std::ptrdiff_t toStride) {
    const hn::FixedTag<std::int16_t, 4> pixel;
    const int shift = columns.Bits();
    ForEachColumnSum(from, columns, [=](int row, int x, PixelInts sum) HWY_ATTR {
        hn::StoreU(hn::DemoteTo(pixel, Shifted(sum, shift)), pixel,
                   to + row * toStride + x * PixelArray::kComponents);
    });
}

void SumPremultipliedColumns(const PairedRows& from, const FixedWeights& columns, std::uint8_t* to,
                             std::ptrdiff_t toStride) {
    const hn::FixedTag<float, 4> floats;
    const auto perUnit = hn::Set(floats, std::ldexp(2.0F, -columns.Bits()));
    const auto offset = hn::Set(floats, float{kPremultipliedOffset});
    const auto isColour = hn::FirstN(floats, 3);
    ForEachColumnSum(from, columns, [=](int row, int x, PixelInts sum) HWY_ATTR {
        const auto sums = hn::Add(hn::Mul(hn::ConvertTo(floats, sum), perUnit), offset);
        const auto alpha = hn::Broadcast<3>(sums);
        const auto isVisible = hn::Ge(alpha, hn::Set(floats, 127.5F));
        const auto perAlpha = hn::IfThenElseZero(isVisible, hn::Div(hn::Set(floats, 255.0F), alpha));
        const auto factor = hn::IfThenElse(isColour, perAlpha, hn::Set(floats, 1.0F / 255));
        const auto level = hn::Min(hn::Max(hn::Mul(sums, factor), hn::Zero(floats)), hn::Set(floats, 255.0F));
        const auto rounded = hn::ConvertTo(kPixelInts, hn::Add(level, hn::Set(floats, 0.5F)));
        hn::StoreU(hn::DemoteTo(kPixelBytes, rounded), kPixelBytes,
                   to + row * toStride + x * PixelArray::kComponents);
    });
}

#endif
} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine {

HWY_EXPORT(SumRowsFixed);
HWY_EXPORT(SumColumnsFixed);
HWY_EXPORT(SumColumnsToSums);
HWY_EXPORT(SumSumsFixed);
HWY_EXPORT(Premultiply);
HWY_EXPORT(SumPremultipliedRows);
HWY_EXPORT(SumPremultipliedColumns);

namespace simd {

void SumRowsFixed(std::span<const std::uint8_t* const> rows, std::span<const std::int16_t> weights, int bits,
                  int components, std::int16_t* to) {
    HWY_DYNAMIC_DISPATCH(SumRowsFixed)(rows, weights, bits, components, to);
}

void SumColumnsFixed(const PairedRows& from, const FixedWeights& columns, std::uint8_t* to,
                     std::ptrdiff_t toStride) {
    HWY_DYNAMIC_DISPATCH(SumColumnsFixed)(from, columns, to, toStride);
}

void SumColumnsToSums(const PairedRows& from, const FixedWeights& columns, std::int16_t* to,
                      std::ptrdiff_t toStride) {
    HWY_DYNAMIC_DISPATCH(SumColumnsToSums)(from, columns, to, toStride);
}

void SumSumsFixed(std::span<const std::int16_t* const> rows, std::span<const std::int16_t> weights, int bits,
                  int components, bool streams, std::uint8_t* to) {
    HWY_DYNAMIC_DISPATCH(SumSumsFixed)(rows, weights, bits, components, streams, to);
}

void Premultiply(const std::uint8_t* pixels, int count, std::int16_t* to) {
    HWY_DYNAMIC_DISPATCH(Premultiply)(pixels, count, to);
}

void SumPremultipliedRows(std::span<const std::int16_t* const> rows, std::span<const std::int16_t> weights,
                          int bits, int components, std::int16_t* to) {
    HWY_DYNAMIC_DISPATCH(SumPremultipliedRows)(rows, weights, bits, components, to);
}

void SumPremultipliedColumns(const PairedRows& from, const FixedWeights& columns, std::uint8_t* to,
                             std::ptrdiff_t toStride) {
    HWY_DYNAMIC_DISPATCH(SumPremultipliedColumns)(from, columns, to, toStride);
}

} // namespace simd
} // namespace pictorel::engine
#endif
