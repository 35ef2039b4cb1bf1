// The kernels of the room resample: rows and columns summed with weights.
#include "picture/engine/Geometry.h"
#include "picture/engine/kernels/KernelsTest.h"
#include "picture/engine/kernels/resample/ResampleKernels.h"
#include "picture/engine/kernels/resample/SeparableKernels.h"

#include <algorithm>

namespace pictorel::engine {
namespace {

using test::Alpha;
using test::Random;
using Shorts = std::vector<std::int16_t>;

struct Lengths {
    int from;
    int to;
};
constexpr Lengths kLengths[] = {{96, 31}, {7, 40}, {33, 33}, {600, 9}, {2, 1}};

std::string Name(Lengths lengths) {
    return std::to_string(lengths.from) + " to " + std::to_string(lengths.to);
}

TEST_F(KernelsTest, FixedPointColumns) {
    constexpr int kRows = 6; // what is taken together and a rest
    for (const Lengths lengths : kLengths) {
        const FixedWeights weights(LanczosWeights(lengths.from, lengths.to), FixedWeights::Use::Columns,
                                   kMostPremultipliedBits);
        const std::ptrdiff_t stride = (lengths.from + 8) * 4;
        const auto sums = RandomNumbers<Shorts>(static_cast<std::size_t>(kRows * stride), -16000, 20000);
        const PairedRows rows{sums.data(), stride, kRows};
        const std::ptrdiff_t length = lengths.to * 4;
        const auto expectSame = [&](auto kernel, auto number) {
            ExpectSame<ResampleKernels>(Name(lengths), [&](const ResampleKernels& kernels) {
                std::vector<decltype(number)> result(static_cast<std::size_t>(kRows * length));
                (kernels.*kernel)(rows, weights, result.data(), length);
                return result;
            });
        };
        expectSame(&ResampleKernels::SumColumnsFixed, std::uint8_t{});
        expectSame(&ResampleKernels::SumColumnsToSums, std::int16_t{});
        expectSame(&ResampleKernels::SumPremultipliedColumns, std::uint8_t{});
    }
}

TEST_F(KernelsTest, FixedPointRows) {
    constexpr int kCount = 96; // components
    constexpr std::size_t kMostRows = 400;
    const PixelArray noise = Random({kCount / 4, 7}, Alpha::Random);
    const auto premultiplied = RandomNumbers<Shorts>(kMostRows * kCount, -32768, 32257);
    const auto sums = RandomNumbers<Shorts>(kMostRows * kCount, -3000, 19000);
    for (const Lengths lengths : kLengths) {
        const FixedWeights weights(LanczosWeights(lengths.from, lengths.to), FixedWeights::Use::Rows,
                                   kMostPremultipliedBits);
        const auto taps = weights[0].weights;
        std::vector<const std::uint8_t*> byteRows;
        std::vector<const std::int16_t*> premultipliedRows;
        std::vector<const std::int16_t*> sumRows;
        for (std::size_t i = 0; i < taps.size(); ++i) {
            byteRows.push_back(noise.Row(static_cast<int>(i % 7)));
            premultipliedRows.push_back(premultiplied.data() + i % kMostRows * kCount);
            sumRows.push_back(sums.data() + i % kMostRows * kCount);
        }
        const std::string what = Name(lengths);
        ExpectSame<ResampleKernels>(what + ", bytes", [&](const ResampleKernels& kernels) {
            Shorts result(kCount);
            kernels.SumRowsFixed(byteRows, taps, weights.Bits(), kCount, result.data());
            return result;
        });
        ExpectSame<ResampleKernels>(what + ", premultiplied", [&](const ResampleKernels& kernels) {
            Shorts result(kCount);
            kernels.SumPremultipliedRows(premultipliedRows, taps, weights.Bits(), kCount, result.data());
            return result;
        });
        for (const bool streams : {false, true}) {
            ExpectSame<ResampleKernels>(what + ", sums", [&](const ResampleKernels& kernels) {
                PixelArray result(kCount / 4, 1);
                kernels.SumSumsFixed(sumRows, taps, weights.Bits(), kCount - 4, streams,
                                     result.WritableRows());
                return Crop(result, {0, 0, kCount / 4 - 1, 1});
            });
        }
    }
    ExpectSame<ResampleKernels>("premultiplying", [&](const ResampleKernels& kernels) {
        Shorts result(kCount);
        kernels.Premultiply(noise.Row(0), kCount, result.data());
        return result;
    });
}

TEST_F(KernelsTest, RowsAndColumnsInSinglePrecision) {
    const std::vector<float> weights{-0.1F, 0.35F, 0.6F, 0.2F, -0.05F};
    for (const int width : {1, 2, 3, 5, 16, 17, 63, 70}) {
        const PixelArray picture = Random({width, 5}, Alpha::Random);
        const AxisWeights columns = LanczosWeights(width, 2 * width / 3 + 1);
        for (const bool isPremultiplied : {false, true}) {
            const auto sumRows = [&](const SeparableKernels& kernels) {
                std::vector<float> sums(picture.RowBytes() + 1, 77.0F); // and one that is not touched
                (isPremultiplied ? kernels.SumRowsPremultiplied : kernels.SumRows)(
                    picture.Row(0), picture.Stride(), weights, width, sums.data());
                return sums;
            };
            const std::string what = std::to_string(width) + " pixels";
            ExpectSame<SeparableKernels>(what, sumRows);
            const std::vector<float> sums = sumRows(SeparableKernels::Plain());
            ExpectSame<SeparableKernels>(what, [&](const SeparableKernels& kernels) {
                std::vector<std::uint8_t> pixels(4 * static_cast<std::size_t>(columns.Length()) + 1, 77);
                (isPremultiplied ? kernels.SumColumnsPremultiplied : kernels.SumColumns)(sums.data(), columns,
                                                                                         pixels.data());
                return pixels;
            });
        }
    }
}

} // namespace
} // namespace pictorel::engine
