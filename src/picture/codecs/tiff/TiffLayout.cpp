// Reads and checks the layout of TIFF pages, see TiffLayout.h.
#include "picture/codecs/tiff/TiffLayout.h"

#include "picture/Limits.h"
#include "picture/codecs/PixelSupport.h"

#include <tiffio.h>

#include <algorithm>
#include <cmath>

namespace pictorel::codecs {
namespace {

// Bytes that a byte of each compression can stand for at the very most, in files that anyone writes. Plain
// samples get some room too: a file that was cut off shows what it still has.
struct Packing {
    std::uint16_t compression;
    std::size_t ratio;
};
constexpr std::array<Packing, 6> kPackings{{{COMPRESSION_NONE, 64},
                                            {COMPRESSION_PACKBITS, 64},
                                            {COMPRESSION_DEFLATE, 1032},
                                            {COMPRESSION_ADOBE_DEFLATE, 1032},
                                            {COMPRESSION_LZW, 2800},
                                            {COMPRESSION_JPEG, 2000}}};
constexpr std::size_t kOtherRatio = 32768;                      // a blank row of a fax is one bit
constexpr std::size_t kAlwaysPlausible = std::size_t{64} << 20; // decoded bytes
constexpr int kMostSamples = 1024;                              // a pixel

struct ColourKind {
    std::uint16_t photometric;
    TiffColour colour;
    int colours;
};
constexpr std::array<ColourKind, 11> kColourKinds{{{PHOTOMETRIC_MINISWHITE, TiffColour::Grey, 1},
                                                   {PHOTOMETRIC_MINISBLACK, TiffColour::Grey, 1},
                                                   {PHOTOMETRIC_RGB, TiffColour::Rgb, 3},
                                                   {PHOTOMETRIC_PALETTE, TiffColour::Palette, 1},
                                                   {PHOTOMETRIC_MASK, TiffColour::Grey, 1},
                                                   {PHOTOMETRIC_SEPARATED, TiffColour::Cmyk, 4},
                                                   {PHOTOMETRIC_YCBCR, TiffColour::Rgb, 3},
                                                   {PHOTOMETRIC_CIELAB, TiffColour::Lab, 3},
                                                   {PHOTOMETRIC_ICCLAB, TiffColour::IccLab, 3},
                                                   {PHOTOMETRIC_LOGL, TiffColour::Grey, 1},
                                                   {PHOTOMETRIC_LOGLUV, TiffColour::Rgb, 3}}};
constexpr std::uint16_t kLinearRaw = 34892; // photometric of developed camera data, in RGB or grey

template <class Value>
Value Field(TIFF* handle, std::uint32_t tag, Value fallback = {}) {
    Value value = fallback;
    return TIFFGetFieldDefaulted(handle, tag, &value) != 0 ? value : fallback;
}

// Pictures whose samples are declared signed are shown as if they were not: that is what they hold when
// programs for pictures wrote them, and how those read them.
bool HasFloats(TIFF* handle, int bits) {
    switch (Field<std::uint16_t>(handle, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT)) {
        case SAMPLEFORMAT_UINT:
        case SAMPLEFORMAT_INT:
        case SAMPLEFORMAT_VOID:
            return false;
        case SAMPLEFORMAT_IEEEFP:
            if (bits == 16 || bits == 24 || bits == 32 || bits == 64) {
                return true;
            }
            break;
        default:
            break;
    }
    Refuse("TIFF files with this kind of number are not supported.");
}

void ReadSamples(TIFF* handle, TiffLayout& layout) {
    layout.bits = Field<std::uint16_t>(handle, TIFFTAG_BITSPERSAMPLE, 1);
    layout.samples = Field<std::uint16_t>(handle, TIFFTAG_SAMPLESPERPIXEL, 1);
    if (layout.bits < 1 || layout.bits > 64 || layout.samples < 1 || layout.samples > kMostSamples) {
        Refuse("TIFF files with samples of this size are not supported.");
    }
    layout.floats = HasFloats(handle, layout.bits);
    double lowest = 0;
    double highest = 0;
    if (TIFFGetField(handle, TIFFTAG_SMINSAMPLEVALUE, &lowest) != 0 &&
        TIFFGetField(handle, TIFFTAG_SMAXSAMPLEVALUE, &highest) != 0 && std::isfinite(lowest) &&
        std::isfinite(highest) && lowest < highest) {
        layout.lowest = lowest;
        layout.highest = highest;
    }
}

std::uint16_t Photometric(TIFF* handle, const TiffLayout& layout) {
    std::uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    if (TIFFGetField(handle, TIFFTAG_PHOTOMETRIC, &photometric) == 0) {
        const bool fax =
            layout.compression >= COMPRESSION_CCITTRLE && layout.compression <= COMPRESSION_CCITTFAX4;
        return layout.samples >= 3 ? PHOTOMETRIC_RGB : fax ? PHOTOMETRIC_MINISWHITE : PHOTOMETRIC_MINISBLACK;
    }
    const bool fewSamples = layout.samples < 3;
    if (photometric == kLinearRaw || (photometric == PHOTOMETRIC_RGB && fewSamples)) {
        return fewSamples ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
    }
    return photometric;
}

void ReadColour(TIFF* handle, TiffLayout& layout) {
    const std::uint16_t photometric = Photometric(handle, layout);
    const auto kind = std::find_if(kColourKinds.begin(), kColourKinds.end(),
                                   [&](const ColourKind& k) { return k.photometric == photometric; });
    if (kind == kColourKinds.end() || layout.samples < kind->colours) {
        Refuse("TIFF files with this kind of colour are not supported.");
    }
    layout.colour = kind->colour;
    layout.colours = kind->colours;
    layout.inverted = photometric == PHOTOMETRIC_MINISWHITE;
    const bool rgbFromJpeg = layout.compression == COMPRESSION_JPEG && !layout.separatePlanes;
    layout.convertedByLibrary =
        (photometric == PHOTOMETRIC_YCBCR && !rgbFromJpeg) || layout.compression == COMPRESSION_OJPEG;
    const bool lab = layout.colour == TiffColour::Lab || layout.colour == TiffColour::IccLab;
    if ((lab && layout.bits != 8 && layout.bits != 16) ||
        (layout.colour == TiffColour::Palette && layout.bits > 16) ||
        ((lab || layout.colour == TiffColour::Palette) && layout.floats)) {
        Refuse("TIFF files with samples of this size in this kind of colour are not supported.");
    }
    if (layout.colour == TiffColour::Cmyk &&
        Field<std::uint16_t>(handle, TIFFTAG_INKSET, INKSET_CMYK) != INKSET_CMYK &&
        Field<std::uint16_t>(handle, TIFFTAG_NUMBEROFINKS, 4) != 4) {
        Refuse("TIFF files with other inks than cyan, magenta, yellow and black are not supported.");
    }
}

void ReadAlpha(TIFF* handle, const TiffDirectory& directory, TiffLayout& layout) {
    std::uint16_t count = 0;
    const std::uint16_t* kinds = nullptr;
    // The library makes up the tag where it is missing, so that it is looked for in the file.
    if (directory.Find(tifftags::kExtraSamples) == nullptr) {
        const bool couldBeAlpha = layout.colour == TiffColour::Grey || layout.colour == TiffColour::Rgb;
        if (couldBeAlpha && layout.samples == layout.colours + 1) {
            layout.alpha = TiffAlpha::Undeclared;
            layout.alphaSample = layout.colours;
        }
    } else if (TIFFGetField(handle, TIFFTAG_EXTRASAMPLES, &count, &kinds) != 0) {
        for (int i = 0; i < count && layout.colours + i < layout.samples; ++i) {
            if (kinds[i] == EXTRASAMPLE_ASSOCALPHA || kinds[i] == EXTRASAMPLE_UNASSALPHA) {
                layout.alpha =
                    kinds[i] == EXTRASAMPLE_ASSOCALPHA ? TiffAlpha::Associated : TiffAlpha::Unassociated;
                layout.alphaSample = layout.colours + i;
                return;
            }
        }
    }
}

int Ceiling(int value, int step) {
    return value / step + (value % step != 0 ? 1 : 0);
}

void ReadBlocks(TIFF* handle, TiffLayout& layout) {
    layout.tiled = TIFFIsTiled(handle) != 0;
    std::uint32_t width = static_cast<std::uint32_t>(layout.width);
    std::uint32_t height = 0;
    if (layout.tiled) {
        width = Field<std::uint32_t>(handle, TIFFTAG_TILEWIDTH);
        height = Field<std::uint32_t>(handle, TIFFTAG_TILELENGTH);
        layout.blockRowBytes = static_cast<std::size_t>(TIFFTileRowSize64(handle));
    } else {
        height = std::min(Field<std::uint32_t>(handle, TIFFTAG_ROWSPERSTRIP, UINT32_MAX),
                          static_cast<std::uint32_t>(layout.height));
        layout.blockRowBytes = static_cast<std::size_t>(TIFFScanlineSize64(handle));
    }
    constexpr std::uint32_t kLargestSide = 2 * std::uint32_t{kMaximumSide};
    if (width < 1 || height < 1 || width > kLargestSide || height > kLargestSide) {
        Refuse("The TIFF file has strips or tiles of an impossible size.");
    }
    layout.blockWidth = static_cast<int>(width);
    layout.blockHeight = static_cast<int>(height);
    layout.blocksAcross = Ceiling(layout.width, layout.blockWidth);
    layout.blocksDown = Ceiling(layout.height, layout.blockHeight);
    const std::uint64_t blocks = static_cast<std::uint64_t>(layout.Blocks()) *
                                 static_cast<std::uint64_t>(layout.separatePlanes ? layout.samples : 1);
    const std::uint64_t held = layout.tiled ? TIFFNumberOfTiles(handle) : TIFFNumberOfStrips(handle);
    const std::uint64_t samples = static_cast<std::uint64_t>(layout.separatePlanes ? 1 : layout.samples);
    const std::uint64_t neededRow = (width * samples * static_cast<std::uint64_t>(layout.bits) + 7) / 8;
    if (held != blocks || (!layout.convertedByLibrary && layout.blockRowBytes < neededRow)) {
        Refuse("The TIFF file contradicts itself on its strips or tiles.");
    }
}

// Decoding costs what blocks hold, whether or not it is seen, and no more than the bytes of the file explain.
void CheckClaims(const TiffLayout& layout, std::size_t fileBytes) {
    const auto packing = std::find_if(kPackings.begin(), kPackings.end(),
                                      [&](const Packing& p) { return p.compression == layout.compression; });
    const std::size_t ratio = packing == kPackings.end() ? kOtherRatio : packing->ratio;
    const std::size_t decoded =
        layout.BlockBytes() * static_cast<std::size_t>(layout.Blocks()) * layout.Planes().size();
    const std::int64_t pixels = std::int64_t{layout.width} * layout.height;
    const std::int64_t blockPixels =
        std::int64_t{layout.blockWidth} * layout.blockHeight * layout.Blocks(); // with what lies outside
    constexpr std::int64_t kPlausibleWaste = 4;
    constexpr std::int64_t kSmall = std::int64_t{16} << 20;
    // Each block stands in two tables, with two bytes at the very least.
    constexpr std::size_t kFewBlocks = std::size_t{1} << 16;
    constexpr std::size_t kTableBytes = 4;
    const auto blocks = static_cast<std::size_t>(layout.Blocks());
    if ((blocks > kFewBlocks && blocks > fileBytes / kTableBytes) ||
        (decoded > kAlwaysPlausible && decoded / ratio > fileBytes) ||
        (blockPixels > kSmall && blockPixels / kPlausibleWaste > pixels)) {
        Refuse("The TIFF file is far too short for the picture it claims to hold.");
    }
    // A pixel of one bit takes four bytes in memory.
    const std::size_t pixelBits = static_cast<std::size_t>(layout.bits) * layout.Planes().size() *
                                  static_cast<std::size_t>(layout.separatePlanes ? 1 : layout.samples);
    CheckClaimedSize(layout.width, layout.height, fileBytes,
                     std::max<std::int64_t>(1, static_cast<std::int64_t>(ratio * 8 / pixelBits)));
}

} // namespace

std::vector<int> TiffLayout::Planes() const {
    std::vector<int> planes{0};
    if (separatePlanes) {
        for (int i = 1; i < colours; ++i) {
            planes.push_back(i);
        }
        if (alpha != TiffAlpha::None) {
            planes.push_back(alphaSample);
        }
    }
    return planes;
}

TiffLayout ReadTiffLayout(const TiffFile& tiff, const TiffDirectory& directory, ByteView file) {
    TIFF* const handle = tiff.Handle();
    const auto width = Field<std::uint32_t>(handle, TIFFTAG_IMAGEWIDTH);
    const auto height = Field<std::uint32_t>(handle, TIFFTAG_IMAGELENGTH);
    CheckPictureSize(width, height);
    TiffLayout layout;
    layout.width = static_cast<int>(width);
    layout.height = static_cast<int>(height);
    layout.orientation = Field<std::uint16_t>(handle, TIFFTAG_ORIENTATION, 1);
    layout.compression = Field<std::uint16_t>(handle, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    if (TIFFIsCODECConfigured(layout.compression) == 0) {
        Refuse("TIFF files with this kind of compression are not supported.");
    }
    layout.separatePlanes =
        Field<std::uint16_t>(handle, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE;
    layout.reversedBits =
        Field<std::uint16_t>(handle, TIFFTAG_FILLORDER, FILLORDER_MSB2LSB) == FILLORDER_LSB2MSB;
    ReadSamples(handle, layout);
    layout.separatePlanes = layout.separatePlanes && layout.samples > 1;
    ReadColour(handle, layout);
    ReadAlpha(handle, directory, layout);
    ReadBlocks(handle, layout);
    CheckClaims(layout, file.size());
    return layout;
}

} // namespace pictorel::codecs
