// How a picture file becomes the working picture, and the working picture a file again.
#pragma once

#include "editor/EditorObserver.h"
#include "editor/Image_Mods.h"
#include "platform/Messages.h"

#include <QString>

namespace pictorel {

class PictureFiles {
  public:
    PictureFiles(Image_Mods& document, EditorObserver*& observer, Messages& messages);

    // Loads the file into the slot and has it shown. False, after a message, for a file that is no picture of
    // at least 2 x 2 pixels or a larger one than the limits, which the message tells; whatever was open then
    // stays as it was, its size included.
    bool LoadImageFile(PictureSlot slot, const QString& fileName);

    // LoadImageFile for a file that the person chose: the Open dialog begins there from now on.
    bool OpenImageFile(PictureSlot slot, const QString& fileName);

    // Writes the slot's working picture in the format that the extension names, any letter case. False, after
    // a message, when that is none of kSaveFormats or writing failed; a file that was there is then still
    // whole.
    bool SaveImageFile(PictureSlot slot, const QString& fileName, const QString& formatText);

    // SaveImageFile for a file that the person chose, in kSaveSpellings too: the Save dialog begins there
    // from now on. Asks before it replaces the damaged file that the picture was opened from.
    bool SaveImageFileAs(PictureSlot slot, const QString& fileName);

    // Refresh the size tables from the working picture; without one the old value stays.
    void ReadImageWidth(PictureSlot slot);
    void ReadImageHeight(PictureSlot slot);

  private:
    void ShowError(const QString& text);
    void ShowRefusal(const std::string& reason);
    bool MayReplace(const QString& fileName);

    Image_Mods& document_;
    EditorObserver*& observer_;
    Messages& messages_;
};

// "(W x H) : 800 x 600"
QString ImageInfoText(int width, int height);

// "damaged: 37 % shown", for PixelArray::PartShown(); empty for a whole picture.
QString DamageText(double partShown);

// "800 x 600 pixels"
QString PixelSizeText(int width, int height);

} // namespace pictorel
