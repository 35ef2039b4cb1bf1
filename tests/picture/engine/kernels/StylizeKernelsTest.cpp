// The kernels of the room stylize: noise, diffusion, embossing.
#include "picture/engine/kernels/KernelsTest.h"
#include "picture/engine/kernels/stylize/DiffuseKernels.h"
#include "picture/engine/kernels/stylize/EmbossKernels.h"
#include "picture/engine/kernels/stylize/NoiseKernels.h"

namespace pictorel::engine {
namespace {

using test::Alpha;
using test::Random;

TEST_F(KernelsTest, Noise) {
    for (const int width : {1, 15, 64, 131}) {
        const std::string what = "width " + std::to_string(width);
        for (const int rows : {1, 6, 25}) {
            ExpectSame<NoiseKernels>("sums, " + what, [&](const NoiseKernels& kernels) {
                std::vector<std::int32_t> sums(std::size_t{256} * kNoiseSumNumbers);
                kernels.SumNoise(40, 40 + rows, 9, width, sums.data());
                sums.resize(static_cast<std::size_t>(width) * kNoiseSumNumbers);
                return sums;
            });
        }
        const PixelArray source = Random({width, 1}, Alpha::Random, 13);
        for (const int percent : {1, 37, 100}) {
            const auto amplitude = static_cast<std::int16_t>(percent * 255 * kNoiseUnit / 100);
            ExpectSame<NoiseKernels>("added, " + what, [&](const NoiseKernels& kernels) {
                PixelArray result(width, 1);
                kernels.AddNoise({source.Row(0), result.WritableRows(), width, 5, 77, amplitude, width > 64});
                return result;
            });
        }
    }
}

TEST_F(KernelsTest, Diffusion) {
    for (const int width : {1, 15, 64, 131}) {
        for (const int radius : {1, 2, 20, 32767}) {
            for (const std::uint32_t lastMoved : {0U, 0x80000000U, 0xFFFFFFFFU}) {
                const Scatter scatter{width - 1, 50, 144, radius, lastMoved, 3, 8};
                ExpectSame<DiffuseKernels>(
                    "width " + std::to_string(width) + ", radius " + std::to_string(radius),
                    [&](const DiffuseKernels& kernels) {
                        std::vector<std::int32_t> sources(static_cast<std::size_t>(width) + 16);
                        kernels.ChooseSources(scatter, 49, sources.data());
                        sources.resize(static_cast<std::size_t>(width));
                        return sources;
                    });
            }
        }
    }
}

TEST_F(KernelsTest, Embossing) {
    constexpr std::size_t kRoom = 2064;
    constexpr FourWeights kWeights{-2300, 28000, 9000, -1932};
    for (const int width : {1, 15, 64, 131, 2049}) {
        const PixelArray source = Random({width, 3}, Alpha::Random);
        const std::string what = "width " + std::to_string(width);
        std::array<std::vector<EmbossLuma>, 4> lumas;
        for (std::size_t y = 0; y < 3; ++y) {
            const auto luma = [&](const EmbossKernels& kernels) {
                std::vector<EmbossLuma> row(kRoom);
                kernels.EmbossLumaRow(source.Row(static_cast<int>(y)), width, row.data());
                row.resize(static_cast<std::size_t>(width));
                return row;
            };
            ExpectSame<EmbossKernels>("luma, " + what, luma);
            lumas[y] = luma(EmbossKernels::Plain());
            lumas[y].resize(kRoom);
        }
        const FourRows rows{lumas[0].data(), lumas[1].data(), lumas[2].data(), lumas[0].data()};
        const auto sums = [&](const EmbossKernels& kernels) {
            std::vector<EmbossLuma> row(kRoom);
            kernels.SumFour(rows, kWeights, width, row.data());
            row.resize(static_cast<std::size_t>(width));
            return row;
        };
        ExpectSame<EmbossKernels>("sums, " + what, sums);
        lumas[3] = sums(EmbossKernels::Plain());
        lumas[3].resize(kRoom);
        for (const float gain : {1.0F, -0.37F, 40.0F}) {
            ExpectSame<EmbossKernels>("relief, " + what, [&](const EmbossKernels& kernels) {
                PixelArray result(width, 1);
                kernels.MakeRelief({rows,
                                    {lumas[3].data(), lumas[2].data(), lumas[1].data(), lumas[0].data()},
                                    kWeights,
                                    {-2000, 21000, 15000, -1232},
                                    gain,
                                    source.Row(1),
                                    result.WritableRows(),
                                    width,
                                    width > 64});
                return result;
            });
        }
    }
}

} // namespace
} // namespace pictorel::engine
