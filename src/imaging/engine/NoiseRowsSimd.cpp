// The random numbers of a row of pixels in vectors, see NoiseRows.h.
#include "imaging/engine/NoiseRows.h"

#include <cstdint>
#include <vector>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/engine/NoiseRowsSimd.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
// After foreach_target.h, which includes this file once for each kind of vectors.
#include "imaging/engine/RandomLanes-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR

using scalar::AddNoise;
using scalar::SumNoise;

#else

namespace hn = hwy::HWY_NAMESPACE;

using Lanes = RandomLanes;
using Vector = RandomVector;

void AddNoise(const NoiseRow& row) {
    const Lanes lanes;
    const hn::Repartition<std::uint8_t, Lanes> bytes;
    const hn::RebindToSigned<Lanes> ints;
    const hn::RebindToFloat<Lanes> floats;
    const auto mask = hn::Set(lanes, kNoiseSteps - 1);
    const auto low = hn::Set(lanes, 255);
    const auto highest = hn::Set(floats, 255.0F);
    const auto half = hn::Set(floats, 0.5F);
    const auto middle = hn::Set(ints, kNoiseSteps - 1);
    const auto perStep = hn::Set(floats, row.perStep);
    // `random` and `pixels` have the component's bits lowest.
    const auto noisy = [&](Vector random, Vector pixels) HWY_ATTR {
        const auto step = hn::BitCast(ints, hn::And(random, mask));
        const auto noise = hn::Mul(hn::ConvertTo(floats, hn::Sub(hn::Add(step, step), middle)), perStep);
        const auto c = hn::ConvertTo(floats, hn::BitCast(ints, hn::And(pixels, low)));
        const auto clamped = hn::Min(hn::Max(hn::Add(c, noise), hn::Zero(floats)), highest);
        return hn::BitCast(lanes, hn::ConvertTo(ints, hn::Add(clamped, half)));
    };
    const auto columnStep = hn::Set(lanes, static_cast<std::uint32_t>(hn::Lanes(lanes)) * kColumnStride);
    auto place =
        hn::Add(hn::Set(lanes, RandomRow(row.y)), hn::Mul(hn::Iota(lanes, 0), hn::Set(lanes, kColumnStride)));
    for (std::size_t x = 0; x < static_cast<std::size_t>(row.width); x += hn::Lanes(lanes)) {
        const Vector pixels = hn::BitCast(lanes, hn::Load(bytes, row.in + 4 * x));
        const Vector random = Mixed(place);
        place = hn::Add(place, columnStep);
        const Vector blue = noisy(random, pixels);
        const Vector green = noisy(hn::ShiftRight<10>(random), hn::ShiftRight<8>(pixels));
        const Vector red = noisy(hn::ShiftRight<20>(random), hn::ShiftRight<16>(pixels));
        const Vector alpha = hn::And(pixels, hn::Set(lanes, 0xFF000000U));
        const auto result = hn::BitCast(
            bytes, hn::Or(hn::Or(blue, hn::ShiftLeft<8>(green)), hn::Or(hn::ShiftLeft<16>(red), alpha)));
        if (row.streams) {
            hn::Stream(result, bytes, row.out + 4 * x);
        } else {
            hn::Store(result, bytes, row.out + 4 * x);
        }
    }
    hwy::FlushStream();
}

// Two vectors of columns go down the rows side by side, since each waits long for its multiplications.
void SumNoise(int firstRow, int endRow, int width, std::int32_t* sums) {
    const Lanes lanes;
    const hn::Rebind<std::int32_t, Lanes> ints;
    const auto mask = hn::Set(lanes, kNoiseSteps - 1);
    const auto one = static_cast<int>(hn::Lanes(lanes));
    std::vector<std::uint32_t> randomRows;
    for (int y = firstRow; y < endRow; ++y) {
        randomRows.push_back(RandomRow(y));
    }
    for (int x = 0; x < width; x += 2 * one) {
        const Vector left = PlacesFrom(x);
        const Vector right = PlacesFrom(x + one);
        Vector blue[2] = {hn::Zero(lanes), hn::Zero(lanes)};
        Vector green[2] = {hn::Zero(lanes), hn::Zero(lanes)};
        Vector red[2] = {hn::Zero(lanes), hn::Zero(lanes)};
        for (const std::uint32_t randomRow : randomRows) {
            const auto row = hn::Set(lanes, randomRow);
            const Vector random[2] = {Mixed(hn::Add(row, left)), Mixed(hn::Add(row, right))};
            for (int side = 0; side < 2; ++side) {
                blue[side] = hn::Add(blue[side], hn::And(random[side], mask));
                green[side] = hn::Add(green[side], hn::And(hn::ShiftRight<10>(random[side]), mask));
                red[side] = hn::Add(red[side], hn::And(hn::ShiftRight<20>(random[side]), mask));
            }
        }
        for (int side = 0; side < 2; ++side) {
            hn::StoreInterleaved4(hn::BitCast(ints, blue[side]), hn::BitCast(ints, green[side]),
                                  hn::BitCast(ints, red[side]), hn::Zero(ints), ints,
                                  sums + static_cast<std::ptrdiff_t>(x + side * one) * kNoiseSumNumbers);
        }
    }
}

#endif
} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine {

HWY_EXPORT(AddNoise);
HWY_EXPORT(SumNoise);

namespace simd {

void AddNoise(const NoiseRow& row) {
    HWY_DYNAMIC_DISPATCH(AddNoise)(row);
}

void SumNoise(int firstRow, int endRow, int width, std::int32_t* sums) {
    HWY_DYNAMIC_DISPATCH(SumNoise)(firstRow, endRow, width, sums);
}

} // namespace simd
} // namespace pictorel::engine
#endif
