// What the view draws, pixel by pixel, without a window.
#include "view/TestPictures.h"
#include "view/ViewRenderer.h"

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace pictorel {
namespace {

constexpr Pixel kBackgroundPixel = 0xff102030; // of the colour 0x00302010
constexpr ColourValue kBackground = 0x00302010;

// A drawing with a margin around it that must stay untouched.
class Drawing {
  public:
    Drawing(const PixelArray& picture, ViewScene scene)
        : width_(scene.across.view), height_(scene.down.view) {
        pixels_.assign(static_cast<std::size_t>(width_ + 2 * kMargin) * (height_ + 2 * kMargin), kUntouched);
        scene.background = kBackground;
        PicturePyramid pyramid(picture);
        auto* const bytes = reinterpret_cast<std::uint8_t*>(&pixels_[Index(0, 0)]);
        DrawScene(pyramid, scene, {bytes, std::ptrdiff_t{4} * (width_ + 2 * kMargin), width_, height_});
        for (int y = -kMargin; y < height_ + kMargin; ++y) {
            for (int x = -kMargin; x < width_ + kMargin; ++x) {
                const bool inside = x >= 0 && x < width_ && y >= 0 && y < height_;
                if (!inside) {
                    EXPECT_EQ(At(x, y), kUntouched) << x << ", " << y;
                }
            }
        }
    }

    Pixel At(int x, int y) const { return pixels_[Index(x, y)]; }

  private:
    static constexpr int kMargin = 3;
    static constexpr Pixel kUntouched = 0x01020304;

    std::size_t Index(int x, int y) const {
        return static_cast<std::size_t>(y + kMargin) * (width_ + 2 * kMargin) + x + kMargin;
    }

    int width_;
    int height_;
    std::vector<Pixel> pixels_;
};

ViewScene SceneOf(const PixelArray& picture, int width, int height, double zoom, double x, double y) {
    return {{width, picture.Width(), zoom, x}, {height, picture.Height(), zoom, y}, true, kBackground};
}

ViewScene SceneOf(const PixelArray& picture, int width, int height, double zoom) {
    return SceneOf(picture, width, height, zoom, 0.5 * picture.Width(), 0.5 * picture.Height());
}

Pixel Component(Pixel pixel, int component) {
    return pixel >> 8 * component & 0xff;
}

int LargestDifference(Pixel a, Pixel b) {
    int largest = 0;
    for (int c = 0; c < 4; ++c) {
        largest = std::max(largest,
                           std::abs(static_cast<int>(Component(a, c)) - static_cast<int>(Component(b, c))));
    }
    return largest;
}

Pixel GreyUnder(const ViewScene& scene, int x, int y) {
    const auto cell = (x - scene.across.Origin()) / kChequerCell + (y - scene.down.Origin()) / kChequerCell;
    return cell % 2 == 0 ? kLightChequer : kDarkChequer;
}

TEST(ViewRenderer, ActualSizeCopiesPixelsAndSurroundsThemWithBackground) {
    const PixelArray picture = MakeNoise(61, 40);
    for (const double centre : {30.5, 12.0, 3.3, 70.0}) {
        const ViewScene scene = SceneOf(picture, 90, 31, 1.0, centre, 20.0);
        const Drawing drawing(picture, scene);
        for (int y = 0; y < 31; ++y) {
            for (int x = 0; x < 90; ++x) {
                const auto column = x - scene.across.Origin();
                const auto row = y - scene.down.Origin();
                const bool inside = column >= 0 && column < 61 && row >= 0 && row < 40;
                const Pixel expected = inside
                                           ? PixelAt(picture, static_cast<int>(column), static_cast<int>(row))
                                           : kBackgroundPixel;
                ASSERT_EQ(drawing.At(x, y), expected) << x << ", " << y;
            }
        }
    }
}

TEST(ViewRenderer, FourTimesTheSizeDrawsSquares) {
    const PixelArray picture = MakeNoise(20, 10);
    const Drawing drawing(picture, SceneOf(picture, 80, 40, 4.0));
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 80; ++x) {
            ASSERT_EQ(drawing.At(x, y), PixelAt(picture, x / 4, y / 4)) << x << ", " << y;
        }
    }
}

