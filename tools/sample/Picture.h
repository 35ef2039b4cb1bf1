// The canvas that scenes paint on: linear-light colours in rows, addressed by pixel or by place.
#pragma once

#include "Vec3.h"

#include <cstddef>
#include <vector>

namespace pictorel::sample {

// Places on a picture are given in picture heights from its top left corner, so that a scene looks the same
// at every size: x runs from 0 to Aspect(), y from 0 to 1.
class Picture {
  public:
    Picture(int width, int height)
        : width_(width),
          height_(height),
          pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}

    int Width() const { return width_; }
    int Height() const { return height_; }
    float Aspect() const { return static_cast<float>(width_) / static_cast<float>(height_); }

    Vec3* Row(int y) {
        return pixels_.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width_);
    }
    const Vec3* Row(int y) const {
        return pixels_.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width_);
    }

    // The colour at a place, interpolated; places outside take the nearest edge.
    Vec3 Sample(float x, float y) const {
        const float column =
            std::clamp(x * static_cast<float>(height_) - 0.5F, 0.0F, static_cast<float>(width_ - 1));
        const float row =
            std::clamp(y * static_cast<float>(height_) - 0.5F, 0.0F, static_cast<float>(height_ - 1));
        const int left = static_cast<int>(column);
        const int top = static_cast<int>(row);
        const int right = std::min(left + 1, width_ - 1);
        const int bottom = std::min(top + 1, height_ - 1);
        const float s = column - static_cast<float>(left);
        const float t = row - static_cast<float>(top);
        return Mix(Mix(Row(top)[left], Row(top)[right], s), Mix(Row(bottom)[left], Row(bottom)[right], s), t);
    }

  private:
    int width_;
    int height_;
    std::vector<Vec3> pixels_;
};

} // namespace pictorel::sample
