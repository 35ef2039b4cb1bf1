// Where the points of a twirled row come from, in vectors, see TwirlKernels.h. Sums and products are taken in
// the order of the plain loop, so that both give the same bits.
#include "picture/engine/kernels/warp/TwirlKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/warp/TwirlVectors.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {
#if HWY_TARGET == HWY_SCALAR // vectors of one number: the processor has none that we know

const TwirlKernels& VectorKernels() {
    return TwirlKernels::Plain();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

void LocateTwirl(const TwirlRow& row, int count, std::int32_t* across, std::int32_t* down) {
    const hn::CappedTag<float, 16> floats;
    const hn::RebindToSigned<decltype(floats)> ints;
    const auto constant = [&](float value) HWY_ATTR { return hn::Set(floats, value); };
    const auto one = constant(1.0F);
    const auto two = constant(2.0F);
    const auto y = constant(row.y);
    const auto ySquare = hn::Mul(y, y);
    const auto unit = constant(row.unit);
    for (int i = 0; i < count; i += static_cast<int>(hn::Lanes(floats))) {
        const auto x = hn::Add(constant(row.x), hn::Iota(floats, static_cast<float>(i)));
        const auto distance = hn::Sqrt(hn::Add(hn::Mul(x, x), ySquare));
        const auto t = hn::Min(hn::Mul(distance, constant(row.perRadius)), one);
        const auto fall = hn::Mul(hn::Mul(t, t), hn::Sub(constant(3.0F), hn::Mul(two, t)));
        const auto turns = hn::Mul(constant(row.turns), hn::Sub(one, fall));
        const auto half = hn::Mul(hn::Sub(turns, hn::Round(turns)), constant(kHalfTurn));
        const auto square = hn::Mul(half, half);
        auto sine = constant(kSineFirst);
        for (const float term : kSineTerms) {
            sine = hn::Add(hn::Mul(sine, square), constant(term));
        }
        sine = hn::Mul(half, hn::Add(hn::Mul(sine, square), one));
        auto cosine = constant(kCosineFirst);
        for (const float term : kCosineTerms) {
            cosine = hn::Add(hn::Mul(cosine, square), constant(term));
        }
        cosine = hn::Add(hn::Mul(cosine, square), one);
        const auto fullSine = hn::Mul(hn::Mul(two, sine), cosine);
        const auto fullCosine = hn::Sub(one, hn::Mul(hn::Mul(two, sine), sine));
        const auto rightwards = hn::Sub(hn::Mul(x, fullCosine), hn::Mul(y, fullSine));
        const auto downwards = hn::Add(hn::Mul(x, fullSine), hn::Mul(y, fullCosine));
        const auto place = [&](auto position, std::int32_t centre) HWY_ATTR {
            return hn::Add(hn::Set(ints, centre), hn::NearestInt(hn::Mul(position, unit)));
        };
        hn::StoreU(place(rightwards, row.centreX), ints, across + i);
        hn::StoreU(place(downwards, row.centreY), ints, down + i);
    }
}

const TwirlKernels& VectorKernels() {
    static constexpr TwirlKernels kKernels{
        .LocateTwirl = LocateTwirl,
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

const TwirlKernels& TwirlKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
