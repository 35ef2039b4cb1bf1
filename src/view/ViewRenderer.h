// Draws what a view shows of a picture into memory; knows no window system.
#pragma once

#include "picture/PicturePyramid.h"
#include "view/ImageView.h"
#include "view/ViewAxis.h"

#include <cstddef>
#include <cstdint>

namespace pictorel {

// Memory that takes the drawing: blue, green, red and an alpha of 255, rows `stride` bytes apart.
struct Canvas {
    std::uint8_t* rows = nullptr;
    std::ptrdiff_t stride = 0;
    int width = 0;
    int height = 0;
};

// What is drawn. The canvas may be larger than the view of the axes; both begin at the same corner.
struct ViewScene {
    ViewAxis across;
    ViewAxis down;      // of the same zoom
    bool smooth = true; // false: the nearest picture pixel at every zoom
    ColourValue background = 0;

    bool operator==(const ViewScene&) const = default;
};

// Up to this zoom an enlarged picture is interpolated; beyond it a picture pixel is a square.
inline constexpr double kLargestSmoothZoom = 2.0;

// Side of a cell of the chequerboard under transparent pixels, in device pixels, and its two greys.
inline constexpr int kChequerCell = 8;
inline constexpr std::uint8_t kDarkChequer = 0x4a;
inline constexpr std::uint8_t kLightChequer = 0x62;

// Below 100 % each device pixel is the mean of the area that it covers, in premultiplied colour; at 100 % it
// is the picture's pixel, and above that bicubic or square, see kLargestSmoothZoom. Makes the levels of the
// pyramid that it needs. The picture's size and the axes' must agree. Throws ImagingError(OutOfMemory).
void DrawScene(PicturePyramid& pyramid, const ViewScene& scene, const Canvas& canvas);

} // namespace pictorel
