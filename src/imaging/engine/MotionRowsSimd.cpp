// The loops of motion blur in vectors, see MotionRows.h.
#include "imaging/engine/MotionRows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/engine/MotionRowsSimd.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR

using scalar::Slide;
using scalar::SumPairs;

#else

namespace hn = hwy::HWY_NAMESPACE;

using Wides = hn::CappedTag<WideComponent, 16>;
using Unsigned = hn::RebindToUnsigned<Wides>;
using Bytes = hn::Rebind<std::uint8_t, Wides>;
using WideVector = hn::Vec<Wides>;

HWY_INLINE WideVector LoadWidened(const std::uint8_t* from) {
    return hn::PromoteTo(Wides(), hn::LoadU(Bytes(), from));
}

// The sums of one vector's components over the rows -whole to whole.
HWY_INLINE WideVector FirstSum(const Stack& stack, int whole, std::size_t i) {
    auto sum = hn::Zero(Wides());
    for (int index = -whole; index <= whole; ++index) {
        sum = hn::Add(sum, LoadWidened(stack.Row(index) + i));
    }
    return sum;
}

void Slide(const Stack& stack, const FixedLine& line) {
    const Wides wides;
    const Bytes bytes;
    const std::size_t lanes = hn::Lanes(wides);
    const auto size = static_cast<std::size_t>(stack.size);
    std::vector<WideComponent> sums(size + lanes);
    for (std::size_t i = 0; i < size; i += lanes) {
        hn::StoreU(FirstSum(stack, line.whole, i), wides, sums.data() + i);
    }
    const auto perLength = hn::Set(wides, line.perLength);
    const auto tipShare = hn::Set(wides, line.tipShare);
    const auto half = hn::Set(wides, FixedLine::kMeanUnit / 2);
    constexpr int kMeanBits = 5;
    static_assert(1 << kMeanBits == FixedLine::kMeanUnit);
    constexpr int kWideBits = 6;
    static_assert(1 << kWideBits == kWideUnit);
    constexpr int kAhead = 2; // rows
    for (int index = 0; index < stack.count; ++index) {
        const std::uint8_t* const before = stack.Row(index - line.whole - 1);
        const std::uint8_t* const leaving = stack.Row(index - line.whole);
        const std::uint8_t* const entering = stack.Row(index + line.whole + 1);
        const std::uint8_t* const next = stack.Row(index + line.whole + 1 + kAhead);
        std::uint8_t* const out = stack.out + index * stack.outStep;
        for (std::size_t i = 0; i < size; i += lanes) {
            hwy::Prefetch(next + i);
            const auto sum = hn::LoadU(wides, sums.data() + i);
            const auto enters = LoadWidened(entering + i);
            const auto tips = hn::ShiftLeft<kWideBits>(hn::Add(LoadWidened(before + i), enters));
            const auto mean = hn::Add(hn::MulFixedPoint15(hn::ShiftLeftSame(sum, line.shift), perLength),
                                      hn::MulFixedPoint15(tips, tipShare));
            const auto rounded = hn::ShiftRight<kMeanBits>(hn::Add(mean, half));
            hn::StoreU(hn::DemoteTo(bytes, rounded), bytes, out + i);
            hn::StoreU(hn::Add(sum, hn::Sub(enters, LoadWidened(leaving + i))), wides, sums.data() + i);
        }
    }
}

template <std::size_t kVectors>
HWY_INLINE void SumVectors(const std::vector<WeightedPair>& pairs, std::size_t i, WideComponent* sums) {
    const Wides wides;
    const std::size_t lanes = hn::Lanes(wides);
    WideVector sum[kVectors];
    for (std::size_t v = 0; v < kVectors; ++v) {
        sum[v] = hn::Set(wides, 2);
    }
    for (const WeightedPair& pair : pairs) {
        const auto weight = hn::Set(wides, pair.weight);
        for (std::size_t v = 0; v < kVectors; ++v) {
            const auto both = hn::Add(hn::LoadU(wides, pair.one + i + v * lanes),
                                      hn::LoadU(wides, pair.other + i + v * lanes));
            sum[v] = hn::Add(sum[v], hn::MulFixedPoint15(both, weight));
        }
    }
    for (std::size_t v = 0; v < kVectors; ++v) {
        // Only now it fits into 15 bits.
        const auto quarter = hn::ShiftRight<2>(hn::BitCast(Unsigned(), sum[v]));
        hn::StoreU(hn::BitCast(wides, quarter), wides, sums + i + v * lanes);
    }
}

void SumPairs(const std::vector<WeightedPair>& pairs, std::size_t count, WideComponent* sums) {
    constexpr std::size_t kVectors = 4;
    const std::size_t lanes = hn::Lanes(Wides());
    if (count < lanes) {
        scalar::SumPairs(pairs, count, sums);
        return;
    }
    std::size_t i = 0;
    for (; i + kVectors * lanes <= count; i += kVectors * lanes) {
        SumVectors<kVectors>(pairs, i, sums);
    }
    for (; i < count; i += lanes) {
        i = std::min(i, count - lanes); // what is written twice is the same twice
        SumVectors<1>(pairs, i, sums);
    }
}

#endif

} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine::simd {

HWY_EXPORT(Slide);
HWY_EXPORT(SumPairs);

void Slide(const Stack& stack, const FixedLine& line) {
    HWY_DYNAMIC_DISPATCH(Slide)(stack, line);
}

void SumPairs(const std::vector<WeightedPair>& pairs, std::size_t count, WideComponent* sums) {
    HWY_DYNAMIC_DISPATCH(SumPairs)(pairs, count, sums);
}

} // namespace pictorel::engine::simd
#endif
