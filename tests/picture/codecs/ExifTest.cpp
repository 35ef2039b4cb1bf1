// EXIF fields in both byte orders, damaged blocks, and the eight orientations.
#include "picture/codecs/Exif.h"
#include "picture/codecs/MadeExif.h"
#include "picture/codecs/tiff/TiffStructure.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace pictorel::codecs {
namespace {

using testing::MadeExif;

TEST(Exif, FieldsInBothByteOrders) {
    for (const bool littleEndian : {true, false}) {
        for (int orientation = 1; orientation <= 8; ++orientation) {
            const ByteBuffer exif = MadeExif({littleEndian, orientation, 300, 150, 2});
            EXPECT_EQ(ExifOrientation(exif), orientation);
            EXPECT_DOUBLE_EQ(ExifResolution(exif).dotsPerInchX, 300);
            EXPECT_DOUBLE_EQ(ExifResolution(exif).dotsPerInchY, 150);
            const ByteBuffer upright = WithUprightOrientation(exif);
            EXPECT_EQ(ExifOrientation(upright), 1);
            EXPECT_EQ(upright.size(), exif.size());
        }
        const ByteBuffer metric = MadeExif({littleEndian, 1, 100, 100, 3});
        EXPECT_DOUBLE_EQ(ExifResolution(metric).dotsPerInchX, 254);
        EXPECT_DOUBLE_EQ(ExifResolution(MadeExif({littleEndian, 1, 100, 100, 1})).dotsPerInchX, 0);
        EXPECT_EQ(ExifOrientation(MadeExif({littleEndian, 9, 1, 1, 2})), 1);
    }
}

TEST(Exif, OnlyOrientationAndThumbnailChange) {
    for (const bool littleEndian : {true, false}) {
        const ByteBuffer exif = MadeExif({littleEndian, 6, 300, 300, 2});
        const ByteBuffer upright = WithUprightOrientation(exif);
        EXPECT_EQ(upright, MadeExif({littleEndian, 1, 300, 300, 2, false}));
    }
}

// Writers do not agree on the type of the number.
TEST(Exif, OrientationOfAnyType) {
    for (const bool littleEndian : {true, false}) {
        for (const int type : {1, 3, 4}) {
            ByteBuffer exif = MadeExif({littleEndian, 6, 300, 300, 2});
            constexpr std::size_t kEntry = 8 + 2 + 12; // the second one
            const std::size_t width = type == 1 ? 1 : type == 3 ? 2 : 4;
            exif[kEntry + (littleEndian ? 2 : 3)] = static_cast<std::uint8_t>(type);
            std::fill_n(exif.begin() + kEntry + 8, 4, std::uint8_t{0});
            exif[kEntry + 8 + (littleEndian ? 0 : width - 1)] = 6;
            EXPECT_EQ(ExifOrientation(exif), 6) << type;
            EXPECT_EQ(ExifOrientation(WithUprightOrientation(exif)), 1) << type;
        }
    }
}

// Sizes in both directories, of either type, follow the picture; what is not told is not added.
TEST(Exif, SizesFollowThePicture) {
    for (const bool littleEndian : {true, false}) {
        const auto block = [littleEndian](std::uint32_t width, std::uint32_t height) {
            ByteBuffer bytes;
            TiffStructureWriter writer(bytes, littleEndian);
            bytes = {static_cast<std::uint8_t>(littleEndian ? 'I' : 'M'),
                     static_cast<std::uint8_t>(littleEndian ? 'I' : 'M')};
            writer.Number(42, 2);
            writer.Number(8, 4);
            const auto entry = [&writer](int tag, int type, std::uint32_t value) {
                writer.Number(static_cast<std::uint64_t>(tag), 2);
                writer.Number(static_cast<std::uint64_t>(type), 2);
                writer.Number(1, 4);
                writer.Number(value, type == 3 ? 2 : 4);
                writer.Number(0, type == 3 ? 2 : 0);
            };
            writer.Number(2, 2);
            entry(0x0100, 4, width);
            entry(0x8769, 4, 8 + 2 + 2 * 12 + 4);
            writer.Number(0, 4);
            writer.Number(2, 2);
            entry(0xA002, 3, width);
            entry(0xA003, 4, height);
            writer.Number(0, 4);
            return bytes;
        };
        EXPECT_EQ(WithPictureSize(block(4000, 3000), 640, 480), block(640, 480));
        const ByteBuffer without = MadeExif({littleEndian, 1, 300, 300, 2});
        EXPECT_EQ(WithPictureSize(without, 640, 480), without);
    }
    EXPECT_TRUE(WithPictureSize({}, 1, 1).empty());
}

TEST(Exif, DamageIsHarmless) {
    EXPECT_TRUE(WithUprightOrientation({}).empty());
    EXPECT_TRUE(WithUprightOrientation(ByteBuffer(64, 0)).empty());
    for (const bool littleEndian : {true, false}) {
        const ByteBuffer whole = MadeExif({littleEndian, 6, 300, 300, 2});
        for (std::size_t i = 0; i < whole.size(); ++i) {
            const ByteBuffer cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(i));
            for (const int flip : {0x01, 0x80, 0xFF}) {
                ByteBuffer damaged = whole;
                damaged[i] = static_cast<std::uint8_t>(damaged[i] ^ flip);
                for (const ByteBuffer& block : {cut, damaged}) {
                    const int orientation = ExifOrientation(block);
                    EXPECT_TRUE(orientation >= 1 && orientation <= 8);
                    const ByteBuffer upright = WithUprightOrientation(block);
                    EXPECT_TRUE(upright.empty() || upright.size() == block.size());
                    ExifResolution(block);
                    EXPECT_EQ(WithPictureSize(block, 5, 6).size(), block.size());
                }
            }
        }
    }
}

