// Noise, see Stylize.h.
#include "imaging/ForEachBand.h"
#include "imaging/engine/Parameters.h"
#include "imaging/engine/Rounding.h"
#include "imaging/engine/Stylize.h"
#include "imaging/engine/StylizeRandom.h"
#include "imaging/engine/WholePixel.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace pictorel::engine {
namespace {

// Of the random bits of a pixel each channel takes ten, as one of 1024 evenly spaced values that are
// symmetrical about 0.
constexpr int kSteps = 1024;
constexpr std::uint32_t kStepMask = kSteps - 1;

constexpr double NoiseOf(int step, double amplitude) {
    return (2 * step - (kSteps - 1)) * amplitude / kSteps;
}

// What a channel of value c becomes under the random number `step` is Value(c, step).
class NoiseTable {
  public:
    // A reduced copy shows the mean of many noisy pixels: it keeps the mean of the noisy picture (which is
    // not c near black and white, where noise is clipped), and of the deviation from it the part `reduction`,
    // since the mean of 1 / reduction^2 independent values deviates that much less.
    NoiseTable(double amplitude, double reduction)
        : amplitude_(static_cast<float>(amplitude)), reduction_(static_cast<float>(reduction)) {
        for (int c = 0; c < 256; ++c) {
            double sum = 0;
            for (int step = 0; step < kSteps; ++step) {
                sum += std::clamp(c + NoiseOf(step, amplitude), 0.0, 255.0);
            }
            means_[static_cast<std::size_t>(c)] = static_cast<float>(sum / kSteps);
        }
        for (int step = 0; step < kSteps; ++step) {
            wholeNoise_[static_cast<std::size_t>(step)] =
                static_cast<std::int16_t>(std::lround(NoiseOf(step, amplitude)));
        }
    }

    std::uint32_t Whole(std::uint32_t c, std::uint32_t step) const {
        return ClampToByte(static_cast<int>(c) + wholeNoise_[step]);
    }

    std::uint32_t Reduced(std::uint32_t c, std::uint32_t step) const {
        const float noise = static_cast<float>(NoiseOf(static_cast<int>(step), 1)) * amplitude_;
        const float noisy = std::clamp(static_cast<float>(c) + noise, 0.0F, 255.0F);
        return RoundToByte(means_[c] + reduction_ * (noisy - means_[c]));
    }

  private:
    float amplitude_;
    float reduction_;
    std::array<float, 256> means_{};
    std::array<std::int16_t, kSteps> wholeNoise_{};
};

template <class Channel>
void AddNoise(const std::uint8_t* from, int width, std::uint32_t randomRow, Channel channel,
              std::uint8_t* to) {
    for (int x = 0; x < width; ++x) {
        const std::uint32_t pixel = LoadPixel(from + 4 * x);
        const std::uint32_t random = RandomAt(randomRow, x);
        const std::uint32_t blue = channel(pixel & 0xFF, random & kStepMask);
        const std::uint32_t green = channel(pixel >> 8 & 0xFF, random >> 10 & kStepMask);
        const std::uint32_t red = channel(pixel >> 16 & 0xFF, random >> 20 & kStepMask);
        StorePixel(to + 4 * x, blue | green << 8 | red << 16 | (pixel & 0xFF000000U));
    }
}

} // namespace

PixelArray Noise(const PixelArray& source, int percent) {
    RequireRange("noise", percent, 0, 100);
    if (percent == 0) {
        return source;
    }
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const NoiseTable table(255.0 * percent / 100, source.Reduction());
    const auto whole = [&](std::uint32_t c, std::uint32_t step) { return table.Whole(c, step); };
    const auto reduced = [&](std::uint32_t c, std::uint32_t step) { return table.Reduced(c, step); };
    ForEachBand(result.Height(), 2 * result.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            std::uint8_t* const to = rows + y * result.Stride();
            if (source.Reduction() == 1) {
                AddNoise(source.Row(y), result.Width(), RandomRow(y), whole, to);
            } else {
                AddNoise(source.Row(y), result.Width(), RandomRow(y), reduced, to);
            }
        }
    });
    return result;
}

} // namespace pictorel::engine
