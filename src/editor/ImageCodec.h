// Picture files: reading one of any known format, writing one in each of eleven.
#pragma once

#include "picture/PixelArray.h"

#include <string>
#include <string_view>

namespace pictorel {

// File names are UTF-8. The entry number of each operation in the interface catalogue stands behind it.
class ImageCodec {
  public:
    virtual ~ImageCodec() = default;

    // 8; decides by content, never by extension. False, with `picture` empty, when the file cannot be opened
    // or is no picture that this editor reads. Throws ImagingError where it is one but cannot be had
    // (OutOfMemory; FileAccess where the program that decodes it safely does not start).
    virtual bool Read(const std::string& fileName, PixelArray& picture) = 0;

    // 13 BMP, 14 GIF, 15 JPG, 16 PNG, 17 TIF, 18 WMF, 19 EMF, 20 PCX, 21 TGA, 22 RAS, 23 J2K: the writer is
    // named by the format's extension, any letter case. The save is atomic: whatever happens half-way, a file
    // that was there stays whole. Throws ImagingError (FileAccess saying why, UnsupportedFormat for an
    // unknown format).
    virtual void Write(const PixelArray& picture, const std::string& fileName, std::string_view format) = 0;

    // A file that this codec wrote or read has another name now, so that what is known of it is not lost.
    virtual void FileRenamed(const std::string& from, const std::string& to) = 0;

    virtual void SetQuality(int quality) = 0; // 27; 1..100, of JPEG and JPEG 2000
};

} // namespace pictorel
