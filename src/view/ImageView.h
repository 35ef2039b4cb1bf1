// A zoomable view of one picture, as the handlers around it see it.
#pragma once

#include "editor/EditorObserver.h"
#include "picture/PixelArray.h"

#include <functional>

namespace pictorel {

// Zoom 1.0 shows one picture pixel on one device pixel. The centre is the point of the picture, in picture
// pixels, at the middle of the view. Members that take a picture or a number throw ImagingError(InvalidValue)
// for a value that cannot be shown (zoom not above 0 or not finite).
class ImageView {
  public:
    virtual ~ImageView() = default;

    virtual void Show(const PixelArray& picture) = 0; // keeps zoom and centre where they fit
    virtual ShownPart PartShown() const = 0;          // without a picture of no size
    virtual void SetRedraw(bool on) = 0;              // on repaints once
    virtual void SetBorderStyle(int style) = 0;       // 0 none
    virtual void SetScalingQuality(int quality) = 0;  // 0 nearest .. 4 area-filtered
    virtual ColourValue BackgroundColour() const = 0;
    virtual void SetBackgroundColour(ColourValue colour) = 0;
    virtual double Zoom() const = 0;
    virtual void SetZoom(double zoom) = 0;
    virtual double CentreX() const = 0;
    virtual void SetCentreX(double x) = 0;
    virtual double CentreY() const = 0;
    virtual void SetCentreY(double y) = 0;
    virtual void ZoomIn() = 0; // to the next step of the zoom ladder
    virtual void ZoomOut() = 0;
    virtual void Fit() = 0;    // whole picture visible and centred, enlarging a small one
    virtual void FitNew() = 0; // the same for a picture just shown, never larger than its size

    // Called after the person at the view changed its zoom or centre with wheel or mouse, never for the
    // members above.
    virtual void SetViewChangedHandler(std::function<void()> handler) = 0;
};

} // namespace pictorel
