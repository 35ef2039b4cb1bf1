// Decodes JPEG data, a whole file or a strip of one, into rows of pixels.
#pragma once

#include "picture/codecs/Codec.h"

#include <cstddef>
#include <cstdint>

namespace pictorel::codecs {

enum class JpegColour { Grey, Rgb, Ink, InkInverted };

struct JpegInfo {
    int width;
    int height;
    JpegColour colour;
};

// What the header says. Checks the limits, and that the file is not absurdly short for the size it announces.
// Throws ImagingError (UnsupportedFormat, TooLarge, OutOfMemory).
JpegInfo ReadJpegInfo(ByteView file);

// A file, or a header followed by a part of the scan that begins where the restart markers count from 0
// again.
struct JpegStream {
    ByteView head;
    ByteView scan; // empty where `head` is a whole file
};

struct JpegTarget {
    std::uint8_t* rows;
    std::ptrdiff_t stride;
    int width;
    int height;
};

struct JpegOutcome {
    int goodRows; // rows from the top that hold decoded pixels; the others are undefined
    bool clean;   // nothing was missing or damaged
};

// Decodes into rows of the target: B, G, R, 255 for JpegColour::Grey and Rgb, ink as stored for the others. A
// damaged or truncated stream gives the rows that were decoded. Throws ImagingError (OutOfMemory, and
// UnsupportedFormat for a file made to keep the decoder busy); damage alone is told by the outcome.
JpegOutcome DecodeJpeg(const JpegStream& stream, const JpegTarget& target);

} // namespace pictorel::codecs
