// Mean along the ray to the centre, see Filters.h.
//
// The picture is seen as rays from the centre. Along each ray a sum slides outwards, so that the mean over
// any stretch costs the same, whatever its length. Four wedges, each bounded by the diagonals through the
// centre, are walked in whole pixels along their own axis (the major one). Rays come closer together towards
// the centre, so that a wedge is cut into rings with rays of their own.
#include "picture/ForEachBand.h"
#include "picture/engine/Filters.h"
#include "picture/engine/Geometry.h"
#include "picture/engine/kernels/base/FixedPoint.h"
#include "picture/engine/kernels/base/Parameters.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/blur/ZoomKernels.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

namespace pictorel::engine {
namespace {

// Rays are this dense where a ring is widest; a pixel between rays is interpolated, and this keeps that from
// softening what lies across the rays. Long paths soften more by themselves and need fewer.
double RaysPerPixel(double longestPath) {
    constexpr struct {
        double shorterThan; // pixels
        double rays;
    } kDensities[] = {{20, 8}, {50, 4}, {200, 2}};
    for (const auto& [shorterThan, rays] : kDensities) {
        if (longestPath < shorterThan) {
            return rays;
        }
    }
    return 1.5;
}

constexpr double kShortestPath = 0.1; // pixels; less moves nothing that could be seen

// One wedge: nodes 0, 1, ... lie on whole pixels along the major axis, starting at the centre or half a pixel
// before it.
struct Wedge {
    std::ptrdiff_t majorStep; // bytes
    std::ptrdiff_t minorStep;
    int majorSize; // pixels
    int minorSize;
    int direction;     // of the walk along the major axis: 1 or -1
    bool ownsDiagonal; // so that each pixel belongs to one wedge

    double MajorCentre() const { return (majorSize - 1) / 2.0; }
    double MinorCentre() const { return (minorSize - 1) / 2.0; }
    double FirstDistance() const { return std::floor(MajorCentre()) - MajorCentre(); } // 0 or -0.5
    double Distance(int node) const { return node + FirstDistance(); }
    int LastNode() const { return majorSize / 2; }
    int MajorIndex(int node) const {
        return direction > 0 ? (majorSize - 1) / 2 + node : majorSize / 2 - node;
    }
};

// The nodes of a wedge from `first` to `last`; rays 0 to `intervals` differ in slope (minor per major pixel)
// from -1 to 1.
struct Ring {
    int first;
    int last;
    int intervals;

    double Slope(int ray) const { return 2.0 * ray / intervals - 1; }
};

std::vector<Ring> RingsOf(const Wedge& wedge, double innerScale, double raysPerPixel) {
    // A ring begins with the paths that end in its first node: with long ones, rings overlap too much to pay.
    const double innerShare = innerScale > 0.6 ? 0.5 : 0.0;
    constexpr int kSmallRing = 24; // nodes
    std::vector<Ring> rings;
    for (int last = wedge.LastNode(); last > 0;) {
        const int inner = last > kSmallRing ? static_cast<int>(last * innerShare) : 0;
        const int intervals = static_cast<int>(std::ceil(2 * wedge.Distance(last) * raysPerPixel));
        rings.push_back({inner + 1, last, std::max(intervals, 2)});
        last = inner;
    }
    return rings;
}

// Where the stretch that ends in a node begins: so far after the node `before` it.
struct StretchBegin {
    int before;
    double after; // 0 to 1

    StretchBegin(const Wedge& wedge, double innerScale, int node) {
        const double position = wedge.Distance(node) * innerScale - wedge.FirstDistance();
        before = std::min(static_cast<int>(position), node - 1);
        after = position - before;
    }
};

// Where a wedge's pixels go: those from `first` to `end` along its axes, the first of which is at `pixels`.
struct WedgeWindow {
    struct Span {
        int first;
        int end;
    };
    Span major;
    Span minor;
    std::uint8_t* pixels;
    std::ptrdiff_t majorStep; // bytes
    std::ptrdiff_t minorStep;

    std::uint8_t* At(int majorIndex, int minorIndex) const {
        return pixels + (majorIndex - major.first) * majorStep + (minorIndex - minor.first) * minorStep;
    }

