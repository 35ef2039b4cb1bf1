// Mean along the ray to the centre, see Filters.h.
//
// The picture is seen as rays from the centre. Along each ray running sums are kept, so that the mean over
// any stretch is a difference of two sums, whatever its length. Four wedges, each bounded by the diagonals
// through the centre, are walked in whole pixels along their own axis (the major one).
#include "imaging/ForEachBand.h"
#include "imaging/engine/Filters.h"
#include "imaging/engine/Parameters.h"
#include "imaging/engine/ZoomRays.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace pictorel::engine {
namespace {

constexpr int kComponents = PixelArray::kComponents;

// Rays are this dense where the wedge is widest and denser towards the centre; a pixel between two rays mixes
// them, and this keeps that mixing from softening what lies across the rays. Long paths soften more by
// themselves and need fewer.
int RaysPerPixel(double longestPath) {
    constexpr double kShortPath = 20; // pixels
    constexpr double kLongPath = 50;
    return longestPath < kShortPath ? 8 : longestPath < kLongPath ? 3 : 2;
}

constexpr int kRaysPerBlock = 128;    // the sums that a stretch needs stay in cache
constexpr double kShortestPath = 0.1; // pixels; less moves nothing that could be seen

// One wedge: nodes 0, 1, ... lie on whole pixels along the major axis, starting at the centre or half a pixel
// before it; rays 0..rayCount - 1 differ in slope (minor per major pixel) from -1 to 1.
struct Wedge {
    std::ptrdiff_t majorStep; // bytes
    std::ptrdiff_t minorStep;
    int majorSize; // pixels
    int minorSize;
    int raysPerPixel;
    int direction;     // of the walk along the major axis: 1 or -1
    bool ownsDiagonal; // so that each pixel belongs to one wedge

    double MajorCentre() const { return (majorSize - 1) / 2.0; }
    double MinorCentre() const { return (minorSize - 1) / 2.0; }
    double FirstDistance() const { return std::floor(MajorCentre()) - MajorCentre(); } // 0 or -0.5
    double Distance(int node) const { return node + FirstDistance(); }
    int Nodes() const { return majorSize / 2 + 1; }
    int MajorIndex(int node) const {
        return direction > 0 ? (majorSize - 1) / 2 + node : majorSize / 2 - node;
    }
    int Intervals() const { return std::max(1, majorSize * raysPerPixel); }
    double Slope(int ray) const { return 2.0 * ray / Intervals() - 1; }
};

// Where a stretch begins, as weights of three consecutive running sums: the integral of the straight lines
// between the nodes' values up to `fraction` after the middle node.
struct StretchEnd {
    int node; // the middle one
    float before;
    float after;

    explicit StretchEnd(double position) : node(static_cast<int>(position)) {
        const auto fraction = static_cast<float>(position - node);
        after = fraction * fraction / 2;
        before = 0.5F - fraction + after;
    }
};

class RayBlock {
  public:
    RayBlock(const PixelArray& source, const Wedge& wedge, double innerScale)
        : source_(source), wedge_(wedge), innerScale_(innerScale) {}

    void Blur(int firstRay, int endRay, std::uint8_t* resultPixels) {
        firstRay_ = firstRay;
        endRay_ = endRay;
        nodes_ = NodesInside();
        SumAlongRays();
        for (int node = 1; node < nodes_; ++node) {
            BlurNode(node, resultPixels);
        }
    }

  private:
    int RayCount() const { return endRay_ - firstRay_ + 1; } // one more than intervals

    // Numbers from one node's sums to the next node's.
    std::ptrdiff_t NodeLength() const {
        return static_cast<std::ptrdiff_t>(RayCount() + kRaysTogether - 1) / kRaysTogether * kRaysTogether *
               kComponents;
    }
    const std::int32_t* SumsBefore(int node) const { return sums_.data() + node * NodeLength(); }

    // Steep rays leave the picture before the wedge ends.
    int NodesInside() const {
        const double low = wedge_.Slope(firstRay_);
        const double high = wedge_.Slope(endRay_);
        const double flattest = low < 0 && high > 0 ? 0 : std::min(std::abs(low), std::abs(high));
        const double longest = wedge_.MinorCentre() - wedge_.FirstDistance() + 2;
        return flattest * wedge_.Nodes() <= longest
                   ? wedge_.Nodes()
                   : std::min(wedge_.Nodes(), static_cast<int>(longest / flattest) + 1);
    }

    // Row n + 1 of sums_ is the sum of the values at nodes 0..n, for each ray; row 0 is zero.
    void SumAlongRays() {
        const auto length = static_cast<std::size_t>(NodeLength());
        sums_.resize(std::max(sums_.size(), length * static_cast<std::size_t>(nodes_ + 1)));
        std::fill_n(sums_.begin(), length, 0);
        for (int node = 0; node < nodes_; ++node) {
            std::int32_t* const before = sums_.data() + static_cast<std::size_t>(node) * length;
            AddNode(node, before, before + length);
        }
    }

