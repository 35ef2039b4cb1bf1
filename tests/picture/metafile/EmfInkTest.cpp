// What enhanced metafiles draw with: pens, brushes, operations, bitmaps, gradients, text.
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

Emf Line(Emf emf, int y) {
    return emf.Add(T::MoveTo, {2, y}).Add(T::LineTo, {5, y});
}

// Slot 1, from fields behind the slot; `brush` is style, colour and hatch.
Emf GeometricPen(int style, int width, std::initializer_list<std::int64_t> brush,
                 std::initializer_list<int> dashes = {}) {
    Bytes fields;
    fields.Le32({1, 0, 0, 0, 0, 0x10000 | style, width})
        .Le32(brush)
        .Le32({static_cast<std::int64_t>(dashes.size())});
    for (const int dash : dashes) {
        fields.Le32({dash});
    }
    return Emf(8, 4).Add(T::ExtCreatePen, fields.Done()).Add(T::SelectObject, {1});
}

TEST(EmfInk, Pens) {
    constexpr int kFlat = 0x200;
    constexpr int kSquare = 0x100;
    Expect({
        {"thin whatever its width", Line(Emf(8, 4).Pen(0, 0, kBlue), 1),
         "........\n..bbbb..\n........\n........"},
        {"no pen", Line(Emf(8, 4).Pen(5, 1, kBlue), 1), "........\n........\n........\n........"},
        {"stock pen", Line(Emf(8, 4).Add(T::SelectObject, {0x80000007}), 1),
         "........\n..####..\n........\n........"},
        {"dots and background",
         Emf(8, 2)
             .Pen(2, 1, kBlue)
             .Add(T::SetBkColour, {kGreen})
             .Add(T::MoveTo, {0, 0})
             .Add(T::LineTo, {7, 0}),
         "?bbgggb?\n........"},
        {"dots, and the paper between them",
         Emf(8, 2).Pen(2, 1, kBlue).Add(T::SetBkMode, {1}).Add(T::MoveTo, {0, 0}).Add(T::LineTo, {7, 0}),
         "?bb...b?\n........"},
        {"thick with flat ends",
         GeometricPen(kFlat, 2, {0, kBlue, 0})
             .Add(T::SetWindowOrg, {0, 0})
             .Add(T::BeginPath)
             .Add(T::MoveTo, {2, 2})
             .Add(T::LineTo, {6, 2})
             .Add(T::EndPath)
             .Add(T::WidenPath)
             .Add(T::SelectObject, {0x80000004})
             .Add(T::FillPath, {0, 0, 0, 0}),
         "........\n..####..\n..####..\n........"},
        {"inside its frame", Emf(8, 4).Pen(0x2006, 2, kBlue).Brush(0, kRed).Add(T::Rectangle, {0, 0, 8, 4}),
         "bbbbbbbb\nbbbbbbbb\nbbbbbbbb\nbbbbbbbb"},
    });
    const PixelArray square = Read(Line(GeometricPen(kSquare, 4, {0, kBlue, 0}), 2).Done());
    EXPECT_EQ(At(square, 1, 2), "0000FF") << "a square end reaches beyond the line";
    const PixelArray flat = Read(Line(GeometricPen(kFlat, 4, {0, kBlue, 0}), 2).Done());
    EXPECT_EQ(At(flat, 1, 2), "FFFFFF");
    const PixelArray hatched = Read(Line(GeometricPen(kFlat, 4, {2, kBlue, 1}), 2).Done());
    EXPECT_EQ(At(hatched, 4, 2), "0000FF") << "upright lines every eight pixels";
    EXPECT_EQ(At(hatched, 3, 2), "FFFFFF");
    const PixelArray dashed = Read(Line(GeometricPen(kFlat | 7, 2, {0, kBlue, 0}, {2, 2}), 2).Done());
    EXPECT_EQ(At(dashed, 3, 2), "0000FF");
    EXPECT_EQ(At(dashed, 5, 2), "FFFFFF");
}

