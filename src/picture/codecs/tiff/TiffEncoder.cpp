// Writes TIFF files, see TiffEncoder.h. The structure is simple enough to be written here: libtiff compresses
// on one core only and cannot carry an EXIF block as it is.
#include "picture/codecs/tiff/TiffEncoder.h"

#include "picture/ForEachBand.h"
#include "picture/ImagingError.h"
#include "picture/Limits.h"
#include "picture/codecs/ByteReader.h"
#include "picture/codecs/Exif.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/RunDeflate.h"
#include "picture/codecs/tiff/TiffMetadata.h"
#include "picture/codecs/tiff/TiffStructure.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <string_view>

namespace pictorel::codecs {
namespace {

constexpr std::size_t kStripBytes = std::size_t{256} << 10; // before compression
constexpr std::string_view kSoftware("Pictorel\0", 9);

constexpr unsigned kAdobeDeflate = 8;
constexpr unsigned kRgb = 2;
constexpr unsigned kContiguous = 1;
constexpr unsigned kHorizontalPredictor = 2;
constexpr unsigned kUnassociatedAlpha = 2;
constexpr unsigned kUnitNone = 1;
constexpr unsigned kUnitInch = 2;

// One row as R, G, B (and A), each less the one to its left.
template <int kChannels>
void PredictRow(const std::uint8_t* bgra, std::uint8_t* out, int pixels) noexcept {
    constexpr std::array<int, 4> kFrom{2, 1, 0, 3};
    std::array<std::uint8_t, 4> left{};
    for (int x = 0; x < pixels; ++x, bgra += PixelArray::kComponents, out += kChannels) {
        for (std::size_t i = 0; i < kChannels; ++i) {
            const std::uint8_t sample = bgra[kFrom[i]];
            out[i] = static_cast<std::uint8_t>(sample - left[i]);
            left[i] = sample;
        }
    }
}

// A zlib stream that is set up once and used again and again. It looks for repeated strings.
class StringDeflater {
  public:
    StringDeflater() {
        constexpr int kLevel = 4; // beyond it, time rises and little is won
        if (deflateInit(&stream_, kLevel) != Z_OK) {
            throw ImagingError(ImagingFailure::OutOfMemory, "There is not enough memory to compress.");
        }
    }
    ~StringDeflater() { deflateEnd(&stream_); }
    StringDeflater(const StringDeflater&) = delete;
    StringDeflater& operator=(const StringDeflater&) = delete;

    ByteBuffer Compress(ByteView bytes) {
        deflateReset(&stream_);
        ByteBuffer packed(deflateBound(&stream_, bytes.size()));
        stream_.next_in = const_cast<Bytef*>(bytes.data()); // only read
        stream_.avail_in = static_cast<uInt>(bytes.size());
        stream_.next_out = packed.data();
        stream_.avail_out = static_cast<uInt>(packed.size());
        deflate(&stream_, Z_FINISH); // always ends: there is room for the worst case
        packed.resize(stream_.total_out);
        packed.shrink_to_fit();
        return packed;
    }

  private:
    z_stream stream_{};
};

// The same without looking for strings.
ByteBuffer CompressRuns(ByteView bytes) {
    ByteBuffer packed{0x78, 0x01}; // zlib's header: 32 KiB window, fastest
    const ByteBuffer deflated = DeflateRuns(bytes, true);
    packed.insert(packed.end(), deflated.begin(), deflated.end());
    AppendBigEndian32(packed, static_cast<std::uint32_t>(adler32_z(1, bytes.data(), bytes.size())));
    return packed;
}

// Looking for repeated strings costs a photograph most of the time and makes it no smaller, since its noise
// never repeats, while drawings and screens live from it. A piece of each strip tells which it is.
class StripCompressor {
  public:
    ByteBuffer Compress(ByteView samples) {
        constexpr std::size_t kPiece = 8192;
        const std::size_t piece = std::min(kPiece, samples.size());
        const ByteView middle = samples.subspan((samples.size() - piece) / 2, piece);
        const std::size_t packedAsRuns = CompressRuns(middle).size();
        const std::size_t packedAsStrings = strings_.Compress(middle).size();
        constexpr std::size_t kFlat = kPiece / 16; // so even that either way is fast
        const bool repeats = packedAsRuns < kFlat || packedAsStrings < packedAsRuns - packedAsRuns / 10;
        return repeats ? strings_.Compress(samples) : CompressRuns(samples);
    }

