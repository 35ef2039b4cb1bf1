// The file in which a save grows, beside the one whose place it takes when it is whole.
#pragma once

#include "editor/Descriptor.h"

#include <cstdint>
#include <span>
#include <string>

namespace pictorel {

// Goes with the object unless it has taken the target's place. While the object lives it holds a lock on the
// file, so that what a killed process left can be told from what another is writing at this moment.
class FileBeside {
  public:
    // An empty file in the target's folder, with the rights, list and attributes of the target where that is
    // there. `fileName` is what messages call the target. Throws ImagingError(FileAccess) saying why.
    FileBeside(std::string target, std::string fileName);
    ~FileBeside();
    FileBeside(const FileBeside&) = delete;
    FileBeside& operator=(const FileBeside&) = delete;

    // Appends the bytes. Throws as above.
    void Write(std::span<const std::uint8_t> bytes) const;

    // Throws ImagingError(FileAccess) where the disk does not have all that was written.
    void Flush() const;

    void TakePlace(); // throws as above, with the old target still there

    // After that: the new name on the disk, too. Throws where the disk says that it is not.
    void FlushFolder() const;

    // Removes what processes that were killed while they saved have left in the target's folder.
    void SweepFolder() const noexcept;

  private:
    bool Create(bool isPrivate);

    std::string target_;
    std::string fileName_;
    std::string folder_;
    std::string name_;
    Descriptor descriptor_;
    bool isInPlace_ = false;
};

} // namespace pictorel