TEST(EmfInk, Brushes) {
    const auto filled = [](Emf emf) { return emf.NoPen().Add(T::Rectangle, {0, 0, 8, 4}); };
    // Black and white by turns, in a bitmap of one bit a pixel: black is the text's colour in a brush of that
    // kind.
    const ByteBuffer dib = Bytes()
                               .Le32({2, 0, 32, 48, 80, 8, 40, 2, 2})
                               .Le16({1, 1})
                               .Le32({0, 0, 0, 0, 0, 0, 0x000000, 0xFFFFFF, 0x80, 0x40})
                               .Done();
    const auto pattern = [&](T type) { return Emf(8, 4).Add(type, dib).Add(T::SelectObject, {2}); };
    Expect({
        {"upright hatch", filled(Emf(8, 4).Add(T::SetBkMode, {1}).Brush(2, kBlue, 1)),
         "....b...\n....b...\n....b...\n....b..."},
        {"hatch on its background", filled(Emf(8, 4).Add(T::SetBkColour, {kGreen}).Brush(2, kBlue, 0)),
         "gggggggg\ngggggggg\ngggggggg\nbbbbbbbb"},
        {"upwards", filled(Emf(8, 4).Brush(2, kBlue, 3)), ".......b\n......b.\n.....b..\n....b..."},
        {"moved", filled(Emf(8, 4).Add(T::SetBrushOrg, {1, 0}).Brush(2, kBlue, 1)),
         ".....b..\n.....b..\n.....b..\n.....b.."},
        {"bitmap", filled(pattern(T::CreateDibPatternBrush)), "#.#.#.#.\n.#.#.#.#\n#.#.#.#.\n.#.#.#.#"},
        {"bitmap of two colours that the state has",
         filled(pattern(T::CreateMonoBrush).Add(T::SetTextColour, {kRed}).Add(T::SetBkColour, {kBlue})),
         "rbrbrbrb\nbrbrbrbr\nrbrbrbrb\nbrbrbrbr"},
        {"stock brush", filled(Emf(8, 4).Add(T::SelectObject, {0x80000004})),
         "########\n########\n########\n########"},
        {"no such object", filled(Emf(8, 4).Brush(0, kRed).Add(T::SelectObject, {77})),
         "rrrrrrrr\nrrrrrrrr\nrrrrrrrr\nrrrrrrrr"},
    });
}

// Each operation on blue ink and red paper, by its truth table.
TEST(EmfInk, OperationsOnInkAndPaper) {
    for (int operation = 1; operation <= 16; ++operation) {
        const PixelArray picture = Read(Emf(4, 4)
                                            .NoPen()
                                            .Brush(0, kRed)
                                            .Add(T::Rectangle, {0, 0, 4, 4})
                                            .Brush(0, kBlue)
                                            .Add(T::SetRop2, {operation})
                                            .Add(T::Rectangle, {0, 0, 4, 4})
                                            .Done());
        std::string expected;
        for (const unsigned shift : {16U, 8U, 0U}) { // ink and paper of red, green, blue: 0 1, 0 0, 1 0
            const unsigned row = shift == 16 ? 1 : shift == 8 ? 0 : 2;
            expected += (static_cast<unsigned>(operation - 1) >> row & 1U) != 0 ? "FF" : "00";
        }
        EXPECT_EQ(At(picture, 1, 1), expected) << operation;
    }
}

// Fields of the block transfers: target, operation, origin in the source, no change of it, its colours and
// place.
Bytes Block(std::initializer_list<std::int64_t> target, std::uint32_t operation,
            std::initializer_list<std::int64_t> from, std::int64_t headerAt, std::size_t dibBytes) {
    Bytes fields;
    fields.Le32({0, 0, 0, 0}).Le32(target).Le32({operation}).Le32(from).Le32({0, 0, 0, 0, 0, 0, 0, 0});
    const std::int64_t pixels = static_cast<std::int64_t>(dibBytes) - 40;
    return fields.Le32({headerAt, dibBytes == 0 ? 0 : 40, headerAt + 40, dibBytes == 0 ? 0 : pixels});
}

