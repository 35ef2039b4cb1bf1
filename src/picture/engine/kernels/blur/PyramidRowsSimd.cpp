// The loops that halve and double rows of pixels in vectors, see PyramidRows.h.
#include "picture/engine/kernels/blur/PyramidRows.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/blur/PyramidRowsSimd.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
// After foreach_target.h, which includes this file once for each kind of vectors.
#include "picture/engine/kernels/base/KeepInRegister-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR

using scalar::DoubleAcross;
using scalar::DoubleDown;
using scalar::DoubleDownToPixels;
using scalar::HalveAcross;
using scalar::HalveDown;
using scalar::HalveDownOpaque;

#else

namespace hn = hwy::HWY_NAMESPACE;

using Fines = hn::CappedTag<Fine, kFineStep>;
using FineVector = hn::Vec<Fines>;
constexpr int kFineBits = 7;
static_assert(1 << kFineBits == kFineUnit);

using Pixels = hn::Repartition<std::uint32_t, Fines>; // two components of one half row

HWY_INLINE FineVector Average(FineVector a, FineVector b) {
    return hn::AverageRound(a, b);
}

HWY_INLINE FineVector Halved(FineVector a, FineVector b, FineVector c, FineVector d, FineVector e) {
    return Average(Average(b, d), Average(Average(Average(a, e), c), c));
}

HWY_INLINE FineVector OnPixel(FineVector a, FineVector b, FineVector c) {
    return Average(Average(Average(a, c), b), b);
}

void HalveDown(const Fine* const* rows, std::size_t count, Fine* out) {
    const Fines fines;
    for (std::size_t i = 0; i < count; i += hn::Lanes(fines)) {
        const auto row = [&](int k) HWY_ATTR { return hn::Load(fines, rows[k] + i); };
        hn::Store(Halved(row(0), row(1), row(2), row(3), row(4)), fines, out + i);
    }
}

void HalveDownOpaque(const std::uint8_t* const* rows, int width, Fine* out) {
    const Fines fines;
    const hn::Repartition<std::uint8_t, Fines> bytes;
    const auto whole = hn::Set(fines, 0xFF * kFineUnit);
    Fine* const upper = out + HalfLength(width);
    const std::uint8_t* from[5];
    std::copy_n(rows, 5, from);
    for (std::size_t i = 0; i < 2 * static_cast<std::size_t>(width); i += hn::Lanes(fines)) {
        FineVector lowers[5];
        FineVector uppers[5];
        HWY_UNROLL(5)
        for (int k = 0; k < 5; ++k) {
            auto both = hn::BitCast(fines, hn::LoadU(bytes, from[k] + 2 * i));
            KeepInRegister(both);
            lowers[k] = hn::And(hn::ShiftLeft<kFineBits>(both), whole);
            uppers[k] = hn::And(hn::ShiftRight<8 - kFineBits>(both), whole);
        }
        hn::Store(Halved(lowers[0], lowers[1], lowers[2], lowers[3], lowers[4]), fines, out + i);
        hn::Store(Halved(uppers[0], uppers[1], uppers[2], uppers[3], uppers[4]), fines, upper + i);
    }
}

void HalveAcross(const Fine* in, int width, Fine* out) {
    const Fines fines;
    const Pixels pixels;
    const std::size_t lanes = hn::Lanes(fines);
    for (const bool isUpper : {false, true}) {
        const Fine* const from = isUpper ? in + HalfLength(2 * width + 4) : in;
        Fine* const to = isUpper ? out + HalfLength(width) : out;
        for (std::size_t i = 0; i < 2 * static_cast<std::size_t>(width); i += lanes) {
            const auto pair = [&](std::size_t offset, FineVector& even, FineVector& odd) HWY_ATTR {
                const auto one = hn::BitCast(pixels, hn::LoadU(fines, from + 2 * i + offset));
                const auto next = hn::BitCast(pixels, hn::LoadU(fines, from + 2 * i + offset + lanes));
                even = hn::BitCast(fines, hn::ConcatEven(pixels, next, one));
                odd = hn::BitCast(fines, hn::ConcatOdd(pixels, next, one));
            };
            FineVector a;
            FineVector b;
            FineVector c;
            FineVector d;
            FineVector e;
            FineVector unused;
            pair(0, a, b);
            pair(4, c, d);
            pair(8, e, unused);
            hn::Store(Halved(a, b, c, d, e), fines, to + i);
        }
    }
}

