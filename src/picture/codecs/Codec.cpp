// The table of picture formats, see Codec.h.
#include "picture/codecs/Codec.h"

#include "picture/codecs/bmp/Bmp.h"
#include "picture/codecs/gif/Gif.h"
#include "picture/codecs/heif/Heif.h"
#include "picture/codecs/j2k/J2k.h"
#include "picture/codecs/jpeg/JpegCodec.h"
#include "picture/codecs/jxl/Jxl.h"
#include "picture/codecs/pcx/Pcx.h"
#include "picture/codecs/png/Png.h"
#include "picture/codecs/ras/Ras.h"
#include "picture/codecs/tga/Tga.h"
#include "picture/codecs/tiff/Tiff.h"
#include "picture/codecs/webp/WebP.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace pictorel::codecs {
namespace {

// Asked from the top: those with a sure signature first.
constexpr std::array kCodecs{
    Codec{"JPEG", "JPG", IsJpeg, ReadJpeg, WriteJpeg}, Codec{"PNG", "PNG", IsPng, ReadPng, WritePng},
    Codec{"GIF", "GIF", IsGif, ReadGif, WriteGif},     Codec{"TIFF", "TIF", IsTiff, ReadTiff, WriteTiff},
    Codec{"BMP", "BMP", IsBmp, ReadBmp, WriteBmp},     Codec{"Sun raster", "RAS", IsRas, ReadRas, WriteRas},
    Codec{"WebP", "WEBP", IsWebP, ReadWebP, nullptr},  Codec{"HEIF", "HEIF", IsHeif, ReadHeif, nullptr},
    Codec{"JPEG XL", "JXL", IsJxl, ReadJxl, nullptr},  Codec{"JPEG 2000", "J2K", IsJ2k, ReadJ2k, WriteJ2k},
    Codec{"PCX", "PCX", IsPcx, ReadPcx, WritePcx},     Codec{"Targa", "TGA", IsTga, ReadTga, WriteTga},
};

bool SameLetters(std::string_view a, std::string_view b) noexcept {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::toupper(x) == std::toupper(y); });
}

const Codec* FirstThatKnows(std::span<const Codec> codecs, ByteView file) noexcept {
    const auto found =
        std::find_if(codecs.begin(), codecs.end(), [&](const Codec& c) { return c.sniff(file); });
    return found == codecs.end() ? nullptr : &*found;
}

const Codec* WriterOf(std::span<const Codec> codecs, std::string_view extension) noexcept {
    const auto found = std::find_if(codecs.begin(), codecs.end(), [&](const Codec& c) {
        return c.write != nullptr && SameLetters(c.extension, extension);
    });
    return found == codecs.end() ? nullptr : &*found;
}

} // namespace

std::span<const Codec> Codecs() noexcept {
    return kCodecs;
}

CodecTable::CodecTable(std::span<const Codec> askedFirst) : rows_(askedFirst.begin(), askedFirst.end()) {
    rows_.insert(rows_.end(), kCodecs.begin(), kCodecs.end());
}

const Codec* CodecTable::FindByContent(ByteView file) const noexcept {
    return FirstThatKnows(rows_, file);
}

const Codec* CodecTable::FindByExtension(std::string_view extension) const noexcept {
    return WriterOf(rows_, extension);
}

const Codec* FindCodecByContent(ByteView file) noexcept {
    return FirstThatKnows(kCodecs, file);
}

const Codec* FindCodecByExtension(std::string_view extension) noexcept {
    return WriterOf(kCodecs, extension);
}

} // namespace pictorel::codecs
