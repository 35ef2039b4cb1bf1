// Colour management at the doors of the editor: whatever a file holds becomes 8-bit sRGB on the way in.
#pragma once

#include "picture/codecs/Codec.h"

#include <cstdint>
#include <memory>

namespace pictorel::codecs {

// What the samples of a file are before conversion. The 16-bit ones are native-endian. Lab8 is L* 0..255 for
// 0..100, then a* + 128 and b* + 128; Lab16 is L* 0..65535 for 0..100, then 256 (a* + 128) and 256 (b* +
// 128): the values of a TIFF file in CIE L*a*b*, the top bit of its signed a* and b* turned over.
enum class SampleLayout { Grey8, Grey16, Rgb16, Rgba16, Bgra8, Cmyk8, CmykInverted8, Cmyk16, Lab8, Lab16 };

// Turns rows of file samples into B, G, R, A. With no profile (empty, damaged, or of another kind of colour
// than the samples) grey and RGB samples are taken as sRGB and CMYK by the plain (1 - c)(1 - k) rule. Lab is
// always D50 CIE L*a*b*. Alpha of Rgba16 and Bgra8 is carried over, otherwise it is set to 255. Const use is
// safe from several threads.
class ColourConverter {
  public:
    ColourConverter(SampleLayout layout, ByteView iccProfile);
    ~ColourConverter();
    ColourConverter(ColourConverter&&) noexcept;
    ColourConverter& operator=(ColourConverter&&) noexcept;

    // True where Bgra8 rows need no change at all: no profile, or one that is sRGB.
    bool IsIdentity() const noexcept;

    // `bgra` may be the same memory as `samples` where those take four bytes a pixel.
    void ConvertRow(const void* samples, std::uint8_t* bgra, int pixels) const;

  private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

// Converts a whole 8-bit picture in place (all cores), and leaves in its details the profile that now
// describes it: the given one when it is sRGB already, a plain sRGB one otherwise, none when `iccProfile` is
// empty or damaged.
void ConvertToSrgb(PixelArray& picture, ByteView iccProfile);

// The profile to keep in the details of a picture converted from `iccProfile` by a ColourConverter (same
// rule).
ByteBuffer ProfileAfterConversion(ByteView iccProfile);

} // namespace pictorel::codecs
