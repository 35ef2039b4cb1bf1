// The mean of several samples a pixel, on premultiplied colour where there is alpha.
#pragma once

#include "imaging/engine/Rounding.h"
#include "imaging/engine/WarpSampler.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace pictorel::engine {

// Of a run of pixels. Loops go over whole runs, which the compiler turns into vectors.
class SampleMean {
  public:
    explicit SampleMean(bool hasAlpha) : hasAlpha_(hasAlpha) {}

    void Add(const std::uint8_t* pixels) {
        ++samples_;
        if (!hasAlpha_) {
            for (int i = 0; i < kNumbers; ++i) {
                sums_[i] += pixels[i];
            }
            return;
        }
        for (int i = 0; i < kNumbers; ++i) {
            sums_[i] += pixels[i] * (i % 4 == 3 ? 1 : pixels[i | 3]);
        }
    }

    void Write(int count, std::uint8_t* to) const {
        const float perSample = 1.0F / static_cast<float>(samples_);
        if (!hasAlpha_) {
            for (int i = 0; i < 4 * count; ++i) {
                to[i] = RoundToByte(static_cast<float>(sums_[i]) * perSample);
            }
            return;
        }
        for (int i = 0; i < 4 * count; ++i) {
            const float perAlpha = 1.0F / static_cast<float>(std::max(sums_[i | 3], 1));
            to[i] = RoundToByte(static_cast<float>(sums_[i]) * (i % 4 == 3 ? perSample : perAlpha));
        }
    }

  private:
    static constexpr int kNumbers = 4 * kRunLength;

    bool hasAlpha_;
    int samples_ = 0;
    std::array<std::int32_t, kNumbers> sums_{};
};

} // namespace pictorel::engine
