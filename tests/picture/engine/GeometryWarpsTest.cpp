// Warps against a plain double-precision reference, and what must hold at borders and under transparency.
#include "picture/engine/Geometry.h"
#include "support/Pictures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

namespace pictorel::engine {
namespace {

using test::At;
using test::Constant;
using test::Draw;
using test::LargestDifference;
using test::MeanOfComponent;
using test::Pixel;
using test::Same;
using test::Set;
using test::Speckled;

constexpr std::uint32_t kBackground = 0x00C08040; // blue 0xC0, green 0x80, red 0x40
constexpr Pixel kBackgroundPixel{0xC0, 0x80, 0x40, 255};

struct Point {
    double x;
    double y;
};

// The direct maps, from the source to the result, y upwards and from the centre: the engine states the
// inverse ones, y downwards.
Point Turned(Point p, double degrees) {
    const double a = degrees * std::numbers::pi / 180;
    return {p.x * std::cos(a) - p.y * std::sin(a), p.x * std::sin(a) + p.y * std::cos(a)};
}

double Keys(double x) {
    const double t = std::abs(x);
    if (t <= 1) {
        return (1.5 * t - 2.5) * t * t + 1;
    }
    return t < 2 ? ((-0.5 * t + 2.5) * t - 4) * t + 2 : 0;
}

// Colours are weighted by their alpha.
std::array<double, 4> Interpolated(const PixelArray& picture, Point at) {
    const int left = static_cast<int>(std::floor(at.x - 0.5)) - 1;
    const int top = static_cast<int>(std::floor(at.y - 0.5)) - 1;
    std::array<double, 4> sums{};
    for (int y = top; y < top + 4; ++y) {
        for (int x = left; x < left + 4; ++x) {
            const std::uint8_t* const pixel = picture.Row(y) + x * 4;
            const double share = Keys(at.x - 0.5 - x) * Keys(at.y - 0.5 - y) * pixel[3];
            for (std::size_t c = 0; c < 3; ++c) {
                sums[c] += share * pixel[c];
            }
            sums[3] += share;
        }
    }
    for (std::size_t c = 0; c < 3; ++c) {
        sums[c] = std::clamp(sums[c] / sums[3], 0.0, 255.0);
    }
    sums[3] = std::clamp(sums[3], 0.0, 255.0);
    return sums;
}

// Largest difference to the reference over the pixels whose neighbours all exist; how many there were.
struct Comparison {
    double largest = 0;
    int pixels = 0;
};

Comparison CompareWithRotation(const PixelArray& picture, const PixelArray& rotated, double degrees) {
    Comparison comparison;
    for (int y = 0; y < picture.Height(); ++y) {
        for (int x = 0; x < picture.Width(); ++x) {
            const Point up{x + 0.5 - picture.Width() / 2.0, picture.Height() / 2.0 - y - 0.5};
            const Point back = Turned(up, -degrees);
            const Point at{back.x + picture.Width() / 2.0, picture.Height() / 2.0 - back.y};
            if (at.x < 2 || at.y < 2 || at.x > picture.Width() - 2 || at.y > picture.Height() - 2) {
                continue;
            }
            ++comparison.pixels;
            const auto expected = Interpolated(picture, at);
            constexpr double kFaint = 48; // the less can be seen of a colour, the less exact it is
            for (int c = expected[3] < kFaint ? 3 : 0; c < 4; ++c) {
                const double difference = expected[static_cast<std::size_t>(c)] - rotated.Row(y)[x * 4 + c];
                comparison.largest = std::max(comparison.largest, std::abs(difference));
            }
        }
    }
    return comparison;
}

TEST(Rotation, AgreesWithTheReference) {
    // The last is large enough to be worked on in several bands.
    const struct {
        int width, height;
        double degrees;
        bool hasAlpha = false;
    } cases[] = {{31, 17, 1},   {31, 17, 30},       {16, 33, 133.7},     {21, 21, 45},
                 {21, 21, 300}, {31, 17, 30, true}, {90, 70, 205, true}, {901, 703, 12.5}};
    for (const auto& c : cases) {
        const PixelArray picture = Speckled({c.width, c.height}, c.hasAlpha);
        const auto comparison = CompareWithRotation(picture, Rotate(picture, c.degrees, 0), c.degrees);
        EXPECT_GT(comparison.pixels, 100);
        EXPECT_LT(comparison.largest, 1.5) << c.degrees; // 1 level and the rounding of the reference
    }
}

// A picture with a single bright pixel: where its centre of mass goes tells the map.
Point BrightSpotAfter(const std::function<PixelArray(const PixelArray&)>& warp, int size, Point spot) {
    PixelArray picture = Constant({size, size}, {0, 0, 0, 255});
    const int left = static_cast<int>(size / 2.0 + spot.x);
    const int top = static_cast<int>(size / 2.0 - spot.y);
    for (int y = top - 1; y <= top + 1; ++y) {
        for (int x = left - 1; x <= left + 1; ++x) {
            Set(picture, x, y, {255, 255, 255, 255});
        }
    }
    const PixelArray result = warp(picture);
    double mass = 0;
    Point sum{0, 0};
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const double bright = At(result, x, y)[1];
            mass += bright;
            sum.x += bright * (x + 0.5 - size / 2.0);
            sum.y += bright * (size / 2.0 - y - 0.5);
        }
    }
    return {sum.x / mass, sum.y / mass};
}

