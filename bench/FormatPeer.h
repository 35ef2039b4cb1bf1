// What the formats are measured beside: other libraries in this process, given whole files in memory.
#pragma once

#include "picture/codecs/Codec.h"

#include <memory>
#include <optional>
#include <string_view>

namespace pictorel::bench {

class FormatPeer {
  public:
    virtual ~FormatPeer() = default;
    // False where the library does not read the format.
    virtual bool Decode(std::string_view extension, const codecs::ByteBuffer& file) = 0;
    // The picture given at the beginning as a file of the format, losslessly compressed where the format has
    // such a form; nothing where the library does not write it.
    virtual std::optional<codecs::ByteBuffer> Encode(std::string_view extension) = 0;
};

std::unique_ptr<FormatPeer> MakeQtPeer(const PixelArray& picture);
// Null where the build has no MagickCore.
std::unique_ptr<FormatPeer> MakeMagickPeer(const PixelArray& picture);

} // namespace pictorel::bench
