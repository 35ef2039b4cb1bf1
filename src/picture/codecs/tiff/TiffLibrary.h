// One TIFF file in memory opened by libtiff, silent and without shared state.
#pragma once

#include "picture/codecs/Codec.h"

#include <cstdint>
#include <memory>

struct tiff; // the library's handle

namespace pictorel::codecs {

// The library keeps its place in a handle: threads that decode side by side open one each.
class TiffFile {
  public:
    // Opens the directory at an offset. The bytes must outlive the object. Samples come as plain ones where
    // the library can turn them: JPEG's YCbCr as RGB, logarithmic light as 8-bit samples. Throws
    // ImagingError(UnsupportedFormat).
    TiffFile(ByteView file, std::uint64_t directoryOffset);
    ~TiffFile();
    TiffFile(TiffFile&&) noexcept;
    TiffFile& operator=(TiffFile&&) noexcept;

    tiff* Handle() const noexcept { return handle_.get(); }

  private:
    struct Memory;
    struct Close {
        void operator()(tiff* handle) const noexcept;
    };
    std::unique_ptr<Memory> memory_; // before the handle, which reads from it until it is closed
    std::unique_ptr<tiff, Close> handle_;
};

} // namespace pictorel::codecs
