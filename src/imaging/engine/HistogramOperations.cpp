// Operations that first measure the whole picture, see HistogramOperations.h.
#include "imaging/engine/HistogramOperations.h"

#include "imaging/engine/ByteMap.h"
#include "imaging/engine/Histogram.h"
#include "imaging/engine/Parameters.h"
#include "imaging/engine/PointRows.h"
#include "imaging/engine/RowLoop.h"

#include <algorithm>
#include <cmath>

namespace pictorel::engine {
namespace {

constexpr std::uint64_t kClipDivisor = 200; // 0.5 %

// How many values from the beginning of the range hold together no more than the clipped share.
template <class Iterator>
int ClippedValues(Iterator value, std::uint64_t total) {
    int clipped = 0;
    for (std::uint64_t sum = *value; sum * kClipDivisor <= total && clipped < 255; sum += *++value) {
        ++clipped;
    }
    return clipped;
}

// The straight line that leaves at most 0.5 % of the counted pixels below 0 and as many above 255. A picture
// of one value (or of none) has nothing to stretch and stays.
ByteMap StretchMap(const Histogram& histogram) {
    const std::uint64_t total = Total(histogram);
    if (total == 0) {
        return IdentityMap();
    }
    const int lowest = ClippedValues(histogram.begin(), total);
    const int highest = 255 - ClippedValues(histogram.rbegin(), total);
    if (lowest >= highest) {
        return IdentityMap();
    }
    return MakeByteMap([=](int c) { return (c - lowest) * 255.0 / (highest - lowest); });
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
    return ApplyMap(source, StretchMap(LumaHistogram(source)));
}

PixelArray AutoLevels(const PixelArray& source) {
    const ColourHistograms histograms = ChannelHistograms(source);
    return ApplyMaps(source,
                     {StretchMap(histograms.blue), StretchMap(histograms.green), StretchMap(histograms.red)});
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
        simd::AddByLumaRow(in, out, width, sectioned);
    });
}

} // namespace pictorel::engine
