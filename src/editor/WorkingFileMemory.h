// Remembers which pixels the newest working file holds, so that they are neither encoded nor decoded twice.
#pragma once

#include "picture/PixelArray.h"

#include <optional>
#include <string>

namespace pictorel {

// Holds the pixels of one file, the one written or read last that is no reduced copy; they are shared with
// the open picture and cost nothing.
class WorkingFileMemory {
  public:
    void Remember(const std::string& fileName, const PixelArray& picture);

    void FileRenamed(const std::string& from, const std::string& to);

    // The file that holds exactly this picture, if it is the one remembered and still there.
    std::optional<std::string> FileOf(const PixelArray& picture) const;

    // Makes sure that the file of this name holds the picture, by giving the remembered file a second name.
    // False where the picture is in no remembered file, or where the file system cannot.
    bool LinkAs(const std::string& fileName, const PixelArray& picture);

  private:
    void Forget(const std::string& fileName); // it holds something else from now on

    std::string fileName_;
    PixelArray picture_;
};

} // namespace pictorel