    // The nodes of a wedge whose lines cross the window, from the first to the last; none where first > last.
    Span NodesOf(const Wedge& wedge) const {
        const int middle = wedge.MajorIndex(0);
        return wedge.direction > 0 ? Span{major.first - middle, major.end - 1 - middle}
                                   : Span{middle - (major.end - 1), middle - major.first};
    }
};

constexpr int kRaysPerBlock = 256; // enough that what is done once a node costs little

class RayBlock {
  public:
    RayBlock(const PixelArray& source, const Wedge& wedge, const Ring& ring, double innerScale,
             const WedgeWindow& window)
        : source_(source), wedge_(wedge), ring_(ring), innerScale_(innerScale), window_(window) {}

    // The pixels between two rays.
    void Blur(int firstRay, int endRay) {
        firstRay_ = firstRay;
        endRay_ = endRay;
        const WedgeWindow::Span nodes = window_.NodesOf(wedge_);
        const int first = std::max(ring_.first, nodes.first);
        const int last = std::min({ring_.last, LastNodeInside(), nodes.end});
        if (last < first || MissesWindow(first, last)) {
            return;
        }
        const auto row = static_cast<std::size_t>(RowLength());
        kept_ = last - StretchBegin(wedge_, innerScale_, last).before + 3;
        ReserveValues(row * static_cast<std::size_t>(kept_));
        sums_.assign(row, 0);
        means_.resize(row);
        // The first node takes off what lies behind the node at which its stretch begins.
        innerNode_ = StretchBegin(wedge_, innerScale_, first).before - 1;
        TakeValues(innerNode_ + 1);
        for (int node = innerNode_ + 2; node < first; ++node) {
            TakeValues(node);
            ZoomKernels::Best().AddInterval(ValuesAt(node - 1), ValuesAt(node), RayCount(), sums_.data());
        }
        for (int node = first; node <= last; ++node) {
            TakeValues(node);
            Slide(node);
            WritePixels(node);
        }
    }

  private:
    // A ray more before and two more behind, for interpolation.
    int FirstStored() const { return firstRay_ - 1; }
    int RayCount() const { return endRay_ - firstRay_ + 4; }
    int RowLength() const {
        return (RayCount() + kRaysTogether - 1) / kRaysTogether * kRaysTogether * kComponents;
    }
    void ReserveValues(std::size_t count) {
        if (count > valuesReserved_) {
            values_ = std::make_unique_for_overwrite<std::int16_t[]>(count);
            valuesReserved_ = count;
        }
    }
    std::int16_t* ValuesAt(int node) {
        return values_.get() + static_cast<std::ptrdiff_t>(node % kept_) * RowLength();
    }

    // Whether no pixel of the window lies between the block's rays at these nodes.
    bool MissesWindow(int firstNode, int lastNode) const {
        const auto minorAt = [&](int ray, int node) {
            return wedge_.MinorCentre() + ring_.Slope(ray) * wedge_.Distance(node);
        };
        const double lowest = std::min(minorAt(firstRay_, firstNode), minorAt(firstRay_, lastNode));
        const double highest = std::max(minorAt(endRay_, firstNode), minorAt(endRay_, lastNode));
        return highest < window_.minor.first - 1 || lowest > window_.minor.end;
    }

    // Steep rays leave the picture before the wedge ends.
    int LastNodeInside() const {
        const double low = ring_.Slope(firstRay_);
        const double high = ring_.Slope(endRay_);
        const double flattest = low < 0 && high > 0 ? 0 : std::min(std::abs(low), std::abs(high));
        const double longest = wedge_.MinorCentre() - wedge_.FirstDistance() + 2;
        return flattest * (wedge_.LastNode() + 1) <= longest ? wedge_.LastNode()
                                                             : static_cast<int>(longest / flattest);
    }

    // The values where the rays cross a node's line, between whole pixels in a straight line.
    void TakeValues(int node) {
        constexpr double kPositions = 1 << kRayPositionBits;
        constexpr double kMargin = 0.01; // pixels, since steps are rounded
        const double distance = wedge_.Distance(node);
        const double origin = wedge_.MinorCentre() + ring_.Slope(FirstStored()) * distance +
                              0.5 / kRayShares; // so that shares are rounded
        const double step = 2.0 / ring_.intervals * distance;
        const double end = origin + step * (RayCount() - 1);
        const int lowest = static_cast<int>(std::floor(std::min(origin, end) - kMargin));
        const int highest = static_cast<int>(std::floor(std::max(origin, end) + kMargin)) + 1;
        const Crossing crossing{static_cast<std::int32_t>(std::lround((origin - lowest) * kPositions)),
                                static_cast<std::int32_t>(std::lround(step * kPositions))};
        const std::uint8_t* const line = source_.Row(0) + wedge_.MajorIndex(node) * wedge_.majorStep;
        if (source_.HasAlpha()) {
            ZoomKernels::Best().CrossingsPremultiplied(PremultipliedLine(line, lowest, highest), crossing,
                                                       RayCount(), ValuesAt(node));
        } else {
            ZoomKernels::Best().Crossings(OpaqueLine(line, lowest, highest), crossing, RayCount(),
                                          ValuesAt(node));
        }
    }

