// Halftone: the picture as black dots on white, see Stylize.h.
//
// The screen is the function s(u, v) = (cos 2 pi u + cos 2 pi v) / 2, u and v counted in cells along the two
// diagonals. A pixel's points where s is above a threshold are black. The threshold is chosen so that the
// black part of a cell is exactly the wanted area: small round dots in light tones, a chequerboard at one
// half, round white holes in dark tones.
#include "picture/ForEachBand.h"
#include "picture/engine/Resample.h"
#include "picture/engine/Stylize.h"
#include "picture/engine/kernels/base/Luma.h"
#include "picture/engine/kernels/base/Parameters.h"
#include "picture/engine/kernels/base/WholePixel.h"

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

constexpr std::array<std::uint8_t, kPointsPerPixel + 1> MakeGreys() {
    std::array<std::uint8_t, kPointsPerPixel + 1> greys{};
    for (int black = 0; black <= kPointsPerPixel; ++black) {
        greys[static_cast<std::size_t>(black)] = static_cast<std::uint8_t>(
            (255 * (kPointsPerPixel - black) + kPointsPerPixel / 2) / kPointsPerPixel);
    }
    return greys;
}
constexpr auto kGreyOfBlackPoints = MakeGreys();

// For every luma: the threshold and the even tone that dots too small to be seen amount to.
struct Tone {
    float threshold;
    std::uint8_t even;
};

std::array<Tone, 256> MakeTones(double gain) {
    std::array<Tone, 256> tones{};
    for (std::size_t luma = 0; luma < tones.size(); ++luma) {
        const double area = std::clamp((1 - static_cast<double>(luma) / 255) * gain, 0.0, 1.0);
        tones[luma] = {ThresholdFor(area), static_cast<std::uint8_t>(std::lround(255 * (1 - area)))};
    }
    return tones;
}

// greyOfRow(y)(x, tone) is the grey of a pixel.
template <class GreyOfRow>
PixelArray Toned(const PixelArray& source, const std::array<Tone, 256>& tones, GreyOfRow greyOfRow) {
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    ForEachBand(result.Height(), 2 * result.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            const auto grey = greyOfRow(y);
            const std::uint8_t* const from = source.Row(y);
            std::uint8_t* const to = rows + y * result.Stride();
            for (int x = 0; x < result.Width(); ++x) {
                const Tone& tone = tones[static_cast<std::size_t>(Luma(from + 4 * x))];
                const std::uint32_t alpha = LoadPixel(from + 4 * x) & kOpaque;
                StorePixel(to + 4 * x, grey(x, tone) * 0x010101U | alpha);
            }
        }
    });
    return result;
}

PixelArray Dots(const PixelArray& source, double cell, double gain) {
    const Screen screen(source.Width(), source.Height(), cell);
    const std::array<Tone, 256> tones = MakeTones(gain);
    return Toned(source, tones, [&](int y) {
        return [sums = screen.Sums(0, y), differences = screen.Differences(0, y)](int x, const Tone& tone) {
            const int black = BlackPoints(sums + kPoints * x, differences + kPoints * x, tone.threshold);
            return kGreyOfBlackPoints[static_cast<std::size_t>(black)];
        };
    });
}

// A reduced copy shows the screen reduced. Dots finer than its pixels can show are the even tone they amount
// to; coarser ones are made large enough to be drawn well, and reduced like the picture.
PixelArray ReducedDots(const PixelArray& source, double cell, double gain) {
    constexpr double kFinestCell = 1.2; // its waves are cut off by the reduction
    constexpr double kDrawnCell = 4;    // the smallest of the picture itself
    if (cell >= kDrawnCell) {
        return Dots(source, cell, gain);
    }
    if (cell < kFinestCell) {
        return Toned(source, MakeTones(gain),
                     [](int /*y*/) { return [](int /*x*/, const Tone& tone) { return tone.even; }; });
    }
    const int times = static_cast<int>(std::ceil(kDrawnCell / cell));
    const PixelArray enlarged = Resize(source, source.Width() * times, source.Height() * times);
    return Resize(Dots(enlarged, cell * times, gain), source.Width(), source.Height());
}

} // namespace

PixelArray Halftone(const PixelArray& source, double cell, double gain) {
    constexpr double kLargestCell = 1e6; // far more than a picture
    RequireRange("the size of the halftone's cells", cell, 1, kLargestCell);
    RequireRange("the gain of the halftone", gain, 0, 1000);
    return source.Reduction() == 1 ? Dots(source, cell, gain)
                                   : ReducedDots(source, cell * source.Reduction(), gain);
}

} // namespace pictorel::engine
