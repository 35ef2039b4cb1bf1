// What the editor and the decoder program say to each other: one message each way over a socket that keeps
// messages apart. The pixels travel in memory that both have.
#pragma once

#include <array>
#include <cstdint>

namespace pictorel::decoder {

inline constexpr int kSocket = 3; // the descriptor under which the program finds its end of the socket

// The program's argument where it is to load the fonts of the machine, for drawings with text.
inline constexpr const char* kWithFonts = "--with-fonts";

inline constexpr std::uint32_t kMark = 0x50445233; // opens every message; goes up with any change below

// Pixels begin on such a border in the shared memory, so that large pages can hold them.
inline constexpr std::int64_t kPixelAlignment = std::int64_t{2} << 20;

// The program is behind its walls and waits for its one request.
struct Ready {
    std::uint32_t mark = kMark;
    std::uint32_t walls = 0; // those that stand, a bit each, see Walls.h
};

// Two descriptors come with it: the picture's file to read, and the memory for the answer.
struct Request {
    std::uint32_t mark = kMark;
    std::uint32_t unused = 0;
    std::int64_t fileBytes = 0;
    std::int64_t memoryBytes = 0;
    std::int64_t roomBytes = 0; // that the machine has free
};

// What editing takes for each byte of a picture: the picture, the result of an operation, the halved copies
// for the screen, and the file that is written.
inline constexpr double kEditingPerByte = 2.5;

enum class Outcome : std::uint32_t {
    Decoded,
    Refused,    // with the kind of ImagingError and its text
    NeedsFonts, // it is a drawing, and this program was started without fonts
};

// Bytes of the shared memory.
struct Part {
    std::int64_t offset = 0;
    std::int64_t bytes = 0;
};

// The picture: PixelArray's rows at `pixels`, what they mean, and its Metadata.
struct Answer {
    std::uint32_t mark = kMark;
    Outcome outcome = Outcome::Refused;
    std::uint32_t failure = 0; // ImagingFailure
    std::uint32_t hasAlpha = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    Part pixels;
    Part exif;
    Part icc;
    Part xmp;
    double dotsPerInchX = 0;
    double dotsPerInchY = 0;
    double partShown = 1;         // PixelArray::PartShown()
    std::array<char, 256> text{}; // ends in a zero
};

} // namespace pictorel::decoder
