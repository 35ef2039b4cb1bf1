// One axis of a view, see ViewAxis.h.
#include "view/ViewAxis.h"

#include <algorithm>
#include <cmath>

namespace pictorel {
namespace {

// Beyond every picture at every zoom that can be told apart; keeps absurd centres within whole numbers.
constexpr double kFarAway = 1e15;

} // namespace

std::int64_t ViewAxis::Origin() const noexcept {
    const double origin = 0.5 * view - centre * zoom;
    return std::llround(std::clamp(std::isnan(origin) ? kFarAway : origin, -kFarAway, kFarAway));
}

Span ViewAxis::Drawn(int extent) const noexcept {
    if (picture <= 0) {
        return {};
    }
    const auto origin = static_cast<double>(Origin());
    const double length = std::max(1.0, std::ceil(picture * zoom - kNothing));
    const Span drawn{static_cast<int>(std::clamp<double>(origin, 0, extent)),
                     static_cast<int>(std::clamp<double>(origin + length, 0, extent))};
    return drawn.IsEmpty() ? Span{} : drawn;
}

Span ViewAxis::Visible() const noexcept {
    if (picture <= 0) {
        return {};
    }
    const auto origin = static_cast<double>(Origin());
    const double first = std::floor(-origin / zoom + kNothing);
    const double end = std::ceil((view - origin) / zoom - kNothing);
    Span visible;
    visible.begin = static_cast<int>(std::clamp<double>(first, 0, picture - 1));
    visible.end = static_cast<int>(std::clamp<double>(end, visible.begin + 1, picture));
    return visible;
}

double ViewAxis::CentreInside() const noexcept {
    if (!PictureExceedsView()) {
        return 0.5 * picture;
    }
    const double half = 0.5 * view / zoom;
    return std::clamp(centre, half, std::max(half, picture - half));
}

double FitZoom(const ViewAxis& across, const ViewAxis& down) noexcept {
    if (across.picture <= 0 || down.picture <= 0) {
        return 1.0;
    }
    const double fitAcross = static_cast<double>(std::max(across.view, 1)) / across.picture;
    const double fitDown = static_cast<double>(std::max(down.view, 1)) / down.picture;
    return std::min({fitAcross, fitDown, kLargestFit});
}

} // namespace pictorel
