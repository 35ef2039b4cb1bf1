// Puts together the picture of a scanned page from the frames in which scanners send it.
#pragma once

#include "picture/PixelArray.h"

#include <cstdint>
#include <vector>

namespace pictorel::scanner {

enum class Band { Gray, Rgb, Red, Green, Blue };

// How the bytes of one frame are laid out. Samples are 1, 8 or 16 bits, the last in the machine's byte order;
// one-bit samples are packed from the high bit on, eight pixels a byte and channel, and in a grey frame a set
// bit is black. Lines may be longer than their pixels need.
struct FrameLayout {
    Band band = Band::Gray;
    int depth = 8;
    int pixelsPerLine = 0;
    int bytesPerLine = 0;
};

// A page is one grey frame, one of three colours, or three of one colour each in any order.
class ScannedPage {
  public:
    // Bytes beyond the last whole line are dropped. Throws ImagingError where no line is whole, the layout
    // contradicts itself, or the width is not that of the frames before.
    void AddFrame(const FrameLayout& layout, std::vector<std::uint8_t> bytes);

    // The opaque picture, as high as the lowest frame. Throws ImagingError where a colour is missing.
    PixelArray Picture() const;

  private:
    struct Frame {
        FrameLayout layout;
        std::vector<std::uint8_t> bytes;

        int Lines() const {
            return static_cast<int>(bytes.size() / static_cast<std::size_t>(layout.bytesPerLine));
        }
    };

    std::vector<Frame> frames_;
};

// The bytes that the layout's pixels take in one line.
std::int64_t NeededBytesPerLine(const FrameLayout& layout);

} // namespace pictorel::scanner