  private:
    StringDeflater strings_;
};

std::vector<ByteBuffer> CompressStrips(const PixelArray& picture, std::size_t channels, int rowsPerStrip) {
    const std::size_t rowBytes = static_cast<std::size_t>(picture.Width()) * channels;
    const int count = (picture.Height() + rowsPerStrip - 1) / rowsPerStrip;
    std::vector<ByteBuffer> strips(static_cast<std::size_t>(count));
    constexpr std::size_t kWorthAThread = std::size_t{1} << 20; // compressing is far more than copying
    ForEachBand(count, kWorthAThread, [&](int first, int end) {
        StripCompressor compressor;
        ByteBuffer samples;
        for (int strip = first; strip < end; ++strip) {
            const int firstRow = strip * rowsPerStrip;
            const int rows = std::min(rowsPerStrip, picture.Height() - firstRow);
            samples.resize(static_cast<std::size_t>(rows) * rowBytes);
            for (int y = 0; y < rows; ++y) {
                std::uint8_t* const out = samples.data() + static_cast<std::size_t>(y) * rowBytes;
                const auto predict = channels == 4 ? PredictRow<4> : PredictRow<3>;
                predict(picture.Row(firstRow + y), out, picture.Width());
            }
            strips[static_cast<std::size_t>(strip)] = compressor.Compress(samples);
        }
    });
    return strips;
}

struct Fraction {
    std::uint32_t numerator;
    std::uint32_t denominator;
};

// The shortest decimal fraction that holds the value as precisely as its 32 bits can.
Fraction DecimalFraction(double value) {
    constexpr double kLargest = std::numeric_limits<std::uint32_t>::max();
    double denominator = 1;
    while (std::abs(std::round(value * denominator) / denominator - value) > value * 1e-12 &&
           value * denominator * 10 <= kLargest && denominator < 1e8) {
        denominator *= 10;
    }
    return {static_cast<std::uint32_t>(std::round(std::min(value * denominator, kLargest))),
            static_cast<std::uint32_t>(denominator)};
}

// The directory of the page under construction: entries whose values it keeps.
class PageDirectory {
  public:
    explicit PageDirectory(bool littleEndian) : littleEndian_(littleEndian) {}

    void Shorts(std::uint16_t tag, std::initializer_list<unsigned> values) {
        Numbers(tag, tifftags::kTypeShort, 2, values, values.size());
    }
    template <class Range>
    void Longs(std::uint16_t tag, const Range& values) {
        Numbers(tag, tifftags::kTypeLong, 4, values, values.size());
    }
    void Rational(std::uint16_t tag, Fraction value) {
        Numbers(tag, tifftags::kTypeRational, 4, std::array{value.numerator, value.denominator}, 1);
    }
    void Raw(const TiffEntry& entry) { entries_.push_back(entry); }

    std::uint32_t AppendTo(TiffStructureWriter& writer) && { return writer.Directory(std::move(entries_)); }

  private:
    template <class Range>
    void Numbers(std::uint16_t tag, std::uint16_t type, int width, const Range& values, std::size_t count) {
        values_.push_back(std::make_unique<ByteBuffer>());
        TiffStructureWriter writer(*values_.back(), littleEndian_);
        for (const auto value : values) {
            writer.Number(value, width);
        }
        entries_.push_back({.tag = tag,
                            .type = type,
                            .count = count,
                            .value = *values_.back(),
                            .valueBytes = values_.back()->size()});
    }

