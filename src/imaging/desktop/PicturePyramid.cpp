// A picture and its halved copies, see PicturePyramid.h.
#include "imaging/desktop/PicturePyramid.h"

#include "imaging/ForEachBand.h"
#include "imaging/desktop/PixelMath.h"

#include <algorithm>

namespace pictorel {
namespace {

constexpr int kDeepestLevel = 15; // the longest side there is has come down to one pixel
constexpr double kSameScale = 1e-12;

// Two rows of the source give one row of `pairs` pixels, of which the last may stand for a single column.
template <bool kPremultiply>
void HalveRows(const std::uint8_t* upper, const std::uint8_t* lower, int width, std::uint8_t* halved) {
    const auto load = [](const std::uint8_t* place) {
        const Pixel pixel = LoadPixel(place);
        return kPremultiply ? Premultiplied(pixel) : pixel;
    };
    for (int x = 0; x < width / 2; ++x) {
        StorePixel(halved + 4 * x, MeanOfFour(load(upper + 8 * x), load(upper + 8 * x + 4),
                                              load(lower + 8 * x), load(lower + 8 * x + 4)));
    }
    if (width % 2 != 0) {
        const Pixel above = load(upper + 4 * (width - 1));
        const Pixel below = load(lower + 4 * (width - 1));
        StorePixel(halved + 4 * (width / 2), MeanOfFour(above, above, below, below));
    }
}

PixelArray Halved(const PixelArray& source, bool premultiply) {
    PixelArray halved((source.Width() + 1) / 2, (source.Height() + 1) / 2);
    halved.SetHasAlpha(source.HasAlpha());
    std::uint8_t* const rows = halved.WritableRows();
    ForEachBand(halved.Height(), 2 * source.RowBytes() + halved.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            const std::uint8_t* const upper = source.Row(2 * y);
            const std::uint8_t* const lower = source.Row(std::min(2 * y + 1, source.Height() - 1));
            const auto halve = premultiply ? HalveRows<true> : HalveRows<false>;
            halve(upper, lower, source.Width(), rows + y * halved.Stride());
        }
    });
    return halved;
}

} // namespace

int PicturePyramid::LevelFor(double zoom) noexcept {
    int level = 0;
    while (level < kDeepestLevel && zoom * 2.0 <= 1.0 + kSameScale) {
        zoom *= 2.0;
        ++level;
    }
    return level;
}

const PixelArray& PicturePyramid::Level(int level) {
    if (level == 0 || picture_.IsEmpty()) {
        return picture_;
    }
    while (halved_.size() < static_cast<std::size_t>(level)) {
        const bool first = halved_.empty();
        const PixelArray& source = first ? picture_ : halved_.back();
        halved_.push_back(Halved(source, first && source.HasAlpha()));
    }
    return halved_[static_cast<std::size_t>(level) - 1];
}

} // namespace pictorel
