// Reads and corrects the few EXIF fields that the editor needs, see Exif.h. The block is walked here, bounds
// checked, and corrected in place, so that all that is not understood (maker notes with their own offsets)
// stays as it was.
#include "picture/codecs/Exif.h"

#include "picture/ForEachBand.h"
#include "picture/codecs/ByteReader.h"
#include "picture/codecs/Xmp.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <string_view>
#include <utility>

namespace pictorel::codecs {
namespace {

constexpr std::size_t kHeaderBytes = 8; // byte order, 42, offset of the first directory
constexpr std::size_t kEntryBytes = 12; // tag, type, count, value or its offset

constexpr std::uint16_t kTagImageWidth = 0x0100;
constexpr std::uint16_t kTagImageLength = 0x0101;
constexpr std::uint16_t kTagOrientation = 0x0112;
constexpr std::uint16_t kTagXResolution = 0x011A;
constexpr std::uint16_t kTagYResolution = 0x011B;
constexpr std::uint16_t kTagResolutionUnit = 0x0128;
constexpr std::uint16_t kTagThumbnailOffset = 0x0201;
constexpr std::uint16_t kTagThumbnailLength = 0x0202;
constexpr std::uint16_t kTagExifDirectory = 0x8769;
constexpr std::uint16_t kTagPixelXDimension = 0xA002;
constexpr std::uint16_t kTagPixelYDimension = 0xA003;

constexpr std::uint16_t kTypeByte = 1;
constexpr std::uint16_t kTypeShort = 3;
constexpr std::uint16_t kTypeLong = 4;
constexpr std::uint16_t kTypeRational = 5;

constexpr unsigned kUnitInch = 2;
constexpr unsigned kUnitCentimetre = 3;
constexpr double kCentimetresPerInch = 2.54;

// A checked view of a TIFF structure. A place outside it reads as nothing.
class TiffBlock {
  public:
    explicit TiffBlock(ByteView bytes) noexcept : bytes_(bytes) {
        constexpr std::array<std::uint8_t, 4> kLittle{'I', 'I', 42, 0};
        constexpr std::array<std::uint8_t, 4> kBig{'M', 'M', 0, 42};
        if (bytes.size() >= kHeaderBytes) {
            littleEndian_ = std::equal(kLittle.begin(), kLittle.end(), bytes.begin());
            valid_ = littleEndian_ || std::equal(kBig.begin(), kBig.end(), bytes.begin());
        }
    }

    bool IsLittleEndian() const noexcept { return littleEndian_; }

    std::optional<std::uint16_t> Short(std::size_t at) const noexcept {
        if (!valid_ || at > bytes_.size() || bytes_.size() - at < 2) {
            return {};
        }
        const unsigned first = bytes_[at];
        const unsigned second = bytes_[at + 1];
        return static_cast<std::uint16_t>(littleEndian_ ? first | second << 8 : first << 8 | second);
    }

    std::optional<std::uint32_t> Long(std::size_t at) const noexcept {
        const auto first = Short(at);
        const auto second = Short(at + 2);
        if (!first || !second) {
            return {};
        }
        return littleEndian_ ? *first | std::uint32_t{*second} << 16 : std::uint32_t{*first} << 16 | *second;
    }

    // Where the first directory starts: nothing where it does not lie in the block.
    std::optional<std::size_t> FirstDirectory() const noexcept {
        const auto offset = Long(4);
        return offset && Short(*offset) ? std::optional<std::size_t>(*offset) : std::nullopt;
    }

    // Where the offset of the next directory stands.
    std::optional<std::size_t> LinkAfter(std::size_t directory) const noexcept {
        const auto entries = Short(directory);
        const std::size_t link = directory + 2 + entries.value_or(0) * kEntryBytes;
        return entries && Long(link) ? std::optional<std::size_t>(link) : std::nullopt;
    }

    // Where the entry of a tag with one value of a type starts.
    std::optional<std::size_t> Entry(std::size_t directory, std::uint16_t tag,
                                     std::uint16_t type) const noexcept {
        const unsigned entries = Short(directory).value_or(0);
        for (unsigned i = 0; i < entries; ++i) {
            const std::size_t entry = directory + 2 + i * kEntryBytes;
            if (Short(entry) == tag && Short(entry + 2) == type && Long(entry + 4) >= 1U && Long(entry + 8)) {
                return entry;
            }
        }
        return {};
    }