    // Pixels of a line one behind the other; beyond its ends it is continued by its end pixels.
    const std::uint8_t* OpaqueLine(const std::uint8_t* line, int lowest, int highest) {
        const int count = highest - lowest + 1;
        line_.resize(
            std::max(line_.size(), static_cast<std::size_t>(count + 2 * kVectorPixels) * kComponents));
        std::uint8_t* const to = line_.data() + kVectorPixels * kComponents;
        const int before = std::clamp(-lowest, 0, count);
        const int inside = std::clamp(wedge_.minorSize - lowest, before, count);
        const auto copy = [&](int first, int end, const std::uint8_t* from, std::ptrdiff_t step) {
            for (int i = first; i < end; ++i, from += step) {
                std::memcpy(to + i * kComponents, from, kComponents);
            }
        };
        copy(0, before, line, 0);
        const std::uint8_t* const from = line + (lowest + before) * wedge_.minorStep;
        if (wedge_.minorStep == kComponents) {
            std::memcpy(to + before * kComponents, from,
                        static_cast<std::size_t>(inside - before) * kComponents);
        } else {
            copy(before, inside, from, wedge_.minorStep);
        }
        copy(inside, count, line + (wedge_.minorSize - 1) * wedge_.minorStep, 0);
        return to;
    }

    const std::int16_t* PremultipliedLine(const std::uint8_t* line, int lowest, int highest) {
        const std::uint8_t* const pixels = OpaqueLine(line, lowest, highest);
        premultiplied_.resize(std::max(premultiplied_.size(), line_.size()));
        std::int16_t* const to = premultiplied_.data() + kVectorPixels * kComponents;
        ZoomKernels::Best().PremultiplyLine(pixels, highest - lowest + 1, to);
        return to;
    }

    // The means of the stretches that end in a node.
    void Slide(int node) {
        const StretchBegin begin(wedge_, innerScale_, node);
        constexpr double kOne = kFixedUnit;
        const double left = 1 - begin.after; // of the way to the node after
        // Of a straight line between the two values.
        const auto share = [&](double part) { return static_cast<std::int16_t>(std::lround(part * kOne)); };
        const std::int16_t inner = share(left * left / 2);
        const std::int16_t after = std::max(share((1 - begin.after * begin.after) / 2), std::int16_t{1});
        const int intervals = node - begin.before - 1;
        // Sums are in halves: so is the rest, unless it is everything there is.
        const int restShift = intervals > 0 ? 14 : 0;
        const double length = 2.0 * intervals + std::ldexp(inner + after, -restShift);
        ZoomKernels::Best().SlideRays(
            {ValuesAt(node - 1), ValuesAt(node), ValuesAt(begin.before), ValuesAt(begin.before + 1),
             begin.before != innerNode_, inner, after, restShift, static_cast<float>(1 / length)},
            RayCount(), sums_.data(), means_.data());
        innerNode_ = begin.before;
    }

    // The pixels of this node's line that lie between the block's first and last ray.
    void WritePixels(int node) const {
        const double distance = wedge_.Distance(node);
        const int first = std::max(FirstPixel(firstRay_, distance), window_.minor.first);
        const int end = std::min(FirstPixel(endRay_, distance), window_.minor.end);
        if (first >= end) {
            return;
        }
        constexpr double kPositions = 1 << kRayPositionBits;
        const double raysPerPixel = ring_.intervals / (2 * distance);
        const double position =
            (first - wedge_.MinorCentre()) * raysPerPixel + ring_.intervals / 2.0 - FirstStored();
        const PixelsBetween between{std::max(std::llround(position * kPositions), 1LL << kRayPositionBits),
                                    std::llround(raysPerPixel * kPositions), end - first,
                                    window_.At(wedge_.MajorIndex(node), first), window_.minorStep};
        source_.HasAlpha() ? ZoomKernels::Best().MixRaysWithAlpha(means_.data(), between)
                           : ZoomKernels::Best().MixRays(means_.data(), between);
    }

