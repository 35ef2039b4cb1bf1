// Skew, see Geometry.h. Skew by d is the shear of a drawing whose y axis points up: positive degrees move the
// top of the picture to the right (horizontal) or its right side up (vertical).
#include "picture/engine/Geometry.h"
#include "picture/engine/kernels/base/Parameters.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/base/Streaming.h"
#include "picture/engine/kernels/warp/ShiftKernels.h"
#include "picture/engine/kernels/warp/WarpCanvas.h"

#include <algorithm>
#include <cmath>

namespace pictorel::engine {
namespace {

struct SkewMap : CanvasMap {
    static constexpr bool kIsAffine = true;
    static constexpr bool kIsEven = true;
    static constexpr bool kIsHorizontal = true;

    double acrossPerRow; // how far the source moves right with every row down

    SkewMap(int canvasWidth, int canvasHeight, double degrees)
        : CanvasMap(canvasWidth, canvasHeight), acrossPerRow(std::tan(Radians(degrees))) {}

    WarpPoint Source(WarpPoint p) const { return {p.x + acrossPerRow * (p.y - centre.y), p.y}; }

    LocalScale Scale(WarpPoint /*p*/) const { return {{1, 0}, {acrossPerRow, 1}}; }
};

// Skews opaque pictures so little that a sample a pixel is enough. Then every row is another one moved
// sideways, but for its ends.
class RowSkew {
  public:
    RowSkew(const PixelArray& source, const SkewMap& map, const warp::RunWarper<SkewMap>& warper)
        : source_(source), map_(map), warper_(warper), inside_(warper.Inside()) {}

    void Make(int y, bool streams, std::uint8_t* to) const {
        // Where the first pixel comes from.
        const auto shift =
            static_cast<std::int32_t>(std::lround((map_.Source({0.5, y + 0.5}).x - 0.5) * kPhases));
        const ColumnSpan span = WholeVectors(y, shift);
        MakeRuns(y, {0, span.first}, to);
        if (span.first < span.end) {
            const int ahead = std::min(y + kRowsAhead, source_.Height() - 1);
            const auto from = [&](int row) {
                return source_.Row(row) +
                       static_cast<std::ptrdiff_t>(span.first + (shift >> kPhaseBits) - 1) * kComponents;
            };
            ShiftKernels::Best().ShiftRow({from(y), WeightsAt(shift), span.end - span.first,
                                           to + static_cast<std::ptrdiff_t>(span.first) * kComponents,
                                           from(ahead), streams});
        }
        MakeRuns(y, {span.end, source_.Width()}, to);
    }

  private:
    // The columns whose sources lie inside, in whole vectors.
    ColumnSpan WholeVectors(int y, std::int32_t shift) const {
        if (y * kPhases < inside_.top || y * kPhases > inside_.bottom) {
            return {0, 0};
        }
        const int width = source_.Width();
        const int first = (inside_.left - shift + kPhases - 1) >> kPhaseBits;
        const int end = ((inside_.right - shift) >> kPhaseBits) + 1;
        const auto step = kVectorPixels;
        const int firstWhole = (std::clamp(first, 0, width) + step - 1) / step * step;
        const int endWhole = std::clamp(end, 0, width) / step * step;
        return {firstWhole, std::max(firstWhole, endWhole)};
    }

    void MakeRuns(int y, ColumnSpan columns, std::uint8_t* to) const {
        constexpr int kPiece = 64; // mostly nothing but background
        for (int x = columns.first; x < columns.end; x += kPiece) {
            warper_.Make({x + 0.5, y + 0.5}, std::min(kPiece, columns.end - x),
                         to + static_cast<std::ptrdiff_t>(x) * kComponents);
        }
    }

    const PixelArray& source_;
    const SkewMap& map_;
    const warp::RunWarper<SkewMap>& warper_;
    SampleBounds inside_;
};

PixelArray SkewHorizontally(const PixelArray& source, double degrees, std::uint32_t background) {
    const SkewMap map(source.Width(), source.Height(), degrees);
    const warp::RunWarper<SkewMap> warper(source, map, background);
    if (source.HasAlpha() || !warper.TakesOneSample()) {
        return Warp(source, map, background);
    }
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const bool streams = IsStreamed(result);
    const RowSkew skew(source, map, warper);
    ForEachBand(result.Height(), 2 * result.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            skew.Make(y, streams, rows + y * result.Stride());
        }
    });
    return result;
}

PixelArray SkewWindow(const PixelArray& source, bool vertical, double degrees, std::uint32_t background,
                      const Window& window) {
    if (!vertical) {
        return Warp(source, SkewMap(source.Width(), source.Height(), degrees), background, window);
    }
    const SkewMap turned(source.Height(), source.Width(), -degrees);
    return Warp(source, TurnedMap<SkewMap>{turned, source.Width(), source.Height()}, background, window);
}

} // namespace

PixelArray Skew(const PixelArray& source, bool vertical, double degrees, std::uint32_t background,
                const OptionalWindow& window) {
    RequireRange("the angle of the skew", degrees, -90, 90);
    if (degrees == 0) {
        return WindowOf(source, window);
    }
    if (std::abs(degrees) == 90) {
        return BackgroundOnly(source, background, window);
    }
    if (window) {
        return SkewWindow(source, vertical, degrees, background, *window);
    }
    if (!vertical) {
        return SkewHorizontally(source, degrees, background);
    }
    // Turning twice costs little beside what moving rows saves.
    const PixelArray skewed = SkewHorizontally(QuarterTurnRight(source), -degrees, background);
    return QuarterTurnLeft(skewed);
}

} // namespace pictorel::engine
