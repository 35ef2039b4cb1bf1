// Gaussian blur and the unsharp mask made from it, see Filters.h.
#include "picture/engine/Filters.h"
#include "picture/engine/kernels/base/FixedPoint.h"
#include "picture/engine/kernels/base/Parameters.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/base/Streaming.h"
#include "picture/engine/kernels/blur/GaussianPyramid.h"
#include "picture/engine/kernels/blur/WideKernels.h"
#include "picture/engine/kernels/blur/WideRows.h"

#include <hwy/cache_control.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace pictorel::engine {
namespace {

constexpr double kWidest = 1000;

using PixelsOfStrip = std::function<std::unique_ptr<PixelRows>(Columns)>;

// Makes a picture like `source` strip by strip: makeStrip(columns) gives what is called with the number and
// the target of each row.
template <class MakeStrip>
PixelArray FromStrips(const PixelArray& source, int stripWidth, const MakeStrip& makeStrip) {
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const pixels = result.WritableRows();
    const bool streams = IsStreamed(result);
    ForEachStrip(BoundsOf(source), stripWidth, [&](const TileArea& area) {
        auto rows = makeStrip(Columns{area.left, area.width});
        for (int y = area.top; y < area.top + area.height; ++y) {
            const std::ptrdiff_t offset = static_cast<std::ptrdiff_t>(area.left) * kComponents;
            rows(y, PixelTarget{pixels + y * result.Stride() + offset, area.width, streams,
                                source.Row(y) + offset, 0});
        }
        hwy::FlushStream();
    });
    return result;
}

// From rows of opaque pixels, sharpened by `share` in 1/kFixedUnit of the usual most.
PixelArray FromPixelRows(const PixelArray& source, int stripWidth, std::int16_t share,
                         const PixelsOfStrip& makeRows) {
    return FromStrips(source, stripWidth, [&](Columns columns) {
        return [share, rows = makeRows(columns)](int y, PixelTarget target) {
            target.share = share;
            rows->Make(y, target);
        };
    });
}

// From wide rows, sharpened by `amount` where it is not 0.
PixelArray FromWideRows(const PixelArray& source, int stripWidth, float amount, const RowsOfStrip& makeRows) {
    const bool hasAlpha = source.HasAlpha();
    return FromStrips(source, stripWidth, [&](Columns columns) {
        auto rows = makeRows(columns);
        const int width = rows->Width();
        return
            [=, rows = std::move(rows), row = WideRow(WideLength(width))](int y, PixelTarget target) mutable {
                rows->Make(y, row.data());
                if (amount == 0) {
                    WideKernels::Best().PixelsFromWide(row.data(), width, hasAlpha, target.pixels);
                } else {
                    WideKernels::Best().SharpenPixels(target.original, row.data(), width, hasAlpha, amount,
                                                      target.pixels);
                }
            };
    });
}

std::unique_ptr<WideRows> DoubledTimes(int times, const RowsOfStrip& source, Columns columns) {
    if (times == 0) {
        return source(columns);
    }
    return std::make_unique<DoubledRows>([&](Columns half) { return DoubledTimes(times - 1, source, half); },
                                         columns);
}

// Blurs what makeRows makes.
std::unique_ptr<WideRows> BlurredStrip(const RowsOfStrip& makeRows, const HalfKernel& kernel,
                                       Columns columns) {
    const int margin = static_cast<int>(kernel.size()) - 1;
    return std::make_unique<BlurredRows>(makeRows(columns.WithMargins(margin)), kernel);
}

// Blurred rows, doubled `times` times. Opaque pixels go straight into the result.
PixelArray Doubled(const PixelArray& source, int times, const RowsOfStrip& blurred) {
    if (source.HasAlpha()) {
        return FromWideRows(source, kBroadStrip, 0,
                            [&](Columns columns) { return DoubledTimes(times, blurred, columns); });
    }
    return FromPixelRows(source, kBroadStrip, 0, [&](Columns columns) {
        return std::make_unique<DoubledPixels>(
            [&](Columns half) { return DoubledTimes(times - 1, blurred, half); }, columns);
    });
}

// Halved as often as planned, blurred, and doubled again. Up to two halvings or doublings go through the
// cache at once. Halved once, no plane is kept at all; halved more often, the margins of strips would be made
// too often without one.
PixelArray BlurredByHalving(const PixelArray& source, const PyramidPlan& plan) {
    const HalfKernel kernel = GaussianKernel(plan.sigma);
    if (plan.halvings == 1) {
        const RowsOfStrip halved = [&](Columns columns) { return HalvedRowsOf(source, 1, columns); };
        return Doubled(source, 1, [&](Columns columns) { return BlurredStrip(halved, kernel, columns); });
    }
    constexpr int kThroughCache = 2;
    WidePlane plane = Halved(source, kThroughCache);
    std::vector<Bounds> larger;
    for (int i = kThroughCache; i < plan.halvings; ++i) {
        larger.push_back(plane.Extent());
        plane = Halved(plane, 1);
    }
    const RowsOfStrip asItIs = [&](Columns columns) { return RowsOf(plane, columns); };
    const RowsOfStrip blurred = [&](Columns columns) { return BlurredStrip(asItIs, kernel, columns); };
    const RowsOfStrip* smallest = &blurred;
    for (; !larger.empty(); larger.pop_back()) {
        plane =
            MakePlane(larger.back(), [&](Columns columns) { return DoubledTimes(1, *smallest, columns); });
        smallest = &asItIs;
    }
    return Doubled(source, kThroughCache, *smallest);
}

PixelArray Blurred(const PixelArray& source, const HalfKernel& kernel, float amount) {
    if (source.HasAlpha() || amount > kUsualSharpening) {
        const RowsOfStrip asItIs = [&](Columns columns) { return RowsOf(source, columns); };
        return FromWideRows(source, kNarrowStrip, amount,
                            [&](Columns columns) { return BlurredStrip(asItIs, kernel, columns); });
    }
    // Even the least sharpening is not none.
    const float share =
        std::clamp(amount * kFixedUnit / kUsualSharpening + 0.5F, amount > 0 ? 1.0F : 0.0F, 32767.0F);
    return FromPixelRows(source, kNarrowStrip, static_cast<std::int16_t>(share), [&](Columns columns) {
        return std::make_unique<BlurredPixels>(source, kernel, columns);
    });
}

} // namespace

PixelArray GaussianBlur(const PixelArray& source, double sigma) {
    RequireRange("blur", sigma, 0, kWidest);
    const PyramidPlan plan(sigma * source.Reduction());
    if (plan.halvings > 0) {
        return BlurredByHalving(source, plan);
    }
    const HalfKernel kernel = GaussianKernel(plan.sigma);
    return kernel.empty() ? source : Blurred(source, kernel, 0);
}

PixelArray UnsharpMask(const PixelArray& source, double amount) {
    RequireRange("sharpen", amount, 0, kWidest);
    const HalfKernel kernel = GaussianKernel(source.Reduction());
    if (amount == 0 || kernel.empty()) {
        return source;
    }
    return Blurred(source, kernel, static_cast<float>(amount));
}

} // namespace pictorel::engine
