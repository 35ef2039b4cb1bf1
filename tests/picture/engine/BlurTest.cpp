// Gaussian blur, sharpening, motion blur and zoom blur against their definitions in double precision.
#include "picture/ImagingError.h"
#include "picture/engine/Filters.h"
#include "picture/engine/Reference.h"
#include "support/Pictures.h"

#include <limits>
#include <numbers>
#include <vector>

namespace pictorel::engine {
namespace {

using test::Accumulate;
using test::Alpha;
using test::At;
using test::Bilinear;
using test::Compare;
using test::Constant;
using test::Deviation;
using test::Draw;
using test::Pixel;
using test::Random;
using test::SamePixels;
using test::Sample;
using test::SampleAt;
using test::Size;

constexpr std::array<Size, 7> kSizes{{{1, 1}, {1, 9}, {9, 1}, {2, 2}, {7, 5}, {33, 17}, {257, 3}}};
constexpr std::array<Alpha, 2> kAlphas{Alpha::None, Alpha::Random};

std::vector<double> Bell(double sigma) {
    std::vector<double> bell;
    double total = 0;
    const int radius = static_cast<int>(std::ceil(7 * sigma));
    for (int k = -radius; k <= radius; ++k) {
        bell.push_back(std::exp(-k * k / (2 * sigma * sigma)));
        total += bell.back();
    }
    for (double& weight : bell) {
        weight /= total;
    }
    return bell;
}

// Every pixel blurred, rows first, as a function of the position.
std::function<Sample(int, int)> ExactGaussian(const PixelArray& source, double sigma) {
    const std::vector<double> bell = Bell(sigma);
    const int radius = static_cast<int>(bell.size() / 2);
    const int width = source.Width();
    const auto at = [=](int x, int y) {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    };
    std::vector<Sample> rows(at(0, source.Height()));
    std::vector<Sample> blurred(rows.size());
    for (int y = 0; y < source.Height(); ++y) {
        for (int x = 0; x < width; ++x) {
            for (int k = -radius; k <= radius; ++k) {
                Accumulate(rows[at(x, y)], SampleAt(source, x + k, y),
                           bell.at(static_cast<std::size_t>(k) + static_cast<std::size_t>(radius)));
            }
        }
    }
    for (int y = 0; y < source.Height(); ++y) {
        for (int x = 0; x < width; ++x) {
            for (int k = -radius; k <= radius; ++k) {
                Accumulate(blurred[at(x, y)], rows[at(x, std::clamp(y + k, 0, source.Height() - 1))],
                           bell.at(static_cast<std::size_t>(k) + static_cast<std::size_t>(radius)));
            }
        }
    }
    return [=](int x, int y) { return blurred[at(x, y)]; };
}

TEST(GaussianBlur, IsWithinOneLevelOfTheExactConvolution) {
    for (const double sigma : {0.7, 1.0, 2.5, 5.0, 10.0}) {
        for (const Size size : kSizes) {
            for (const Alpha alpha : kAlphas) {
                const PixelArray source = Random(size, alpha);
                EXPECT_LE(Compare(GaussianBlur(source, sigma), ExactGaussian(source, sigma)).worst, 1.0)
                    << sigma << " at " << size.width << " x " << size.height;
            }
        }
    }
}

// Where rounding up everywhere, or weights a little wrong, would show most.
PixelArray HardEdges(Size size, int cell) {
    return Draw(size, [=](int x, int y) {
        const std::uint8_t level = (x / cell + y / cell) % 2 == 0 ? 255 : 0;
        const auto column = static_cast<std::uint8_t>(x % (3 * cell) == 0 ? 255 : 0);
        return Pixel{level, column, static_cast<std::uint8_t>(255 - level), 255};
    });
}

TEST(GaussianBlur, IsWithinOneLevelOnHardEdges) {
    for (const double sigma : {0.65, 1.0, 1.5, 2.2, 2.95, 3.0, 4.2, 6.0, 13.0, 25.0, 45.0}) {
        for (const int cell : {1, 2, 5, 40}) {
            const PixelArray source = HardEdges({301, 67}, cell);
            const PixelArray result = GaussianBlur(source, sigma);
            EXPECT_LE(Compare(result, ExactGaussian(source, sigma)).worst, 1.0) << sigma << ", " << cell;
        }
    }
}

TEST(GaussianBlur, LeavesConstantPicturesAsTheyAre) {
    for (const Pixel pixel : {Pixel{0, 255, 0, 255}, {255, 0, 255, 255}, {1, 254, 127, 255}}) {
        const PixelArray source = Constant({37, 12}, pixel);
        for (const double sigma : {0.1, 0.5, 1.0, 2.9, 3.0, 12.0, 100.0}) {
            EXPECT_TRUE(SamePixels(GaussianBlur(source, sigma), source)) << sigma;
        }
        for (const double amount : {1e-6, 0.04, 4.0, 9.0}) {
            EXPECT_TRUE(SamePixels(UnsharpMask(source, amount), source)) << amount;
        }
    }
}

TEST(UnsharpMask, TheLeastAmountIsNoBlur) {
    const PixelArray source = HardEdges({40, 9}, 2);
    EXPECT_TRUE(SamePixels(UnsharpMask(source, 1e-6), source));
}

TEST(GaussianBlur, StripsJoinWithoutTrace) {
    const PixelArray opaque = Random({523, 131});
    const PixelArray wide = Random({2070, 40}, Alpha::Random); // three wide strips
    for (const double sigma : {1.0, 3.0, 7.0}) {
        EXPECT_LE(Compare(GaussianBlur(opaque, sigma), ExactGaussian(opaque, sigma)).worst, 1.0) << sigma;
        EXPECT_LE(Compare(GaussianBlur(wide, sigma), ExactGaussian(wide, sigma)).worst, 1.0) << sigma;
    }
}

TEST(GaussianBlur, KeepsItsVarianceBelowOnePixel) {
    PixelArray source = Constant({5, 5}, {0, 0, 0, 255});
    source.WritableRows()[2 * source.Stride() + 2 * 4] = 255;
    const PixelArray result = GaussianBlur(source, 0.5); // 1/8, 3/4, 1/8 both ways
    EXPECT_EQ(At(result, 2, 2)[0], 143);
    EXPECT_EQ(At(result, 1, 2)[0], 24);
    EXPECT_EQ(At(result, 1, 1)[0], 4);
    EXPECT_EQ(At(result, 0, 2)[0], 0);
    EXPECT_EQ(At(result, 2, 2)[1], 0);
}

TEST(GaussianBlur, ColourOfInvisiblePixelsDoesNotSpread) {
    PixelArray source = Draw({40, 3}, [](int x, int) {
        return x < 20 ? Pixel{255, 255, 255, 0} : Pixel{10, 20, 30, 255};
    });
    source.SetHasAlpha(true);
    const PixelArray result = GaussianBlur(source, 2);
    for (int x = 14; x < 40; ++x) {
        const Pixel p = At(result, x, 1);
        ASSERT_GT(p[3], 0);
        const double precision = 4.0 / p[3]; // the less can be seen of a colour, the less exact it is
        EXPECT_NEAR(p[0], 10, precision) << x;
        EXPECT_NEAR(p[1], 20, precision) << x;
        EXPECT_NEAR(p[2], 30, precision) << x;
    }
}

TEST(UnsharpMask, AddsTheDifferenceFromTheBlurredPicture) {
    for (const double amount : {0.5, 4.0}) {
        for (const Size size : kSizes) {
            const PixelArray source = Random(size);
            const auto blurred = ExactGaussian(source, 1);
            const Deviation deviation = Compare(UnsharpMask(source, amount), [&](int x, int y) {
                Sample sample = SampleAt(source, x, y);
                const Sample soft = blurred(x, y);
                for (std::size_t k = 0; k < 4; ++k) {
                    sample[k] = std::clamp(sample[k] + amount * (sample[k] - soft[k]), 0.0, 255.0);
                }
                return sample;
            });
            EXPECT_LE(deviation.worst, 0.5 + 0.3 * amount) << amount;
        }
    }
}

TEST(UnsharpMask, LeavesAlphaAlone) {
    const PixelArray source = Random({33, 17}, Alpha::Random);
    const PixelArray result = UnsharpMask(source, 2);
    for (int x = 0; x < 33; ++x) {
        EXPECT_EQ(At(result, x, 8)[3], At(source, x, 8)[3]);
    }
}

// A line of `length` pixels: one point a pixel, the outermost two with what is left of the length.
std::function<Sample(int, int)> ExactMotion(const PixelArray& source, double degrees, double length) {
    return [=, &source](int x, int y) {
        const double radians = degrees * std::numbers::pi / 180;
        const int whole = static_cast<int>((length - 1) / 2);
        Sample sum{};
        for (int k = -whole - 1; k <= whole + 1; ++k) {
            const double share = std::abs(k) <= whole ? 1 : (length - 1) / 2 - whole;
            Accumulate(sum, Bilinear(source, x + k * std::cos(radians), y - k * std::sin(radians)),
                       share / length);
        }
        return sum;
    };
}

TEST(MotionBlur, IsTheMeanAlongTheLine) {
    for (const double degrees : {90.0, 0.0, -90.0, 180.0, 30.0, 45.0, 200.5}) {
        for (const double length : {1.5, 2.0, 3.0, 7.25, 40.0}) {
            for (const Size size : kSizes) {
                for (const Alpha alpha : kAlphas) {
                    const PixelArray source = Random(size, alpha);
                    const PixelArray result = MotionBlur(source, degrees, length);
                    EXPECT_LE(Compare(result, ExactMotion(source, degrees, length)).worst, 0.55)
                        << degrees << " degrees, " << length << " px at " << size.width << " x "
                        << size.height;
                }
            }
        }
    }
}

TEST(MotionBlur, StripsAndTilesJoinWithoutTrace) {
    const PixelArray source = Random({1100, 90});
    for (const double degrees : {90.0, 20.0}) {
        EXPECT_LE(Compare(MotionBlur(source, degrees, 21), ExactMotion(source, degrees, 21)).worst, 0.55);
    }
}

TEST(MotionBlur, RunsCounterClockwise) {
    PixelArray source = Constant({9, 9}, {0, 0, 0, 255});
    source.WritableRows()[4 * source.Stride() + 4 * 4] = 255;
    const PixelArray result = MotionBlur(source, 45, 5);
    EXPECT_GT(At(result, 5, 3)[0], 20) << "up on the right";
    EXPECT_EQ(At(result, 3, 3)[0], 0);
}

// A point on the ray through the centre and x, y, at `scale` of its distance. Along the longer of the two
// distances the ray passes whole pixels; there it is interpolated across, and between those in a straight
// line.
Sample OnRay(const PixelArray& source, double x, double y, double scale) {
    const double centreX = (source.Width() - 1) / 2.0;
    const double centreY = (source.Height() - 1) / 2.0;
    const double dx = x - centreX;
    const double dy = y - centreY;
    const bool alongX = std::abs(dx) >= std::abs(dy);
    const double longer = alongX ? dx : dy;
    const double centre = alongX ? centreX : centreY;
    if (longer == 0) {
        return Bilinear(source, x, y);
    }
    const double position = centre + longer * scale;
    const double node = std::floor(position);
    Sample sum{};
    for (const double whole : {node, node + 1}) {
        const double at = (whole - centre) / longer;
        Accumulate(sum,
                   Bilinear(source, alongX ? whole : centreX + dx * at, alongX ? centreY + dy * at : whole),
                   1 - std::abs(position - whole));
    }
    return sum;
}

// Many points along the ray for every pixel.
std::function<Sample(int, int)> ExactZoom(const PixelArray& source, double percent) {
    return [=, &source](int x, int y) {
        const int points = 8 + (source.Width() + source.Height()) / 4;
        Sample sum{};
        for (int i = 0; i < points; ++i) {
            Accumulate(sum, OnRay(source, x, y, 1 - percent / 100 * (i + 0.5) / points), 1.0 / points);
        }
        return sum;
    };
}

// Blobs and edges some pixels wide, as photographs have them.
PixelArray Photo(Size size, bool hasAlpha) {
    PixelArray picture = Draw(size, [=](int x, int y) {
        const auto wave = [](double t) { return static_cast<std::uint8_t>(127.5 + 127.5 * std::sin(t)); };
        const bool inside = (x / 23 + y / 19) % 3 == 0;
        return Pixel{wave(x * 0.31), wave(x * 0.1 - y * 0.4), static_cast<std::uint8_t>(inside ? 220 : 30),
                     hasAlpha ? wave(x * 0.05 + y * 0.07) : std::uint8_t{255}};
    });
    picture.SetHasAlpha(hasAlpha);
    return picture;
}

TEST(ZoomBlur, IsTheMeanAlongTheRay) {
    for (const double percent : {1.0, 10.0, 50.0}) {
        for (const Size size :
             {Size{1, 1}, {1, 40}, {41, 1}, {2, 2}, {3, 3}, {64, 37}, {171, 100}, {50, 153}}) {
            for (const bool hasAlpha : {false, true}) {
                const PixelArray source = Photo(size, hasAlpha);
                const Deviation deviation = Compare(ZoomBlur(source, percent), ExactZoom(source, percent));
                EXPECT_LE(deviation.worst, 6) << percent << " at " << size.width << " x " << size.height;
                EXPECT_LE(deviation.mean, 0.25) << percent << " at " << size.width << " x " << size.height;
            }
        }
    }
}

// The worst that can be asked for: every pixel unlike its neighbours, across the rays as well.
TEST(ZoomBlur, KeepsDetailAcrossTheRays) {
    const PixelArray source = Random({171, 100});
    EXPECT_LE(Compare(ZoomBlur(source, 1), ExactZoom(source, 1)).mean, 1.5);
    EXPECT_LE(Compare(ZoomBlur(source, 20), ExactZoom(source, 20)).mean, 0.4);
}

TEST(ZoomBlur, KeepsTheCentreSharp) {
    const PixelArray source = Random({201, 151});
    const PixelArray result = ZoomBlur(source, 10);
    EXPECT_EQ(At(result, 100, 75), At(source, 100, 75));
    EXPECT_NE(At(result, 10, 10), At(source, 10, 10));
}

using Operation = std::function<PixelArray(const PixelArray&)>;

const std::vector<Operation>& Strongest() {
    static const std::vector<Operation> operations = {
        [](auto& p) { return GaussianBlur(p, 0.3); },   [](auto& p) { return GaussianBlur(p, 10); },
        [](auto& p) { return UnsharpMask(p, 4); },      [](auto& p) { return MotionBlur(p, 90, 40); },
        [](auto& p) { return MotionBlur(p, 0, 39.5); }, [](auto& p) { return MotionBlur(p, 63, 40); },
        [](auto& p) { return ZoomBlur(p, 50); },        [](auto& p) { return ZoomBlur(p, 100); },
    };
    return operations;
}

TEST(Blurs, ConstantPicturesStayConstant) {
    for (const Pixel pixel :
         {Pixel{0, 0, 0, 255}, {255, 255, 255, 255}, {1, 77, 254, 255}, {5, 100, 251, 40}}) {
        for (const Size size : {Size{1, 1}, {2, 2}, {301, 150}}) {
            const PixelArray source = Constant(size, pixel);
            for (std::size_t i = 0; i < Strongest().size(); ++i) {
                EXPECT_TRUE(SamePixels(Strongest()[i](source), source))
                    << "row " << i << ", alpha " << int(pixel[3]);
            }
        }
    }
}

TEST(Blurs, CarryWhatIsNotPixels) {
    PixelArray source = Random({70, 50}, Alpha::Random);
    source.SetReduction(0.9);
    source.SetDetails({{1}, {2}, {3}, 72, 72});
    for (const Operation& operation : Strongest()) {
        const PixelArray result = operation(source);
        EXPECT_EQ(result.Reduction(), 0.9);
        EXPECT_TRUE(result.HasAlpha());
        EXPECT_EQ(result.Details(), source.Details());
    }
}

TEST(Blurs, NeutralValuesGiveTheSourceItself) {
    const PixelArray source = Random({33, 17});
    for (const PixelArray& result :
         {GaussianBlur(source, 0), UnsharpMask(source, 0), MotionBlur(source, 90, 0),
          MotionBlur(source, 17, 1), ZoomBlur(source, 0)}) {
        EXPECT_TRUE(result.SharesPixelsWith(source));
    }
}

TEST(Blurs, AReducedCopyIsBlurredLess) {
    const PixelArray source = Random({120, 80});
    PixelArray reduced = source;
    reduced.SetReduction(0.25);
    EXPECT_TRUE(SamePixels(GaussianBlur(reduced, 8), GaussianBlur(source, 2)));
    EXPECT_TRUE(SamePixels(MotionBlur(reduced, 90, 20), MotionBlur(source, 90, 5)));
    EXPECT_TRUE(SamePixels(ZoomBlur(reduced, 20), ZoomBlur(source, 20)));
    EXPECT_TRUE(MotionBlur(reduced, 90, 4).SharesPixelsWith(reduced));
}

TEST(Blurs, RefuseWhatTheFormulasCannotTake) {
    const PixelArray source = Random({7, 5});
    EXPECT_THROW(GaussianBlur(source, -1), ImagingError);
    EXPECT_THROW(GaussianBlur(source, std::numeric_limits<double>::quiet_NaN()), ImagingError);
    EXPECT_THROW(MotionBlur(source, 90, 1e9), ImagingError);
    EXPECT_THROW(ZoomBlur(source, 101), ImagingError);
}

} // namespace
} // namespace pictorel::engine
