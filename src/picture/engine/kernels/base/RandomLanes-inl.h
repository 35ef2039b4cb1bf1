// The mixing of random bits in vectors, for the kernels that need many; included once for each kind of
// vectors.
#if defined(PICTOREL_RANDOM_LANES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef PICTOREL_RANDOM_LANES_INL_H
#undef PICTOREL_RANDOM_LANES_INL_H
#else
#define PICTOREL_RANDOM_LANES_INL_H
#endif

#include "picture/engine/kernels/base/PositionRandom.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {

using RandomLanes = hwy::HWY_NAMESPACE::ScalableTag<std::uint32_t>;
using RandomVector = hwy::HWY_NAMESPACE::Vec<RandomLanes>;

// MixBits of every lane.
HWY_INLINE RandomVector Mixed(RandomVector bits) {
    namespace hn = hwy::HWY_NAMESPACE;
    const RandomLanes lanes;
    bits = hn::Xor(bits, hn::ShiftRight<16>(bits));
    bits = hn::Mul(bits, hn::Set(lanes, kFirstMixer));
    bits = hn::Xor(bits, hn::ShiftRight<15>(bits));
    bits = hn::Mul(bits, hn::Set(lanes, kSecondMixer));
    return hn::Xor(bits, hn::ShiftRight<16>(bits));
}

// MixOnce of every lane.
HWY_INLINE RandomVector MixedOnce(RandomVector bits) {
    namespace hn = hwy::HWY_NAMESPACE;
    bits = hn::Mul(bits, hn::Set(RandomLanes(), kSecondMixer));
    return hn::Xor(bits, hn::ShiftRight<16>(bits));
}

// What RandomAt mixes for the columns x, x + 1, ... of a row whose random bits are 0.
HWY_INLINE RandomVector PlacesFrom(int x) {
    namespace hn = hwy::HWY_NAMESPACE;
    const RandomLanes lanes;
    // The first of them as a constant: counting from a variable goes through memory.
    const RandomVector columns = hn::Add(hn::Iota(lanes, 0), hn::Set(lanes, static_cast<std::uint32_t>(x)));
    return hn::Mul(columns, hn::Set(lanes, kColumnStride));
}

} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
