// Wide components of a rectangle of pixels, and the rows of strips of it: what blurs pass from stage to
// stage.
#pragma once

#include "imaging/BufferPool.h"
#include "imaging/ForEachBand.h"
#include "imaging/PixelArray.h"
#include "imaging/engine/TileRows.h"
#include "imaging/engine/Tiles.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace pictorel::engine {

// The pixels left <= x < right, top <= y < bottom; beyond them their edge pixels go on.
struct Bounds {
    int left;
    int top;
    int right;
    int bottom;
};

// Begins on a cache line.
template <class T>
class LineAllocator {
  public:
    using value_type = T;

    LineAllocator() = default;
    template <class U>
    explicit LineAllocator(const LineAllocator<U>& /*other*/) {}

    T* allocate(std::size_t count) { return static_cast<T*>(::operator new(count * sizeof(T), kLine)); }
    void deallocate(T* memory, std::size_t /*count*/) { ::operator delete(memory, kLine); }
    bool operator==(const LineAllocator& /*other*/) const { return true; }

  private:
    static constexpr std::align_val_t kLine{64};
};

using WideRow = std::vector<WideComponent, LineAllocator<WideComponent>>;

// Components of a row so long that the next one begins on a cache line too.
constexpr std::size_t AlignedLength(int pixels) {
    constexpr std::size_t kLine = 64 / sizeof(WideComponent);
    return (static_cast<std::size_t>(pixels) * PixelArray::kComponents + kLine - 1) / kLine * kLine;
}

class WidePlane {
  public:
    // Content is undefined until written. Throws ImagingError(OutOfMemory).
    explicit WidePlane(const Bounds& bounds);

    const Bounds& Extent() const noexcept { return bounds_; }

    // From `left` on.
    const WideComponent* Row(int y) const noexcept { return rows_ + (y - bounds_.top) * rowLength_; }
    WideComponent* Row(int y) noexcept { return rows_ + (y - bounds_.top) * rowLength_; }

  private:
    Bounds bounds_;
    std::ptrdiff_t rowLength_; // components
    std::shared_ptr<std::uint8_t> memory_;
    WideComponent* rows_;
};

// The pixels left <= x < left + count of row y, which lies inside.
void LoadWideRow(const PixelArray& source, int y, int left, int count, WideComponent* wide);
void LoadWideRow(const WidePlane& source, int y, int left, int count, WideComponent* wide);

inline Bounds BoundsOf(const PixelArray& picture) {
    return {0, 0, picture.Width(), picture.Height()};
}
inline Bounds BoundsOf(const WidePlane& plane) {
    return plane.Extent();
}

// Rows of a strip of columns of a picture or plane. Asked for in ascending order, each is loaded once, and
// the last few are kept.
template <class Source>
class RowRing {
  public:
    RowRing(const Source& source, int left, int columns, int rows)
        : source_(source),
          left_(left),
          columns_(columns),
          rowLength_(AlignedLength(columns)),
          numbers_(static_cast<std::size_t>(rows), kNone),
          wide_(static_cast<std::size_t>(rows) * rowLength_) {}

    // Beyond the picture the rows at its edge go on.
    const WideComponent* Row(int y) {
        const Bounds bounds = BoundsOf(source_);
        const int inside = std::clamp(y, bounds.top, bounds.bottom - 1);
        const std::size_t slot = static_cast<std::size_t>(inside - bounds.top) % numbers_.size();
        WideComponent* const row = wide_.data() + slot * rowLength_;
        if (numbers_[slot] != inside) {
            numbers_[slot] = inside;
            LoadWideRow(source_, inside, left_, columns_, row);
        }
        return row;
    }

  private:
    static constexpr int kNone = -1000000000;

    const Source& source_;
    int left_;
    int columns_;
    std::size_t rowLength_;
    std::vector<int> numbers_; // of the rows in the slots
    WideRow wide_;
};

// Calls body(area) for strips of columns that cover `bounds` once, on all cores. Strips are `stripWidth`
// wide, a multiple of 16.
template <class Body>
void ForEachStrip(const Bounds& bounds, int stripWidth, const Body& body) {
    const int width = bounds.right - bounds.left;
    const auto bytesPerRow = std::size_t{2} * PixelArray::kComponents * static_cast<std::size_t>(width);
    ForEachBand(bounds.bottom - bounds.top, bytesPerRow, [&](int first, int end) {
        for (int left = 0; left < width; left += stripWidth) {
            body(TileArea{bounds.left + left, bounds.top + first, std::min(stripWidth, width - left),
                          end - first});
        }
    });
}

// Narrow enough for a ring of wide rows to stay in cache.
template <class Body>
void ForEachStrip(const Bounds& bounds, const Body& body) {
    constexpr int kStripWidth = 256;
    ForEachStrip(bounds, kStripWidth, body);
}

} // namespace pictorel::engine
