// Rows of a picture or plane convolved with a symmetric kernel in both directions.
#pragma once

#include "imaging/engine/Convolution.h"
#include "imaging/engine/WidePlane.h"

#include <cstddef>
#include <vector>

namespace pictorel::engine {

// Rows of a strip of columns, asked for in ascending order.
template <class Source>
class BlurredRows {
  public:
    // The pixels left <= x < left + width.
    BlurredRows(const Source& source, const HalfKernel& kernel, int left, int width)
        : kernel_(kernel),
          radius_(static_cast<int>(kernel.size()) - 1),
          ring_(source, left - radius_, width + 2 * radius_, 2 * radius_ + 1),
          columns_(static_cast<std::size_t>(width + 2 * radius_) * PixelArray::kComponents),
          row_(static_cast<std::size_t>(width) * PixelArray::kComponents),
          down_(static_cast<std::size_t>(2 * radius_ + 1)) {
        for (int k = 0; k <= 2 * radius_; ++k) {
            across_.push_back(columns_.data() + static_cast<std::ptrdiff_t>(k) * PixelArray::kComponents);
        }
    }
    BlurredRows(const BlurredRows&) = delete;
    BlurredRows& operator=(const BlurredRows&) = delete;

    // Valid until the next call.
    const WideComponent* Row(int y) {
        for (std::size_t k = 0; k < down_.size(); ++k) {
            down_[k] = ring_.Row(y - radius_ + static_cast<int>(k));
        }
        Convolve(down_.data(), kernel_, columns_.data(), columns_.size());
        Convolve(across_.data(), kernel_, row_.data(), row_.size());
        return row_.data();
    }

  private:
    const HalfKernel& kernel_;
    int radius_;
    RowRing<Source> ring_;
    WideRow columns_;
    WideRow row_;
    std::vector<const WideComponent*> down_;
    std::vector<const WideComponent*> across_;
};

} // namespace pictorel::engine
