// Packs and unpacks the private block of working files, see JpegWorkingBlock.h. All numbers are
// little-endian:
//   32-bit width, height; 64-bit floating reduction, dots per inch across, down;
//   32-bit length and bytes of the EXIF block, then of the ICC profile, then of the XMP packet;
//   32-bit rows per alpha band, 0 where alpha means nothing; then per band 32-bit length and a zlib stream.
#include "picture/codecs/jpeg/JpegWorkingBlock.h"

#include "picture/ForEachBand.h"
#include "picture/ImagingError.h"

#include <zlib.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <string_view>

namespace pictorel::codecs {
namespace {

// Signature, version of the layout, then the number of the chunk, from 0, and the number of chunks, 16 bits
// each.
constexpr std::string_view kSignature("Pictorel\0\1", 10);
constexpr std::size_t kCounters = 4;
constexpr std::size_t kChunk = jpeg::kMaximumPayload - kSignature.size() - kCounters;
constexpr std::size_t kMaximumChunks = 65535;
constexpr int kBandRows = 64;

[[noreturn]] void Damaged() {
    throw ImagingError(ImagingFailure::UnsupportedFormat, "The working file is damaged.");
}

class BlockWriter {
  public:
    void Number(std::uint64_t value, int bytes) {
        for (int i = 0; i < bytes; ++i) {
            bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
        }
    }
    void Number32(std::size_t value) { Number(value, 4); }
    void Real(double value) { Number(std::bit_cast<std::uint64_t>(value), 8); }
    void Bytes(ByteView value) {
        Number32(value.size());
        bytes_.insert(bytes_.end(), value.begin(), value.end());
    }
    const ByteBuffer& Written() const noexcept { return bytes_; }

  private:
    ByteBuffer bytes_;
};

class BlockReader {
  public:
    explicit BlockReader(ByteView bytes) noexcept : bytes_(bytes) {}

    std::uint64_t Number(int bytes) {
        const ByteView raw = Take(static_cast<std::size_t>(bytes));
        std::uint64_t value = 0;
        for (int i = bytes - 1; i >= 0; --i) {
            value = value << 8 | raw[static_cast<std::size_t>(i)];
        }
        return value;
    }
    std::size_t Number32() { return static_cast<std::size_t>(Number(4)); }
    double Real() { return std::bit_cast<double>(Number(8)); }
    ByteView Bytes() { return Take(Number32()); }

  private:
    ByteView Take(std::size_t count) {
        if (count > bytes_.size()) {
            Damaged();
        }
        const ByteView taken = bytes_.first(count);
        bytes_ = bytes_.subspan(count);
        return taken;
    }

