// Small pictures for tests, see WarpTestPictures.h.
#include "picture/engine/WarpTestPictures.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace pictorel::testing {

Pixel PixelAt(const PixelArray& picture, int x, int y) {
    Pixel pixel;
    std::memcpy(pixel.data(), picture.Row(y) + x * 4, pixel.size());
    return pixel;
}

void SetPixel(PixelArray& picture, int x, int y, Pixel pixel) {
    std::memcpy(picture.WritableRows() + y * picture.Stride() + x * 4, pixel.data(), pixel.size());
}

PixelArray Drawn(int width, int height, const std::function<Pixel(int, int)>& pixelOf, bool hasAlpha) {
    PixelArray picture(width, height);
    picture.SetHasAlpha(hasAlpha);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            SetPixel(picture, x, y, pixelOf(x, y));
        }
    }
    return picture;
}

PixelArray Filled(int width, int height, Pixel pixel, bool hasAlpha) {
    return Drawn(
        width, height, [=](int, int) { return pixel; }, hasAlpha);
}

PixelArray Speckled(int width, int height, bool hasAlpha) {
    return Drawn(
        width, height,
        [=](int x, int y) {
            const auto seed = static_cast<unsigned>(x * 7919 + y * 104729 + 17) * 2654435761U;
            const auto byte = [=](int shift) { return static_cast<std::uint8_t>(seed >> shift); };
            return Pixel{byte(24), byte(16), byte(8), hasAlpha ? byte(12) : std::uint8_t{255}};
        },
        hasAlpha);
}

// Photographs hold waves of every length, the shorter the weaker.
static double Texture(int x, int y) {
    double sum = 0;
    double turn = 0.4;
    for (double frequency = 0.06; frequency < 2.5; frequency *= 1.3) {
        turn += 2.4; // the golden angle: no two waves run the same way
        sum += 0.5 / frequency * std::sin(frequency * (x * std::cos(turn) + y * std::sin(turn)) + turn);
    }
    return sum;
}

PixelArray PhotoLike(int width, int height) {
    return Drawn(width, height, [=](int x, int y) {
        const double u = (x + 0.5) / width;
        const double v = (y + 0.5) / height;
        const bool isInDisc = std::hypot(u - 0.3, v - 0.6) < 0.2;
        const double soft = 128 + 80 * std::sin(5 * u + 2 * v) * std::cos(7 * v - u);
        const double texture = Texture(x, y);
        const auto byte = [](double value) {
            return static_cast<std::uint8_t>(std::clamp(value, 0.0, 255.0));
        };
        return Pixel{byte(soft + texture), byte((isInDisc ? 210 : soft) + texture),
                     byte(255 * u + texture - (isInDisc ? 60 : 0)), 255};
    });
}

::testing::AssertionResult Same(const PixelArray& a, const PixelArray& b) {
    if (a.Width() != b.Width() || a.Height() != b.Height()) {
        return ::testing::AssertionFailure()
               << a.Width() << " x " << a.Height() << " against " << b.Width() << " x " << b.Height();
    }
    if (a.HasAlpha() != b.HasAlpha() || a.Reduction() != b.Reduction() || a.Details() != b.Details()) {
        return ::testing::AssertionFailure() << "flags, reduction or details differ";
    }
    for (int y = 0; y < a.Height(); ++y) {
        for (int x = 0; x < a.Width(); ++x) {
            if (PixelAt(a, x, y) != PixelAt(b, x, y)) {
                return ::testing::AssertionFailure()
                       << "pixel (" << x << ", " << y << "): " << ::testing::PrintToString(PixelAt(a, x, y))
                       << " against " << ::testing::PrintToString(PixelAt(b, x, y));
            }
        }
    }
    return ::testing::AssertionSuccess();
}

int LargestDifference(const PixelArray& a, const PixelArray& b) {
    int largest = 0;
    for (int y = 0; y < a.Height(); ++y) {
        for (std::size_t i = 0; i < a.RowBytes(); ++i) {
            largest = std::max(largest, std::abs(a.Row(y)[i] - b.Row(y)[i]));
        }
    }
    return largest;
}

namespace {

double LumaAt(const PixelArray& picture, int x, int y) {
    const Pixel p = PixelAt(picture, x, y);
    return 0.0722 * p[0] + 0.7152 * p[1] + 0.2126 * p[2];
}

double WindowSimilarity(const PixelArray& a, const PixelArray& b, int left, int top, int side) {
    double sumA = 0;
    double sumB = 0;
    double sumAA = 0;
    double sumBB = 0;
    double sumAB = 0;
    for (int y = top; y < top + side; ++y) {
        for (int x = left; x < left + side; ++x) {
            const double lumaA = LumaAt(a, x, y);
            const double lumaB = LumaAt(b, x, y);
            sumA += lumaA;
            sumB += lumaB;
            sumAA += lumaA * lumaA;
            sumBB += lumaB * lumaB;
            sumAB += lumaA * lumaB;
        }
    }
    const double n = side * side;
    const double meanA = sumA / n;
    const double meanB = sumB / n;
    const double c1 = std::pow(0.01 * 255, 2);
    const double c2 = std::pow(0.03 * 255, 2);
    return (2 * meanA * meanB + c1) * (2 * (sumAB / n - meanA * meanB) + c2) /
           ((meanA * meanA + meanB * meanB + c1) *
            (sumAA / n - meanA * meanA + sumBB / n - meanB * meanB + c2));
}

} // namespace

double StructuralSimilarity(const PixelArray& a, const PixelArray& b) {
    constexpr int kSide = 8;
    double sum = 0;
    int windows = 0;
    for (int top = 0; top + kSide <= a.Height(); top += 2) {
        for (int left = 0; left + kSide <= a.Width(); left += 2) {
            sum += WindowSimilarity(a, b, left, top, kSide);
            ++windows;
        }
    }
    return sum / windows;
}

double MeanOfComponent(const PixelArray& picture, int component) {
    double sum = 0;
    for (int y = 0; y < picture.Height(); ++y) {
        for (int x = 0; x < picture.Width(); ++x) {
            sum += picture.Row(y)[x * 4 + component];
        }
    }
    return sum / picture.Width() / picture.Height();
}

} // namespace pictorel::testing