TEST(WarpDirections, PointsGoWhereTheDirectMapsSay) {
    constexpr int kSize = 201;
    const Point spot{30, 20}; // right of the centre and above it
    const auto perspective = [](Point p, double degrees) {
        const double a = degrees * std::numbers::pi / 180;
        const double distance = 2 * kSize;
        const double scale = distance / (distance + p.y * std::sin(a)); // the top is further away
        return Point{p.x * scale, p.y * std::cos(a) * scale};
    };
    const auto twirled = [](Point p, double degrees) {
        const double t = std::hypot(p.x, p.y) / (kSize / 2.0);
        return Turned(p, degrees * (1 - 3 * t * t + 2 * t * t * t));
    };
    const double slope = std::tan(20 * std::numbers::pi / 180);
    const struct {
        std::string name;
        std::function<PixelArray(const PixelArray&)> warp;
        Point expected;
    } cases[] = {
        {"rotate 30", [](const PixelArray& p) { return Rotate(p, 30, 0); }, Turned(spot, 30)},
        {"rotate -75", [](const PixelArray& p) { return Rotate(p, -75, 0); }, Turned(spot, -75)},
        {"skew horizontally",
         [](const PixelArray& p) { return Skew(p, false, 20, 0); },
         {spot.x + slope * spot.y, spot.y}},
        {"skew vertically",
         [](const PixelArray& p) { return Skew(p, true, 20, 0); },
         {spot.x, spot.y + slope * spot.x}},
        {"tilt the top away", [](const PixelArray& p) { return Perspective(p, true, 50, 0); },
         perspective(spot, 50)},
        {"tilt the bottom away", [](const PixelArray& p) { return Perspective(p, true, -50, 0); },
         perspective(spot, -50)},
        {"tilt the right side away",
         [](const PixelArray& p) { return Perspective(p, false, -50, 0); },
         {perspective({spot.y, spot.x}, 50).y, perspective({spot.y, spot.x}, 50).x}},
        {"twirl", [](const PixelArray& p) { return Twirl(p, 60, 0); }, twirled(spot, 60)},
    };
    for (const auto& c : cases) {
        const Point seen = BrightSpotAfter(c.warp, kSize, spot);
        EXPECT_NEAR(seen.x, c.expected.x, 0.15) << c.name;
        EXPECT_NEAR(seen.y, c.expected.y, 0.15) << c.name;
    }
}

using WarpFunction = PixelArray (*)(const PixelArray&, double);
constexpr struct {
    const char* name;
    WarpFunction warp;
} kWarps[] = {
    {"rotate", [](const PixelArray& p, double d) { return Rotate(p, d, kBackground); }},
    {"skew vertically", [](const PixelArray& p, double d) { return Skew(p, true, d, kBackground); }},
    {"skew horizontally", [](const PixelArray& p, double d) { return Skew(p, false, d, kBackground); }},
    {"tilt vertically", [](const PixelArray& p, double d) { return Perspective(p, true, d, kBackground); }},
    {"tilt horizontally",
     [](const PixelArray& p, double d) { return Perspective(p, false, d, kBackground); }},
    {"twirl", [](const PixelArray& p, double d) { return Twirl(p, d, kBackground); }},
};

