// Turns the samples of a decoded TIFF row, of any size and kind, into 8-bit or 16-bit ones.
#pragma once

#include "picture/codecs/tiff/TiffLayout.h"

#include <cstdint>

namespace pictorel::codecs {

// Samples of up to 8 bits become bytes, others 16-bit numbers; both span their whole range, but for the
// indices of a palette, which stay as they are.
class TiffSamples {
  public:
    explicit TiffSamples(const TiffLayout& layout);

    bool Narrow() const noexcept { return narrow_; }
    // The row of the file can be taken as it is.
    bool IsPlain() const noexcept { return narrow_ && layout_.bits == 8; }

    // `count` samples, which are put `step` apart.
    void Unpack(const std::uint8_t* row, std::uint8_t* out, int count, int step) const;
    void Unpack(const std::uint8_t* row, std::uint16_t* out, int count, int step) const;

  private:
    using Reader = void (*)(const TiffLayout&, const std::uint8_t*, std::uint16_t*, int count, int step);
    static Reader ReaderFor(const TiffLayout& layout);

    const TiffLayout& layout_;
    bool narrow_;
    Reader reader_;
};

} // namespace pictorel::codecs
