// What travels between a TIFF directory and the EXIF block of a picture.
#pragma once

#include "picture/codecs/tiff/TiffStructure.h"

#include <vector>

namespace pictorel::codecs {

// The entries of a directory that tell of the photograph, not of how its pixels are stored.
std::vector<TiffEntry> DescriptiveEntries(const TiffDirectory& directory);

// An EXIF block made of the descriptive entries of a page and the EXIF and GPS directories it points to, in
// the byte order of its file and upright; empty where the page has none, or where they claim absurdly much.
ByteBuffer ExifOfPage(const TiffStructure& structure, const TiffDirectory& page);

} // namespace pictorel::codecs
