// Halving and doubling for wide Gaussian blurs, see GaussianPyramid.h.
#include "imaging/engine/GaussianPyramid.h"

#include "imaging/engine/Convolution.h"

#include <array>
#include <cmath>

namespace pictorel::engine {
namespace {

constexpr int kComponents = PixelArray::kComponents;

// The narrowest bell, in pixels of the halved picture, that takes away what halving folded over.
constexpr double kLeastSigma = 1.3;

// 1 4 6 4 1 in sixteenths; and doubled, for the new pixels that lie on an old one and between two.
const HalfKernel kBinomial{12288, 8192, 2048};
const HalfKernel kOnPixel{24576, 4096};
const HalfKernel kBetween{0, 16384};

// As far as halved pixels differ from those at the edge, and begun at an even number.
constexpr int kBorder = 2;

int HalvedEnd(int end) {
    return (end + 2) / 2 + 1;
}

// Rows of a strip of the halved picture.
template <class Source>
class HalvedRows {
  public:
    HalvedRows(const Source& source, int left, int width)
        : width_(static_cast<std::size_t>(width)),
          ring_(source, 2 * left - 2, 2 * width + 4, 5),
          columns_((2 * width_ + 4) * kComponents),
          even_((width_ + 2) * kComponents),
          odd_(even_.size()) {}

    void Row(int y, WideComponent* row) {
        const std::array<const WideComponent*, 5> down{ring_.Row(2 * y - 2), ring_.Row(2 * y - 1),
                                                       ring_.Row(2 * y), ring_.Row(2 * y + 1),
                                                       ring_.Row(2 * y + 2)};
        Convolve(down.data(), kBinomial, columns_.data(), columns_.size());
        SplitPairs(columns_.data(), width_ + 2, even_.data(), odd_.data());
        const std::array<const WideComponent*, 5> across{
            even_.data(), odd_.data(), even_.data() + kComponents, odd_.data() + kComponents,
            even_.data() + 2 * kComponents};
        Convolve(across.data(), kBinomial, row, width_ * kComponents);
    }

  private:
    std::size_t width_;
    RowRing<Source> ring_;
    WideRow columns_;
    WideRow even_;
    WideRow odd_;
};

template <class Source>
WidePlane Half(const Source& source) {
    const Bounds whole = BoundsOf(source);
    const Bounds bounds{-kBorder, -kBorder, HalvedEnd(whole.right), HalvedEnd(whole.bottom)};
    WidePlane half(bounds);
    ForEachStrip(bounds, [&](const TileArea& area) {
        HalvedRows<Source> rows(source, area.left, area.width);
        for (int y = area.top; y < area.top + area.height; ++y) {
            rows.Row(y, half.Row(y) + static_cast<std::ptrdiff_t>(area.left - bounds.left) * kComponents);
        }
    });
    return half;
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

WidePlane Halved(const PixelArray& source) {
    return Half(source);
}

WidePlane Halved(const WidePlane& source) {
    return Half(source);
}

DoubledRows::DoubledRows(const WidePlane& half, int left, int width)
    : ring_(half, left / 2 - 1, (width + 1) / 2 + 2, 3),
      columnsLength_(static_cast<std::size_t>((width + 1) / 2 + 2) * kComponents),
      halfLength_(columnsLength_ - 2 * kComponents),
      columns_(columnsLength_),
      even_(halfLength_),
      odd_(halfLength_),
      row_(2 * halfLength_) {}

const WideComponent* DoubledRows::Row(int y) {
    const int above = y >> 1; // rounded down below 0 too
    const bool isOnRow = (y & 1) == 0;
    const std::array<const WideComponent*, 3> down{ring_.Row(isOnRow ? above - 1 : above), ring_.Row(above),
                                                   ring_.Row(above + 1)};
    Convolve(down.data(), isOnRow ? kOnPixel : kBetween, columns_.data(), columnsLength_);
    const WideComponent* const first = columns_.data() + kComponents;
    const std::array<const WideComponent*, 3> on{first - kComponents, first, first + kComponents};
    const std::array<const WideComponent*, 3> between{first, first, first + kComponents};
    Convolve(on.data(), kOnPixel, even_.data(), halfLength_);
    Convolve(between.data(), kBetween, odd_.data(), halfLength_);
    JoinPairs(even_.data(), odd_.data(), halfLength_ / kComponents, row_.data());
    return row_.data();
}

} // namespace pictorel::engine
