// The loops that halve and double rows of pixels in vectors, see PyramidKernels.h.
#include "picture/engine/kernels/blur/PyramidKernels.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/blur/PyramidVectors.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
// After foreach_target.h, which includes this file once for each kind of vectors.
#include "picture/engine/kernels/base/KeepInRegister-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {
#if HWY_TARGET == HWY_SCALAR // vectors of one number: the processor has none that we know

const PyramidKernels& VectorKernels() {
    return PyramidKernels::Plain();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Wides = hn::CappedTag<Wide, kWideStep>;
using WideVector = hn::Vec<Wides>;

using Pixels = hn::Repartition<std::uint32_t, Wides>; // two components of one half row

HWY_INLINE WideVector Average(WideVector a, WideVector b) {
    return hn::AverageRound(a, b);
}

HWY_INLINE WideVector Halved(WideVector a, WideVector b, WideVector c, WideVector d, WideVector e) {
    return Average(Average(b, d), Average(Average(Average(a, e), c), c));
}

HWY_INLINE WideVector OnPixel(WideVector a, WideVector b, WideVector c) {
    return Average(Average(Average(a, c), b), b);
}

void HalveDown(const Wide* const* rows, std::size_t count, Wide* out) {
    const Wides wides;
    for (std::size_t i = 0; i < count; i += hn::Lanes(wides)) {
        const auto row = [&](int k) HWY_ATTR { return hn::Load(wides, rows[k] + i); };
        hn::Store(Halved(row(0), row(1), row(2), row(3), row(4)), wides, out + i);
    }
}

void HalveDownOpaque(const std::uint8_t* const* rows, int width, Wide* out) {
    const Wides wides;
    const hn::Repartition<std::uint8_t, Wides> bytes;
    const auto whole = hn::Set(wides, 0xFF * kWideUnit);
    Wide* const upper = out + HalfLength(width);
    const std::uint8_t* from[5];
    std::copy_n(rows, 5, from);
    for (std::size_t i = 0; i < 2 * static_cast<std::size_t>(width); i += hn::Lanes(wides)) {
        WideVector lowers[5];
        WideVector uppers[5];
        HWY_UNROLL(5)
        for (int k = 0; k < 5; ++k) {
            auto both = hn::BitCast(wides, hn::LoadU(bytes, from[k] + 2 * i));
            KeepInRegister(both);
            lowers[k] = hn::And(hn::ShiftLeft<kWideBits>(both), whole);
            uppers[k] = hn::And(hn::ShiftRight<8 - kWideBits>(both), whole);
        }
        hn::Store(Halved(lowers[0], lowers[1], lowers[2], lowers[3], lowers[4]), wides, out + i);
        hn::Store(Halved(uppers[0], uppers[1], uppers[2], uppers[3], uppers[4]), wides, upper + i);
    }
}

void HalveAcross(const Wide* in, int width, Wide* out) {
    const Wides wides;
    const Pixels pixels;
    const std::size_t lanes = hn::Lanes(wides);
    for (const bool isUpper : {false, true}) {
        const Wide* const from = isUpper ? in + HalfLength(2 * width + 4) : in;
        Wide* const to = isUpper ? out + HalfLength(width) : out;
        for (std::size_t i = 0; i < 2 * static_cast<std::size_t>(width); i += lanes) {
            const auto pair = [&](std::size_t offset, WideVector& even, WideVector& odd) HWY_ATTR {
                const auto one = hn::BitCast(pixels, hn::LoadU(wides, from + 2 * i + offset));
                const auto next = hn::BitCast(pixels, hn::LoadU(wides, from + 2 * i + offset + lanes));
                even = hn::BitCast(wides, hn::ConcatEven(pixels, next, one));
                odd = hn::BitCast(wides, hn::ConcatOdd(pixels, next, one));
            };
            WideVector a;
            WideVector b;
            WideVector c;
            WideVector d;
            WideVector e;
            WideVector unused;
            pair(0, a, b);
            pair(4, c, d);
            pair(8, e, unused);
            hn::Store(Halved(a, b, c, d, e), wides, to + i);
        }
    }
}

template <bool kIsBetween>
HWY_INLINE WideVector Doubled(const Wide* const* rows, std::size_t i) {
    const Wides wides;
    const auto on = hn::Load(wides, rows[1] + i);
    const auto next = hn::Load(wides, rows[2] + i);
    if constexpr (kIsBetween) {
        return Average(on, next);
    } else {
        return OnPixel(hn::Load(wides, rows[0] + i), on, next);
    }
}

template <bool kIsBetween>
void DoubleRow(const Wide* const* rows, std::size_t count, Wide* out) {
    const Wides wides;
    for (std::size_t i = 0; i < count; i += hn::Lanes(wides)) {
        hn::Store(Doubled<kIsBetween>(rows, i), wides, out + i);
    }
}

void DoubleDown(const Wide* const* rows, bool isBetween, std::size_t count, Wide* out) {
    isBetween ? DoubleRow<true>(rows, count, out) : DoubleRow<false>(rows, count, out);
}

template <bool kIsBetween>
void DoubleToPixels(const Wide* const* rows, std::size_t half, const PixelTarget& target) {
    const Wides wides;
    const hn::Repartition<std::uint8_t, Wides> bytes;
    const auto rounding = hn::Set(wides, kWideUnit / 2);
    const auto whole = hn::Set(wides, 0xFF00);
    for (std::size_t i = 0; i < 2 * static_cast<std::size_t>(target.width); i += hn::Lanes(wides)) {
        const auto lower = hn::Add(Doubled<kIsBetween>(rows, i), rounding);
        const auto upper = hn::Add(Doubled<kIsBetween>(rows, half + i), rounding);
        const auto pixels = hn::BitCast(bytes, hn::Or(hn::ShiftRight<kWideBits>(lower),
                                                      hn::And(hn::ShiftLeft<8 - kWideBits>(upper), whole)));
        target.streams ? hn::Stream(pixels, bytes, target.pixels + 2 * i)
                       : hn::Store(pixels, bytes, target.pixels + 2 * i);
    }
}

void DoubleDownToPixels(const Wide* const* rows, bool isBetween, std::size_t half,
                        const PixelTarget& target) {
    isBetween ? DoubleToPixels<true>(rows, half, target) : DoubleToPixels<false>(rows, half, target);
}

void DoubleAcross(const Wide* in, int inWidth, int width, Wide* out) {
    const Wides wides;
    const Pixels pixels;
    for (const bool isUpper : {false, true}) {
        const Wide* const from = (isUpper ? in + HalfLength(inWidth) : in) + 2;
        Wide* const to = isUpper ? out + HalfLength(2 * width) : out;
        for (std::size_t i = 0; i < 2 * static_cast<std::size_t>(width); i += hn::Lanes(wides)) {
            const auto tap = [&](std::size_t k) HWY_ATTR { return hn::LoadU(wides, from + i + 2 * k); };
            const auto on = OnPixel(tap(0), tap(1), tap(2));
            const auto between = Average(tap(1), tap(2));
            hn::StoreInterleaved2(hn::BitCast(pixels, on), hn::BitCast(pixels, between), pixels,
                                  reinterpret_cast<std::uint32_t*>(to + 2 * i));
        }
    }
}

const PyramidKernels& VectorKernels() {
    static constexpr PyramidKernels kKernels{
        .HalveDown = HalveDown,
        .HalveDownOpaque = HalveDownOpaque,
        .HalveAcross = HalveAcross,
        .DoubleDown = DoubleDown,
        .DoubleDownToPixels = DoubleDownToPixels,
        .DoubleAcross = DoubleAcross,
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

const PyramidKernels& PyramidKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
