// Rows of pixels of a strip of columns, as the stages of a blur read them.
#pragma once

#include "picture/PixelArray.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/base/Streaming.h"
#include "picture/engine/kernels/blur/WideRows.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace pictorel::engine {

// Calls copy(first, count, row) for the pixels of left <= x < left + width that lie inside `begin` <= x <
// `end` and repeats the outermost ones over the rest; `perPixel` components each.
template <class Component, class Copy>
void LoadContinued(int begin, int end, Columns columns, int perPixel, Component* row, const Copy& copy) {
    const int first = std::clamp(columns.left, begin, end - 1);
    const int last = std::clamp(columns.left + columns.width - 1, begin, end - 1);
    const int before = std::clamp(first - columns.left, 0, columns.width - 1);
    Component* const inside = row + static_cast<std::ptrdiff_t>(before) * perPixel;
    copy(first, last - first + 1, inside);
    for (Component* p = row; p != inside; p += perPixel) {
        std::copy_n(inside, perPixel, p);
    }
    Component* const behind = inside + static_cast<std::ptrdiff_t>(last - first + 1) * perPixel;
    for (Component* p = behind; p < row + static_cast<std::ptrdiff_t>(columns.width) * perPixel;
         p += perPixel) {
        std::copy_n(behind - perPixel, perPixel, p);
    }
}

// Pixels of a strip of a picture, readable in whole vectors.
class PictureRows {
  public:
    // A row stays valid until `kept` others were asked for in ascending order.
    PictureRows(const PixelArray& picture, Columns columns, int kept = 1)
        : picture_(picture),
          columns_(columns),
          liesInside_(columns.left >= 0 && columns.left + columns.width + kVectorPixels <= picture.Width()),
          numbers_(static_cast<std::size_t>(kept), std::numeric_limits<int>::min()),
          continued_(liesInside_ ? 0 : numbers_.size() * ContinuedSize()) {}

    const std::uint8_t* Row(int y) {
        const int inside = std::clamp(y, 0, picture_.Height() - 1);
        FetchRowsAfter(inside);
        return liesInside_ ? At(columns_.left, inside) : Continued(inside);
    }

  private:
    const std::uint8_t* At(int x, int y) const {
        return picture_.Row(y) + static_cast<std::ptrdiff_t>(x) * kComponents;
    }

    std::size_t ContinuedSize() const {
        return static_cast<std::size_t>(columns_.width + kVectorPixels) * kComponents;
    }

    const std::uint8_t* Continued(int y) {
        const std::size_t slot = static_cast<std::size_t>(y) % numbers_.size();
        std::uint8_t* const continued = continued_.data() + slot * ContinuedSize();
        if (numbers_[slot] != y) {
            numbers_[slot] = y;
            LoadContinued(0, picture_.Width(), columns_, kComponents, continued,
                          [&](int first, int count, std::uint8_t* to) {
                              std::copy_n(At(first, y), static_cast<std::ptrdiff_t>(count) * kComponents, to);
                          });
        }
        return continued;
    }

    // The processor follows rows, not strips of them: it is told what comes next. Rows of narrow strips find
    // room in the nearest cache.
    void FetchRowsAfter(int y) {
        constexpr int kLine = kCacheLine / kComponents;
        const int last = std::min(y + kRowsAhead / 2, picture_.Height() - 1);
        for (fetched_ = std::max(fetched_, y); fetched_ < last; ++fetched_) {
            const int right = std::min(columns_.left + columns_.width, picture_.Width());
            for (int x = std::max(columns_.left, 0); x < right; x += kLine) {
                const std::uint8_t* const pixels = At(x, fetched_ + 1);
                columns_.width < kBroadStrip ? __builtin_prefetch(pixels) : FetchAhead(pixels);
            }
        }
    }

    const PixelArray& picture_;
    Columns columns_;
    bool liesInside_;
    int fetched_ = 0;          // the last row that was asked for
    std::vector<int> numbers_; // of the rows that were continued
    std::vector<std::uint8_t> continued_;
};

} // namespace pictorel::engine
