// Running sums along rays in vectors, see ZoomRays.h. Sums and products are taken in the order of the plain
// loops, so that both give the same bits.
#include "imaging/engine/ZoomRays.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/engine/ZoomRaysSimd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR

using scalar::AddCrossings;
using scalar::MeansOf;
using scalar::MixMeans;
using scalar::PairPixels;

#else

namespace hn = hwy::HWY_NAMESPACE;

constexpr int kComponents = 4;
constexpr hn::FixedTag<std::int32_t, kComponents> kInts; // one pixel
constexpr hn::FixedTag<float, kComponents> kFloats;
constexpr hn::FixedTag<std::int16_t, 2 * kComponents> kPair;

void PairPixels(const PixelLine& line, int count, bool hasAlpha, std::int16_t* pairs) {
    if (hasAlpha) {
        scalar::PairPixels(line, count, hasAlpha, pairs);
        return;
    }
    const hn::FixedTag<std::uint8_t, kComponents> bytes;
    const hn::FixedTag<std::int16_t, kComponents> shorts;
    const auto valueOf = [&](int i) HWY_ATTR {
        const std::uint8_t* const pixel =
            line.pixels + std::clamp(line.first + i, 0, line.size - 1) * line.step;
        static_assert(kRayValueUnit == 1 << 3);
        return hn::ZeroExtendVector(kPair, hn::ShiftLeft<3>(hn::PromoteTo(shorts, hn::LoadU(bytes, pixel))));
    };
    auto value = valueOf(0);
    for (int i = 0; i < count; ++i) {
        const auto next = valueOf(i + 1);
        hn::StoreU(hn::InterleaveLower(kPair, value, next), kPair,
                   pairs + static_cast<std::ptrdiff_t>(i) * 2 * kComponents);
        value = next;
    }
}

void AddCrossings(const std::int16_t* pairs, Crossing crossing, int rays, const std::int32_t* before,
                  std::int32_t* after) {
    std::int32_t position = crossing.position;
    for (int i = 0; i < rays * kComponents; i += kComponents, position += crossing.step) {
        const auto pair = hn::LoadU(
            kPair, pairs + static_cast<std::ptrdiff_t>(position >> kRayPositionBits) * 2 * kComponents);
        const std::int32_t share = position >> (kRayPositionBits - kRayShareBits) & (kRayShares - 1);
        const auto shares = hn::BitCast(kPair, hn::Set(kInts, share * 0xFFFF + kRayShares)); // low: the rest
        auto odd = hn::Zero(kInts);
        const auto even = hn::ReorderWidenMulAccumulate(kInts, pair, shares, hn::Zero(kInts), odd);
        const auto met = hn::RearrangeToOddPlusEven(even, odd);
        hn::StoreU(hn::Add(hn::LoadU(kInts, before + i), met), kInts, after + i);
    }
}

void MeansOf(const Stretch& s, int rays, float* means) {
    const hn::CappedTag<float, kRaysTogether * kComponents> floats;
    const hn::RebindToSigned<decltype(floats)> ints;
    const auto half = hn::Set(floats, 0.5F);
    const auto shareBefore = hn::Set(floats, s.shareBefore);
    const auto shareBeyond = hn::Set(floats, s.shareBeyond);
    const auto perLength = hn::Set(floats, s.perLength);
    const std::size_t count = static_cast<std::size_t>(rays) * kComponents;
    for (std::size_t i = 0; i < count; i += hn::Lanes(floats)) {
        const auto outer = hn::LoadU(ints, s.outer + i);
        const auto inner = hn::LoadU(ints, s.inner + i);
        const auto between = [&](auto a, auto b) HWY_ATTR { return hn::ConvertTo(floats, hn::Sub(a, b)); };
        const auto last = hn::Mul(between(hn::LoadU(ints, s.beyondOuter + i), outer), half);
        const auto first = hn::Mul(between(inner, hn::LoadU(ints, s.beforeInner + i)), shareBefore);
        const auto second = hn::Mul(between(hn::LoadU(ints, s.beyondInner + i), inner), shareBeyond);
        const auto sum = hn::Add(hn::Add(between(outer, inner), last), hn::Sub(first, second));
        hn::StoreU(hn::Mul(sum, perLength), floats, means + i);
    }
}

void MixMeans(const float* means, const PixelsBetween& between, bool hasAlpha) {
    if (hasAlpha) {
        scalar::MixMeans(means, between, hasAlpha);
        return;
    }
    const hn::FixedTag<std::uint8_t, kComponents> bytes;
    const auto highest = hn::Set(kFloats, 255.0F);
    const auto half = hn::Set(kFloats, 0.5F);
    for (int i = 0; i < between.count; ++i) {
        const double position = between.position + i * between.step;
        const int ray = std::clamp(static_cast<int>(position), 0, between.lastRay);
        const float share = std::clamp(static_cast<float>(position - ray), 0.0F, 1.0F);
        const float* const left = means + static_cast<std::ptrdiff_t>(ray) * kComponents;
        const auto value = hn::LoadU(kFloats, left);
        const auto ahead = hn::Sub(hn::LoadU(kFloats, left + kComponents), value);
        const auto mean = hn::Add(value, hn::Mul(ahead, hn::Set(kFloats, share)));
        const auto clamped = hn::Min(hn::Max(mean, hn::Zero(kFloats)), highest);
        std::uint8_t* const pixel = between.pixels + i * between.pixelStep;
        hn::StoreU(hn::DemoteTo(bytes, hn::ConvertTo(kInts, hn::Add(clamped, half))), bytes, pixel);
        pixel[3] = 255;
    }
}

#endif

} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine {

HWY_EXPORT(PairPixels);
HWY_EXPORT(AddCrossings);
HWY_EXPORT(MeansOf);
HWY_EXPORT(MixMeans);

namespace simd {

void PairPixels(const PixelLine& line, int count, bool hasAlpha, std::int16_t* pairs) {
    HWY_DYNAMIC_DISPATCH(PairPixels)(line, count, hasAlpha, pairs);
}

void AddCrossings(const std::int16_t* pairs, Crossing crossing, int rays, const std::int32_t* before,
                  std::int32_t* after) {
    HWY_DYNAMIC_DISPATCH(AddCrossings)(pairs, crossing, rays, before, after);
}

void MeansOf(const Stretch& stretch, int rays, float* means) {
    HWY_DYNAMIC_DISPATCH(MeansOf)(stretch, rays, means);
}

void MixMeans(const float* means, const PixelsBetween& between, bool hasAlpha) {
    HWY_DYNAMIC_DISPATCH(MixMeans)(means, between, hasAlpha);
}

} // namespace simd
} // namespace pictorel::engine
#endif
