// The loops of embossing as plain loops, see EmbossKernels.h.
#include "picture/engine/kernels/base/FixedPoint.h"
#include "picture/engine/kernels/base/WholePixel.h"
#include "picture/engine/kernels/stylize/EmbossKernels.h"

#include <algorithm>

namespace pictorel::engine {
namespace {

EmbossLuma SumOfFour(const FourRows& rows, const FourWeights& weights, int i) {
    int sum = 0;
    for (std::size_t k = 0; k < rows.size(); ++k) {
        sum += FixedProduct(rows[k][i], weights[k]);
    }
    return static_cast<EmbossLuma>(sum);
}

void EmbossLumaRow(const std::uint8_t* in, int width, EmbossLuma* luma) {
    for (int x = 0; x < width; ++x) {
        const std::uint8_t* const pixel = in + 4 * x;
        const int sum = kEmbossLumaBlue * pixel[0] + kEmbossLumaGreen * pixel[1] + kEmbossLumaRed * pixel[2];
        luma[x] = static_cast<EmbossLuma>((sum + (1 << (kEmbossWeightBits - 1))) >> kEmbossWeightBits);
    }
}

void SumFour(const FourRows& rows, const FourWeights& weights, int count, EmbossLuma* sums) {
    for (int i = 0; i < count; ++i) {
        sums[i] = SumOfFour(rows, weights, i);
    }
}

void MakeRelief(const ReliefRow& row) {
    const float perLevel = row.gain / kEmbossLumaUnit;
    for (int x = 0; x < row.width; ++x) {
        const int slope =
            SumOfFour(row.light, row.lightWeights, x) - SumOfFour(row.shade, row.shadeWeights, x);
        const float grey = std::clamp(128.5F + perLevel * static_cast<float>(slope), 0.0F, 255.5F);
        const std::uint32_t alpha = LoadPixel(row.in + 4 * x) & kOpaque;
        StorePixel(row.out + 4 * x, static_cast<std::uint32_t>(grey) * 0x010101U | alpha);
    }
}

constexpr EmbossKernels kPlain{
    .EmbossLumaRow = EmbossLumaRow,
    .SumFour = SumFour,
    .MakeRelief = MakeRelief,
};

} // namespace

const EmbossKernels& EmbossKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
