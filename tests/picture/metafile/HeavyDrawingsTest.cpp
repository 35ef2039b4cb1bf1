// Drawings made to keep the reader busy: each ends soon, with what was drawn so far or refused.
#include "picture/metafile/Records.h"

#include <gtest/gtest.h>

#include <ctime>
#include <functional>
#include <random>

namespace pictorel::metafile::testing {
namespace {

using T = EmfType;

constexpr int kSide = 1000;

// Records' fields in parts that random numbers are good for.
class Maker {
  public:
    int Within(int first, int last) { return std::uniform_int_distribution<int>(first, last)(random_); }

    ByteBuffer Points16(int count, int side) {
        Bytes bytes;
        bytes.Le32({0, 0, side, side, count});
        for (int i = 0; i < count; ++i) {
            bytes.Le16({Within(0, side), Within(0, side)});
        }
        return bytes.Done();
    }

  private:
    std::mt19937 random_{18};
};

Emf& Repeat(Emf& emf, int times, const std::function<void(Emf&)>& add) {
    for (int i = 0; i < times; ++i) {
        add(emf);
    }
    return emf;
}

ByteBuffer Rectangles(int count, int side) {
    Maker maker;
    Emf emf(kSide, kSide);
    emf.Brush(0, kRed);
    return Repeat(emf, count,
                  [&](Emf& e) {
                      const int x = maker.Within(0, kSide - side);
                      const int y = maker.Within(0, kSide - side);
                      e.Add(T::Rectangle, {x, y, x + side, y + side});
                  })
        .Done();
}

ByteBuffer Poly(T type, int points, int penStyle, int penWidth) {
    Maker maker;
    return Emf(kSide, kSide)
        .Pen(penStyle, penWidth, kBlue)
        .Brush(0, kRed)
        .Add(type, maker.Points16(points, kSide))
        .Done();
}

ByteBuffer Gradient(int count, int mode, int side) {
    Bytes bytes;
    bytes.Le32({0, 0, kSide, kSide, 3, count, mode});
    for (const auto& [x, y] : {std::pair(0, 0), std::pair(side, side), std::pair(0, side)}) {
        bytes.Le32({x, y}).Le16({0xFF00, x, y, 0});
    }
    for (int i = 0; i < count; ++i) {
        bytes.Le32({0, 1});
        if (mode == 2) {
            bytes.Le32({2});
        }
    }
    return bytes.Done();
}

ByteBuffer PathWithGradients(int points, int gradients, int mode) {
    Maker maker;
    return Emf(kSide, kSide)
        .Add(T::BeginPath)
        .Add(T::Polygon16, maker.Points16(points, kSide))
        .Add(T::EndPath)
        .Add(T::SelectClipPath, {5})
        .Add(T::GradientFill, Gradient(gradients, mode, kSide))
        .Done();
}

ByteBuffer Text(int letters, int height) {
    Bytes font;
    font.Le32({3, -height, 0, 0, 0, 400}).U8({0, 0, 0, 0, 0, 0, 0, 0}).Zeros(64);
    Bytes text;
    text.Le32({0, 0, 0, 0, 1, 0, 0, 0, 20, letters, 76, 0, 0, 0, 0, 0, 0});
    for (int i = 0; i < letters; ++i) {
        text.Le16({'A' + i % 50});
    }
    return Emf(kSide, kSide)
        .Add(T::CreateFont, font.Done())
        .Add(T::SelectObject, {3})
        .Add(T::ExtTextOutW, text.Done())
        .Done();
}

ByteBuffer Texts(int count) {
    Emf emf(kSide, kSide);
    Maker maker;
    return Repeat(emf, count,
                  [&](Emf& e) {
                      Bytes text;
                      text.Le32({maker.Within(0, kSide), maker.Within(0, kSide), 1, 0x300, 0, 0, 0})
                          .U8({'m', 0, 0, 0});
                      e.Add(T::SmallTextOut, text.Done());
                  })
        .Done();
}

ByteBuffer Paths(int lines, int times, T what) {
    Maker maker;
    Emf emf(kSide, kSide);
    emf.Pen(1, 3, kBlue).Add(T::BeginPath).Add(T::Polyline16, maker.Points16(lines, kSide)).Add(T::EndPath);
    return Repeat(emf, times, [&](Emf& e) { e.Add(what); }).Add(T::StrokePath).Done();
}

ByteBuffer Lines(int count, bool inPath, int style = 0, int width = 1) {
    Maker maker;
    Emf emf(kSide, kSide);
    emf.Pen(style, width, kBlue);
    if (inPath) {
        emf.Add(T::BeginPath);
    }
    Repeat(emf, count, [&](Emf& e) { e.Add(T::LineTo, {maker.Within(0, kSide), maker.Within(0, kSide)}); });
    if (inPath) {
        emf.Add(T::EndPath).Add(T::StrokePath);
    }
    return emf.Done();
}

ByteBuffer Shapes(T type, int count) {
    Maker maker;
    Emf emf(kSide, kSide);
    emf.Pen(0, 3, kBlue).Brush(0, kRed);
    return Repeat(emf, count,
                  [&](Emf& e) {
                      const int x = maker.Within(0, kSide - 10);
                      const int y = maker.Within(0, kSide - 10);
                      e.Add(type, {x, y, x + 10, y + 10, 3, 3, 4, 5});
                  })
        .Done();
}

ByteBuffer ClippedRectangles(int points, int count) {
    Maker maker;
    Emf emf(kSide, kSide);
    emf.Brush(0, kRed)
        .Add(T::BeginPath)
        .Add(T::Polygon16, maker.Points16(points, kSide))
        .Add(T::EndPath)
        .Add(T::SelectClipPath, {5});
    return Repeat(emf, count, [&](Emf& e) { e.Add(T::Rectangle, {0, 0, kSide, kSide}); }).Done();
}

ByteBuffer ClipChanges(int points, int count) {
    Maker maker;
    Emf emf(kSide, kSide);
    emf.Brush(0, kRed)
        .Add(T::BeginPath)
        .Add(T::Polygon16, maker.Points16(points, kSide))
        .Add(T::EndPath)
        .Add(T::SelectClipPath, {5});
    return Repeat(emf, count,
                  [&](Emf& e) {
                      e.Add(T::ExcludeClipRect, {0, 0, 3, 3}).Add(T::Rectangle, {5, 5, 9, 9});
                  })
        .Done();
}

ByteBuffer Blits(int count, int operation) {
    Emf emf(kSide, kSide);
    emf.Add(T::Rectangle, {0, 0, kSide, kSide}); // or the picture would be as small as the bitmap
    return Repeat(emf, count,
                  [&](Emf& e) {
                      e.Add(T::StretchDiBits, Bytes()
                                                  .Le32({0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 80, 40, 120, 4, 0,
                                                         operation, kSide, kSide})
                                                  .Append(Dib(1, 1, {kRed}))
                                                  .Done());
                  })
        .Done();
}

ByteBuffer Saves(int points, int count) {
    Maker maker;
    Emf emf(kSide, kSide);
    emf.Brush(0, kRed)
        .Add(T::BeginPath)
        .Add(T::Polygon16, maker.Points16(points, kSide))
        .Add(T::EndPath)
        .Add(T::SelectClipPath, {5});
    return Repeat(emf, count,
                  [&](Emf& e) {
                      e.Add(T::SaveDc)
                          .Add(T::Rectangle, {0, 0, 3, 3})
                          .Add(T::RestoreDc, {-1})
                          .Add(T::Rectangle, {0, 0, 3, 3});
                  })
        .Done();
}

TEST(HeavyDrawings, EndSoon) {
    const struct {
        const char* name;
        std::function<ByteBuffer()> make;
        bool isWhole = false;
    } cases[] = {
        {"two million rectangles", [] { return Rectangles(2000000, 5); }},
        {"100,000 larger rectangles", [] { return Rectangles(100000, 300); }},
        {"polygon of a million points", [] { return Poly(T::Polygon16, 1000000, 0, 1); }},
        {"polygon of 60000 points", [] { return Poly(T::Polygon16, 60000, 0, 1); }},
        {"line of a million points", [] { return Poly(T::Polyline16, 1000000, 0, 1); }},
        {"dashed line of a million points", [] { return Poly(T::Polyline16, 1000000, 2, 1); }},
        {"wide line of a million points", [] { return Poly(T::Polyline16, 1000000, 0, 30); }},
        {"curves through a million points", [] { return Poly(T::PolyBezier16, 1000000, 0, 5); }},
        {"dashed curves of 20000 points", [] { return Poly(T::PolyBezier16, 20000, 2, 1); }},
        {"path with gradients", [] { return PathWithGradients(20000, 20000, 0); }},
        {"path with gradients down", [] { return PathWithGradients(500, 200000, 1); }},
        {"path with triangles", [] { return PathWithGradients(20000, 20000, 2); }},
        {"triangles", [] { return PathWithGradients(4, 200000, 2); }},
        {"a text of a million letters", [] { return Text(1000000, 20); }, true},
        {"a text of 200000 large letters", [] { return Text(200000, 900); }},
        {"200000 texts", [] { return Texts(200000); }},
        {"widened paths", [] { return Paths(3000, 6, T::WidenPath); }},
        {"flattened paths", [] { return Paths(100000, 20000, T::FlattenPath); }},
        {"a million lines", [] { return Lines(1000000, false); }},
        {"a path of a million lines", [] { return Lines(1000000, true); }},
        {"a path of 100000 dashed lines", [] { return Lines(100000, true, 1, 1); }},
        {"300000 dashed lines", [] { return Lines(300000, false, 2, 4); }},
        {"500000 ellipses", [] { return Shapes(T::Ellipse, 500000); }},
        {"500000 round rectangles", [] { return Shapes(T::RoundRect, 500000); }},
        {"500000 pies", [] { return Shapes(T::Pie, 500000); }},
        {"rectangles under a ragged clip", [] { return ClippedRectangles(20000, 20000); }},
        {"clips that change", [] { return ClipChanges(20000, 20000); }},
        {"saved states with a ragged clip", [] { return Saves(20000, 20000); }},
        {"bitmaps", [] { return Blits(20000, 0x00CC0020); }},
        {"bitmaps mixed", [] { return Blits(20000, 0x00990066); }},
    };
    for (const auto& c : cases) {
        const ByteBuffer file = c.make();
        const std::clock_t start = std::clock();
        try {
            const PixelArray picture = Read(file);
            EXPECT_EQ(picture.PartShown() == 1, c.isWhole) << c.name;
            EXPECT_GT(picture.PartShown(), 0) << c.name;
        } catch (const ImagingError& error) {
            EXPECT_STREQ(error.what(), "The metafile would take too long to draw.") << c.name;
        }
        const double seconds = double(std::clock() - start) / CLOCKS_PER_SEC;
        EXPECT_LT(seconds, 5) << c.name; // about one at most on the machines that this is written for
    }
}

// The same kinds as people draw them.
TEST(HeavyDrawings, OrdinaryOnesAreWhole) {
    const struct {
        const char* name;
        ByteBuffer file;
    } cases[] = {
        {"rectangles", Rectangles(20000, 5)},
        {"large rectangles", Rectangles(500, 300)},
        {"polygon", Poly(T::Polygon16, 500, 0, 1)},
        {"dashed line", Poly(T::Polyline16, 500, 2, 1)},
        {"curves", Poly(T::PolyBezier16, 1000, 0, 5)},
        {"text", Text(2000, 20)},
        {"texts", Texts(5000)},
        {"lines", Lines(10000, false)},
        {"path", Lines(1000, true)},
        {"ellipses", Shapes(T::Ellipse, 10000)},
        {"ragged clip", ClippedRectangles(100, 5)},
        {"gradients", PathWithGradients(100, 5, 0)},
        {"bitmaps", Blits(5, 0x00CC0020)},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Read(c.file).PartShown(), 1) << c.name;
    }
}

// Below a clip of many rectangles the painter's library asks for memory by their square.
TEST(HeavyDrawings, ARaggedClipIsExact) {
    constexpr int kTeeth = 200;
    Bytes comb;
    comb.Le32({0, 0, kSide, kSide, 2 * kTeeth + 2});
    for (int i = 0; i < kTeeth; ++i) {
        comb.Le16({5 * i, 10, 5 * i + 2, 900 - i});
    }
    comb.Le16({kSide, 10, 0, 10});
    const auto drawn = [&](bool clips) {
        Emf emf(kSide, kSide);
        emf.NoPen().Brush(0, kRed).Add(T::BeginPath).Add(T::Polygon16, comb.Done()).Add(T::EndPath);
        clips ? emf.Add(T::SelectClipPath, {5}).Add(T::Rectangle, {0, 0, kSide, kSide})
              : emf.Add(T::FillPath);
        return Read(emf.Done());
    };
    const PixelArray filled = drawn(false);
    EXPECT_TRUE(codecs::testing::SamePixels(filled, drawn(true)));
    EXPECT_EQ(At(filled, 5, 5), "FFFFFF");
}

} // namespace
} // namespace pictorel::metafile::testing
