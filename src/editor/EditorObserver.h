// What the editor tells those who show it, and the little that it asks of them.
#pragma once

#include "editor/Image_Mods.h"
#include "picture/PixelArray.h"

namespace pictorel {

// The part of the picture that is seen, in picture pixels, and how large. All of it where nobody shows it.
struct ShownPart {
    double zoom = 0; // 1 shows a picture pixel on a device pixel
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

// Every member is called on the editor's thread, while one of its commands runs: it shows what it is told and
// returns; it neither changes the picture nor lets the person's input in. An editor without a window has the
// members as they stand here.
class EditorObserver {
  public:
    virtual ~EditorObserver() = default;

    virtual void PictureLoaded(PictureSlot /*slot*/) {}  // another working picture: shown anew, fitted
    virtual void PictureChanged(PictureSlot /*slot*/) {} // the working picture was worked on: shown in place
    virtual void SizeChanged(PictureSlot /*slot*/) {}    // ImageWidth and ImageHeight say which it is now
    virtual void HistoryChanged() {}
    virtual void DocumentChanged() {} // its name, or whether it is changed
    virtual void PreviewLoaded() {}   // PreviewPixels are new
    virtual void PreviewChanged(const PixelArray& /*preview*/) {}
    virtual void Progressed(int /*step*/) {} // of an edit, 0 to 8

    // Paints what is pending, now, in the midst of a command. Clicks and keys wait.
    virtual void PaintPending() {}

    virtual ShownPart PartShown(PictureSlot /*slot*/) const { return {}; }
};

} // namespace pictorel
