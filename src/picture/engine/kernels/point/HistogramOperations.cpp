// Operations that first measure the whole picture, see HistogramOperations.h.
#include "picture/engine/HistogramOperations.h"

#include "picture/engine/kernels/base/Parameters.h"
#include "picture/engine/kernels/base/RowLoop.h"
#include "picture/engine/kernels/point/ByteMap.h"
#include "picture/engine/kernels/point/Histogram.h"
#include "picture/engine/kernels/point/MapKernels.h"
#include "picture/engine/kernels/point/ValueEnds.h"

#include <algorithm>
#include <cmath>

namespace pictorel::engine {
namespace {

// The straight line that takes the ends to 0 and 255. A picture of one value has nothing to stretch and
// stays.
ByteMap StretchMap(const ValueEnds& ends) {
    const auto [lowest, highest] = ends;
    if (lowest >= highest) {
        return IdentityMap();
    }
    return MakeByteMap([low = lowest, high = highest](int c) { return (c - low) * 255.0 / (high - low); });
}

// What full equalisation adds to each value: the count of all darker and equal pixels, spread so that the
// darkest value present becomes 0 and the brightest 255.
std::array<double, 256> EqualizingChange(const Histogram& histogram) {
    std::array<double, 256> change{};
    const std::uint64_t total = Total(histogram);
    const auto darkest =
        std::find_if(histogram.begin(), histogram.end(), [](auto count) { return count > 0; });
    if (darkest == histogram.end() || *darkest == total) {
        return change; // one value only: nothing to spread
    }
    std::uint64_t sum = 0;
    for (std::size_t value = 0; value < histogram.size(); ++value) {
        sum += histogram[value];
        const double equalized = sum < *darkest ? 0.0
                                                : 255.0 * static_cast<double>(sum - *darkest) /
                                                      static_cast<double>(total - *darkest);
        change[value] = equalized - static_cast<double>(value);
    }
    return change;
}

} // namespace

PixelArray AutoContrast(const PixelArray& source) {
    const Histogram histogram = LumaHistogram(source);
    return Total(histogram) == 0 ? source : ApplyMap(source, StretchMap(EndsOf(histogram)));
}

PixelArray AutoLevels(const PixelArray& source) {
    const auto [blue, green, red] = ChannelEnds(source);
    return ApplyMaps(source, {StretchMap(blue), StretchMap(green), StretchMap(red)});
}

PixelArray Equalize(const PixelArray& source, double weight) {
    RequireRange("equalize", weight, 0, 100);
    if (weight == 0) {
        return source;
    }
    const std::array<double, 256> change = EqualizingChange(LumaHistogram(source));
    std::array<std::int32_t, 256> added{};
    std::transform(change.begin(), change.end(), added.begin(),
                   [=](double value) { return static_cast<std::int32_t>(std::lround(weight * value)); });
    if (added == std::array<std::int32_t, 256>{}) {
        return source;
    }
    const SectionedChange sectioned(added);
    return MapRows(source, [&](const std::uint8_t* in, std::uint8_t* out, int width) {
        MapKernels::Best().AddByLumaRow(in, out, width, sectioned);
    });
}

} // namespace pictorel::engine