TEST(EmfInk, Bitmaps) {
    const ByteBuffer dib = Dib(2, 2, {kBlue, 0, kRed, kGreen}); // red, green; blue, black
    const auto block = [&](T type, std::initializer_list<std::int64_t> target, std::uint32_t operation,
                           std::initializer_list<std::int64_t> from,
                           std::initializer_list<std::int64_t> size = {}) {
        const auto header = static_cast<std::int64_t>(100 + 4 * size.size());
        return Emf(6, 4)
            .Brush(0, kRed)
            .Add(T::SetPixel, {5, 3, 0xFFFFFF})
            .Add(type, Block(target, operation, from, header, dib.size()).Le32(size).Append(dib).Done());
    };
    const auto stretch = [&](std::initializer_list<std::int64_t> at,
                             std::initializer_list<std::int64_t> size) {
        return Emf(6, 4)
            .Add(T::SetPixel, {5, 3, 0xFFFFFF})
            .Add(T::StretchDiBits, Bytes()
                                       .Le32({0, 0, 0, 0})
                                       .Le32(at)
                                       .Le32({80, 40, 120, 16, 0, 0x00CC0020})
                                       .Le32(size)
                                       .Append(dib)
                                       .Done());
    };
    const auto toDevice = [&](std::initializer_list<std::int64_t> at,
                              std::initializer_list<std::int64_t> scans) {
        return Emf(6, 4).Add(
            T::SetDiBitsToDevice,
            Bytes().Le32({0, 0, 0, 0}).Le32(at).Le32({76, 40, 116, 16, 0}).Le32(scans).Append(dib).Done());
    };
    const ByteBuffer mask =
        Bytes().Le32({40, 2, 2}).Le16({1, 1}).Le32({0, 0, 0, 0, 0, 0, 0, 0xFFFFFF, 0x40, 0x80}).Done();
    const auto maskAt = static_cast<std::int64_t>(128 + dib.size());
    const auto plgMaskAt = static_cast<std::int64_t>(140 + dib.size());
    Expect({
        {"copied", block(T::BitBlt, {1, 1, 2, 2}, 0x00CC0020, {0, 0}), "......\n.rg...\n.b#...\n......"},
        {"a part of it", block(T::BitBlt, {1, 1, 1, 2}, 0x00CC0020, {1, 0}),
         "......\n.g....\n.#....\n......"},
        {"beyond its edge", block(T::BitBlt, {1, 1, 2, 2}, 0x00CC0020, {1, 1}),
         "......\n.#....\n......\n......"},
        {"stretched", block(T::StretchBlt, {0, 0, 4, 4}, 0x00CC0020, {0, 0}, {2, 2}),
         "rrgg..\nrrgg..\nbb##..\nbb##.."},
        {"mirrored", block(T::StretchBlt, {4, 0, -4, 2}, 0x00CC0020, {0, 0}, {2, 2}),
         "ggrr..\n##bb..\n......\n......"},
        {"from the lowest row upwards", stretch({0, 0, 0, 0, 2, 1}, {4, 1}),
         "bb##..\n......\n......\n......"},
        {"turned over", stretch({0, 2, 0, 0, 2, 2}, {2, -2}), "b#....\nrg....\n......\n......"},
        {"to the device", toDevice({1, 1, 0, 0, 2, 2}, {0, 2}), "......\n.rg...\n.b#...\n......"},
        {"one of its rows", toDevice({1, 1, 0, 1, 2, 1}, {1, 1}), "......\n.b#...\n......\n......"},
        {"the pattern alone", block(T::BitBlt, {1, 1, 2, 2}, 0x00F00021, {0, 0}),
         "......\n.rr...\n.rr...\n......"},
        {"both inverted", block(T::BitBlt, {1, 1, 2, 2}, 0x00330008, {0, 0}),
         "......\n.cm...\n.y....\n......"},
        {"exclusive or with the paper", block(T::BitBlt, {1, 1, 2, 2}, 0x00660046, {0, 0}),
         "......\n.cm...\n.y....\n......"},
        {"and with the pattern", block(T::BitBlt, {1, 1, 2, 2}, 0x00C000CA, {0, 0}),
         "......\n.r#...\n.##...\n......"},
        {"key colour", block(T::TransparentBlt, {1, 1, 2, 2}, kRed, {0, 0}, {2, 2}),
         "......\n..g...\n.b#...\n......"},
        {"no bitmap, paper inverted",
         Emf(6, 4).Add(T::BitBlt, Block({1, 1, 2, 2}, 0x00550009, {0, 0}, 0, 0).Done()),
         "......\n.##...\n.##...\n......"},
        {"only where the mask is 1",
         Emf(6, 4).Add(T::MaskBlt, Block({1, 1, 2, 2}, 0xAACC0020, {0, 0}, 128, dib.size())
                                       .Le32({0, 0, 0, maskAt, 48, maskAt + 48, 8})
                                       .Append(dib)
                                       .Append(mask)
                                       .Done()),
         "......\n.r....\n..#...\n......"},
        {"on a parallelogram, a quarter turned",
         Emf(6, 4).Add(T::PlgBlt,
                       Bytes()
                           .Le32({0, 0, 0, 0, 2, 0, 2, 2, 0, 0, 0, 0, 2, 2, 0, 0, 0, 0, 0, 0, 0, 0})
                           .Le32({140, 40, 180, 16, 0, 0, 0, 0, 0, 0, 0})
                           .Append(dib)
                           .Done()),
         "br....\n#g....\n......\n......"},
        {"and only where the mask is 1",
         Emf(6, 4).Add(T::PlgBlt,
                       Bytes()
                           .Le32({0, 0, 0, 0, 0, 0, 2, 0, 0, 2, 0, 0, 2, 2, 0, 0, 0, 0, 0, 0, 0, 0})
                           .Le32({140, 40, 180, 16, 0, 0, 0, plgMaskAt, 48, plgMaskAt + 48, 8})
                           .Append(dib)
                           .Append(mask)
                           .Done()),
         "r.....\n.#....\n......\n......"},
    });
}

