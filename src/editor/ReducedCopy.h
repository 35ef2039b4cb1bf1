// The reduced copy of the picture, 250 pixels wide, that slider previews are shown on, and the finer copies
// that they are worked out on.
#pragma once

#include "editor/EditorObserver.h"
#include "editor/FinerCopies.h"
#include "editor/Image_Mods.h"
#include "editor/PictureFiles.h"
#include "picture/engine/Resample.h"
#include "picture/engine/Window.h"

#include <memory>
#include <optional>

namespace pictorel {

class ReducedCopy {
  public:
    ReducedCopy(Image_Mods& document, PictureFiles& files, EditorObserver*& observer);

    // Writes "tmp_preview.jpg" among the working files from the picture of the slot as it is seen: the whole
    // picture, or the visible part when zoomed in beyond 100 %. A step that fails is skipped.
    void UpdatePreviewImage(PictureSlot slot);

    // Reads the file into PreviewPixels and has it shown. Stops at the first error and is then false.
    bool ShowImagePreview(const QString& fileName);

    // What the operation makes of the copy that PreviewPixels hold, in their size. Throws ImagingError, and
    // NumberError from the operation's numbers.
    PixelArray Preview(const OperationRow& row, const Values& values);

    // Makes the copy that the operation's preview needs, so that the first change need not wait for it.
    void Prepare(const OperationRow& row);

    // The picture is another now: what the finer copies were made from must not be kept for them.
    void Forget() { source_.reset(); }

    QString FileName() const { return document_.WorkingFile(QStringLiteral("tmp_preview.jpg")); }

  private:
    // What the copy shows, of which picture.
    struct Source {
        std::shared_ptr<PicturePyramid> whole;
        engine::Window part;
        engine::Window around; // the part and a margin of what effects bring into it
        FinerCopies copies;    // of that

        bool IsPart() const;
        engine::Area PartIn(const PixelArray& copy) const; // in pixels of one of the copies
    };

    void Write(const PixelArray& picture, const engine::Window& part, const PixelArray& seen);
    PixelArray Shown(const PixelArray& result, const engine::Area& area) const;
    PixelArray PreviewWithin(const OperationRow& row, const Values& values) const;

    Image_Mods& document_;
    PictureFiles& files_;
    EditorObserver*& observer_;
    std::optional<Source> source_;
};

} // namespace pictorel
