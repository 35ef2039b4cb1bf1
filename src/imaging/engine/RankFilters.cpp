// The brightest and the darkest of a square, see Filters.h.
#include "imaging/engine/Filters.h"
#include "imaging/engine/Parameters.h"
#include "imaging/engine/RankRows.h"
#include "imaging/engine/Streaming.h"
#include "imaging/engine/Tiles.h"

#include <cmath>
#include <cstdlib>
#include <vector>

namespace pictorel::engine {
namespace {

constexpr int kComponents = PixelArray::kComponents;
constexpr int kLargestRadius = 1000;

// Never wins.
std::uint8_t NeutralFor(Rank rank) {
    return rank == Rank::Brightest ? 0 : 255;
}

struct RankScratch {
    std::vector<std::uint8_t> inner;
    std::vector<std::uint8_t> outer;
};

// Turns each component into the extreme of itself and the window - 1 that follow at `step`: windows of 1, 4,
// 16, ... are laid together, the last ones overlapping. The end of the data loses the window's length.
std::size_t SpreadWindows(Rank rank, std::size_t window, std::size_t step, std::size_t count,
                          std::uint8_t* data) {
    for (std::size_t done = 1; done < window;) {
        const std::size_t wider = std::min(kMostParts * done, window);
        const WindowStep windows{static_cast<int>((wider + done - 1) / done),
                                 static_cast<std::ptrdiff_t>(done * step),
                                 static_cast<std::ptrdiff_t>((wider - done) * step)};
        count -= (wider - done) * step;
        simd::SpreadWindow(rank, windows, count, data, data);
        done = wider;
    }
    return count;
}

// The colour of invisible pixels is arbitrary and must not spread.
void NeutralizeInvisible(Rank rank, std::size_t count, std::uint8_t* pixels) {
    for (std::size_t i = 0; i < count; i += kComponents) {
        if (pixels[i + 3] == 0) {
            std::fill_n(pixels + i, 3, NeutralFor(rank));
        }
    }
}

// A square of `radius` or, where `outerShare` (of 2^kShareBits) is not 0, a mix of it and the next larger.
struct Square {
    int radius;
    int outerShare;

    int Margin() const { return outerShare == 0 ? radius : radius + 1; }
};

// The extremes of one tile. The larger square's are those of 3 x 3 of the smaller one's.
void FilterTile(Rank rank, const PixelArray& source, const Square& square, const TileArea& area,
                RankScratch& scratch, PixelArray& result, std::uint8_t* rows) {
    const int margin = square.Margin();
    const std::size_t rowLength = static_cast<std::size_t>(area.width + 2 * margin) * kComponents;
    const std::size_t count = rowLength * static_cast<std::size_t>(area.height + 2 * margin);
    scratch.inner.resize(count + kRankRoom);
    std::uint8_t* const inner = scratch.inner.data();
    LoadTile(source, area, {margin, margin}, inner);
    if (source.HasAlpha()) {
        NeutralizeInvisible(rank, count, inner);
    }
    const std::size_t window = 2 * static_cast<std::size_t>(square.radius) + 1;
    std::size_t left = SpreadWindows(rank, window, rowLength, count, inner);
    left = SpreadWindows(rank, window, kComponents, left, inner);
    if (square.outerShare != 0) {
        constexpr std::size_t kOuterWindow = 3;
        scratch.outer.resize(count + kRankRoom);
        const WindowStep down{kOuterWindow, static_cast<std::ptrdiff_t>(rowLength),
                              static_cast<std::ptrdiff_t>(2 * rowLength)};
        left -= 2 * rowLength;
        simd::SpreadWindow(rank, down, left, inner, scratch.outer.data());
        SpreadWindows(rank, kOuterWindow, kComponents, left, scratch.outer.data());
    }
    const std::ptrdiff_t offset = static_cast<std::ptrdiff_t>(area.left) * kComponents;
    for (int y = 0; y < area.height; ++y) {
        const RankRow row{source.Row(area.top + y) + offset, rows + (area.top + y) * result.Stride() + offset,
                          area.width, IsStreamed(result)};
        const std::uint8_t* const colour = inner + static_cast<std::size_t>(y) * rowLength;
        if (square.outerShare == 0) {
            simd::JoinRow(colour, row);
        } else {
            simd::MixRow(colour + rowLength + kComponents,
                         scratch.outer.data() + static_cast<std::size_t>(y) * rowLength, square.outerShare,
                         row);
        }
    }
}

// On a reduced copy the radius is seldom whole; what lies between two squares is mixed from both.
PixelArray FilterSquare(Rank rank, const PixelArray& source, int radius) {
    const double reduced = radius * source.Reduction();
    const double whole = std::floor(reduced);
    const Square square{static_cast<int>(whole), static_cast<int>((reduced - whole) * (1 << kShareBits))};
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
