// JPEG files of every kind, made and read by libjpeg itself, beside our codec.
#pragma once

#include "picture/codecs/Codec.h"
#include "picture/codecs/jpeg/JpegSegments.h"

#include <array>
#include <vector>

namespace pictorel::codecs::testing {

enum class JpegSpace { Grey, Rgb, YCbCr, Cmyk, Ycck };

struct JpegRecipe {
    JpegSpace space = JpegSpace::YCbCr;
    std::array<int, 2> sampling{1, 1}; // of the first component; the others have 1 x 1
    int quality = 90;
    int restartRows = 0;     // rows of MCUs between restart markers
    int restartInterval = 0; // MCUs between restart markers
    bool progressive = false;
    bool arithmetic = false;
    bool adobeMarker = true; // where the space asks for one
    int density = 0;         // in the JFIF header
    int densityUnit = 1;     // 1 inch, 2 centimetre
    std::vector<JpegMarker> markers{};
    ByteBuffer icc{};
};

// The picture's components go in as they are: B, G, R for the first three spaces (only G for Grey), and all
// four as ink for the others.
ByteBuffer MadeJpeg(const PixelArray& picture, const JpegRecipe& recipe);

// The level of a component, 0 to 2, of a smooth picture.
inline int GradientLevel(int component, double x, double y) {
    return static_cast<int>(30 + 20 * component + 0.6 * x + 0.9 * y);
}

// That picture, each component stored with its own number of samples across and down. Of the recipe only the
// space (Rgb or YCbCr) and the kind of coding count.
using Samplings = std::array<std::array<int, 2>, 3>;
ByteBuffer MadeGradientJpeg(int width, int height, const Samplings& samplings, const JpegRecipe& recipe);

// Decoded by the library in one go: B, G, R, 255, or four inks.
PixelArray LibraryPixels(ByteView file);

// A picture with gradients, edges and grain, the same for the same size.
PixelArray MadePicture(int width, int height);

// Every component of every pixel random.
PixelArray MadeNoise(int width, int height);

// One B, G, R, alpha (or four inks) everywhere.
PixelArray Solid(int width, int height, std::array<std::uint8_t, 4> pixel);

// The largest difference of any component in the first `rows` rows; 256 where sizes differ.
int Difference(const PixelArray& a, const PixelArray& b, int rows);
inline int Difference(const PixelArray& a, const PixelArray& b) {
    return Difference(a, b, a.Height());
}

} // namespace pictorel::codecs::testing