    bool littleEndian_;
    std::vector<TiffEntry> entries_;
    std::vector<std::unique_ptr<ByteBuffer>> values_; // that the entries view
};

void AddDetails(PageDirectory& page, const Metadata& details) {
    const bool known = details.dotsPerInchX > 0 && details.dotsPerInchY > 0;
    page.Rational(tifftags::kXResolution, DecimalFraction(known ? details.dotsPerInchX : 1));
    page.Rational(tifftags::kYResolution, DecimalFraction(known ? details.dotsPerInchY : 1));
    page.Shorts(tifftags::kResolutionUnit, {known ? kUnitInch : kUnitNone});
    page.Raw({.tag = tifftags::kSoftware,
              .type = tifftags::kTypeAscii,
              .count = kSoftware.size(),
              .value = ByteView(reinterpret_cast<const std::uint8_t*>(kSoftware.data()), kSoftware.size()),
              .valueBytes = kSoftware.size()});
    const auto addBlock = [&page](std::uint16_t tag, std::uint16_t type, const ByteBuffer& block) {
        if (!block.empty()) {
            page.Raw({.tag = tag,
                      .type = type,
                      .count = block.size(),
                      .value = block,
                      .valueBytes = block.size()});
        }
    };
    addBlock(tifftags::kXmp, tifftags::kTypeByte, details.xmp);
    addBlock(tifftags::kIccProfile, tifftags::kTypeUndefined, details.icc);
}

// The first directory of an EXIF block that can stand at the head of the file.
std::optional<TiffDirectory> ExifDirectory(ByteView exif) {
    const TiffStructure block(exif);
    return TiffStructure::Recognises(exif) && !block.IsBig() ? block.Directory(block.FirstDirectory())
                                                             : std::nullopt;
}

// Strips put behind each other.
struct StripTable {
    std::vector<std::uint32_t> offsets;
    std::vector<std::uint32_t> byteCounts;
};

StripTable AppendStrips(ByteBuffer& out, std::vector<ByteBuffer>& strips, std::size_t roomAfter) {
    std::size_t expected = out.size() + strips.size() * 8 + roomAfter;
    for (const ByteBuffer& strip : strips) {
        expected += strip.size() + 1;
    }
    if (expected > std::numeric_limits<std::uint32_t>::max()) {
        throw ImagingError(ImagingFailure::TooLarge,
                           "The picture is too large for a TIFF file, which holds four gigabytes at most.");
    }
    out.reserve(expected);
    StripTable table;
    for (ByteBuffer& strip : strips) {
        out.resize((out.size() + 1) / 2 * 2);
        table.offsets.push_back(static_cast<std::uint32_t>(out.size()));
        table.byteCounts.push_back(static_cast<std::uint32_t>(strip.size()));
        out.insert(out.end(), strip.begin(), strip.end());
        strip = ByteBuffer(); // gives its memory back
    }
    return table;
}

void AddLayout(PageDirectory& page, const PixelArray& picture, bool withAlpha, int rowsPerStrip) {
    page.Longs(tifftags::kImageWidth, std::array{static_cast<std::uint32_t>(picture.Width())});
    page.Longs(tifftags::kImageLength, std::array{static_cast<std::uint32_t>(picture.Height())});
    if (withAlpha) {
        page.Shorts(tifftags::kBitsPerSample, {8, 8, 8, 8});
        page.Shorts(tifftags::kSamplesPerPixel, {4});
        page.Shorts(tifftags::kExtraSamples, {kUnassociatedAlpha});
    } else {
        page.Shorts(tifftags::kBitsPerSample, {8, 8, 8});
        page.Shorts(tifftags::kSamplesPerPixel, {3});
    }
    page.Shorts(tifftags::kCompression, {kAdobeDeflate});
    page.Shorts(tifftags::kPredictor, {kHorizontalPredictor});
    page.Shorts(tifftags::kPhotometric, {kRgb});
    page.Shorts(tifftags::kOrientation, {1});
    page.Shorts(tifftags::kPlanarConfiguration, {kContiguous});
    page.Longs(tifftags::kRowsPerStrip, std::array{static_cast<std::uint32_t>(rowsPerStrip)});
}

} // namespace

ByteBuffer EncodeTiff(const PixelArray& picture) {
    CheckPictureSize(picture.Width(), picture.Height());
    const Metadata& details = picture.Details();
    const bool withAlpha = NeedsAlpha(picture);
    const std::size_t channels = withAlpha ? 4 : 3;
    const std::size_t rowBytes = static_cast<std::size_t>(picture.Width()) * channels;
    const int rowsPerStrip = std::clamp(static_cast<int>(kStripBytes / rowBytes), 1, picture.Height());
    std::vector<ByteBuffer> strips = CompressStrips(picture, channels, rowsPerStrip);

    const ByteBuffer exifBlock = WithPictureSize(details.exif, picture.Width(), picture.Height());
    const std::optional<TiffDirectory> exif = ExifDirectory(exifBlock);
    ByteBuffer out = exif ? exifBlock : ByteBuffer{'I', 'I', 42, 0, 0, 0, 0, 0};
    constexpr std::size_t kDirectoryRoom = 4096;
    const StripTable table = AppendStrips(
        out, strips, exifBlock.size() + details.icc.size() + details.xmp.size() + kDirectoryRoom);

    const bool littleEndian = out[0] == 'I';
    PageDirectory page(littleEndian);
    AddLayout(page, picture, withAlpha, rowsPerStrip);
    page.Longs(tifftags::kStripOffsets, table.offsets);
    page.Longs(tifftags::kStripByteCounts, table.byteCounts);
    AddDetails(page, details);
    if (exif) {
        for (const TiffEntry& entry : DescriptiveEntries(*exif)) {
            page.Raw(entry);
        }
    }
    TiffStructureWriter writer(out, littleEndian);
    const std::uint32_t directory = std::move(page).AppendTo(writer);
    writer.NumberAt(4, directory, 4);
    return out;
}

} // namespace pictorel::codecs
