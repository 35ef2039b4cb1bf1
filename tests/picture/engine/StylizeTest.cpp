// Noise, diffuse, mosaic, emboss and halftone: values worked out by hand, and statistics.
#include "picture/ImagingError.h"
#include "picture/engine/Geometry.h"
#include "picture/engine/Stylize.h"
#include "support/Pictures.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace pictorel::engine {
namespace {

using test::Alpha;
using test::At;
using test::Constant;
using test::Draw;
using test::MeanOfComponent;
using test::Pixel;
using test::Same;
using test::Speckled;

Pixel Grey(double value) {
    const auto byte = static_cast<std::uint8_t>(std::lround(value));
    return {byte, byte, byte, 255};
}

TEST(NeutralStylize, GivesBackTheSourceItself) {
    const PixelArray picture = Speckled({5, 3}, true);
    for (const PixelArray& result : {Noise(picture, 0), Diffuse(picture, 2, 0), Diffuse(picture, 0, 50),
                                     Mosaic(picture, 0), Mosaic(picture, 1)}) {
        EXPECT_TRUE(result.SharesPixelsWith(picture));
    }
}

TEST(StylizeParameters, ImpossibleOnesAreRefused) {
    const PixelArray picture = Speckled({5, 3});
    EXPECT_THROW(Noise(picture, -1), ImagingError);
    EXPECT_THROW(Noise(picture, 101), ImagingError);
    EXPECT_THROW(Diffuse(picture, -1, 10), ImagingError);
    EXPECT_THROW(Diffuse(picture, 2, std::nan("")), ImagingError);
    EXPECT_THROW(Mosaic(picture, -2), ImagingError);
    EXPECT_THROW(Emboss(picture, INFINITY, 4, 2), ImagingError);
    EXPECT_THROW(Halftone(picture, -1, 1), ImagingError);
    EXPECT_THROW(Emboss(PixelArray(), 10, 4, 2), ImagingError);
    EXPECT_THROW(Halftone(PixelArray(), 1, 1), ImagingError);
}

// Alpha stays, and the top left part of a picture gets what it gets alone: results depend on the position and
// not on how the work was divided.
TEST(StylizePosition, PartsAreTreatedAsTheWhole) {
    const PixelArray whole = Speckled({900, 701}, true);
    const PixelArray part = Draw(
        {120, 90}, [&](int x, int y) { return At(whole, x, y); }, true);
    const std::function<PixelArray(const PixelArray&)> operations[] = {
        [](const PixelArray& p) { return Noise(p, 30); },
        [](const PixelArray& p) { return Diffuse(p, 2, 70); },
        [](const PixelArray& p) { return Mosaic(p, 7); },
        [](const PixelArray& p) { return Emboss(p, 30, 4, 2); },
        [](const PixelArray& p) { return Halftone(p, 2, 1.1); },
    };
    for (const auto& operation : operations) {
        const PixelArray ofWhole = operation(whole);
        const PixelArray ofPart = operation(part);
        for (int y = 0; y < 80; ++y) {
            for (int x = 0; x < 110; ++x) {
                ASSERT_EQ(At(ofPart, x, y), At(ofWhole, x, y)) << x << ", " << y;
            }
        }
        EXPECT_TRUE(ofWhole.HasAlpha());
    }
    for (const auto& keepsAlpha : {operations[0], operations[3], operations[4]}) {
        EXPECT_EQ(At(keepsAlpha(part), 20, 30)[3], At(part, 20, 30)[3]);
    }
}

// A part that says where in the picture it lies gets what the picture gets there, but for the blocks and
// neighbours that its border cuts.
TEST(StylizePosition, APartKnowsItsPlace) {
    const PixelArray whole = Speckled({640, 500}, true);
    constexpr Window kPart{301, 157, 130, 120};
    PixelArray part = Crop(whole, kPart);
    part.SetCornerInPicture(kPart.left, kPart.top);
    const std::function<PixelArray(const PixelArray&)> operations[] = {
        [](const PixelArray& p) { return Noise(p, 30); },
        [](const PixelArray& p) { return Diffuse(p, 2, 70); },
        [](const PixelArray& p) { return Mosaic(p, 9); },
    };
    constexpr Window kInside{10, 10, 110, 100};
    for (const auto& operation : operations) {
        const PixelArray expected =
            Crop(operation(whole), {kPart.left + 10, kPart.top + 10, kInside.width, kInside.height});
        EXPECT_LE(test::LargestDifference(Crop(operation(part), kInside), expected), 1);
    }
}

TEST(NoiseStatistics, EvenlySpreadIndependentAndCentred) {
    const PixelArray noisy = Noise(Constant({300, 300}, {128, 128, 128, 255}), 20);
    double mean = 0;
    double variance = 0;
    double acrossChannels = 0;
    double acrossPixels = 0;
    int lowest = 0;
    int highest = 0;
    for (int y = 0; y < 300; ++y) {
        for (int x = 0; x < 300; ++x) {
            const Pixel p = At(noisy, x, y);
            const int n = p[0] - 128;
            mean += n;
            variance += n * n;
            acrossChannels += n * (p[1] - 128);
            acrossPixels += n * (At(noisy, (x + 1) % 300, y)[0] - 128);
            lowest = std::min(lowest, n);
            highest = std::max(highest, n);
        }
    }
    const double pixels = 300 * 300;
    const double amplitude = 51; // 20 % of 255
    EXPECT_NEAR(mean / pixels, 0, 0.4);
    EXPECT_NEAR(std::sqrt(variance / pixels), amplitude / std::sqrt(3), 0.4);
    EXPECT_NEAR(acrossChannels / variance, 0, 0.02);
    EXPECT_NEAR(acrossPixels / variance, 0, 0.02);
    EXPECT_EQ(lowest, -51);
    EXPECT_EQ(highest, 51);
}

// Where the noise of the picture is clipped, its mean follows the random numbers less closely.
TEST(NoiseStatistics, ReducedCopyShowsTheMeanOfTheNoise) {
    struct Case {
        int value;
        int tolerance; // levels
    };
    for (const Case& c : {Case{128, 1}, Case{60, 4}, Case{0, 10}, Case{255, 10}}) {
        const PixelArray whole = Noise(Constant({400, 400}, Grey(c.value)), 40);
        PixelArray copy = Constant({40, 40}, Grey(c.value));
        copy.SetReduction(0.1);
        const PixelArray reduced = Noise(copy, 40);
        EXPECT_NEAR(MeanOfComponent(reduced, 1), MeanOfComponent(whole, 1), 0.7) << c.value;
        for (int y = 0; y < 40; ++y) {
            for (int x = 0; x < 40; ++x) {
                double sum = 0;
                for (int i = 0; i < 100; ++i) {
                    sum += At(whole, 10 * x + i % 10, 10 * y + i / 10)[1];
                }
                ASSERT_NEAR(At(reduced, x, y)[1], sum / 100, c.tolerance) << c.value;
            }
        }
    }
}

TEST(Diffuse, TakesNeighboursWithTheGivenProbability) {
    // Each pixel tells its position.
    const PixelArray picture = Draw({200, 200}, [](int x, int y) {
        return Pixel{static_cast<std::uint8_t>(x), static_cast<std::uint8_t>(y), 7, 255};
    });
    for (const double percent : {25.0, 100.0}) {
        const PixelArray result = Diffuse(picture, 2, percent);
        int moved = 0;
        std::array<int, 5> across{};
        for (int y = 0; y < 200; ++y) {
            for (int x = 0; x < 200; ++x) {
                const int dx = At(result, x, y)[0] - x;
                const int dy = At(result, x, y)[1] - y;
                ASSERT_LE(std::abs(dx), 2);
                ASSERT_LE(std::abs(dy), 2);
                moved += dx != 0 || dy != 0 ? 1 : 0;
                ++across.at(dx + 2);
            }
        }
        // The pixel itself is one of its 25 neighbours.
        EXPECT_NEAR(moved / 40000.0, percent / 100 * 24 / 25, 0.01);
        EXPECT_NEAR(across[0] / 40000.0, percent / 100 / 5, 0.01);
        EXPECT_NEAR(across[4] / 40000.0, percent / 100 / 5, 0.01);
    }
}

TEST(Mosaic, BlocksHaveTheirMean) {
    const PixelArray picture = Draw({5, 3}, [](int x, int y) { return Grey(10 * x + 50 * y); });
    const PixelArray result = Mosaic(picture, 2);
    // Blocks of 2 x 2, the last column 1 x 2, the last row 2 x 1 and 1 x 1.
    EXPECT_EQ(At(result, 1, 1), Grey(30));
    EXPECT_EQ(At(result, 2, 0), Grey(50));
    EXPECT_EQ(At(result, 4, 1), Grey(65));
    EXPECT_EQ(At(result, 0, 2), Grey(105));
    EXPECT_EQ(At(result, 4, 2), Grey(140));
    EXPECT_EQ(At(Mosaic(picture, 500), 4, 2), Grey(70));
}

// Up to the sizes whose sums are as large as they get, and beyond.
TEST(Mosaic, EverySizeHasExactMeans) {
    const PixelArray picture =
        Draw({520, 300}, [](int x, int y) { return x < 260 ? Grey(255) : Grey((x * 37 + y * 91) % 256); });
    for (const int size : {2, 3, 7, 50, 256, 257, 258}) {
        const PixelArray result = Mosaic(picture, size);
        for (int top = 0; top < picture.Height(); top += size) {
            for (int left = 0; left < picture.Width(); left += size) {
                const int right = std::min(left + size, picture.Width());
                const int bottom = std::min(top + size, picture.Height());
                int sum = 0;
                for (int y = top; y < bottom; ++y) {
                    for (int x = left; x < right; ++x) {
                        sum += picture.Row(y)[4 * x];
                    }
                }
                const int pixels = (right - left) * (bottom - top);
                const int mean = (sum + pixels / 2) / pixels;
                ASSERT_EQ(At(result, right - 1, bottom - 1), Grey(mean))
                    << "size " << size << " at " << left << ", " << top;
            }
        }
    }
}

TEST(Mosaic, ClearPixelsGiveNoColour) {
    const PixelArray picture = Draw(
        {4, 2},
        [](int x, int) {
            return x % 2 == 0 ? Pixel{200, 100, 40, 255} : Pixel{0, 0, 0, 0};
        },
        true);
    EXPECT_EQ(At(Mosaic(picture, 2), 3, 1), (Pixel{200, 100, 40, 128}));
}

TEST(Emboss, SlopesTowardsTheLightAreBright) {
    // Luma rises by 6 a column: over a height of 4 px that is 24.
    const PixelArray ramp = Draw({31, 9}, [](int x, int) { return Grey(6 * x); });
    EXPECT_EQ(At(Emboss(ramp, 0, 4, 2), 15, 4), Grey(128 + 48));
    EXPECT_EQ(At(Emboss(ramp, 180, 4, 2), 15, 4), Grey(128 - 48));
    EXPECT_EQ(At(Emboss(ramp, 90, 4, 2), 15, 4), Grey(128));
    EXPECT_EQ(At(Emboss(ramp, 60, 4, 2), 15, 4), Grey(128 + 24));
    EXPECT_EQ(At(Emboss(ramp, 0, 3, 1), 15, 4), Grey(128 + 18));
    // At the border the picture goes on as its edge.
    EXPECT_EQ(At(Emboss(ramp, 0, 4, 2), 0, 4), Grey(128 + 24));
    EXPECT_EQ(At(Emboss(ramp, 0, 4, 0), 15, 4), Grey(128));
    // Light from above: brighter above is towards the light.
    const PixelArray fall = Draw({9, 31}, [](int, int y) { return Grey(186 - 6 * y); });
    EXPECT_EQ(At(Emboss(fall, 90, 4, 2), 4, 15), Grey(128 + 48));
}

TEST(Emboss, ReliefFarHigherThanThePicture) {
    const PixelArray ramp = Draw({5, 3}, [](int x, int) { return Grey(10 * x); });
    EXPECT_EQ(At(Emboss(ramp, 0, 10000, 1), 2, 1), Grey(128 + 40));
    EXPECT_EQ(At(Emboss(ramp, 37, 10000, 1), 2, 1), Grey(128 + 40));
}

TEST(Halftone, DotAreaIsTheDarkness) {
    for (const int size : {0, 1, 2, 5}) {
        for (const double gain : {1.0, 1.25}) {
            for (int value = 0; value <= 255; value += 15) {
                const PixelArray result = Halftone(Constant({240, 240}, Grey(value)), size, gain);
                const double area = std::min((1 - value / 255.0) * gain, 1.0);
                // A large screen does not fit the picture a whole number of times.
                const double tolerance = size < 2 ? 1.5 : 5;
                EXPECT_NEAR(MeanOfComponent(result, 1), 255 * (1 - area), tolerance)
                    << "size " << size << ", value " << value;
            }
        }
    }
}

TEST(Halftone, BlackDotsOnAScreenOf45Degrees) {
    // Cells of 20 px: dots lie at multiples of 20 along the diagonals, 14.14 right and as many down.
    const PixelArray light = Halftone(Constant({120, 120}, Grey(230)), 5, 1);
    EXPECT_EQ(At(light, 0, 0)[0], 0);
    EXPECT_EQ(At(light, 28, 0)[0], 0);
    EXPECT_EQ(At(light, 14, 14)[0], 0);
    EXPECT_EQ(At(light, 14, 0)[0], 255);
    EXPECT_EQ(At(light, 7, 7)[0], 255);
    // In dark tones the holes are where the light tones have most white.
    const PixelArray dark = Halftone(Constant({120, 120}, Grey(25)), 5, 1);
    EXPECT_EQ(At(dark, 14, 0)[0], 255);
    EXPECT_EQ(At(dark, 7, 7)[0], 0);
    // Black and white have no dots at all, and colours become grey.
    EXPECT_TRUE(Same(Halftone(Constant({9, 9}, Grey(0)), 1, 1), Constant({9, 9}, Grey(0))));
    EXPECT_TRUE(Same(Halftone(Constant({9, 9}, Grey(255)), 1, 1.25), Constant({9, 9}, Grey(255))));
    const Pixel p = At(Halftone(Constant({9, 9}, {200, 20, 90, 255}), 1, 1), 4, 4);
    EXPECT_TRUE(p[0] == p[1] && p[1] == p[2]);
}

} // namespace
} // namespace pictorel::engine
