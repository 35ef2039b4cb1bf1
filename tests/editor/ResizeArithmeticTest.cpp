// Sizes derived from a percentage or from one side.
#include "editor/ResizeArithmetic.h"
#include "platform/Numbers.h"

#include <gtest/gtest.h>

namespace pictorel {
namespace {

struct Case {
    std::int16_t width0;
    std::int16_t height0;
    std::int16_t width;
    std::int16_t height;
    bool byPercent;
    std::int16_t percent;
    const char* size;
};

TEST(ResizeArithmetic, DerivesSizes) {
    const auto cases = {
        Case{1024, 768, 0, 0, true, 50, "512,384"},
        Case{1024, 768, 0, 0, true, 33, "338,253"},
        Case{333, 335, 0, 0, true, 50, "166,168"},       // halves to even
        Case{1024, 768, 800, -1, true, 100, "1024,768"}, // by percent, the sides do not count
        Case{1, 1, 0, 0, true, 1, "0,0"},
        Case{32767, 1, 0, 0, true, 200, "0,2"}, // more than 16 bits
        Case{1024, 768, 800, -1, false, 0, "800,600"},
        Case{1024, 768, -1, 600, false, 0, "800,600"},
        Case{1000, 750, 250, -1, false, 0, "250,188"},
        Case{600, 800, 250, -1, false, 0, "250,333"},
        Case{1, 32767, 10, -1, false, 0, "10,0"},
        Case{0, 0, 250, -1, false, 0, "250,0"}, // no picture
        Case{0, 0, -1, 250, false, 0, "0,250"},
        Case{1024, 768, 800, 600, false, 50, ""},   // nothing to derive
        Case{2000, 500, -1, -1, false, 0, "-4,-1"}, // the width is derived last
    };
    for (const Case& c : cases) {
        EXPECT_EQ(
            ComputeResizeSize(c.width0, c.height0, c.width, c.height, c.byPercent, c.percent).toStdString(),
            c.size)
            << c.width0 << " x " << c.height0 << " to " << c.width << ", " << c.height << ", " << c.percent
            << "%";
    }
}

TEST(SplitSize, TakesTwoNumbers) {
    const PictureSize size = SplitSize(QStringLiteral("800, 600"));
    EXPECT_EQ(size.width, 800);
    EXPECT_EQ(size.height, 600);
    for (const char* const text :
         {"", ",", "800", "800,", ",600", "800,600,", "800x600", "800,40000", "a,b"}) {
        EXPECT_THROW(SplitSize(QString::fromUtf8(text)), NumberError) << '"' << text << '"';
    }
}

} // namespace
} // namespace pictorel
