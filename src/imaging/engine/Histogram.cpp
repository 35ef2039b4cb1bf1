// Counts of the values in a picture, see Histogram.h.
#include "imaging/engine/Histogram.h"

#include "imaging/ForEachBand.h"
#include "imaging/engine/Luma.h"

#include <mutex>

namespace pictorel::engine {
namespace {

// Neighbours are often alike, and adding to the counter that was just written waits for that write: pixels
// take turns with several sets of counters.
constexpr std::size_t kSets = 4;
using BandCounts = std::array<std::array<std::uint32_t, 256>, kSets>; // a band has fewer than 2^32 pixels

template <std::size_t Histograms, class CountPixel>
std::array<Histogram, Histograms> CountAll(const PixelArray& source, const CountPixel& countPixel) {
    std::array<Histogram, Histograms> totals{};
    std::mutex mutex;
    const bool skipInvisible = source.HasAlpha();
    ForEachBand(source.Height(), source.RowBytes(), [&](int first, int end) {
        std::array<BandCounts, Histograms> counts{};
        for (int y = first; y < end; ++y) {
            const std::uint8_t* pixel = source.Row(y);
            for (int x = 0; x < source.Width(); ++x, pixel += PixelArray::kComponents) {
                if (skipInvisible && pixel[3] == 0) {
                    continue;
                }
                countPixel(counts, static_cast<std::size_t>(x) % kSets, pixel);
            }
        }
        const std::lock_guard lock(mutex);
        for (std::size_t h = 0; h < Histograms; ++h) {
            for (const auto& set : counts[h]) {
                for (std::size_t value = 0; value < set.size(); ++value) {
                    totals[h][value] += set[value];
                }
            }
        }
    });
    return totals;
}

} // namespace

Histogram LumaHistogram(const PixelArray& source) {
    return CountAll<1>(source, [](auto& counts, std::size_t set, const std::uint8_t* pixel) {
        ++counts[0][set][static_cast<std::size_t>(Luma(pixel))];
    })[0];
}

ColourHistograms ChannelHistograms(const PixelArray& source) {
    const auto [blue, green, red] =
        CountAll<3>(source, [](auto& counts, std::size_t set, const std::uint8_t* pixel) {
            ++counts[0][set][pixel[0]];
            ++counts[1][set][pixel[1]];
            ++counts[2][set][pixel[2]];
        });
    return {blue, green, red};
}

} // namespace pictorel::engine
