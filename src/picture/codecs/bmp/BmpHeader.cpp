// The headers of a bitmap file, see BmpHeader.h.
#include "picture/codecs/bmp/BmpHeader.h"

#include "picture/codecs/ByteReader.h"
#include "picture/codecs/CalibratedProfile.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/bmp/Bmp.h"

#include <cstdlib>

namespace pictorel::codecs {
namespace {

constexpr std::size_t kFileHeaderBytes = 14;
constexpr std::uint32_t kCoreHeaderBytes = 12;
constexpr std::uint32_t kShortestOs2Header = 16;
constexpr std::uint32_t kInfoHeaderBytes = 40;
constexpr std::uint32_t kVersion2Bytes = 52; // from here on the masks are part of the header
constexpr std::uint32_t kVersion3Bytes = 56; // and the alpha mask too
constexpr std::uint32_t kOs2HeaderBytes = 64;
constexpr std::uint32_t kVersion4Bytes = 108;
constexpr std::uint32_t kVersion5Bytes = 124;
constexpr std::uint32_t kLongestHeader = 1024; // of a version to come
constexpr std::int64_t kLongestRun = 128;      // pixels that one byte of run lengths makes
constexpr std::int64_t kMostTruncated = 64;    // a file that holds less than this fraction is no picture

constexpr std::uint32_t Tag(const char (&letters)[5]) { // as the colour space field spells it
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) {
        value = value << 8 | static_cast<std::uint8_t>(letters[i]);
    }
    return value;
}

bool IsKnownDepth(int bits) {
    constexpr int kDepths[] = {1, 2, 4, 8, 16, 24, 32, 64};
    return std::find(std::begin(kDepths), std::end(kDepths), bits) != std::end(kDepths);
}

// What the compression field means, by itself and with the bits a pixel.
struct CompressionRow {
    std::uint32_t code;
    int bits; // 0: any
    BmpCompression meaning;
};
constexpr CompressionRow kCompressions[] = {
    {0, 0, BmpCompression::None},       {1, 8, BmpCompression::Rle8},
    {2, 4, BmpCompression::Rle4},       {3, 16, BmpCompression::BitFields},
    {3, 24, BmpCompression::BitFields}, {3, 32, BmpCompression::BitFields},
    {3, 1, BmpCompression::Huffman},    {4, 24, BmpCompression::Rle24},
    {6, 16, BmpCompression::BitFields}, {6, 32, BmpCompression::BitFields},
};
constexpr std::uint32_t kBitFields = 3;
constexpr std::uint32_t kEmbeddedJpeg = 4;
constexpr std::uint32_t kEmbeddedPng = 5;
constexpr std::uint32_t kAlphaBitFields = 6;

// Where the information header stands: behind the file header, or behind that of an OS/2 array of bitmaps
// too, whose first one is taken.
std::size_t InfoAt(ByteView file) {
    return StartsWith(file, "BA") ? 2 * kFileHeaderBytes : kFileHeaderBytes;
}

// Walks the headers in file order; `at` offsets are from the start of the information header.
class HeaderReader {
  public:
    // The pixels are `bits`, or where it is empty, in the file where its header says.
    HeaderReader(ByteView file, std::size_t infoAt, ByteView bits)
        : file_(file),
          bits_(bits),
          infoAt_(infoAt),
          info_(Slice(file, infoAt)),
          headerBytes_(LittleEndian32(info_, 0)) {
        fields_ = Slice(info_, 0, headerBytes_);
        isCore_ = headerBytes_ == kCoreHeaderBytes;
    }

    BmpHeader Read() {
        ReadSize();
        ReadCompression();
        ReadMasks();
        ReadPalette();
        ReadResolution();
        ReadColourSpace();
        return std::move(header_);
    }

  private:
    // Fields beyond a short header are 0: OS/2 2.x headers may end after any of them.
    std::uint32_t Field32(std::size_t at) const { return LittleEndian32(fields_, at); }

