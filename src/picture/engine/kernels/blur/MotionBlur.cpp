// Mean along a line at any angle, see Filters.h.
#include "picture/Limits.h"
#include "picture/engine/Filters.h"
#include "picture/engine/kernels/base/Parameters.h"
#include "picture/engine/kernels/base/RowKernels.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/base/Streaming.h"
#include "picture/engine/kernels/base/Tiles.h"
#include "picture/engine/kernels/blur/MotionKernels.h"
#include "picture/engine/kernels/geometry/TurnKernels.h"

#include <array>
#include <cmath>
#include <map>
#include <numbers>
#include <optional>
#include <utility>
#include <vector>

namespace pictorel::engine {
namespace {

// With the sums of whole rows kept and one row exchanged for the next at each step, the time does not depend
// on the length.
void SlideExactly(const Stack& stack, const Line& line, bool hasAlpha) {
    std::vector<std::int32_t> whole(static_cast<std::size_t>(stack.size));
    for (int index = -line.whole; index <= line.whole; ++index) {
        MotionKernels::Best().AddToMean(stack.Row(index), stack.size, hasAlpha, whole.data());
    }
    for (int index = 0; index < stack.count; ++index) {
        const MeanStep step{stack.Row(index - line.whole - 1), stack.Row(index - line.whole),
                            stack.Row(index + line.whole + 1), static_cast<float>(line.tip),
                            static_cast<float>(1 / line.length)};
        MotionKernels::Best().SlideRow(step, stack.size, hasAlpha, whole.data(),
                                       stack.out + index * stack.outStep);
    }
}

std::optional<FixedLine> FixedOf(const PixelArray& source, const Line& line) {
    return source.HasAlpha() ? std::nullopt : FixedLine::Of(line);
}

// Columns go in strips from top to bottom: wide enough to use whole cache lines, narrow enough that the rows
// between entering and leaving stay in cache.
PixelArray BlurVertically(const PixelArray& source, const Line& line) {
    constexpr int kStripWidth = 512;
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const std::optional<FixedLine> fixed = FixedOf(source, line);
    const int strips = (source.Width() + kStripWidth - 1) / kStripWidth;
    const std::size_t bytesPerStrip =
        std::size_t{2} * kStripWidth * kComponents * static_cast<std::size_t>(source.Height());
    ForEachBand(strips, bytesPerStrip, [&](int first, int end) {
        for (int strip = first; strip < end; ++strip) {
            const int left = strip * kStripWidth;
            const int width = std::min(kStripWidth, source.Width() - left);
            const std::ptrdiff_t offset = static_cast<std::ptrdiff_t>(left) * kComponents;
            const Stack stack{source.Row(0) + offset, source.Stride(),     rows + offset,     result.Stride(),
                              source.Height(),        width * kComponents, IsStreamed(result)};
            if (fixed) {
                MotionKernels::Best().Slide(stack, *fixed);
            } else {
                SlideExactly(stack, line, source.HasAlpha());
            }
        }
    });
    return result;
}

// Each row is copied with its ends continued, and the mean slides along it.
PixelArray BlurRows(const PixelArray& source, const FixedLine& line) {
    constexpr int kVector = 32 / kComponents;
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const int width = source.Width();
    const Margins margins{line.whole + 1 + kVector, 0};
    const bool streams = IsStreamed(result);
    ForEachBand(source.Height(), 2 * source.RowBytes(), [&](int first, int end) {
        std::vector<std::uint8_t> continued(
            (source.RowBytes() + std::size_t{2} * kComponents * static_cast<std::size_t>(margins.x)));
        for (int y = first; y < end; ++y) {
            LoadTile(source, {0, y, width, 1}, margins, continued.data());
            MotionKernels::Best().SlideAlong(
                {continued.data() + static_cast<std::ptrdiff_t>(margins.x) * kComponents,
                 rows + y * result.Stride(), width, streams, source.Row(std::min(y + kRowsAhead, end - 1))},
                line);
        }
    });
    return result;
}

// Some rows at a time are turned, so that their columns are stacked like rows, and turned back.
PixelArray BlurTurnedRows(const PixelArray& source, const Line& line) {
    constexpr int kRowsAtOnce = 16; // whose pixels of one column fill a cache line
    constexpr int kColumn = kRowsAtOnce * kComponents;
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const int width = source.Width();
    ForEachBand(source.Height(), 2 * source.RowBytes(), [&](int first, int end) {
        PixelArray turned(kRowsAtOnce, width);
        PixelArray blurred(kRowsAtOnce, width);
        for (int y = first; y < end; y += kRowsAtOnce) {
            const int count = std::min(kRowsAtOnce, end - y);
            TurnKernels::Best().Transpose(
                {source.Row(y), source.Stride(), turned.WritableRows(), kColumn, count, width, false});
            SlideExactly(
                {turned.Row(0), kColumn, blurred.WritableRows(), kColumn, width, count * kComponents}, line,
                source.HasAlpha());
            TurnKernels::Best().Transpose(
                {blurred.Row(0), kColumn, rows + y * result.Stride(), result.Stride(), width, count, false});
        }
    });
    return result;
}

struct Tap {
    int x;
    int y;
    std::int16_t weight; // in 1/WeightedPair::kUnit, for the pixel on the other side of the centre as well
};

// A weight that is too large for one tap is spread over several.
void AppendTap(int x, int y, int weight, std::vector<Tap>& taps) {
    constexpr int kMost = 32767;
    for (int left = weight; left > 0; left -= kMost) {
        taps.push_back({x, y, static_cast<std::int16_t>(std::min(left, kMost))});
    }
}

// One half of the line as weights of pixels, and the centre: one point a pixel of its length, each spread
// over the four pixels around it. The other half mirrors it.
std::vector<Tap> TapsOf(const Line& line, double degrees) {
    const double angle = degrees * std::numbers::pi / 180;
    const double stepX = std::cos(angle);
    const double stepY = -std::sin(angle); // rows count downwards
    std::map<std::pair<int, int>, double> weights;
    for (int k = -line.whole - 1; k <= line.whole + 1; ++k) {
        const double weight = (std::abs(k) <= line.whole ? 1.0 : line.tip) / line.length;
        const double left = std::floor(k * stepX);
        const double top = std::floor(k * stepY);
        const double right = k * stepX - left;
        const double bottom = k * stepY - top;
        const int x = static_cast<int>(left);
        const int y = static_cast<int>(top);
        weights[{y, x}] += weight * (1 - right) * (1 - bottom);
        weights[{y, x + 1}] += weight * right * (1 - bottom);
        weights[{y + 1, x}] += weight * (1 - right) * bottom;
        weights[{y + 1, x + 1}] += weight * right * bottom;
    }
    // Each rounding makes up for the ones before it; the centre, which is its own partner, has what is left.
    std::vector<Tap> taps;
    double exact = 0;
    int placed = 0;
    for (auto tap = weights.upper_bound({0, 0}); tap != weights.end(); ++tap) {
        exact += tap->second * WeightedPair::kUnit;
        const int rounded = static_cast<int>(std::lround(exact)) - placed;
        AppendTap(tap->first.second, tap->first.first, rounded, taps);
        placed += rounded;
    }
    AppendTap(0, 0, WeightedPair::kUnit / 2 - placed, taps);
    return taps;
}

// What a line crosses stays in the cache: of a tile in the second one, of a strip of it in the first.
constexpr int kTileWidth = 512;
constexpr int kTileHeight = 64;
constexpr int kStripWidth = 128;

struct LineScratch {
    std::vector<std::uint8_t> pixels;
    std::vector<MotionComponent> tile;
    std::array<MotionComponent, std::size_t{kStripWidth} * kComponents> row;
};

class LineBlur {
  public:
    LineBlur(const PixelArray& source, const std::vector<Tap>& taps)
        : source_(source), components_(source.HasAlpha() ? kComponents : 3) {
        for (const Tap& tap : taps) {
            margins_ = {std::max(margins_.x, std::abs(tap.x)), std::max(margins_.y, std::abs(tap.y))};
        }
        rowLength_ = static_cast<std::ptrdiff_t>(kTileWidth + 2 * margins_.x) * components_;
        for (const Tap& tap : taps) {
            pairs_.push_back({tap.y * rowLength_ + tap.x * components_, tap.weight});
        }
    }