TEST(EmfInk, BlendsBitmaps) {
    const ByteBuffer plain = Dib(1, 1, {kRed});
    const ByteBuffer half =
        Bytes().Le32({40, 1, 1}).Le16({1, 32}).Le32({0, 0, 0, 0, 0, 0, 0x80800000}).Done(); // red, half there
    const auto blend = [](std::uint32_t function, const ByteBuffer& dib) {
        Bytes fields = Block({0, 0, 4, 4}, function, {0, 0}, 108, dib.size());
        return Read(Emf(4, 4).Add(T::AlphaBlend, fields.Le32({1, 1}).Append(dib).Done()).Done());
    };
    EXPECT_EQ(At(blend(0x00FF0000, plain), 0, 0), "FF0000");
    EXPECT_NEAR(blend(0x00800000, plain).Row(1)[5], 127, 1);
    EXPECT_NEAR(blend(0x01FF0000, half).Row(1)[5], 127, 1);
    EXPECT_EQ(At(blend(0x00FF0000, half), 0, 0), "800000") << "its alpha means nothing there";
}

TEST(EmfInk, Gradients) {
    const auto vertices = [](std::initializer_list<std::int64_t> head) {
        return Bytes()
            .Le32({0, 0, 0, 0})
            .Le32(head)
            .Le32({0, 0})
            .Le16({0xFF00, 0, 0, 0})
            .Le32({100, 100})
            .Le16({0, 0, 0xFF00, 0});
    };
    const PixelArray across =
        Read(Emf(100, 100).Add(T::GradientFill, vertices({2, 1, 0}).Le32({0, 1}).Done()).Done());
    const PixelArray down =
        Read(Emf(100, 100).Add(T::GradientFill, vertices({2, 1, 1}).Le32({1, 0}).Done()).Done());
    EXPECT_NEAR(across.Row(10)[4 * 25 + 2], 191, 3) << "a quarter of the way from red";
    EXPECT_NEAR(across.Row(90)[4 * 75], 191, 3) << "to blue";
    EXPECT_NEAR(down.Row(25)[4 * 90 + 2], 191, 3);
    const PixelArray triangle =
        Read(Emf(100, 100)
                 .Add(T::GradientFill,
                      vertices({3, 1, 2}).Le32({0, 100}).Le16({0, 0xFF00, 0, 0}).Le32({0, 1, 2}).Done())
                 .Done());
    EXPECT_NEAR(triangle.Row(66)[4 * 33 + 0], 85, 6) << "all corners mixed in the middle";
    EXPECT_NEAR(triangle.Row(66)[4 * 33 + 1], 85, 6);
    EXPECT_NEAR(triangle.Row(66)[4 * 33 + 2], 85, 6);
    EXPECT_EQ(At(triangle, 90, 10), "FFFFFF");
}

