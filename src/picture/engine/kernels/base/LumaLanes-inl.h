// Luma of whole vectors of pixels; included once for each kind of vectors.
#if defined(PICTOREL_LUMA_LANES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef PICTOREL_LUMA_LANES_INL_H
#undef PICTOREL_LUMA_LANES_INL_H
#else
#define PICTOREL_LUMA_LANES_INL_H
#endif

#include "picture/engine/kernels/base/Luma.h"

#include <hwy/highway.h>

#include <cstdint>

#if HWY_TARGET != HWY_SCALAR // which has no pairs of lanes

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {

using PixelLanes =
    hwy::HWY_NAMESPACE::ScalableTag<std::uint32_t>; // one lane a pixel, blue in the lowest byte
using LumaLanes = hwy::HWY_NAMESPACE::ScalableTag<std::int32_t>;

// sum + products of the 16-bit lanes of `a` and `b`, those of neighbours added up in one 32-bit lane.
template <class Halves>
HWY_INLINE hwy::HWY_NAMESPACE::Vec<LumaLanes> AddPairs(hwy::HWY_NAMESPACE::Vec<LumaLanes> sum, Halves a,
                                                       Halves b) {
    namespace hn = hwy::HWY_NAMESPACE;
    const LumaLanes sums;
#if HWY_ARCH_X86 && HWY_TARGET != HWY_EMU128 // elsewhere it leaves open which products go together
    auto unused = hn::Zero(sums);
    return hn::ReorderWidenMulAccumulate(sums, a, b, sum, unused);
#else
    const auto low = [=](Halves v)
                         HWY_ATTR { return hn::ShiftRight<16>(hn::ShiftLeft<16>(hn::BitCast(sums, v))); };
    const auto high = [=](Halves v) HWY_ATTR { return hn::ShiftRight<16>(hn::BitCast(sums, v)); };
    return hn::Add(sum, hn::Add(hn::Mul(low(a), low(b)), hn::Mul(high(a), high(b))));
#endif
}

// The components of pixels times these weights, added to `sum`.
template <int kBlue, int kGreen, int kRed>
HWY_INLINE hwy::HWY_NAMESPACE::Vec<LumaLanes> AddWeighted(hwy::HWY_NAMESPACE::Vec<LumaLanes> sum,
                                                          hwy::HWY_NAMESPACE::Vec<PixelLanes> pixels) {
    namespace hn = hwy::HWY_NAMESPACE;
    const hn::Repartition<std::int16_t, PixelLanes> halves;
    const PixelLanes lanes;
    const auto blueRed = hn::BitCast(halves, hn::And(pixels, hn::Set(lanes, 0x00FF00FF)));
    const auto green = hn::BitCast(halves, hn::And(hn::ShiftRight<8>(pixels), hn::Set(lanes, 0x000000FF)));
    const auto blueRedWeights = hn::BitCast(halves, hn::Set(lanes, kBlue | kRed << 16));
    const auto greenWeight = hn::BitCast(halves, hn::Set(lanes, kGreen));
    return AddPairs(AddPairs(sum, blueRed, blueRedWeights), green, greenWeight);
}

// Exact luma times kLumaUnit, added to `sum`.
HWY_INLINE hwy::HWY_NAMESPACE::Vec<LumaLanes> AddScaledLuma(hwy::HWY_NAMESPACE::Vec<LumaLanes> sum,
                                                            hwy::HWY_NAMESPACE::Vec<PixelLanes> pixels) {
    return AddWeighted<kLumaBlue, kLumaGreen, kLumaRed>(sum, pixels);
}

// Luma rounded to 0..255. Rounding down after multiplying by the reciprocal is exact: at a whole quotient
// the float product rounds to the quotient, and the next value below it is further off than a float of this
// size resolves.
HWY_INLINE hwy::HWY_NAMESPACE::Vec<LumaLanes> RoundedLuma(hwy::HWY_NAMESPACE::Vec<PixelLanes> pixels) {
    namespace hn = hwy::HWY_NAMESPACE;
    const LumaLanes lanes;
    const hn::Rebind<float, LumaLanes> floats;
    const auto scaled = AddScaledLuma(hn::Set(lanes, kLumaUnit / 2), pixels);
    return hn::ConvertTo(lanes, hn::Mul(hn::ConvertTo(floats, scaled), hn::Set(floats, 1.0F / kLumaUnit)));
}

} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
#endif
