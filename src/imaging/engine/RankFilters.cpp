// The brightest and the darkest of a square, see Filters.h.
#include "imaging/engine/Filters.h"
#include "imaging/engine/Parameters.h"
#include "imaging/engine/Rounding.h"
#include "imaging/engine/RowLoop.h"
#include "imaging/engine/Tiles.h"

#include <cmath>
#include <cstdlib>
#include <vector>

namespace pictorel::engine {
namespace {

constexpr int kComponents = PixelArray::kComponents;
constexpr int kLargestRadius = 1000;

// The function that picks one of two components, and the component that never wins.
struct Rank {
    void (*pick)(const std::uint8_t* a, const std::uint8_t* b, std::size_t count, std::uint8_t* out);
    std::uint8_t neutral;
};

constexpr Rank kBrightest{BrightestOf, 0};
constexpr Rank kDarkest{DarkestOf, 255};

struct RankScratch {
    std::vector<std::uint8_t> current;
    std::vector<std::uint8_t> next;
};

// Turns each component into the extreme of itself and the window - 1 that follow at `step`: windows of 1, 2,
// 4, ... are laid together, the last two overlapping. The end of the data loses the window's length.
std::size_t SpreadWindow(const Rank& rank, RankScratch& scratch, std::size_t count, std::size_t step,
                         std::size_t window) {
    for (std::size_t done = 1; done < window;) {
        const std::size_t shift = std::min(done, window - done);
        const std::size_t distance = shift * step;
        count -= distance;
        rank.pick(scratch.current.data(), scratch.current.data() + distance, count, scratch.next.data());
        scratch.current.swap(scratch.next);
        done += shift;
    }
    return count;
}

// The colour of invisible pixels is arbitrary and must not spread.
void NeutralizeInvisible(const Rank& rank, std::vector<std::uint8_t>& pixels) {
    for (std::size_t i = 0; i < pixels.size(); i += kComponents) {
        if (pixels[i + 3] == 0) {
            std::fill_n(pixels.begin() + static_cast<std::ptrdiff_t>(i), 3, rank.neutral);
        }
    }
}

PixelArray FilterSquare(const Rank& rank, const PixelArray& source, int radius) {
    if (radius == 0) {
        return source;
    }
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    ForEachTile<RankScratch>(
        source.Width(), source.Height(), [&](const TileArea& area, RankScratch& scratch) {
            const std::size_t window = 2 * static_cast<std::size_t>(radius) + 1;
            const std::size_t rowLength = static_cast<std::size_t>(area.width + 2 * radius) * kComponents;
            const std::size_t count = rowLength * static_cast<std::size_t>(area.height + 2 * radius);
            scratch.current.resize(count);
            scratch.next.resize(count);
            LoadTile(source, area, {radius, radius}, scratch.current.data());
            if (source.HasAlpha()) {
                NeutralizeInvisible(rank, scratch.current);
            }
            const std::size_t left = SpreadWindow(rank, scratch, count, rowLength, window);
            SpreadWindow(rank, scratch, left, kComponents, window);
            for (int y = 0; y < area.height; ++y) {
                const std::ptrdiff_t offset = static_cast<std::ptrdiff_t>(area.left) * kComponents;
                JoinAlpha(scratch.current.data() + static_cast<std::size_t>(y) * rowLength,
                          source.Row(area.top + y) + offset, area.width,
                          rows + (area.top + y) * result.Stride() + offset);
            }
        });
    return result;
}

PixelArray Mix(const PixelArray& a, const PixelArray& b, float shareOfB) {
    PixelArray result = PixelArray::Like(a);
    std::uint8_t* const rows = result.WritableRows();
    ForEachBand(a.Height(), 3 * a.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            const std::uint8_t* const fromA = a.Row(y);
            const std::uint8_t* const fromB = b.Row(y);
            std::uint8_t* const out = rows + y * result.Stride();
            for (int i = 0; i < a.Width() * kComponents; ++i) {
                out[i] = RoundToByte(static_cast<float>(fromA[i]) +
                                     static_cast<float>(fromB[i] - fromA[i]) * shareOfB);
            }
        }
    });
    return result;
}

// On a reduced copy the radius is seldom whole; what lies between two squares is mixed from both.
PixelArray FilterReducedSquare(const Rank& rank, const PixelArray& source, int radius) {
    const double reduced = radius * source.Reduction();
    const double whole = std::floor(reduced);
    PixelArray inner = FilterSquare(rank, source, static_cast<int>(whole));
    if (reduced == whole) {
        return inner;
    }
    return Mix(inner, FilterSquare(rank, source, static_cast<int>(whole) + 1),
               static_cast<float>(reduced - whole));
}

} // namespace

PixelArray MaximumFilter(const PixelArray& source, int radius) {
    RequireRange("maximum", radius, -kLargestRadius, kLargestRadius);
    return radius >= 0 ? FilterReducedSquare(kBrightest, source, radius)
                       : FilterReducedSquare(kDarkest, source, -radius);
}

PixelArray MinimumFilter(const PixelArray& source, int radius) {
    RequireRange("minimum", radius, -kLargestRadius, kLargestRadius);
    return MaximumFilter(source, -radius);
}

} // namespace pictorel::engine
