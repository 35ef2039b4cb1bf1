// Rows moved sideways in vectors, see ShiftKernels.h.
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/warp/BicubicKernels.h"
#include "picture/engine/kernels/warp/ShiftKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/warp/ShiftVectors.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h, which includes this file once for each kind of vectors.
#include "picture/engine/kernels/base/KeepInRegister-inl.h"
#include "picture/engine/kernels/base/RowWriter-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {
#if HWY_TARGET == HWY_SCALAR // vectors of one number: the processor has none that we know

const ShiftKernels& VectorKernels() {
    return ShiftKernels::Plain();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<std::uint8_t>;
using Words = hn::Repartition<std::int16_t, Bytes>;
using WordVector = hn::Vec<Words>;

// Weights in two parts, 64 upper + lower, so that sums of products fit into 16 bits. The lower parts are
// never negative.
constexpr int kLowerBits = 6;

struct Parts {
    explicit Parts(const CubicWeights& weights) {
        for (int k = 0; k < kCubicTaps; ++k) {
            const int weight = HalvedWeight(weights[k]);
            upper[k] = hn::Set(Words(), static_cast<std::int16_t>(weight >> kLowerBits));
            lower[k] = hn::Set(Words(), static_cast<std::int16_t>(weight & ((1 << kLowerBits) - 1)));
        }
    }

    // The weighted sum of levels, rounded to levels. Only the two taps in the middle have weights above 0
    // that could reach beyond 16 bits together, which is more than any level.
    HWY_INLINE WordVector Level(const WordVector (&taps)[kCubicTaps]) const {
        const hn::RebindToUnsigned<Words> unsignedWords;
        const auto product = [&](const WordVector(&weights)[kCubicTaps], int k)
                                 HWY_ATTR { return hn::Mul(taps[k], weights[k]); };
        const auto lowerSum = hn::Add(hn::Add(product(lower, 0), product(lower, 1)),
                                      hn::Add(product(lower, 2), product(lower, 3)));
        const auto carried =
            hn::BitCast(Words(), hn::ShiftRight<kLowerBits>(hn::BitCast(unsignedWords, lowerSum)));
        constexpr int kUpperBits = kProductBits - kLowerBits;
        const auto rounding = hn::Set(Words(), 1 << (kUpperBits - 1));
        const auto outer = hn::Add(hn::Add(product(upper, 0), product(upper, 3)), product(upper, 1));
        const auto sum =
            hn::SaturatedAdd(hn::SaturatedAdd(outer, product(upper, 2)), hn::Add(carried, rounding));
        return hn::ShiftRight<kUpperBits>(sum);
    }

    WordVector upper[kCubicTaps];
    WordVector lower[kCubicTaps];
};

void ShiftRow(const ShiftedRow& row) {
    const Bytes bytes;
    const Words words;
    const hn::RebindToUnsigned<Words> unsignedWords;
    const Parts parts(row.weights);
    const RowWriter writer(row.out, row.streams, row.ahead);
    const auto most = hn::Set(words, 255);
    const std::size_t size = static_cast<std::size_t>(row.width) * kComponents;
    const std::uint8_t* const in = row.in;
    for (std::size_t i = 0; i < size; i += hn::Lanes(bytes)) {
        WordVector even[kCubicTaps];
        WordVector odd[kCubicTaps];
        HWY_UNROLL(4)
        for (int k = 0; k < kCubicTaps; ++k) {
            auto both = hn::BitCast(unsignedWords, hn::LoadU(bytes, in + i + k * kComponents));
            KeepInRegister(both);
            even[k] = hn::And(hn::BitCast(words, both), most);
            odd[k] = hn::BitCast(words, hn::ShiftRight<8>(both));
        }
        const auto clamped = [&](WordVector level)
                                 HWY_ATTR { return hn::Min(hn::Max(level, hn::Zero(words)), most); };
        const auto upper = hn::ShiftLeft<8>(clamped(parts.Level(odd)));
        writer.Write(hn::BitCast(bytes, hn::Or(clamped(parts.Level(even)), upper)), i);
    }
}

const ShiftKernels& VectorKernels() {
    static constexpr ShiftKernels kKernels{
        .ShiftRow = ShiftRow,
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

const ShiftKernels& ShiftKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
