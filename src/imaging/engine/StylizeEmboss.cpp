// Emboss: a grey relief lit from one side, see Stylize.h.
#include "imaging/ForEachBand.h"
#include "imaging/engine/EmbossRows.h"
#include "imaging/engine/Parameters.h"
#include "imaging/engine/Stylize.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace pictorel::engine {
namespace {

// Components of a row with room for whole vectors.
std::size_t RoomFor(int width) {
    constexpr std::size_t kVector = 16;
    return (static_cast<std::size_t>(width) + kVector - 1) / kVector * kVector;
}

// Luma of the whole picture moved by a fraction of a pixel or more, row by row, with cubic convolution (Keys
// 1981, a = -0.5). Rows are asked for in ascending order and each needs four source rows, three of which the
// next row needs again: four are kept.
class ShiftedLuma {
  public:
    ShiftedLuma(const PixelArray& source, double shiftX, double shiftY)
        : source_(source),
          columns_(static_cast<int>(std::floor(shiftX)) - 1),
          rows_(static_cast<int>(std::floor(shiftY)) - 1),
          across_(CubicAt(shiftX - std::floor(shiftX))),
          down_(CubicAt(shiftY - std::floor(shiftY))),
          moved_(RoomFor(source.Width())),
          luma_(RoomFor(source.Width())),
          continued_(RoomFor(source.Width() + kTaps - 1) + kTaps) {
        for (LumaLine& line : lines_) {
            line.luma.resize(RoomFor(source.Width()));
        }
    }

    // Luma at (x + shiftX, y + shiftY) for all x, the edge pixels going on beyond the border.
    const WideLuma* Row(int y) {
        const FourRows rows{Line(y + rows_), Line(y + rows_ + 1), Line(y + rows_ + 2), Line(y + rows_ + 3)};
        simd::SumFour(rows, down_, source_.Width(), moved_.data());
        return moved_.data();
    }

  private:
    static constexpr int kTaps = 4;

    struct LumaLine {
        int row = -1;
        std::vector<WideLuma> luma;
    };

    static FourWeights CubicAt(double t) {
        const auto fixed = [](double weight) {
            return static_cast<std::int16_t>(std::min(std::lround(weight * 32768), 32767L));
        };
        return {fixed(((-0.5 * t + 1) * t - 0.5) * t), fixed((1.5 * t - 2.5) * t * t + 1),
                fixed(((-1.5 * t + 2) * t + 0.5) * t), fixed((0.5 * t - 0.5) * t * t)};
    }

    // Luma of a source row, moved across.
    const WideLuma* Line(int row) {
        const int inside = std::clamp(row, 0, source_.Height() - 1);
        LumaLine& line = lines_[static_cast<std::size_t>(row & (kTaps - 1))];
        if (line.row != inside) {
            line.row = inside;
            Continue(source_.Row(inside));
            const WideLuma* const luma = continued_.data();
            simd::SumFour({luma, luma + 1, luma + 2, luma + 3}, across_, source_.Width(), line.luma.data());
        }
        return line.luma.data();
    }

    // continued_[i] becomes the luma of the column columns_ + i.
    void Continue(const std::uint8_t* from) {
        const int width = source_.Width();
        const int length = width + kTaps - 1;
        const int first = std::clamp(-columns_, 0, length); // the first that lies in the picture
        const int end = std::clamp(width - columns_, first, length);
        simd::WideLumaRow(from, width, luma_.data());
        const auto to = continued_.begin();
        std::fill(to, to + first, luma_.front());
        std::copy_n(luma_.begin() + std::min(first + columns_, width), end - first, to + first);
        std::fill(to + end, to + length, luma_[static_cast<std::size_t>(width) - 1]);
    }

    const PixelArray& source_;
    int columns_;
    int rows_;
    FourWeights across_;
    FourWeights down_;
    std::array<LumaLine, kTaps> lines_;
    std::vector<WideLuma> moved_;
    std::vector<WideLuma> luma_;
    std::vector<WideLuma> continued_;
};

} // namespace

PixelArray Emboss(const PixelArray& source, double degrees, int height, double amount) {
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
    ForEachBand(result.Height(), 2 * result.RowBytes(), [&](int first, int end) {
        ShiftedLuma towards(source, shiftX, shiftY);
        ShiftedLuma away(source, -shiftX, -shiftY);
        for (int y = first; y < end; ++y) {
            simd::MakeRelief({towards.Row(y), away.Row(y), gain, source.Row(y), rows + y * result.Stride(),
                              result.Width()});
        }
    });
    return result;
}

} // namespace pictorel::engine
