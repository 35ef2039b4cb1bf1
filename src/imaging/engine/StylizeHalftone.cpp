// Halftone: the picture as black dots on white, see Stylize.h.
//
// The screen is the function s(u, v) = (cos 2 pi u + cos 2 pi v) / 2, u and v counted in cells along the two
// diagonals. A pixel's points where s is above a threshold are black. The threshold is chosen so that the
// black part of a cell is exactly the wanted area: small round dots in light tones, a chequerboard at one
// half, round white holes in dark tones.
#include "imaging/ForEachBand.h"
#include "imaging/engine/ParameterRange.h"
#include "imaging/engine/Stylize.h"
#include "imaging/engine/StylizeLuma.h"
#include "imaging/engine/WholePixel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace pictorel::engine {
namespace {

constexpr double kPi = std::numbers::pi;

// The part of a cell where cos 2 pi u + cos 2 pi v is above `threshold` (-2..2): the mean over u of the part
// of v's turn on which cos 2 pi v is above threshold - cos 2 pi u.
double AreaAbove(double threshold) {
    constexpr int kSteps = 1024;
    double sum = 0;
    for (int i = 0; i < kSteps; ++i) {
        const double needed = threshold - std::cos(kPi * (i + 0.5) / kSteps);
        sum += std::acos(std::clamp(needed, -1.0, 1.0)) / kPi;
    }
    return sum / kSteps;
}

// Areas of evenly spaced thresholds from -2 to 2, falling from 1 to 0.
constexpr int kThresholdSteps = 256;

std::array<double, kThresholdSteps + 1> MakeAreaTable() {
    std::array<double, kThresholdSteps + 1> areas{};
    for (int i = 0; i <= kThresholdSteps; ++i) {
        areas[static_cast<std::size_t>(i)] = AreaAbove(4.0 * i / kThresholdSteps - 2);
    }
    return areas;
}

// The threshold above which lies `area` of a cell; nothing and everything are met exactly.
float ThresholdFor(double area) {
    static const auto areas = MakeAreaTable();
    if (area <= 0) {
        return std::numeric_limits<float>::infinity();
    }
    if (area >= 1) {
        return -std::numeric_limits<float>::infinity();
    }
    const auto above = std::lower_bound(areas.begin(), areas.end(), area, std::greater<>());
    const auto i = static_cast<double>(above - areas.begin());
    const double share = (area - *above) / (*(above - 1) - *above);
    return static_cast<float>(4 * (i - share) / kThresholdSteps - 2);
}

// Black is counted at 4 x 4 points of every pixel.
constexpr int kPoints = 4;
constexpr int kPointsPerPixel = kPoints * kPoints;

// The two cosines of the screen at all points of a picture. x + y and x - y of points are multiples of a
// quarter pixel, so that two tables serve for all.
class Screen {
  public:
    Screen(int width, int height, double cell)
        : sums_(MakeCosines(1, kPoints * (width + height), cell)),
          differences_(
              MakeCosines(-kPoints * (height - 1) - (kPoints - 1), kPoints * (width + height), cell)),
          differenceOrigin_(kPoints * (height - 1) + (kPoints - 1)) {}

    // Cosines at x + y = (4 (x + y) + i + j + 1) / 4 and x - y = (4 (x - y) + i - j) / 4 for the point in
    // column i and row j of the pixel: element i + j of the one, i - j of the other.
    const float* Sums(int x, int y) const { return sums_.data() + kPoints * (x + y); }
    const float* Differences(int x, int y) const {
        return differences_.data() + differenceOrigin_ + kPoints * (x - y);
    }

  private:
    static std::vector<float> MakeCosines(int first, int count, double cell) {
        std::vector<float> cosines(static_cast<std::size_t>(count));
        const double anglePerPoint = 2 * kPi / (kPoints * std::numbers::sqrt2 * cell);
        for (int i = 0; i < count; ++i) {
            cosines[static_cast<std::size_t>(i)] = static_cast<float>(std::cos((first + i) * anglePerPoint));
        }
        return cosines;
    }

    std::vector<float> sums_;
    std::vector<float> differences_;
    std::ptrdiff_t differenceOrigin_;
};

// Points of a pixel that are black.
int BlackPoints(const float* sums, const float* differences, float threshold) {
    int black = 0;
    for (int j = 0; j < kPoints; ++j) {
        for (int i = 0; i < kPoints; ++i) {
            black += sums[i + j] + differences[i - j] > threshold ? 1 : 0;
        }
    }
    return black;
}

// For every luma: the threshold and the even tone that dots too small to be seen amount to.
struct Tone {
    float threshold;
    float even; // 0 black .. 255 white
};

std::array<Tone, 256> MakeTones(double gain) {
    std::array<Tone, 256> tones{};
    for (std::size_t luma = 0; luma < tones.size(); ++luma) {
        const double area = std::clamp((1 - static_cast<double>(luma) / 255) * gain, 0.0, 1.0);
        tones[luma] = {ThresholdFor(area), static_cast<float>(255 * (1 - area))};
    }
    return tones;
}

// How much of the screen a copy shows whose pixels are as large as its cells: nothing up to 0.75 pixels a
// cell, where every pixel holds more than a whole cell, and all from 1.5.
double VisiblePart(double cell) {
    constexpr double kInvisible = 0.75;
    constexpr double kVisible = 1.5;
    return std::clamp((cell - kInvisible) / (kVisible - kInvisible), 0.0, 1.0);
}

} // namespace

PixelArray Halftone(const PixelArray& source, int size, double gain) {
    RequireWithin(size, 0, kMaximumSide, "The size of the halftone dots");
    RequireWithin(gain, 0, 1000, "The gain of the halftone");
    constexpr int kPixelsPerSize = 4;
    const double cell = std::max(size, 1) * kPixelsPerSize * source.Reduction();
    const auto visible = static_cast<float>(VisiblePart(cell));
    const Screen screen(source.Width(), source.Height(), std::max(cell, 0.5));
    const std::array<Tone, 256> tones = MakeTones(gain);
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    ForEachBand(result.Height(), 2 * result.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            const std::uint8_t* const from = source.Row(y);
            std::uint8_t* const to = rows + y * result.Stride();
            const float* const sums = screen.Sums(0, y);
            const float* const differences = screen.Differences(0, y);
            for (int x = 0; x < result.Width(); ++x) {
                const std::uint32_t pixel = LoadPixel(from + 4 * x);
                const Tone& tone = tones[static_cast<std::size_t>(LumaOf(pixel) + 0.5F)];
                const int black = BlackPoints(sums + kPoints * x, differences + kPoints * x, tone.threshold);
                const float dots = 255.0F * static_cast<float>(kPointsPerPixel - black) / kPointsPerPixel;
                const float grey = tone.even + visible * (dots - tone.even);
                StorePixel(to + 4 * x,
                           static_cast<std::uint32_t>(grey + 0.5F) * 0x010101U | (pixel & 0xFF000000U));
            }
        }
    });
    return result;
}

} // namespace pictorel::engine
