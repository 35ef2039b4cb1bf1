// Colour spaces by the code points of ITU-T H.273, in which films and the pictures made from their codecs
// tell primaries, transfer and matrix.
#pragma once

#include "picture/codecs/CalibratedProfile.h"

#include <vector>

namespace pictorel::codecs {

inline constexpr int kUnspecified = 2; // of all three

struct Cicp {
    int primaries = kUnspecified;
    int transfer = kUnspecified;
    int matrix = kUnspecified;
    bool isFullRange = true;
};

// The light 0..1 of evenly spaced samples, as CalibratedRgb takes it; empty for the sRGB curve and what is
// shown as it: unspecified and reserved code points, and the curves of television cameras (BT.601, BT.709,
// BT.2020), whose pictures are graded on screens with nearly the sRGB curve. PQ and HLG pictures are brought
// down to the range of paper white and below: up to half of it light stays as it is, from there on a smooth
// shoulder takes what is brighter, up to 1000 cd/m2. White is 203 cd/m2 (ITU-R BT.2408).
std::vector<float> CurveOfTransfer(int transfer);

// Whether the transfer is one of the two that tell light far above white: 8 bits are few for it.
bool IsHighDynamicRange(int transfer) noexcept;

// An ICC profile of the space; empty where it is sRGB or unknown.
ByteBuffer MakeCicpProfile(int primaries, int transfer);

} // namespace pictorel::codecs
