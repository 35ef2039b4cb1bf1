// Mean along the ray to the centre, see Filters.h.
//
// The picture is seen as rays from the centre. Along each ray running sums are kept, so that the mean over
// any stretch is a difference of two sums, whatever its length. Four wedges, each bounded by the diagonals
// through the centre, are walked in whole pixels along their own axis (the major one).
#include "imaging/ForEachBand.h"
#include "imaging/engine/Filters.h"
#include "imaging/engine/Parameters.h"
#include "imaging/engine/Rounding.h"

#include <cmath>
#include <vector>

namespace pictorel::engine {
namespace {

constexpr int kComponents = PixelArray::kComponents;

// Rays are this dense where the wedge is widest and denser towards the centre; a pixel between two rays mixes
// them, and this keeps that mixing from softening what lies across the rays. Long paths soften more by
// themselves and need fewer.
int RaysPerPixel(double longestPath) {
    constexpr double kLongPath = 20; // pixels
    return longestPath < kLongPath ? 8 : 4;
}

constexpr int kRaysPerBlock = 16;     // their sums stay in cache
constexpr double kShortestPath = 0.1; // pixels; less moves nothing that could be seen

// Four components that the compiler keeps in one register; sums and products go lane by lane.
using Quad = float __attribute__((vector_size(16)));

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
    float at;
    float after;

    explicit StretchEnd(double position) : node(static_cast<int>(position)) {
        const auto fraction = static_cast<float>(position - node);
        after = fraction * fraction / 2;
        before = 0.5F - fraction + after;
        at = 1 - before - after;
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

    // Premultiplied where the picture has alpha.
    Quad PixelAt(const std::uint8_t* column, int minor) const {
        const std::uint8_t* const p = column + std::min(minor, wedge_.minorSize - 1) * wedge_.minorStep;
        const Quad pixel{static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2]),
                         static_cast<float>(p[3])};
        const float alpha = pixel[3] / 255.0F;
        return source_.HasAlpha() ? pixel * Quad{alpha, alpha, alpha, 1.0F} : pixel;
    }

    // Row n + 1 of sums_ is the sum of the values at nodes 0..n, for each ray; row 0 is zero.
    void SumAlongRays() {
        const auto rays = static_cast<std::size_t>(RayCount());
        sums_.resize(rays * static_cast<std::size_t>(nodes_ + 1));
        std::fill_n(sums_.begin(), rays, Quad{});
        for (int node = 0; node < nodes_; ++node) {
            Quad* const before = sums_.data() + static_cast<std::size_t>(node) * rays;
            AddNode(node, before, before + rays);
        }
    }

    // after = before + the values where the rays pass this node's column, between whole pixels in a straight
    // line.
    void AddNode(int node, const Quad* before, Quad* after) const {
        const std::uint8_t* const column = source_.Row(0) + wedge_.MajorIndex(node) * wedge_.majorStep;
        const double distance = wedge_.Distance(node);
        const double origin = wedge_.MinorCentre() + wedge_.Slope(firstRay_) * distance;
        const double step = 2.0 / wedge_.Intervals() * distance;
        const double last = wedge_.minorSize - 1.0;
        int pixel = -1;
        Quad value{};
        Quad ahead{}; // from this pixel to the next
        for (int ray = 0; ray < RayCount(); ++ray) {
            const double minor = std::clamp(origin + step * ray, 0.0, last);
            const int index = static_cast<int>(minor);
            if (index != pixel) { // neighbouring rays mostly pass between the same two pixels
                value = index == pixel + 1 && pixel >= 0 ? value + ahead : PixelAt(column, index);
                ahead = PixelAt(column, index + 1) - value;
                pixel = index;
            }
            after[ray] = before[ray] + (value + ahead * static_cast<float>(minor - index));
        }
    }

    // The pixels of this node's column that lie between the block's first and last ray.
    void BlurNode(int node, std::uint8_t* resultPixels) {
        const double distance = wedge_.Distance(node);
        const int first = std::max(FirstPixel(firstRay_, distance), 0);
        const int end = std::min(FirstPixel(endRay_, distance), wedge_.minorSize);
        const StretchEnd inner(distance * innerScale_ - wedge_.FirstDistance());
        const auto perLength = static_cast<float>(1 / (distance * (1 - innerScale_)));
        std::uint8_t* const column = resultPixels + wedge_.MajorIndex(node) * wedge_.majorStep;
        for (int minor = first; minor < end; ++minor) {
            const double slope = (minor - wedge_.MinorCentre()) / distance;
            const double position = (slope + 1) / 2 * wedge_.Intervals() - firstRay_;
            const int ray = std::clamp(static_cast<int>(position), 0, RayCount() - 2);
            const float share = std::clamp(static_cast<float>(position - ray), 0.0F, 1.0F);
            Store(Mean(node, ray, share, inner, perLength), column + minor * wedge_.minorStep);
        }
    }

    int FirstPixel(int ray, double distance) const {
        const double minor = wedge_.MinorCentre() + wedge_.Slope(ray) * distance;
        const bool behindDiagonal =
            ray == 0 ? !wedge_.ownsDiagonal : ray == wedge_.Intervals() && wedge_.ownsDiagonal;
        return behindDiagonal ? static_cast<int>(std::floor(minor)) + 1 : static_cast<int>(std::ceil(minor));
    }

    Quad Mean(int node, int ray, float share, const StretchEnd& inner, float perLength) const {
        const std::ptrdiff_t rays = RayCount();
        const Quad* const outer = sums_.data() + node * rays + ray;
        const Quad* const start = sums_.data() + inner.node * rays + ray;
        // The inner end's third sum has weight 0 where it would lie beyond the last node.
        const std::ptrdiff_t third = inner.node + 2 <= nodes_ ? 2 * rays : rays;
        const auto stretch = [&](std::ptrdiff_t r) {
            return (outer[r] + outer[r + rays]) * 0.5F -
                   (start[r] * inner.before + start[r + rays] * inner.at + start[r + third] * inner.after);
        };
        const Quad left = stretch(0);
        return (left + (stretch(1) - left) * share) * perLength;
    }

    void Store(const Quad& mean, std::uint8_t* pixel) const {
        const float perAlpha = source_.HasAlpha() ? 255.0F / std::max(mean[3], 1.0F / 1024) : 1.0F;
        for (int k = 0; k < 3; ++k) {
            pixel[k] = RoundToByte(mean[k] * perAlpha);
        }
        pixel[3] = source_.HasAlpha() ? RoundToByte(mean[3]) : 255;
    }

    const PixelArray& source_;
    const Wedge& wedge_;
    double innerScale_;
    int firstRay_ = 0;
    int endRay_ = 0;
    int nodes_ = 0;
    std::vector<Quad> sums_;
};

void BlurWedge(const PixelArray& source, const Wedge& wedge, double innerScale, std::uint8_t* resultPixels) {
    const int blocks = (wedge.Intervals() + kRaysPerBlock - 1) / kRaysPerBlock;
    const std::size_t bytesPerBlock = sizeof(Quad) * kRaysPerBlock * static_cast<std::size_t>(wedge.Nodes());
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
