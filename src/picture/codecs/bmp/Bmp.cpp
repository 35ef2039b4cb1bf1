// Windows and OS/2 bitmaps, see Bmp.h.
#include "picture/codecs/bmp/Bmp.h"

#include "picture/ForEachBand.h"
#include "picture/codecs/ByteReader.h"
#include "picture/codecs/ColourProfile.h"
#include "picture/codecs/FileMemory.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/bmp/BmpHeader.h"
#include "picture/codecs/bmp/BmpHuffman.h"
#include "picture/codecs/bmp/BmpRunLengths.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <vector>

namespace pictorel::codecs {
namespace {

// The samples of one channel among the bits of a pixel, scaled to 0..255.
class MaskedChannel {
  public:
    explicit MaskedChannel(std::uint32_t mask)
        : mask_(mask), shift_(mask == 0 ? 0 : std::countr_zero(mask)), maximum_(mask >> shift_) {
        if (maximum_ < kTableSize) {
            for (std::uint32_t value = 0; value <= maximum_; ++value) {
                table_[value] = Scaled(value);
            }
        }
    }

    std::uint8_t Of(std::uint32_t pixel) const {
        const std::uint32_t value = (pixel & mask_) >> shift_;
        return maximum_ < kTableSize ? table_[value] : Scaled(value);
    }

  private:
    static constexpr std::uint32_t kTableSize = 1024;

    std::uint8_t Scaled(std::uint32_t value) const {
        return maximum_ == 0
                   ? std::uint8_t{0}
                   : static_cast<std::uint8_t>((std::uint64_t{value} * 255 + maximum_ / 2) / maximum_);
    }

    std::uint32_t mask_;
    int shift_;
    std::uint32_t maximum_;
    std::array<std::uint8_t, kTableSize> table_{};
};

double EncodedSrgb(double linear) { // IEC 61966-2-1, 0..1
    return linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
}

class RowDecoder {
  public:
    explicit RowDecoder(const BmpHeader& header)
        : header_(header),
          red_(header.masks[0]),
          green_(header.masks[1]),
          blue_(header.masks[2]),
          alpha_(header.masks[3]) {
        for (int linear = 0; header.bits == 64 && linear <= kOne; ++linear) {
            encoded_.push_back(
                static_cast<std::uint8_t>(std::lround(255 * EncodedSrgb(linear / double{kOne}))));
        }
    }

    void Decode(const std::uint8_t* data, std::uint8_t* bgra, int pixels) const {
        if (header_.bits <= 8) {
            ColourIndices(data, header_.bits, header_.palette, bgra, pixels);
        } else if (header_.bits == 24 && header_.compression == BmpCompression::None) {
            CopyOpaque(data, bgra, pixels);
        } else if (header_.bits == 64) {
            Decode64(data, bgra, pixels);
        } else {
            DecodeMasked(data, bgra, pixels);
        }
    }

  private:
    void Decode64(const std::uint8_t* data, std::uint8_t* bgra, int pixels) const {
        for (int i = 0; i < PixelArray::kComponents * pixels; ++i, data += 2) {
            const int linear = std::clamp<int>(static_cast<std::int16_t>(data[0] | data[1] << 8), 0, kOne);
            const bool isAlpha = i % PixelArray::kComponents == 3;
            bgra[i] = isAlpha ? static_cast<std::uint8_t>((linear * 255 + kOne / 2) / kOne)
                              : encoded_[static_cast<std::size_t>(linear)];
        }
    }

    void DecodeMasked(const std::uint8_t* data, std::uint8_t* bgra, int pixels) const {
        const auto pixelBytes = static_cast<std::size_t>(header_.bits) / 8;
        const bool hasAlpha = header_.masks[3] != 0;
        for (int x = 0; x < pixels; ++x, data += pixelBytes, bgra += PixelArray::kComponents) {
            const std::uint32_t pixel = data[0] | data[1] << 8 | (pixelBytes > 2 ? data[2] << 16 : 0) |
                                        (pixelBytes > 3 ? std::uint32_t{data[3]} << 24 : 0U);
            bgra[0] = blue_.Of(pixel);
            bgra[1] = green_.Of(pixel);
            bgra[2] = red_.Of(pixel);
            bgra[3] = hasAlpha ? alpha_.Of(pixel) : std::uint8_t{255};
        }
    }

    // Pixels of 64 bits are blue, green, red and alpha in 16 bits each, of which 8192 is 1; colours are
    // linear light.
    static constexpr int kOne = 8192;

