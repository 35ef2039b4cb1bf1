// Colour profiles for files that describe their colours by primaries and gamma instead of a profile.
#pragma once

#include "picture/codecs/Codec.h"

#include <array>
#include <vector>

namespace pictorel::codecs {

// CIE 1931 xy chromaticities.
struct Chromaticity {
    double x = 0;
    double y = 0;
};
inline constexpr Chromaticity kSrgbWhite{0.3127, 0.3290};
inline constexpr std::array<Chromaticity, 3> kSrgbPrimaries{{{0.64, 0.33}, {0.30, 0.60}, {0.15, 0.06}}};

struct CalibratedRgb {
    Chromaticity white = kSrgbWhite;
    std::array<Chromaticity, 3> primaries = kSrgbPrimaries; // red, green, blue
    // The exponent that decodes samples to light (2.2), per channel; 0 where it is not known, which is taken
    // as the sRGB curve.
    std::array<double, 3> gamma{};
    // Where no exponent describes it: the light 0..1 of evenly spaced samples from black to white, of all
    // channels. Holds over `gamma`; empty where that says it all.
    std::vector<float> curve;
};

// An ICC profile of that space; empty where it is sRGB for all that can be seen, or no colour space at all.
// A gamma within 2 % of 2.2 on sRGB primaries is meant to be sRGB, whose curve no exponent can describe.
ByteBuffer MakeCalibratedProfile(const CalibratedRgb& space);

} // namespace pictorel::codecs
