// Pictures from the frames that scanners send: bands, depths, padding, and frames that make no picture.
#include "picture/ImagingError.h"
#include "programs/scanner/ScannedPage.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <initializer_list>

namespace pictorel::scanner {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes Words(std::initializer_list<std::uint16_t> values) {
    Bytes bytes(values.size() * 2);
    std::memcpy(bytes.data(), std::data(values), bytes.size());
    return bytes;
}

// The picture's pixels as 0xRRGGBB, row by row; alpha has to be opaque.
std::vector<unsigned> Colours(const PixelArray& picture) {
    std::vector<unsigned> colours;
    for (int y = 0; y < picture.Height(); ++y) {
        for (int x = 0; x < picture.Width(); ++x) {
            const std::uint8_t* const p = picture.Row(y) + 4 * x;
            EXPECT_EQ(p[3], 255);
            colours.push_back(p[0] | static_cast<unsigned>(p[1]) << 8 | static_cast<unsigned>(p[2]) << 16);
        }
    }
    return colours;
}

struct FrameCase {
    const char* name;
    std::vector<std::pair<FrameLayout, Bytes>> frames;
    std::vector<unsigned> colours;
};

TEST(ScannedPage, TakesEveryKindOfFrame) {
    for (const FrameCase& c : {
             FrameCase{
                 "grey", {{{Band::Gray, 8, 2, 2}, {10, 200, 0, 255}}}, {0x0A0A0A, 0xC8C8C8, 0, 0xFFFFFF}},
             FrameCase{"grey of 16 bits",
                       {{{Band::Gray, 16, 3, 6}, Words({0, 0xFFFF, 0x8000})}},
                       {0, 0xFFFFFF, 0x808080}},
             FrameCase{"line art, black where set",
                       {{{Band::Gray, 1, 9, 2}, {0b10100000, 0b10000000}}},
                       {0, 0xFFFFFF, 0, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0}},
             FrameCase{"colours", {{{Band::Rgb, 8, 2, 6}, {1, 2, 3, 4, 5, 6}}}, {0x010203, 0x040506}},
             FrameCase{"colours of 16 bits",
                       {{{Band::Rgb, 16, 1, 6}, Words({0xFFFF, 0x0101, 0x8080})}},
                       {0xFF0180}},
             FrameCase{"colours of one bit, lit where set",
                       {{{Band::Rgb, 1, 2, 3}, {0b10000000, 0b01000000, 0b11000000}}},
                       {0xFF00FF, 0x00FFFF}},
             FrameCase{"lines longer than their pixels",
                       {{{Band::Gray, 8, 1, 3}, {7, 99, 99, 8, 99, 99}}},
                       {0x070707, 0x080808}},
             FrameCase{
                 "a last line that is not whole", {{{Band::Gray, 8, 2, 2}, {1, 2, 3}}}, {0x010101, 0x020202}},
             FrameCase{"three passes out of order, one of them short",
                       {{{Band::Blue, 8, 1, 1}, {3, 6}},
                        {{Band::Red, 8, 1, 1}, {1}},
                        {{Band::Green, 8, 1, 2}, {2, 0, 5, 0}}},
                       {0x010203}},
         }) {
        ScannedPage page;
        for (const auto& [layout, bytes] : c.frames) {
            page.AddFrame(layout, bytes);
        }
        EXPECT_EQ(Colours(page.Picture()), c.colours) << c.name;
    }
}

TEST(ScannedPage, RefusesWhatMakesNoPicture) {
    for (const FrameCase& c : {
             FrameCase{"nothing", {}, {}},
             FrameCase{
                 "a colour is missing", {{{Band::Red, 8, 1, 1}, {1}}, {{Band::Blue, 8, 1, 1}, {1}}}, {}},
             FrameCase{"less than a line", {{{Band::Rgb, 8, 2, 6}, {1, 2, 3, 4, 5}}}, {}},
             FrameCase{"lines too short for their pixels", {{{Band::Rgb, 8, 2, 5}, Bytes(10)}}, {}},
             FrameCase{"one-bit lines too short", {{{Band::Gray, 1, 9, 1}, Bytes(10)}}, {}},
             FrameCase{"no width", {{{Band::Gray, 8, 0, 4}, Bytes(8)}}, {}},
             FrameCase{"twelve bits", {{{Band::Gray, 12, 1, 2}, Bytes(8)}}, {}},
             FrameCase{"passes of two widths",
                       {{{Band::Red, 8, 1, 2}, Bytes(8)}, {{Band::Blue, 8, 2, 2}, Bytes(8)}},
                       {}},
         }) {
        EXPECT_THROW(
            {
                ScannedPage page;
                for (const auto& [layout, bytes] : c.frames) {
                    page.AddFrame(layout, bytes);
                }
                page.Picture();
            },
            ImagingError)
            << c.name;
    }
}

} // namespace
} // namespace pictorel::scanner
