// Where the values of a picture begin and end, see ValueEnds.h. Counting every value of three channels takes
// long; but where the ends are can be guessed from some rows, and it takes few counts to prove that a guess
// is right.
#include "picture/engine/kernels/point/ValueEnds.h"

#include "picture/ForEachBand.h"
#include "picture/engine/kernels/point/EndKernels.h"

#include <algorithm>
#include <mutex>
#include <optional>

namespace pictorel::engine {
namespace {

constexpr std::uint64_t kClipDivisor = 200; // 0.5 %
constexpr std::size_t kChannels = 3;
constexpr int kSampledRow = 16; // one of so many is sampled
constexpr std::int64_t kFewPixels = std::int64_t{1} << 20;

bool IsClipped(std::uint64_t count, std::uint64_t total) {
    return count * kClipDivisor <= total;
}

// How many values from the beginning of the range hold together no more than the clipped share.
template <class Iterator>
int ClippedValues(Iterator value, std::uint64_t total) {
    int clipped = 0;
    for (std::uint64_t sum = *value; IsClipped(sum, total) && clipped < 255; sum += *++value) {
        ++clipped;
    }
    return clipped;
}

std::array<ValueEnds, kChannels> EndsOfAll(const ColourHistograms& histograms) {
    if (Total(histograms.blue) == 0) {
        return {{{0, 255}, {0, 255}, {0, 255}}};
    }
    return {EndsOf(histograms.blue), EndsOf(histograms.green), EndsOf(histograms.red)};
}

// The clipped values at one end of a channel as they were guessed, and limits about the guess.
class Guess {
  public:
    explicit Guess(int clipped) : first_(std::clamp(clipped - 1, 0, 256 - static_cast<int>(kLimitsPerEnd))) {}

    std::uint8_t Limit(std::size_t k) const {
        return static_cast<std::uint8_t>(first_ + static_cast<int>(k));
    }

    // How many values are clipped, given how many pixels of `total` lie below each limit; nothing where the
    // limits do not tell.
    template <class CountBelow>
    std::optional<int> Clipped(const CountBelow& countBelow, std::uint64_t total) const {
        std::size_t clippedLimits = 0;
        while (clippedLimits < kLimitsPerEnd && IsClipped(countBelow(clippedLimits), total)) {
            ++clippedLimits;
        }
        const int clipped = first_ + static_cast<int>(clippedLimits) - 1;
        const bool isProved = clippedLimits > 0 && (clippedLimits < kLimitsPerEnd || clipped == 255);
        return isProved ? std::optional(clipped) : std::nullopt;
    }

  private:
    int first_;
};

EndCounts CountAll(const PixelArray& source, const EndLimits& limits) {
    EndCounts totals{};
    std::mutex mutex;
    ForEachBand(source.Height(), source.RowBytes(), [&](int first, int end) {
        EndCounts counts{};
        for (int y = first; y < end; ++y) {
            EndKernels::Best().CountEnds(source.Row(y), source.Width(), limits, counts);
        }
        const std::lock_guard lock(mutex);
        for (std::size_t k = 0; k < counts.size(); ++k) {
            for (std::size_t c = 0; c < kChannels; ++c) {
                totals[k][c] += counts[k][c];
            }
        }
    });
    return totals;
}

// The ends near those guessed, if they are there.
std::optional<std::array<ValueEnds, kChannels>> EndsNear(const PixelArray& source,
                                                         const std::array<ValueEnds, kChannels>& guessed) {
    EndLimits limits{};
    for (std::size_t c = 0; c < kChannels; ++c) {
        for (std::size_t k = 0; k < kLimitsPerEnd; ++k) {
            limits[k][c] = Guess(guessed[c].lowest).Limit(k);
            limits[k + kLimitsPerEnd][c] = Guess(255 - guessed[c].highest).Limit(k);
        }
    }
    const EndCounts counts = CountAll(source, limits);
    const auto total =
        static_cast<std::uint64_t>(source.Width()) * static_cast<std::uint64_t>(source.Height());
    std::array<ValueEnds, kChannels> ends{};
    for (std::size_t c = 0; c < kChannels; ++c) {
        const auto dark =
            Guess(guessed[c].lowest).Clipped([&](std::size_t k) { return counts[k][c]; }, total);
        const auto bright = Guess(255 - guessed[c].highest)
                                .Clipped([&](std::size_t k) { return counts[k + kLimitsPerEnd][c]; }, total);
        if (!dark || !bright) {
            return std::nullopt;
        }
        ends[c] = {*dark, 255 - *bright};
    }
    return ends;
}

} // namespace

ValueEnds EndsOf(const Histogram& histogram) {
    const std::uint64_t total = Total(histogram);
    return {ClippedValues(histogram.begin(), total), 255 - ClippedValues(histogram.rbegin(), total)};
}

std::array<ValueEnds, kChannels> ChannelEnds(const PixelArray& source) {
    const std::int64_t pixels = std::int64_t{source.Width()} * source.Height();
    if (!source.HasAlpha() && pixels >= kFewPixels && source.Height() >= kSampledRow) {
        if (const auto ends = EndsNear(source, EndsOfAll(ChannelHistograms(source, kSampledRow)))) {
            return *ends;
        }
    }
    return EndsOfAll(ChannelHistograms(source));
}

} // namespace pictorel::engine
