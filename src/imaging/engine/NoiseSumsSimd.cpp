// The random numbers of many pixels added up, in vectors, see NoiseSums.h.
#include "imaging/engine/NoiseSums.h"
#include "imaging/engine/StylizeRandom.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/engine/NoiseSumsSimd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR

using scalar::SumNoise;

#else

namespace hn = hwy::HWY_NAMESPACE;

using Lanes = hn::ScalableTag<std::uint32_t>;
using Vector = hn::Vec<Lanes>;

// MixBits of every lane.
Vector Mixed(Vector bits) {
    const Lanes lanes;
    bits = hn::Xor(bits, hn::ShiftRight<16>(bits));
    bits = hn::Mul(bits, hn::Set(lanes, kFirstMixer));
    bits = hn::Xor(bits, hn::ShiftRight<15>(bits));
    bits = hn::Mul(bits, hn::Set(lanes, kSecondMixer));
    return hn::Xor(bits, hn::ShiftRight<16>(bits));
}

// Two vectors of columns go down the rows side by side, since each waits long for its multiplications.
void SumNoise(int firstRow, int endRow, int width, const NoiseSums& sums) {
    const Lanes lanes;
    const hn::Rebind<std::int32_t, Lanes> ints;
    const auto mask = hn::Set(lanes, kNoiseSteps - 1);
    const auto one = static_cast<int>(hn::Lanes(lanes));
    for (int x = 0; x < width; x += 2 * one) {
        const auto left =
            hn::Mul(hn::Iota(lanes, static_cast<std::uint32_t>(x)), hn::Set(lanes, kColumnStride));
        const auto right =
            hn::Mul(hn::Iota(lanes, static_cast<std::uint32_t>(x + one)), hn::Set(lanes, kColumnStride));
        Vector blue[2] = {hn::Zero(lanes), hn::Zero(lanes)};
        Vector green[2] = {hn::Zero(lanes), hn::Zero(lanes)};
        Vector red[2] = {hn::Zero(lanes), hn::Zero(lanes)};
        for (int y = firstRow; y < endRow; ++y) {
            const auto row = hn::Set(lanes, RandomRow(y));
            const Vector random[2] = {Mixed(hn::Add(row, left)), Mixed(hn::Add(row, right))};
            for (int side = 0; side < 2; ++side) {
                blue[side] = hn::Add(blue[side], hn::And(random[side], mask));
                green[side] = hn::Add(green[side], hn::And(hn::ShiftRight<10>(random[side]), mask));
                red[side] = hn::Add(red[side], hn::And(hn::ShiftRight<20>(random[side]), mask));
            }
        }
        for (int side = 0; side < 2; ++side) {
            hn::StoreU(hn::BitCast(ints, blue[side]), ints, sums.blue + x + side * one);
            hn::StoreU(hn::BitCast(ints, green[side]), ints, sums.green + x + side * one);
            hn::StoreU(hn::BitCast(ints, red[side]), ints, sums.red + x + side * one);
        }
    }
}

#endif
} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine {

HWY_EXPORT(SumNoise);

namespace simd {

void SumNoise(int firstRow, int endRow, int width, const NoiseSums& sums) {
    HWY_DYNAMIC_DISPATCH(SumNoise)(firstRow, endRow, width, sums);
}

} // namespace simd
} // namespace pictorel::engine
#endif
