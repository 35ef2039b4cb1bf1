// Our resize beside a reference in double precision and, where `resize_peers` has measured them, other
// resamplers. Usage: resize_bench PICTURE.ppm WIDTH HEIGHT [FOLDER]. FOLDER gets the picture as source.bgra;
// where it holds results.tsv (name, milliseconds, file of WIDTH x HEIGHT BGRA pixels), each line is judged
// and compared.
#include "measure/StructuralSimilarity.h"
#include "picture/PixelArray.h"
#include "picture/engine/Resample.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <numbers>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using pictorel::PixelArray;

constexpr int kRounds = 9;
constexpr int kColours = 3;

PixelArray ReadPpm(const char* fileName) {
    std::ifstream file(fileName, std::ios::binary);
    std::string magic;
    int width = 0;
    int height = 0;
    int largest = 0;
    file >> magic >> width >> height >> largest;
    file.get();
    if (!file || magic != "P6" || largest != 255) {
        throw std::runtime_error("not an 8-bit P6 file");
    }
    PixelArray picture(width, height);
    std::uint8_t* row = picture.WritableRows();
    for (int y = 0; y < height; ++y, row += picture.Stride()) {
        for (int x = 0; x < width; ++x) {
            for (const int component : {2, 1, 0}) {
                row[4 * x + component] = static_cast<std::uint8_t>(file.get());
            }
            row[4 * x + 3] = 255;
        }
    }
    return picture;
}

PixelArray ReadRaw(const std::string& fileName, int width, int height) {
    std::ifstream file(fileName, std::ios::binary);
    PixelArray picture(width, height);
    std::uint8_t* row = picture.WritableRows();
    for (int y = 0; y < height; ++y, row += picture.Stride()) {
        file.read(reinterpret_cast<char*>(row), std::streamsize{4} * width);
    }
    if (!file) {
        throw std::runtime_error(fileName + " is too short");
    }
    return picture;
}

void WriteRaw(const PixelArray& picture, const std::string& fileName) {
    std::ofstream file(fileName, std::ios::binary);
    for (int y = 0; y < picture.Height(); ++y) {
        file.write(reinterpret_cast<const char*>(picture.Row(y)), std::streamsize{4} * picture.Width());
    }
}

// Lanczos-3 by its definition, widened when reducing, the weights inside the picture made to add up to 1.
// Shares no code with the engine.
struct ExactPicture {
    int width;
    int height;
    std::vector<double> colours; // blue, green, red
};

double Sinc(double x) {
    const double angle = std::numbers::pi * x;
    return x == 0 ? 1 : std::sin(angle) / angle;
}

// Lines of `length` samples, `stride` apart, of pixels `step` apart.
void ResampleLine(const double* from, int fromLength, std::ptrdiff_t fromStep, double* to, int toLength,
                  std::ptrdiff_t toStep) {
    const double ratio = static_cast<double>(fromLength) / toLength;
    const double scale = std::max(1.0, ratio);
    for (int i = 0; i < toLength; ++i) {
        const double centre = (i + 0.5) * ratio - 0.5;
        double sums[kColours] = {};
        double total = 0;
        for (int k = std::max(0, static_cast<int>(std::ceil(centre - 3 * scale)));
             k <= std::min(fromLength - 1, static_cast<int>(std::floor(centre + 3 * scale))); ++k) {
            const double x = (k - centre) / scale;
            const double weight = std::abs(x) < 3 ? Sinc(x) * Sinc(x / 3) : 0;
            total += weight;
            for (int c = 0; c < kColours; ++c) {
                sums[c] += weight * from[k * fromStep + c];
            }
        }
        for (int c = 0; c < kColours; ++c) {
            to[i * toStep + c] = sums[c] / total;
        }
    }
}

