// TIFF files of every kind made with libtiff on the spot, so that the pixels they must give are known.
#pragma once

#include "picture/codecs/Codec.h"

#include <tiffio.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace pictorel::codecs::testing {

struct TiffRecipe {
    std::string name{};
    int width = 37;
    int height = 29;
    int bits = 8;
    int samples = 3;
    int photometric = PHOTOMETRIC_RGB;
    int compression = COMPRESSION_NONE;
    int format = SAMPLEFORMAT_UINT;
    bool separate = false;
    int tile = 0; // its side; 0 for strips
    int rowsPerStrip = 8;
    int predictor = 0;
    int fillOrder = FILLORDER_MSB2LSB;
    int orientation = 1;
    std::vector<int> extra{};          // what samples beyond the colours are
    std::string mode = "w";            // of libtiff: "wb" big-endian, "w8" BigTIFF
    int tolerance = 0;                 // levels that a lossy compression may be off
    std::function<void(TIFF*)> tags{}; // further ones
};

inline void PrintTo(const TiffRecipe& recipe, std::ostream* out) {
    *out << recipe.name;
}

// The level 0..255 of a sample of the picture that files are made from.
int TiffLevel(const TiffRecipe& recipe, int x, int y, int sample);

// The bits of a sample that stand for a level: the level itself, scaled to the range of the sample's kind.
using TiffValue = std::function<int(int x, int y, int sample)>;
ByteBuffer MadeTiff(const TiffRecipe& recipe, const TiffValue& level);
inline ByteBuffer MadeTiff(const TiffRecipe& recipe) {
    return MadeTiff(recipe, [&](int x, int y, int sample) { return TiffLevel(recipe, x, y, sample); });
}

using Pixel = std::array<int, 4>; // red, green, blue, alpha

inline Pixel PixelAt(const PixelArray& picture, int x, int y) {
    const std::uint8_t* const p = picture.Row(y) + std::ptrdiff_t{4} * x;
    return {p[2], p[1], p[0], p[3]};
}

struct TiffMemory {
    ByteBuffer bytes;
    std::size_t position = 0;
};

// A file opened for reading by the library alone.
class TiffInMemory {
  public:
    explicit TiffInMemory(ByteBuffer file);
    ~TiffInMemory();
    TiffInMemory(const TiffInMemory&) = delete;
    TiffInMemory& operator=(const TiffInMemory&) = delete;

    TIFF* Handle() const { return handle_; }

  private:
    std::unique_ptr<TiffMemory> memory_;
    TIFF* handle_;
};

// A file of several pages.
ByteBuffer MadeTiffPages(const std::vector<TiffRecipe>& recipes);

} // namespace pictorel::codecs::testing
