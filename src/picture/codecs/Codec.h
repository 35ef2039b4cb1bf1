// The table of picture formats: how each is recognised, read and written.
#pragma once

#include "picture/PixelArray.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

namespace pictorel::codecs {

using ByteView = std::span<const std::uint8_t>;
using ByteBuffer = std::vector<std::uint8_t>;
using ByteSink = std::function<void(ByteView)>; // takes the parts of a file, in their order

struct ReadOptions {
    // The file is one of our own working files: its private segment (alpha, metadata, reduction) is believed.
    bool workingFile = false;
};

struct WriteOptions {
    int quality = 100; // 1..100, of JPEG and JPEG 2000
    // The file is one of our own working files: it holds the pixels to within 2 levels, and what the format
    // cannot hold (alpha, metadata, reduction) rides in a private segment.
    bool workingFile = false;
};

struct Codec {
    std::string_view name; // "JPEG"
    // The one extension it is saved under, upper case, without the dot: "JPG". It names the formats that are
    // only read, too.
    std::string_view extension;

    // Whether the bytes (the whole file, or its beginning) are of this format, by content alone. Never
    // throws.
    bool (*sniff)(ByteView file) noexcept;

    // The picture in the whole file: upright, 8-bit sRGB, metadata attached. Checks the limits right after
    // the header. A damaged file gives what could be decoded, the rest white, and PartShown() tells how much
    // that is; one of which less than a row can be had is refused. Throws ImagingError(UnsupportedFormat,
    // TooLarge, OutOfMemory).
    PixelArray (*read)(ByteView file, const ReadOptions& options);

    // The whole file. Transparency is laid over white where the format has none. Throws ImagingError. Null
    // where the format is only read.
    ByteBuffer (*write)(const PixelArray& picture, const WriteOptions& options);
};

// The formats of this folder, those with a sure signature first.
std::span<const Codec> Codecs() noexcept;

// The formats that a program knows: a value, since some are read and written beyond this folder.
class CodecTable {
  public:
    CodecTable() : CodecTable(std::span<const Codec>()) {}  // those of Codecs()
    explicit CodecTable(std::span<const Codec> askedFirst); // and before them others, of sure signatures

    std::span<const Codec> Rows() const noexcept { return rows_; }

    // The codec whose sniff accepts the file, or null.
    const Codec* FindByContent(ByteView file) const noexcept;

    // The codec that writes files with this extension (without the dot, any letter case), or null.
    const Codec* FindByExtension(std::string_view extension) const noexcept;

  private:
    std::vector<Codec> rows_;
};

// The same among Codecs() alone.
const Codec* FindCodecByContent(ByteView file) noexcept;
const Codec* FindCodecByExtension(std::string_view extension) noexcept;

} // namespace pictorel::codecs
