// The loops that halve and double rows of pixels as plain loops, see PyramidKernels.h.
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/blur/PyramidKernels.h"

namespace pictorel::engine {
namespace {

Wide Average(Wide a, Wide b) {
    return static_cast<Wide>((a + b + 1) / 2);
}

Wide Halved(Wide a, Wide b, Wide c, Wide d, Wide e) {
    return Average(Average(b, d), Average(Average(Average(a, e), c), c));
}

Wide OnPixel(Wide a, Wide b, Wide c) {
    return Average(Average(Average(a, c), b), b);
}

Wide Doubled(const Wide* const* rows, bool isBetween, std::size_t i) {
    return isBetween ? Average(rows[1][i], rows[2][i]) : OnPixel(rows[0][i], rows[1][i], rows[2][i]);
}

// Calls half(in, out) for both halves of a row.
template <class Half>
void ForBothHalves(const Wide* in, int inWidth, Wide* out, int outWidth, const Half& half) {
    half(in, out);
    half(in + HalfLength(inWidth), out + HalfLength(outWidth));
}

void HalveDown(const Wide* const* rows, std::size_t count, Wide* out) {
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = Halved(rows[0][i], rows[1][i], rows[2][i], rows[3][i], rows[4][i]);
    }
}

void HalveDownOpaque(const std::uint8_t* const* rows, int width, Wide* out) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(width) * kComponents; ++i) {
        const auto tap = [&](int k) { return static_cast<Wide>(rows[k][i] * kWideUnit); };
        out[i / 2 + i % 2 * HalfLength(width)] = Halved(tap(0), tap(1), tap(2), tap(3), tap(4));
    }
}

void HalveAcross(const Wide* in, int width, Wide* out) {
    ForBothHalves(in, 2 * width + 4, out, width, [&](const Wide* from, Wide* to) {
        for (std::size_t i = 0; i < static_cast<std::size_t>(width) * kWidesPerPixel; ++i) {
            const Wide* const tap = from + 2 * i - i % kWidesPerPixel;
            to[i] = Halved(tap[0], tap[2], tap[4], tap[6], tap[8]);
        }
    });
}

void DoubleDown(const Wide* const* rows, bool isBetween, std::size_t count, Wide* out) {
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = Doubled(rows, isBetween, i);
    }
}

void DoubleDownToPixels(const Wide* const* rows, bool isBetween, std::size_t half,
                        const PixelTarget& target) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(target.width) * kComponents; ++i) {
        const int wide = Doubled(rows, isBetween, i / 2 + i % 2 * half);
        target.pixels[i] = static_cast<std::uint8_t>((wide + kWideUnit / 2) / kWideUnit);
    }
}

void DoubleAcross(const Wide* in, int inWidth, int width, Wide* out) {
    ForBothHalves(in, inWidth, out, 2 * width, [&](const Wide* from, Wide* to) {
        for (std::size_t i = 0; i < static_cast<std::size_t>(width) * kWidesPerPixel; ++i) {
            const Wide* const tap = from + i + kWidesPerPixel;
            const std::size_t at = 2 * i - i % kWidesPerPixel;
            to[at] = OnPixel(tap[0], tap[kWidesPerPixel], tap[2 * kWidesPerPixel]);
            to[at + kWidesPerPixel] = Average(tap[kWidesPerPixel], tap[2 * kWidesPerPixel]);
        }
    });
}

constexpr PyramidKernels kPlain{
    .HalveDown = HalveDown,
    .HalveDownOpaque = HalveDownOpaque,
    .HalveAcross = HalveAcross,
    .DoubleDown = DoubleDown,
    .DoubleDownToPixels = DoubleDownToPixels,
    .DoubleAcross = DoubleAcross,
};

} // namespace

const PyramidKernels& PyramidKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
