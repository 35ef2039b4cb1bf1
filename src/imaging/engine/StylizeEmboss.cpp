// Emboss: a grey relief lit from one side, see Stylize.h.
#include "imaging/ForEachBand.h"
#include "imaging/engine/Luma.h"
#include "imaging/engine/Parameters.h"
#include "imaging/engine/Rounding.h"
#include "imaging/engine/Stylize.h"
#include "imaging/engine/WholePixel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace pictorel::engine {
namespace {

float LumaOf(const std::uint8_t* pixel) {
    return static_cast<float>(ScaledLuma(pixel)) * (1.0F / kLumaUnit);
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
          down_(CubicAt(shiftY - std::floor(shiftY))) {
        for (LumaLine& line : lines_) {
            line.luma.resize(static_cast<std::size_t>(source.Width()));
        }
        luma_.resize(static_cast<std::size_t>(source.Width()) + kTaps - 1);
    }

    // to[x] = luma at (x + shiftX, y + shiftY), the edge pixels going on beyond the border.
    void Row(int y, std::vector<float>& to) {
        const float* const a = Line(y + rows_);
        const float* const b = Line(y + rows_ + 1);
        const float* const c = Line(y + rows_ + 2);
        const float* const d = Line(y + rows_ + 3);
        for (std::size_t x = 0; x < to.size(); ++x) {
            to[x] = down_[0] * a[x] + down_[1] * b[x] + down_[2] * c[x] + down_[3] * d[x];
        }
    }

  private:
    static constexpr int kTaps = 4;
    using Cubic = std::array<float, kTaps>;

    struct LumaLine {
        int row = -1;
        std::vector<float> luma;
    };

    static Cubic CubicAt(double t) {
        return {static_cast<float>(((-0.5 * t + 1) * t - 0.5) * t),
                static_cast<float>((1.5 * t - 2.5) * t * t + 1),
                static_cast<float>(((-1.5 * t + 2) * t + 0.5) * t),
                static_cast<float>((0.5 * t - 0.5) * t * t)};
    }

    // Luma of a source row, moved across.
    const float* Line(int row) {
        const int inside = std::clamp(row, 0, source_.Height() - 1);
        LumaLine& line = lines_[static_cast<std::size_t>(row & (kTaps - 1))];
        if (line.row != inside) {
            line.row = inside;
            FillLuma(source_.Row(inside));
            const float* const luma = luma_.data();
            for (std::size_t x = 0; x < line.luma.size(); ++x) {
                line.luma[x] = across_[0] * luma[x] + across_[1] * luma[x + 1] + across_[2] * luma[x + 2] +
                               across_[3] * luma[x + 3];
            }
        }
        return line.luma.data();
    }

    // luma_[i] is of the column columns_ + i.
    void FillLuma(const std::uint8_t* from) {
        const int width = source_.Width();
        const int length = width + kTaps - 1;
        const int first = std::clamp(-columns_, 0, length); // the first that lies in the picture
        const int end = std::clamp(width - columns_, first, length);
        float* const to = luma_.data();
        std::fill(to, to + first, LumaOf(from));
        for (int i = first; i < end; ++i) {
            to[i] = LumaOf(from + (i + columns_) * 4);
        }
        std::fill(to + end, to + length, LumaOf(from + (width - 1) * 4));
    }

    const PixelArray& source_;
    int columns_;
    int rows_;
    Cubic across_;
    Cubic down_;
    std::array<LumaLine, kTaps> lines_;
    std::vector<float> luma_;
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
        std::vector<float> light(static_cast<std::size_t>(result.Width()));
        std::vector<float> shade(light.size());
        for (int y = first; y < end; ++y) {
            towards.Row(y, light);
            away.Row(y, shade);
            const std::uint8_t* const from = source.Row(y);
            std::uint8_t* const to = rows + y * result.Stride();
            for (int x = 0; x < result.Width(); ++x) {
                const auto i = static_cast<std::size_t>(x);
                const std::uint32_t grey = RoundToByte(128 + gain * (light[i] - shade[i]));
                const std::uint32_t alpha = LoadPixel(from + 4 * x) & 0xFF000000U;
                StorePixel(to + 4 * x, grey * 0x010101U | alpha);
            }
        }
    });
    return result;
}

} // namespace pictorel::engine
