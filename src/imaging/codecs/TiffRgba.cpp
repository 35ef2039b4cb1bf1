// The exotic kinds of TIFF pictures, see TiffRgba.h.
#include "imaging/codecs/TiffRgba.h"

#include "imaging/codecs/PixelSupport.h"

#include <algorithm>
#include <vector>

namespace pictorel::codecs {
namespace {

constexpr std::uint64_t kLargestTile = std::uint64_t{1} << 26; // pixels

// One row as libtiff packs it, colour multiplied by alpha.
void UnpackRow(const std::uint32_t* packed, std::uint8_t* bgra, int pixels) {
    for (int x = 0; x < pixels; ++x, bgra += PixelArray::kComponents) {
        const std::uint32_t alpha = TIFFGetA(packed[x]);
        const auto divided = [alpha](std::uint32_t value) {
            return alpha == 0 ? std::uint8_t{0}
                              : static_cast<std::uint8_t>(std::min(255U, (value * 255 + alpha / 2) / alpha));
        };
        bgra[0] = divided(TIFFGetB(packed[x]));
        bgra[1] = divided(TIFFGetG(packed[x]));
        bgra[2] = divided(TIFFGetR(packed[x]));
        bgra[3] = static_cast<std::uint8_t>(alpha);
    }
}

} // namespace

bool ReadTiffRgba(TIFF* tiff, const TiffLayout& layout, PixelArray& picture) {
    char reason[1024] = "";
    if (TIFFRGBAImageOK(tiff, reason) == 0) {
        Refuse("The TIFF file has a kind of colours that this editor cannot read.");
    }
    // The picture is turned upright by our caller; left to itself, libtiff would mirror blocks.
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    const bool isTiled = TIFFIsTiled(tiff) != 0;
    auto blockWidth = static_cast<std::uint32_t>(layout.width);
    std::uint32_t blockHeight = 0;
    if (isTiled) {
        TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &blockWidth);
        TIFFGetField(tiff, TIFFTAG_TILELENGTH, &blockHeight);
    } else {
        TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &blockHeight);
        blockHeight = std::min(blockHeight, static_cast<std::uint32_t>(layout.height));
    }
    if (blockWidth == 0 || blockHeight == 0 ||
        (isTiled && std::uint64_t{blockWidth} * blockHeight > kLargestTile)) {
        Refuse("The tiles of the TIFF file are larger than any picture's.");
    }
    std::vector<std::uint32_t> block(std::size_t{blockWidth} * blockHeight);
    std::uint8_t* const rows = picture.WritableRows();
    const auto width = static_cast<int>(blockWidth);
    const auto height = static_cast<int>(blockHeight);
    bool isAny = false;
    for (int top = 0; top < layout.height; top += height) {
        for (int left = 0; left < layout.width; left += width) {
            const auto x = static_cast<std::uint32_t>(left);
            const auto y = static_cast<std::uint32_t>(top);
            if ((isTiled ? TIFFReadRGBATileExt(tiff, x, y, block.data(), 1)
                         : TIFFReadRGBAStripExt(tiff, y, block.data(), 1)) == 0) {
                continue;
            }
            isAny = true;
            const int count = std::min(height, layout.height - top);
            const int last = (isTiled ? height : count) - 1; // blocks come with their bottom row first
            for (int i = 0; i < count; ++i) {
                UnpackRow(
                    block.data() + std::ptrdiff_t{last - i} * width,
                    rows + (top + i) * picture.Stride() + std::ptrdiff_t{PixelArray::kComponents} * left,
                    std::min(width, layout.width - left));
            }
        }
    }
    return isAny;
}

} // namespace pictorel::codecs
