// What several formats ask of a picture, see PixelSupport.h.
#include "picture/codecs/PixelSupport.h"

#include "picture/ForEachBand.h"
#include "picture/ImagingError.h"
#include "picture/Limits.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <mutex>
#include <string>

namespace pictorel::codecs {
namespace {

constexpr std::int64_t kAlwaysPlausiblePixels = std::int64_t{16} << 20; // 64 MiB in memory
constexpr double kMetresPerInch = 0.0254;

constexpr std::uint8_t OverWhite(int component, int alpha) noexcept {
    return static_cast<std::uint8_t>((component * alpha + 255 * (255 - alpha) + 127) / 255);
}

void LayRowOverWhite(const std::uint8_t* bgra, std::uint8_t* bgr, int pixels) noexcept {
    for (int x = 0; x < pixels; ++x, bgra += 4, bgr += 3) {
        const int alpha = bgra[3];
        bgr[0] = OverWhite(bgra[0], alpha);
        bgr[1] = OverWhite(bgra[1], alpha);
        bgr[2] = OverWhite(bgra[2], alpha);
    }
}

} // namespace

void Refuse(const char* text) {
    throw ImagingError(ImagingFailure::UnsupportedFormat, text);
}

void CheckClaimedSize(std::int64_t width, std::int64_t height, std::size_t fileBytes,
                      std::int64_t pixelsPerByte) {
    CheckPictureSize(width, height);
    const std::int64_t pixels = width * height;
    if (pixels > kAlwaysPlausiblePixels && pixels / pixelsPerByte > static_cast<std::int64_t>(fileBytes)) {
        throw ImagingError(ImagingFailure::UnsupportedFormat,
                           "The file is far too short for its picture of " + std::to_string(width) + " x " +
                               std::to_string(height) + " pixels.");
    }
}

bool IsPlausibleSize(std::int64_t width, std::int64_t height, std::size_t fileBytes,
                     std::int64_t pixelsPerByte) noexcept {
    try {
        CheckClaimedSize(width, height, fileBytes, pixelsPerByte);
        return true;
    } catch (const ImagingError&) {
        return false;
    }
}

void NotePixelsShown(PixelArray& picture, double pixels) {
    const double all = static_cast<double>(picture.Width()) * picture.Height();
    if (pixels <= 0 || (picture.Height() > 1 && pixels < picture.Width())) {
        Refuse("The file is damaged or ends before its first row of pixels.");
    }
    picture.SetPartShown(std::min(pixels / all, 1.0));
}

double PixelsInRows(std::size_t bytes, std::size_t rowBytes, int bitsPerPixel, int width) noexcept {
    const std::size_t ofLast = bytes % rowBytes * 8 / static_cast<std::size_t>(bitsPerPixel);
    const std::size_t wholeRows = bytes / rowBytes;
    return static_cast<double>(wholeRows) * width +
           static_cast<double>(std::min(ofLast, static_cast<std::size_t>(width)));
}

void FillWhite(PixelArray& picture, int firstRow, int endRow) {
    std::uint8_t* const rows = picture.WritableRows();
    const std::ptrdiff_t stride = picture.Stride();
    ForEachBand(endRow - firstRow, picture.RowBytes(), [&](int first, int end) {
        std::memset(rows + (firstRow + first) * stride, 0xFF,
                    static_cast<std::size_t>((end - first) * stride));
    });
}

AlphaRange FindAlphaRange(const PixelArray& picture, int firstRow, int endRow) {
    AlphaRange whole{255, 0};
    std::mutex mutex;
    ForEachBand(endRow - firstRow, picture.RowBytes(), [&](int first, int end) {
        std::uint8_t lowest = 255;
        std::uint8_t highest = 0;
        for (int y = first; y < end; ++y) {
            const std::uint8_t* alpha = picture.Row(firstRow + y) + 3;
            for (int x = 0; x < picture.Width(); ++x, alpha += PixelArray::kComponents) {
                lowest = std::min(lowest, *alpha);
                highest = std::max(highest, *alpha);
            }
        }
        const std::lock_guard lock(mutex);
        whole.lowest = std::min(whole.lowest, lowest);
        whole.highest = std::max(whole.highest, highest);
    });
    return whole;
}

void SettleAlpha(PixelArray& picture) {
    picture.SetHasAlpha(FindAlphaRange(picture, 0, picture.Height()).lowest < 255);
}

void JudgeAlpha(PixelArray& picture, int firstRow, int endRow) {
    const AlphaRange range = FindAlphaRange(picture, firstRow, endRow);
    if (range.highest == 0 || firstRow == endRow) {
        MakeOpaque(picture);
    } else if (range.lowest < 255) {
        picture.SetHasAlpha(true);
    } else {
        SettleAlpha(picture); // by a row that is there in part
    }
}

void Unpremultiply(PixelArray& picture) {
    std::uint8_t* const rows = picture.WritableRows();
    ForEachBand(picture.Height(), picture.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            std::uint8_t* pixel = rows + y * picture.Stride();
            for (int x = 0; x < picture.Width(); ++x, pixel += PixelArray::kComponents) {
                const int alpha = pixel[3];
                for (int k = 0; alpha != 0 && alpha != 255 && k < 3; ++k) {
                    pixel[k] = static_cast<std::uint8_t>(std::min((pixel[k] * 255 + alpha / 2) / alpha, 255));
                }
            }
        }
    });
}

