// Gaussian blur and the unsharp mask made from it, see Filters.h.
#include "imaging/engine/BlurredRows.h"
#include "imaging/engine/Filters.h"
#include "imaging/engine/GaussianPyramid.h"
#include "imaging/engine/Parameters.h"
#include "imaging/engine/Streaming.h"

#include <vector>

namespace pictorel::engine {
namespace {

constexpr int kComponents = PixelArray::kComponents;
constexpr double kWidest = 1000;

// Makes a picture like `source` strip by strip: makeRows(area) gives what hands out wide rows, finish(wide
// row, x, y, width, pixels) makes pixels of them.
template <class MakeRows, class Finish>
PixelArray FromStrips(const PixelArray& source, const MakeRows& makeRows, const Finish& finish) {
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const bool streams = IsStreamed(result);
    ForEachStrip(BoundsOf(source), [&](const TileArea& area) {
        auto wideRows = makeRows(area);
        std::vector<std::uint8_t> pixels(static_cast<std::size_t>(area.width) * kComponents);
        for (int y = area.top; y < area.top + area.height; ++y) {
            finish(wideRows.Row(y), area.left, y, area.width, pixels.data());
            CopyRow(pixels.data(), pixels.size(), streams,
                    rows + y * result.Stride() + static_cast<std::ptrdiff_t>(area.left) * kComponents);
        }
    });
    return result;
}

WidePlane Blurred(const WidePlane& source, const HalfKernel& kernel) {
    const Bounds& bounds = source.Extent();
    WidePlane result(bounds);
    ForEachStrip(bounds, [&](const TileArea& area) {
        BlurredRows<WidePlane> rows(source, kernel, area.left, area.width);
        for (int y = area.top; y < area.top + area.height; ++y) {
            std::copy_n(rows.Row(y), static_cast<std::ptrdiff_t>(area.width) * kComponents,
                        result.Row(y) + static_cast<std::ptrdiff_t>(area.left - bounds.left) * kComponents);
        }
    });
    return result;
}

WidePlane Doubled(const WidePlane& half, const Bounds& bounds) {
    WidePlane result(bounds);
    ForEachStrip(bounds, [&](const TileArea& area) {
        DoubledRows rows(half, area.left, area.width);
        for (int y = area.top; y < area.top + area.height; ++y) {
            std::copy_n(rows.Row(y), static_cast<std::ptrdiff_t>(area.width) * kComponents,
                        result.Row(y) + static_cast<std::ptrdiff_t>(area.left - bounds.left) * kComponents);
        }
    });
    return result;
}

// The plane from which the blurred picture comes by doubling: halved as often as planned, blurred, and
// doubled back to the first half.
WidePlane BlurredHalf(const PixelArray& source, const PyramidPlan& plan) {
    WidePlane plane = Halved(source);
    std::vector<Bounds> larger;
    for (int i = 1; i < plan.halvings; ++i) {
        larger.push_back(plane.Extent());
        plane = Halved(plane);
    }
    plane = Blurred(plane, GaussianKernel(plan.sigma));
    for (; !larger.empty(); larger.pop_back()) {
        plane = Doubled(plane, larger.back());
    }
    return plane;
}

} // namespace

PixelArray GaussianBlur(const PixelArray& source, double sigma) {
    RequireRange("blur", sigma, 0, kWidest);
    const PyramidPlan plan(sigma * source.Reduction());
    const auto narrow = [&](const WideComponent* wide, int, int, int width, std::uint8_t* pixels) {
        NarrowRow(wide, width, source.HasAlpha(), pixels);
    };
    if (plan.halvings > 0) {
        const WidePlane half = BlurredHalf(source, plan);
        return FromStrips(
            source, [&](const TileArea& area) { return DoubledRows(half, area.left, area.width); }, narrow);
    }
    const HalfKernel kernel = GaussianKernel(plan.sigma);
    if (kernel.empty()) {
        return source;
    }
    return FromStrips(
        source,
        [&](const TileArea& area) { return BlurredRows<PixelArray>(source, kernel, area.left, area.width); },
        narrow);
}

PixelArray UnsharpMask(const PixelArray& source, double amount) {
    RequireRange("sharpen", amount, 0, kWidest);
    const HalfKernel kernel = GaussianKernel(source.Reduction());
    if (amount == 0 || kernel.empty()) {
        return source;
    }
    return FromStrips(
        source,
        [&](const TileArea& area) { return BlurredRows<PixelArray>(source, kernel, area.left, area.width); },
        [&](const WideComponent* wide, int x, int y, int width, std::uint8_t* pixels) {
            SharpenRow(source.Row(y) + static_cast<std::ptrdiff_t>(x) * kComponents, wide, width,
                       source.HasAlpha(), static_cast<float>(amount), pixels);
        });
}

} // namespace pictorel::engine