    void Blur(const TileArea& area, std::uint8_t* rows, LineScratch& scratch) const {
        Load(area, scratch);
        for (int x = 0; x < area.width; x += kStripWidth) {
            const int width = std::min(kStripWidth, area.width - x);
            for (int y = 0; y < area.height; ++y) {
                const MotionComponent* const centre =
                    scratch.tile.data() + (y + margins_.y) * rowLength_ + (x + margins_.x) * components_;
                MotionKernels::Best().SumPairs(centre, pairs_, static_cast<std::size_t>(width * components_),
                                               scratch.row.data());
                std::uint8_t* const out = rows + (area.top + y) * source_.Stride() +
                                          static_cast<std::ptrdiff_t>(area.left + x) * kComponents;
                source_.HasAlpha() ? MotionKernels::Best().NarrowRow(scratch.row.data(), width, out)
                                   : MotionKernels::Best().NarrowColours(scratch.row.data(), width, out);
            }
        }
    }

  private:
    void Load(const TileArea& area, LineScratch& scratch) const {
        const int width = area.width + 2 * margins_.x;
        const int height = area.height + 2 * margins_.y;
        scratch.pixels.resize(static_cast<std::size_t>(width) * kComponents);
        scratch.tile.resize(static_cast<std::size_t>(rowLength_ * height));
        for (int y = 0; y < height; ++y) {
            LoadTile(source_, {area.left, area.top - margins_.y + y, area.width, 1}, {margins_.x, 0},
                     scratch.pixels.data());
            MotionComponent* const row = scratch.tile.data() + y * rowLength_;
            source_.HasAlpha() ? MotionKernels::Best().WidenRow(scratch.pixels.data(), width, row)
                               : MotionKernels::Best().WidenColours(scratch.pixels.data(), width, row);
        }
    }

