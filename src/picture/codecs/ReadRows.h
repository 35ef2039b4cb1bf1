// Pixels that a library decoded, on their way into a picture: rows of any depth through their profile.
#pragma once

#include "picture/codecs/ColourProfile.h"

#include <optional>

namespace pictorel::codecs {

// Takes rows of B, G, R, A bytes, or of 16-bit R, G, B, A, into a picture. A profile of greys is asked with
// the green of pixels that are grey. Const use is safe from several threads.
class RowReader {
  public:
    // `isGrey`: red, green and blue are the same in all pixels. Sets the details' profile.
    RowReader(PixelArray& picture, ByteView iccProfile, bool isWide, bool isGrey);

    // Part of a row; 8-bit samples may stand where they have to go.
    void Take(const void* samples, int x, int y, int pixels) const;

    std::uint8_t* Place(int x, int y) const noexcept {
        return rows_ + y * stride_ + std::ptrdiff_t{x} * PixelArray::kComponents;
    }

  private:
    template <class Sample>
    void TakeGrey(const Sample* samples, std::uint8_t* bgra, int pixels) const;

    std::uint8_t* rows_;
    std::ptrdiff_t stride_;
    bool isWide_;
    bool isGreyProfile_;
    ColourConverter converter_;
};

} // namespace pictorel::codecs