template <bool kIsBetween>
HWY_INLINE FineVector Doubled(const Fine* const* rows, std::size_t i) {
    const Fines fines;
    const auto on = hn::Load(fines, rows[1] + i);
    const auto next = hn::Load(fines, rows[2] + i);
    if constexpr (kIsBetween) {
        return Average(on, next);
    } else {
        return OnPixel(hn::Load(fines, rows[0] + i), on, next);
    }
}

template <bool kIsBetween>
void DoubleRow(const Fine* const* rows, std::size_t count, Fine* out) {
    const Fines fines;
    for (std::size_t i = 0; i < count; i += hn::Lanes(fines)) {
        hn::Store(Doubled<kIsBetween>(rows, i), fines, out + i);
    }
}

void DoubleDown(const Fine* const* rows, bool isBetween, std::size_t count, Fine* out) {
    isBetween ? DoubleRow<true>(rows, count, out) : DoubleRow<false>(rows, count, out);
}

template <bool kIsBetween>
void DoubleToPixels(const Fine* const* rows, std::size_t half, const PixelTarget& target) {
    const Fines fines;
    const hn::Repartition<std::uint8_t, Fines> bytes;
    const auto rounding = hn::Set(fines, kFineUnit / 2);
    const auto whole = hn::Set(fines, 0xFF00);
    for (std::size_t i = 0; i < 2 * static_cast<std::size_t>(target.width); i += hn::Lanes(fines)) {
        const auto lower = hn::Add(Doubled<kIsBetween>(rows, i), rounding);
        const auto upper = hn::Add(Doubled<kIsBetween>(rows, half + i), rounding);
        const auto pixels = hn::BitCast(bytes, hn::Or(hn::ShiftRight<kFineBits>(lower),
                                                      hn::And(hn::ShiftLeft<8 - kFineBits>(upper), whole)));
        target.streams ? hn::Stream(pixels, bytes, target.pixels + 2 * i)
                       : hn::Store(pixels, bytes, target.pixels + 2 * i);
    }
}

void DoubleDownToPixels(const Fine* const* rows, bool isBetween, std::size_t half,
                        const PixelTarget& target) {
    isBetween ? DoubleToPixels<true>(rows, half, target) : DoubleToPixels<false>(rows, half, target);
}

void DoubleAcross(const Fine* in, int inWidth, int width, Fine* out) {
    const Fines fines;
    const Pixels pixels;
    for (const bool isUpper : {false, true}) {
        const Fine* const from = (isUpper ? in + HalfLength(inWidth) : in) + 2;
        Fine* const to = isUpper ? out + HalfLength(2 * width) : out;
        for (std::size_t i = 0; i < 2 * static_cast<std::size_t>(width); i += hn::Lanes(fines)) {
            const auto tap = [&](std::size_t k) HWY_ATTR { return hn::LoadU(fines, from + i + 2 * k); };
            const auto on = OnPixel(tap(0), tap(1), tap(2));
            const auto between = Average(tap(1), tap(2));
            hn::StoreInterleaved2(hn::BitCast(pixels, on), hn::BitCast(pixels, between), pixels,
                                  reinterpret_cast<std::uint32_t*>(to + 2 * i));
        }
    }
}

#endif

} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine::simd {

HWY_EXPORT(HalveDown);
HWY_EXPORT(HalveDownOpaque);
HWY_EXPORT(HalveAcross);
HWY_EXPORT(DoubleDown);
HWY_EXPORT(DoubleDownToPixels);
HWY_EXPORT(DoubleAcross);

void HalveDown(const Fine* const* rows, std::size_t count, Fine* out) {
    HWY_DYNAMIC_DISPATCH(HalveDown)(rows, count, out);
}

void HalveDownOpaque(const std::uint8_t* const* rows, int width, Fine* out) {
    HWY_DYNAMIC_DISPATCH(HalveDownOpaque)(rows, width, out);
}

void HalveAcross(const Fine* in, int width, Fine* out) {
    HWY_DYNAMIC_DISPATCH(HalveAcross)(in, width, out);
}

void DoubleDown(const Fine* const* rows, bool isBetween, std::size_t count, Fine* out) {
    HWY_DYNAMIC_DISPATCH(DoubleDown)(rows, isBetween, count, out);
}

void DoubleDownToPixels(const Fine* const* rows, bool isBetween, std::size_t half,
                        const PixelTarget& target) {
    HWY_DYNAMIC_DISPATCH(DoubleDownToPixels)(rows, isBetween, half, target);
}

void DoubleAcross(const Fine* in, int inWidth, int width, Fine* out) {
    HWY_DYNAMIC_DISPATCH(DoubleAcross)(in, inWidth, width, out);
}

} // namespace pictorel::engine::simd
#endif
