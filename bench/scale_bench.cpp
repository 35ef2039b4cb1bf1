// How the engine's work grows with the picture: nanoseconds per pixel from a preview's copy to 200
// megapixels. Usage: scale_bench [LARGEST_MEGAPIXELS].
#include "imaging/engine/Filters.h"
#include "imaging/engine/Geometry.h"
#include "imaging/engine/HistogramOperations.h"
#include "imaging/engine/PointOperations.h"
#include "imaging/engine/Resample.h"
#include "imaging/engine/Stylize.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace {

using namespace pictorel;
using namespace pictorel::engine;

struct Operation {
    const char* name;
    PixelArray (*run)(const PixelArray&);
};

constexpr Operation kOperations[] = {
    {"contrast", [](const PixelArray& p) { return Contrast(p, 1.3); }},
    {"hue", [](const PixelArray& p) { return Hue(p, 40); }},
    {"auto levels", [](const PixelArray& p) { return AutoLevels(p); }},
    {"Gaussian 3", [](const PixelArray& p) { return GaussianBlur(p, 3); }},
    {"maximum 3 x 3", [](const PixelArray& p) { return MaximumFilter(p, 1); }},
    {"noise", [](const PixelArray& p) { return Noise(p, 8); }},
    {"rotate 30", [](const PixelArray& p) { return Rotate(p, 30, 0); }},
    {"quarter turn", [](const PixelArray& p) { return QuarterTurnRight(p); }},
    {"resize to half", [](const PixelArray& p) { return Resize(p, p.Width() / 2, p.Height() / 2); }},
};

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
double PerPixel(const Operation& operation, const PixelArray& picture, const Size& size) {
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
    std::array<std::array<double, kSizes.size()>, std::size(kOperations)> times{};
    for (std::size_t s = 0; s < kSizes.size() && kSizes[s].Pixels() <= most; ++s) {
        const PixelArray picture = Made(kSizes[s]);
        for (std::size_t i = 0; i < std::size(kOperations); ++i) {
            times[i][s] = PerPixel(kOperations[i], picture, kSizes[s]);
        }
    }
    std::printf("nanoseconds per pixel\n%-16s", "megapixels");
    for (const Size& size : kSizes) {
        std::printf(" %8.2f", size.Pixels() / 1e6);
    }
    for (std::size_t i = 0; i < std::size(kOperations); ++i) {
        std::printf("\n%-16s", kOperations[i].name);
        for (const double time : times[i]) {
            time == 0 ? std::printf("        -") : std::printf(" %8.2f", time);
        }
    }
    std::printf("\n");
    return 0;
}
