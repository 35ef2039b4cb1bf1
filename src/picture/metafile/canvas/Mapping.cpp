// From record units to the device, see Mapping.h.
#include "picture/metafile/canvas/Mapping.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace pictorel::metafile {
namespace {

// Millimetres a unit, of the modes with physical units, from LowMetric on; their y axis points up.
constexpr std::array kMillimetresPerUnit{0.1, 0.01, 0.254, 0.0254, 25.4 / 1440};

double Bounded(double value) { // never 0, never so large that a product of two is infinite
    constexpr double kLeast = 1e-6;
    constexpr double kMost = 1e9;
    return std::copysign(std::clamp(std::abs(value), kLeast, kMost), value);
}

} // namespace

void Mapping::SetMode(int mode) {
    if (mode >= static_cast<int>(MapMode::Text) && mode <= static_cast<int>(MapMode::Anisotropic)) {
        mode_ = static_cast<MapMode>(mode);
    }
}

void Mapping::SetExtent(QPointF& extent, QPointF value) {
    if (HasFreeExtents() && value.x() != 0 && value.y() != 0) {
        extent = {Bounded(value.x()), Bounded(value.y())};
    }
}

void Mapping::Scale(QPointF& extent, QPointF numerator, QPointF denominator) {
    if (denominator.x() != 0 && denominator.y() != 0) {
        SetExtent(extent, {extent.x() * numerator.x() / denominator.x(),
                           extent.y() * numerator.y() / denominator.y()});
    }
}

QPointF Mapping::PageScale() const {
    if (mode_ == MapMode::Text) {
        return {1, 1};
    }
    if (!HasFreeExtents()) {
        const double unit = kMillimetresPerUnit[static_cast<std::size_t>(mode_) -
                                                static_cast<std::size_t>(MapMode::LowMetric)];
        return {unit * dotsPerMillimetre_.x(), -unit * dotsPerMillimetre_.y()};
    }
    const QPointF scale{viewport_.x() / window_.x(), viewport_.y() / window_.y()};
    if (mode_ == MapMode::Anisotropic) {
        return scale;
    }
    const double least = std::min(std::abs(scale.x()), std::abs(scale.y()));
    return {std::copysign(least, scale.x()), std::copysign(least, scale.y())};
}

QTransform Mapping::PageToDevice() const {
    const QPointF scale = PageScale();
    return {scale.x(),
            0,
            0,
            scale.y(),
            viewportOrigin_.x() - windowOrigin_.x() * scale.x(),
            viewportOrigin_.y() - windowOrigin_.y() * scale.y()};
}

} // namespace pictorel::metafile
