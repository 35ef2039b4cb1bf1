// Colour management at the doors of the editor: whatever a file holds becomes 8-bit sRGB on the way in.
#pragma once

#include "imaging/codecs/Codec.h"

#include <cstdint>
#include <memory>

namespace pictorel::codecs {

// What the samples of a file are before conversion. Grey16, Rgb16 and Rgba16 samples are native-endian 16
// bit.
enum class SampleLayout { Grey8, Grey16, Rgb16, Rgba16, Bgra8, Cmyk8, CmykInverted8, Cmyk16, Lab8, Lab16 };

// Turns rows of file samples into B, G, R, A. With no profile (empty or damaged) grey and RGB samples are
// taken as sRGB, CMYK by the plain (1 - c)(1 - k) rule and Lab as D50 CIE L*a*b*. Alpha of Rgba16 and Bgra8
// is carried over, otherwise it is set to 255. Const use is safe from several threads.
class ColourConverter {
  public:
    ColourConverter(SampleLayout layout, ByteView iccProfile);
    ~ColourConverter();
    ColourConverter(ColourConverter&&) noexcept;
    ColourConverter& operator=(ColourConverter&&) noexcept;

    // True where Bgra8 rows need no change at all: no profile, or one that is sRGB.
    bool IsIdentity() const noexcept;

    // `bgra` may be the same memory as `samples` for Bgra8.
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
