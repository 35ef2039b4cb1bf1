// Made pictures for the tests, see Pictures.h.
#include "support/Pictures.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <random>

namespace pictorel::test {

Pixel At(const PixelArray& picture, int x, int y) {
    Pixel pixel;
    std::memcpy(pixel.data(), picture.Row(y) + static_cast<std::ptrdiff_t>(x) * 4, pixel.size());
    return pixel;
}

void Set(PixelArray& picture, int x, int y, Pixel pixel) {
    std::memcpy(picture.WritableRows() + y * picture.Stride() + static_cast<std::ptrdiff_t>(x) * 4,
                pixel.data(), pixel.size());
}

PixelArray Draw(Size size, const std::function<Pixel(int, int)>& pixelAt, bool hasAlpha) {
    PixelArray picture(size.width, size.height);
    picture.SetHasAlpha(hasAlpha);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            Set(picture, x, y, pixelAt(x, y));
        }
    }
    return picture;
}

PixelArray Constant(Size size, Pixel pixel, bool hasAlpha) {
    return Draw(
        size, [=](int, int) { return pixel; }, hasAlpha || pixel[3] != 255);
}

PixelArray Random(Size size, Alpha alpha, unsigned seed) {
    std::mt19937 generator(seed);
    const auto component = [&] {
        const unsigned r = generator();
        return static_cast<std::uint8_t>((r & 0x700U) == 0 ? 0 : (r & 0x3800U) == 0 ? 255 : r & 255U);
    };
    const auto pixelAt = [&](int, int) {
        Pixel pixel{component(), component(), component(), 255};
        if (generator() % 8 == 0) {
            pixel[1] = pixel[2] = pixel[0];
        }
        if (alpha == Alpha::Random) {
            pixel[3] = component();
        }
        return pixel;
    };
    return Draw(size, pixelAt, alpha == Alpha::Random);
}

PixelArray Speckled(Size size, bool hasAlpha) {
    const auto pixelAt = [=](int x, int y) {
        const auto seed = static_cast<unsigned>(x * 7919 + y * 104729 + 17) * 2654435761U;
        const auto byte = [=](int shift) { return static_cast<std::uint8_t>(seed >> shift); };
        return Pixel{byte(24), byte(16), byte(8), hasAlpha ? byte(12) : std::uint8_t{255}};
    };
    return Draw(size, pixelAt, hasAlpha);
}

namespace {

// Photographs hold waves of every length, the shorter the weaker.
double Texture(int x, int y) {
    double sum = 0;
    double turn = 0.4;
    for (double frequency = 0.06; frequency < 2.5; frequency *= 1.3) {
        turn += 2.4; // the golden angle: no two waves run the same way
        sum += 0.5 / frequency * std::sin(frequency * (x * std::cos(turn) + y * std::sin(turn)) + turn);
    }
    return sum;
}

} // namespace

PixelArray PhotoLike(Size size) {
    return Draw(size, [=](int x, int y) {
        const double u = (x + 0.5) / size.width;
        const double v = (y + 0.5) / size.height;
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

::testing::AssertionResult SamePixels(const PixelArray& a, const PixelArray& b) {
    if (a.Width() != b.Width() || a.Height() != b.Height()) {
        return ::testing::AssertionFailure()
               << a.Width() << " x " << a.Height() << " against " << b.Width() << " x " << b.Height();
    }
    for (int y = 0; y < a.Height(); ++y) {
        for (int x = 0; x < a.Width(); ++x) {
            if (At(a, x, y) != At(b, x, y)) {
                return ::testing::AssertionFailure()
                       << "pixel (" << x << ", " << y << "): " << ::testing::PrintToString(At(a, x, y))
                       << " against " << ::testing::PrintToString(At(b, x, y));
            }
        }
    }
    return ::testing::AssertionSuccess();
}

::testing::AssertionResult Same(const PixelArray& a, const PixelArray& b) {
    if (a.HasAlpha() != b.HasAlpha() || a.Reduction() != b.Reduction() || a.Details() != b.Details()) {
        return ::testing::AssertionFailure() << "flags, reduction or details differ";
    }
    return SamePixels(a, b);
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
    const Pixel p = At(picture, x, y);
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

} // namespace pictorel::test