    ByteView bytes_;
};

int BandsOf(int height) noexcept {
    return (height + kBandRows - 1) / kBandRows;
}

// The alpha of a band of rows as a zlib stream: the fastest level, since alpha is mostly flat.
ByteBuffer PackedAlpha(const PixelArray& picture, int firstRow, int endRow) {
    const auto width = static_cast<std::size_t>(picture.Width());
    ByteBuffer plane(width * static_cast<std::size_t>(endRow - firstRow));
    std::uint8_t* to = plane.data();
    for (int y = firstRow; y < endRow; ++y) {
        const std::uint8_t* from = picture.Row(y) + 3;
        for (std::size_t x = 0; x < width; ++x, from += PixelArray::kComponents) {
            *to++ = *from;
        }
    }
    uLongf size = compressBound(static_cast<uLong>(plane.size()));
    ByteBuffer packed(size);
    if (compress2(packed.data(), &size, plane.data(), static_cast<uLong>(plane.size()), Z_BEST_SPEED) !=
        Z_OK) {
        throw ImagingError(ImagingFailure::OutOfMemory,
                           "There is not enough memory to pack the transparency.");
    }
    packed.resize(size);
    return packed;
}

// Unpacks exactly the band's pixels: a stream that holds more or less is damaged.
void UnpackAlpha(ByteView packed, std::uint8_t* rows, std::ptrdiff_t stride, int width, int height) {
    ByteBuffer plane(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    auto size = static_cast<uLongf>(plane.size());
    if (uncompress(plane.data(), &size, packed.data(), static_cast<uLong>(packed.size())) != Z_OK ||
        size != plane.size()) {
        Damaged();
    }
    const std::uint8_t* from = plane.data();
    for (int y = 0; y < height; ++y) {
        std::uint8_t* to = rows + y * stride + 3;
        for (int x = 0; x < width; ++x, to += PixelArray::kComponents) {
            *to = *from++;
        }
    }
}

void WriteAlpha(const PixelArray& picture, BlockWriter& writer) {
    const int bands = BandsOf(picture.Height());
    std::vector<ByteBuffer> packed(static_cast<std::size_t>(bands));
    ForEachBand(bands, kBandRows * picture.RowBytes(), [&](int first, int end) {
        for (int band = first; band < end; ++band) {
            packed[static_cast<std::size_t>(band)] =
                PackedAlpha(picture, band * kBandRows, std::min((band + 1) * kBandRows, picture.Height()));
        }
    });
    for (const ByteBuffer& band : packed) {
        writer.Bytes(band);
    }
}

void ReadAlpha(BlockReader& reader, PixelArray& picture) {
    const int bands = BandsOf(picture.Height());
    std::vector<ByteView> packed(static_cast<std::size_t>(bands));
    std::generate(packed.begin(), packed.end(), [&] { return reader.Bytes(); });
    std::uint8_t* const rows = picture.WritableRows();
    ForEachBand(bands, kBandRows * picture.RowBytes(), [&](int first, int end) {
        for (int band = first; band < end; ++band) {
            const int row = band * kBandRows;
            UnpackAlpha(packed[static_cast<std::size_t>(band)], rows + row * picture.Stride(),
                        picture.Stride(), picture.Width(), std::min(kBandRows, picture.Height() - row));
        }
    });
}

} // namespace

std::vector<JpegMarker> WorkingMarkers(const PixelArray& picture) {
    const Metadata& details = picture.Details();
    BlockWriter writer;
    writer.Number32(static_cast<std::size_t>(picture.Width()));
    writer.Number32(static_cast<std::size_t>(picture.Height()));
    writer.Real(picture.Reduction());
    writer.Real(details.dotsPerInchX);
    writer.Real(details.dotsPerInchY);
    writer.Bytes(details.exif);
    writer.Bytes(details.icc);
    writer.Bytes(details.xmp);
    writer.Number32(picture.HasAlpha() ? kBandRows : 0);
    if (picture.HasAlpha()) {
        WriteAlpha(picture, writer);
    }

    const ByteBuffer& block = writer.Written();
    const std::size_t chunks = (block.size() + kChunk - 1) / kChunk;
    if (chunks > kMaximumChunks) {
        throw ImagingError(ImagingFailure::TooLarge,
                           "The picture's metadata is too large for a working file.");
    }
    std::vector<JpegMarker> markers(chunks);
    for (std::size_t i = 0; i < chunks; ++i) {
        markers[i].marker = jpeg::kApp11;
        ByteBuffer& payload = markers[i].payload;
        payload.assign(kSignature.begin(), kSignature.end());
        for (const std::size_t counter : {i, chunks}) {
            payload.push_back(static_cast<std::uint8_t>(counter & 0xFF));
            payload.push_back(static_cast<std::uint8_t>(counter >> 8));
        }
        const ByteView part =
            ByteView(block).subspan(i * kChunk, std::min(kChunk, block.size() - i * kChunk));
        payload.insert(payload.end(), part.begin(), part.end());
    }
    return markers;
}

std::optional<ByteBuffer> FindWorkingBlock(const std::vector<JpegSegment>& segments) {
    ByteBuffer block;
    std::size_t expected = 0;
    std::size_t chunks = 0;
    for (const JpegSegment& segment : segments) {
        const ByteView chunk = PayloadAfter(segment, jpeg::kApp11, kSignature);
        if (chunk.size() < kCounters) {
            continue;
        }
        const std::size_t number = static_cast<std::size_t>(chunk[0]) | static_cast<std::size_t>(chunk[1])
                                                                            << 8;
        chunks = static_cast<std::size_t>(chunk[2]) | static_cast<std::size_t>(chunk[3]) << 8;
        if (number != expected++) {
            return {};
        }
        block.insert(block.end(), chunk.begin() + kCounters, chunk.end());
    }
    return chunks > 0 && expected == chunks ? std::optional(std::move(block)) : std::nullopt;
}

void ApplyWorkingBlock(const ByteBuffer& block, PixelArray& picture) {
    BlockReader reader(block);
    const std::size_t width = reader.Number32();
    const std::size_t height = reader.Number32();
    if (width != static_cast<std::size_t>(picture.Width()) ||
        height != static_cast<std::size_t>(picture.Height())) {
        Damaged();
    }
    const double reduction = reader.Real();
    if (!(reduction > 0 && reduction <= kMaximumSide)) {
        Damaged();
    }
    picture.SetReduction(reduction);
    Metadata details;
    details.dotsPerInchX = reader.Real();
    details.dotsPerInchY = reader.Real();
    const ByteView exif = reader.Bytes();
    details.exif.assign(exif.begin(), exif.end());
    const ByteView icc = reader.Bytes();
    details.icc.assign(icc.begin(), icc.end());
    const ByteView xmp = reader.Bytes();
    details.xmp.assign(xmp.begin(), xmp.end());
    picture.SetDetails(std::move(details));
    const std::size_t bandRows = reader.Number32();
    if (bandRows != 0 && bandRows != kBandRows) {
        Damaged();
    }
    picture.SetHasAlpha(bandRows != 0);
    if (picture.HasAlpha()) {
        ReadAlpha(reader, picture);
    }
}

} // namespace pictorel::codecs
