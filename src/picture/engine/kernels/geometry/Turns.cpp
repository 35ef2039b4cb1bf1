// Mirrors and quarter turns: pixels change places and nothing else, see Geometry.h.
#include "picture/ForEachBand.h"
#include "picture/engine/Geometry.h"
#include "picture/engine/kernels/base/RowKernels.h"
#include "picture/engine/kernels/base/RowLoop.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/base/Streaming.h"
#include "picture/engine/kernels/geometry/TurnKernels.h"

#include <algorithm>
#include <cstddef>

namespace pictorel::engine {
namespace {

// Tiles of a result that is turned: as wide as a line of the cache, which is written whole, and as high as
// makes long runs of the source's rows.
constexpr int kTileWidth = 16;
constexpr int kTileHeight = 256;

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
        const std::uint8_t* const from = start + left * alongRow + first * alongColumn;
        const std::uint8_t* const ahead =
            right + kTileWidth <= width ? from + kTileWidth * alongRow : nullptr;
        TurnKernels::Best().Transpose({from, alongRow, rows + first * stride + left * kPixelBytes,
                                       isUpwards ? -stride : stride, right - left, bottom - top, streams,
                                       ahead});
    };
    const int tileRows = (height + kTileHeight - 1) / kTileHeight;
    ForEachBand(tileRows, 2 * kTileHeight * result.RowBytes(), [&](int first, int end) {
        for (int tileRow = first; tileRow < end; ++tileRow) {
            // Counted from the row that is the source's left column, so that tiles begin where lines of the
            // cache do.
            const int near = tileRow * kTileHeight;
            const int far = std::min(near + kTileHeight, height);
            const int top = alongColumn < 0 ? height - far : near;
            const int bottom = alongColumn < 0 ? height - near : far;
            for (int left = 0; left < width; left += kTileWidth) {
                turnTile(left, std::min(left + kTileWidth, width), top, bottom);
            }
        }
        if (streams) {
            TurnKernels::Best().EndStreaming();
        }
    });
    return result;
}

} // namespace

PixelArray MirrorTopToBottom(const PixelArray& source) {
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const bool streams = IsStreamed(result);
    ForEachBand(result.Height(), 2 * result.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            RowKernels::Best().CopyRow(source.Row(result.Height() - 1 - y), result.RowBytes(), streams,
                                       rows + y * result.Stride(), nullptr);
        }
    });
    return result;
}

PixelArray MirrorLeftToRight(const PixelArray& source) {
    return MapRows(source, TurnKernels::Best().MirrorRow);
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