    // An unsigned number and where it stands: writers do not agree on the type of a tag.
    struct Field {
        std::size_t at;
        std::size_t bytes;
        std::uint32_t value;
    };
    std::optional<Field> Number(std::size_t directory, std::uint16_t tag) const noexcept {
        if (const auto entry = Entry(directory, tag, kTypeShort)) {
            return Field{*entry + 8, 2, *Short(*entry + 8)};
        }
        if (const auto entry = Entry(directory, tag, kTypeLong)) {
            return Field{*entry + 8, 4, *Long(*entry + 8)};
        }
        if (const auto entry = Entry(directory, tag, kTypeByte)) {
            return Field{*entry + 8, 1, bytes_[*entry + 8]};
        }
        return {};
    }

    double Rational(std::size_t directory, std::uint16_t tag) const noexcept { // 0 where missing
        const auto entry = Entry(directory, tag, kTypeRational);
        const std::size_t at = entry ? Long(*entry + 8).value_or(0) : 0;
        const auto numerator = entry ? Long(at) : std::nullopt;
        const auto denominator = entry ? Long(at + 4) : std::nullopt;
        return numerator && denominator && *denominator != 0
                   ? static_cast<double>(*numerator) / static_cast<double>(*denominator)
                   : 0;
    }

  private:
    ByteView bytes_;
    bool littleEndian_ = false;
    bool valid_ = false;
};

void SetNumber(ByteBuffer& exif, const TiffBlock::Field& field, std::uint32_t value) {
    const bool littleEndian = TiffBlock(exif).IsLittleEndian();
    for (std::size_t i = 0; i < field.bytes; ++i) {
        const std::size_t place = littleEndian ? i : field.bytes - 1 - i;
        exif[field.at + place] = static_cast<std::uint8_t>(value >> (8 * i));
    }
}

// Unlinks the second directory, which describes the thumbnail, and clears the thumbnail's bytes.
void DropThumbnail(ByteBuffer& exif, std::size_t firstDirectory) {
    const TiffBlock block(exif);
    const auto link = block.LinkAfter(firstDirectory);
    const std::size_t second = link ? block.Long(*link).value_or(0) : 0;
    if (second == 0) {
        return;
    }
    const auto offsetEntry = block.Entry(second, kTagThumbnailOffset, kTypeLong);
    const auto lengthEntry = block.Entry(second, kTagThumbnailLength, kTypeLong);
    if (offsetEntry && lengthEntry) {
        const std::size_t offset = block.Long(*offsetEntry + 8).value_or(0);
        const std::size_t length = block.Long(*lengthEntry + 8).value_or(0);
        // Only a real JPEG is cleared: a hostile pair must not reach other fields.
        if (length >= 2 && offset < exif.size() && length <= exif.size() - offset && exif[offset] == 0xFF &&
            exif[offset + 1] == 0xD8) {
            std::fill_n(exif.begin() + static_cast<std::ptrdiff_t>(offset), length, std::uint8_t{0});
        }
    }
    std::fill_n(exif.begin() + static_cast<std::ptrdiff_t>(*link), 4, std::uint8_t{0});
}

} // namespace

int ExifOrientation(ByteView exif) noexcept {
    const TiffBlock block(exif);
    const auto directory = block.FirstDirectory();
    const auto field = directory ? block.Number(*directory, kTagOrientation) : std::nullopt;
    return field && field->value >= 1 && field->value <= 8 ? static_cast<int>(field->value) : 1;
}

ByteBuffer WithUprightOrientation(ByteView exif) {
    const auto directory = TiffBlock(exif).FirstDirectory();
    if (!directory) {
        return {};
    }
    ByteBuffer upright(exif.begin(), exif.end());
    if (const auto orientation = TiffBlock(upright).Number(*directory, kTagOrientation)) {
        SetNumber(upright, *orientation, 1);
    }
    DropThumbnail(upright, *directory);
    return upright;
}

ByteBuffer WithPictureSize(ByteView exif, int width, int height) {
    ByteBuffer sized(exif.begin(), exif.end());
    const TiffBlock block(exif);
    const auto directory = block.FirstDirectory();
    if (!directory) {
        return sized;
    }
    const auto set = [&](std::size_t place, std::uint16_t tag, int value) {
        if (const auto field = block.Number(place, tag); field && field->bytes > 1) {
            SetNumber(sized, *field, static_cast<std::uint32_t>(value));
        }
    };
    set(*directory, kTagImageWidth, width);
    set(*directory, kTagImageLength, height);
    if (const auto exifDirectory = block.Number(*directory, kTagExifDirectory)) {
        set(exifDirectory->value, kTagPixelXDimension, width);
        set(exifDirectory->value, kTagPixelYDimension, height);
    }
    return sized;
}

Resolution ExifResolution(ByteView exif) noexcept {
    const TiffBlock block(exif);
    const auto directory = block.FirstDirectory();
    if (!directory) {
        return {};
    }
    const auto unitEntry = block.Entry(*directory, kTagResolutionUnit, kTypeShort);
    const unsigned unit = unitEntry ? block.Short(*unitEntry + 8).value_or(kUnitInch) : kUnitInch;
    if (unit != kUnitInch && unit != kUnitCentimetre) {
        return {}; // a mere aspect ratio
    }
    const double perInch = unit == kUnitCentimetre ? kCentimetresPerInch : 1.0;
    return {block.Rational(*directory, kTagXResolution) * perInch,
            block.Rational(*directory, kTagYResolution) * perInch};
}

ByteView WithoutExifPrefix(ByteView stored) noexcept {
    constexpr std::string_view kPrefix("Exif\0\0", 6);
    return StartsWith(stored, kPrefix) ? stored.subspan(kPrefix.size()) : stored;
}

ByteView ExifOfBox(ByteView box) noexcept {
    constexpr std::size_t kOffsetBytes = 4;
    const ByteView told = Slice(box, kOffsetBytes + BigEndian32(box, 0));
    for (const ByteView exif : {told, Slice(box, kOffsetBytes), box}) { // writers count from different places
        const ByteView block = WithoutExifPrefix(exif);
        if (TiffBlock(block).FirstDirectory()) {
            return block;
        }
    }
    return {};
}

void KeepMetadata(PixelArray& picture, ByteView exif, ByteView xmp) {
    Metadata details = picture.Details();
    details.exif = WithUprightOrientation(exif);
    details.xmp = WithoutPictureClaims(xmp);
    const Resolution resolution = ExifResolution(exif);
    details.dotsPerInchX = resolution.dotsPerInchX;
    details.dotsPerInchY = resolution.dotsPerInchY;
    picture.SetDetails(std::move(details));
}

PixelArray ApplyOrientation(PixelArray picture, int orientation) {
    if (orientation < 2 || orientation > 8 || picture.IsEmpty()) {
        return picture;
    }
    // How the source is walked while the result is filled row by row.
    struct Walk {
        bool turned;  // the result's rows are the source's columns
        bool mirrorX; // the source's columns are walked from the right
        bool mirrorY; // the source's rows are walked from the bottom
    };
    constexpr std::array<Walk, 9> kWalks{{{},
                                          {false, false, false},
                                          {false, true, false},
                                          {false, true, true},
                                          {false, false, true},
                                          {true, false, false},
                                          {true, false, true},
                                          {true, true, true},
                                          {true, true, false}}};
    const Walk walk = kWalks[static_cast<std::size_t>(orientation)];
    const int width = walk.turned ? picture.Height() : picture.Width();
    const int height = walk.turned ? picture.Width() : picture.Height();
    PixelArray result = PixelArray::Like(picture, width, height);
    result.SetPartShown(picture.PartShown());
    if (walk.turned) {
        Metadata details = picture.Details();
        std::swap(details.dotsPerInchX, details.dotsPerInchY);
        result.SetDetails(std::move(details));
    }

    constexpr std::ptrdiff_t kPixel = PixelArray::kComponents;
    const std::ptrdiff_t stepRight = walk.mirrorX ? -kPixel : kPixel;
    const std::ptrdiff_t stepDown = walk.mirrorY ? -picture.Stride() : picture.Stride();
    const std::uint8_t* const start = picture.Row(walk.mirrorY ? picture.Height() - 1 : 0) +
                                      (walk.mirrorX ? (picture.Width() - 1) * kPixel : 0);
    const std::ptrdiff_t stepX = walk.turned ? stepDown : stepRight;
    const std::ptrdiff_t stepY = walk.turned ? stepRight : stepDown;
    std::uint8_t* const rows = result.WritableRows();
    // Square tiles, since either the source or the result is walked across its rows.
    constexpr int kTile = 32;
    const int tileRows = (height + kTile - 1) / kTile;
    ForEachBand(tileRows, 2 * kTile * result.RowBytes(), [&](int firstTile, int endTile) {
        for (int tile = firstTile; tile < endTile; ++tile) {
            for (int left = 0; left < width; left += kTile) {
                for (int y = tile * kTile; y < std::min(height, (tile + 1) * kTile); ++y) {
                    const std::uint8_t* from = start + left * stepX + y * stepY;
                    std::uint8_t* to = rows + y * result.Stride() + left * kPixel;
                    for (int x = left; x < std::min(width, left + kTile); ++x, from += stepX, to += kPixel) {
                        std::memcpy(to, from, kPixel);
                    }
                }
            }
        }
    });
    return result;
}

} // namespace pictorel::codecs
