// Runs a warp over a picture: every result pixel is fetched from where an inverse map says it comes from.
#pragma once

#include "picture/ForEachBand.h"
#include "picture/PixelArray.h"
#include "picture/engine/Window.h"
#include "picture/engine/kernels/base/Rounding.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/warp/RunKernels.h"
#include "picture/engine/kernels/warp/WarpSampler.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <numbers>
#include <numeric>

namespace pictorel::engine {

// In pixels from the top left corner of the picture, so that pixel centres lie at halves.
struct WarpPoint {
    double x;
    double y;
};

// How far the map moves in the source from one result pixel to the next.
struct LocalScale {
    WarpPoint perColumn;
    WarpPoint perRow;
};

// A map is a value with
//   WarpPoint Source(WarpPoint)      where a point of the result comes from,
//   LocalScale Scale(WarpPoint)      how the source changes there, but for a turn,
//   ColumnSpan Moved(int row)        the columns of that row that are not just copied,
//   kOutside                         what is seen where the source is outside the picture,
//   kIsAffine                        whether every pixel is moved by the same linear map,
//   kIsEven                          whether the points of a row come from evenly spaced ones,
//   kIsHorizontal                         whether all points of a row come from points of one row,
//   kIsMonotonic                     whether coordinates only grow or only shrink along a row,
// and, if that is faster, bool LocateRun(WarpPoint first, SampleRun&), which fills in run.count points if it
// can.

namespace warp {

// One sample a pixel is enough while neighbouring ones lie no further apart in the source than this: bicubic
// interpolation does not alias visibly up to there. Where a map reduces more, more samples are taken.
constexpr double kLargestStep = 1.25;   // source pixels
constexpr double kSampleSpacing = 1.15; // of those, in source pixels
constexpr int kMostSteps = 64;          // along each of the two directions of a reduction
constexpr int kTileHeight = 32;         // rows taken together, so that the source lines stay in the cache

// Points this far outside are as far outside as any: all samples of a pixel cannot reach back from there.
constexpr double kFarOutside = kMostSteps + 2;

// std::hypot guards against overflow, which costs more than the rest of a map.
inline double SquareOfLength(double x, double y) {
    return x * x + y * y;
}
inline double Length(double x, double y) {
    return std::sqrt(SquareOfLength(x, y));
}

// The largest and the smallest factor by which lengths change: the singular values of the scale's matrix.
struct Stretch {
    double largest;
    double smallest;
};

inline Stretch StretchOf(const LocalScale& scale) {
    const auto& [a, b] = scale;
    const double turning = Length(a.x + b.y, a.y - b.x) / 2;
    const double mirroring = Length(a.x - b.y, a.y + b.x) / 2;
    return {turning + mirroring, std::abs(turning - mirroring)};
}

// Whether the largest factor is at most `limit`: the larger eigenvalue of the matrix times its transpose,
// whose sum and product are known without a root.
inline bool StretchesAtMost(double limit, const LocalScale& scale) {
    const auto& [a, b] = scale;
    const double determinant = a.x * b.y - a.y * b.x;
    const double sum = SquareOfLength(a.x, a.y) + SquareOfLength(b.x, b.y);
    const double square = limit * limit;
    return sum <= 2 * square && square * (sum - square) <= determinant * determinant;
}

// Part of a pixel's side over which samples are spread, for a side whose length in the source has this
// square. It grows with the stretch from nothing to everything, so that sharpness does not jump from where
// one sample is enough to where it is not; and a side that has no part in the stretch stays sharp.
inline double SpreadFor(double stretch, double sideSquare) {
    constexpr double kWholeSpread = 1.75;
    const double needed = (stretch - kLargestStep) / (kWholeSpread - kLargestStep);
    if (needed <= 0) {
        return 0;
    }
    const double part = 2 * (sideSquare - 1) / (stretch * stretch - 1);
    return std::min(needed, 1.0) * std::clamp(part, 0.0, 1.0);
}

// The points of a result pixel that are sampled: a lattice whose points are evenly spaced along both sides
// and nearly so seen from any other direction, since a map may reduce in any (Korobov 1959).
struct SamplePattern {
    int count = 1;
    int generator = 1;
    double spreadX = 0;
    double spreadY = 0;
    BorderWidth border;     // for a sample
    BorderWidth pixelReach; // for the whole pixel

