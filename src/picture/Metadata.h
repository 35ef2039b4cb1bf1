// What a picture file says beside its pixels; carried unchanged through every operation and back into files.
#pragma once

#include <cstdint>
#include <vector>

namespace pictorel {

struct Metadata {
    // The EXIF block as a TIFF structure (from "II*\0" or "MM\0*" on, without the "Exif\0\0" prefix), its
    // orientation already reset to 1 since pixels are upright in memory. Empty where the file had none.
    std::vector<std::uint8_t> exif;
    // An ICC profile that describes the 8-bit sRGB pixels in memory: the file's own where it is an sRGB
    // profile, a plain sRGB one where the pixels were converted from another space. Empty where the file had
    // none.
    std::vector<std::uint8_t> icc;
    // The XMP packet (UTF-8), without what it said of orientation, sizes, resolution and thumbnail. Empty
    // where the file had none.
    std::vector<std::uint8_t> xmp;
    // Pixels per inch; 0 where unknown.
    double dotsPerInchX = 0;
    double dotsPerInchY = 0;

    bool operator==(const Metadata&) const = default;
};

} // namespace pictorel
