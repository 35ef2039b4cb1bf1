// The reduced copy of the picture, 250 pixels wide, that slider previews start from.
#pragma once

#include "editor/ImageConvert.h"
#include "editor/Image_Mods.h"
#include "editor/PictureFiles.h"

namespace pictorel {

class ReducedCopy {
  public:
    ReducedCopy(Image_Mods& document, PictureFiles& files, ImageConvert& convert);

    // Writes "tmp_preview.jpg" in the temporary folder from the picture of the slot as the view shows it: the
    // whole picture, or the visible part when zoomed in beyond 100 %. A step that fails is skipped.
    void UpdatePreviewImage(PictureSlot slot);

    // Reads the file into PreviewPixels and shows it, fitted, in `view`. Stops at the first error.
    void ShowImagePreview(const QString& fileName, ImageView& view);

    QString FileName(); // of "tmp_preview.jpg"

  private:
    void ConvertWholePicture(PictureSlot slot, const QString& intermediate);
    void ConvertVisiblePart(PictureSlot slot, const QString& intermediate);

    Image_Mods& document_;
    PictureFiles& files_;
    ImageConvert& convert_;
};

} // namespace pictorel
