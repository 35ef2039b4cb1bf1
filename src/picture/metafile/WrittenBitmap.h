// What both metafile writers need of a picture: its bitmap without a file header, and its resolution.
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::metafile {

inline constexpr double kUsualResolution = 96; // pixels per inch, where a picture does not tell
inline constexpr std::uint32_t kSourceCopy = 0x00CC0020;
inline constexpr std::uint32_t kStretchByHalftone = 4;

// A device-independent bitmap of 24 bits a pixel, bottom row first: information header and pixels.
class WrittenBitmap {
  public:
    static constexpr std::size_t kHeaderBytes = 40;

    explicit WrittenBitmap(const PixelArray& picture);

    codecs::ByteView Bytes() const noexcept; // header and pixels

  private:
    codecs::ByteBuffer file_;
};

struct Resolution {
    double x; // pixels per inch
    double y;
};
Resolution WrittenResolution(const PixelArray& picture) noexcept;

} // namespace pictorel::metafile
