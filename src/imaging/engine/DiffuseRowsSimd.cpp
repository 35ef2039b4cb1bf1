// Where scattered pixels are taken from, in vectors, see DiffuseRows.h.
#include "imaging/engine/DiffuseRows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/engine/DiffuseRowsSimd.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h, which includes this file once for each kind of vectors.
#include "imaging/engine/RandomLanes-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR

using scalar::ChooseSources;

#else

namespace hn = hwy::HWY_NAMESPACE;

void ChooseSources(const Scatter& scatter, int y, std::int32_t* sources) {
    const RandomLanes lanes;
    const hn::RebindToSigned<RandomLanes> ints;
    const auto one = static_cast<int>(hn::Lanes(lanes));
    const auto zero = hn::Zero(ints);
    const auto lastColumn = hn::Set(ints, scatter.lastColumn);
    const auto lastRow = hn::Set(ints, scatter.lastRow);
    const auto rowPixels = hn::Set(ints, scatter.rowPixels);
    const auto radius = hn::Set(ints, scatter.radius);
    const auto places = hn::Set(lanes, 2 * static_cast<std::uint32_t>(scatter.radius) + 1);
    const auto lastMoved = hn::Set(lanes, scatter.lastMoved);
    const auto randomRow = hn::Set(lanes, RandomRow(y));
    const auto row = hn::Set(ints, y);
    // x displaced by 16 random bits, kept in 0..last.
    const auto displaced = [&](auto x, RandomVector random, auto last) HWY_ATTR {
        const auto place = hn::BitCast(ints, hn::ShiftRight<16>(hn::Mul(random, places)));
        return hn::Min(hn::Max(hn::Add(x, hn::Sub(place, radius)), zero), last);
    };
    for (int x = 0; x <= scatter.lastColumn; x += one) {
        const RandomVector choice = Mixed(hn::Add(randomRow, PlacesFrom(x)));
        const RandomVector place = Mixed(choice);
        const auto column = hn::Add(hn::Iota(ints, 0), hn::Set(ints, x));
        const auto low = hn::And(place, hn::Set(lanes, 0xFFFF));
        const auto movedColumn = displaced(column, low, lastColumn);
        const auto movedRow = displaced(row, hn::ShiftRight<16>(place), lastRow);
        const auto isKept = hn::RebindMask(ints, hn::Gt(choice, lastMoved));
        const auto fromColumn = hn::IfThenElse(isKept, column, movedColumn);
        const auto fromRow = hn::IfThenElse(isKept, row, movedRow);
        hn::StoreU(hn::Add(hn::Mul(fromRow, rowPixels), fromColumn), ints, sources + x);
    }
}

#endif

} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine {

HWY_EXPORT(ChooseSources);

namespace simd {

void ChooseSources(const Scatter& scatter, int y, std::int32_t* sources) {
    HWY_DYNAMIC_DISPATCH(ChooseSources)(scatter, y, sources);
}

} // namespace simd
} // namespace pictorel::engine
#endif
