// The two passes of resampling in 16-bit fixed point, in vectors, see ResampleKernels.h. Products are summed
// in pairs: two rows, two columns.
#include "picture/engine/kernels/base/FixedPoint.h"
#include "picture/engine/kernels/base/Streaming.h"
#include "picture/engine/kernels/resample/ResampleKernels.h"

#include <cmath>
#include <cstring>
#include <vector>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/resample/ResampleVectors.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
// After foreach_target.h, which includes this file once for each kind of vectors.
#include "picture/engine/kernels/resample/PairSums-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {
#if HWY_TARGET == HWY_SCALAR // vectors of one number: the processor has none that we know

const ResampleKernels& VectorKernels() {
    return ResampleKernels::Plain();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

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
    const int fraction = bits + kSumFraction - kFixedBits;
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
    ResampleKernels::Plain().SumSumsFixed(rest, weights, bits, components - c, streams, to + c);
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

HWY_INLINE PixelInts Shifted(PixelInts sum, int shift) {
    return hn::ShiftRightSame(hn::Add(sum, hn::Set(kPixelInts, 1 << (shift - 1))), shift);
}

void SumColumnsFixed(const PairedRows& from, const FixedWeights& columns, std::uint8_t* to,
                     std::ptrdiff_t toStride) {
    const int shift = columns.Bits() + kSumFraction;
    ForEachColumnSum(from, columns, [=](int row, int x, PixelInts sum) HWY_ATTR {
        hn::StoreU(hn::DemoteTo(kPixelBytes, Shifted(sum, shift)), kPixelBytes,
                   to + row * toStride + x * kComponents);
    });
}

void SumColumnsToSums(const PairedRows& from, const FixedWeights& columns, std::int16_t* to,
                      std::ptrdiff_t toStride) {
    const hn::FixedTag<std::int16_t, 4> pixel;
    const int shift = columns.Bits();
    ForEachColumnSum(from, columns, [=](int row, int x, PixelInts sum) HWY_ATTR {
        hn::StoreU(hn::DemoteTo(pixel, Shifted(sum, shift)), pixel, to + row * toStride + x * kComponents);
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
        hn::StoreU(hn::DemoteTo(kPixelBytes, rounded), kPixelBytes, to + row * toStride + x * kComponents);
    });
}

const ResampleKernels& VectorKernels() {
    static constexpr ResampleKernels kKernels{
        .SumRowsFixed = SumRowsFixed,
        .SumColumnsFixed = SumColumnsFixed,
        .SumColumnsToSums = SumColumnsToSums,
        .SumSumsFixed = SumSumsFixed,
        .Premultiply = Premultiply,
        .SumPremultipliedRows = SumPremultipliedRows,
        .SumPremultipliedColumns = SumPremultipliedColumns,
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

const ResampleKernels& ResampleKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
