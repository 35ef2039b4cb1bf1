// Emboss: a grey relief lit from one side, see Stylize.h.
#include "imaging/ForEachBand.h"
#include "imaging/engine/ParameterRange.h"
#include "imaging/engine/Stylize.h"
#include "imaging/engine/StylizeLuma.h"
#include "imaging/engine/WholePixel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace pictorel::engine {
namespace {

// Luma of the whole picture moved by a fraction of a pixel or more, row by row. Rows are asked for in
// ascending order and each needs two source rows, one of which the next row needs again: two are kept.
class ShiftedLuma {
  public:
    ShiftedLuma(const PixelArray& source, double shiftX, double shiftY)
        : source_(source),
          columns_(static_cast<int>(std::floor(shiftX))),
          rows_(static_cast<int>(std::floor(shiftY))),
          columnShare_(static_cast<float>(shiftX - columns_)),
          rowShare_(static_cast<float>(shiftY - rows_)) {
        for (auto& line : lines_) {
            line.luma.resize(static_cast<std::size_t>(source.Width()) + 1);
        }
    }

    // to[x] = luma at (x + shiftX, y + shiftY), bilinear, the edge pixels going on beyond the border.
    void Row(int y, std::vector<float>& to) {
        const float* const upper = Line(y + rows_);
        const float* const lower = Line(y + rows_ + 1);
        for (int x = 0; x < source_.Width(); ++x) {
            const float left = upper[x] + rowShare_ * (lower[x] - upper[x]);
            const float right = upper[x + 1] + rowShare_ * (lower[x + 1] - upper[x + 1]);
            to[static_cast<std::size_t>(x)] = left + columnShare_ * (right - left);
        }
    }

  private:
    struct LumaLine {
        int row = -1;
        std::vector<float> luma; // of the columns from columns_ on, one more than the picture has
    };

    const float* Line(int row) {
        const int inside = std::clamp(row, 0, source_.Height() - 1);
        LumaLine& line = lines_[static_cast<std::size_t>(row & 1)];
        if (line.row != inside) {
            Fill(line, inside);
        }
        return line.luma.data();
    }

    void Fill(LumaLine& line, int row) const {
        const std::uint8_t* const from = source_.Row(row);
        const int width = source_.Width();
        // The columns of the line that lie inside the picture; before and after them its edges go on.
        const int first = std::clamp(-columns_, 0, width + 1);
        const int end = std::clamp(width - columns_, 0, width + 1);
        float* const to = line.luma.data();
        std::fill(to, to + first, LumaOf(LoadPixel(from)));
        for (int x = first; x < end; ++x) {
            to[x] = LumaOf(LoadPixel(from + (x + columns_) * 4));
        }
        std::fill(to + std::max(first, end), to + width + 1, LumaOf(LoadPixel(from + (width - 1) * 4)));
        line.row = row;
    }

    const PixelArray& source_;
    int columns_;
    int rows_;
    float columnShare_;
    float rowShare_;
    std::array<LumaLine, 2> lines_;
};

} // namespace

PixelArray Emboss(const PixelArray& source, double degrees, int height, double amount) {
    RequireFinite(degrees, "The angle of the light");
    RequireWithin(height, 0, kMaximumSide, "The height of the relief");
    RequireFinite(amount, "The strength of the relief");
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
                const float relief = std::clamp(128 + gain * (light[i] - shade[i]), 0.0F, 255.0F);
                const auto grey = static_cast<std::uint32_t>(static_cast<std::int32_t>(relief + 0.5F));
                const std::uint32_t alpha = LoadPixel(from + 4 * x) & 0xFF000000U;
                StorePixel(to + 4 * x, grey * 0x010101U | alpha);
            }
        }
    });
    return result;
}

} // namespace pictorel::engine