// Each orientation says where the first row and the first column of the stored picture are, seen upright
// (EXIF 2.3, 4.6.4): the pixel of stored row r, column c is looked up there.
TEST(Exif, EightOrientations) {
    constexpr int kWidth = 517;
    constexpr int kHeight = 389;
    PixelArray stored(kWidth, kHeight);
    std::uint8_t* const rows = stored.WritableRows();
    const auto pixelAt = [](int x, int y) {
        return std::array<std::uint8_t, 4>{static_cast<std::uint8_t>(x), static_cast<std::uint8_t>(y),
                                           static_cast<std::uint8_t>((x >> 8) * 16 + (y >> 8)), 200};
    };
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            std::copy_n(pixelAt(x, y).begin(), 4, rows + y * stored.Stride() + x * 4);
        }
    }
    Metadata details;
    details.dotsPerInchX = 300;
    details.dotsPerInchY = 150;
    stored.SetDetails(details);

    struct Case {
        char firstRow;    // T, B, L, R: the side where the stored row 0 is
        char firstColumn; // the same for the stored column 0
    };
    constexpr std::array<Case, 9> kCases{
        {{}, {'T', 'L'}, {'T', 'R'}, {'B', 'R'}, {'B', 'L'}, {'L', 'T'}, {'R', 'T'}, {'R', 'B'}, {'L', 'B'}}};
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const PixelArray upright = ApplyOrientation(stored, orientation);
        const Case side = kCases[static_cast<std::size_t>(orientation)];
        const bool turned = orientation >= 5;
        ASSERT_EQ(upright.Width(), turned ? kHeight : kWidth);
        ASSERT_EQ(upright.Height(), turned ? kWidth : kHeight);
        EXPECT_EQ(upright.Details().dotsPerInchX, turned ? 150 : 300);
        int wrong = 0;
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                int at[2] = {}; // across, down in the upright picture
                const auto place = [&](char where, int distance) {
                    const bool down = where == 'T' || where == 'B';
                    const int last = (down ? upright.Height() : upright.Width()) - 1;
                    at[down ? 1 : 0] = where == 'T' || where == 'L' ? distance : last - distance;
                };
                place(side.firstRow, y);
                place(side.firstColumn, x);
                const auto expected = pixelAt(x, y);
                wrong += std::equal(expected.begin(), expected.end(), upright.Row(at[1]) + at[0] * 4) ? 0 : 1;
            }
        }
        EXPECT_EQ(wrong, 0) << "orientation " << orientation;
    }
    EXPECT_TRUE(ApplyOrientation(stored, 1).SharesPixelsWith(stored));
}

} // namespace
} // namespace pictorel::codecs