    void ReadSize() {
        std::int64_t width = LittleEndianSigned32(fields_, 4);
        std::int64_t height = LittleEndianSigned32(fields_, 8);
        header_.bits = LittleEndian16(fields_, 14);
        if (isCore_) {
            width = LittleEndian16(fields_, 4);
            height = LittleEndian16(fields_, 6);
            header_.bits = LittleEndian16(fields_, 10);
        }
        header_.topDown = height < 0;
        height = std::abs(height);
        compressionCode_ = isCore_ ? 0 : Field32(16);
        const bool isRaw = compressionCode_ == 0 || compressionCode_ == kBitFields;
        CheckClaimedSize(
            width, height, file_.size() + bits_.size(),
            isRaw ? kMostTruncated * 8 / std::max(header_.bits, 1) + 1 : kLongestRun * kMostTruncated);
        header_.width = static_cast<int>(width);
        header_.height = static_cast<int>(height);
    }

    void ReadCompression() {
        const bool isJpeg =
            compressionCode_ == kEmbeddedJpeg && StartsWith(PixelsWhereDeclared(), "\xFF\xD8\xFF");
        if (isJpeg || compressionCode_ == kEmbeddedPng) {
            header_.compression = BmpCompression::EmbeddedFile;
            return;
        }
        if (!IsKnownDepth(header_.bits)) {
            Refuse("The bitmap has a number of bits a pixel that no bitmap can have.");
        }
        for (const CompressionRow& row : kCompressions) {
            if (row.code == compressionCode_ && (row.bits == 0 || row.bits == header_.bits)) {
                header_.compression = row.meaning;
                return;
            }
        }
        Refuse("The bitmap is compressed in a way that this editor cannot read.");
    }

    ByteView PixelsWhereDeclared() const { return bits_.empty() ? Slice(file_, DeclaredOffset()) : bits_; }
    std::size_t DeclaredOffset() const { return LittleEndian32(file_, infoAt_ - 4); }

    void ReadMasks() {
        paletteAt_ = headerBytes_;
        if (header_.compression != BmpCompression::BitFields) {
            SetPlainMasks();
            return;
        }
        const bool withAlpha = compressionCode_ == kAlphaBitFields || headerBytes_ >= kVersion3Bytes;
        const std::size_t count = withAlpha ? 4 : 3;
        for (std::size_t i = 0; i < count; ++i) {
            header_.masks[i] = LittleEndian32(info_, kInfoHeaderBytes + 4 * i);
        }
        if (headerBytes_ < kVersion2Bytes) {
            paletteAt_ = kInfoHeaderBytes + 4 * count;
        }
        if ((header_.masks[0] | header_.masks[1] | header_.masks[2]) == 0) { // never set
            SetPlainMasks();
        }
    }

    void SetPlainMasks() {
        if (header_.bits == 16) {
            header_.masks = {0x7C00, 0x03E0, 0x001F, 0};
        } else if (header_.bits == 32) {
            // The fourth byte is unused by the letter, but many programs leave alpha in it.
            header_.masks = {0x00FF0000, 0x0000FF00, 0x000000FF, 0xFF000000};
        }
    }

    // The palette may be shorter than the header says (the pixels start inside it), longer than pixels can
    // use, or missing; the offset of the pixels may be wrong.
    void ReadPalette() {
        const std::size_t entryBytes = isCore_ ? 3 : 4;
        const bool isIndexed = header_.compression != BmpCompression::EmbeddedFile && header_.bits <= 8;
        const std::size_t usable = isIndexed ? std::size_t{1} << header_.bits : 0;
        const std::uint32_t declared = isCore_ ? 0 : Field32(32);
        const std::size_t entries = declared == 0 ? usable : std::min<std::size_t>(declared, 1U << 16);
        const std::size_t paletteStart = infoAt_ + paletteAt_;
        const std::size_t paletteEnd = paletteStart + entries * entryBytes;
        const std::size_t pixelStart = bits_.empty() ? FindPixels(paletteStart, paletteEnd) : paletteEnd;
        header_.pixels = bits_.empty() ? Slice(file_, pixelStart) : bits_;

        const ByteView bytes =
            Slice(file_, paletteStart, pixelStart > paletteStart ? pixelStart - paletteStart : 0);
        const std::size_t present = std::min({entries, usable, bytes.size() / entryBytes});
        for (auto& colour : header_.palette) {
            colour = {0, 0, 0, 255};
        }
        for (std::size_t i = 0; i < present; ++i) {
            std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(i * entryBytes), 3,
                        header_.palette[i].begin());
        }
        for (std::size_t i = 0; present == 0 && i < usable; ++i) { // no palette at all: greys
            const auto grey = static_cast<std::uint8_t>(i * 255 / std::max<std::size_t>(usable - 1, 1));
            header_.palette[i] = {grey, grey, grey, 255};
        }
    }