    const PixelArray& source_;
    std::ptrdiff_t components_; // of opaque pixels only the colours
    Margins margins_{0, 0};
    std::ptrdiff_t rowLength_;
    std::vector<WeightedPair> pairs_;
};

PixelArray BlurAlong(const PixelArray& source, const std::vector<Tap>& taps) {
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const LineBlur blur(source, taps);
    const int tileRows = (source.Height() + kTileHeight - 1) / kTileHeight;
    ForEachBand(tileRows, 2 * kTileHeight * source.RowBytes(), [&](int first, int end) {
        LineScratch scratch;
        for (int top = first * kTileHeight; top < std::min(end * kTileHeight, source.Height());
             top += kTileHeight) {
            for (int left = 0; left < source.Width(); left += kTileWidth) {
                blur.Blur({left, top, std::min(kTileWidth, source.Width() - left),
                           std::min(kTileHeight, source.Height() - top)},
                          rows, scratch);
            }
        }
    });
    return result;
}

} // namespace

PixelArray MotionBlur(const PixelArray& source, double degrees, double length) {
    RequireRange("motion blur angle", degrees, -1e6, 1e6);
    RequireRange("motion blur", length, 0, kMaximumSide);
    const double reduced = length * source.Reduction();
    if (reduced <= 1) {
        return source;
    }
    const Line line(reduced);
    const double direction = std::fmod(std::abs(degrees), 180.0); // a line has no forward
    if (direction == 90) {
        return BlurVertically(source, line);
    }
    if (direction == 0) {
        const std::optional<FixedLine> fixed = FixedOf(source, line);
        return fixed ? BlurRows(source, *fixed) : BlurTurnedRows(source, line);
    }
    return BlurAlong(source, TapsOf(line, degrees));
}

} // namespace pictorel::engine
