// Finer copies of a picture, see FinerCopies.h.
#include "imaging/objects/FinerCopies.h"

#include "imaging/engine/Resample.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pictorel {
namespace {

constexpr double kOrdinary = 1000.0 * 667; // pixels
constexpr double kForExtremes = 2400.0 * 1600;

PixelArray ReducedTo(double pixels, const PixelArray& picture) {
    const double whole = static_cast<double>(picture.Width()) * picture.Height();
    if (whole <= pixels) {
        return picture;
    }
    const double scale = std::sqrt(pixels / whole);
    const auto side = [scale](int length) {
        return std::max(1, static_cast<int>(std::lround(length * scale)));
    };
    PixelArray copy = engine::Resize(picture, side(picture.Width()), side(picture.Height()));
    copy.SetReduction(picture.Reduction() * copy.Width() / picture.Width());
    return copy;
}

const PixelArray& MadeOnce(PixelArray& copy, double pixels, const PixelArray& picture) {
    if (copy.IsEmpty()) {
        copy = ReducedTo(pixels, picture);
    }
    return copy;
}

} // namespace

FinerCopies::FinerCopies(PixelArray picture) : picture_(std::move(picture)) {}

const PixelArray& FinerCopies::Ordinary() const {
    return MadeOnce(ordinary_, kOrdinary, picture_);
}

const PixelArray& FinerCopies::ForExtremes() const {
    return MadeOnce(forExtremes_, kForExtremes, picture_);
}

bool FinerCopies::Holds(const PixelArray& array) const noexcept {
    return array.SharesPixelsWith(ordinary_) || array.SharesPixelsWith(forExtremes_);
}

} // namespace pictorel
