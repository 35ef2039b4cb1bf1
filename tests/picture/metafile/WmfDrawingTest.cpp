// Records of Windows metafiles, each drawn and looked at as a small picture.
#include "Records.h"

namespace pictorel::metafile::testing {
namespace {

using T = WmfType;

struct Case {
    const char* name;
    Wmf wmf;
    const char* drawn;
};

void Expect(std::initializer_list<Case> cases) {
    for (const Case& c : cases) {
        EXPECT_EQ(Drawn(c.wmf), c.drawn) << c.name;
    }
}

// Slot 0 has no pen, slot 1 a red brush.
Wmf Canvas() {
    return Wmf(6, 4).Pen(5, 0, 0).Select(0).Brush(0, kRed).Select(1);
}

Wmf Blue() {
    return Canvas().Pen(0, 1, kBlue).Select(2);
}

TEST(WmfDrawing, Shapes) {
    Expect({
        {"rectangle", Canvas().Add(T::Rectangle, {3, 4, 1, 1}), "......\n.rrr..\n.rrr..\n......"},
        {"with a pen", Blue().Add(T::Rectangle, {4, 5, 0, 1}), ".bbbb.\n.brrb.\n.brrb.\n.bbbb."},
        {"lines", Blue().Add(T::MoveTo, {1, 1}).Add(T::LineTo, {1, 4}).Add(T::LineTo, {3, 4}),
         "......\n.bbbb.\n....b.\n....b."},
        {"polyline", Blue().Add(T::Polyline, {3, 1, 1, 4, 1, 4, 3}), "......\n.bbbb.\n....b.\n....b."},
        {"a pixel", Canvas().Add(T::SetPixel, {0xFF00, 0, 3, 2}), "......\n......\n......\n..g..."},
        {"polygon", Canvas().Add(T::Polygon, {4, 1, 1, 3, 1, 3, 4, 1, 4}), "......\n.rr...\n.rr...\n.rr..."},
        {"a polygon with a hole",
         Canvas().Add(T::PolyPolygon, {2, 4, 4, 0, 0, 6, 0, 6, 4, 0, 4, 2, 1, 4, 1, 4, 3, 2, 3}),
         "rrrrrr\nrr..rr\nrr..rr\nrrrrrr"},
        {"filled by winding",
         Canvas()
             .Add(T::SetPolyFillMode, {2})
             .Add(T::PolyPolygon, {2, 4, 4, 0, 0, 6, 0, 6, 4, 0, 4, 2, 1, 4, 1, 4, 3, 2, 3}),
         "rrrrrr\nrrrrrr\nrrrrrr\nrrrrrr"},
        {"paper inverted", Canvas().Add(T::SetRop2, {6}).Add(T::Rectangle, {3, 4, 1, 1}),
         "......\n.###..\n.###..\n......"},
        {"hatch on a background",
         Canvas()
             .Add(T::SetBkColour, {0xFF00, 0})
             .Brush(2, kBlue, 0)
             .Select(2)
             .Add(T::Rectangle, {4, 6, 0, 0}),
         "gggggg\ngggggg\ngggggg\nbbbbbb"},
        {"hatch on the paper",
         Canvas().Add(T::SetBkMode, {1}).Brush(2, kBlue, 0).Select(2).Add(T::Rectangle, {4, 6, 0, 0}),
         "......\n......\n......\nbbbbbb"},
        {"a freed slot is used again",
         Canvas().Add(T::DeleteObject, {0}).Brush(0, kGreen).Select(0).Add(T::Rectangle, {3, 4, 1, 1}),
         "......\n.ggg..\n.ggg..\n......"},
        {"saved and restored",
         Canvas()
             .Add(T::SaveDc)
             .Brush(0, kGreen)
             .Select(2)
             .Add(T::RestoreDc, {-1})
             .Add(T::Rectangle, {3, 4, 1, 1}),
         "......\n.rrr..\n.rrr..\n......"},
    });
    const PixelArray ellipse =
        Read(Wmf(40, 20).Brush(0, kRed).Select(0).Add(T::Ellipse, {20, 40, 0, 0}).Done());
    EXPECT_EQ(At(ellipse, 20, 10), "FF0000");
    EXPECT_EQ(At(ellipse, 1, 1), "FFFFFF");
    const PixelArray rounded = Read(Canvas().Add(T::RoundRect, {3, 3, 4, 6, 0, 0}).Done());
    EXPECT_NE(At(rounded, 0, 0), "FF0000");
    EXPECT_EQ(At(rounded, 3, 2), "FF0000");
    const PixelArray pie = // from the right to the top
        Read(Wmf(40, 40).Brush(0, kRed).Select(0).Add(T::Pie, {0, 20, 20, 40, 40, 40, 0, 0}).Done());
    EXPECT_EQ(At(pie, 25, 15), "FF0000");
    EXPECT_EQ(At(pie, 15, 25), "FFFFFF");
    const PixelArray chord =
        Read(Wmf(40, 40).Brush(0, kRed).Select(0).Add(T::Chord, {0, 20, 20, 40, 40, 40, 0, 0}).Done());
    EXPECT_EQ(At(chord, 32, 9), "FF0000");
    EXPECT_EQ(At(chord, 22, 17), "FFFFFF");
    const PixelArray arc =
        Read(Wmf(40, 40).Pen(0, 3, kBlue).Select(0).Add(T::Arc, {0, 20, 20, 40, 40, 40, 0, 0}).Done());
    EXPECT_EQ(At(arc, 33, 6), "0000FF");
    EXPECT_EQ(At(arc, 6, 33), "FFFFFF");
}

TEST(WmfDrawing, ClipsAndRegions) {
    const auto all = [](Wmf wmf) { return wmf.Add(T::Rectangle, {4, 6, 0, 0}); };
    // Slot 2: columns 0 to 3 of rows 0 to 3, and 4 to 6 of rows 1 to 3.
    const auto region = [] {
        return Canvas().Add(T::CreateRegion,
                            {0, 6, 0, 0, 0, 2, 4, 0, 0, 6, 3, 2, 0, 1, 0, 3, 2, 4, 1, 3, 0, 3, 4, 6, 4});
    };
    Expect({
        {"intersection", all(Canvas().Add(T::IntersectClipRect, {3, 4, 1, 1})),
         "......\n.rrr..\n.rrr..\n......"},
        {"exclusion", all(Canvas().Add(T::ExcludeClipRect, {3, 4, 1, 1})), "rrrrrr\nr...rr\nr...rr\nrrrrrr"},
        {"moved", all(Canvas().Add(T::IntersectClipRect, {2, 2, 0, 0}).Add(T::OffsetClipRegion, {1, 3})),
         "......\n...rr.\n...rr.\n......"},
        {"a region clips", all(region().Add(T::SelectClipRegion, {2})), "rrr...\nrrr.rr\nrrr.rr\n......"},
        {"and is let go", all(region().Add(T::SelectClipRegion, {2}).Add(T::SelectClipRegion, {0})),
         "rrrrrr\nrrrrrr\nrrrrrr\nrrrrrr"},
        {"filled", region().Add(T::FillRegion, {2, 1}), "rrr...\nrrr.rr\nrrr.rr\n......"},
        {"painted", region().Add(T::PaintRegion, {2}), "rrr...\nrrr.rr\nrrr.rr\n......"},
        {"inverted", region().Add(T::InvertRegion, {2}), "###...\n###.##\n###.##\n......"},
        {"framed", region().Add(T::FrameRegion, {2, 1, 1, 1}), "rrr...\nr.r.rr\nrrr.rr\n......"},
    });
}

TEST(WmfDrawing, Coordinates) {
    const auto corner = [](Wmf wmf) { return wmf.Add(T::Rectangle, {1, 1, 0, 0}); };
    Expect({
        {"a window of half as many units", corner(Canvas().Add(T::SetWindowExt, {2, 3})),
         "rr....\nrr....\n......\n......"},
        {"from another origin", corner(Canvas().Add(T::SetWindowOrg, {-1, -2}).Add(T::SetWindowExt, {4, 6})),
         "......\n..r...\n......\n......"},
        {"an axis that points up",
         corner(Canvas().Add(T::SetWindowOrg, {4, 0}).Add(T::SetWindowExt, {-4, 6})),
         "......\n......\n......\nr....."},
        {"a viewport of other units, which the picture shows",
         corner(Canvas()
                    .Add(T::SetWindowExt, {4, 6})
                    .Add(T::SetViewportOrg, {100, 100})
                    .Add(T::SetViewportExt, {400, 600})),
         "r.....\n......\n......\n......"},
        {"moved",
         corner(Canvas()
                    .Add(T::SetWindowExt, {4, 6})
                    .Add(T::OffsetWindowOrg, {-1, -1})
                    .Add(T::OffsetViewportOrg, {0, 1})),
         "......\n..r...\n......\n......"},
        {"scaled", corner(Canvas().Add(T::SetWindowExt, {4, 6}).Add(T::ScaleWindowExt, {2, 1, 3, 1})),
         "rrr...\nrrr...\n......\n......"},
    });
}

TEST(WmfDrawing, Bitmaps) {
    const ByteBuffer dib = Dib(2, 2, {kBlue, 0, kRed, kGreen}); // red, green; blue, black
    const auto with = [&](T type, std::initializer_list<std::int64_t> fields) {
        return Canvas()
            .Add(T::SetPixel, {0xFFFF, 0xFF, 3, 5})
            .Add(type, Bytes().Le16(fields).Append(dib).Done());
    };
    constexpr int kCopyLow = 0x0020;
    constexpr int kCopyHigh = 0x00CC;
    const ByteBuffer mono = // an old bitmap: two rows of one bit a pixel
        Bytes()
            .Le16({kCopyLow, kCopyHigh, 0, 0, 2, 2, 1, 1})
            .Le16({0, 2, 2, 2})
            .U8({1, 1, 0x40, 0, 0x80, 0})
            .Done();
    Expect({
        {"stretched", with(T::StretchDib, {kCopyLow, kCopyHigh, 0, 2, 2, 0, 0, 4, 4, 0, 1}),
         ".rrgg.\n.rrgg.\n.bb##.\n.bb##."},
        {"its lowest row", with(T::StretchDib, {kCopyLow, kCopyHigh, 0, 1, 2, 0, 0, 1, 2, 0, 1}),
         ".b#...\n......\n......\n......"},
        {"mirrored", with(T::DibStretchBlt, {kCopyLow, kCopyHigh, 2, 2, 0, 0, 2, -2, 1, 3}),
         "......\n.gr...\n.#b...\n......"},
        {"copied", with(T::DibBitBlt, {kCopyLow, kCopyHigh, 0, 0, 2, 2, 1, 1}),
         "......\n.rg...\n.b#...\n......"},
        {"to the device", with(T::SetDibToDevice, {0, 2, 0, 0, 0, 2, 2, 1, 1}),
         "......\n.rg...\n.b#...\n......"},
        {"an old bitmap", Canvas().Add(T::SetPixel, {0xFFFF, 0xFF, 3, 5}).Add(T::BitBlt, mono),
         "......\n.#....\n..#...\n......"},
        {"no bitmap", Canvas().Add(T::DibBitBlt, {0x0009, 0x0055, 0, 0, 0, 2, 2, 1, 1}),
         "......\n.##...\n.##...\n......"},
        {"pattern", Canvas().Add(T::PatBlt, {0x0021, 0x00F0, 2, 2, 1, 1}), "......\n.rr...\n.rr...\n......"},
        {"brush of a bitmap",
         Canvas()
             .Add(T::DibCreatePatternBrush, Bytes().Le16({5, 0}).Append(dib).Done())
             .Select(2)
             .Add(T::Rectangle, {4, 6, 0, 0}),
         "rgrgrg\nb#b#b#\nrgrgrg\nb#b#b#"},
        {"brush of an old bitmap, in the state's colours",
         Canvas()
             .Add(T::SetTextColour, {0, 0xFF})
             .Add(T::CreatePatternBrush,
                  Bytes().Le16({0, 2, 2, 2}).U8({1, 1}).Zeros(22).U8({0x40, 0, 0x80, 0}).Done())
             .Select(2)
             .Add(T::Rectangle, {4, 6, 0, 0}),
         "b.b.b.\n.b.b.b\nb.b.b.\n.b.b.b"},
    });
}

TEST(WmfDrawing, Text) {
    const auto letters = [](Wmf wmf, T type, const ByteBuffer& fields) {
        Bytes font;
        font.Le16({-40, 0, 0, 0, 400}).U8({0, 0, 0, 0, 0, 0, 0, 0}).Text("Sans").Zeros(28);
        return Read(
            wmf.Add(T::SetBkMode, {1}).Add(T::CreateFont, font.Done()).Select(0).Add(type, fields).Done());
    };
    const auto right = [](const PixelArray& picture) { // the last column with a blue pixel
        int last = -1;
        for (int x = 0; x < picture.Width(); ++x) {
            for (int y = 0; y < picture.Height(); ++y) {
                last = picture.Row(y)[4 * x + 2] < 128 ? x : last;
            }
        }
        return last;
    };
    const Wmf blue = Wmf(300, 100).Add(T::SetTextColour, {0, 0xFF});
    const PixelArray plain =
        letters(blue, T::TextOut, Bytes().Le16({5}).Text("Words ").Le16({10, 20}).Done());
    EXPECT_GT(right(plain), 100);
    EXPECT_EQ(right(letters(blue, T::ExtTextOut, Bytes().Le16({10, 20, 5, 0}).Text("Words ").Done())),
              right(plain));
    EXPECT_GT(
        right(letters(blue, T::ExtTextOut, Bytes().Le16({10, 20, 2, 0}).Text("HH").Le16({200, 40}).Done())),
        220);
    const PixelArray clipped =
        letters(blue, T::ExtTextOut, Bytes().Le16({10, 20, 5, 4, 0, 0, 60, 90}).Text("Words ").Done());
    EXPECT_LT(right(clipped), 60);
    EXPECT_GT(right(letters(Wmf(blue).Add(T::SetTextCharExtra, {20}), T::TextOut,
                            Bytes().Le16({5}).Text("Words ").Le16({10, 20}).Done())),
              right(plain) + 70);
}

} // namespace
} // namespace pictorel::metafile::testing
