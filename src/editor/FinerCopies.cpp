// Finer copies of the picture, see FinerCopies.h.
#include "editor/FinerCopies.h"

#include "picture/engine/Resample.h"

#include <algorithm>
#include <cmath>

namespace pictorel {
namespace {

constexpr double kOrdinary = 1000.0 * 667; // pixels
constexpr double kLight = 600.0 * 400;
constexpr double kGrainSeen = 4000.0 * 2500; // a large screen and what lies around it
constexpr double kExtremes = 3500.0 * 2200;  // at most

double AreaOf(const PixelArray& picture) {
    return static_cast<double>(picture.Width()) * picture.Height();
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
    copy.SetCornerInPicture(picture.LeftInPicture(), picture.TopInPicture());
    return copy;
}

PixelArray FinerCopies::CopyOf(double pixels) const {
    const PixelArray& picture = Picture();
    if (AreaOf(picture) <= pixels) {
        return picture;
    }
    const double scale = std::sqrt(pixels / AreaOf(picture));
    const auto side = [scale](int length) {
        return std::max(1, static_cast<int>(std::lround(length * scale)));
    };
    return Copy(side(picture.Width()), side(picture.Height()));
}

// The finest of the pyramid's halves with at most so many pixels: the view has mostly made it already, where
// a copy of a size of its own would be waited for.
PixelArray FinerCopies::Halved(double pixels) const {
    const PixelArray& picture = Picture();
    if (AreaOf(picture) <= pixels) {
        return picture;
    }
    if (picture.HasAlpha()) {
        return CopyOf(pixels / 2); // the pyramid's colours are premultiplied
    }
    int halvings = 1;
    while (AreaOf(picture) > std::ldexp(pixels, 2 * halvings)) {
        ++halvings;
    }
    PixelArray copy = pyramid_->Level(halvings);
    copy.SetDetails(picture.Details());
    copy.SetReduction(picture.Reduction() * copy.Width() / picture.Width());
    copy.SetCornerInPicture(picture.LeftInPicture(), picture.TopInPicture());
    return copy;
}

PixelArray FinerCopies::Made(Fineness fineness) const {
    switch (fineness) {
        case Fineness::Ordinary:
            return CopyOf(kOrdinary / share_);
        case Fineness::Light:
            return CopyOf(kLight / share_);
        case Fineness::Grain:
            return CopyOf(share_ < 1 ? kGrainSeen : kLight);
        case Fineness::Extremes:
            return Halved(kExtremes);
    }
    return Picture();
}

const PixelArray& FinerCopies::Of(Fineness fineness) {
    PixelArray& copy = made_.at(static_cast<std::size_t>(fineness));
    if (copy.IsEmpty()) {
        copy = Made(fineness);
    }
    return copy;
}

} // namespace pictorel
