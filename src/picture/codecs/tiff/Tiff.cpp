// Reads and writes TIFF files, see Tiff.h.
#include "picture/codecs/tiff/Tiff.h"

#include "picture/ImagingError.h"
#include "picture/Limits.h"
#include "picture/codecs/ColourProfile.h"
#include "picture/codecs/Exif.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/Xmp.h"
#include "picture/codecs/tiff/TiffDecoder.h"
#include "picture/codecs/tiff/TiffEncoder.h"
#include "picture/codecs/tiff/TiffLayout.h"
#include "picture/codecs/tiff/TiffMetadata.h"
#include "picture/codecs/tiff/TiffRepair.h"
#include "picture/codecs/tiff/TiffStructure.h"

#include <tiffio.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <utility>

namespace pictorel::codecs {
namespace {

struct Page {
    std::uint64_t offset = 0;
    TiffDirectory directory;
};

bool IsFullPage(const TiffStructure& structure, const TiffDirectory& directory) {
    constexpr std::uint64_t kReducedOrMask = FILETYPE_REDUCEDIMAGE | FILETYPE_MASK;
    const TiffEntry* const kind = directory.Find(tifftags::kNewSubfileType);
    const TiffEntry* const oldKind = directory.Find(tifftags::kSubfileType);
    return (kind == nullptr || (structure.FirstNumber(*kind).value_or(0) & kReducedOrMask) == 0) &&
           (oldKind == nullptr || structure.FirstNumber(*oldKind) != std::uint64_t{OFILETYPE_REDUCEDIMAGE});
}

// The first page in full resolution, or the first of all where there is none.
Page FindPage(const TiffStructure& structure) {
    constexpr int kMostPages = 256; // looked at; directories may also point to each other in a circle
    Page first;
    std::uint64_t offset = structure.FirstDirectory();
    for (int i = 0; i < kMostPages; ++i) {
        std::optional<TiffDirectory> directory = structure.Directory(offset);
        if (!directory) {
            break;
        }
        const bool full = IsFullPage(structure, *directory);
        const std::uint64_t next = directory->next;
        if (full || i == 0) {
            first = {offset, std::move(*directory)};
        }
        if (full) {
            break;
        }
        offset = next;
    }
    return first;
}

// What must hold before the library looks at a directory: it spends a time on unknown tags that grows with
// the square of their number, and reads the value of each, though they may all stand in the same place.
void CheckDirectory(const TiffStructure& structure, const TiffDirectory& directory, ByteView file) {
    constexpr std::size_t kMostEntries = 1024;
    constexpr std::uint64_t kSharing = 4;
    constexpr std::uint64_t kLittle = std::uint64_t{1} << 20;
    std::uint64_t bytes = 0;
    for (const TiffEntry& entry : directory.entries) {
        bytes += entry.value.size();
    }
    const TiffEntry* const width = directory.Find(tifftags::kImageWidth);
    const TiffEntry* const height = directory.Find(tifftags::kImageLength);
    if (width == nullptr || height == nullptr || directory.entries.size() > kMostEntries ||
        bytes > kLittle + kSharing * file.size()) {
        Refuse("The TIFF file is damaged beyond use.");
    }
    constexpr std::uint64_t kNoSide = INT32_MAX; // far beyond the limits, and safe to multiply
    const auto side = [&](const TiffEntry& entry) {
        return static_cast<std::int64_t>(std::min(structure.FirstNumber(entry).value_or(0), kNoSide));
    };
    CheckPictureSize(side(*width), side(*height));
}

double DotsPerInch(float resolution, unsigned unit) {
    if (!std::isfinite(resolution) || resolution <= 0 ||
        (unit != RESUNIT_INCH && unit != RESUNIT_CENTIMETER)) {
        return 0;
    }
    // The library has it as a float: what it holds beyond four decimals is noise.
    constexpr double kDecimals = 1e4;
    const double exact = std::round(static_cast<double>(resolution) * kDecimals) / kDecimals;
    constexpr double kCentimetresPerMetre = 100;
    return unit == RESUNIT_INCH ? exact : InchesFromMetre(exact * kCentimetresPerMetre);
}

void ReadResolution(const TiffFile& tiff, Metadata& details) {
    float x = 0;
    float y = 0;
    std::uint16_t unit = RESUNIT_INCH;
    TIFFGetField(tiff.Handle(), TIFFTAG_XRESOLUTION, &x);
    TIFFGetField(tiff.Handle(), TIFFTAG_YRESOLUTION, &y);
    TIFFGetFieldDefaulted(tiff.Handle(), TIFFTAG_RESOLUTIONUNIT, &unit);
    details.dotsPerInchX = DotsPerInch(x, unit);
    details.dotsPerInchY = DotsPerInch(y, unit);
}

ByteBuffer ReadProfile(const TiffFile& tiff) {
    std::uint32_t size = 0;
    const std::uint8_t* bytes = nullptr;
    if (TIFFGetField(tiff.Handle(), TIFFTAG_ICCPROFILE, &size, &bytes) == 0 || bytes == nullptr) {
        return {};
    }
    return {bytes, bytes + size};
}

// Upright, with its resolution and profile.
PixelArray ReadPage(const TiffStructure& structure, const Page& page, ByteView file) {
    CheckDirectory(structure, page.directory, file);
    TiffFile tiff(file, page.offset);
    const TiffLayout layout = ReadTiffLayout(tiff, page.directory, file);
    Metadata details;
    ReadResolution(tiff, details);
    const ByteBuffer icc = ReadProfile(tiff);
    details.icc = ProfileAfterConversion(icc);
    PixelArray picture = DecodeTiff(std::move(tiff), page.offset, layout, file, icc);
    picture.SetDetails(std::move(details));
    return ApplyOrientation(std::move(picture), layout.orientation);
}

PixelArray ReadOrRepair(const TiffStructure& structure, const Page& page, ByteView file) {
    try {
        return ReadPage(structure, page, file);
    } catch (const ImagingError& error) {
        if (error.Kind() != ImagingFailure::UnsupportedFormat) {
            throw;
        }
        const std::optional<RepairedTiff> repaired = RepairTiff(structure, page.directory, file);
        if (!repaired) {
            throw;
        }
        const TiffStructure mended(repaired->file);
        std::optional<TiffDirectory> directory = mended.Directory(repaired->directoryOffset);
        try {
            return ReadPage(mended, {repaired->directoryOffset, std::move(directory.value())},
                            repaired->file);
        } catch (const ImagingError& again) {
            if (again.Kind() != ImagingFailure::UnsupportedFormat) {
                throw;
            }
        }
        throw; // what was wrong with the file itself says more
    }
}

} // namespace

bool IsTiff(ByteView file) noexcept {
    return TiffStructure::Recognises(file);
}

PixelArray ReadTiff(ByteView file, const ReadOptions& /*options*/) {
    if (!IsTiff(file)) {
        Refuse("The file is no TIFF file.");
    }
    const TiffStructure structure(file);
    const Page page = FindPage(structure);
    PixelArray picture = ReadOrRepair(structure, page, file);
    Metadata details = picture.Details();
    details.exif = ExifOfPage(structure, page.directory);
    if (const TiffEntry* const xmp = page.directory.Find(tifftags::kXmp)) {
        details.xmp = WithoutPictureClaims(xmp->value);
    }
    picture.SetDetails(std::move(details));
    return picture;
}

ByteBuffer WriteTiff(const PixelArray& picture, const WriteOptions& /*options*/) {
    return EncodeTiff(picture);
}

} // namespace pictorel::codecs
