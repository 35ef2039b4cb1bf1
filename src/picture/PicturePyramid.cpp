// A picture and its halved copies, see PicturePyramid.h.
#include "picture/PicturePyramid.h"

#include "picture/ForEachBand.h"
#include "picture/PixelMath.h"

#include <algorithm>
#include <cstddef>

namespace pictorel {
namespace {

// In one go: a copy of fewer rows would not keep all cores busy while it reads the whole picture.
constexpr int kMostHalvings = 4;
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

// What a side comes to when it is halved `levels` times, odd pixels counting whole.
int HalvedSide(int side, int levels) {
    return (side + (1 << levels) - 1) >> levels;
}

// Makes rows of the copy `levels` halvings below a source; what lies between stays in cache and is not kept.
class RowHalver {
  public:
    RowHalver(const PixelArray& source, bool premultiply, int levels)
        : source_(source), premultiply_(premultiply), between_(static_cast<std::size_t>(levels)) {
        for (int level = 1; level < levels; ++level) {
            between_[static_cast<std::size_t>(level)].resize(
                static_cast<std::size_t>(HalvedSide(source.Width(), level)) * 8);
        }
    }

    // Row `y` of the copy `level` halvings below.
    void MakeRow(int level, int y, std::uint8_t* halved) {
        const int second = std::min(2 * y + 1, HalvedSide(source_.Height(), level - 1) - 1);
        if (level == 1) {
            const auto halve = premultiply_ ? HalveRows<true> : HalveRows<false>;
            halve(source_.Row(2 * y), source_.Row(second), source_.Width(), halved);
            return;
        }
        const int width = HalvedSide(source_.Width(), level - 1);
        std::uint8_t* const upper = between_[static_cast<std::size_t>(level) - 1].data();
        std::uint8_t* const lower = upper + std::ptrdiff_t{4} * width;
        MakeRow(level - 1, 2 * y, upper);
        MakeRow(level - 1, second, lower);
        HalveRows<false>(upper, lower, width, halved);
    }

  private:
    const PixelArray& source_;
    bool premultiply_;
    std::vector<std::vector<std::uint8_t>> between_; // two rows of each level
};

PixelArray Halved(const PixelArray& source, bool premultiply, int levels) {
    PixelArray halved(HalvedSide(source.Width(), levels), HalvedSide(source.Height(), levels));
    halved.SetHasAlpha(source.HasAlpha());
    std::uint8_t* const rows = halved.WritableRows();
    ForEachBand(halved.Height(), source.RowBytes() << levels, [&](int first, int end) {
        RowHalver halver(source, premultiply, levels);
        for (int y = first; y < end; ++y) {
            halver.MakeRow(levels, y, rows + y * halved.Stride());
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
    PixelArray& wanted = halved_[static_cast<std::size_t>(level)];
    if (wanted.IsEmpty()) {
        if (level > kMostHalvings) {
            Level(level - kMostHalvings);
        }
        int finer = level - 1;
        while (finer > 0 && halved_[static_cast<std::size_t>(finer)].IsEmpty()) {
            --finer;
        }
        const PixelArray& source = finer == 0 ? picture_ : halved_[static_cast<std::size_t>(finer)];
        wanted = Halved(source, finer == 0 && picture_.HasAlpha(), level - finer);
    }
    return wanted;
}

std::shared_ptr<PicturePyramid> SharedPyramids::Of(const PixelArray& picture) {
    auto pyramid = newest_.lock();
    const bool same = pyramid && pyramid->Picture().SharesPixelsWith(picture) &&
                      pyramid->Picture().HasAlpha() == picture.HasAlpha();
    if (!same) {
        pyramid = std::make_shared<PicturePyramid>(picture);
        newest_ = pyramid;
    }
    return pyramid;
}

} // namespace pictorel
