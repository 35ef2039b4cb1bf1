// The brightest and the darkest of a square, see Filters.h.
#include "picture/engine/Filters.h"
#include "picture/engine/kernels/base/FixedPoint.h"
#include "picture/engine/kernels/base/LineAllocator.h"
#include "picture/engine/kernels/base/Parameters.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/base/Streaming.h"
#include "picture/engine/kernels/base/Tiles.h"
#include "picture/engine/kernels/rank/RankKernels.h"

#include <cmath>
#include <cstdlib>
#include <vector>

namespace pictorel::engine {
namespace {

constexpr int kLargestRadius = 1000;

using ByteRow = std::vector<std::uint8_t, LineAllocator<std::uint8_t>>;

// So long that the next row begins on a cache line too.
std::size_t AlignedRow(std::size_t length) {
    return (length + kCacheLine - 1) / kCacheLine * kCacheLine;
}

// Never wins.
std::uint8_t NeutralFor(Rank rank) {
    return rank == Rank::Brightest ? 0 : 255;
}

// A square of `radius` or, where `outerShare` (of kFixedUnit) is not 0, a mix of it and the next larger.
struct Square {
    int radius;
    int outerShare;

    int Margin() const { return outerShare == 0 ? radius : radius + 1; }
};

// The colour of invisible pixels is arbitrary and must not spread.
void NeutralizeInvisible(Rank rank, int width, std::uint8_t* pixels) {
    for (int i = 0; i < width * kComponents; i += kComponents) {
        if (pixels[i + 3] == 0) {
            std::fill_n(pixels + i, 3, NeutralFor(rank));
        }
    }
}

// The part of a picture that the squares about a tile's pixels reach: its rows from column `first` to before
// `end`, the edge rows going on beyond the border.
struct Reach {
    int first;
    int end;
    int margin; // rows above the tile, and at least as many below
    std::vector<const std::uint8_t*> rows;
    std::vector<std::uint8_t> copies; // of the rows, where there is alpha
};

// Columns on each side that the squares of `radius` reach, and more, so that rows begin on cache lines.
int ColumnMargin(int radius) {
    return (radius + kVectorPixels - 1) / kVectorPixels * kVectorPixels;
}

void FindReach(Rank rank, const PixelArray& source, const TileArea& area, int margin, Reach& reach) {
    reach.first = std::max(area.left - ColumnMargin(margin), 0);
    reach.end = std::min(area.left + area.width + ColumnMargin(margin), source.Width());
    const int width = reach.end - reach.first;
    const std::size_t rowLength = static_cast<std::size_t>(width) * kComponents;
    const int rowCount = area.height + 2 * margin + 1; // rows are made in pairs
    reach.margin = margin;
    reach.rows.clear();
    if (source.HasAlpha()) {
        reach.copies.resize(rowLength * static_cast<std::size_t>(rowCount));
    }
    for (int y = 0; y < rowCount; ++y) {
        const std::uint8_t* row = source.Row(std::clamp(area.top - margin + y, 0, source.Height() - 1)) +
                                  static_cast<std::ptrdiff_t>(reach.first) * kComponents;
        if (source.HasAlpha()) {
            std::uint8_t* const copy = reach.copies.data() + static_cast<std::size_t>(y) * rowLength;
            std::copy_n(row, rowLength, copy);
            NeutralizeInvisible(rank, width, copy);
            row = copy;
        }
        reach.rows.push_back(row);
    }
}

// Windows of 1, 4, 16, ... pixels along a row are laid together, the last ones overlapping: each component
// becomes the extreme of itself and those behind it. All steps up to the last, which is given back.
WindowStep SpreadWindows(Rank rank, std::size_t window, std::size_t count, std::uint8_t* row) {
    for (std::size_t done = 1;;) {
        const std::size_t wider = std::min(kMostParts * done, window);
        const auto parts = static_cast<int>((wider + done - 1) / done);
        const WindowStep step{std::max(parts, 2), static_cast<std::ptrdiff_t>(done * kComponents),
                              static_cast<std::ptrdiff_t>((wider - done) * kComponents)};
        if (wider == window) {
            return step;
        }
        count -= (wider - done) * kComponents;
        RankKernels::Best().SpreadWindow(rank, step, count, row, row);
        done = wider;
    }
}

// Repeats the pixels at both ends of the `inside` ones that lie behind the first `before`.
void ContinueRow(std::uint8_t* row, int before, int inside, int behind) {
    std::uint8_t* const first = row + static_cast<std::ptrdiff_t>(before) * kComponents;
    for (std::uint8_t* p = row; p != first; p += kComponents) {
        std::copy_n(first, kComponents, p);
    }
    std::uint8_t* p = first + static_cast<std::ptrdiff_t>(inside) * kComponents;
    for (int i = 0; i < behind; ++i, p += kComponents) {
        std::copy_n(p - kComponents, kComponents, p);
    }
}

// The extremes down the columns of the squares about two rows' pixels, from the first column on that the
// first square reaches, and the step along the rows that makes those of the squares of them.
struct ColumnExtremes {
    std::uint8_t* upper;
    std::uint8_t* lower;
    WindowStep step;
};

ColumnExtremes FindColumns(Rank rank, const Reach& reach, const TileArea& area, int y, int radius,
                           ByteRow& buffer) {
    const int left = area.left - ColumnMargin(radius);
    const int width = area.width + 2 * ColumnMargin(radius);
    const std::size_t length = AlignedRow(static_cast<std::size_t>(width) * kComponents + kRankRoom);
    buffer.resize(2 * length);
    const int first = std::max(left, reach.first);
    const int end = std::min(left + width, reach.end);
    const int window = 2 * radius + 1;
    const std::ptrdiff_t before = static_cast<std::ptrdiff_t>(first - left) * kComponents;
    RankKernels::Best().ExtremeOfRows(
        rank, {reach.rows.data() + y + reach.margin - radius, static_cast<std::size_t>(window) + 1},
        static_cast<std::size_t>(first - reach.first) * kComponents,
        static_cast<std::size_t>(end - first) * kComponents, buffer.data() + before,
        buffer.data() + length + before);
    ColumnExtremes columns{};
    const auto spread = [&](std::uint8_t* row) {
        ContinueRow(row, first - left, end - first, left + width - end);
        std::uint8_t* const reached =
            row + static_cast<std::ptrdiff_t>(area.left - radius - left) * kComponents;
        columns.step =
            SpreadWindows(rank, static_cast<std::size_t>(window),
                          static_cast<std::size_t>(area.width + 2 * radius) * kComponents, reached);
        return reached;
    };
    columns.upper = spread(buffer.data());
    columns.lower = spread(buffer.data() + length);
    return columns;
}

struct RankScratch {
    Reach reach;
    ByteRow inner;
    ByteRow outer;
};

// Two rows at a time, which share most of what they look down on.
void FilterTile(Rank rank, const PixelArray& source, const Square& square, const TileArea& area,
                RankScratch& scratch, PixelArray& result, std::uint8_t* rows) {
    FindReach(rank, source, area, square.Margin(), scratch.reach);
    const std::ptrdiff_t offset = static_cast<std::ptrdiff_t>(area.left) * kComponents;
    const std::size_t count = static_cast<std::size_t>(area.width) * kComponents;
    const bool streams = IsStreamed(result);
    for (int y = 0; y < area.height; y += 2) {
        const ColumnExtremes inner = FindColumns(rank, scratch.reach, area, y, square.radius, scratch.inner);
        ColumnExtremes outer{};
        if (square.outerShare != 0) {
            outer = FindColumns(rank, scratch.reach, area, y, square.radius + 1, scratch.outer);
        }
        const auto finish = [&](int finished, std::uint8_t* innerRow, std::uint8_t* outerRow) {
            const int ahead = std::min(finished + square.Margin() + kRowsAhead, source.Height() - 1);
            const RankRow row{source.Row(finished) + offset, rows + finished * result.Stride() + offset,
                              area.width, streams, source.Row(ahead) + offset};
            if (square.outerShare == 0) {
                RankKernels::Best().JoinRow(rank, inner.step, innerRow, row);
                return;
            }
            RankKernels::Best().SpreadWindow(rank, inner.step, count, innerRow, innerRow);
            RankKernels::Best().SpreadWindow(rank, outer.step, count, outerRow, outerRow);
            RankKernels::Best().MixRow(innerRow, outerRow, square.outerShare, row);
        };
        finish(area.top + y, inner.upper, outer.upper);
        if (y + 1 < area.height) {
            finish(area.top + y + 1, inner.lower, outer.lower);
        }
    }
}

// On a reduced copy the radius is seldom whole; what lies between two squares is mixed from both.
PixelArray FilterSquare(Rank rank, const PixelArray& source, int radius) {
    const double reduced = radius * source.Reduction();
    const double whole = std::floor(reduced);
    const Square square{static_cast<int>(whole), static_cast<int>((reduced - whole) * kFixedUnit)};
    if (square.Margin() == 0) {
        return source;
    }
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    ForEachTile<RankScratch>(source.Width(), source.Height(),
                             [&](const TileArea& area, RankScratch& scratch) {
                                 FilterTile(rank, source, square, area, scratch, result, rows);
                             });
    return result;
}

} // namespace

PixelArray MaximumFilter(const PixelArray& source, int radius) {
    RequireRange("maximum", radius, -kLargestRadius, kLargestRadius);
    return radius >= 0 ? FilterSquare(Rank::Brightest, source, radius)
                       : FilterSquare(Rank::Darkest, source, -radius);
}

PixelArray MinimumFilter(const PixelArray& source, int radius) {
    RequireRange("minimum", radius, -kLargestRadius, kLargestRadius);
    return MaximumFilter(source, -radius);
}

} // namespace pictorel::engine