TEST(ViewRenderer, AnEvenSurfaceKeepsItsColourAtEveryZoom) {
    const PixelArray picture = MakePicture(333, 127, [](int, int) { return Pixel{0xff1fc8f0}; });
    for (const double zoom :
         {0.003, 0.01, 0.07, 0.15, 0.25, 0.33, 0.5, 0.77, 0.99, 1.0, 1.01, 1.5, 2.0, 2.7, 9.9}) {
        const ViewScene scene = SceneOf(picture, 101, 47, zoom);
        const Drawing drawing(picture, scene);
        for (int y = scene.down.Drawn(47).begin; y < scene.down.Drawn(47).end; ++y) {
            for (int x = scene.across.Drawn(101).begin; x < scene.across.Drawn(101).end; ++x) {
                ASSERT_EQ(drawing.At(x, y), 0xff1fc8f0) << zoom << " at " << x << ", " << y;
            }
        }
    }
}

// The mean of what the device pixel covers, in premultiplied colour over grey, straight from the picture.
Pixel AreaMean(const PixelArray& picture, const ViewScene& scene, int x, int y, bool overChequer) {
    const double zoom = scene.across.zoom;
    const double left = std::max(0.0, static_cast<double>(x - scene.across.Origin()) / zoom);
    const double top = std::max(0.0, static_cast<double>(y - scene.down.Origin()) / zoom);
    const double right = std::min<double>(picture.Width(), left + 1.0 / zoom);
    const double bottom = std::min<double>(picture.Height(), top + 1.0 / zoom);
    std::array<double, 4> sums{};
    for (int row = static_cast<int>(top); row < bottom; ++row) {
        for (int column = static_cast<int>(left); column < right; ++column) {
            const double area = (std::min(right, column + 1.0) - std::max(left, column + 0.0)) *
                                (std::min(bottom, row + 1.0) - std::max(top, row + 0.0)) /
                                ((right - left) * (bottom - top));
            const Pixel pixel = PixelAt(picture, column, row);
            const double alpha = Component(pixel, 3) / 255.0;
            for (int c = 0; c < 3; ++c) {
                sums[static_cast<std::size_t>(c)] += area * Component(pixel, c) * alpha;
            }
            sums[3] += area * alpha;
        }
    }
    const double grey = overChequer ? GreyUnder(scene, x, y) * (1.0 - sums[3]) : 0.0;
    Pixel mean = kOpaque;
    for (int c = 0; c < 3; ++c) {
        mean |= static_cast<Pixel>(std::lround(sums[static_cast<std::size_t>(c)] + grey)) << 8 * c;
    }
    return mean;
}

TEST(ViewRenderer, ZoomedOutPixelsAreTheMeanOfTheAreaTheyCover) {
    // Where the scale leaves halves of halved pixels, these stand for their own mean: sizes that are
    // multiples of 8 and zooms over whole powers of two are exact but for rounding.
    for (const bool hasAlpha : {false, true}) {
        const PixelArray picture = MakeNoise(256, 152, hasAlpha);
        for (const double zoom : {0.125, 0.25, 0.5, 0.55, 0.66, 0.8, 0.97}) {
            const ViewScene scene = SceneOf(picture, 199, 131, zoom);
            const Drawing drawing(picture, scene);
            for (int y = scene.down.Drawn(131).begin; y < scene.down.Drawn(131).end; ++y) {
                for (int x = scene.across.Drawn(199).begin; x < scene.across.Drawn(199).end; ++x) {
                    ASSERT_LE(LargestDifference(drawing.At(x, y), AreaMean(picture, scene, x, y, hasAlpha)),
                              2)
                        << zoom << " at " << x << ", " << y;
                }
            }
        }
    }
}

TEST(ViewRenderer, AFineChequerTurnsGreyWithoutMoire) {
    const PixelArray picture =
        MakePicture(1001, 777, [](int x, int y) { return (x + y) % 2 ? 0xffffffff : kOpaque; });
    for (const double zoom : {0.02, 0.06, 0.11, 0.13, 0.19, 0.24, 0.26, 0.33, 0.45, 0.5}) {
        const ViewScene scene = SceneOf(picture, 500, 380, zoom);
        const Drawing drawing(picture, scene);
        const Span across = scene.across.Drawn(500);
        const Span down = scene.down.Drawn(380);
        for (int y = down.begin; y < down.end - 1; ++y) {
            for (int x = across.begin; x < across.end - 1; ++x) {
                ASSERT_LE(LargestDifference(drawing.At(x, y), 0xff808080), 2)
                    << zoom << " at " << x << ", " << y;
            }
        }
    }
}