    // From the centre of the pixel to sample i.
    WarpPoint Offset(int i) const {
        return {((i + 0.5) / count - 0.5) * spreadX, ((i * generator % count + 0.5) / count - 0.5) * spreadY};
    }
};

inline int GeneratorFor(int count) {
    int generator = static_cast<int>(std::lround(count / std::numbers::phi));
    while (std::gcd(generator, count) != 1) {
        ++generator;
    }
    return generator;
}

inline int StepsFor(double stretch) {
    if (stretch <= kLargestStep) {
        return 1;
    }
    return static_cast<int>(std::min(std::ceil(stretch / kSampleSpacing), 1.0 * kMostSteps));
}
static_assert(std::uint64_t{kMostSteps} * kMostSteps * 255 * 255 < INT32_MAX); // a sum of samples

// What the pixels from `first` to `last` need, looking at them and at their middle.
template <class Map>
SamplePattern PatternFor(const Map& map, WarpPoint first, WarpPoint last) {
    std::array<LocalScale, 3> scales;
    Stretch stretch{0, 0};
    SamplePattern pattern;
    for (std::size_t i = 0; i < scales.size(); ++i) {
        const double offset = (last.x - first.x) * static_cast<double>(i) / 2;
        const LocalScale& scale = scales[i] = map.Scale({first.x + offset, first.y});
        const Stretch here = StretchOf(scale);
        stretch = {std::max(stretch.largest, here.largest), std::max(stretch.smallest, here.smallest)};
        const double columnSquare = SquareOfLength(scale.perColumn.x, scale.perColumn.y);
        const double rowSquare = SquareOfLength(scale.perRow.x, scale.perRow.y);
        pattern.spreadX = std::max(pattern.spreadX, SpreadFor(here.largest, columnSquare));
        pattern.spreadY = std::max(pattern.spreadY, SpreadFor(here.largest, rowSquare));
    }
    pattern.count = StepsFor(stretch.largest) * StepsFor(stretch.smallest);
    pattern.generator = GeneratorFor(pattern.count);
    // Part of the pixel's sides that one sample stands for.
    const double shareX = 1 - pattern.spreadX + pattern.spreadX / pattern.count;
    const double shareY = 1 - pattern.spreadY + pattern.spreadY / pattern.count;
    constexpr double kNarrowest = 1e-3;
    const auto widest = [&](const auto& x, const auto& y, double partX, double partY) {
        double square = kNarrowest * kNarrowest;
        for (const LocalScale& scale : scales) {
            square = std::max(square, SquareOfLength(x(scale) * partX, y(scale) * partY));
        }
        return std::min(std::sqrt(square), 1.0 * kMostSteps);
    };
    const auto columnX = [](const LocalScale& scale) { return scale.perColumn.x; };
    const auto columnY = [](const LocalScale& scale) { return scale.perColumn.y; };
    const auto rowX = [](const LocalScale& scale) { return scale.perRow.x; };
    const auto rowY = [](const LocalScale& scale) { return scale.perRow.y; };
    pattern.border = {widest(columnX, rowX, shareX, shareY), widest(columnY, rowY, shareX, shareY)};
    pattern.pixelReach = {widest(columnX, rowX, 1, 1), widest(columnY, rowY, 1, 1)};
    return pattern;
}

// Rounded to the sampler's unit, away from its centre-of-pixel origin by half a pixel.
inline std::int32_t ToSamplePosition(double position, int size) {
    constexpr double kBias = 128; // keeps what is truncated positive
    const double near = std::min(std::max(position, -kFarOutside), size + kFarOutside);
    constexpr double kRounding = 0.5;
    return static_cast<std::int32_t>((near + (kBias - 0.5)) * kPhases + kRounding) -
           static_cast<std::int32_t>(kBias) * kPhases;
}

// Evenly spaced points from the first to the last. Single precision does: it counts from the first one.
inline EvenSpacing SpacingOf(double first, double last, int count) {
    const double step = count > 1 ? (last - first) * kPhases / (count - 1) : 0;
    const double bias = (std::abs(step) + 1) * kRunLength; // keeps what is truncated positive
    const double start = (first - 0.5) * kPhases + 0.5 - bias;
    const auto base = static_cast<std::int32_t>(start);
    return {base, static_cast<float>(start - base + bias), static_cast<float>(step)};
}

// Of points of which the first and the last are the outermost.
inline SampleBounds BoundsOfEnds(const SampleRun& run) {
    const auto [left, right] = std::minmax(run.x[0], run.x[run.count - 1]);
    const auto [top, bottom] = std::minmax(run.y[0], run.y[run.count - 1]);
    return {left, right, top, bottom};
}

// Whether sample positions around that point fit their numbers.
inline bool IsNear(WarpPoint point) {
    constexpr double kNear = 1 << 20; // pixels
    return std::abs(point.x) < kNear && std::abs(point.y) < kNear;
}

template <class Map>
void LocatePoints(const Map& map, const PixelArray& source, WarpPoint first, SampleRun& run) {
    if constexpr (requires { map.LocateRun(first, run); }) {
        if (map.LocateRun(first, run)) {
            return;
        }
    }
    if constexpr (Map::kIsEven) {
        const WarpPoint from = map.Source(first);
        const WarpPoint to = map.Source({first.x + (run.count - 1), first.y});
        if (IsNear(from) && IsNear(to)) {
            RunKernels::Best().LocateEvenly(SpacingOf(from.x, to.x, run.count), run.count, run.x.data());
            RunKernels::Best().LocateEvenly(SpacingOf(from.y, to.y, run.count), run.count, run.y.data());
            return;
        }
    }
    for (int i = 0; i < run.count; ++i) {
        const WarpPoint point = map.Source({first.x + i, first.y});
        run.x[i] = ToSamplePosition(point.x, source.Width());
        run.y[i] = ToSamplePosition(point.y, source.Height());
    }
}

template <class Map>
void Locate(const Map& map, const PixelArray& source, WarpPoint first, int count, SampleRun& run) {
    run.count = count;
    run.isHorizontal = Map::kIsHorizontal;
    LocatePoints(map, source, first, run);
    run.bounds = Map::kIsMonotonic ? BoundsOfEnds(run) : RunKernels::Best().BoundsOf(run);
}

// Makes the result's pixels, a run at a time.
template <class Map>
class RunWarper {
  public:
    RunWarper(const PixelArray& source, const Map& map, std::uint32_t background)
        : source_(source),
          map_(map),
          sampler_(source, Map::kOutside, background),
          evenPattern_(PatternFor(map, {0, 0}, {0, 0})) {}

