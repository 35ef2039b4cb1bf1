// What several formats ask of a picture: plausible size, white where nothing was decoded, alpha, resolution.
#pragma once

#include "picture/codecs/Codec.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace pictorel::codecs {

// Checks the limits, and refuses (UnsupportedFormat) a large picture that claims more than `pixelsPerByte`
// pixels for each byte of its file: no honest writer of the format packs so tightly, and a hundred bytes must
// not cost gigabytes. Pictures small enough to cost little are let through.
void CheckClaimedSize(std::int64_t width, std::int64_t height, std::size_t fileBytes,
                      std::int64_t pixelsPerByte);

// Whether that check would let the size through.
bool IsPlausibleSize(std::int64_t width, std::int64_t height, std::size_t fileBytes,
                     std::int64_t pixelsPerByte) noexcept;

// Throws ImagingError(UnsupportedFormat) with the text.
[[noreturn]] void Refuse(const char* text);

// Notes in PartShown() how many pixels of the picture the file gave. Refuses where they are less than a row
// of several, or none: nothing true could be shown.
void NotePixelsShown(PixelArray& picture, double pixels);

// The pixels that so many bytes of rows hold; the padding of the last one may be missing.
double PixelsInRows(std::size_t bytes, std::size_t rowBytes, int bitsPerPixel, int width) noexcept;

// Opaque white in rows firstRow <= y < endRow.
void FillWhite(PixelArray& picture, int firstRow, int endRow);

// What the alpha components of a picture hold.
struct AlphaRange {
    std::uint8_t lowest = 255;
    std::uint8_t highest = 255;
};
AlphaRange FindAlphaRange(const PixelArray& picture, int firstRow, int endRow);

// Sets HasAlpha() by what the pixels hold: true where some are not opaque.
void SettleAlpha(PixelArray& picture);

// Settles HasAlpha() where only the pixels themselves tell whether their fourth byte means anything: alpha
// that is 0 everywhere was never set, and the picture is made opaque. Judges by rows firstRow <= y < endRow,
// those that the file holds whole.
void JudgeAlpha(PixelArray& picture, int firstRow, int endRow);

// Turns colour that was multiplied by its alpha into plain colour.
void Unpremultiply(PixelArray& picture);

// Makes every pixel opaque, HasAlpha() false.
void MakeOpaque(PixelArray& picture);

// Whether the picture has to be saved with its transparency.
bool NeedsAlpha(const PixelArray& picture);

// Rows of a file become pixels: `bits` (1, 2, 4 or 8) a pixel, the leftmost in the highest ones, are numbers
// of the palette's colours (blue, green, red, alpha); blue, green and red bytes become opaque pixels.
using Palette256 = std::array<std::array<std::uint8_t, 4>, 256>;
void ColourIndices(const std::uint8_t* packed, int bits, const Palette256& palette, std::uint8_t* bgra,
                   int pixels) noexcept;
void CopyOpaque(const std::uint8_t* bgr, std::uint8_t* bgra, int pixels) noexcept;

// A row of the picture as B, G, R triples, laid over white where the picture has transparency.
void FlattenRow(const PixelArray& picture, int y, std::uint8_t* bgr) noexcept;

// Pixels per inch of a count of pixels per metre, and back. A metre count holds an inch count only to within
// 0.013, so one that near a whole number becomes it: 72 dpi stays 72 through a file.
double InchesFromMetre(double pixelsPerMetre) noexcept;
std::uint32_t MetreFromInches(double pixelsPerInch) noexcept;

} // namespace pictorel::codecs
