// Mean along a line at any angle, see Filters.h.
#include "imaging/Limits.h"
#include "imaging/engine/Filters.h"
#include "imaging/engine/Parameters.h"
#include "imaging/engine/Tiles.h"

#include <array>
#include <cmath>
#include <map>
#include <numbers>
#include <utility>
#include <vector>

namespace pictorel::engine {
namespace {

constexpr int kComponents = PixelArray::kComponents;

// A line of `length` pixels covers the pixel and `whole` neighbours on either side, and of the next one on
// either side the share `tip`.
struct Line {
    double length;
    int whole;
    double tip;

    explicit Line(double lengthInPixels)
        : length(lengthInPixels),
          whole(static_cast<int>((lengthInPixels - 1) / 2)),
          tip((lengthInPixels - 1) / 2 - whole) {}
};

// A stack of rows to slide over: `count` elements of `size` components, `step` bytes
// apart in the source and in the result alike.
struct Lane {
    const std::uint8_t* in;
    std::uint8_t* out;
    std::ptrdiff_t step;
    int count;
    int size;

    const std::uint8_t* Element(int index) const { return in + std::clamp(index, 0, count - 1) * step; }
};

// Keeps the sums of the whole elements and exchanges one element for the next at each step, so the time does
// not depend on the length.
void Slide(const Lane& lane, const Line& line, bool hasAlpha) {
    std::vector<std::int32_t> whole(static_cast<std::size_t>(lane.size));
    for (int index = -line.whole; index <= line.whole; ++index) {
        AddToMean(lane.Element(index), lane.size, hasAlpha, whole.data());
    }
    for (int index = 0; index < lane.count; ++index) {
        const MeanStep step{lane.Element(index - line.whole - 1), lane.Element(index - line.whole),
                            lane.Element(index + line.whole + 1), static_cast<float>(line.tip),
                            static_cast<float>(1 / line.length)};
        SlideRow(step, lane.size, hasAlpha, whole.data(), lane.out + index * lane.step);
    }
}

// Columns go in strips from top to bottom: wide enough to use whole cache lines, narrow enough that the rows
// between entering and leaving stay in cache.
PixelArray BlurVertically(const PixelArray& source, const Line& line) {
    constexpr int kStripWidth = 512;
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const int strips = (source.Width() + kStripWidth - 1) / kStripWidth;
    const std::size_t bytesPerStrip =
        std::size_t{2} * kStripWidth * kComponents * static_cast<std::size_t>(source.Height());
    ForEachBand(strips, bytesPerStrip, [&](int first, int end) {
        for (int strip = first; strip < end; ++strip) {
            const int left = strip * kStripWidth;
            const int width = std::min(kStripWidth, source.Width() - left);
            const std::ptrdiff_t offset = static_cast<std::ptrdiff_t>(left) * kComponents;
            Slide({source.Row(0) + offset, rows + offset, source.Stride(), source.Height(),
                   width * kComponents},
                  line, source.HasAlpha());
        }
    });
    return result;
}

// The same along one row, which goes on with its end pixels for as long as the line is: so no step needs to
// look where it is.
void SlideRowAlong(const std::uint8_t* in, std::uint8_t* out, int width, const Line& line, bool hasAlpha,
                   std::vector<std::uint8_t>& continued) {
    const std::ptrdiff_t margin = line.whole + 1;
    continued.resize(static_cast<std::size_t>(width + 2 * margin) * kComponents);
    std::uint8_t* const begin = continued.data() + margin * kComponents;
    std::uint8_t* const end = begin + static_cast<std::ptrdiff_t>(width) * kComponents;
    std::copy_n(in, end - begin, begin);
    for (std::ptrdiff_t i = 0; i < margin; ++i) {
        std::copy_n(begin, kComponents, continued.data() + i * kComponents);
        std::copy_n(end - kComponents, kComponents, end + i * kComponents);
    }
    std::array<std::int32_t, kComponents> whole{};
    for (std::ptrdiff_t i = 0; i <= 2 * line.whole; ++i) {
        AddToMean(continued.data() + (i + 1) * kComponents, kComponents, hasAlpha, whole.data());
    }
    SlideAlong({continued.data(), continued.data() + kComponents, begin + margin * kComponents,
                static_cast<float>(line.tip), static_cast<float>(1 / line.length)},
               width, hasAlpha, whole.data(), out);
}

PixelArray BlurHorizontally(const PixelArray& source, const Line& line) {
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    ForEachBand(source.Height(), 2 * source.RowBytes(), [&](int first, int end) {
        std::vector<std::uint8_t> continued;
        for (int y = first; y < end; ++y) {
            SlideRowAlong(source.Row(y), rows + y * result.Stride(), source.Width(), line, source.HasAlpha(),
                          continued);
        }
    });
    return result;
}

struct Tap {
    int x;
    int y;
    float weight;
};

// The line as weights of pixels: one point a pixel of its length, each spread over the four pixels around it.
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
    std::vector<Tap> taps;
    for (const auto& [position, weight] : weights) {
        if (weight > 1e-9) {
            taps.push_back({position.second, position.first, static_cast<float>(weight)});
        }
    }
    return taps;
}

struct LineScratch {
    std::vector<WideComponent> tile;
    std::vector<WideComponent> row;
    std::vector<float> sums;
};

PixelArray BlurAlong(const PixelArray& source, const std::vector<Tap>& taps) {
    Margins margins{0, 0};
    for (const Tap& tap : taps) {
        margins = {std::max(margins.x, std::abs(tap.x)), std::max(margins.y, std::abs(tap.y))};
    }
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    ForEachTile<LineScratch>(
        source.Width(), source.Height(), [&](const TileArea& area, LineScratch& scratch) {
            const std::ptrdiff_t rowLength =
                static_cast<std::ptrdiff_t>(area.width + 2 * margins.x) * kComponents;
            scratch.tile.resize(static_cast<std::size_t>(rowLength * (area.height + 2 * margins.y)));
            scratch.row.resize(static_cast<std::size_t>(area.width) * kComponents);
            scratch.sums.resize(scratch.row.size());
            LoadWideTile(source, area, margins, scratch.tile.data());
            for (int y = 0; y < area.height; ++y) {
                std::fill(scratch.sums.begin(), scratch.sums.end(), 0.5F);
                for (const Tap& tap : taps) {
                    const WideComponent* const in =
                        scratch.tile.data() + (y + margins.y + tap.y) * rowLength +
                        static_cast<std::ptrdiff_t>(margins.x + tap.x) * kComponents;
                    AddWeighted(in, tap.weight, scratch.sums.size(), scratch.sums.data());
                }
                for (std::size_t i = 0; i < scratch.sums.size(); ++i) {
                    scratch.row[i] = static_cast<WideComponent>(scratch.sums[i]);
                }
                NarrowRow(scratch.row.data(), area.width, source.HasAlpha(),
                          rows + (area.top + y) * result.Stride() +
                              static_cast<std::ptrdiff_t>(area.left) * kComponents);
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
        return BlurHorizontally(source, line);
    }
    return BlurAlong(source, TapsOf(line, degrees));
}

} // namespace pictorel::engine
