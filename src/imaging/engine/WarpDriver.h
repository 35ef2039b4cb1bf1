// Runs a warp over a picture: every result pixel is fetched from where an inverse map says it comes from.
#pragma once

#include "imaging/ForEachBand.h"
#include "imaging/PixelArray.h"
#include "imaging/engine/WarpSampler.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace pictorel::engine {

// In pixels from the top left corner of the picture, so that pixel centres lie at halves.
struct WarpPoint {
    double x;
    double y;
};

// A map is a value with
//   WarpPoint Source(WarpPoint)   where a point of the result comes from,
//   ColumnSpan Moved(int row)     the columns of that row that are not just copied,
//   kOutside                      what is seen where the source is outside the picture,
//   kIsAffine                     whether every pixel is moved by the same linear map.

namespace warp {

// One sample a pixel is enough while neighbouring ones lie no further apart in the source than this: bicubic
// interpolation does not alias visibly up to there. Where a map reduces more, a sample is taken for every
// source pixel.
constexpr double kLargestStep = 1.25; // source pixels
constexpr int kMostSteps = 64;
constexpr int kTileHeight = 16; // rows taken together, so that the source lines stay in the cache

// Points this far outside are as far outside as any: all steps of a pixel cannot reach back from there.
constexpr double kFarOutside = kMostSteps * kLargestStep + 2;

// The points along one side of a result pixel that are sampled.
struct SampleSteps {
    int count = 1;
    double spread = 0; // part of the pixel over which they are spread

    double Offset(int i) const { return ((i + 0.5) / count - 0.5) * spread; }

    // Part of the pixel that one sample stands for.
    double Share() const { return 1 - spread + spread / count; }
};

// For a pixel side that is so long in the source. The spread grows from nothing at the largest step to the
// whole pixel, so that sharpness does not jump from where one sample is enough to where it is not.
inline SampleSteps StepsFor(double length) {
    constexpr double kWholeSpread = 1.75;
    if (length <= kLargestStep) {
        return {};
    }
    const double steps = std::min(std::ceil(length), static_cast<double>(kMostSteps));
    const double spread = std::min((length - kLargestStep) / (kWholeSpread - kLargestStep), 1.0);
    return {static_cast<int>(steps), spread};
}

// How the pixels of a run are sampled, and the border that goes with it.
struct SampleGrid {
    SampleSteps columns;
    SampleSteps rows;
    BorderWidth border;     // for a sample
    BorderWidth pixelReach; // for the whole pixel
};

// std::hypot guards against overflow, which costs more than the rest of a map.
inline double Length(double x, double y) {
    return std::sqrt(x * x + y * y);
}

// Source distance per column and per row of the result at a point.
struct LocalScale {
    WarpPoint perColumn;
    WarpPoint perRow;
};

template <class Map>
LocalScale ScaleAt(const Map& map, WarpPoint at) {
    const WarpPoint left = map.Source({at.x - 0.5, at.y});
    const WarpPoint right = map.Source({at.x + 0.5, at.y});
    const WarpPoint above = map.Source({at.x, at.y - 0.5});
    const WarpPoint below = map.Source({at.x, at.y + 0.5});
    return {{right.x - left.x, right.y - left.y}, {below.x - above.x, below.y - above.y}};
}

// The finest grid that the pixels from `first` to `last` need, looking at them and at their middle.
template <class Map>
SampleGrid GridFor(const Map& map, WarpPoint first, WarpPoint last) {
    std::array<LocalScale, 3> scales;
    double columnLength = 0;
    double rowLength = 0;
    for (std::size_t i = 0; i < scales.size(); ++i) {
        const double offset = (last.x - first.x) * static_cast<double>(i) / 2;
        const LocalScale& scale = scales[i] = ScaleAt(map, {first.x + offset, first.y});
        columnLength = std::max(columnLength, Length(scale.perColumn.x, scale.perColumn.y));
        rowLength = std::max(rowLength, Length(scale.perRow.x, scale.perRow.y));
    }
    SampleGrid grid;
    grid.columns = StepsFor(columnLength);
    grid.rows = StepsFor(rowLength);
    const double columnShare = grid.columns.Share();
    const double rowShare = grid.rows.Share();
    const auto widest = [](double known, double a, double b) {
        return std::min(std::max(known, Length(a, b)), kMostSteps * kLargestStep);
    };
    grid.border = grid.pixelReach = {1e-3, 1e-3};
    for (const LocalScale& scale : scales) {
        grid.border.x = widest(grid.border.x, scale.perColumn.x * columnShare, scale.perRow.x * rowShare);
        grid.border.y = widest(grid.border.y, scale.perColumn.y * columnShare, scale.perRow.y * rowShare);
        grid.pixelReach.x = widest(grid.pixelReach.x, scale.perColumn.x, scale.perRow.x);
        grid.pixelReach.y = widest(grid.pixelReach.y, scale.perColumn.y, scale.perRow.y);
    }
    return grid;
}

// Rounded to the sampler's unit, away from its centre-of-pixel origin by half a pixel.
inline std::int32_t ToSamplePosition(double position, int size) {
    constexpr double kBias = 128; // keeps what is truncated positive
    const double near = std::min(std::max(position, -kFarOutside), size + kFarOutside);
    return static_cast<std::int32_t>((near + (kBias - 0.5)) * kPhases + 0.5) -
           static_cast<std::int32_t>(kBias) * kPhases;
}

template <class Map>
void Locate(const Map& map, const PixelArray& source, WarpPoint first, int count, SampleRun& run) {
    run.count = count;
    for (int i = 0; i < count; ++i) {
        const WarpPoint point = map.Source({first.x + i, first.y});
        run.x[i] = ToSamplePosition(point.x, source.Width());
        run.y[i] = ToSamplePosition(point.y, source.Height());
    }
}

// The mean of several samples a pixel, on premultiplied colour.
class SampleMean {
  public:
    void Add(const std::uint8_t* pixels, int count) {
        for (int i = 0; i < count; ++i, pixels += 4) {
            const std::uint32_t alpha = pixels[3];
            for (int c = 0; c < 3; ++c) {
                sums_[i][c] += pixels[c] * alpha;
            }
            sums_[i][3] += alpha;
        }
        ++samples_;
    }

