// Records of enhanced metafiles, each drawn and looked at as a small picture.
#include "Records.h"

namespace pictorel::metafile::testing {
namespace {

using T = EmfType;

struct Case {
    const char* name;
    Emf emf;
    const char* drawn;
};

void Expect(std::initializer_list<Case> cases) {
    for (const Case& c : cases) {
        EXPECT_EQ(Drawn(c.emf), c.drawn) << c.name;
    }
}

Emf Canvas() {
    return Emf(6, 4).NoPen().Brush(0, kRed);
}

constexpr std::int64_t kOne = 0x3F800000; // 1 and 2 as real numbers
constexpr std::int64_t kTwo = 0x40000000;

TEST(EmfDrawing, Shapes) {
    Expect({
        {"rectangle without its last row and column", Canvas().Add(T::Rectangle, {1, 1, 4, 3}),
         "......\n.rrr..\n.rrr..\n......"},
        {"rectangle from the far corner", Canvas().Add(T::Rectangle, {4, 3, 1, 1}),
         "......\n.rrr..\n.rrr..\n......"},
        {"a pen draws inside the rectangle", Canvas().Pen(0, 1, kBlue).Add(T::Rectangle, {1, 0, 5, 4}),
         ".bbbb.\n.brrb.\n.brrb.\n.bbbb."},
        {"no brush",
         Canvas().Pen(0, 1, kBlue).Add(T::SelectObject, {0x80000005}).Add(T::Rectangle, {1, 0, 5, 4}),
         ".bbbb.\n.b..b.\n.b..b.\n.bbbb."},
        {"lines",
         Canvas().Pen(0, 1, kBlue).Add(T::MoveTo, {1, 1}).Add(T::LineTo, {4, 1}).Add(T::LineTo, {4, 3}),
         "......\n.bbbb.\n....b.\n....b."},
        {"a pixel", Canvas().Add(T::SetPixel, {2, 3, kGreen}), "......\n......\n......\n..g..."},
        {"polygon of 32 bits", Canvas().Add(T::Polygon, {0, 0, 0, 0, 4, 1, 1, 3, 1, 3, 4, 1, 4}),
         "......\n.rr...\n.rr...\n.rr..."},
        {"polygon of 16 bits",
         Canvas().Add(T::Polygon16, Bytes().Le32({0, 0, 0, 0, 4}).Le16({1, 1, 3, 1, 3, 4, 1, 4}).Done()),
         "......\n.rr...\n.rr...\n.rr..."},
        {"two polygons, the inner one a hole",
         Canvas().Add(T::PolyPolygon,
                      {0, 0, 0, 0, 2, 8, 4, 4, 0, 0, 6, 0, 6, 4, 0, 4, 2, 1, 4, 1, 4, 3, 2, 3}),
         "rrrrrr\nrr..rr\nrr..rr\nrrrrrr"},
        {"the same filled by winding",
         Canvas().Add(T::SetPolyFillMode, {2}).Add(T::PolyPolygon, {0, 0, 0, 0, 2, 8, 4, 4, 0, 0, 6, 0,
                                                                    6, 4, 0, 4, 2, 1, 4, 1, 4, 3, 2, 3}),
         "rrrrrr\nrrrrrr\nrrrrrr\nrrrrrr"},
        {"two polylines",
         Canvas().Pen(0, 1, kBlue).Add(T::PolyPolyline, {0, 0, 0, 0, 2, 4, 2, 2, 0, 0, 5, 0, 0, 3, 5, 3}),
         "bbbbbb\n......\n......\nbbbbbb"},
        {"polyline onwards",
         Canvas().Pen(0, 1, kBlue).Add(T::MoveTo, {0, 0}).Add(T::PolylineTo, {0, 0, 0, 0, 2, 5, 0, 5, 3}),
         "bbbbbb\n.....b\n.....b\n.....b"},
        {"points with types",
         Canvas()
             .Pen(0, 1, kBlue)
             .Add(T::PolyDraw, Bytes().Le32({0, 0, 0, 0, 4, 1, 0, 4, 0, 4, 3, 1, 3}).U8({6, 2, 2, 3}).Done()),
         ".bbbb.\n.b..b.\n.b..b.\n.bbbb."},
    });
}

TEST(EmfDrawing, Curves) {
    const auto picture = [](const Emf& emf) { return Read(emf.Done()); };
    const PixelArray ellipse = picture(Emf(40, 20).NoPen().Brush(0, kRed).Add(T::Ellipse, {0, 0, 40, 20}));
    EXPECT_EQ(At(ellipse, 20, 10), "FF0000");
    EXPECT_EQ(At(ellipse, 1, 10), "FF0000");
    EXPECT_EQ(At(ellipse, 1, 1), "FFFFFF");
    const PixelArray rounded =
        picture(Emf(40, 20).NoPen().Brush(0, kRed).Add(T::RoundRect, {0, 0, 40, 20, 10, 10}));
    EXPECT_EQ(At(rounded, 0, 0), "FFFFFF");
    EXPECT_EQ(At(rounded, 5, 0), "FF0000");
    EXPECT_EQ(At(rounded, 0, 10), "FF0000");

    // From the right to the top: a quarter counter-clockwise, or all the rest clockwise.
    const Emf quarter = Emf(40, 40).NoPen().Brush(0, kRed);
    const std::initializer_list<std::int64_t> fields{0, 0, 40, 40, 40, 20, 20, 0};
    const PixelArray pie = picture(Emf(quarter).Add(T::Pie, fields));
    EXPECT_EQ(At(pie, 25, 15), "FF0000");
    EXPECT_EQ(At(pie, 15, 25), "FFFFFF");
    const PixelArray rest = picture(Emf(quarter).Add(T::SetArcDirection, {2}).Add(T::Pie, fields));
    EXPECT_EQ(At(rest, 25, 15), "FFFFFF");
    EXPECT_EQ(At(rest, 15, 25), "FF0000");
    const PixelArray chord = picture(Emf(quarter).Add(T::Chord, fields));
    EXPECT_EQ(At(chord, 32, 8), "FF0000");
    EXPECT_EQ(At(chord, 25, 15), "FFFFFF");

    const Emf lines = Emf(40, 40).Pen(0, 3, kBlue);
    const PixelArray arc = picture(Emf(lines).Add(T::Arc, fields));
    EXPECT_EQ(At(arc, 33, 5), "0000FF");
    EXPECT_EQ(At(arc, 20, 20), "FFFFFF");
    const PixelArray onwards =
        picture(Emf(lines).Add(T::MoveTo, {20, 20}).Add(T::ArcTo, {2, 2, 38, 38, 38, 20, 20, 2}));
    EXPECT_EQ(At(onwards, 30, 20), "0000FF") << "a line leads to the arc";
    EXPECT_EQ(At(onwards, 20, 3), "0000FF");
    const PixelArray angle = // from the bottom a half turn to the top
        picture(Emf(lines).Add(T::MoveTo, {20, 20}).Add(T::AngleArc, {20, 20, 18, 0xC2B40000, 0x43340000}));
    EXPECT_EQ(At(angle, 20, 30), "0000FF");
    EXPECT_EQ(At(angle, 38, 20), "0000FF");
    EXPECT_EQ(At(angle, 2, 20), "FFFFFF");
    const PixelArray bezier =
        picture(Emf(lines).Add(T::PolyBezier, {0, 0, 0, 0, 4, 0, 20, 0, -20, 40, 60, 40, 20}));
    EXPECT_EQ(At(bezier, 20, 20), "0000FF");
    EXPECT_EQ(At(bezier, 7, 9), "0000FF") << "bent upwards before the middle";
    EXPECT_EQ(At(bezier, 32, 30), "0000FF") << "and downwards after it";
}

TEST(EmfDrawing, Coordinates) {
    Expect({
        {"a window of half as many units",
         Canvas()
             .Add(T::SetMapMode, {8})
             .Add(T::SetWindowExt, {3, 2})
             .Add(T::SetViewportExt, {6, 4})
             .Add(T::Rectangle, {1, 0, 2, 1}),
         "..rr..\n..rr..\n......\n......"},
        {"origins, and an axis that points up",
         Canvas()
             .Add(T::SetMapMode, {8})
             .Add(T::SetWindowExt, {6, -4})
             .Add(T::SetViewportExt, {6, 4})
             .Add(T::SetWindowOrg, {10, 0})
             .Add(T::SetViewportOrg, {0, 4})
             .Add(T::Rectangle, {10, 0, 12, 1}),
         "......\n......\n......\nrr...."},
        {"an isotropic window takes the smaller scale",
         Canvas()
             .Add(T::SetMapMode, {7})
             .Add(T::SetWindowExt, {1, 1})
             .Add(T::SetViewportExt, {6, 2})
             .Add(T::Rectangle, {0, 0, 1, 1}),
         "rr....\nrr....\n......\n......"},
        {"scaled extents",
         Canvas()
             .Add(T::SetMapMode, {8})
             .Add(T::SetWindowExt, {12, 8})
             .Add(T::SetViewportExt, {6, 4})
             .Add(T::ScaleWindowExt, {1, 2, 1, 2})
             .Add(T::ScaleViewportExt, {2, 1, 1, 1})
             .Add(T::Rectangle, {0, 0, 1, 1}),
         "rr....\n......\n......\n......"},
        {"1440 units an inch upwards",
         Canvas().Add(T::SetMapMode, {6}).Add(T::SetViewportOrg, {0, 4}).Add(T::Rectangle, {0, 0, 30, 15}),
         "......\n......\n......\nrr...."},
        {"a world twice as large, moved",
         Canvas().Add(T::SetWorldTransform, {kTwo, 0, 0, kTwo, kOne, kOne}).Add(T::Rectangle, {0, 0, 1, 1}),
         "......\n.rr...\n.rr...\n......"},
        {"a world turned by a quarter",
         Canvas()
             .Add(T::SetWorldTransform, {0, kOne, 0xBF800000, 0, kTwo, 0})
             .Add(T::Rectangle, {0, 0, 3, 1}),
         ".r....\n.r....\n.r....\n......"},
        {"a shift before and one after the scale",
         Canvas()
             .Add(T::SetWorldTransform, {kTwo, 0, 0, kTwo, 0, 0})
             .Add(T::ModifyWorldTransform, {kOne, 0, 0, kOne, kOne, 0, 2})
             .Add(T::ModifyWorldTransform, {kOne, 0, 0, kOne, 0, kOne, 3})
             .Add(T::Rectangle, {0, 0, 1, 1}),
         "......\n..rr..\n..rr..\n......"},
        {"numbers that are none are ignored",
         Canvas()
             .Add(T::SetWorldTransform, {0x7FC00000, 0, 0, kOne, 0x7F800000, 0})
             .Add(T::Rectangle, {0, 0, 1, 1}),
         "......\n......\n......\n......"},
    });
}

TEST(EmfDrawing, StateIsSavedAndRestored) {
    const auto dot = [](Emf emf, int x) { return emf.Add(T::Rectangle, {x, 0, x + 1, 4}); };
    Emf emf = Emf(6, 4).NoPen().Brush(0, kRed).Add(T::SaveDc).Brush(0, kGreen).Add(T::SaveDc).Brush(0, kBlue);
    emf = dot(emf, 0).Add(T::RestoreDc, {-1});
    emf = dot(emf, 1).Brush(0, kBlue).Add(T::SaveDc).Add(T::RestoreDc, {1}); // to the first of two
    emf = dot(emf, 2).Add(T::RestoreDc, {-1}).Add(T::RestoreDc, {7});        // of which none is left
    emf = dot(emf, 3).Add(T::DeleteObject, {2});                             // a brush in use goes on
    emf = dot(emf, 4).Add(T::CreateBrush, {2, 0, kBlue, 0}).Add(T::SelectObject, {2});
    emf = dot(emf, 5);
    EXPECT_EQ(Drawn(emf).substr(0, 6), "bgrrrb");
}

TEST(EmfDrawing, PathsAndClips) {
    const auto square = [](Emf emf, int left, int top, int right, int bottom) {
        return emf.Add(T::BeginPath)
            .Add(T::MoveTo, {left, top})
            .Add(T::LineTo, {right, top})
            .Add(T::LineTo, {right, bottom})
            .Add(T::LineTo, {left, bottom})
            .Add(T::CloseFigure)
            .Add(T::EndPath);
    };
    const Emf blue = Canvas().Pen(0, 1, kBlue);
    const auto all = [](Emf emf) { return emf.Add(T::Rectangle, {0, 0, 6, 4}); };
    const auto region = [](int mode, std::initializer_list<std::int64_t> box) {
        return Bytes().Le32({48, mode, 32, 1, 1, 16, 0, 0, 6, 4}).Le32(box).Done();
    };
    Expect({
        {"fill", square(Canvas(), 1, 1, 4, 3).Add(T::FillPath, {0, 0, 0, 0}),
         "......\n.rrr..\n.rrr..\n......"},
        {"stroke", square(blue, 1, 0, 4, 3).Add(T::StrokePath, {0, 0, 0, 0}),
         ".bbbb.\n.b..b.\n.b..b.\n.bbbb."},
        {"both", square(blue, 1, 0, 4, 3).Add(T::StrokeAndFillPath, {0, 0, 0, 0}),
         ".bbbb.\n.brrb.\n.brrb.\n.bbbb."},
        {"nothing is left after drawing",
         square(Canvas(), 1, 1, 4, 3)
             .Add(T::AbortPath)
             .Add(T::FillPath, {0, 0, 0, 0})
             .Add(T::SetPixel, {0, 0, kGreen}),
         "g.....\n......\n......\n......"},
        {"widened",
         square(Canvas().Pen(0x2000, 2, kBlue), 2, 1, 4, 3)
             .Add(T::WidenPath)
             .Add(T::SetPolyFillMode, {2})
             .Add(T::FillPath, {0, 0, 0, 0}),
         ".rrrr.\n.rrrr.\n.rrrr.\n.rrrr."},
        {"path as a clip", all(square(Canvas(), 1, 1, 4, 3).Add(T::SelectClipPath, {5})),
         "......\n.rrr..\n.rrr..\n......"},
        {"intersection",
         all(Canvas().Add(T::IntersectClipRect, {1, 1, 5, 4}).Add(T::IntersectClipRect, {0, 0, 3, 3})),
         "......\n.rr...\n.rr...\n......"},
        {"exclusion", all(Canvas().Add(T::ExcludeClipRect, {1, 1, 5, 3})), "rrrrrr\nr....r\nr....r\nrrrrrr"},
        {"moved", all(Canvas().Add(T::IntersectClipRect, {0, 0, 2, 2}).Add(T::OffsetClipRegion, {3, 1})),
         "......\n...rr.\n...rr.\n......"},
        {"a clip ends with the state it was set in",
         all(Canvas().Add(T::SaveDc).Add(T::IntersectClipRect, {0, 0, 2, 2}).Add(T::RestoreDc, {-1})),
         "rrrrrr\nrrrrrr\nrrrrrr\nrrrrrr"},
        {"a region, and another one with it",
         all(Canvas()
                 .Add(T::ExtSelectClipRegion, region(5, {0, 0, 2, 2}))
                 .Add(T::ExtSelectClipRegion, region(2, {4, 2, 6, 4}))),
         "rr....\nrr....\n....rr\n....rr"},
        {"no region",
         all(Canvas().Add(T::IntersectClipRect, {0, 0, 1, 1}).Add(T::ExtSelectClipRegion, {0, 5})),
         "rrrrrr\nrrrrrr\nrrrrrr\nrrrrrr"},
        {"a clip for good",
         all(Canvas()
                 .Add(T::IntersectClipRect, {0, 0, 3, 4})
                 .Add(T::SetMetaRegion)
                 .Add(T::IntersectClipRect, {2, 0, 6, 2})),
         "..r...\n..r...\n......\n......"},
    });
}

TEST(EmfDrawing, Regions) {
    const auto record = [](std::initializer_list<std::int64_t> head) {
        return Bytes()
            .Le32({0, 0, 6, 4})
            .Le32(head)
            .Le32({32, 1, 2, 32, 0, 0, 6, 4, 0, 0, 3, 3, 4, 1, 6, 4})
            .Done();
    };
    Expect({
        {"filled", Canvas().Add(T::FillRegion, record({64, 2})), "rrr...\nrrr.rr\nrrr.rr\n....rr"},
        {"painted", Canvas().Add(T::PaintRegion, record({64})), "rrr...\nrrr.rr\nrrr.rr\n....rr"},
        {"inverted", Canvas().Add(T::InvertRegion, record({64})), "###...\n###.##\n###.##\n....##"},
        {"framed", Canvas().Add(T::FrameRegion, record({64, 2, 1, 1})), "rrr...\nr.r.rr\nrrr.rr\n....rr"},
    });
}

} // namespace
} // namespace pictorel::metafile::testing