    // An offset inside the palette counts: that is then shorter than it should be. One at its beginning may
    // mean that there is none, or be wrong, which the length of the file tells.
    std::size_t FindPixels(std::size_t paletteStart, std::size_t paletteEnd) const {
        const std::size_t declared = DeclaredOffset();
        const bool isRaw =
            header_.compression == BmpCompression::None || header_.compression == BmpCompression::BitFields;
        const std::size_t needed =
            isRaw ? header_.FileRowBytes() * static_cast<std::size_t>(header_.height) : Field32(20);
        const bool isWrong = declared < paletteStart || declared >= file_.size() ||
                             (declared == paletteStart && needed != 0 && paletteEnd + needed <= file_.size());
        return isWrong ? paletteEnd : declared;
    }

    void ReadResolution() {
        if (isCore_) {
            return;
        }
        header_.dotsPerInchX = InchesFromMetre(LittleEndianSigned32(fields_, 24));
        header_.dotsPerInchY = InchesFromMetre(LittleEndianSigned32(fields_, 28));
    }

    void ReadColourSpace() {
        if (headerBytes_ < kVersion4Bytes) {
            return;
        }
        const std::uint32_t space = Field32(56);
        if (space == 0) {
            ReadCalibration();
        } else if (space == Tag("MBED") && headerBytes_ >= kVersion5Bytes) {
            const ByteView icc = Slice(info_, Field32(112), Field32(116));
            header_.icc.assign(icc.begin(), icc.end());
        }
    }

    void ReadCalibration() {
        constexpr double kFixed2Dot30 = 1 << 30;
        constexpr double kFixed16Dot16 = 1 << 16;
        CalibratedRgb space;
        double whiteSum = 0;
        double whiteX = 0;
        double whiteY = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            const double x = Field32(60 + 12 * i) / kFixed2Dot30;
            const double y = Field32(64 + 12 * i) / kFixed2Dot30;
            const double sum = x + y + Field32(68 + 12 * i) / kFixed2Dot30;
            if (sum <= 0) {
                return; // programs that leave the field 0 leave the end points 0 too
            }
            space.primaries[i] = {x / sum, y / sum};
            space.gamma[i] = Field32(96 + 4 * i) / kFixed16Dot16;
            whiteX += x;
            whiteY += y;
            whiteSum += sum;
        }
        space.white = {whiteX / whiteSum, whiteY / whiteSum};
        header_.icc = MakeCalibratedProfile(space);
    }

    ByteView file_;
    ByteView bits_;
    std::size_t infoAt_;
    ByteView info_;   // from the information header to the end of the file
    ByteView fields_; // the information header alone
    std::uint32_t headerBytes_;
    bool isCore_ = false;
    std::uint32_t compressionCode_ = 0;
    std::size_t paletteAt_ = 0;
    BmpHeader header_;
};

} // namespace

bool IsBmp(ByteView file) noexcept {
    if (!StartsWith(file, "BM") &&
        !(StartsWith(file, "BA") && StartsWith(Slice(file, kFileHeaderBytes), "BM"))) {
        return false;
    }
    const ByteView info = Slice(file, InfoAt(file));
    const std::uint32_t headerBytes = LittleEndian32(info, 0);
    const bool isKnown = headerBytes == kCoreHeaderBytes || headerBytes == kVersion4Bytes ||
                         headerBytes == kVersion5Bytes ||
                         (headerBytes >= kShortestOs2Header && headerBytes <= kOs2HeaderBytes);
    // One that is not: by what every version has in the same place.
    const bool isLikely = headerBytes > kOs2HeaderBytes && headerBytes <= kLongestHeader &&
                          LittleEndian16(info, 12) == 1 && IsKnownDepth(LittleEndian16(info, 14));
    return (isKnown || isLikely) && info.size() > kCoreHeaderBytes;
}

BmpHeader ReadBmpHeader(ByteView file) {
    if (!IsBmp(file)) {
        Refuse("The file is no bitmap.");
    }
    return HeaderReader(file, InfoAt(file), {}).Read();
}

BmpHeader ReadDibHeader(ByteView info, ByteView bits) {
    return HeaderReader(info, 0, bits).Read();
}

} // namespace pictorel::codecs