    // Of an affine map.
    bool TakesOneSample() const { return evenPattern_.count == 1; }
    SampleBounds Inside() const { return sampler_.InsideOf(evenPattern_.border); }

    // `count` pixels, the first of which has its centre at `first`.
    void Make(WarpPoint first, int count, std::uint8_t* to) const {
        SampleRun run;
        Locate(map_, source_, first, count, run);
        if (!Map::kIsAffine && sampler_.IsDeepInside(run) && TakesOneSample(first, count)) {
            sampler_.Sample(run, {}, to); // what most runs are: without what a pattern costs
            return;
        }
        const SamplePattern pattern = Map::kIsAffine ? evenPattern_ : PatternForRun(first, run);
        if (sampler_.IsBackground(run, pattern.pixelReach)) {
            sampler_.FillBackground(count, to);
        } else if (pattern.count == 1) {
            sampler_.Sample(run, pattern.border, to);
        } else if (!Map::kIsAffine && pattern.count > kManySamples && count > kShortRun) {
            const int half = count / 2; // most pixels of a run need fewer samples than its worst
            Make(first, half, to);
            Make({first.x + half, first.y}, count - half, to + half * kComponents);
        } else {
            MakeFromPattern(pattern, first, count, to);
        }
    }

  private:
    static constexpr int kManySamples = 12;
    static constexpr int kShortRun = 16;

