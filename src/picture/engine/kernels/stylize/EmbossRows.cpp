// The loops of embossing as plain loops, see EmbossRows.h.
#include "picture/engine/kernels/stylize/EmbossRows.h"

#include "picture/engine/kernels/base/WholePixel.h"

#include <algorithm>

namespace pictorel::engine::scalar {
namespace {

WideLuma SumOfFour(const FourRows& rows, const FourWeights& weights, int i) {
    int sum = 0;
    for (std::size_t k = 0; k < rows.size(); ++k) {
        sum += (rows[k][i] * weights[k] + (1 << 14)) >> 15;
    }
    return static_cast<WideLuma>(sum);
}

} // namespace

void WideLumaRow(const std::uint8_t* in, int width, WideLuma* luma) {
    for (int x = 0; x < width; ++x) {
        const std::uint8_t* const pixel = in + 4 * x;
        const int sum = kWideLumaBlue * pixel[0] + kWideLumaGreen * pixel[1] + kWideLumaRed * pixel[2];
        luma[x] = static_cast<WideLuma>((sum + 128) >> 8);
    }
}

void SumFour(const FourRows& rows, const FourWeights& weights, int count, WideLuma* sums) {
    for (int i = 0; i < count; ++i) {
        sums[i] = SumOfFour(rows, weights, i);
    }
}

void MakeRelief(const ReliefRow& row) {
    const float perLevel = row.gain / kWideLumaUnit;
    for (int x = 0; x < row.width; ++x) {
        const int slope =
            SumOfFour(row.light, row.lightWeights, x) - SumOfFour(row.shade, row.shadeWeights, x);
        const float grey = std::clamp(128.5F + perLevel * static_cast<float>(slope), 0.0F, 255.5F);
        const std::uint32_t alpha = LoadPixel(row.in + 4 * x) & 0xFF000000U;
        StorePixel(row.out + 4 * x, static_cast<std::uint32_t>(grey) * 0x010101U | alpha);
    }
}

} // namespace pictorel::engine::scalar
