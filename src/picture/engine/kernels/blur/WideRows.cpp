// The stages of a blur, see WideRows.h.
#include "picture/engine/kernels/blur/WideRows.h"

#include "picture/BufferPool.h"
#include "picture/engine/kernels/blur/PictureRows.h"
#include "picture/engine/kernels/blur/WideKernels.h"

#include <limits>
#include <utility>

namespace pictorel::engine {
namespace {

class WidenedRows : public WideRows {
  public:
    WidenedRows(const PixelArray& picture, Columns columns)
        : WideRows(columns.width), hasAlpha_(picture.HasAlpha()), rows_(picture, columns) {}

    void Make(int y, Wide* row) override {
        WideKernels::Best().WideFromPixels(rows_.Row(y), Width(), hasAlpha_, row);
    }

  private:
    bool hasAlpha_;
    PictureRows rows_;
};

class PlaneRows : public WideRows {
  public:
    PlaneRows(const WidePlane& plane, Columns columns)
        : WideRows(columns.width), plane_(plane), columns_(columns) {}

    void Make(int y, Wide* row) override {
        constexpr int kPerHalf = kWidesPerPixel;
        const Bounds& bounds = plane_.Extent();
        const Wide* from = plane_.Row(std::clamp(y, bounds.top, bounds.bottom - 1));
        for (const bool isUpper : {false, true}) {
            LoadContinued(bounds.left, bounds.right, columns_, kPerHalf,
                          isUpper ? row + HalfLength(Width()) : row, [&](int first, int count, Wide* to) {
                              std::copy_n(from + static_cast<std::ptrdiff_t>(first - bounds.left) * kPerHalf,
                                          static_cast<std::ptrdiff_t>(count) * kPerHalf, to);
                          });
            from += HalfLength(bounds.right - bounds.left);
        }
    }

  private:
    const WidePlane& plane_;
    Columns columns_;
};

// Opaque pixels convolved along the row.
class AcrossOpaque : public WideRows {
  public:
    AcrossOpaque(const PixelArray& picture, const HalfKernel& kernel, Columns columns)
        : WideRows(columns.width),
          kernel_(kernel),
          rows_(picture, columns.WithMargins(static_cast<int>(kernel.size()) - 1)) {}

    void Make(int y, Wide* row) override {
        ConvolutionKernels::Best().ConvolveAcross(rows_.Row(y), kernel_, Width(), row);
    }

  private:
    const HalfKernel& kernel_;
    PictureRows rows_;
};

// Wide rows, with margins as wide as the kernel reaches, convolved along the row.
class AcrossWide : public WideRows {
  public:
    AcrossWide(std::unique_ptr<WideRows> source, const HalfKernel& kernel)
        : WideRows(source->Width() - 2 * (static_cast<int>(kernel.size()) - 1)),
          kernel_(kernel),
          source_(std::move(source)),
          row_(WideLength(source_->Width())) {}

    void Make(int y, Wide* row) override {
        source_->Make(y, row_.data());
        const Wide* from = row_.data();
        for (const bool isUpper : {false, true}) {
            ConvolutionKernels::Best().ConvolveAlong(from, kernel_, isUpper ? row + HalfLength(Width()) : row,
                                                     HalfLength(Width()) - 2 * kWideStep);
            from += HalfLength(source_->Width());
        }
    }

  private:
    const HalfKernel& kernel_;
    std::unique_ptr<WideRows> source_;
    WideRow row_;
};

int MarginOf(const HalfKernel& kernel) {
    return static_cast<int>(kernel.size()) - 1;
}

int TapsOf(const HalfKernel& kernel) {
    return 2 * MarginOf(kernel) + 1;
}

} // namespace

WideRing::WideRing(std::unique_ptr<WideRows> source, int rows)
    : source_(std::move(source)),
      window_(static_cast<std::size_t>(rows)),
      rowLength_(WideLength(source_->Width())),
      numbers_(static_cast<std::size_t>(rows), std::numeric_limits<int>::min()),
      rows_(static_cast<std::size_t>(rows) * rowLength_) {}

const Wide* const* WideRing::Rows(int first) {
    const int count = static_cast<int>(numbers_.size());
    auto slot = static_cast<std::size_t>((first % count + count) % count);
    int y = first;
    for (const Wide*& tap : window_) {
        Wide* const row = rows_.data() + slot * rowLength_;
        if (numbers_[slot] != y) {
            numbers_[slot] = y;
            source_->Make(y, row);
        }
        tap = row;
        ++y;
        slot = slot + 1 == numbers_.size() ? 0 : slot + 1;
    }
    return window_.data();
}

WidePlane::WidePlane(const Bounds& bounds)
    : bounds_(bounds),
      rowLength_(static_cast<std::ptrdiff_t>(WideLength(bounds.right - bounds.left))),
      memory_(TakeBuffer(static_cast<std::size_t>(rowLength_) *
                         static_cast<std::size_t>(bounds.bottom - bounds.top) * sizeof(Wide))),
      rows_(reinterpret_cast<Wide*>(memory_.get())) {}

WidePlane MakePlane(const Bounds& bounds, const RowsOfStrip& makeRows) {
    WidePlane plane(bounds);
    const std::size_t half = HalfLength(bounds.right - bounds.left);
    ForEachStrip(bounds, kBroadStrip, [&](const TileArea& area) {
        const auto rows = makeRows(Columns{area.left, area.width});
        WideRow row(WideLength(rows->Width()));
        const Wide* const upper = row.data() + HalfLength(rows->Width());
        for (int y = area.top; y < area.top + area.height; ++y) {
            rows->Make(y, row.data());
            constexpr int kPerHalf = kWidesPerPixel;
            Wide* const to = plane.Row(y) + static_cast<std::ptrdiff_t>(area.left - bounds.left) * kPerHalf;
            std::copy_n(row.data(), area.width * kPerHalf, to);
            std::copy_n(upper, area.width * kPerHalf, to + half);
        }
    });
    return plane;
}

std::unique_ptr<WideRows> RowsOf(const PixelArray& picture, Columns columns) {
    return std::make_unique<WidenedRows>(picture, columns);
}

std::unique_ptr<WideRows> RowsOf(const WidePlane& plane, Columns columns) {
    return std::make_unique<PlaneRows>(plane, columns);
}

BlurredRows::BlurredRows(std::unique_ptr<WideRows> source, const HalfKernel& kernel)
    : WideRows(source->Width() - 2 * MarginOf(kernel)),
      kernel_(kernel),
      ring_(std::make_unique<AcrossWide>(std::move(source), kernel), TapsOf(kernel)) {}

void BlurredRows::Make(int y, Wide* row) {
    ConvolutionKernels::Best().Convolve(ring_.Rows(y - MarginOf(kernel_)), kernel_, row, WideLength(Width()));
}

BlurredPixels::BlurredPixels(const PixelArray& picture, const HalfKernel& kernel, Columns columns)
    : kernel_(kernel), ring_(std::make_unique<AcrossOpaque>(picture, kernel, columns), TapsOf(kernel)) {}

void BlurredPixels::Make(int y, const PixelTarget& target) {
    ConvolutionKernels::Best().ConvolveToPixels(ring_.Rows(y - MarginOf(kernel_)), kernel_, target);
}

} // namespace pictorel::engine
