// The picture display: what the editor asks of a zoomable view of one picture.
#pragma once

#include "picture/PixelArray.h"

#include <cstdint>
#include <functional>

namespace pictorel {

// A colour as 0x00BBGGRR.
using ColourValue = std::uint32_t;

// The number in each comment is the member's number in the interface catalogue that the handlers are written
// against. Zoom 1.0 shows one picture pixel on one device pixel. The centre is the point of the picture, in
// picture pixels, at the middle of the view. Members that take a picture or a number throw
// ImagingError(InvalidValue) for a value that cannot be shown (zoom not above 0 or not finite).
class ImageView {
  public:
    virtual ~ImageView() = default;

    virtual void Show(const PixelArray& picture) = 0;          // 1; keeps zoom and centre where they fit
    virtual void ShowSecondPlane(const PixelArray& plane) = 0; // 2; alpha of the picture shown
    virtual PixelArray CopyAsShown() const = 0;                // 4; the visible part, in picture pixels
    virtual void SetRedraw(bool on) = 0;                       // 10; on repaints once
    virtual void SetBorderStyle(int style) = 0;                // 13; 0 none
    virtual void SetScalingQuality(int quality) = 0;           // 15; 0 nearest .. 4 area-filtered
    virtual ColourValue BackgroundColour() const = 0;          // 16
    virtual void SetBackgroundColour(ColourValue colour) = 0;  // 16
    virtual double Zoom() const = 0;                           // 17
    virtual void SetZoom(double zoom) = 0;                     // 17
    virtual double CentreX() const = 0;                        // 18
    virtual void SetCentreX(double x) = 0;                     // 18
    virtual double CentreY() const = 0;                        // 19
    virtual void SetCentreY(double y) = 0;                     // 19
    virtual void ZoomIn() = 0;                                 // 100; to the next step of the zoom ladder
    virtual void ZoomOut() = 0;                                // 101
    virtual void Fit() = 0;    // 102; whole picture visible and centred, enlarging a small one
    virtual void FitNew() = 0; // 103; the same for a picture just shown, never larger than its size

    // Called after the person at the view changed its zoom or centre with wheel or mouse, never for the
    // members above.
    virtual void SetViewChangedHandler(std::function<void()> handler) = 0;
};

} // namespace pictorel
