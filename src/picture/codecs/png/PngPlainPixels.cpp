// Inflates and unfilters plain PNG pixels, see PngPlainPixels.h.
#include "picture/codecs/png/PngPlainPixels.h"

#include "picture/BufferPool.h"
#include "picture/codecs/png/PngChunks.h"

#include <libdeflate.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace pictorel::codecs {
namespace {

// Which of the left, the upper and the upper left neighbour is nearest to left + upper - upper left; the
// first of those equally near.
int Paeth(int left, int upper, int upperLeft) {
    const int toLeft = std::abs(upper - upperLeft);
    const int toUpper = std::abs(left - upperLeft);
    const int toUpperLeft = std::abs(left + upper - 2 * upperLeft);
    const int nearest = toUpper < toLeft ? upper : left;
    return toUpperLeft < std::min(toLeft, toUpper) ? upperLeft : nearest;
}

// Adds predict(left, upper, upper left) to every byte of a row, its neighbours being those of the pixels to
// the left, which are done, and of the row above.
template <int kPixelBytes, class Predict>
void AddPredicted(std::uint8_t* row, const std::uint8_t* above, std::ptrdiff_t rowBytes,
                  const Predict& predict) {
    int left[kPixelBytes] = {};
    int upperLeft[kPixelBytes] = {};
    for (std::ptrdiff_t i = 0; i < rowBytes; i += kPixelBytes) {
        for (int k = 0; k < kPixelBytes; ++k) {
            const int upper = above[i + k];
            const auto value = static_cast<std::uint8_t>(row[i + k] + predict(left[k], upper, upperLeft[k]));
            row[i + k] = value;
            left[k] = value;
            upperLeft[k] = upper;
        }
    }
}

// Undoes one of the filters 0 to 4 (ISO/IEC 15948, 9.2).
template <int kPixelBytes>
bool Unfilter(int filter, std::uint8_t* row, const std::uint8_t* above, std::ptrdiff_t rowBytes) {
    switch (filter) {
        case 0:
            return true;
        case 1:
            AddPredicted<kPixelBytes>(row, above, rowBytes, [](int left, int, int) { return left; });
            return true;
        case 2:
            std::transform(row, row + rowBytes, above, row,
                           [](std::uint8_t a, std::uint8_t b) { return static_cast<std::uint8_t>(a + b); });
            return true;
        case 3:
            AddPredicted<kPixelBytes>(row, above, rowBytes,
                                      [](int left, int upper, int) { return (left + upper) / 2; });
            return true;
        case 4:
            AddPredicted<kPixelBytes>(row, above, rowBytes, Paeth);
            return true;
        default:
            return false;
    }
}

template <int kPixelBytes>
void CopyToBgra(const std::uint8_t* rgb, std::uint8_t* bgra, int pixels) {
    for (int x = 0; x < pixels; ++x, rgb += kPixelBytes, bgra += PixelArray::kComponents) {
        bgra[0] = rgb[2];
        bgra[1] = rgb[1];
        bgra[2] = rgb[0];
        bgra[3] = kPixelBytes == 4 ? rgb[kPixelBytes - 1] : std::uint8_t{255};
    }
}

// Rows of a filter's number and filtered bytes become pixels; each row is needed plain for the next.
template <int kPixelBytes>
bool TakeRows(std::uint8_t* filtered, PixelArray& picture) {
    const std::ptrdiff_t rowBytes = std::ptrdiff_t{kPixelBytes} * picture.Width();
    const ByteBuffer zeros(static_cast<std::size_t>(rowBytes));
    const std::uint8_t* above = zeros.data();
    std::uint8_t* const pixels = picture.WritableRows();
    for (int y = 0; y < picture.Height(); ++y, filtered += rowBytes + 1) {
        std::uint8_t* const row = filtered + 1;
        if (!Unfilter<kPixelBytes>(filtered[0], row, above, rowBytes)) {
            return false;
        }
        CopyToBgra<kPixelBytes>(row, pixels + y * picture.Stride(), picture.Width());
        above = row;
    }
    return true;
}

// Exactly `bytes`; null where the data gives fewer or more or is damaged.
std::shared_ptr<std::uint8_t> Inflated(ByteView data, std::size_t bytes) {
    const std::unique_ptr<libdeflate_decompressor, void (*)(libdeflate_decompressor*)> inflater(
        libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
    if (inflater == nullptr) {
        return nullptr;
    }
    auto memory = TakeBuffer(bytes);
    const libdeflate_result result =
        libdeflate_zlib_decompress(inflater.get(), data.data(), data.size(), memory.get(), bytes, nullptr);
    return result == LIBDEFLATE_SUCCESS ? memory : nullptr;
}

} // namespace

bool ReadPlainPng(ByteView file, bool hasAlpha, PixelArray& picture) {
    const std::size_t rowBytes = (hasAlpha ? 4U : 3U) * static_cast<std::size_t>(picture.Width());
    // Twice the memory is too much for a large picture, and half of the time no longer worth it.
    constexpr std::int64_t kMostPixels = std::int64_t{64} << 20;
    if (std::int64_t{picture.Width()} * picture.Height() > kMostPixels) {
        return false;
    }
    ByteBuffer joined;
    const ByteView data = PngData(file, joined);
    const auto filtered = Inflated(data, (rowBytes + 1) * static_cast<std::size_t>(picture.Height()));
    return filtered != nullptr &&
           (hasAlpha ? TakeRows<4>(filtered.get(), picture) : TakeRows<3>(filtered.get(), picture));
}

} // namespace pictorel::codecs