    // At the ends of a run and in its middle.
    bool TakesOneSample(WarpPoint first, int count) const {
        const double half = (count - 1) / 2.0;
        const auto isEnough = [&](double offset) {
            return StretchesAtMost(kLargestStep, map_.Scale({first.x + offset, first.y}));
        };
        return isEnough(0) && isEnough(half) && isEnough(2 * half);
    }

    // Perspective reduces without limit towards its horizon: only what is seen of the picture decides.
    SamplePattern PatternForRun(WarpPoint first, const SampleRun& run) const {
        const ColumnSpan seen = sampler_.NearestToPicture(run);
        return PatternFor(map_, {first.x + seen.first, first.y}, {first.x + (seen.end - 1), first.y});
    }

    void MakeFromPattern(const SamplePattern& pattern, WarpPoint first, int count, std::uint8_t* to) const {
        SampleRun run;
        std::array<std::int32_t, std::size_t{kRunLength} * kComponents> sums{};
        std::array<std::uint8_t, std::size_t{kRunLength} * kComponents> samples{};
        for (int i = 0; i < pattern.count; ++i) {
            const WarpPoint offset = pattern.Offset(i);
            Locate(map_, source_, {first.x + offset.x, first.y + offset.y}, count, run);
            sampler_.Sample(run, pattern.border, samples.data());
            RunKernels::Best().AddSamples(samples.data(), count, source_.HasAlpha(), sums.data());
        }
        RunKernels::Best().MeanOfSamples(sums.data(), count, pattern.count, source_.HasAlpha(), to);
    }

    const PixelArray& source_;
    const Map& map_;
    WarpSampler sampler_;
    SamplePattern evenPattern_; // of every pixel, where the map is affine
};

// The columns of a row that the map leaves where they are, from the window's left to its right.
inline void CopyUnmoved(const PixelArray& source, int y, ColumnSpan moved, const Window& window,
                        std::uint8_t* to) {
    const auto copy = [&](int first, int end) {
        if (first < end) {
            std::memcpy(to + static_cast<std::ptrdiff_t>(first - window.left) * kComponents,
                        source.Row(y) + static_cast<std::ptrdiff_t>(first) * kComponents,
                        static_cast<std::size_t>(end - first) * kComponents);
        }
    };
    copy(window.left, std::min(moved.first, window.Right()));
    copy(std::max({moved.end, moved.first, window.left}), window.Right());
}

} // namespace warp

// A picture of the source's size, or the window of it; `background` is 0x00BBGGRR.
template <class Map>
PixelArray Warp(const PixelArray& source, const Map& map, std::uint32_t background,
                const OptionalWindow& wanted = {}) {
    const Window window = wanted.value_or(Window{0, 0, source.Width(), source.Height()});
    PixelArray result = PixelArray::Like(source, window.width, window.height);
    std::uint8_t* const pixels = result.WritableRows();
    const auto rowOf = [&](int y) { return pixels + (y - window.top) * result.Stride(); };
    const warp::RunWarper<Map> warper(source, map, background);
    const auto warpTile = [&](int left, int right, int top, int bottom) {
        for (int y = top; y < bottom; ++y) {
            const ColumnSpan moved = map.Moved(y);
            const int first = std::max(left, moved.first);
            const int count = std::min(right, moved.end) - first;
            if (count > 0) {
                warper.Make({first + 0.5, y + 0.5}, count,
                            rowOf(y) + static_cast<std::ptrdiff_t>(first - window.left) * kComponents);
            }
        }
    };
    // The scale of other maps changes along a row, even of a small picture.
    const int runLength = Map::kIsAffine ? kRunLength : std::clamp(source.Width() / 8, 32, kRunLength);
    ForEachBand(window.height, 2 * result.RowBytes(), [&](int firstRow, int endRow) {
        const int end = window.top + endRow;
        for (int top = window.top + firstRow; top < end; top += warp::kTileHeight) {
            const int bottom = std::min(top + warp::kTileHeight, end);
            for (int left = window.left; left < window.Right(); left += runLength) {
                warpTile(left, std::min(left + runLength, window.Right()), top, bottom);
            }
            for (int y = top; y < bottom; ++y) {
                warp::CopyUnmoved(source, y, map.Moved(y), window, rowOf(y));
            }
        }
    });
    return result;
}

} // namespace pictorel::engine
