// Converting a picture file into another file at a set size.
#pragma once

#include <cstdint>
#include <string>

namespace pictorel {

class ImageConvert {
  public:
    virtual ~ImageConvert() = default;

    virtual void SetOutputSize(std::int32_t width,
                               std::int32_t height) = 0; // 114; pixels, of the next conversion
    virtual void
    UseWholePicture() = 0; // 113; the source file shows a part of a picture, all of which is wanted

    // Writes `target` (JPEG, quality 100) from the picture in `source` at the output size set before. Throws
    // ImagingError (FileAccess, UnsupportedFormat, InvalidValue where no size is set).
    virtual void Convert(const std::string& source, const std::string& target) = 0; // 4
};

} // namespace pictorel
