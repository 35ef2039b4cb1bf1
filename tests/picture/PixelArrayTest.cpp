// The picture value: sharing and copy-on-write, alignment of rows, what results inherit, limits of size.
#include "picture/ImagingError.h"
#include "picture/MadeDetails.h"
#include "picture/PixelArray.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace pictorel {
namespace {

void Fill(PixelArray& picture, std::uint8_t value) {
    std::uint8_t* const rows = picture.WritableRows();
    for (int y = 0; y < picture.Height(); ++y) {
        std::fill_n(rows + y * picture.Stride(), picture.RowBytes(), value);
    }
}

bool IsFilledWith(const PixelArray& picture, std::uint8_t value) {
    for (int y = 0; y < picture.Height(); ++y) {
        const std::uint8_t* const row = picture.Row(y);
        if (!std::all_of(row, row + picture.RowBytes(), [=](std::uint8_t c) { return c == value; })) {
            return false;
        }
    }
    return true;
}

TEST(PixelArray, ACopySharesUntilOneOfThemIsWritten) {
    // The second size is copied in bands by several threads, and comes from the pool.
    for (const auto& [width, height] : {std::pair{7, 5}, std::pair{1001, 777}}) {
        PixelArray original(width, height);
        Fill(original, 1);
        PixelArray copy = original;
        EXPECT_TRUE(copy.SharesPixelsWith(original));

        std::uint8_t* const rows = copy.WritableRows();
        EXPECT_FALSE(copy.SharesPixelsWith(original));
        EXPECT_TRUE(IsFilledWith(copy, 1)) << "content lost on the way";
        EXPECT_EQ(copy.WritableRows(), rows) << "pixels of one's own are not copied again";
        Fill(copy, 2);
        EXPECT_TRUE(IsFilledWith(original, 1));
        EXPECT_TRUE(IsFilledWith(copy, 2));

        PixelArray third = original;
        Fill(original, 3); // the one that was copied from is as careful as the copy
        EXPECT_TRUE(IsFilledWith(third, 1));
    }
}

TEST(PixelArray, WritingInPlaceWhereNobodyShares) {
    PixelArray picture(9, 9);
    const std::uint8_t* const before = picture.Row(0);
    PixelArray gone = picture;
    gone = PixelArray();
    EXPECT_EQ(picture.WritableRows(), before);
}

TEST(PixelArray, WhatACopySaysOfItselfStaysWithIt) {
    PixelArray original(2, 2);
    original.SetDetails(test::MadeDetails());
    original.SetHasAlpha(true);
    PixelArray copy = original;
    copy.SetHasAlpha(false);
    copy.SetReduction(0.25);
    copy.SetDetails({});
    EXPECT_TRUE(original.HasAlpha());
    EXPECT_EQ(original.Reduction(), 1.0);
    EXPECT_EQ(original.Details(), test::MadeDetails());

    original.WritableRows(); // making the pixels one's own keeps everything else
    EXPECT_TRUE(original.HasAlpha());
    EXPECT_EQ(original.Details(), test::MadeDetails());
    EXPECT_EQ(copy.Reduction(), 0.25);
}

TEST(PixelArray, ResultsInheritEverythingButThePixels) {
    PixelArray source(8, 4);
    source.SetHasAlpha(true);
    source.SetReduction(0.5);
    source.SetDetails(test::MadeDetails());
    const PixelArray result = PixelArray::Like(source, 3, 11);
    EXPECT_EQ(result.Width(), 3);
    EXPECT_EQ(result.Height(), 11);
    EXPECT_TRUE(result.HasAlpha());
    EXPECT_EQ(result.Reduction(), 0.5);
    EXPECT_EQ(result.Details(), source.Details());
    EXPECT_FALSE(PixelArray::Like(source).SharesPixelsWith(source));
}

TEST(PixelArray, RowsStartOnCacheLines) {
    for (const int width : {1, 15, 16, 17, 33, 4099}) {
        const PixelArray picture(width, 70);
        for (int y = 0; y < picture.Height(); ++y) {
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(picture.Row(y)) % 64, 0U)
                << width << " wide, row " << y;
        }
        EXPECT_GE(picture.Stride(), static_cast<std::ptrdiff_t>(picture.RowBytes()));
    }
}

