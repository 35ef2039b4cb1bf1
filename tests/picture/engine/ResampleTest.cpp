// Resizing against a plain double-precision reference, and what must hold whatever the sizes.
#include "picture/ImagingError.h"
#include "picture/engine/Resample.h"
#include "support/Pictures.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <ostream>

namespace pictorel::engine {
namespace {

using test::At;
using test::Constant;
using test::Draw;
using test::Pixel;
using test::Same;
using test::Speckled;

double Lanczos3(double x) {
    const double a = std::numbers::pi * x;
    if (std::abs(x) >= 3) {
        return 0;
    }
    return std::abs(x) < 1e-9 ? 1 : std::sin(a) / a * std::sin(a / 3) / (a / 3);
}

// One result pixel as one sum over the whole source, in double precision.
Pixel ReferencePixel(const PixelArray& source, int width, int height, int x, int y) {
    const double scaleX = std::max(1.0, static_cast<double>(source.Width()) / width);
    const double scaleY = std::max(1.0, static_cast<double>(source.Height()) / height);
    const double centreX = (x + 0.5) * source.Width() / width;
    const double centreY = (y + 0.5) * source.Height() / height;
    double weights = 0;
    std::array<double, 4> sums{};
    for (int sy = 0; sy < source.Height(); ++sy) {
        for (int sx = 0; sx < source.Width(); ++sx) {
            const double weight =
                Lanczos3((sx + 0.5 - centreX) / scaleX) * Lanczos3((sy + 0.5 - centreY) / scaleY);
            const Pixel p = At(source, sx, sy);
            weights += weight;
            for (int c = 0; c < 3; ++c) {
                sums[c] += weight * p[c] * p[3];
            }
            sums[3] += weight * p[3];
        }
    }
    const auto byte = [](double value) {
        return static_cast<std::uint8_t>(std::clamp(std::round(value), 0.0, 255.0));
    };
    const Pixel pixel{byte(sums[0] / sums[3]), byte(sums[1] / sums[3]), byte(sums[2] / sums[3]),
                      byte(sums[3] / weights)};
    return pixel[3] == 0 ? Pixel{} : pixel;
}

struct Sizes {
    int fromWidth, fromHeight, toWidth, toHeight;
};

void PrintTo(const Sizes& s, std::ostream* out) {
    *out << s.fromWidth << " x " << s.fromHeight << " to " << s.toWidth << " x " << s.toHeight;
}

class ResizeOf : public ::testing::TestWithParam<Sizes> {};

TEST_P(ResizeOf, AgreesWithTheReference) {
    const Sizes s = GetParam();
    for (const bool hasAlpha : {false, true}) {
        const PixelArray source = Speckled({s.fromWidth, s.fromHeight}, hasAlpha);
        const PixelArray result = Resize(source, s.toWidth, s.toHeight);
        ASSERT_EQ(result.Width(), s.toWidth);
        ASSERT_EQ(result.Height(), s.toHeight);
        const PixelArray reference = Draw({s.toWidth, s.toHeight}, [&](int x, int y) {
            return ReferencePixel(source, s.toWidth, s.toHeight, x, y);
        });
        for (int y = 0; y < s.toHeight; ++y) {
            for (int x = 0; x < s.toWidth; ++x) {
                const Pixel a = At(result, x, y);
                const Pixel b = At(reference, x, y);
                ASSERT_NEAR(a[3], b[3], 1);
                // Where next to nothing is seen the colour is the quotient of two tiny numbers.
                for (int c = 0; c < 3 && b[3] > 1; ++c) {
                    ASSERT_NEAR(a[c], b[c], 1) << x << ", " << y;
                }
            }
        }
    }
}

TEST_P(ResizeOf, EvenPicturesStayEven) {
    const Sizes s = GetParam();
    for (const Pixel colour : {Pixel{0, 1, 254, 255}, Pixel{255, 128, 77, 255}, Pixel{200, 100, 50, 90}}) {
        const bool hasAlpha = colour[3] != 255;
        const PixelArray result =
            Resize(Constant({s.fromWidth, s.fromHeight}, colour, hasAlpha), s.toWidth, s.toHeight);
        EXPECT_TRUE(Same(result, Constant({s.toWidth, s.toHeight}, colour, hasAlpha)));
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, ResizeOf,
                         ::testing::Values(Sizes{17, 11, 8, 5}, Sizes{17, 11, 31, 40}, Sizes{17, 11, 5, 29},
                                           Sizes{1, 1, 9, 4}, Sizes{1, 13, 1, 5}, Sizes{13, 1, 40, 1},
                                           Sizes{63, 57, 1, 1}, Sizes{64, 48, 16, 12}, Sizes{64, 48, 64, 7},
                                           Sizes{2, 2, 3, 7}, Sizes{2, 2, 26, 26}, Sizes{301, 7, 2, 2},
                                           Sizes{9, 400, 9, 3}));

TEST(Resize, SameSizeIsTheSourceItself) {
    const PixelArray picture = Speckled({6, 5}, true);
    EXPECT_TRUE(Resize(picture, 6, 5).SharesPixelsWith(picture));
}

TEST(Resize, CarriesWhatThePictureSays) {
    PixelArray picture = Speckled({6, 5}, true);
    Metadata details;
    details.icc = {9};
    picture.SetDetails(details);
    picture.SetReduction(0.25);
    const PixelArray result = Resize(picture, 3, 9);
    EXPECT_TRUE(result.HasAlpha());
    EXPECT_EQ(result.Reduction(), 0.25);
    EXPECT_EQ(result.Details(), details);
}

TEST(Resize, TransparentBlackDoesNotDarken) {
    const PixelArray picture = Draw(
        {48, 48},
        [](int x, int y) {
            return (x / 5 + y / 7) % 2 == 0 ? Pixel{255, 255, 255, 255} : Pixel{0, 0, 0, 0};
        },
        true);
    for (const int side : {7, 31, 100}) {
        const PixelArray result = Resize(picture, side, side);
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x) {
                const Pixel p = At(result, x, y);
                EXPECT_TRUE(p[3] == 0 || p[0] == 255) << side << ": " << x << ", " << y;
            }
        }
    }
}

TEST(Resize, HugeReductionsAndNarrowPictures) {
    const PixelArray wide = Draw({6000, 3}, [](int x, int) {
        return x < 3000 ? Pixel{0, 0, 0, 255} : Pixel{255, 255, 255, 255};
    });
    const PixelArray two = Resize(wide, 2, 1);
    EXPECT_LT(At(two, 0, 0)[0], 30);
    EXPECT_GT(At(two, 1, 0)[0], 225);
    EXPECT_EQ(Resize(Speckled({1, 1}), kMaximumSide, 1).Width(), kMaximumSide);
}

// Larger than one band: the seams between bands must not show.
TEST(Resize, BandsFitTogether) {
    const PixelArray picture = Draw({1300, 900}, [](int x, int y) {
        return Pixel{static_cast<std::uint8_t>(x / 6), static_cast<std::uint8_t>(y / 4), 90, 255};
    });
    const PixelArray result = Resize(picture, 650, 450);
    for (int y = 4; y < 446; ++y) {
        ASSERT_NEAR(At(result, 300, y)[1], (2 * y + 0.5) / 4, 1.01);
        ASSERT_EQ(At(result, 300, y)[0], 100);
    }
}

TEST(Resize, ImpossibleSizesAreRefused) {
    const PixelArray picture = Speckled({6, 5});
    EXPECT_THROW(Resize(picture, 0, 5), ImagingError);
    EXPECT_THROW(Resize(picture, 6, -1), ImagingError);
    EXPECT_THROW(Resize(picture, 6, kMaximumSide + 1), ImagingError);
    EXPECT_THROW(Resize(PixelArray(), 6, 5), ImagingError);
}

} // namespace
} // namespace pictorel::engine
