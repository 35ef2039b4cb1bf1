// Noise, see Stylize.h.
#include "imaging/ForEachBand.h"
#include "imaging/engine/NoiseSums.h"
#include "imaging/engine/Parameters.h"
#include "imaging/engine/Rounding.h"
#include "imaging/engine/Stylize.h"
#include "imaging/engine/StylizeRandom.h"
#include "imaging/engine/WholePixel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <vector>

namespace pictorel::engine {
namespace {

constexpr std::uint32_t kStepMask = kNoiseSteps - 1;

// The steps lie symmetrically about 0.
constexpr double NoiseOf(double step, double amplitude) {
    return (2 * step - (kNoiseSteps - 1)) * amplitude / kNoiseSteps;
}

std::array<std::int16_t, kNoiseSteps> RoundedNoise(double amplitude) {
    std::array<std::int16_t, kNoiseSteps> noise{};
    for (int step = 0; step < kNoiseSteps; ++step) {
        noise[static_cast<std::size_t>(step)] =
            static_cast<std::int16_t>(std::lround(NoiseOf(step, amplitude)));
    }
    return noise;
}

// What the mean of many pixels of value c becomes when each gets its own noise: the mean of the clipped
// values, which is not c near black and white, plus `follows` times the mean of the noise they got.
struct MeanEffect {
    float mean;
    float follows;
};

std::array<MeanEffect, 256> MeanEffects(double amplitude) {
    std::array<MeanEffect, 256> effects{};
    for (int c = 0; c < 256; ++c) {
        double sum = 0;
        double product = 0;
        double square = 0;
        for (int step = 0; step < kNoiseSteps; ++step) {
            const double noise = NoiseOf(step, amplitude);
            const double clipped = std::clamp(c + noise, 0.0, 255.0);
            sum += clipped;
            product += clipped * noise;
            square += noise * noise;
        }
        effects[static_cast<std::size_t>(c)] = {static_cast<float>(sum / kNoiseSteps),
                                                static_cast<float>(product / square)};
    }
    return effects;
}

void AddNoise(const std::uint8_t* from, int width, int y, const std::array<std::int16_t, kNoiseSteps>& noise,
              std::uint8_t* to) {
    const std::uint32_t randomRow = RandomRow(y);
    const auto noisy = [&](std::uint32_t c, std::uint32_t step) -> std::uint32_t {
        return ClampToByte(static_cast<int>(c) + noise[step]);
    };
    for (int x = 0; x < width; ++x) {
        const std::uint32_t pixel = LoadPixel(from + 4 * x);
        const std::uint32_t random = RandomAt(randomRow, x);
        const std::uint32_t blue = noisy(pixel & 0xFF, random & kStepMask);
        const std::uint32_t green = noisy(pixel >> 8 & 0xFF, random >> 10 & kStepMask);
        const std::uint32_t red = noisy(pixel >> 16 & 0xFF, random >> 20 & kStepMask);
        StorePixel(to + 4 * x, blue | green << 8 | red << 16 | (pixel & 0xFF000000U));
    }
}

// The pixels of the picture that pixel i of a reduced copy stands for, along one axis: from First to End.
class Block {
  public:
    explicit Block(double reduction) : perPixel_(1 / reduction) {}

    int First(int i) const { return static_cast<int>(i * perPixel_); }
    int End(int i) const { return std::max(First(i + 1), First(i) + 1); }

  private:
    double perPixel_;
};

PixelArray AddWholeNoise(const PixelArray& source, double amplitude) {
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const auto noise = RoundedNoise(amplitude);
    ForEachBand(result.Height(), 2 * result.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            AddNoise(source.Row(y), result.Width(), y, noise, rows + y * result.Stride());
        }
    });
    return result;
}

// A reduced copy shows the very noise that its picture will get, averaged over the pixels that each of its
// own stands for: less and less of it is left the more is averaged, but where it lies can be seen.
PixelArray AddMeanNoise(const PixelArray& source, double amplitude) {
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const auto effects = MeanEffects(amplitude);
    const Block block(source.Reduction());
    const int width = block.End(source.Width() - 1);
    const int blockRows = block.End(0);
    const auto work = static_cast<std::size_t>(width) * static_cast<std::size_t>(blockRows);
    ForEachBand(result.Height(), work, [&](int first, int end) {
        constexpr std::size_t kRoom = 64;
        const std::size_t length = static_cast<std::size_t>(width) + kRoom;
        std::vector<std::int32_t> sums(3 * length);
        for (int y = first; y < end; ++y) {
            simd::SumNoise(block.First(y), block.End(y), width,
                           {sums.data(), sums.data() + length, sums.data() + 2 * length});
            const int rowCount = block.End(y) - block.First(y);
            const std::uint8_t* from = source.Row(y);
            std::uint8_t* to = rows + y * result.Stride();
            for (int x = 0; x < result.Width(); ++x, from += 4, to += 4) {
                const int count = (block.End(x) - block.First(x)) * rowCount;
                for (std::size_t channel = 0; channel < 3; ++channel) {
                    const auto column = sums.begin() + static_cast<std::ptrdiff_t>(channel * length);
                    const double steps =
                        std::accumulate(column + block.First(x), column + block.End(x), std::int64_t{0});
                    const MeanEffect& effect = effects[from[channel]];
                    to[channel] = RoundToByte(
                        effect.mean + effect.follows * static_cast<float>(NoiseOf(steps / count, amplitude)));
                }
                to[3] = from[3];
            }
        }
    });
    return result;
}

} // namespace

PixelArray Noise(const PixelArray& source, int percent) {
    RequireRange("noise", percent, 0, 100);
    if (percent == 0) {
        return source;
    }
    const double amplitude = 255.0 * percent / 100;
    return source.Reduction() == 1 ? AddWholeNoise(source, amplitude) : AddMeanNoise(source, amplitude);
}

} // namespace pictorel::engine
