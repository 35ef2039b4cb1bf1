// The state of the open picture; one object, owned by the main window.
#pragma once

#include "editor/ImageCodec.h"
#include "editor/ImageTransform.h"
#include "editor/ImageUtility.h"
#include "editor/ImageView.h"
#include "picture/PixelArray.h"
#include "platform/FileSystem.h"
#include "platform/Folders.h"

#include <QString>

#include <array>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace pictorel {

using PictureSlot = std::int16_t; // 0..100; the editor uses 0

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

// The imaging object of a slot; a slot without one raises std::out_of_range.
template <typename T>
class SlotObjects {
  public:
    void Set(int slot, T& object) { objects_(slot) = &object; }

    T& operator()(int slot) const {
        T* const object = objects_(slot);
        if (object == nullptr) {
            throw std::out_of_range("There is no picture " + std::to_string(slot));
        }
        return *object;
    }

  private:
    SlotTable<T*> objects_;
};

struct Image_Mods {
    PixelArray ImagePixels;              // the last committed picture: every operation starts from it
    PixelArray PreviewPixels;            // the reduced copy that slider previews start from
    SlotTable<std::int16_t> ImageWidth;  // pixels
    SlotTable<std::int16_t> ImageHeight; // pixels
    SlotTable<bool> ImageModified;       // changed since it was opened, scanned or saved
    QString OpenDialogFolder;            // where the dialogs begin: a folder, or the file chosen last
    QString SaveDialogFolder;
    QString PictureName; // the open picture's file without its folder, or what a scanned page is called
    bool LivePreviewMode = true; // False only while a slider commit runs its operation

    SlotObjects<ImageTransform> Transforms; // ImageTransform(slot): the working picture
    SlotObjects<ImageView> Views;           // ImageView(slot): what is on screen
    std::unique_ptr<pictorel::ImageCodec> ImageCodec;
    std::unique_ptr<pictorel::ImageUtility> ImageUtility;
    pictorel::FileSystem FileSystem;
    // Shared with the process, which removes it also where it ends past this object.
    std::shared_ptr<pictorel::WorkingFolder> WorkingFolder = std::make_shared<pictorel::WorkingFolder>();

    QString GetTempFolder() { return WorkingFolder->GetTempFolder(); }
};

} // namespace pictorel
