// The floating window that shows the preview of an adjustment, as the panels see it.
#pragma once

#include "picture/PixelArray.h"

#include <QString>

namespace pictorel {

class PreviewWindow {
  public:
    virtual ~PreviewWindow() = default;

    // Both load the window where it is not loaded, without showing it.
    virtual void ShowCopy(const PixelArray& reduced) = 0;    // the reduced copy, before the first change
    virtual void ShowPreview(const PixelArray& preview) = 0; // what an operation makes of it

    virtual void SetTitle(const QString& title) = 0;
    virtual void ShowModeless() = 0;
    virtual bool IsShown() const = 0;
    virtual void RepaintNow() = 0;
    virtual void Unload() = 0;
};

} // namespace pictorel
