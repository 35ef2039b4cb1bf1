// Decoding of picture files from strangers, wherever it is done.
#pragma once

#include "picture/PixelArray.h"

#include <optional>
#include <string>

namespace pictorel {

class PictureDecoder {
  public:
    virtual ~PictureDecoder() = default;

    // The picture in a file, by content; nothing where this decoder cannot work at all on this machine.
    // Throws ImagingError that says why it is refused: UnsupportedFormat (where the file cannot be read,
    // too), TooLarge, OutOfMemory.
    virtual std::optional<PixelArray> Decode(const std::string& fileName) = 0;
};

} // namespace pictorel
