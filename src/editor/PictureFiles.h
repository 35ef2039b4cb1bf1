// How a picture file becomes the picture on screen, and the picture on screen a file again.
#pragma once

#include "controls/CommonDialog.h"
#include "controls/ControlArray.h"
#include "controls/Label.h"
#include "editor/EditorServices.h"
#include "editor/Image_Mods.h"
#include "platform/Messages.h"

#include <QString>

namespace pictorel {

struct PictureFilesControls {
    ControlArray<Label> lbl_ImageInfo; // size of the picture, one a slot
};

class PictureFiles {
  public:
    PictureFiles(Image_Mods& document, PictureFilesControls controls, EditorServices& services,
                 Messages& messages, QString applicationTitle);

    // Both show their dialog and then load or save; True when a file was chosen and that went well.
    bool OpenImageDialog(PictureSlot slot, CommonDialog& dialog);
    bool SaveImageDialog(PictureSlot slot, CommonDialog& dialog);

    // LoadImageFile, after which the Open dialog begins in the file's folder.
    bool OpenImageFile(PictureSlot slot, const QString& fileName);

    // Loads the file into the slot and shows it. False, after a message, for a file that is no picture of at
    // least 2 x 2 pixels; what was open then stays on screen.
    bool LoadImageFile(PictureSlot slot, const QString& fileName);

    // Writes the slot's working picture in the format that the extension names, any letter case. False, after
    // a message, when that is none of kSaveFormats or writing failed; a file that was there is then still
    // whole.
    bool SaveImageFile(PictureSlot slot, const QString& fileName, const QString& formatText);

    // Refresh the size tables from the working picture; on an error the old value stays.
    void ReadImageWidth(PictureSlot slot);
    void ReadImageHeight(PictureSlot slot);

  private:
    void ShowError(const QString& text, const QString& title);

    Image_Mods& document_;
    PictureFilesControls controls_;
    EditorServices& services_;
    Messages& messages_;
    QString applicationTitle_;
};

// "(W x H) : 800 x 600"
QString ImageInfoText(int width, int height);

// "800 x 600 pixels"
QString PixelSizeText(int width, int height);

} // namespace pictorel
