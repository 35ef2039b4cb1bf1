// Sums along rays in vectors, see ZoomKernels.h. Products and sums are those of the plain loops, so that both
// give the same bits.
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/base/WholePixel.h"
#include "picture/engine/kernels/blur/ZoomKernels.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/blur/ZoomVectors.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {
#if HWY_TARGET == HWY_SCALAR // vectors of one number: the processor has none that we know

const ZoomKernels& VectorKernels() {
    return ZoomKernels::Plain();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

constexpr hn::CappedTag<std::int16_t, kRaysTogether * kComponents> kShorts;
constexpr hn::RepartitionToWide<decltype(kShorts)> kInts;
constexpr hn::RebindToFloat<decltype(kInts)> kFloats;
using Shorts = hn::VFromD<decltype(kShorts)>;
using Ints = hn::VFromD<decltype(kInts)>;
constexpr int kRays = static_cast<int>(hn::MaxLanes(kShorts)) / kComponents; // of a vector

void PremultiplyLine(const std::uint8_t* line, int pixels, std::int16_t* values) {
    const hn::RebindToUnsigned<decltype(kShorts)> unsignedShorts;
    const hn::Rebind<std::uint8_t, decltype(kShorts)> bytes;
    const hn::Repartition<std::uint32_t, decltype(bytes)> whole;
    alignas(16) static constexpr std::uint8_t kAlphas[16] = {3,  3,  3,  3,  7,  7,  7,  7,
                                                             11, 11, 11, 11, 15, 15, 15, 15};
    const auto alphaOrder = hn::LoadDup128(bytes, kAlphas);
    const auto opaque = hn::BitCast(bytes, hn::Set(whole, kOpaque));
    const auto toValue = hn::Set(unsignedShorts, kPremultiplied);
    for (std::ptrdiff_t i = 0; i < pixels * kComponents; i += hn::Lanes(kShorts)) {
        const auto from = hn::LoadU(bytes, line + i);
        const auto colours = hn::PromoteTo(unsignedShorts, from);
        const auto factors = hn::Or(hn::TableLookupBytes(from, alphaOrder), opaque);
        const auto products = hn::Mul(colours, hn::PromoteTo(unsignedShorts, factors));
        hn::StoreU(hn::BitCast(kShorts, hn::MulHigh(products, toValue)), kShorts, values + i);
    }
}

void Crossings(const std::uint8_t* line, Crossing crossing, int rays, std::int16_t* values) {
    const hn::Rebind<std::uint8_t, decltype(kShorts)> bytes;
    const hn::Repartition<std::int32_t, decltype(bytes)> pixels; // a lane for each ray
    // The second byte of a position is the share, twice as fine: for each component.
    alignas(16) static constexpr std::uint8_t kShare[16] = {1, 1, 1, 1, 5,  5,  5,  5,
                                                            9, 9, 9, 9, 13, 13, 13, 13};
    const auto shareOrder = hn::LoadDup128(bytes, kShare);
    const auto onward = hn::Set(pixels, kRays * crossing.step);
    const auto start = hn::Set(pixels, crossing.position);
    auto position = hn::Add(start, hn::Mul(hn::Iota(pixels, 0), hn::Set(pixels, crossing.step)));
    std::int32_t first = crossing.position + std::min(0, (kRays - 1) * crossing.step);
    for (int i = 0; i < rays; i += kRays, first += kRays * crossing.step) {
        const std::int32_t nearest = first >> kRayPositionBits;
        const std::uint8_t* const from = line + static_cast<std::ptrdiff_t>(nearest) * kComponents;
        const auto index = hn::IndicesFromVec(
            pixels, hn::Sub(hn::ShiftRight<kRayPositionBits>(position), hn::Set(pixels, nearest)));
        const auto valueOf = [&](const std::uint8_t* row) HWY_ATTR {
            const auto whole = hn::BitCast(pixels, hn::LoadU(bytes, row));
            return hn::PromoteTo(kShorts, hn::BitCast(bytes, hn::TableLookupLanes(whole, index)));
        };
        const Shorts value = valueOf(from);
        const Shorts next = valueOf(from + kComponents);
        const auto fine = hn::TableLookupBytes(hn::BitCast(bytes, position), shareOrder);
        const Shorts share = hn::ShiftRight<8 - kRayShareBits>(hn::PromoteTo(kShorts, fine));
        const Shorts ahead = hn::Mul(hn::Sub(next, value), share);
        hn::StoreU(hn::Add(hn::ShiftLeft<kRayShareBits>(value), ahead), kShorts, values + i * kComponents);
        position = hn::Add(position, onward);
    }
}

void CrossingsPremultiplied(const std::int16_t* line, Crossing crossing, int rays, std::int16_t* values) {
    const hn::FixedTag<std::int16_t, kComponents> ray;
    std::int32_t position = crossing.position;
    for (int i = 0; i < rays; ++i, position += crossing.step) {
        const std::int16_t* const from =
            line + static_cast<std::ptrdiff_t>(position >> kRayPositionBits) * kComponents;
        const auto value = hn::LoadU(ray, from);
        const int fine = position >> (kRayPositionBits - kRayShareBits) & (kRayShares - 1);
        const auto share = hn::Set(ray, static_cast<std::int16_t>(fine << (15 - kRayShareBits)));
        const auto ahead = hn::Sub(hn::LoadU(ray, from + kComponents), value);
        hn::StoreU(hn::Add(value, hn::MulFixedPoint15(ahead, share)), ray, values + i * kComponents);
    }
}

// Sums and differences of two values fit 16 bits without a sign.
HWY_INLINE Ints LowerHalves(Shorts sums) {
    return hn::BitCast(kInts, hn::InterleaveLower(kShorts, sums, hn::Zero(kShorts)));
}
HWY_INLINE Ints UpperHalves(Shorts sums) {
    return hn::BitCast(kInts, hn::InterleaveUpper(kShorts, sums, hn::Zero(kShorts)));
}

void AddInterval(const std::int16_t* before, const std::int16_t* entering, int rays, std::int32_t* sums) {
    const std::ptrdiff_t half = hn::Lanes(kInts);
    for (std::ptrdiff_t i = 0; i < rays * kComponents; i += 2 * half) {
        const Shorts both = hn::Add(hn::LoadU(kShorts, before + i), hn::LoadU(kShorts, entering + i));
        hn::StoreU(hn::Add(hn::LoadU(kInts, sums + i), LowerHalves(both)), kInts, sums + i);
        hn::StoreU(hn::Add(hn::LoadU(kInts, sums + i + half), UpperHalves(both)), kInts, sums + i + half);
    }
}

HWY_INLINE Ints MeanOf(Ints sum, Ints rest, int restShift, float perLength) {
    const auto whole = hn::ConvertTo(kFloats, hn::Add(sum, hn::ShiftRightSame(rest, restShift)));
    return hn::NearestInt(hn::Mul(whole, hn::Set(kFloats, perLength)));
}

// a[0] b[0] + a[1] b[1], a[2] b[2] + a[3] b[3], ...
HWY_INLINE Ints SumOfPairs(Shorts a, Shorts b) {
    Ints odd = hn::Zero(kInts);
    const Ints even = hn::ReorderWidenMulAccumulate(kInts, a, b, hn::Zero(kInts), odd);
    return hn::RearrangeToOddPlusEven(even, odd);
}

template <bool kLeaves>
HWY_INLINE void Slide(const RaySlide& slide, int rays, std::int32_t* sums, std::int16_t* means) {
    const std::ptrdiff_t half = hn::Lanes(kInts);
    const std::int32_t bothShares = slide.afterInnerShare * 0x10000 + slide.innerShare;
    const Shorts shares = hn::BitCast(kShorts, hn::Set(kInts, bothShares));
    for (std::ptrdiff_t i = 0; i < rays * kComponents; i += 2 * half) {
        const Shorts entering =
            hn::Add(hn::LoadU(kShorts, slide.before + i), hn::LoadU(kShorts, slide.entering + i));
        Ints lower = hn::Add(hn::LoadU(kInts, sums + i), LowerHalves(entering));
        Ints upper = hn::Add(hn::LoadU(kInts, sums + i + half), UpperHalves(entering));
        const Shorts inner = hn::LoadU(kShorts, slide.inner + i);
        const Shorts afterInner = hn::LoadU(kShorts, slide.afterInner + i);
        if constexpr (kLeaves) {
            const Shorts leaving = hn::Add(inner, afterInner);
            lower = hn::Sub(lower, LowerHalves(leaving));
            upper = hn::Sub(upper, UpperHalves(leaving));
        }
        hn::StoreU(lower, kInts, sums + i);
        hn::StoreU(upper, kInts, sums + i + half);
        const Ints lowerRest = SumOfPairs(hn::InterleaveLower(kShorts, inner, afterInner), shares);
        const Ints upperRest = SumOfPairs(hn::InterleaveUpper(kShorts, inner, afterInner), shares);
        const Ints lowerMeans = MeanOf(lower, lowerRest, slide.restShift, slide.perLength);
        const Ints upperMeans = MeanOf(upper, upperRest, slide.restShift, slide.perLength);
        hn::StoreU(hn::ReorderDemote2To(kShorts, lowerMeans, upperMeans), kShorts, means + i);
    }
}

void SlideRays(const RaySlide& slide, int rays, std::int32_t* sums, std::int16_t* means) {
    slide.leaves ? Slide<true>(slide, rays, sums, means) : Slide<false>(slide, rays, sums, means);
}

constexpr hn::FixedTag<std::int16_t, 2 * kComponents> kTwoRays;
using TwoRays = hn::VFromD<decltype(kTwoRays)>;

// The weighted rays around a pixel, one behind the other still to be added to the one before.
HWY_INLINE TwoRays WeightedRays(const std::int16_t* means, std::int64_t position) {
    alignas(16) static constexpr std::uint8_t kFirst[16] = {0, 1, 0, 1, 0, 1, 0, 1, 2, 3, 2, 3, 2, 3, 2, 3};
    alignas(16) static constexpr std::uint8_t kSecond[16] = {4, 5, 4, 5, 4, 5, 4, 5, 6, 7, 6, 7, 6, 7, 6, 7};
    const hn::Repartition<std::uint8_t, decltype(kTwoRays)> bytes;
    std::int64_t all;
    std::memcpy(&all, MixWeightsAt(position).data(), sizeof all);
    const auto weights = hn::BitCast(bytes, hn::Set(hn::FixedTag<std::int64_t, 2>(), all));
    const auto spread = [&](const std::uint8_t* order) HWY_ATTR {
        return hn::BitCast(kTwoRays, hn::TableLookupBytes(weights, hn::Load(bytes, order)));
    };
    const std::int16_t* const rays = means + ((position >> kRayPositionBits) - 1) * kComponents;
    const auto first = hn::MulFixedPoint15(hn::LoadU(kTwoRays, rays), spread(kFirst));
    const auto second =
        hn::MulFixedPoint15(hn::LoadU(kTwoRays, rays + hn::MaxLanes(kTwoRays)), spread(kSecond));
    return hn::Add(first, second);
}

HWY_INLINE TwoRays AddedUp(TwoRays a, TwoRays b) {
    const hn::RepartitionToWide<hn::RepartitionToWide<decltype(kTwoRays)>> longs;
    const auto lower = hn::InterleaveLower(longs, hn::BitCast(longs, a), hn::BitCast(longs, b));
    const auto upper = hn::InterleaveUpper(longs, hn::BitCast(longs, a), hn::BitCast(longs, b));
    const auto sum = hn::Add(hn::BitCast(kTwoRays, lower), hn::BitCast(kTwoRays, upper));
    return hn::ShiftRight<kRayShareBits - 1>(hn::Add(sum, hn::Set(kTwoRays, kRayShares / 4)));
}

void MixRays(const std::int16_t* means, const PixelsBetween& between) {
    constexpr int kTogether = 4; // pixels
    const hn::FixedTag<std::uint8_t, kTogether * kComponents> bytes;
    const hn::FixedTag<std::uint8_t, kTogether * kComponents / 2> half;
    const auto opaque = hn::BitCast(bytes, hn::Set(hn::FixedTag<std::uint32_t, kTogether>(), kOpaque));
    std::int64_t position = between.position;
    std::uint8_t* pixel = between.pixels;
    int i = 0;
    for (; i + kTogether <= between.count; i += kTogether, position += kTogether * between.step) {
        const auto weighted = [&](int k)
                                  HWY_ATTR { return WeightedRays(means, position + k * between.step); };
        const auto first = hn::DemoteTo(half, AddedUp(weighted(0), weighted(1)));
        const auto second = hn::DemoteTo(half, AddedUp(weighted(2), weighted(3)));
        const auto pixels = hn::Or(hn::Combine(bytes, second, first), opaque);
        if (between.pixelStep == kComponents) {
            hn::StoreU(pixels, bytes, pixel);
            pixel += kTogether * kComponents;
            continue;
        }
        std::uint8_t four[kTogether * kComponents];
        hn::StoreU(pixels, bytes, four);
        for (int k = 0; k < kTogether; ++k, pixel += between.pixelStep) {
            std::memcpy(pixel, four + k * kComponents, kComponents);
        }
    }
    ZoomKernels::Plain().MixRays(means,
                                 {position, between.step, between.count - i, pixel, between.pixelStep});
}

void MixRaysWithAlpha(const std::int16_t* means, const PixelsBetween& between) {
    const hn::FixedTag<float, kComponents> floats;
    const hn::FixedTag<std::int32_t, kComponents> ints;
    const hn::Repartition<std::uint8_t, decltype(kTwoRays)> bytes;
    const hn::FixedTag<std::uint8_t, kComponents> pixelBytes;
    // The components of two rays side by side.
    alignas(16) static constexpr std::uint8_t kSideBySide[16] = {0, 1, 8,  9,  2, 3, 10, 11,
                                                                 4, 5, 12, 13, 6, 7, 14, 15};
    alignas(16) static constexpr float kPerUnit[kComponents] = {0, 0, 0, kPerWeightedRay};
    const auto order = hn::Load(bytes, kSideBySide);
    const auto perUnit = hn::Load(floats, kPerUnit);
    const auto isColour = hn::FirstN(floats, 3);
    std::int64_t position = between.position;
    std::uint8_t* pixel = between.pixels;
    for (int i = 0; i < between.count; ++i, position += between.step, pixel += between.pixelStep) {
        const std::int16_t* const rays = means + ((position >> kRayPositionBits) - 1) * kComponents;
        const auto weighted = [&](int pair) HWY_ATTR {
            std::int32_t weights;
            std::memcpy(&weights, MixWeightsAt(position).data() + pair * 2, sizeof weights);
            const auto values = hn::BitCast(bytes, hn::LoadU(kTwoRays, rays + pair * 2 * kComponents));
            auto odd = hn::Zero(ints);
            const auto even = hn::ReorderWidenMulAccumulate(
                ints, hn::BitCast(kTwoRays, hn::TableLookupBytes(values, order)),
                hn::BitCast(kTwoRays, hn::Set(ints, weights)), hn::Zero(ints), odd);
            return hn::RearrangeToOddPlusEven(even, odd);
        };
        const auto sums = hn::ConvertTo(floats, hn::Add(weighted(0), weighted(1)));
        const auto alpha = hn::Max(hn::Broadcast<3>(sums), hn::Set(floats, 1 << kWeightBits));
        const auto perAlpha = hn::Div(hn::Set(floats, 255.0F), alpha);
        const auto levels = hn::Mul(sums, hn::IfThenElse(isColour, perAlpha, perUnit));
        const auto clamped = hn::Min(hn::Max(levels, hn::Zero(floats)), hn::Set(floats, 255.0F));
        const auto rounded = hn::ConvertTo(ints, hn::Add(clamped, hn::Set(floats, 0.5F)));
        hn::StoreU(hn::DemoteTo(pixelBytes, rounded), pixelBytes, pixel);
    }
}

const ZoomKernels& VectorKernels() {
    static constexpr ZoomKernels kKernels{
        .PremultiplyLine = PremultiplyLine,
        .Crossings = Crossings,
        .CrossingsPremultiplied = CrossingsPremultiplied,
        .AddInterval = AddInterval,
        .SlideRays = SlideRays,
        .MixRays = MixRays,
        .MixRaysWithAlpha = MixRaysWithAlpha,
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

const ZoomKernels& ZoomKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
