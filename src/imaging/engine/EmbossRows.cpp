// The loops of embossing as plain loops, see EmbossRows.h.
#include "imaging/engine/EmbossRows.h"

#include "imaging/engine/Luma.h"
#include "imaging/engine/Rounding.h"
#include "imaging/engine/WholePixel.h"

namespace pictorel::engine::scalar {

void WideLumaRow(const std::uint8_t* in, int width, WideLuma* luma) {
    constexpr float kScale = static_cast<float>(kWideLumaUnit) / kLumaUnit;
    for (int x = 0; x < width; ++x) {
        luma[x] = static_cast<WideLuma>(static_cast<float>(ScaledLuma(in + 4 * x)) * kScale + 0.5F);
    }
}

void SumFour(const FourRows& rows, const FourWeights& weights, int count, WideLuma* sums) {
    for (int i = 0; i < count; ++i) {
        int sum = 0;
        for (std::size_t k = 0; k < rows.size(); ++k) {
            sum += (rows[k][i] * weights[k] + (1 << 14)) >> 15;
        }
        sums[i] = static_cast<WideLuma>(sum);
    }
}

void MakeRelief(const ReliefRow& row) {
    const float perLevel = row.gain / kWideLumaUnit;
    for (int x = 0; x < row.width; ++x) {
        const auto slope = static_cast<float>(row.light[x] - row.shade[x]);
        const std::uint32_t grey = RoundToByte(128.0F + perLevel * slope);
        const std::uint32_t alpha = LoadPixel(row.in + 4 * x) & 0xFF000000U;
        StorePixel(row.out + 4 * x, grey * 0x010101U | alpha);
    }
}

} // namespace pictorel::engine::scalar
