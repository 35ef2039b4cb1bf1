// The random numbers of a row of pixels in vectors, see NoiseKernels.h.
#include "picture/engine/kernels/stylize/NoiseKernels.h"

#include <cstdint>
#include <vector>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/stylize/NoiseVectors.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
// After foreach_target.h, which includes this file once for each kind of vectors.
#include "picture/engine/kernels/base/RandomLanes-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {
#if HWY_TARGET == HWY_SCALAR // vectors of one number: the processor has none that we know

const NoiseKernels& VectorKernels() {
    return NoiseKernels::Plain();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Lanes = RandomLanes;
using Vector = RandomVector;

void AddNoise(const NoiseRow& row) {
    const Lanes lanes;
    const hn::Repartition<std::uint8_t, Lanes> bytes;
    const hn::Repartition<std::int16_t, Lanes> shorts;
    const auto halves = [=](Vector v) HWY_ATTR { return hn::BitCast(shorts, v); };
    const auto lowBytes = hn::Set(lanes, 0x00FF00FF);
    const auto lowest = hn::Zero(shorts);
    const auto highest = hn::Set(shorts, 255);
    const auto half = hn::Set(shorts, kNoiseUnit / 2);
    const auto middle = hn::Set(shorts, (kNoiseSteps - 1) * 32);
    const auto amplitude = static_cast<std::uint32_t>(row.amplitude);
    const auto both = hn::Set(lanes, amplitude << 16 | amplitude);
    const auto onlyLower = hn::Set(lanes, amplitude);
    // Components in the low bytes of 16-bit lanes, each with a step in the same lane.
    const auto noisy = [&](Vector components, Vector steps, Vector amplitudes) HWY_ATTR {
        const auto step = hn::Sub(hn::ShiftLeft<6>(halves(steps)), middle); // 32 (2 step - 1023)
        const auto noise = hn::MulFixedPoint15(step, halves(amplitudes));
        const auto sum = hn::Add(hn::ShiftLeft<kNoiseBits>(halves(components)), hn::Add(noise, half));
        return hn::BitCast(lanes, hn::Min(hn::Max(hn::ShiftRight<kNoiseBits>(sum), lowest), highest));
    };
    const auto stepMask = hn::Set(lanes, kNoiseSteps - 1);
    const auto upperStepMask = hn::Set(lanes, (kNoiseSteps - 1) << 16);
    const auto columnStep = hn::Set(lanes, static_cast<std::uint32_t>(hn::Lanes(lanes)) * kColumnStride);
    auto place = hn::Add(hn::Set(lanes, RandomRow(row.y)), PlacesFrom(row.x));
    for (std::size_t x = 0; x < static_cast<std::size_t>(row.width); x += hn::Lanes(lanes)) {
        const Vector pixels = hn::BitCast(lanes, hn::Load(bytes, row.in + 4 * x));
        const Vector random = Mixed(place);
        place = hn::Add(place, columnStep);
        const Vector blueRedSteps =
            hn::Or(hn::And(random, stepMask), hn::And(hn::ShiftRight<4>(random), upperStepMask));
        const Vector blueRed = noisy(hn::And(pixels, lowBytes), blueRedSteps, both);
        const Vector greenSteps = hn::And(hn::ShiftRight<kNoiseStepBits>(random), stepMask);
        const Vector greenAlpha =
            noisy(hn::And(hn::ShiftRight<8>(pixels), lowBytes), greenSteps, onlyLower); // none for alpha
        const auto result = hn::BitCast(bytes, hn::Or(blueRed, hn::ShiftLeft<8>(greenAlpha)));
        if (row.streams) {
            hn::Stream(result, bytes, row.out + 4 * x);
        } else {
            hn::Store(result, bytes, row.out + 4 * x);
        }
    }
    hwy::FlushStream();
}

// Two vectors of columns go down the rows side by side, since each waits long for its multiplications.
void SumNoise(int firstRow, int endRow, int firstColumn, int width, std::int32_t* sums) {
    const Lanes lanes;
    const hn::Rebind<std::int32_t, Lanes> ints;
    const auto mask = hn::Set(lanes, kNoiseSteps - 1);
    const auto one = static_cast<int>(hn::Lanes(lanes));
    std::vector<std::uint32_t> randomRows;
    for (int y = firstRow; y < endRow; ++y) {
        randomRows.push_back(RandomRow(y));
    }
    for (int x = 0; x < width; x += 2 * one) {
        const Vector left = PlacesFrom(firstColumn + x);
        const Vector right = PlacesFrom(firstColumn + x + one);
        Vector blue[2] = {hn::Zero(lanes), hn::Zero(lanes)};
        Vector green[2] = {hn::Zero(lanes), hn::Zero(lanes)};
        Vector red[2] = {hn::Zero(lanes), hn::Zero(lanes)};
        for (const std::uint32_t randomRow : randomRows) {
            const auto row = hn::Set(lanes, randomRow);
            const Vector random[2] = {Mixed(hn::Add(row, left)), Mixed(hn::Add(row, right))};
            for (int side = 0; side < 2; ++side) {
                blue[side] = hn::Add(blue[side], hn::And(random[side], mask));
                green[side] =
                    hn::Add(green[side], hn::And(hn::ShiftRight<kNoiseStepBits>(random[side]), mask));
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

const NoiseKernels& VectorKernels() {
    static constexpr NoiseKernels kKernels{
        .AddNoise = AddNoise,
        .SumNoise = SumNoise,
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

const NoiseKernels& NoiseKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
