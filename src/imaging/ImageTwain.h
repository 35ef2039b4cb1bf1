// Acquiring a page from a scanner.
#pragma once

#include "imaging/PixelArray.h"

#include <cstdint>

namespace pictorel {

// The number in each comment is the member's number in the interface catalogue that the Scan command is
// written against.
class ImageTwain {
  public:
    virtual ~ImageTwain() = default;

    virtual bool IsSourceManagerOpen() const = 0;                          // 8
    virtual void OpenSourceManager() = 0;                                  // 6
    virtual std::int32_t SourceCount() const = 0;                          // 3
    virtual void SelectSource(std::int32_t source) = 0;                    // 5
    virtual void Acquire(bool showDialog) = 0;                             // 10
    virtual void CloseSourceManager() = 0;                                 // 7
    virtual std::int32_t AcquiredCount() const = 0;                        // 1; pages waiting
    virtual void CopyAcquired(std::int32_t page, PixelArray& picture) = 0; // 2
};

} // namespace pictorel
