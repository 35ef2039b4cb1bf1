// Components of a JPEG picture whose sampling is no whole part of the picture's (3 samples beside 2, say),
// which libjpeg decodes but does not enlarge.
#pragma once

#include "picture/codecs/jpeg/JpegDecoder.h"

#include <array>
#include <vector>

struct jpeg_decompress_struct; // the library's

namespace pictorel::codecs {

class JpegPlanes {
  public:
    // Whether the library would refuse to enlarge the components of this picture.
    static bool AreNeeded(const jpeg_decompress_struct& library) noexcept;

    // Decodes all components, each in its own size. The library must have been started with `raw_data_out`.
    // May be left by a jump out of the library: what was read until then is kept.
    void Read(jpeg_decompress_struct& library);

    // The first `rows` rows of the picture in full size, each sample between its neighbours, as DecodeJpeg()
    // gives them.
    void Show(const JpegTarget& target, int rows) const;

  private:
    static constexpr std::size_t kMostPlanes = 4;

    struct Plane {
        int across = 1; // samples for each `widest_` of the picture
        int down = 1;   // samples for each `tallest_` of the picture
        int width = 0;
        int height = 0;
        std::size_t stride = 0;
        std::vector<std::uint8_t> samples;
    };

    void MakeRoom(const jpeg_decompress_struct& library);
    void EnlargeRow(const Plane& plane, int y, std::uint8_t* out, int pixels) const;

    std::array<Plane, kMostPlanes> planes_{};
    std::size_t count_ = 0;
    int widest_ = 1;
    int tallest_ = 1;
    bool isLuma_ = false; // Y, Cb, Cr in place of R, G, B (or of the light that C, M, Y leave)
    bool isInk_ = false;
};

} // namespace pictorel::codecs
