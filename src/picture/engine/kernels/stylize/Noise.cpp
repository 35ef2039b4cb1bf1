// Noise, see Stylize.h.
#include "picture/ForEachBand.h"
#include "picture/Limits.h"
#include "picture/engine/Stylize.h"
#include "picture/engine/kernels/base/Parameters.h"
#include "picture/engine/kernels/base/Rounding.h"
#include "picture/engine/kernels/base/Streaming.h"
#include "picture/engine/kernels/stylize/NoiseKernels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace pictorel::engine {
namespace {

// The steps lie symmetrically about 0.
constexpr double NoiseOf(double step, double amplitude) {
    return (2 * step - (kNoiseSteps - 1)) * amplitude / kNoiseSteps;
}

// What the mean of many pixels of value c becomes when each gets its own noise: the mean of the clipped
// values, which is not c near black and white, plus `follows` times the mean of the noise they got.
struct MeanEffect {
    float mean;
    float follows;
};

std::array<MeanEffect, 256> MeanEffects(double amplitude) {
    constexpr int kSamples = 64; // in the middles of as many runs of steps
    constexpr int kStepsEach = kNoiseSteps / kSamples;
    std::array<MeanEffect, 256> effects{};
    for (int c = 0; c < 256; ++c) {
        double sum = 0;
        double product = 0;
        double square = 0;
        for (int i = 0; i < kSamples; ++i) {
            const double noise = NoiseOf(i * kStepsEach + (kStepsEach - 1) / 2.0, amplitude);
            const double clipped = std::clamp(c + noise, 0.0, 255.0);
            sum += clipped;
            product += clipped * noise;
            square += noise * noise;
        }
        effects[static_cast<std::size_t>(c)] = {static_cast<float>(sum / kSamples),
                                                static_cast<float>(product / square)};
    }
    return effects;
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
    ForEachBand(result.Height(), 2 * result.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            NoiseKernels::Best().AddNoise({source.Row(y), rows + y * result.Stride(), result.Width(),
                                           source.LeftInPicture(), source.TopInPicture() + y,
                                           static_cast<std::int16_t>(std::lround(amplitude * kNoiseUnit)),
                                           IsStreamed(result)});
        }
    });
    return result;
}

// The steps of the columns of one block, added up.
std::array<float, 3> BlockSum(const std::int32_t* sums, int columns) {
    constexpr int kColumnsTogether = 64; // their sums stay within 32 bits
    static_assert(std::int64_t{kMaximumSide} * kNoiseSteps * kColumnsTogether <= INT32_MAX + 1LL);
    std::array<float, 3> total{};
    for (int first = 0; first < columns; first += kColumnsTogether) {
        const int count = std::min(kColumnsTogether, columns - first);
        std::array<std::int32_t, kNoiseSumNumbers> part{}; // all four, which is one vector
        for (int i = 0; i < count; ++i, sums += kNoiseSumNumbers) {
            for (std::size_t k = 0; k < part.size(); ++k) {
                part[k] += sums[k];
            }
        }
        for (std::size_t k = 0; k < total.size(); ++k) {
            total[k] += static_cast<float>(part[k]);
        }
    }
    return total;
}

// A row of a reduced copy with the noise whose steps are given as sums of the columns of the picture, of
// `rowCount` rows. Pixel x stands for the columns from firsts[x] up to firsts[x + 1], at least one.
void AddMeanNoiseRow(const std::uint8_t* from, const std::vector<int>& firsts, const std::int32_t* sums,
                     int rowCount, double amplitude, const std::array<MeanEffect, 256>& effects,
                     std::uint8_t* to) {
    const auto origin = static_cast<float>(NoiseOf(0, amplitude));
    const auto perStep = static_cast<float>((NoiseOf(1, amplitude) - NoiseOf(0, amplitude)) / rowCount);
    for (std::size_t x = 0; x + 1 < firsts.size(); ++x, from += 4, to += 4) {
        const int columns = std::max(firsts[x + 1] - firsts[x], 1);
        const auto steps =
            BlockSum(sums + static_cast<std::ptrdiff_t>(firsts[x]) * kNoiseSumNumbers, columns);
        const float perSum = perStep / static_cast<float>(columns);
        for (std::size_t channel = 0; channel < 3; ++channel) {
            const MeanEffect& effect = effects[from[channel]];
            to[channel] = RoundToByte(effect.mean + effect.follows * (origin + steps[channel] * perSum));
        }
        to[3] = from[3];
    }
}

// A reduced copy shows the very noise that its picture will get, averaged over the pixels that each of its
// own stands for: less and less of it is left the more is averaged, but where it lies can be seen.
PixelArray AddMeanNoise(const PixelArray& source, double amplitude) {
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const auto effects = MeanEffects(amplitude);
    const Block block(source.Reduction());
    std::vector<int> firsts;
    for (int x = 0; x <= source.Width(); ++x) {
        firsts.push_back(block.First(x));
    }
    const int width = block.End(source.Width() - 1);
    const int blockRows = block.End(0);
    const auto work = static_cast<std::size_t>(width) * static_cast<std::size_t>(blockRows);
    ForEachBand(result.Height(), work, [&](int first, int end) {
        constexpr std::size_t kRoom = 64;
        std::vector<std::int32_t> sums((static_cast<std::size_t>(width) + kRoom) * kNoiseSumNumbers);
        for (int y = first; y < end; ++y) {
            NoiseKernels::Best().SumNoise(source.TopInPicture() + block.First(y),
                                          source.TopInPicture() + block.End(y), source.LeftInPicture(), width,
                                          sums.data());
            AddMeanNoiseRow(source.Row(y), firsts, sums.data(), block.End(y) - block.First(y), amplitude,
                            effects, rows + y * result.Stride());
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
