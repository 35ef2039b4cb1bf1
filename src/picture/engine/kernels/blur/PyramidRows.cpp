// The loops that halve and double rows of pixels as plain loops, see PyramidRows.h.
#include "picture/engine/kernels/blur/PyramidRows.h"

namespace pictorel::engine::scalar {
namespace {

Fine Average(Fine a, Fine b) {
    return static_cast<Fine>((a + b + 1) / 2);
}

Fine Halved(Fine a, Fine b, Fine c, Fine d, Fine e) {
    return Average(Average(b, d), Average(Average(Average(a, e), c), c));
}

Fine OnPixel(Fine a, Fine b, Fine c) {
    return Average(Average(Average(a, c), b), b);
}

Fine Doubled(const Fine* const* rows, bool isBetween, std::size_t i) {
    return isBetween ? Average(rows[1][i], rows[2][i]) : OnPixel(rows[0][i], rows[1][i], rows[2][i]);
}

// Calls half(in, out) for both halves of a row.
template <class Half>
void ForBothHalves(const Fine* in, int inWidth, Fine* out, int outWidth, const Half& half) {
    half(in, out);
    half(in + HalfLength(inWidth), out + HalfLength(outWidth));
}

} // namespace

void HalveDown(const Fine* const* rows, std::size_t count, Fine* out) {
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = Halved(rows[0][i], rows[1][i], rows[2][i], rows[3][i], rows[4][i]);
    }
}

void HalveDownOpaque(const std::uint8_t* const* rows, int width, Fine* out) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(width) * PixelArray::kComponents; ++i) {
        const auto tap = [&](int k) { return static_cast<Fine>(rows[k][i] * kFineUnit); };
        out[i / 2 + i % 2 * HalfLength(width)] = Halved(tap(0), tap(1), tap(2), tap(3), tap(4));
    }
}

void HalveAcross(const Fine* in, int width, Fine* out) {
    ForBothHalves(in, 2 * width + 4, out, width, [&](const Fine* from, Fine* to) {
        for (std::size_t i = 0; i < static_cast<std::size_t>(width) * kFinesPerPixel; ++i) {
            const Fine* const tap = from + 2 * i - i % kFinesPerPixel;
            to[i] = Halved(tap[0], tap[2], tap[4], tap[6], tap[8]);
        }
    });
}

void DoubleDown(const Fine* const* rows, bool isBetween, std::size_t count, Fine* out) {
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = Doubled(rows, isBetween, i);
    }
}

void DoubleDownToPixels(const Fine* const* rows, bool isBetween, std::size_t half,
                        const PixelTarget& target) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(target.width) * PixelArray::kComponents; ++i) {
        const int fine = Doubled(rows, isBetween, i / 2 + i % 2 * half);
        target.pixels[i] = static_cast<std::uint8_t>((fine + kFineUnit / 2) / kFineUnit);
    }
}

void DoubleAcross(const Fine* in, int inWidth, int width, Fine* out) {
    ForBothHalves(in, inWidth, out, 2 * width, [&](const Fine* from, Fine* to) {
        for (std::size_t i = 0; i < static_cast<std::size_t>(width) * kFinesPerPixel; ++i) {
            const Fine* const tap = from + i + kFinesPerPixel;
            const std::size_t at = 2 * i - i % kFinesPerPixel;
            to[at] = OnPixel(tap[0], tap[kFinesPerPixel], tap[2 * kFinesPerPixel]);
            to[at + kFinesPerPixel] = Average(tap[kFinesPerPixel], tap[2 * kFinesPerPixel]);
        }
    });
}

} // namespace pictorel::engine::scalar