    int FirstPixel(int ray, double distance) const {
        const double minor = wedge_.MinorCentre() + ring_.Slope(ray) * distance;
        const bool behindDiagonal =
            ray == 0 ? !wedge_.ownsDiagonal : ray == ring_.intervals && wedge_.ownsDiagonal;
        return behindDiagonal ? static_cast<int>(std::floor(minor)) + 1 : static_cast<int>(std::ceil(minor));
    }

    const PixelArray& source_;
    const Wedge& wedge_;
    const Ring& ring_;
    double innerScale_;
    const WedgeWindow& window_;
    int firstRay_ = 0;
    int endRay_ = 0;
    int kept_ = 0;      // nodes whose values are kept
    int innerNode_ = 0; // before the sum
    std::vector<std::uint8_t> line_;
    std::vector<std::int16_t> premultiplied_;
    std::unique_ptr<std::int16_t[]> values_; // not a vector: clearing it costs as much as using it
    std::size_t valuesReserved_ = 0;
    std::vector<std::int32_t> sums_; // of each ray, twice what lies from the node after innerNode_ on
    std::vector<std::int16_t> means_;
};

void BlurRing(const PixelArray& source, const Wedge& wedge, const Ring& ring, double innerScale,
              const WedgeWindow& window) {
    const int blocks = (ring.intervals + kRaysPerBlock - 1) / kRaysPerBlock;
    const std::size_t bytesPerBlock = static_cast<std::size_t>(kRaysPerBlock) * kComponents *
                                      (1 + sizeof(std::int32_t)) *
                                      static_cast<std::size_t>(ring.last - ring.first + 1);
    ForEachBand(blocks, bytesPerBlock, [&](int first, int end) {
        RayBlock block(source, wedge, ring, innerScale, window);
        for (int i = first; i < end; ++i) {
            block.Blur(i * kRaysPerBlock, std::min((i + 1) * kRaysPerBlock, ring.intervals));
        }
    });
}

// The pixel at the centre belongs to no wedge.
void CopyCentre(const PixelArray& source, const Window& window, PixelArray& result) {
    const int x = source.Width() / 2;
    const int y = source.Height() / 2;
    const bool isSeen = window.left <= x && x < window.Right() && window.top <= y && y < window.Bottom();
    if (source.Width() % 2 == 1 && source.Height() % 2 == 1 && isSeen) {
        std::copy_n(source.Row(y) + static_cast<std::ptrdiff_t>(x) * kComponents, kComponents,
                    result.WritableRows() + (y - window.top) * result.Stride() +
                        static_cast<std::ptrdiff_t>(x - window.left) * kComponents);
    }
}

} // namespace

PixelArray ZoomBlur(const PixelArray& source, double percent, const OptionalWindow& wanted) {
    RequireRange("zoom blur", percent, 0, 100);
    const int width = source.Width();
    const int height = source.Height();
    const double longestPath = percent / 100 * std::max(width, height) / 2;
    if (longestPath < kShortestPath) {
        return wanted ? Crop(source, *wanted) : source;
    }
    const Window window = wanted.value_or(Window{0, 0, width, height});
    const double innerScale = 1 - percent / 100;
    PixelArray result = PixelArray::Like(source, window.width, window.height);
    std::uint8_t* const rows = result.WritableRows();
    const WedgeWindow::Span columns{window.left, window.Right()};
    const WedgeWindow::Span lines{window.top, window.Bottom()};
    const WedgeWindow across{columns, lines, rows, kComponents, result.Stride()};
    const WedgeWindow down{lines, columns, rows, result.Stride(), kComponents};
    const double rays = RaysPerPixel(longestPath);
    for (const int direction : {1, -1}) {
        const Wedge left{kComponents, source.Stride(), width, height, direction, true};
        for (const Ring& ring : RingsOf(left, innerScale, rays)) {
            BlurRing(source, left, ring, innerScale, across);
        }
        const Wedge upper{source.Stride(), kComponents, height, width, direction, false};
        for (const Ring& ring : RingsOf(upper, innerScale, rays)) {
            BlurRing(source, upper, ring, innerScale, down);
        }
    }
    CopyCentre(source, window, result);
    return result;
}

} // namespace pictorel::engine
