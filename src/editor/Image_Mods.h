// The state of the open picture; one object, owned by the editor.
#pragma once

#include "picture/PicturePyramid.h"
#include "picture/PixelArray.h"
#include "platform/FileSystem.h"
#include "platform/WorkingFolder.h"

#include <QString>

#include <array>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace pictorel {

class ImageCodec;

using PictureSlot = std::int16_t; // 0..100

inline constexpr PictureSlot kSlot = 0; // the one that the editor uses

// A colour as 0x00BBGGRR.
using ColourValue = std::uint32_t;

// A value for every picture slot. A slot outside 0..100 raises std::out_of_range.
template <typename T>
class SlotTable {
  public:
    T& operator()(int slot) { return values_[Checked(slot)]; }
    const T& operator()(int slot) const { return values_[Checked(slot)]; }

  private:
    static constexpr int kLast = 100;

    static std::size_t Checked(int slot) {
        if (slot < 0 || slot > kLast) {
            throw std::out_of_range("Subscript out of range: picture " + std::to_string(slot));
        }
        return static_cast<std::size_t>(slot);
    }

    std::array<T, kLast + 1> values_{};
};

struct Image_Mods {
    PixelArray ImagePixels;               // the last committed picture: every operation starts from it
    PixelArray PreviewPixels;             // the reduced copy that slider previews start from
    SlotTable<PixelArray> WorkingPicture; // what is on the screen and what is saved
    SlotTable<std::int16_t> ImageWidth;   // pixels
    SlotTable<std::int16_t> ImageHeight;  // pixels
    SlotTable<bool> ImageModified;        // changed since it was opened, scanned or saved
    QString OpenDialogFolder;             // where the dialogs begin: a folder, or the file chosen last
    QString SaveDialogFolder;             //
    QString PictureName;                  // the open picture's file without its folder, or "Scan"
    QString PictureFolder;                // where that file lies; empty for what is no file
    QString DamagedOriginal;              // the opened file, if only a part of its picture could be shown
    ColourValue BackgroundColour = 0x00FFFFFF; // of area that geometry exposes in an opaque picture
    bool LivePreviewMode = true;               // False only while a slider's commit runs its operation
    bool PreviewOutdated = false;              // the reduced copy does not show what the view shows

    std::shared_ptr<pictorel::ImageCodec> ImageCodec;
    // Of the working picture: the view and the reduced copy halve it once.
    std::shared_ptr<SharedPyramids> Pyramids = std::make_shared<SharedPyramids>();
    pictorel::FileSystem FileSystem;
    // Shared with the process, which removes it also where it ends past this object.
    std::shared_ptr<pictorel::WorkingFolder> WorkingFolder = std::make_shared<pictorel::WorkingFolder>();

    QString GetTempFolder() const { return WorkingFolder->GetTempFolder(); }

    // The path of a working file. Throws FileError where there is no folder for it: a name alone would be one
    // in the current folder, which is the person's.
    QString WorkingFile(const QString& name) const {
        const QString folder = GetTempFolder();
        if (folder.isEmpty()) {
            throw FileError("There is no folder for temporary files.");
        }
        return folder + name;
    }
};

} // namespace pictorel
