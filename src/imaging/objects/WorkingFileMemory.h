// Remembers which pixels the newest working file holds, so that they are neither encoded nor decoded twice.
#pragma once

#include <optional>
#include <string>

#include "imaging/PixelArray.h"

namespace pictorel {

// Holds the pixels of one file, the one written or read last that is no reduced copy; they are shared with the open
// picture and cost nothing.
class WorkingFileMemory {
  public:
    void Remember(const std::string& fileName, const PixelArray& picture);

    // The file that holds exactly this picture, if it is the one remembered and still there.
    std::optional<std::string> FileOf(const PixelArray& picture) const;

    // The pixels in the file, if it is the one remembered; an empty array otherwise.
    PixelArray PixelsOf(const std::string& fileName) const;

    // Gives the remembered file a second name. False where the file system cannot.
    bool LinkAs(const std::string& fileName, const PixelArray& picture);

  private:
    std::string fileName_;
    std::string linkedName_;
    PixelArray picture_;
};

} // namespace pictorel