// Where on a white picture anything was drawn.
struct Ink {
    int left = 1 << 20;
    int top = 1 << 20;
    int right = -1;
    int bottom = -1;
    int Width() const { return right - left + 1; }
    int Height() const { return bottom - top + 1; }
};
Ink InkOf(const PixelArray& picture) {
    Ink ink;
    for (int y = 0; y < picture.Height(); ++y) {
        for (int x = 0; x < picture.Width(); ++x) {
            if (picture.Row(y)[4 * x + 1] < 128) {
                ink = {std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x),
                       std::max(ink.bottom, y)};
            }
        }
    }
    return ink;
}

Emf Letters(int height, int angle) {
    Bytes font;
    font.Le32({3, height, 0, angle, angle, 400}).U8({0, 0, 0, 0, 0, 0, 0, 0});
    for (int i = 0; i < 32; ++i) {
        font.Le16({i < 4 ? "Sans"[i] : 0});
    }
    return Emf(300, 200).Add(T::SetBkMode, {1}).Add(T::CreateFont, font.Done()).Add(T::SelectObject, {3});
}

ByteBuffer Words(int x, int y, std::string_view text, std::initializer_list<std::int64_t> steps = {}) {
    Bytes fields;
    const auto count = static_cast<std::int64_t>(text.size());
    fields.Le32(
        {0, 0, 0, 0, 1, 0, 0, x, y, count, 76, 0, 0, 0, 0, 0, steps.size() == 0 ? 0 : 76 + 2 * count});
    for (const char letter : text) {
        fields.Le16({letter});
    }
    return fields.Le32(steps).Done();
}

TEST(EmfInk, TextStandsWhereItIsAligned) {
    constexpr int kTop = 0, kRight = 2, kCentre = 6, kBottom = 8, kBaseLine = 24;
    const auto ink = [](int height, int angle, int alignment) {
        return InkOf(Read(Letters(height, angle)
                              .Add(T::SetTextAlign, {alignment})
                              .Add(T::ExtTextOutW, Words(150, 100, "HHHH"))
                              .Done()));
    };
    const Ink base = ink(-40, 0, kBaseLine);
    EXPECT_NEAR(base.bottom, 99, 1);
    EXPECT_NEAR(base.Height(), 29, 3) << "capitals are some 0.7 of the height";
    EXPECT_NEAR(base.left, 152, 4);
    EXPECT_NEAR(ink(-40, 0, kBaseLine | kRight).right, 148, 4);
    const Ink centre = ink(-40, 0, kBaseLine | kCentre);
    EXPECT_NEAR(centre.left + centre.right, 300, 3);
    EXPECT_GE(ink(-40, 0, kTop).top, 100);
    EXPECT_LT(ink(-40, 0, kBottom).bottom, 100);
    EXPECT_LT(ink(40, 0, kBaseLine).Height(), base.Height())
        << "the height of a line is more than that of its letters";
    const Ink upwards = ink(-30, 900, kBaseLine);
    const Ink across = ink(-30, 0, kBaseLine);
    EXPECT_NEAR(upwards.right, 149, 1);
    EXPECT_NEAR(99 - upwards.bottom, across.left - 150, 1);
    EXPECT_NEAR(upwards.Height(), across.Width(), 1);
}

