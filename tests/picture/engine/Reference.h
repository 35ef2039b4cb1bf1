// The plain definitions of the neighbourhood operations in double precision: slow, and easy to believe.
#pragma once

#include "support/Pictures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

namespace pictorel::test {

// Premultiplied: colour times alpha / 255; the whole range is 0..255.
using Sample = std::array<double, 4>;

// The picture continued by its edge pixels.
inline Sample SampleAt(const PixelArray& picture, int x, int y) {
    const Pixel p =
        At(picture, std::clamp(x, 0, picture.Width() - 1), std::clamp(y, 0, picture.Height() - 1));
    const double alpha = picture.HasAlpha() ? p[3] / 255.0 : 1.0;
    return {p[0] * alpha, p[1] * alpha, p[2] * alpha, double(p[3])};
}

inline void Accumulate(Sample& sum, const Sample& sample, double weight) {
    for (std::size_t k = 0; k < 4; ++k) {
        sum[k] += sample[k] * weight;
    }
}

inline Sample Bilinear(const PixelArray& picture, double x, double y) {
    const int left = static_cast<int>(std::floor(x));
    const int top = static_cast<int>(std::floor(y));
    const double right = x - left;
    const double bottom = y - top;
    Sample sum{};
    Accumulate(sum, SampleAt(picture, left, top), (1 - right) * (1 - bottom));
    Accumulate(sum, SampleAt(picture, left + 1, top), right * (1 - bottom));
    Accumulate(sum, SampleAt(picture, left, top + 1), (1 - right) * bottom);
    Accumulate(sum, SampleAt(picture, left + 1, top + 1), right * bottom);
    return sum;
}

// How far the result is from exact(x, y) at worst and on average, over colour (weighted by alpha, since the
// colour of what is nearly invisible is nearly arbitrary) and alpha.
struct Deviation {
    double worst = 0;
    double mean = 0;
};

inline Deviation Compare(const PixelArray& result, const std::function<Sample(int, int)>& exact) {
    Deviation deviation;
    for (int y = 0; y < result.Height(); ++y) {
        for (int x = 0; x < result.Width(); ++x) {
            const Sample expected = exact(x, y);
            const Pixel pixel = At(result, x, y);
            const double alpha = result.HasAlpha() ? expected[3] / 255 : 1.0;
            for (std::size_t k = 0; k < 4; ++k) {
                const double difference = std::abs((k < 3 ? pixel[k] * alpha : pixel[k]) - expected[k]);
                deviation.worst = std::max(deviation.worst, difference);
                deviation.mean += difference / (4.0 * result.Width() * result.Height());
            }
        }
    }
    return deviation;
}

} // namespace pictorel::test
