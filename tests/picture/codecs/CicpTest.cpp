// Code points of H.273 against colours worked out by hand from the definitions.
#include "picture/codecs/Cicp.h"
#include "picture/codecs/ColourProfile.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

namespace pictorel::codecs {
namespace {

class Space {
  public:
    Space(int primaries, int transfer)
        : converter_(SampleLayout::Rgba16, MakeCicpProfile(primaries, transfer)) {}

    // Red, green, blue of a pixel 0..1 after conversion, 0..255.
    std::array<int, 3> Converted(std::array<double, 3> rgb) const {
        std::array<std::uint16_t, 4> samples{0, 0, 0, 65535};
        for (std::size_t i = 0; i < 3; ++i) {
            samples[i] = static_cast<std::uint16_t>(std::lround(rgb[i] * 65535));
        }
        std::array<std::uint8_t, 4> bgra{};
        converter_.ConvertRow(samples.data(), bgra.data(), 1);
        return {bgra[2], bgra[1], bgra[0]};
    }
    int Grey(double sample) const { return Converted({sample, sample, sample})[1]; }

  private:
    ColourConverter converter_;
};

TEST(Cicp, KnowsPrimariesAndCurves) {
    constexpr int kSrgb = 13;
    constexpr int kLinear = 8;
    const struct {
        const char* name;
        int primaries;
        int transfer;
        std::array<double, 3> rgb;
        std::array<int, 3> expected;
    } cases[] = {
        {"sRGB", 1, kSrgb, {0.2, 0.4, 0.6}, {51, 102, 153}},
        {"nothing told", 2, 2, {0.2, 0.4, 0.6}, {51, 102, 153}},
        {"reserved", 3, 99, {0.2, 0.4, 0.6}, {51, 102, 153}},
        {"television's curve is shown as sRGB", 1, 1, {0.2, 0.4, 0.6}, {51, 102, 153}},
        {"linear", 1, kLinear, {0.21586, 0.5, 1}, {128, 188, 255}},
        {"gamma 2.8", 1, 5, {0.5, 1, 0}, {104, 255, 0}},
        // Linear Display P3 to sRGB: 1.2249 r - 0.2249 g; -0.0420 r + 1.0420 g; -0.0197 r - 0.0786 g + 1.0983
        // b.
        {"a grey in Display P3", 12, kSrgb, {0.5, 0.5, 0.5}, {128, 128, 128}},
        {"a green in Display P3", 12, kLinear, {0.3, 0.5, 0.1}, {139, 189, 72}},
        // BT.2020: 1.6605 r - 0.5876 g - 0.0728 b; -0.1246 r + 1.1329 g - 0.0083 b; -0.0182 r - 0.1006 g
        // + 1.1187 b.
        {"a red in BT.2020", 9, kLinear, {0.5, 0.3, 0.2}, {207, 143, 117}},
    };
    for (const auto& c : cases) {
        const auto got = Space(c.primaries, c.transfer).Converted(c.rgb);
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(got[i], c.expected[i], 2) << c.name << ' ' << i;
        }
    }
    EXPECT_TRUE(MakeCicpProfile(1, kSrgb).empty());
}

// PQ and HLG agree on what is white and on what is half as bright, whatever they write for it.
TEST(Cicp, BringsBrightPicturesDown) {
    const Space pq(9, 16);
    const Space hlg(9, 18);
    // 203 cd/m2 are 58 % of PQ and 75 % of HLG; 101.5 are 50.8 % and 63.2 %.
    EXPECT_NEAR(pq.Grey(0.5807), hlg.Grey(0.75), 2);
    EXPECT_NEAR(pq.Grey(0.5807), 225, 4); // the shoulder has half its way behind it
    EXPECT_NEAR(pq.Grey(0.5083), 188, 3); // half the light of white, as it is
    EXPECT_NEAR(hlg.Grey(0.6322), 188, 3);
    EXPECT_EQ(pq.Grey(0), 0);
    EXPECT_EQ(hlg.Grey(0), 0);
    EXPECT_EQ(hlg.Grey(1), 255);
    EXPECT_EQ(pq.Grey(0.7518), 255); // 1000 cd/m2
    EXPECT_EQ(pq.Grey(1), 255);
    // Dark: 1.0 and 5.2 cd/m2.
    EXPECT_NEAR(pq.Grey(0.15), 16, 2);
    EXPECT_NEAR(pq.Grey(0.25), 44, 2);
    for (const Space* const space : {&pq, &hlg}) {
        for (int last = 0, i = 0; i <= 100; ++i) {
            EXPECT_GE(space->Grey(i / 100.0), last) << i;
            last = space->Grey(i / 100.0);
        }
    }
}

} // namespace
} // namespace pictorel::codecs
