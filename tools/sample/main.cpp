// make_sample WIDTH HEIGHT OUT.ppm [--scene landscape|portrait|text]: renders a sample picture as binary PPM.
#include "Finish.h"
#include "Scenes.h"

#include <array>
#include <charconv>
#include <cstring>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

using pictorel::sample::Look;
using pictorel::sample::Picture;

struct Scene {
    std::string_view name;
    Picture (*paint)(int width, int height);
    Look look;
};

constexpr std::array kScenes = {
    Scene{"landscape",
          pictorel::sample::PaintLandscape,
          {.exposure = 0.80F, .vignette = 0.38F, .grain = 2.0F, .filmCurve = true}},
    Scene{"portrait",
          pictorel::sample::PaintStillLife,
          {.exposure = 0.66F, .vignette = 0.45F, .grain = 2.0F, .filmCurve = true}},
    Scene{"text",
          pictorel::sample::PaintPoster,
          {.exposure = 1.0F, .vignette = 0.0F, .grain = 0.0F, .filmCurve = false}},
};

constexpr int kLongestSide = 32767;
constexpr long long kMostPixels = 400'000'000; // 12 bytes each while a picture is painted

int ParseSide(std::string_view text) {
    int side = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), side);
    if (error != std::errc{} || end != text.data() + text.size() || side < 1 || side > kLongestSide) {
        throw std::invalid_argument("a side is a whole number of pixels from 1 to 32767, not '" +
                                    std::string(text) + "'");
    }
    return side;
}

const Scene& FindScene(std::string_view name) {
    for (const Scene& scene : kScenes) {
        if (scene.name == name) {
            return scene;
        }
    }
    throw std::invalid_argument("there is no scene '" + std::string(name) + "'");
}

} // namespace

int main(int argc, char** argv) {
    if ((argc != 4 && argc != 6) || (argc == 6 && std::strcmp(argv[4], "--scene") != 0)) {
        std::cerr << "usage: make_sample WIDTH HEIGHT OUT.ppm [--scene landscape|portrait|text]\n";
        return 2;
    }
    try {
        const Scene& scene = argc == 6 ? FindScene(argv[5]) : kScenes.front();
        const int width = ParseSide(argv[1]);
        const int height = ParseSide(argv[2]);
        if (static_cast<long long>(width) * height > kMostPixels) {
            throw std::invalid_argument("a picture of more than 400 megapixels is too large");
        }
        WritePicture(scene.paint(width, height), scene.look, argv[3]);
    } catch (const std::exception& error) {
        std::cerr << "make_sample: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
