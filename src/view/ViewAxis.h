// One axis of a view: where picture pixels fall on device pixels, the same across and down.
#pragma once

#include <cstdint>

namespace pictorel {

// From `begin` up to but without `end`.
struct Span {
    int begin = 0;
    int end = 0;

    int Length() const noexcept { return end - begin; }
    bool IsEmpty() const noexcept { return end <= begin; }
    bool operator==(const Span&) const = default;
};

// Positions on the device run from 0 at the edge of the view, in device pixels; positions in the picture from
// 0 at the edge of the picture, in picture pixels. Both are edges, not middles: pixel n covers n to n + 1.
struct ViewAxis {
    int view = 0;        // device pixels
    int picture = 0;     // picture pixels
    double zoom = 1.0;   // device pixels to one picture pixel; above 0
    double centre = 0.0; // picture position at the middle of the view

    // Device position of the picture's edge. A whole number, so that 100 % copies pixels and a picture does
    // not shimmer while it is dragged: what is drawn may lie up to half a device pixel beside the exact
    // place.
    std::int64_t Origin() const noexcept;

    // Device pixels that show the picture, of `extent` device pixels from 0 on.
    Span Drawn(int extent) const noexcept;

    // Picture pixels of which something can be seen; at least one when the picture has any.
    Span Visible() const noexcept;

    // Picture position at a device position.
    double PictureAt(double device) const noexcept { return centre + (device - 0.5 * view) / zoom; }

    // The centre at which `newZoom` leaves the picture position at `device` where it is.
    double CentreKeeping(double device, double newZoom) const noexcept {
        return PictureAt(device) - (device - 0.5 * view) / newZoom;
    }

    bool PictureExceedsView() const noexcept { return picture * zoom > view + kNothing; }

    // The centre nearest to the present one that leaves no part of the view empty, or the middle of a picture
    // that the view holds whole.
    double CentreInside() const noexcept;

    bool operator==(const ViewAxis&) const = default;

    // Device pixels; what arithmetic leaves of a whole number.
    static constexpr double kNothing = 1e-6;
};

// The largest zoom at which the whole picture is in the view, at most kLargestFit. 1 for an empty picture.
inline constexpr double kLargestFit = 64.0;
double FitZoom(const ViewAxis& across, const ViewAxis& down) noexcept;

} // namespace pictorel