TEST(PixelArray, EmptyArraysShareNothing) {
    EXPECT_TRUE(PixelArray().IsEmpty());
    EXPECT_FALSE(PixelArray().SharesPixelsWith(PixelArray()));
    EXPECT_EQ(PixelArray().Details(), Metadata());
}

TEST(PictureSize, IsJudgedBeforeMemoryIsTaken) {
    constexpr auto kHuge = std::numeric_limits<std::int64_t>::max();
    struct Case {
        std::int64_t width;
        std::int64_t height;
        ImagingFailure failure;
    };
    const auto kinds = {
        Case{0, 5, ImagingFailure::UnsupportedFormat},
        Case{5, 0, ImagingFailure::UnsupportedFormat},
        Case{-1, 5, ImagingFailure::UnsupportedFormat},
        Case{5, -32768, ImagingFailure::UnsupportedFormat},
        Case{32768, 1, ImagingFailure::TooLarge},
        Case{1, 32768, ImagingFailure::TooLarge},
        Case{40000, 40000, ImagingFailure::TooLarge},
        Case{std::int64_t{1} << 32, std::int64_t{1} << 32,
             ImagingFailure::TooLarge}, // the product is 0 in 64 bits
        Case{kHuge, kHuge, ImagingFailure::TooLarge},
    };
    for (const Case& c : kinds) {
        try {
            CheckPictureSize(c.width, c.height);
            ADD_FAILURE() << c.width << " x " << c.height << " is accepted";
        } catch (const ImagingError& error) {
            EXPECT_EQ(error.Kind(), c.failure) << c.width << " x " << c.height;
        }
        if (c.width <= std::numeric_limits<int>::max() && c.height <= std::numeric_limits<int>::max()) {
            EXPECT_THROW(PixelArray(static_cast<int>(c.width), static_cast<int>(c.height)), ImagingError);
        }
    }
    EXPECT_NO_THROW(CheckPictureSize(32767, 32767));
    EXPECT_NO_THROW(CheckPictureSize(1, 1));
}

TEST(PictureSize, TheRefusalNamesTheSize) {
    try {
        const PixelArray picture(40000, 123);
        FAIL();
    } catch (const ImagingError& error) {
        EXPECT_NE(std::string(error.what()).find("40000 x 123"), std::string::npos) << error.what();
    }
}

TEST(PixelArray, BorrowedRowsAreSharedAndLetGo) {
    constexpr int kWidth = 13;
    constexpr int kHeight = 5;
    const auto bytes = static_cast<std::size_t>(PixelArray::StrideOf(kWidth) * kHeight);
    bool isLetGo = false;
    auto* const memory = static_cast<std::uint8_t*>(std::aligned_alloc(64, bytes));
    std::fill_n(memory, bytes, std::uint8_t{7});
    {
        PixelArray borrowed(kWidth, kHeight, {memory, [&](std::uint8_t*) { isLetGo = true; }});
        EXPECT_EQ(borrowed.Stride(), PixelArray(kWidth, kHeight).Stride());
        EXPECT_TRUE(IsFilledWith(borrowed, 7));

        PixelArray copy = borrowed;
        Fill(copy, 9);
        EXPECT_TRUE(IsFilledWith(borrowed, 7)) << "writing to a copy reached the lender's memory";
        Fill(borrowed, 8);
        EXPECT_EQ(memory[0], 8) << "the only owner writes in place";
    }
    EXPECT_TRUE(isLetGo);
    std::free(memory);
    EXPECT_THROW(PixelArray(0, 5, nullptr), ImagingError);
}

} // namespace
} // namespace pictorel
