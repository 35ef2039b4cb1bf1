// Turns linear light into the bytes of a photograph.
#include "Finish.h"

#include "Noise.h"
#include "Parallel.h"

#include <array>
#include <cstdint>
#include <fstream>
#include <stdexcept>
#include <string>

namespace pictorel::sample {

namespace {

constexpr int kToneSteps = 4096;

// Shoulder and toe of a film: a rational curve through 0 that tends to 1 (K. Narkowicz, "ACES filmic tone
// mapping curve").
float FilmCurve(float light) {
    return Saturate(light * (2.51F * light + 0.03F) / (light * (2.43F * light + 0.59F) + 0.14F));
}

// The sRGB transfer function, IEC 61966-2-1, to 0..255.
float Encode(float light) {
    const float value = light <= 0.0031308F ? 12.92F * light : 1.055F * std::pow(light, 1.0F / 2.4F) - 0.055F;
    return 255.0F * value;
}

// Light to 8-bit value by table. The table runs over the square root of the light, so that shadows keep their
// steps.
class ToneTable {
  public:
    explicit ToneTable(const Look& look) {
        for (int i = 0; i <= kToneSteps; ++i) {
            const float root = static_cast<float>(i) / kToneSteps;
            const float light = root * root * kBrightest;
            steps_[static_cast<std::size_t>(i)] = Encode(look.filmCurve ? FilmCurve(light) : Saturate(light));
        }
    }

    float operator()(float light) const {
        const float place = std::sqrt(std::clamp(light / kBrightest, 0.0F, 1.0F)) * kToneSteps;
        const int step = std::min(static_cast<int>(place), kToneSteps - 1);
        const auto index = static_cast<std::size_t>(step);
        return Mix(steps_[index], steps_[index + 1], place - static_cast<float>(step));
    }

  private:
    static constexpr float kBrightest = 8.0F;
    std::array<float, kToneSteps + 1> steps_{};
};

// A lens never shows a pixel-sharp edge: the centre keeps two thirds, the rest is shared with the neighbours.
Vec3 ThroughLens(const Picture& picture, int x, int y) {
    const int left = std::max(x - 1, 0);
    const int right = std::min(x + 1, picture.Width() - 1);
    const Vec3* above = picture.Row(std::max(y - 1, 0));
    const Vec3* row = picture.Row(y);
    const Vec3* below = picture.Row(std::min(y + 1, picture.Height() - 1));
    const Vec3 edges = above[x] + below[x] + row[left] + row[right];
    const Vec3 corners = above[left] + above[right] + below[left] + below[right];
    return row[x] * 0.5F + edges * 0.09F + corners * 0.035F;
}

// Sum of two even spreads of one hash: a triangle about 0 with standard deviation 1.
float Grain(int x, int y, std::uint32_t seed) {
    const std::uint32_t h = Hash(x, y, seed);
    const float sum = static_cast<float>(h & 0xFFFFU) + static_cast<float>(h >> 16);
    return (sum / 65535.0F - 1.0F) * 2.449F;
}

std::uint8_t ToByte(float value) {
    return static_cast<std::uint8_t>(std::lrintf(std::clamp(value, 0.0F, 255.0F)));
}

} // namespace

void WritePicture(const Picture& picture, const Look& look, const std::filesystem::path& path) {
    const int width = picture.Width();
    const int height = picture.Height();
    const ToneTable tone(look);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3);
    ForEachIndex(height, [&](int y) {
        std::uint8_t* out = bytes.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width) * 3;
        const float v = 2.0F * (static_cast<float>(y) + 0.5F) / static_cast<float>(height) - 1.0F;
        for (int x = 0; x < width; ++x) {
            const float u = 2.0F * (static_cast<float>(x) + 0.5F) / static_cast<float>(width) - 1.0F;
            const float corner = 0.5F * (u * u + v * v);
            const float exposure = look.exposure * (1.0F - look.vignette * corner * corner);
            const Vec3 light = (look.filmCurve ? ThroughLens(picture, x, y) : picture.Row(y)[x]) * exposure;
            const float common = look.grain * Grain(x, y, 11);
            *out++ = ToByte(tone(light.x) + common + 0.4F * look.grain * Grain(x, y, 12));
            *out++ = ToByte(tone(light.y) + common);
            *out++ = ToByte(tone(light.z) + common + 0.5F * look.grain * Grain(x, y, 13));
        }
    });

    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << "P6\n" << width << ' ' << height << "\n255\n";
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

} // namespace pictorel::sample
