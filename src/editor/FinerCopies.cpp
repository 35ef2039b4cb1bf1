// Finer copies of a picture, see FinerCopies.h.
#include "editor/FinerCopies.h"

#include "picture/engine/Resample.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace pictorel {
namespace {

constexpr double kOrdinary = 1000.0 * 667; // pixels
constexpr double kLighter = 600.0 * 400;
constexpr double kForExtremes = 2400.0 * 1600;

const PixelArray& MadeOnce(PixelArray& copy, const std::function<PixelArray()>& make) {
    if (copy.IsEmpty()) {
        copy = make();
    }
    return copy;
}

} // namespace

// Halving as often as leaves twice the size reads a large picture in half the time of the better filter that
// goes the rest of the way, and the view has often done it already.
PixelArray FinerCopies::Copy(int width, int height) const {
    const PixelArray& picture = Picture();
    const double scale = std::max(static_cast<double>(width) / picture.Width(),
                                  static_cast<double>(height) / picture.Height());
    const bool halve = !picture.HasAlpha() && 2 * scale < 1; // the pyramid's colours would be premultiplied
    PixelArray copy =
        engine::Resize(halve ? pyramid_->Level(PicturePyramid::LevelFor(2 * scale)) : picture, width, height);
    copy.SetDetails(picture.Details());
    copy.SetReduction(picture.Reduction() * width / picture.Width());
    return copy;
}

PixelArray FinerCopies::CopyOf(double pixels) const {
    const PixelArray& picture = Picture();
    const double whole = static_cast<double>(picture.Width()) * picture.Height();
    if (whole <= pixels) {
        return picture;
    }
    const double scale = std::sqrt(pixels / whole);
    const auto side = [scale](int length) {
        return std::max(1, static_cast<int>(std::lround(length * scale)));
    };
    return Copy(side(picture.Width()), side(picture.Height()));
}

const PixelArray& FinerCopies::Ordinary() const {
    return MadeOnce(ordinary_, [this] { return CopyOf(kOrdinary); });
}

const PixelArray& FinerCopies::Lighter() const {
    return MadeOnce(lighter_, [this] { return CopyOf(kLighter); });
}

const PixelArray& FinerCopies::ForExtremes() const {
    return MadeOnce(forExtremes_, [this] { return CopyOf(kForExtremes); });
}

bool FinerCopies::Holds(const PixelArray& array) const noexcept {
    return array.SharesPixelsWith(ordinary_) || array.SharesPixelsWith(lighter_) ||
           array.SharesPixelsWith(forExtremes_);
}

} // namespace pictorel
