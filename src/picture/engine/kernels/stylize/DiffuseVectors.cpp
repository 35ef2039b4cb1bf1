// Where scattered pixels are taken from, in vectors, see DiffuseKernels.h.
#include "picture/engine/kernels/stylize/DiffuseKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/stylize/DiffuseVectors.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h, which includes this file once for each kind of vectors.
#include "picture/engine/kernels/base/RandomLanes-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {
#if HWY_TARGET == HWY_SCALAR // vectors of one number: the processor has none that we know

const DiffuseKernels& VectorKernels() {
    return DiffuseKernels::Plain();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

// Columns and rows are the lower and upper 16 bits of a lane.
void ChooseSources(const Scatter& scatter, int y, std::int32_t* sources) {
    const RandomLanes lanes;
    const hn::RebindToSigned<RandomLanes> ints;
    const hn::Repartition<std::int16_t, RandomLanes> shorts;
    const hn::RebindToUnsigned<decltype(shorts)> places;
    const auto one = static_cast<int>(hn::Lanes(lanes));
    const auto both = [&](int column, int row) HWY_ATTR {
        const auto upper = static_cast<std::uint32_t>(row) << 16;
        return hn::BitCast(shorts, hn::Set(lanes, upper | (static_cast<std::uint32_t>(column) & 0xFFFF)));
    };
    const auto last = both(scatter.lastColumn, scatter.lastRow);
    const auto rowPixels = hn::Set(ints, scatter.rowPixels);
    const auto radius = both(scatter.radius, scatter.radius);
    const auto count = hn::Set(places, static_cast<std::uint16_t>(2 * scatter.radius + 1));
    const auto lastMoved = hn::Set(lanes, scatter.lastMoved);
    const auto randomRow = hn::Set(lanes, RandomRow(scatter.top + y));
    const auto row = hn::Set(lanes, static_cast<std::uint32_t>(y) << 16);
    for (int x = 0; x <= scatter.lastColumn; x += one) {
        const RandomVector choice = Mixed(hn::Add(randomRow, PlacesFrom(scatter.left + x)));
        const auto place = hn::MulHigh(hn::BitCast(places, MixedOnce(choice)), count);
        const auto way = hn::Sub(hn::BitCast(shorts, place), radius);
        const auto isKept = hn::Gt(choice, lastMoved);
        const auto moved = hn::BitCast(shorts, hn::IfThenZeroElse(isKept, hn::BitCast(lanes, way)));
        const auto columns = hn::Add(hn::Iota(lanes, 0), hn::Set(lanes, static_cast<std::uint32_t>(x)));
        const auto reached = hn::SaturatedAdd(hn::BitCast(shorts, hn::Or(columns, row)), moved);
        const auto inside = hn::BitCast(ints, hn::Min(hn::Max(reached, hn::Zero(shorts)), last));
        const auto above = hn::Mul(hn::ShiftRight<16>(inside), rowPixels);
        hn::StoreU(hn::Add(above, hn::And(inside, hn::Set(ints, 0xFFFF))), ints, sources + x);
    }
}

const DiffuseKernels& VectorKernels() {
    static constexpr DiffuseKernels kKernels{
        .ChooseSources = ChooseSources,
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

const DiffuseKernels& DiffuseKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