void MakeOpaque(PixelArray& picture) {
    std::uint8_t* const rows = picture.WritableRows();
    ForEachBand(picture.Height(), picture.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            std::uint8_t* alpha = rows + y * picture.Stride() + 3;
            for (int x = 0; x < picture.Width(); ++x, alpha += PixelArray::kComponents) {
                *alpha = 255;
            }
        }
    });
    picture.SetHasAlpha(false);
}

bool NeedsAlpha(const PixelArray& picture) {
    return picture.HasAlpha() && FindAlphaRange(picture, 0, picture.Height()).lowest < 255;
}

void ColourIndices(const std::uint8_t* packed, int bits, const Palette256& palette, std::uint8_t* bgra,
                   int pixels) noexcept {
    const int perByte = 8 / bits;
    const int largest = (1 << bits) - 1;
    for (int x = 0; x < pixels; ++packed) {
        for (int shift = 8 - bits, end = std::min(x + perByte, pixels); x < end; ++x, shift -= bits) {
            const int index = *packed >> shift & largest;
            std::memcpy(bgra, palette[static_cast<std::size_t>(index)].data(), PixelArray::kComponents);
            bgra += PixelArray::kComponents;
        }
    }
}

void CopyOpaque(const std::uint8_t* bgr, std::uint8_t* bgra, int pixels) noexcept {
    for (int x = 0; x < pixels; ++x, bgr += 3, bgra += PixelArray::kComponents) {
        bgra[0] = bgr[0];
        bgra[1] = bgr[1];
        bgra[2] = bgr[2];
        bgra[3] = 255;
    }
}

void FlattenRow(const PixelArray& picture, int y, std::uint8_t* bgr) noexcept {
    const std::uint8_t* pixel = picture.Row(y);
    if (picture.HasAlpha()) {
        LayRowOverWhite(pixel, bgr, picture.Width());
        return;
    }
    for (int x = 0; x < picture.Width(); ++x, pixel += PixelArray::kComponents, bgr += 3) {
        bgr[0] = pixel[0];
        bgr[1] = pixel[1];
        bgr[2] = pixel[2];
    }
}

double InchesFromMetre(double pixelsPerMetre) noexcept {
    if (!(pixelsPerMetre > 0)) {
        return 0;
    }
    const double inches = pixelsPerMetre * kMetresPerInch;
    const double whole = std::round(inches);
    return std::abs(inches - whole) <= kMetresPerInch / 2 && whole > 0 ? whole : inches;
}

std::uint32_t MetreFromInches(double pixelsPerInch) noexcept {
    const double metre = std::round(pixelsPerInch / kMetresPerInch);
    return metre > 0 && metre < 2147483647.0 ? static_cast<std::uint32_t>(metre) : 0;
}

} // namespace pictorel::codecs