ExactPicture Reference(const PixelArray& source, int width, int height) {
    std::vector<double> across(static_cast<std::size_t>(width) * source.Height() * kColours);
    std::vector<double> line(static_cast<std::size_t>(source.Width()) * kColours);
    for (int y = 0; y < source.Height(); ++y) {
        for (int x = 0; x < source.Width(); ++x) {
            for (int c = 0; c < kColours; ++c) {
                line[static_cast<std::size_t>(x) * kColours + c] = source.Row(y)[4 * x + c];
            }
        }
        ResampleLine(line.data(), source.Width(), kColours,
                     across.data() + static_cast<std::ptrdiff_t>(y) * width * kColours, width, kColours);
    }
    ExactPicture result{width, height, {}};
    result.colours.resize(static_cast<std::size_t>(width) * height * kColours);
    const std::ptrdiff_t row = std::ptrdiff_t{width} * kColours;
    for (int x = 0; x < width; ++x) {
        ResampleLine(across.data() + std::ptrdiff_t{x} * kColours, source.Height(), row,
                     result.colours.data() + std::ptrdiff_t{x} * kColours, height, row);
    }
    return result;
}

PixelArray Rounded(const ExactPicture& exact) {
    PixelArray picture(exact.width, exact.height);
    std::uint8_t* row = picture.WritableRows();
    const double* from = exact.colours.data();
    for (int y = 0; y < exact.height; ++y, row += picture.Stride()) {
        for (int x = 0; x < exact.width; ++x, from += kColours) {
            for (int c = 0; c < kColours; ++c) {
                row[4 * x + c] = static_cast<std::uint8_t>(std::lround(std::clamp(from[c], 0.0, 255.0)));
            }
            row[4 * x + 3] = 255;
        }
    }
    return picture;
}

// Decibels of what rounding to bytes and the method's own faults add; 58.9 is rounding alone.
double SignalToNoise(const PixelArray& picture, const ExactPicture& exact) {
    double sum = 0;
    const double* from = exact.colours.data();
    for (int y = 0; y < exact.height; ++y) {
        for (int x = 0; x < exact.width; ++x, from += kColours) {
            for (int c = 0; c < kColours; ++c) {
                const double fault = picture.Row(y)[4 * x + c] - std::clamp(from[c], 0.0, 255.0);
                sum += fault * fault;
            }
        }
    }
    return 10 * std::log10(255.0 * 255.0 * static_cast<double>(exact.colours.size()) / sum);
}

double LeastMilliseconds(const PixelArray& source, int width, int height, PixelArray& result) {
    double least = 1e9;
    for (int round = 0; round < kRounds; ++round) {
        const auto start = std::chrono::steady_clock::now();
        result = pictorel::engine::Resize(source, width, height);
        const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
        least = std::min(least, time.count());
    }
    return least;
}

void Run(const char* picture, int width, int height, const std::string& folder) {
    const PixelArray source = ReadPpm(picture);
    if (!folder.empty()) {
        WriteRaw(source, folder + "/source.bgra");
    }
    PixelArray ours;
    const double time = LeastMilliseconds(source, width, height, ours);
    const ExactPicture exact = Reference(source, width, height);
    const PixelArray rounded = Rounded(exact);
    const auto line = [&](const std::string& name, double milliseconds, const PixelArray& result) {
        std::printf("  %-28s %8.1f ms   ours takes %5.2f of it   SSIM %.6f   %5.1f dB\n", name.c_str(),
                    milliseconds, time / milliseconds,
                    pictorel::measure::StructuralSimilarity(result, rounded), SignalToNoise(result, exact));
    };
    std::printf("resize %d x %d -> %d x %d, least of %d rounds, beside Lanczos-3 in double precision\n",
                source.Width(), source.Height(), width, height, kRounds);
    line("ours", time, ours);
    std::ifstream results(folder + "/results.tsv");
    for (std::string text; !folder.empty() && std::getline(results, text);) {
        std::istringstream fields(text);
        std::string name;
        std::string file;
        double milliseconds = 0;
        if (fields >> name >> milliseconds >> file) {
            line(name, milliseconds, ReadRaw(file, width, height));
        }
    }
}

} // namespace

int main(int count, char* words[]) {
    if (count < 4) {
        std::fprintf(stderr, "resize_bench PICTURE.ppm WIDTH HEIGHT [FOLDER]\n");
        return 2;
    }
    try {
        Run(words[1], std::atoi(words[2]), std::atoi(words[3]), count > 4 ? words[4] : "");
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "resize_bench: %s\n", error.what());
        return 1;
    }
}