TEST(EmfInk, TextFollowsItsDistancesColoursAndRectangle) {
    const PixelArray spread = Read(Letters(-20, 0)
                                       .Add(T::SetTextColour, {kRed})
                                       .Add(T::ExtTextOutW, Words(10, 10, "II", {200, 200}))
                                       .Done());
    EXPECT_GT(InkOf(spread).Width(), 195);
    const PixelArray opaque = Read(Letters(-20, 0)
                                       .Add(T::SetBkMode, {2})
                                       .Add(T::SetBkColour, {kGreen})
                                       .Add(T::ExtTextOutW, Words(10, 10, "I I", {50, 50, 50}))
                                       .Done());
    EXPECT_EQ(At(opaque, 80, 20), "00FF00");
    EXPECT_EQ(At(opaque, 200, 20), "FFFFFF");
    Bytes fields; // nothing outside the rectangle, which is filled
    fields.Le32({0, 0, 0, 0, 1, 0, 0, 10, 10, 4, 76, 2 | 4, 0, 0, 30, 200, 0}).Le16({'H', 'H', 'H', 'H'});
    const PixelArray clipped =
        Read(Letters(-80, 0).Add(T::SetBkColour, {kBlue}).Add(T::ExtTextOutW, fields.Done()).Done());
    EXPECT_EQ(At(clipped, 5, 150), "0000FF");
    EXPECT_LT(InkOf(clipped).right, 30);
    const Ink onwards = InkOf(Read(Letters(-20, 0)
                                       .Add(T::SetTextAlign, {1})
                                       .Add(T::MoveTo, {100, 100})
                                       .Add(T::ExtTextOutW, Words(0, 0, "HHH"))
                                       .Add(T::LineTo, {290, 100})
                                       .Done()));
    EXPECT_GE(onwards.left, 100);
    EXPECT_NEAR(onwards.right, 290, 1);
    const PixelArray path = Read(Letters(-150, 0)
                                     .NoPen()
                                     .Brush(0, kRed)
                                     .Add(T::BeginPath)
                                     .Add(T::ExtTextOutW, Words(10, 10, "I"))
                                     .Add(T::EndPath)
                                     .Add(T::SelectClipPath, {5})
                                     .Add(T::Rectangle, {0, 0, 300, 200})
                                     .Done());
    EXPECT_GT(InkOf(path).Height(), 90) << "letters clip like any path";
    EXPECT_LT(InkOf(path).Width(), 100);
}

TEST(EmfInk, TextRecordsOfOtherKinds) {
    const Ink wide = InkOf(Read(Letters(-40, 0).Add(T::ExtTextOutW, Words(10, 10, "Text")).Done()));
    const auto same = [&](T type, const ByteBuffer& fields) {
        const Ink ink = InkOf(Read(Letters(-40, 0).Add(type, fields).Done()));
        EXPECT_EQ(ink.right, wide.right) << static_cast<int>(type);
        EXPECT_EQ(ink.bottom, wide.bottom) << static_cast<int>(type);
    };
    same(T::ExtTextOutA,
         Bytes().Le32({0, 0, 0, 0, 1, 0, 0, 10, 10, 4, 76, 0, 0, 0, 0, 0, 0}).Text("Text").Done());
    same(T::SmallTextOut, Bytes().Le32({10, 10, 4, 0x300, 1, 0, 0}).Text("Text").Done());
    same(T::SmallTextOut,
         Bytes().Le32({10, 10, 4, 0, 1, 0, 0, 0, 0, 0, 0}).Le16({'T', 'e', 'x', 't'}).Done());
    same(T::PolyTextOutA,
         Bytes().Le32({0, 0, 0, 0, 1, 0, 0, 1, 10, 10, 4, 80, 0, 0, 0, 0, 0, 0}).Text("Text").Done());
    same(T::ExtTextOutW, // glyphs, in the order that the usual fonts have
         Bytes()
             .Le32({0, 0, 0, 0, 1, 0, 0, 10, 10, 4, 76, 0x10, 0, 0, 0, 0, 0})
             .Le16({55, 72, 91, 87})
             .Done());
}

} // namespace
} // namespace pictorel::metafile::testing
