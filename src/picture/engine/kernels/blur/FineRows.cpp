// The stages of a blur, see FineRows.h.
#include "picture/engine/kernels/blur/FineRows.h"

#include "picture/BufferPool.h"
#include "picture/engine/kernels/blur/PictureRows.h"

#include <limits>
#include <utility>

namespace pictorel::engine {
namespace {

class WidenedRows : public FineRows {
  public:
    WidenedRows(const PixelArray& picture, Columns columns)
        : FineRows(columns.width), hasAlpha_(picture.HasAlpha()), rows_(picture, columns) {}

    void Make(int y, Fine* row) override { FineFromPixels(rows_.Row(y), Width(), hasAlpha_, row); }

  private:
    bool hasAlpha_;
    PictureRows rows_;
};

class PlaneRows : public FineRows {
  public:
    PlaneRows(const FinePlane& plane, Columns columns)
        : FineRows(columns.width), plane_(plane), columns_(columns) {}

    void Make(int y, Fine* row) override {
        constexpr int kPerHalf = kFinesPerPixel;
        const Bounds& bounds = plane_.Extent();
        const Fine* from = plane_.Row(std::clamp(y, bounds.top, bounds.bottom - 1));
        for (const bool isUpper : {false, true}) {
            LoadContinued(bounds.left, bounds.right, columns_, kPerHalf,
                          isUpper ? row + HalfLength(Width()) : row, [&](int first, int count, Fine* to) {
                              std::copy_n(from + static_cast<std::ptrdiff_t>(first - bounds.left) * kPerHalf,
                                          static_cast<std::ptrdiff_t>(count) * kPerHalf, to);
                          });
            from += HalfLength(bounds.right - bounds.left);
        }
    }

  private:
    const FinePlane& plane_;
    Columns columns_;
};

// Opaque pixels convolved along the row.
class AcrossOpaque : public FineRows {
  public:
    AcrossOpaque(const PixelArray& picture, const HalfKernel& kernel, Columns columns)
        : FineRows(columns.width),
          kernel_(kernel),
          rows_(picture, columns.WithMargins(static_cast<int>(kernel.size()) - 1)) {}

    void Make(int y, Fine* row) override { simd::ConvolveAcross(rows_.Row(y), kernel_, Width(), row); }

  private:
    const HalfKernel& kernel_;
    PictureRows rows_;
};

// Fine rows, with margins as wide as the kernel reaches, convolved along the row.
class AcrossFine : public FineRows {
  public:
    AcrossFine(std::unique_ptr<FineRows> source, const HalfKernel& kernel)
        : FineRows(source->Width() - 2 * (static_cast<int>(kernel.size()) - 1)),
          kernel_(kernel),
          source_(std::move(source)),
          row_(FineLength(source_->Width())) {}

    void Make(int y, Fine* row) override {
        source_->Make(y, row_.data());
        const Fine* from = row_.data();
        for (const bool isUpper : {false, true}) {
            simd::ConvolveAlong(from, kernel_, isUpper ? row + HalfLength(Width()) : row,
                                HalfLength(Width()) - 2 * kFineStep);
            from += HalfLength(source_->Width());
        }
    }

  private:
    const HalfKernel& kernel_;
    std::unique_ptr<FineRows> source_;
    FineRow row_;
};

int MarginOf(const HalfKernel& kernel) {
    return static_cast<int>(kernel.size()) - 1;
}

int TapsOf(const HalfKernel& kernel) {
    return 2 * MarginOf(kernel) + 1;
}

} // namespace

FineRing::FineRing(std::unique_ptr<FineRows> source, int rows)
    : source_(std::move(source)),
      window_(static_cast<std::size_t>(rows)),
      rowLength_(FineLength(source_->Width())),
      numbers_(static_cast<std::size_t>(rows), std::numeric_limits<int>::min()),
      rows_(static_cast<std::size_t>(rows) * rowLength_) {}

const Fine* const* FineRing::Rows(int first) {
    const int count = static_cast<int>(numbers_.size());
    auto slot = static_cast<std::size_t>((first % count + count) % count);
    int y = first;
    for (const Fine*& tap : window_) {
        Fine* const row = rows_.data() + slot * rowLength_;
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

FinePlane::FinePlane(const Bounds& bounds)
    : bounds_(bounds),
      rowLength_(static_cast<std::ptrdiff_t>(FineLength(bounds.right - bounds.left))),
      memory_(TakeBuffer(static_cast<std::size_t>(rowLength_) *
                         static_cast<std::size_t>(bounds.bottom - bounds.top) * sizeof(Fine))),
      rows_(reinterpret_cast<Fine*>(memory_.get())) {}

FinePlane MakePlane(const Bounds& bounds, const RowsOfStrip& makeRows) {
    FinePlane plane(bounds);
    const std::size_t half = HalfLength(bounds.right - bounds.left);
    ForEachStrip(bounds, kWideStrip, [&](const TileArea& area) {
        const auto rows = makeRows(Columns{area.left, area.width});
        FineRow row(FineLength(rows->Width()));
        const Fine* const upper = row.data() + HalfLength(rows->Width());
        for (int y = area.top; y < area.top + area.height; ++y) {
            rows->Make(y, row.data());
            constexpr int kPerHalf = kFinesPerPixel;
            Fine* const to = plane.Row(y) + static_cast<std::ptrdiff_t>(area.left - bounds.left) * kPerHalf;
            std::copy_n(row.data(), area.width * kPerHalf, to);
            std::copy_n(upper, area.width * kPerHalf, to + half);
        }
    });
    return plane;
}

std::unique_ptr<FineRows> RowsOf(const PixelArray& picture, Columns columns) {
    return std::make_unique<WidenedRows>(picture, columns);
}

std::unique_ptr<FineRows> RowsOf(const FinePlane& plane, Columns columns) {
    return std::make_unique<PlaneRows>(plane, columns);
}

BlurredRows::BlurredRows(std::unique_ptr<FineRows> source, const HalfKernel& kernel)
    : FineRows(source->Width() - 2 * MarginOf(kernel)),
      kernel_(kernel),
      ring_(std::make_unique<AcrossFine>(std::move(source), kernel), TapsOf(kernel)) {}

void BlurredRows::Make(int y, Fine* row) {
    simd::Convolve(ring_.Rows(y - MarginOf(kernel_)), kernel_, row, FineLength(Width()));
}

BlurredPixels::BlurredPixels(const PixelArray& picture, const HalfKernel& kernel, Columns columns)
    : kernel_(kernel), ring_(std::make_unique<AcrossOpaque>(picture, kernel, columns), TapsOf(kernel)) {}

void BlurredPixels::Make(int y, const PixelTarget& target) {
    simd::ConvolveToPixels(ring_.Rows(y - MarginOf(kernel_)), kernel_, target);
}

} // namespace pictorel::engine
