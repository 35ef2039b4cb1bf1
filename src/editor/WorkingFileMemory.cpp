// Remembers which pixels the newest working file holds, see WorkingFileMemory.h.
#include "editor/WorkingFileMemory.h"

#include <filesystem>

namespace pictorel {

void WorkingFileMemory::Remember(const std::string& fileName, const PixelArray& picture) {
    if (picture.Reduction() != 1.0) {
        Forget(fileName); // a reduced copy must not push out the picture that it was made from
        return;
    }
    fileName_ = fileName;
    picture_ = picture;
}

void WorkingFileMemory::FileRenamed(const std::string& from, const std::string& to) {
    if (from == fileName_) {
        fileName_ = to;
    } else {
        Forget(to); // another file has taken its place
    }
}

void WorkingFileMemory::Forget(const std::string& fileName) {
    if (fileName == fileName_) {
        fileName_.clear();
        picture_ = PixelArray();
    }
}

std::optional<std::string> WorkingFileMemory::FileOf(const PixelArray& picture) const {
    const bool same = picture_.SharesPixelsWith(picture) && picture_.HasAlpha() == picture.HasAlpha() &&
                      picture_.Reduction() == picture.Reduction() && picture_.Details() == picture.Details();
    std::error_code error;
    return same && std::filesystem::exists(fileName_, error) ? std::optional(fileName_) : std::nullopt;
}

bool WorkingFileMemory::LinkAs(const std::string& fileName, const PixelArray& picture) {
    const auto file = FileOf(picture);
    if (!file) {
        return false;
    }
    if (fileName == *file) {
        return true; // it holds the picture already, and removing it for the link would lose it
    }
    // Working files are only ever replaced as a whole, so two names of one file never disturb each other.
    std::error_code error;
    std::filesystem::remove(fileName, error);
    std::filesystem::create_hard_link(*file, fileName, error);
    if (error) {
        return false;
    }
    return true;
}

} // namespace pictorel
