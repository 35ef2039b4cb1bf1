// Counts of the values in a picture, see Histogram.h.
#include "picture/engine/kernels/point/Histogram.h"

#include "picture/ForEachBand.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/point/PointKernels.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <mutex>
#include <vector>

namespace pictorel::engine {
namespace {

// Neighbours are often alike, and adding to the counter that was just written waits for that write: pixels
// take turns with several sets of counters.
constexpr std::size_t kSets = 4;
using BandCounts = std::array<std::array<std::uint32_t, 256>, kSets>; // a band has fewer than 2^32 pixels

// Byte `k` of a number.
constexpr std::size_t Byte(std::uint64_t number, unsigned k) {
    return static_cast<std::size_t>(number >> (8 * k) & 0xFF);
}

// Counts the luma of rows. What eight pixels have is loaded at once.
class LumaCounter {
  public:
    static constexpr std::size_t kHistograms = 1;
    using Counts = std::array<BandCounts, kHistograms>;

    explicit LumaCounter(int width) : luma_(static_cast<std::size_t>(width + 15) / 16 * 16) {}

    void Begin(const std::uint8_t* row, int width) { PointKernels::Best().LumaRow(row, luma_.data(), width); }

    void CountOne(std::size_t x, Counts& counts) const { ++counts[0][x % kSets][luma_[x]]; }

    static constexpr std::size_t kAtOnce = sizeof(std::uint64_t);
    void CountSome(std::size_t x, Counts& counts) const {
        std::uint64_t eight;
        std::memcpy(&eight, luma_.data() + x, sizeof eight);
        for (unsigned k = 0; k < kAtOnce; ++k) {
            ++counts[0][k % kSets][Byte(eight, k)];
        }
    }

  private:
    std::vector<std::uint8_t> luma_; // of the row
};

// Counts the components of rows, two pixels at once.
class ChannelCounter {
  public:
    static constexpr std::size_t kHistograms = 3;
    using Counts = std::array<BandCounts, kHistograms>;

    explicit ChannelCounter(int /*width*/) {}

    void Begin(const std::uint8_t* row, int /*width*/) { row_ = row; }

    void CountOne(std::size_t x, Counts& counts) const {
        for (std::size_t k = 0; k < kHistograms; ++k) {
            ++counts[k][x % kSets][row_[x * kComponents + k]];
        }
    }

    static constexpr std::size_t kAtOnce = 4;
    void CountSome(std::size_t x, Counts& counts) const {
        for (unsigned pair = 0; pair < 2; ++pair) {
            std::uint64_t two;
            std::memcpy(&two, row_ + (x + 2 * pair) * kComponents, sizeof two);
            for (unsigned k = 0; k < kHistograms; ++k) {
                ++counts[k][2 * pair][Byte(two, k)];
                ++counts[k][2 * pair + 1][Byte(two, k + kComponents)];
            }
        }
    }

  private:
    const std::uint8_t* row_ = nullptr;
};

template <class Counter>
void CountRow(const Counter& counter, const std::uint8_t* row, std::size_t width, bool hasAlpha,
              typename Counter::Counts& counts) {
    std::size_t x = 0;
    if (!hasAlpha) {
        for (; x + Counter::kAtOnce <= width; x += Counter::kAtOnce) {
            counter.CountSome(x, counts);
        }
    }
    for (; x < width; ++x) {
        if (!hasAlpha || row[x * kComponents + 3] != 0) {
            counter.CountOne(x, counts);
        }
    }
}

template <class Counter>
std::array<Histogram, Counter::kHistograms> CountAll(const PixelArray& source, int rowStep) {
    std::array<Histogram, Counter::kHistograms> totals{};
    std::mutex mutex;
    ForEachBand(source.Height() / rowStep, source.RowBytes(), [&](int first, int end) {
        typename Counter::Counts counts{};
        Counter counter(source.Width());
        for (int y = first; y < end; ++y) {
            const std::uint8_t* const row = source.Row(y * rowStep);
            counter.Begin(row, source.Width());
            CountRow(counter, row, static_cast<std::size_t>(source.Width()), source.HasAlpha(), counts);
        }
        const std::lock_guard lock(mutex);
        for (std::size_t h = 0; h < counts.size(); ++h) {
            for (const auto& set : counts[h]) {
                std::transform(set.begin(), set.end(), totals[h].begin(), totals[h].begin(), std::plus<>());
            }
        }
    });
    return totals;
}

} // namespace

Histogram LumaHistogram(const PixelArray& source) {
    return CountAll<LumaCounter>(source, 1)[0];
}

ColourHistograms ChannelHistograms(const PixelArray& source, int rowStep) {
    const auto [blue, green, red] = CountAll<ChannelCounter>(source, rowStep);
    return {blue, green, red};
}

} // namespace pictorel::engine
