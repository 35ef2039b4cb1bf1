// Emboss: a grey relief lit from one side, see Stylize.h.
#include "picture/engine/Stylize.h"
#include "picture/engine/kernels/base/FixedPoint.h"
#include "picture/engine/kernels/base/Parameters.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/base/Streaming.h"
#include "picture/engine/kernels/blur/WideRows.h"
#include "picture/engine/kernels/stylize/EmbossKernels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>
#include <vector>

namespace pictorel::engine {
namespace {

constexpr int kTaps = 4;

// Numbers of a row with room for whole vectors.
std::size_t RoomFor(int width) {
    return (static_cast<std::size_t>(width) / kVectorPixels + 2) * kVectorPixels;
}

// Luma of the rows of a strip of columns, beyond the picture that of its edge pixels. The last few rows made
// are kept.
class LumaRing {
  public:
    LumaRing(const PixelArray& source, int left, int columns)
        : source_(source),
          left_(left),
          columns_(columns),
          numbers_(kRows, -1),
          rows_(kRows * RoomFor(columns)) {}

    const EmbossLuma* Row(int y) {
        const int inside = std::clamp(y, 0, source_.Height() - 1);
        const std::size_t slot = static_cast<std::size_t>(inside) % kRows;
        EmbossLuma* const row = rows_.data() + slot * RoomFor(columns_);
        if (numbers_[slot] != inside) {
            numbers_[slot] = inside;
            Fill(source_.Row(inside), row);
        }
        return row;
    }

    int Left() const { return left_; }

  private:
    static constexpr std::size_t kRows = 32; // the highest relief that people make spans fewer

    void Fill(const std::uint8_t* from, EmbossLuma* row) const {
        const int first = std::clamp(-left_, 0, columns_); // the first that lies in the picture
        const int end = std::clamp(source_.Width() - left_, first, columns_);
        if (first == end) {
            const int edge = left_ < 0 ? 0 : source_.Width() - 1;
            EmbossKernels::Plain().EmbossLumaRow(from + static_cast<std::ptrdiff_t>(edge) * kComponents, 1,
                                                 row);
            std::fill_n(row + 1, columns_ - 1, row[0]);
            return;
        }
        const std::ptrdiff_t firstByte = static_cast<std::ptrdiff_t>(first + left_) * kComponents;
        EmbossKernels::Best().EmbossLumaRow(from + firstByte, end - first, row + first);
        std::fill_n(row, first, row[first]);
        std::fill_n(row + end, columns_ - end, row[end - 1]);
    }

    const PixelArray& source_;
    int left_;
    int columns_;
    std::vector<int> numbers_; // of the rows in the slots
    std::vector<EmbossLuma> rows_;
};

// Four weights for luma a fraction `t` of a pixel behind the second of four: cubic convolution (Keys 1981,
// a = -0.5).
FourWeights CubicAt(double t) {
    const auto fixed = [](double weight) {
        return static_cast<std::int16_t>(std::min(std::lround(weight * kFixedUnit), kFixedUnit - 1L));
    };
    return {fixed(((-0.5 * t + 1) * t - 0.5) * t), fixed((1.5 * t - 2.5) * t * t + 1),
            fixed(((-1.5 * t + 2) * t + 0.5) * t), fixed((0.5 * t - 0.5) * t * t)};
}

// A shift in one direction: whole pixels to the first of four neighbours, and what they weigh.
struct Shift {
    explicit Shift(double pixels)
        : first(static_cast<int>(std::floor(pixels)) - 1), weights(CubicAt(pixels - std::floor(pixels))) {}

    int first;
    FourWeights weights;
};

// Luma of the rows of a strip at (x + shiftX, y + shiftY), but for the sums down the columns. Each row needs
// four source rows, three of which the next row needs again: four are kept.
class ShiftedRows {
  public:
    ShiftedRows(LumaRing& luma, int left, int width, const Shift& across, const Shift& down)
        : luma_(luma), left_(left), width_(width), across_(across), down_(down) {
        for (Line& line : lines_) {
            line.luma.resize(RoomFor(width));
        }
    }

    FourRows At(int y) {
        const int first = y + down_.first;
        return {Row(first), Row(first + 1), Row(first + 2), Row(first + 3)};
    }

    const FourWeights& Weights() const { return down_.weights; }

  private:
    struct Line {
        std::optional<int> row;
        std::vector<EmbossLuma> luma;
    };

    const EmbossLuma* Row(int row) {
        Line& line = lines_[static_cast<std::size_t>(row & (kTaps - 1))];
        if (line.row != row) {
            line.row = row;
            const EmbossLuma* const luma = luma_.Row(row) + (left_ + across_.first - luma_.Left());
            EmbossKernels::Best().SumFour({luma, luma + 1, luma + 2, luma + 3}, across_.weights, width_,
                                          line.luma.data());
        }
        return line.luma.data();
    }

    LumaRing& luma_;
    int left_;
    int width_;
    Shift across_;
    Shift down_;
    std::array<Line, kTaps> lines_;
};

} // namespace

PixelArray Emboss(const PixelArray& source, double degrees, double height, double amount) {
    RequireRange("the angle of the light", degrees, -360e6, 360e6);
    RequireRange("the height of the relief", height, 0, kMaximumSide);
    RequireRange("the strength of the relief", amount, -1000, 1000);
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const double angle = degrees * (std::numbers::pi / 180);
    const double half = height * source.Reduction() / 2;
    const double shiftX = half * std::cos(angle);
    const double shiftY = -half * std::sin(angle);
    const auto gain = static_cast<float>(amount);
    const Shift lightAcross(shiftX);
    const Shift lightDown(shiftY);
    const Shift shadeAcross(-shiftX);
    const Shift shadeDown(-shiftY);
    // In whole vectors of pixels, so that reading them stays within a row.
    const int reach = (static_cast<int>(std::ceil(std::abs(shiftX))) + kTaps + kVectorPixels - 1) /
                      kVectorPixels * kVectorPixels;
    const bool streams = IsStreamed(result);
    constexpr int kStripWidth = 8192; // mostly whole rows, which the processor fetches ahead
    const int rowsAhead = std::max(lightDown.first, shadeDown.first) + kTaps + kRowsAhead;
    ForEachStrip(BoundsOf(source), kStripWidth, [&](const TileArea& area) {
        LumaRing luma(source, area.left - reach, area.width + 2 * reach);
        ShiftedRows light(luma, area.left, area.width, lightAcross, lightDown);
        ShiftedRows shade(luma, area.left, area.width, shadeAcross, shadeDown);
        const std::ptrdiff_t offset = static_cast<std::ptrdiff_t>(area.left) * kComponents;
        for (int y = area.top; y < area.top + area.height; ++y) {
            EmbossKernels::Best().MakeRelief(
                {light.At(y), shade.At(y), light.Weights(), shade.Weights(), gain, source.Row(y) + offset,
                 rows + y * result.Stride() + offset, area.width, streams,
                 source.Row(std::clamp(y + rowsAhead, 0, source.Height() - 1)) + offset});
        }
    });
    return result;
}

} // namespace pictorel::engine
