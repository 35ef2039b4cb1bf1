// How large metafiles open, which are refused, and that none asks for work or memory without end.
#include "Records.h"

#include <chrono>

namespace pictorel::metafile::testing {
namespace {

std::string SizeOf(ByteView file) {
    try {
        const PixelArray picture = Read(file);
        return std::to_string(picture.Width()) + " x " + std::to_string(picture.Height());
    } catch (const ImagingError& error) {
        return error.what();
    }
}

// Puts a number of 32 bits in the place of another one.
ByteBuffer With(ByteBuffer file, std::size_t at, std::initializer_list<std::int64_t> values) {
    const Bytes numbers = Bytes().Le32(values);
    std::copy(numbers.Done().begin(), numbers.Done().end(), file.begin() + static_cast<std::ptrdiff_t>(at));
    return file;
}

Emf Square() {
    return Emf(400, 300).Add(EmfType::Rectangle, {100, 50, 300, 250});
}

TEST(Sizes, EnhancedMetafiles) {
    constexpr std::size_t kBounds = 8;
    constexpr std::size_t kFrame = 24;
    constexpr std::size_t kDevice = 72;
    const ByteBuffer file = Square().Done();
    EXPECT_EQ(SizeOf(file), "400 x 300");
    EXPECT_EQ(SizeOf(With(file, kFrame, {0, 0, 2540 * 3, 2540})), "288 x 96") << "at 96 dots an inch";
    EXPECT_EQ(SizeOf(With(file, kDevice, {19200, 19200})), "400 x 300") << "whatever those of the device";
    EXPECT_EQ(SizeOf(With(With(file, kFrame, {0, 0, 0, 0}), kBounds, {0, 0, 499, 399})), "500 x 400");
    EXPECT_EQ(SizeOf(With(With(file, kFrame, {0, 0, 0, 0}), kBounds, {0, 0, -1, -1})), "200 x 200")
        << "as far as it draws";
    EXPECT_EQ(SizeOf(With(file, kFrame, {0, 0, 0x7FFFFFFF, 0x7FFFFFFF})), "4096 x 4096")
        << "no larger than that";
    EXPECT_EQ(SizeOf(With(file, kDevice, {0, 0, 0, 0})), "400 x 300");
    EXPECT_DOUBLE_EQ(Read(With(file, kFrame, {0, 0, 2540 * 3, 2540})).Details().dotsPerInchX, 96);
}

TEST(Sizes, WindowsMetafiles) {
    using T = WmfType;
    const auto square = [](Wmf wmf) { return wmf.Add(T::Rectangle, {250, 300, 50, 100}); };
    EXPECT_EQ(SizeOf(square(Wmf(400, 300)).Done()), "400 x 300");
    EXPECT_EQ(SizeOf(With(square(Wmf(400, 300)).Done(), 12, {300 | 192 << 16})), "200 x 150")
        << "half the size on paper";
    const auto window = [&](int width, int height) {
        return square(Wmf(0, 0).Add(T::SetWindowExt, {height, width})).Done(false);
    };
    EXPECT_EQ(SizeOf(window(400, 300)), "400 x 300") << "units as pixels";
    EXPECT_EQ(SizeOf(window(10000, -5000)), "1024 x 512") << "but no more than fit a screen";
    EXPECT_EQ(SizeOf(square(Wmf(0, 0)).Done(false)), "200 x 200") << "as far as it draws";
}

TEST(Sizes, AFileOfBitmapsTakesTheirPixels) {
    const ByteBuffer dib = Dib(8, 4, {kRed, kRed, kRed, kRed, kBlue, kBlue, kBlue, kBlue});
    const auto stretched = [&](Emf emf) {
        return emf.Add(EmfType::StretchDiBits,
                       Bytes()
                           .Le32({0, 0, 0, 0, 0, 0, 0, 0, 8, 4, 80, 40, 120})
                           .Le32({static_cast<std::int64_t>(dib.size()) - 40, 0, 0x00CC0020, 4, 4})
                           .Append(dib)
                           .Done());
    };
    EXPECT_EQ(SizeOf(stretched(Emf(4, 4)).Done()), "8 x 4") << "each axis by itself";
    EXPECT_EQ(SizeOf(stretched(Emf(4, 4).Add(EmfType::SetPixel, {0, 0, 0})).Done()), "4 x 4");
    EXPECT_EQ(SizeOf(stretched(Emf(400, 400)).Done()), "400 x 400")
        << "a small one says nothing of a large sheet";
}

TEST(Sizes, WhatDrawsNothingIsRefused) {
    EXPECT_EQ(SizeOf(Emf(40, 30).Done()), "The metafile draws nothing.");
    EXPECT_EQ(SizeOf(Wmf(40, 30).Done()), "The metafile draws nothing.");
    const ByteBuffer comment = Bytes().Le32({16, kEmfPlusSignature, 0x4001, 12}).Done();
    EXPECT_EQ(SizeOf(Emf(40, 30).Add(EmfType::Comment, comment).Done()),
              "The metafile holds only records of a kind (EMF+) that this editor cannot draw.");
    EXPECT_EQ(SizeOf(Square().Add(EmfType::Comment, comment).Done()), "400 x 300")
        << "the plain ones are drawn";
    EXPECT_EQ(SizeOf(Bytes().Le16({1, 9, 0x300}).Done()), "The metafile draws nothing.");
}

TEST(Sizes, AFileCutShortShowsWhatCameBefore) {
    const ByteBuffer file = Emf(6, 4)
                                .NoPen()
                                .Brush(0, kRed)
                                .Add(EmfType::Rectangle, {0, 0, 3, 4})
                                .Add(EmfType::Rectangle, {0, 0, 6, 4})
                                .Done();
    const std::size_t lastRecord = file.size() - 20 - 24;
    EXPECT_EQ(Drawn(Read(ByteView(file).first(lastRecord + 20))), "rrr...\nrrr...\nrrr...\nrrr...");
    ByteBuffer overlong = With(file, lastRecord + 4, {0x7FFFFFF0});
    EXPECT_EQ(Drawn(Read(overlong)), "rrr...\nrrr...\nrrr...\nrrr...");
    EXPECT_EQ(Drawn(Read(With(file, lastRecord + 4, {0}))), "rrr...\nrrr...\nrrr...\nrrr...");
}

// Each file is small and asks for a great deal.
TEST(Sizes, SmallFilesEndSoon) {
    using T = EmfType;
    constexpr std::int64_t kFar = 0x7FFFFFFF;
    const auto repeated = [](Emf emf, T type, const ByteBuffer& fields) {
        for (int i = 0; i < 2000; ++i) {
            emf.Add(type, fields);
        }
        return With(emf.Done(), 24, {0, 0, 0x7FFFFFFF, 0x7FFFFFFF});
    };
    const Emf dots = Emf(99, 99).Pen(2, 1, 0);
    const ByteBuffer whole = Bytes().Le32({-kFar, -kFar, kFar, kFar}).Done();
    const struct {
        const char* name;
        ByteBuffer file;
    } cases[] = {
        {"rectangles", repeated(Emf(99, 99), T::Rectangle, whole)},
        {"ellipses with dots", repeated(dots, T::Ellipse, whole)},
        {"dotted lines", repeated(dots, T::LineTo, Bytes().Le32({kFar, kFar / 2}).Done())},
        {"wide lines",
         repeated(Emf(99, 99).Pen(0, 0x7FFFFFFF, 0), T::LineTo, Bytes().Le32({kFar, -kFar}).Done())},
        {"states", repeated(Emf(99, 99).Add(T::Rectangle, whole), T::SaveDc, {})},
        {"clips", repeated(Emf(99, 99).Add(T::Rectangle, whole), T::ExcludeClipRect,
                           Bytes().Le32({5, 5, 9, 9}).Done())},
        {"inverted paper",
         repeated(Emf(99, 99), T::BitBlt,
                  Bytes().Le32({0, 0, 0, 0, -kFar, -kFar, kFar, kFar, 0x00550009}).Zeros(56).Done())},
        {"growing worlds", repeated(Emf(99, 99).Add(T::Rectangle, whole), T::ModifyWorldTransform,
                                    Bytes().Le32({0x4B000000, 0x4B000000, 0, 0x4B000000, 0, 0, 2}).Done())},
    };
    for (const auto& c : cases) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(SizeOf(c.file), "4096 x 4096") << c.name;
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
        EXPECT_LT(seconds.count(), 20) << c.name; // some two on two cores; more under sanitizers
    }
}

} // namespace
} // namespace pictorel::metafile::testing