// Of an even picture every pixel is a mixture of its colour and the background, and only border pixels are
// anything between.
TEST(Warps, EvenPicturesStayEven) {
    constexpr Pixel kColour{10, 200, 90, 255};
    const PixelArray picture = Constant({61, 43}, kColour);
    for (const auto& [name, warp] : kWarps) {
        for (const double degrees : {-85.0, -30.0, 7.0, 45.0, 80.0}) {
            const PixelArray result = warp(picture, degrees);
            int covered = 0;
            int mixed = 0;
            for (int y = 0; y < result.Height(); ++y) {
                for (int x = 0; x < result.Width(); ++x) {
                    const Pixel p = At(result, x, y);
                    ASSERT_EQ(p[3], 255);
                    covered += p == kColour ? 1 : 0;
                    mixed += p != kColour && p != kBackgroundPixel ? 1 : 0;
                    const double share = (p[0] - 0xC0) / (10.0 - 0xC0);
                    ASSERT_NEAR(p[1], 0x80 + share * (200 - 0x80), 2) << name << " " << degrees;
                }
            }
            EXPECT_GT(covered, 100) << name << " " << degrees;
            EXPECT_LT(mixed, 3 * (61 + 43)) << name << " " << degrees;
            EXPECT_FALSE(result.HasAlpha());
        }
    }
}

// An edge at an angle has intermediate steps, and the covered area is right.
TEST(Warps, ExposedBorderIsAntialiased) {
    const PixelArray picture = Constant({41, 41}, {255, 255, 255, 255});
    const PixelArray result = Rotate(picture, 45, 0);
    // A square turned by 45 degrees on its own canvas is an octagon of 2 (sqrt 2 - 1) of its area.
    EXPECT_NEAR(MeanOfComponent(result, 0), 255 * 2 * (std::sqrt(2) - 1), 1.5);
    EXPECT_GT(At(result, 11, 1)[0], 0);
    // At the middle of the right side nothing is exposed.
    EXPECT_EQ(At(result, 40, 20)[0], 255);
}

TEST(Warps, NothingIsLeftOfAPlaneSeenFromItsEdge) {
    for (const bool hasAlpha : {false, true}) {
        const PixelArray picture = Speckled({9, 6}, hasAlpha);
        const Pixel exposed = hasAlpha ? Pixel{0, 0, 0, 0} : kBackgroundPixel;
        for (const double degrees : {-90.0, 90.0}) {
            for (const bool vertical : {false, true}) {
                for (const PixelArray& result : {Skew(picture, vertical, degrees, kBackground),
                                                 Perspective(picture, vertical, degrees, kBackground)}) {
                    EXPECT_TRUE(Same(result, Constant({9, 6}, exposed, hasAlpha)));
                }
            }
        }
    }
}

// Where a picture with transparency fades out, one without fades into the background.
PixelArray OverBackground(const PixelArray& picture) {
    return Draw({picture.Width(), picture.Height()}, [&](int x, int y) {
        Pixel pixel = At(picture, x, y);
        for (std::size_t c = 0; c < 3; ++c) {
            const double sum = pixel[c] * pixel[3] + kBackgroundPixel[c] * (255 - pixel[3]);
            pixel[c] = static_cast<std::uint8_t>(std::lround(sum / 255));
        }
        pixel[3] = 255;
        return pixel;
    });
}

TEST(Warps, TransparentNeighboursDoNotDarken) {
    // Left half opaque white, right half clear with black behind the transparency.
    const PixelArray picture = Draw(
        {40, 40},
        [](int x, int) {
            return x < 20 ? Pixel{255, 255, 255, 255} : Pixel{0, 0, 0, 0};
        },
        true);
    for (const auto& [name, warp] : kWarps) {
        const PixelArray result = warp(picture, 20);
        EXPECT_TRUE(result.HasAlpha());
        for (int y = 14; y < 26; ++y) { // away from the exposed border
            for (int x = 8; x < 32; ++x) {
                const Pixel p = At(result, x, y);
                EXPECT_TRUE(p[3] == 0 || p[0] == 255) << name << " at " << x << ", " << y;
            }
        }
    }
}

TEST(Warps, OpaqueAlphaGivesTheColoursOfNoAlpha) {
    const PixelArray opaque = Speckled({37, 29});
    PixelArray withAlpha = opaque;
    withAlpha.SetHasAlpha(true);
    for (const auto& [name, warp] : kWarps) {
        EXPECT_LE(LargestDifference(warp(opaque, 33), OverBackground(warp(withAlpha, 33))), 1) << name;
    }
}