TEST(ViewRenderer, EnlargedRampsAreSmoothAndKeepTheirPlace) {
    const PixelArray picture = MakePicture(
        64, 40, [](int x, int y) { return static_cast<Pixel>(4 * x) << 16 | static_cast<Pixel>(6 * y); });
    for (const double zoom : {1.1, 1.25, 1.5, 2.0}) {
        const ViewScene scene = SceneOf(picture, 128, 80, zoom);
        const Drawing drawing(picture, scene);
        for (int y = 0; y < 80; ++y) {
            for (int x = 0; x < 128; ++x) {
                const double column = (static_cast<double>(x - scene.across.Origin()) + 0.5) / zoom - 0.5;
                const double row = (static_cast<double>(y - scene.down.Origin()) + 0.5) / zoom - 0.5;
                const bool awayFromEdges = column > 2 && column < 61 && row > 2 && row < 37;
                if (awayFromEdges) {
                    EXPECT_NEAR(Component(drawing.At(x, y), 2), 4 * column, 1.0);
                    EXPECT_NEAR(Component(drawing.At(x, y), 0), 6 * row, 1.0);
                }
            }
        }
    }
}

TEST(ViewRenderer, TransparencyLiesOverAChequerboardAtEveryZoom) {
    const PixelArray clear = MakePicture(
        300, 200, [](int x, int) { return x < 150 ? 0x00ffffff : 0x80ffffff; }, true);
    for (const double zoom : {0.2, 0.3, 1.0, 1.5, 3.0}) {
        const ViewScene scene = SceneOf(clear, 320, 100, zoom);
        const Drawing drawing(clear, scene);
        const int middle = 160;
        for (const int x : {middle - 20, middle - 9, middle + 9, middle + 20}) {
            for (int y = 45; y < 65; ++y) {
                const Pixel grey = GreyUnder(scene, x, y);
                const Pixel expected = x < middle ? grey : 0x80 + grey * 0x7f / 0xff;
                ASSERT_LE(LargestDifference(drawing.At(x, y), kOpaque | expected * 0x010101), 1) << zoom;
            }
        }
    }
}

TEST(ViewRenderer, DrawsPicturesOfOnePixelsWidthAndViewsOfOnePixel) {
    for (const auto& [width, height] :
         {std::array{1, 1}, std::array{1, 3000}, std::array{3000, 1}, std::array{5, 3}}) {
        const PixelArray picture = MakeNoise(width, height, true);
        for (const int view : {1, 2, 50}) {
            for (const double zoom : {1e-9, 0.001, 0.2, 0.5, 0.9, 1.0, 1.5, 7.0, 1e9}) {
                Drawing(picture, SceneOf(picture, view, 3, zoom));
            }
        }
    }
}

TEST(ViewRenderer, EveryVectorUnitDrawsTheSamePixels) {
    const PixelArray picture = MakeNoise(333, 222, true);
    for (const double zoom : {0.7, 1.3}) {
        const ViewScene scene = SceneOf(picture, 401, 301, zoom);
        const Drawing best(picture, scene);
        for (std::int64_t left = hwy::SupportedTargets(); left != 0; left &= left - 1) {
            hwy::SetSupportedTargetsForTest(left & -left);
            const Drawing drawing(picture, scene);
            hwy::SetSupportedTargetsForTest(0);
            for (int y = 0; y < 301; ++y) {
                for (int x = 0; x < 401; ++x) {
                    ASSERT_EQ(drawing.At(x, y), best.At(x, y))
                        << hwy::TargetName(left & -left) << ' ' << x << ", " << y;
                }
            }
        }
    }
}

TEST(PicturePyramid, ALevelIsTheSameWhetherMadeInOneGoOrFromAFinerOne) {
    const PixelArray picture = MakeNoise(1237, 555, true);
    PicturePyramid direct(picture);
    PicturePyramid stepwise(picture);
    for (int level = 1; level <= 4; ++level) {
        stepwise.Level(level);
    }
    const PixelArray& a = direct.Level(4);
    const PixelArray& b = stepwise.Level(4);
    ASSERT_EQ(a.Width(), 78);
    ASSERT_EQ(a.Height(), 35);
    for (int y = 0; y < a.Height(); ++y) {
        EXPECT_TRUE(std::equal(a.Row(y), a.Row(y) + a.RowBytes(), b.Row(y))) << y;
    }
}

} // namespace
} // namespace pictorel