    const BmpHeader& header_;
    std::vector<std::uint8_t> encoded_; // sRGB of linear light
    MaskedChannel red_;
    MaskedChannel green_;
    MaskedChannel blue_;
    MaskedChannel alpha_;
};

void DecodeRawRows(const BmpHeader& header, PixelArray& picture) {
    const RowDecoder decoder(header);
    const std::size_t rowBytes = header.FileRowBytes();
    std::uint8_t* const rows = picture.WritableRows();
    ForEachBand(header.height, rowBytes + picture.RowBytes(), [&](int first, int end) {
        for (int fileRow = first; fileRow < end; ++fileRow) {
            const ByteView data =
                Slice(header.pixels, static_cast<std::size_t>(fileRow) * rowBytes, rowBytes);
            const int present = static_cast<int>(
                std::min<std::size_t>(data.size() * 8 / static_cast<std::size_t>(header.bits),
                                      static_cast<std::size_t>(header.width)));
            const int y = header.topDown ? fileRow : header.height - 1 - fileRow;
            std::uint8_t* const bgra = rows + y * picture.Stride();
            decoder.Decode(data.data(), bgra, present);
            std::memset(bgra + present * PixelArray::kComponents, 0xFF,
                        static_cast<std::size_t>(header.width - present) * PixelArray::kComponents);
        }
    });
}

PixelArray ReadEmbedded(const BmpHeader& header, const ReadOptions& options) {
    const Codec* const codec = FindCodecByContent(header.pixels);
    if (codec == nullptr || (codec->name != "JPEG" && codec->name != "PNG")) {
        Refuse("The bitmap should hold a JPEG or PNG picture, and does not.");
    }
    return codec->read(header.pixels, options);
}

// Rows that the file does not hold say nothing about its alpha.
void JudgeAlphaOfRowsPresent(const BmpHeader& header, PixelArray& picture) {
    if (header.masks[3] == 0 && header.bits != 64) {
        return;
    }
    const auto present = static_cast<int>(std::min<std::size_t>(header.pixels.size() / header.FileRowBytes(),
                                                                static_cast<std::size_t>(header.height)));
    const int firstRow = header.topDown ? 0 : header.height - present;
    JudgeAlpha(picture, firstRow, firstRow + present);
}

constexpr const char* kNoPixels = "The bitmap ends before its first pixel.";

PixelArray Decode(const BmpHeader& header, const ReadOptions& options) {
    if (header.pixels.empty()) {
        Refuse(kNoPixels);
    }
    if (header.compression == BmpCompression::EmbeddedFile) {
        return ReadEmbedded(header, options);
    }
    const bool hasRunLengths = header.compression != BmpCompression::None &&
                               header.compression != BmpCompression::BitFields &&
                               header.compression != BmpCompression::Huffman;
    if (hasRunLengths) {
        constexpr std::int64_t kMostJumpedOver = 1000; // pixels for each that is named
        CheckClaimedSize(header.width, header.height,
                         static_cast<std::size_t>(PixelsNamedByRunLengths(header)), kMostJumpedOver);
    }
    PixelArray picture = header.compression == BmpCompression::Huffman
                             ? DecodeBmpHuffman(header)
                             : PixelArray(header.width, header.height);
    if (header.compression == BmpCompression::None || header.compression == BmpCompression::BitFields) {
        DecodeRawRows(header, picture);
        NotePixelsShown(picture,
                        PixelsInRows(header.pixels.size(), header.FileRowBytes(), header.bits, header.width));
        JudgeAlphaOfRowsPresent(header, picture);
    } else if (hasRunLengths) {
        DecodeBmpRunLengths(header, picture);
        SettleAlpha(picture);
    }
    Metadata details;
    details.dotsPerInchX = header.dotsPerInchX;
    details.dotsPerInchY = header.dotsPerInchY;
    picture.SetDetails(std::move(details));
    if (!header.icc.empty()) {
        ConvertToSrgb(picture, header.icc);
    }
    return picture;
}

} // namespace

PixelArray ReadBmp(ByteView file, const ReadOptions& options) {
    return Decode(ReadBmpHeader(file), options);
}

PixelArray ReadDib(ByteView info, ByteView bits) {
    if (bits.empty()) {
        Refuse(kNoPixels);
    }
    return Decode(ReadDibHeader(info, bits), {});
}

ByteBuffer WriteBmp(const PixelArray& picture, const WriteOptions& /*options*/) {
    constexpr std::size_t kHeaderBytes = 14 + 40;
    const std::size_t rowBytes = (static_cast<std::size_t>(picture.Width()) * 3 + 3) / 4 * 4;
    const std::size_t pixelBytes = rowBytes * static_cast<std::size_t>(picture.Height());
    ByteBuffer out;
    ReserveFile(out, kHeaderBytes + pixelBytes);
    AppendLittleEndian16(out, 'B' | 'M' << 8);
    AppendLittleEndian32(out, static_cast<std::uint32_t>(kHeaderBytes + pixelBytes));
    AppendLittleEndian32(out, 0);
    AppendLittleEndian32(out, kHeaderBytes);
    AppendLittleEndian32(out, 40);
    AppendLittleEndian32(out, static_cast<std::uint32_t>(picture.Width()));
    AppendLittleEndian32(out, static_cast<std::uint32_t>(picture.Height())); // positive: bottom row first
    AppendLittleEndian16(out, 1);                                            // planes
    AppendLittleEndian16(out, 24);
    AppendLittleEndian32(out, 0); // no compression
    AppendLittleEndian32(out, static_cast<std::uint32_t>(pixelBytes));
    AppendLittleEndian32(out, MetreFromInches(picture.Details().dotsPerInchX));
    AppendLittleEndian32(out, MetreFromInches(picture.Details().dotsPerInchY));
    AppendLittleEndian32(out, 0); // no palette
    AppendLittleEndian32(out, 0);
    out.resize(kHeaderBytes + pixelBytes);

    std::uint8_t* const rows = out.data() + kHeaderBytes;
    ForEachBand(picture.Height(), rowBytes + picture.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            const int fileRow = picture.Height() - 1 - y;
            FlattenRow(picture, y, rows + static_cast<std::size_t>(fileRow) * rowBytes);
        }
    });
    return out;
}

} // namespace pictorel::codecs