    // after = before + the values where the rays pass this node's line, between whole pixels in a straight
    // line.
    void AddNode(int node, const std::int32_t* before, std::int32_t* after) {
        constexpr double kPositions = 1 << kRayPositionBits;
        const double distance = wedge_.Distance(node);
        const double origin = wedge_.MinorCentre() + wedge_.Slope(firstRay_) * distance +
                              0.5 / kRayShares; // so that shares are rounded
        const double step = 2.0 / wedge_.Intervals() * distance;
        const double last = origin + step * (RayCount() - 1);
        const int lowest = static_cast<int>(std::floor(std::min(origin, last) - 1 / kPositions));
        const int highest = static_cast<int>(std::floor(std::max(origin, last)));
        const int count = highest - lowest + 2; // one more, since steps are rounded
        pairs_.resize(std::max(pairs_.size(), static_cast<std::size_t>(count) * 2 * kComponents));
        simd::PairPixels({source_.Row(0) + wedge_.MajorIndex(node) * wedge_.majorStep, wedge_.minorStep,
                          wedge_.minorSize, lowest},
                         count, source_.HasAlpha(), pairs_.data());
        const Crossing crossing{static_cast<std::int32_t>(std::lround((origin - lowest) * kPositions)),
                                static_cast<std::int32_t>(std::lround(step * kPositions))};
        simd::AddCrossings(pairs_.data(), crossing, RayCount(), before, after);
    }

    // The pixels of this node's line that lie between the block's first and last ray.
    void BlurNode(int node, std::uint8_t* resultPixels) {
        const double distance = wedge_.Distance(node);
        const int first = std::max(FirstPixel(firstRay_, distance), 0);
        const int end = std::min(FirstPixel(endRay_, distance), wedge_.minorSize);
        if (first >= end) {
            return;
        }
        const StretchEnd inner(distance * innerScale_ - wedge_.FirstDistance());
        const double length = distance * (1 - innerScale_) * kRayValueUnit * kRayShares;
        // The inner end's third sum has weight 0 where it would lie beyond the last node.
        simd::MeansOf({SumsBefore(node), SumsBefore(node + 1), SumsBefore(inner.node),
                       SumsBefore(inner.node + 1), SumsBefore(std::min(inner.node + 2, nodes_)), inner.before,
                       inner.after, static_cast<float>(1 / length)},
                      RayCount(), means_.data());
        const double raysPerPixel = wedge_.Intervals() / (2 * distance);
        const double position =
            (first - wedge_.MinorCentre()) * raysPerPixel + wedge_.Intervals() / 2.0 - firstRay_;
        std::uint8_t* const line = resultPixels + wedge_.MajorIndex(node) * wedge_.majorStep;
        simd::MixMeans(means_.data(),
                       {position, raysPerPixel, end - first, RayCount() - 2, line + first * wedge_.minorStep,
                        wedge_.minorStep},
                       source_.HasAlpha());
    }

    int FirstPixel(int ray, double distance) const {
        const double minor = wedge_.MinorCentre() + wedge_.Slope(ray) * distance;
        const bool behindDiagonal =
            ray == 0 ? !wedge_.ownsDiagonal : ray == wedge_.Intervals() && wedge_.ownsDiagonal;
        return behindDiagonal ? static_cast<int>(std::floor(minor)) + 1 : static_cast<int>(std::ceil(minor));
    }

    const PixelArray& source_;
    const Wedge& wedge_;
    double innerScale_;
    int firstRay_ = 0;
    int endRay_ = 0;
    int nodes_ = 0;
    std::vector<std::int32_t> sums_;
    std::vector<std::int16_t> pairs_;
    std::array<float, std::size_t{kRaysPerBlock + kRaysTogether} * kComponents> means_;
};

void BlurWedge(const PixelArray& source, const Wedge& wedge, double innerScale, std::uint8_t* resultPixels) {
    const int blocks = (wedge.Intervals() + kRaysPerBlock - 1) / kRaysPerBlock;
    const std::size_t bytesPerBlock =
        sizeof(std::int32_t) * kComponents * kRaysPerBlock * static_cast<std::size_t>(wedge.Nodes());
    ForEachBand(blocks, bytesPerBlock, [&](int first, int end) {
        RayBlock block(source, wedge, innerScale);
        for (int i = first; i < end; ++i) {
            block.Blur(i * kRaysPerBlock, std::min((i + 1) * kRaysPerBlock, wedge.Intervals()), resultPixels);
        }
    });
}

} // namespace

PixelArray ZoomBlur(const PixelArray& source, double percent) {
    RequireRange("zoom blur", percent, 0, 100);
    const int width = source.Width();
    const int height = source.Height();
    const double longestPath = percent / 100 * std::max(width, height) / 2;
    if (longestPath < kShortestPath) {
        return source;
    }
    const int rays = RaysPerPixel(longestPath);
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const std::ptrdiff_t stride = source.Stride();
    for (const int direction : {1, -1}) {
        BlurWedge(source, {kComponents, stride, width, height, rays, direction, true}, 1 - percent / 100,
                  rows);
        BlurWedge(source, {stride, kComponents, height, width, rays, direction, false}, 1 - percent / 100,
                  rows);
    }
    if (width % 2 == 1 && height % 2 == 1) { // the pixel at the centre belongs to no wedge
        const std::ptrdiff_t centre =
            height / 2 * stride + static_cast<std::ptrdiff_t>(width / 2) * kComponents;
        std::copy_n(source.Row(0) + centre, kComponents, rows + centre);
    }
    return result;
}

} // namespace pictorel::engine
