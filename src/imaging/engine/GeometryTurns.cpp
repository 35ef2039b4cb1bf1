// Mirrors and quarter turns: pixels change places and nothing else, see Geometry.h.
#include "imaging/ForEachBand.h"
#include "imaging/engine/Geometry.h"
#include "imaging/engine/Streaming.h"
#include "imaging/engine/TurnTile.h"
#include "imaging/engine/WholePixel.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace pictorel::engine {
namespace {

constexpr std::ptrdiff_t kPixelBytes = PixelArray::kComponents;

// A quarter turn reads down columns. In squares of this side the source lines touched stay in the cache
// until all their pixels have been read.
constexpr int kTurnTile = 32;

// Writes to the result pixel (x, y) what lies at `start + x * alongRow + y * alongColumn`, `alongColumn`
// being one pixel to the right or to the left.
PixelArray Turned(const PixelArray& source, const std::uint8_t* start, std::ptrdiff_t alongRow,
                  std::ptrdiff_t alongColumn) {
    const int width = source.Height();
    const int height = source.Width();
    PixelArray result = PixelArray::Like(source, width, height);
    std::uint8_t* const rows = result.WritableRows();
    const std::ptrdiff_t stride = result.Stride();
    const bool streams = IsStreamed(result);
    const auto turnTile = [=](int left, int right, int top, int bottom) {
        const bool isUpwards = alongColumn < 0; // then the tile begins with its last row
        const int first = isUpwards ? bottom - 1 : top;
        simd::Transpose({start + left * alongRow + first * alongColumn, alongRow,
                         rows + first * stride + left * kPixelBytes, isUpwards ? -stride : stride,
                         right - left, bottom - top, streams});
    };
    ForEachBand(height, 2 * result.RowBytes(), [&](int first, int end) {
        for (int top = first; top < end; top += kTurnTile) {
            for (int left = 0; left < width; left += kTurnTile) {
                turnTile(left, std::min(left + kTurnTile, width), top, std::min(top + kTurnTile, end));
            }
        }
    });
    return result;
}

} // namespace

PixelArray MirrorTopToBottom(const PixelArray& source) {
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    ForEachBand(result.Height(), 2 * result.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            std::memcpy(rows + y * result.Stride(), source.Row(result.Height() - 1 - y), result.RowBytes());
        }
    });
    return result;
}

PixelArray MirrorLeftToRight(const PixelArray& source) {
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    ForEachBand(result.Height(), 2 * result.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            const std::uint8_t* const from = source.Row(y) + (result.Width() - 1) * kPixelBytes;
            std::uint8_t* const to = rows + y * result.Stride();
            for (std::ptrdiff_t x = 0; x < result.Width(); ++x) {
                StorePixel(to + x * kPixelBytes, LoadPixel(from - x * kPixelBytes));
            }
        }
    });
    return result;
}

PixelArray QuarterTurnLeft(const PixelArray& source) {
    CheckPictureSize(source.Width(), source.Height());
    // The top row of the result is the right column of the source, from its top.
    const std::uint8_t* const topRight = source.Row(0) + (source.Width() - 1) * kPixelBytes;
    return Turned(source, topRight, source.Stride(), -kPixelBytes);
}

PixelArray QuarterTurnRight(const PixelArray& source) {
    CheckPictureSize(source.Width(), source.Height());
    // The top row of the result is the left column of the source, from its bottom.
    return Turned(source, source.Row(source.Height() - 1), -source.Stride(), kPixelBytes);
}

} // namespace pictorel::engine
