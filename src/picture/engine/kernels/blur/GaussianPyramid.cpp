// Halving and doubling for wide Gaussian blurs, see GaussianPyramid.h.
#include "picture/engine/kernels/blur/GaussianPyramid.h"

#include "picture/engine/kernels/blur/PictureRows.h"
#include "picture/engine/kernels/blur/PyramidKernels.h"

#include <array>
#include <cmath>
#include <utility>

namespace pictorel::engine {
namespace {

// The narrowest bell, in pixels of the halved picture, that takes away what halving folded over.
constexpr double kLeastSigma = 1.3;

// As far as halved pixels differ from those at the edge, and begun at an even number.
constexpr int kBorder = 2;

Bounds HalvedBounds(const Bounds& whole) {
    const auto halvedEnd = [](int end) { return (end + 2) / 2 + 1; };
    return {-kBorder, -kBorder, halvedEnd(whole.right), halvedEnd(whole.bottom)};
}

Columns ColumnsToHalve(Columns columns) {
    return {2 * columns.left - 2, 2 * columns.width + 4};
}

constexpr int kTapsHalved = 5;

int FirstTapHalved(int y) {
    return 2 * y - kTapsHalved / 2;
}

// Rows of an opaque picture halved.
class HalvedOpaque : public WideRows {
  public:
    HalvedOpaque(const PixelArray& picture, Columns columns)
        : WideRows(columns.width),
          width_(ColumnsToHalve(columns).width),
          row_(WideLength(width_)),
          rows_(picture, ColumnsToHalve(columns), kTapsHalved) {}

    void Make(int y, Wide* row) override {
        std::array<const std::uint8_t*, kTapsHalved> taps;
        for (int k = 0; k < kTapsHalved; ++k) {
            taps[k] = rows_.Row(FirstTapHalved(y) + k);
        }
        PyramidKernels::Best().HalveDownOpaque(taps.data(), width_, row_.data());
        PyramidKernels::Best().HalveAcross(row_.data(), Width(), row);
    }

  private:
    int width_; // of what is halved
    WideRow row_;
    PictureRows rows_;
};

// Rows of `source` halved, which are those of ColumnsToHalve.
class HalvedRows : public WideRows {
  public:
    HalvedRows(std::unique_ptr<WideRows> source, Columns columns)
        : WideRows(columns.width), row_(WideLength(source->Width())), ring_(std::move(source), kTapsHalved) {}

    void Make(int y, Wide* row) override {
        PyramidKernels::Best().HalveDown(ring_.Rows(FirstTapHalved(y)), row_.size(), row_.data());
        PyramidKernels::Best().HalveAcross(row_.data(), Width(), row);
    }

  private:
    WideRow row_;
    WideRing ring_;
};

std::unique_ptr<WideRows> HalvedOnce(const PixelArray& source, Columns columns) {
    if (source.HasAlpha()) {
        return std::make_unique<HalvedRows>(RowsOf(source, ColumnsToHalve(columns)), columns);
    }
    return std::make_unique<HalvedOpaque>(source, columns);
}

std::unique_ptr<WideRows> HalvedOnce(const WidePlane& source, Columns columns) {
    return std::make_unique<HalvedRows>(RowsOf(source, ColumnsToHalve(columns)), columns);
}

template <class Source>
std::unique_ptr<WideRows> MakeHalvedRows(const Source& source, int times, Columns columns) {
    if (times == 1) {
        return HalvedOnce(source, columns);
    }
    return std::make_unique<HalvedRows>(MakeHalvedRows(source, times - 1, ColumnsToHalve(columns)), columns);
}

template <class Source>
WidePlane Half(const Source& source, int times) {
    Bounds bounds = BoundsOf(source);
    for (int i = 0; i < times; ++i) {
        bounds = HalvedBounds(bounds);
    }
    return MakePlane(bounds, [&](Columns columns) { return MakeHalvedRows(source, times, columns); });
}

int EvenWidth(Columns columns) {
    return (columns.width + 1) / 2 * 2;
}

// Rows doubled across.
class AcrossRows : public WideRows {
  public:
    AcrossRows(std::unique_ptr<WideRows> source, int width)
        : WideRows(width), source_(std::move(source)), row_(WideLength(source_->Width())) {}

    void Make(int y, Wide* row) override {
        source_->Make(y, row_.data());
        PyramidKernels::Best().DoubleAcross(row_.data(), source_->Width(), Width() / 2, row);
    }

  private:
    std::unique_ptr<WideRows> source_;
    WideRow row_;
};

// What is doubled begins at an even number, so that it can be doubled itself, where the columns begin at a
// multiple of four.
std::unique_ptr<WideRows> DoubledAcross(const RowsOfStrip& source, Columns columns) {
    const Columns half{columns.left / 2 - 2, (columns.width + 1) / 2 + 4};
    return std::make_unique<AcrossRows>(source(half), EvenWidth(columns));
}

// A doubled row lies on the middle one of three or between the last two.
constexpr int kTapsDoubled = 3;

int FirstTap(int y) {
    return (y >> 1) - 1; // rounded down below 0 too
}

bool IsBetween(int y) {
    return (y & 1) != 0;
}

} // namespace

PyramidPlan::PyramidPlan(double sigmaInPixels) : sigma(sigmaInPixels) {
    const double variance = sigmaInPixels * sigmaInPixels;
    double spent = 0;
    for (double scale = 1; halvings < 16; scale *= 2) { // pixels per pixel of the plane to be halved
        spent += 2 * scale * scale;
        const double left = std::sqrt(std::max(variance - spent, 0.0)) / (2 * scale);
        if (left < kLeastSigma) {
            break;
        }
        sigma = left;
        ++halvings;
    }
}

std::unique_ptr<WideRows> HalvedRowsOf(const PixelArray& source, int times, Columns columns) {
    return MakeHalvedRows(source, times, columns);
}

WidePlane Halved(const PixelArray& source, int times) {
    return Half(source, times);
}

WidePlane Halved(const WidePlane& source, int times) {
    return Half(source, times);
}

DoubledRows::DoubledRows(const RowsOfStrip& source, Columns columns)
    : WideRows(EvenWidth(columns)), ring_(DoubledAcross(source, columns), kTapsDoubled) {}

void DoubledRows::Make(int y, Wide* row) {
    PyramidKernels::Best().DoubleDown(ring_.Rows(FirstTap(y)), IsBetween(y), WideLength(Width()), row);
}

DoubledPixels::DoubledPixels(const RowsOfStrip& source, Columns columns)
    : half_(HalfLength(EvenWidth(columns))), ring_(DoubledAcross(source, columns), kTapsDoubled) {}

void DoubledPixels::Make(int y, const PixelTarget& target) {
    PyramidKernels::Best().DoubleDownToPixels(ring_.Rows(FirstTap(y)), IsBetween(y), half_, target);
}

} // namespace pictorel::engine
