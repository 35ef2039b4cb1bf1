// How the engine's work grows with the picture: nanoseconds per pixel from a preview's copy to 200
// megapixels. Usage: scale_bench [LARGEST_MEGAPIXELS].
#include "EngineOperations.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace {

using namespace pictorel;
using namespace pictorel::bench;

struct Size {
    int width;
    int height;

    double Pixels() const { return static_cast<double>(width) * height; }
};

constexpr std::array<Size, 6> kSizes{
    {{250, 167}, {1250, 800}, {3000, 2000}, {6000, 4000}, {12000, 8333}, {17320, 11547}}};

PixelArray Made(const Size& size) {
    PixelArray picture(size.width, size.height);
    std::uint8_t* const rows = picture.WritableRows();
    for (int y = 0; y < size.height; ++y) {
        std::uint8_t* const row = rows + y * picture.Stride();
        for (int x = 0; x < size.width; ++x) {
            const auto grain = static_cast<unsigned>(x * 40503 + y * 9973) >> 5 & 15;
            row[4 * x] = static_cast<std::uint8_t>(x / 9 + grain);
            row[4 * x + 1] = static_cast<std::uint8_t>(y / 7 + grain);
            row[4 * x + 2] = static_cast<std::uint8_t>((x + y) / 11 + grain);
            row[4 * x + 3] = 255;
        }
    }
    return picture;
}

// The shortest run, in nanoseconds per pixel. Small pictures are done often: what is asked is not whether the
// first one has to wait for threads to wake.
double PerPixel(const EngineOperation& operation, const PixelArray& picture, const Size& size) {
    const int runs = std::clamp(static_cast<int>(2e8 / size.Pixels()), 3, 400);
    double best = std::numeric_limits<double>::max();
    PixelArray result;
    for (int i = 0; i < runs; ++i) {
        result = {}; // gives its memory back for the next one
        const auto start = std::chrono::steady_clock::now();
        result = operation.run(picture);
        const std::chrono::duration<double, std::nano> took = std::chrono::steady_clock::now() - start;
        best = std::min(best, took.count());
    }
    return best / size.Pixels();
}

} // namespace

int main(int argc, char** argv) {
    const double most = (argc > 1 ? std::atof(argv[1]) : 200.0) * 1e6;
    std::array<std::array<double, kSizes.size()>, std::size(kEngineOperations)> times{};
    for (std::size_t s = 0; s < kSizes.size() && kSizes[s].Pixels() <= most; ++s) {
        const PixelArray picture = Made(kSizes[s]);
        for (std::size_t i = 0; i < std::size(kEngineOperations); ++i) {
            times[i][s] = PerPixel(kEngineOperations[i], picture, kSizes[s]);
        }
    }
    std::printf("nanoseconds per pixel\n%-16s", "megapixels");
    for (const Size& size : kSizes) {
        std::printf(" %8.2f", size.Pixels() / 1e6);
    }
    for (std::size_t i = 0; i < std::size(kEngineOperations); ++i) {
        std::printf("\n%-16s", kEngineOperations[i].name);
        for (const double time : times[i]) {
            time == 0 ? std::printf("        -") : std::printf(" %8.2f", time);
        }
    }
    std::printf("\n");
    return 0;
}
