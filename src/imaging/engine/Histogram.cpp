// Counts of the values in a picture, see Histogram.h.
#include "imaging/engine/Histogram.h"

#include "imaging/ForEachBand.h"
#include "imaging/engine/PointRows.h"

#include <mutex>
#include <vector>

namespace pictorel::engine {
namespace {

// Neighbours are often alike, and adding to the counter that was just written waits for that write: pixels
// take turns with several sets of counters.
constexpr std::size_t kSets = 4;
using BandCounts = std::array<std::array<std::uint32_t, 256>, kSets>; // a band has fewer than 2^32 pixels

// Each band makes a counter, which is given each row and then asked to count its visible pixels.
template <std::size_t kHistograms, class MakeCounter>
std::array<Histogram, kHistograms> CountAll(const PixelArray& source, const MakeCounter& makeCounter) {
    std::array<Histogram, kHistograms> totals{};
    std::mutex mutex;
    const bool skipInvisible = source.HasAlpha();
    ForEachBand(source.Height(), source.RowBytes(), [&](int first, int end) {
        std::array<BandCounts, kHistograms> counts{};
        auto counter = makeCounter();
        for (int y = first; y < end; ++y) {
            const std::uint8_t* const row = source.Row(y);
            counter.Begin(row, source.Width());
            for (int x = 0; x < source.Width(); ++x) {
                if (!skipInvisible ||
                    row[static_cast<std::ptrdiff_t>(x) * PixelArray::kComponents + 3] != 0) {
                    counter.Count(counts, static_cast<std::size_t>(x));
                }
            }
        }
        const std::lock_guard lock(mutex);
        for (std::size_t h = 0; h < kHistograms; ++h) {
            for (const auto& set : counts[h]) {
                for (std::size_t value = 0; value < set.size(); ++value) {
                    totals[h][value] += set[value];
                }
            }
        }
    });
    return totals;
}

class LumaCounter {
  public:
    explicit LumaCounter(int width) : luma_(static_cast<std::size_t>(width + 15) / 16 * 16) {}

    void Begin(const std::uint8_t* row, int width) { simd::LumaRow(row, luma_.data(), width); }
    void Count(std::array<BandCounts, 1>& counts, std::size_t x) { ++counts[0][x % kSets][luma_[x]]; }

  private:
    std::vector<std::uint8_t> luma_; // of the row
};

class ChannelCounter {
  public:
    void Begin(const std::uint8_t* row, int) { row_ = row; }
    void Count(std::array<BandCounts, 3>& counts, std::size_t x) {
        const std::uint8_t* const pixel = row_ + x * PixelArray::kComponents;
        ++counts[0][x % kSets][pixel[0]];
        ++counts[1][x % kSets][pixel[1]];
        ++counts[2][x % kSets][pixel[2]];
    }

  private:
    const std::uint8_t* row_ = nullptr;
};

} // namespace

Histogram LumaHistogram(const PixelArray& source) {
    return CountAll<1>(source, [&] { return LumaCounter(source.Width()); })[0];
}

ColourHistograms ChannelHistograms(const PixelArray& source) {
    const auto [blue, green, red] = CountAll<3>(source, [] { return ChannelCounter(); });
    return {blue, green, red};
}

} // namespace pictorel::engine
