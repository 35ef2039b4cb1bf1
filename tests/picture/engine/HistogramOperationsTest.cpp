// Automatic contrast and levels and equalisation: where they clip, what they leave alone.
#include "picture/ImagingError.h"
#include "picture/engine/HistogramOperations.h"
#include "support/Pictures.h"

#include <algorithm>
#include <cmath>

namespace pictorel::engine {
namespace {

using test::Alpha;
using test::At;
using test::Constant;
using test::Draw;
using test::Pixel;
using test::Random;
using test::Size;

std::uint8_t Byte(int value) {
    return static_cast<std::uint8_t>(value);
}

// 1000 pixels in one row: the first `low` of them grey `lowValue`, the last `high` of them `highValue`, and
// 100 up to 200 in between.
PixelArray WithOutliers(int low, int lowValue, int high, int highValue) {
    return Draw({1000, 1}, [=](int x, int) {
        const auto c = Byte(x < low ? lowValue : (x >= 1000 - high ? highValue : 100 + x % 101));
        return Pixel{c, c, c, 255};
    });
}

TEST(AutoContrast, ClipsHalfAPercentAtEachEnd) {
    // Five pixels of a thousand are clipped, six are not.
    const PixelArray clipped = AutoContrast(WithOutliers(5, 10, 5, 250));
    EXPECT_EQ(At(clipped, 0, 0)[0], 0);
    EXPECT_EQ(At(clipped, 999, 0)[0], 255);
    EXPECT_EQ(At(clipped, 101, 0)[0], 0) << "100 is the darkest value that counts";
    EXPECT_EQ(At(clipped, 100, 0)[0], 255) << "200 is the brightest value that counts";
    EXPECT_EQ(At(clipped, 50, 0)[0], 128) << "150 lies in the middle";

    const PixelArray kept = AutoContrast(WithOutliers(6, 10, 6, 250));
    EXPECT_EQ(At(kept, 0, 0)[0], 0);
    EXPECT_EQ(At(kept, 101, 0)[0], std::lround((100 - 10) * 255.0 / 240));
    EXPECT_EQ(At(kept, 999, 0)[0], 255);
}

TEST(AutoContrast, UsesOneMapFromLumaForAllChannels) {
    const PixelArray source = Draw({100, 1}, [](int x, int) {
        return x < 50 ? Pixel{60, 50, 50, 255} : Pixel{150, 150, 150, 255};
    });
    // Lumas are 51 (50.722 rounded) and 150.
    const PixelArray result = AutoContrast(source);
    EXPECT_EQ(At(result, 0, 0), (Pixel{Byte(std::lround(9 * 255.0 / 99)), 0, 0, 255}));
    EXPECT_EQ(At(result, 99, 0), (Pixel{255, 255, 255, 255}));
}

TEST(AutoLevels, StretchesEachChannelByItself) {
    const PixelArray source = Draw({100, 1}, [](int x, int) {
        return Pixel{Byte(x < 50 ? 10 : 20), Byte(x < 50 ? 100 : 200), 77, 255};
    });
    const PixelArray result = AutoLevels(source);
    EXPECT_EQ(At(result, 0, 0), (Pixel{0, 0, 77, 255})) << "a channel of one value stays";
    EXPECT_EQ(At(result, 99, 0), (Pixel{255, 255, 77, 255}));
}

TEST(AutoLevels, InvisiblePixelsDoNotCount) {
    PixelArray source = Draw({100, 1}, [](int x, int) {
        return x < 20 ? Pixel{0, 255, 0, 0} : Pixel{Byte(100 + x), Byte(100 + x), Byte(100 + x), 200};
    });
    source.SetHasAlpha(true);
    for (const PixelArray& result : {AutoLevels(source), AutoContrast(source), Equalize(source, 1)}) {
        EXPECT_EQ(At(result, 20, 0)[1], 0);
        EXPECT_EQ(At(result, 99, 0)[1], 255);
        EXPECT_EQ(At(result, 5, 0)[3], 0);
        EXPECT_EQ(At(result, 50, 0)[3], 200);
    }
}

TEST(HistogramOperations, NothingToDoGivesTheSourceItself) {
    PixelArray invisible = Constant({7, 5}, {1, 2, 3, 0});
    for (const PixelArray& source : {Constant({33, 17}, {1, 200, 3, 255}), invisible}) {
        EXPECT_TRUE(AutoContrast(source).SharesPixelsWith(source));
        EXPECT_TRUE(AutoLevels(source).SharesPixelsWith(source));
        EXPECT_TRUE(Equalize(source, 5).SharesPixelsWith(source));
    }
    const PixelArray full = WithOutliers(10, 0, 10, 255);
    EXPECT_TRUE(AutoContrast(full).SharesPixelsWith(full));
    EXPECT_TRUE(Equalize(full, 0).SharesPixelsWith(full));
    EXPECT_THROW(Equalize(full, -1), ImagingError);
}

TEST(Equalize, SpreadsTheValuesEvenly) {
    // Half of the pixels 10, a quarter 20, a quarter 30: 0, 128 (half of those above the darkest), 255.
    const PixelArray source = Draw({8, 1}, [](int x, int) {
        const std::uint8_t c = x < 4 ? 10 : (x < 6 ? 20 : 30);
        return Pixel{c, c, c, 255};
    });
    const PixelArray full = Equalize(source, 1);
    EXPECT_EQ(At(full, 0, 0)[0], 0);
    EXPECT_EQ(At(full, 4, 0)[0], 128);
    EXPECT_EQ(At(full, 7, 0)[0], 255);
    const PixelArray half = Equalize(source, 0.5);
    EXPECT_EQ(At(half, 0, 0)[0], 5);
    EXPECT_EQ(At(half, 4, 0)[0], 74); // 20 + 107.5 / 2 rounded
    const PixelArray most = Equalize(source, 5);
    EXPECT_EQ(At(most, 0, 0)[0], 0);
    EXPECT_EQ(At(most, 4, 0)[0], 255);
}

TEST(Equalize, KeepsTheDifferencesBetweenChannels) {
    const PixelArray source = Draw({8, 1}, [](int x, int) {
        const auto c = Byte(100 + x * 5);
        return Pixel{Byte(c + 6), c, Byte(c - 4), 255};
    });
    const PixelArray result = Equalize(source, 0.5);
    for (int x = 0; x < 8; ++x) {
        const Pixel p = At(result, x, 0);
        EXPECT_EQ(p[0] - p[1], 6);
        EXPECT_EQ(p[1] - p[2], 4);
    }
}

// The values that automatic levels take to 0 and 255, of an independent count.
struct Ends {
    int lowest;
    int highest;
};

Ends EndsOfChannel(const PixelArray& source, std::size_t k) {
    std::array<int, 256> counts{};
    int total = 0;
    for (int y = 0; y < source.Height(); ++y) {
        for (int x = 0; x < source.Width(); ++x) {
            const Pixel p = At(source, x, y);
            if (p[3] != 0) {
                ++total;
                ++counts[p[k]];
            }
        }
    }
    Ends ends{0, 255};
    for (int sum = counts[0]; sum * 200 <= total; sum += counts[static_cast<std::size_t>(ends.lowest)]) {
        ++ends.lowest;
    }
    for (int sum = counts[255]; sum * 200 <= total; sum += counts[static_cast<std::size_t>(ends.highest)]) {
        --ends.highest;
    }
    return ends;
}

// Large enough that the ends are found without counting every value, from rows that promise it and from rows
// that mislead, and that they are counted on several cores.
TEST(AutoLevels, FindsTheEndsOfLargePictures) {
    constexpr Size kSize{1201, 903};
    const struct {
        const char* name;
        PixelArray picture;
    } kCases[] = {
        {"noise", Random(kSize, Alpha::None, 5)},
        {"with alpha", Random(kSize, Alpha::Random, 5)},
        {"slope", Draw(kSize,
                       [](int x, int y) {
                           return Pixel{Byte(x / 5), Byte(20 + y / 5), Byte((x + y) / 9), 255};
                       })},
        {"rows apart", Draw(kSize,
                            [](int x, int y) {
                                return y % 16 == 0
                                           ? Pixel{0, 255, 9, 255}
                                           : Pixel{Byte(90 + x % 9), Byte(x % 256), Byte(y % 100), 255};
                            })},
        {"almost one value",
         Draw(kSize,
              [](int x, int y) {
                  return x % 190 == 7 ? Pixel{1, Byte(y % 2), 254, 255} : Pixel{0, 1, 255, 255};
              })},
        {"at the edge of the share", // 0.5 % and less, 0.5 % and more of the darkest
         Draw(kSize,
              [](int x, int y) {
                  const int place = y * 1201 + x;
                  return Pixel{Byte(place < 5422 ? 3 : 200), Byte(place < 5423 ? 3 : 200),
                               Byte(place < 5422 ? 250 : 10), 255};
              })},
    };
    for (const auto& c : kCases) {
        const PixelArray result = AutoLevels(c.picture);
        for (std::size_t k = 0; k < 3; ++k) {
            const auto [lowest, highest] = EndsOfChannel(c.picture, k);
            for (int x = 0; x < kSize.width; ++x) {
                const int before = At(c.picture, x, 702)[k];
                const double exact =
                    lowest < highest ? (before - lowest) * 255.0 / (highest - lowest) : before;
                ASSERT_NEAR(At(result, x, 702)[k], std::clamp(exact, 0.0, 255.0), 0.5001) << c.name << k;
            }
        }
    }
}

} // namespace
} // namespace pictorel::engine