// Slightly skewed opaque pictures are made from whole rows, others from points.
TEST(Skew, MovesRowsAsItMovesPoints) {
    constexpr std::pair<int, int> kSizes[] = {{131, 77}, {16, 200}, {300, 3}, {2, 2}};
    for (const auto& [width, height] : kSizes) {
        const PixelArray rows = Speckled({width, height});
        PixelArray points = rows;
        points.SetHasAlpha(true);
        for (const double degrees : {-23.0, -3.0, 0.1, 11.0, 22.0}) {
            for (const bool vertical : {false, true}) {
                EXPECT_LE(LargestDifference(Skew(rows, vertical, degrees, kBackground),
                                            OverBackground(Skew(points, vertical, degrees, kBackground))),
                          1)
                    << width << " x " << height << ", " << degrees << (vertical ? " vertically" : "");
            }
        }
    }
}

TEST(Twirl, LeavesWhatIsOutsideTheCircle) {
    const PixelArray picture = Speckled({50, 31}, true);
    const PixelArray result = Twirl(picture, 200, kBackground);
    int changed = 0;
    for (int y = 0; y < 31; ++y) {
        for (int x = 0; x < 50; ++x) {
            const bool isOutside = std::hypot(x + 0.5 - 25, y + 0.5 - 15.5) > 15.5;
            if (isOutside) {
                ASSERT_EQ(At(result, x, y), At(picture, x, y));
            } else {
                changed += At(result, x, y) != At(picture, x, y) ? 1 : 0;
            }
        }
    }
    EXPECT_GT(changed, 500);
}

// The finest chequerboard, of which a strong reduction makes an even grey if it does not alias. The mean over
// a pixel that is not a whole number of source pixels wide leaves up to a sixth of the contrast, and is
// rounded to a level.
TEST(Warps, StrongReductionDoesNotAlias) {
    const PixelArray chequers = Draw({300, 300}, [](int x, int y) {
        const auto c = static_cast<std::uint8_t>((x + y) % 2 == 0 ? 255 : 0);
        return Pixel{c, c, c, 255};
    });
    const auto expectGrey = [](const PixelArray& result, int left, int right, int top, int bottom) {
        for (int y = top; y < bottom; ++y) {
            for (int x = left; x < right; ++x) {
                ASSERT_NEAR(At(result, x, y)[0], 127.5, 127.5 / 6 + 0.5) << x << ", " << y;
            }
        }
    };
    expectGrey(Perspective(chequers, true, 80, 0), 70, 230, 130, 165);
    expectGrey(Perspective(chequers, false, -80, 0), 135, 170, 70, 230);
    expectGrey(Skew(chequers, false, 85, 0), 140, 160, 146, 154);
    expectGrey(Reproduce(chequers, 4), 0, 300, 0, 300);
}

TEST(Reproduce, TilesAreReducedCopies) {
    const PixelArray picture = Draw({7, 5}, [](int x, int y) {
        return x < 4 && y < 3 ? Pixel{255, 255, 255, 255} : Pixel{0, 0, 0, 255};
    });
    const PixelArray result = Reproduce(picture, 2);
    // 7 columns are tiled as 4 + 3, 5 rows as 3 + 2.
    for (const auto& [x, y] : {std::pair(0, 0), std::pair(4, 0), std::pair(0, 3), std::pair(4, 3)}) {
        EXPECT_GT(At(result, x, y)[0], 200) << x << ", " << y;
    }
    for (const auto& [x, y] : {std::pair(3, 2), std::pair(6, 2), std::pair(3, 4), std::pair(6, 4)}) {
        EXPECT_LT(At(result, x, y)[0], 60) << x << ", " << y;
    }
}

TEST(Reproduce, MoreCopiesThanPixelsGiveEveryPixelTheMean) {
    const PixelArray picture = Draw({4, 2}, [](int x, int) {
        return x < 2 ? Pixel{200, 200, 200, 255} : Pixel{100, 100, 100, 255};
    });
    EXPECT_TRUE(Same(Reproduce(picture, 32), Constant({4, 2}, {150, 150, 150, 255})));
}

} // namespace
} // namespace pictorel::engine
