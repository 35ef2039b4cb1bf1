// Reading JPEG 2000 files, see J2k.h.
#include "picture/codecs/ByteReader.h"
#include "picture/codecs/Exif.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/j2k/J2k.h"
#include "picture/codecs/j2k/J2kColouring.h"
#include "picture/codecs/j2k/J2kDecoder.h"
#include "picture/codecs/j2k/J2kStream.h"
#include "picture/codecs/j2k/Jp2Boxes.h"

#include <algorithm>
#include <cmath>

namespace pictorel::codecs {
namespace {

Metadata DetailsOf(const Jp2Boxes& boxes) {
    Metadata details;
    details.dotsPerInchX = boxes.dotsPerInchX;
    details.dotsPerInchY = boxes.dotsPerInchY;
    if (!boxes.exif.empty()) {
        details.exif = WithUprightOrientation(boxes.exif);
        if (details.dotsPerInchX == 0) {
            const Resolution resolution = ExifResolution(boxes.exif);
            details.dotsPerInchX = resolution.dotsPerInchX;
            details.dotsPerInchY = resolution.dotsPerInchY;
        }
    }
    return details;
}

// A tile without its finer details shows as many pixels as it has samples.
double PixelsIn(const J2kStream& stream, const J2kTile& tile) {
    const J2kArea area = stream.PixelsOf(tile.area);
    const int halvings = *std::max_element(tile.halvings.begin(), tile.halvings.end());
    return std::ldexp(static_cast<double>(area.Width() * area.Height()), -2 * halvings);
}

} // namespace

bool IsJ2k(ByteView file) noexcept {
    return StartsWith(file, kCodestreamSignature) || StartsWith(file, kJp2Signature);
}

PixelArray ReadJ2k(ByteView file, const ReadOptions& /*options*/) {
    const Jp2Boxes boxes = ReadJp2Boxes(file);
    const J2kStream stream = ReadJ2kStream(boxes.codestream);
    const J2kArea size = stream.PixelsOf(stream.grid);
    J2kDecoder decoder(stream);
    const J2kColouring colouring(stream, boxes);
    PixelArray picture(static_cast<int>(size.Width()), static_cast<int>(size.Height()));
    FillWhite(picture, 0, picture.Height()); // tiles may be missing anywhere
    J2kTile tile;
    double pixels = 0;
    double ofLastTile = 0;
    while (decoder.Next(tile)) {
        colouring.Convert(tile, picture);
        ofLastTile = PixelsIn(stream, tile);
        pixels += ofLastTile;
    }
    if (pixels == 0) {
        Refuse("The JPEG 2000 file is damaged: nothing of its picture can be decoded.");
    }
    pixels -= ofLastTile * (1 - stream.presentOfLast);
    picture.SetPartShown(std::min(1.0, pixels / (static_cast<double>(picture.Width()) * picture.Height())));
    picture.SetDetails(DetailsOf(boxes));
    colouring.Finish(picture);
    return ApplyOrientation(std::move(picture), boxes.exif.empty() ? 1 : ExifOrientation(boxes.exif));
}

} // namespace pictorel::codecs
