// The chunks of a PNG file, walked without looking at their content.
#pragma once

#include "picture/codecs/Codec.h"

#include <string_view>
#include <vector>

namespace pictorel::codecs {

inline constexpr std::string_view kPngSignature = "\x89PNG\r\n\x1A\n";

// The parts of a file that libpng gets, in their order: the signature and all chunks but those that have no
// part in the picture (texts, however large, or between the data chunks) and headers after the first.
std::vector<ByteView> PngParts(ByteView file);

// What the data chunks hold, in one piece; `joined` keeps it where there are several.
ByteView PngData(ByteView file, ByteBuffer& joined);

// Whether the file ends inside a chunk.
bool IsPngCutShort(ByteView file);

// What stands in the first chunk of a name behind a text that its content begins with; empty where there is
// none.
ByteView FindPngChunk(ByteView file, std::string_view name, std::string_view begin);

// What the first chunk of a name holds whose check sum is right; empty where there is none.
ByteView FindSoundPngChunk(ByteView file, std::string_view name);

// The EXIF block that some programs write as a text in hexadecimal numbers; empty where there is none.
ByteBuffer FindPngExifText(ByteView file);

} // namespace pictorel::codecs