    void Write(int count, std::uint8_t* to) const {
        for (int i = 0; i < count; ++i, to += 4) {
            const std::uint32_t alpha = sums_[i][3];
            for (int c = 0; c < 3; ++c) {
                to[c] = static_cast<std::uint8_t>(alpha == 0 ? 0 : (sums_[i][c] + alpha / 2) / alpha);
            }
            to[3] = static_cast<std::uint8_t>((alpha + samples_ / 2) / samples_);
        }
    }

  private:
    // 64 x 64 samples of 255 x 255 fit.
    std::array<std::array<std::uint32_t, 4>, kRunLength> sums_{};
    std::uint32_t samples_ = 0;
};
static_assert(std::uint64_t{kMostSteps} * kMostSteps * 255 * 255 < UINT32_MAX);

// Makes the result's pixels, a run at a time.
template <class Map>
class RunWarper {
  public:
    RunWarper(const PixelArray& source, const Map& map, std::uint32_t background)
        : source_(source),
          map_(map),
          sampler_(source, Map::kOutside, background),
          evenGrid_(GridFor(map, {0, 0}, {0, 0})) {}

    // `count` pixels, the first of which has its centre at `first`.
    void Make(WarpPoint first, int count, std::uint8_t* to) const {
        SampleRun run;
        Locate(map_, source_, first, count, run);
        const SampleGrid grid = Map::kIsAffine ? evenGrid_ : GridForRun(first, run);
        if (sampler_.IsBackground(run, grid.pixelReach)) {
            sampler_.FillBackground(count, to);
        } else if (grid.columns.count == 1 && grid.rows.count == 1) {
            sampler_.Sample(run, grid.border, to);
        } else {
            MakeFromGrid(grid, first, count, to);
        }
    }

  private:
    // Perspective reduces without limit towards its horizon: only what is seen of the picture decides.
    SampleGrid GridForRun(WarpPoint first, const SampleRun& run) const {
        const ColumnSpan seen = sampler_.NearestToPicture(run);
        return GridFor(map_, {first.x + seen.first, first.y}, {first.x + (seen.end - 1), first.y});
    }

    void MakeFromGrid(const SampleGrid& grid, WarpPoint first, int count, std::uint8_t* to) const {
        SampleRun run;
        SampleMean mean;
        std::array<std::uint8_t, 4 * kRunLength> samples;
        for (int row = 0; row < grid.rows.count; ++row) {
            for (int column = 0; column < grid.columns.count; ++column) {
                const WarpPoint shifted{first.x + grid.columns.Offset(column),
                                        first.y + grid.rows.Offset(row)};
                Locate(map_, source_, shifted, count, run);
                sampler_.Sample(run, grid.border, samples.data());
                mean.Add(samples.data(), count);
            }
        }
        mean.Write(count, to);
    }

    const PixelArray& source_;
    const Map& map_;
    WarpSampler sampler_;
    SampleGrid evenGrid_; // of every pixel, where the map is affine
};

// The columns of a row that the map leaves where they are.
inline void CopyUnmoved(const PixelArray& source, int y, ColumnSpan moved, std::uint8_t* to) {
    std::memcpy(to, source.Row(y), static_cast<std::size_t>(moved.first) * 4);
    std::memcpy(to + moved.end * 4, source.Row(y) + moved.end * 4,
                static_cast<std::size_t>(source.Width() - moved.end) * 4);
}

} // namespace warp

// A picture of the same size; `background` is 0x00BBGGRR.
template <class Map>
PixelArray Warp(const PixelArray& source, const Map& map, std::uint32_t background) {
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const pixels = result.WritableRows();
    const warp::RunWarper<Map> warper(source, map, background);
    const auto warpTile = [&](int left, int right, int top, int bottom) {
        for (int y = top; y < bottom; ++y) {
            const ColumnSpan moved = map.Moved(y);
            const int first = std::max(left, moved.first);
            const int count = std::min(right, moved.end) - first;
            if (count > 0) {
                warper.Make({first + 0.5, y + 0.5}, count, pixels + y * result.Stride() + first * 4);
            }
        }
    };
    ForEachBand(result.Height(), 2 * result.RowBytes(), [&](int firstRow, int endRow) {
        for (int top = firstRow; top < endRow; top += warp::kTileHeight) {
            const int bottom = std::min(top + warp::kTileHeight, endRow);
            for (int left = 0; left < result.Width(); left += kRunLength) {
                warpTile(left, std::min(left + kRunLength, result.Width()), top, bottom);
            }
            for (int y = top; y < bottom; ++y) {
                warp::CopyUnmoved(source, y, map.Moved(y), pixels + y * result.Stride());
            }
        }
    });
    return result;
}

} // namespace pictorel::engine
