// The stages of a blur: what makes the wide rows of a strip of columns, one from another.
#pragma once

#include "picture/ForEachBand.h"
#include "picture/PixelArray.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/base/Tiles.h"
#include "picture/engine/kernels/blur/ConvolutionKernels.h"
#include "picture/engine/kernels/blur/WideRow.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

namespace pictorel::engine {

// The pixels left <= x < right, top <= y < bottom; beyond them their edge pixels go on.
struct Bounds {
    int left;
    int top;
    int right;
    int bottom;
};

inline Bounds BoundsOf(const PixelArray& picture) {
    return {0, 0, picture.Width(), picture.Height()};
}

// The pixels left <= x < left + width of every row.
struct Columns {
    int left;
    int width;

    Columns WithMargins(int pixels) const { return {left - pixels, width + 2 * pixels}; }
};

// Wide rows of a strip of columns. They have no end: beyond a picture its edge pixels go on.
class WideRows {
  public:
    explicit WideRows(int width) : width_(width) {}
    virtual ~WideRows() = default;
    WideRows(const WideRows&) = delete;
    WideRows& operator=(const WideRows&) = delete;

    int Width() const noexcept { return width_; }
    virtual void Make(int y, Wide* row) = 0;

  private:
    int width_;
};

// Windows of some rows of a stage. Asked for in ascending order, each row is made once.
class WideRing {
  public:
    WideRing(std::unique_ptr<WideRows> source, int rows);

    // The rows from `first` on, as many as there are. Valid until the next call.
    const Wide* const* Rows(int first);

  private:
    std::unique_ptr<WideRows> source_;
    std::vector<const Wide*> window_;
    std::size_t rowLength_;
    std::vector<int> numbers_; // of the rows in the slots
    WideRow rows_;
};

class WidePlane {
  public:
    // Content is undefined until written. Throws ImagingError(OutOfMemory).
    explicit WidePlane(const Bounds& bounds);

    const Bounds& Extent() const noexcept { return bounds_; }

    const Wide* Row(int y) const noexcept { return rows_ + (y - bounds_.top) * rowLength_; }
    Wide* Row(int y) noexcept { return rows_ + (y - bounds_.top) * rowLength_; }

  private:
    Bounds bounds_;
    std::ptrdiff_t rowLength_;
    std::shared_ptr<std::uint8_t> memory_;
    Wide* rows_;
};

inline Bounds BoundsOf(const WidePlane& plane) {
    return plane.Extent();
}

using RowsOfStrip = std::function<std::unique_ptr<WideRows>(Columns)>;

// A plane of the rows that makeRows(columns) makes of each strip.
WidePlane MakePlane(const Bounds& bounds, const RowsOfStrip& makeRows);

// Rows of a picture or plane as they are. What they refer to must outlive them.
std::unique_ptr<WideRows> RowsOf(const PixelArray& picture, Columns columns);
std::unique_ptr<WideRows> RowsOf(const WidePlane& plane, Columns columns);

// Rows convolved with a symmetric kernel in both directions.
class BlurredRows : public WideRows {
  public:
    // `source` has margins as wide as the kernel reaches.
    BlurredRows(std::unique_ptr<WideRows> source, const HalfKernel& kernel);

    void Make(int y, Wide* row) override;

  private:
    const HalfKernel& kernel_;
    WideRing ring_;
};

// Rows of opaque pixels of a strip of columns.
class PixelRows {
  public:
    PixelRows() = default;
    virtual ~PixelRows() = default;
    PixelRows(const PixelRows&) = delete;
    PixelRows& operator=(const PixelRows&) = delete;

    // The target's width is the strip's.
    virtual void Make(int y, const PixelTarget& target) = 0;
};

// Rows of an opaque picture convolved with a symmetric kernel in both directions.
class BlurredPixels : public PixelRows {
  public:
    BlurredPixels(const PixelArray& picture, const HalfKernel& kernel, Columns columns);

    void Make(int y, const PixelTarget& target) override;

  private:
    const HalfKernel& kernel_;
    WideRing ring_;
};

// Widths of strips: narrow enough for a ring of their rows to stay in the nearest cache, or wide enough for
// the margins of halved strips to cost little.
inline constexpr int kNarrowStrip = 256;
inline constexpr int kBroadStrip = 1024;

// Calls body(area) for strips of columns that cover `bounds` once, on all cores.
template <class Body>
void ForEachStrip(const Bounds& bounds, int stripWidth, const Body& body) {
    const int width = bounds.right - bounds.left;
    const auto bytesPerRow = std::size_t{2} * kComponents * static_cast<std::size_t>(width);
    ForEachBand(bounds.bottom - bounds.top, bytesPerRow, [&](int first, int end) {
        for (int left = 0; left < width; left += stripWidth) {
            body(TileArea{bounds.left + left, bounds.top + first, std::min(stripWidth, width - left),
                          end - first});
        }
    });
}

} // namespace pictorel::engine
