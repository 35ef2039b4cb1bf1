// Acquiring a page from a scanner.
#pragma once

#include "picture/PixelArray.h"

#include <cstdint>
#include <functional>
#include <string>

namespace pictorel {

// Opening and acquiring return at once; what they began is told by the handler and seen in the numbers below.
class ImageTwain {
  public:
    virtual ~ImageTwain() = default;

    virtual bool IsSourceManagerOpen() const = 0; // also while it still brings a page in
    virtual void OpenSourceManager() = 0;         // begins to look for sources
    virtual std::int32_t SourceCount() const = 0; // 0 until they are known

    // Called once after each opening, by the event loop: the sources are known, or none can be found out.
    virtual void SetSourcesKnownHandler(std::function<void()> handler) = 0;

    virtual void SelectSource(std::int32_t source) = 0; // throws ImagingError where there is no such source
    virtual void Acquire(bool showDialog) = 0; // one page; throws ImagingError where no source is at hand

    // A page on its way is still brought in, and the manager closes after it.
    virtual void CloseSourceManager() = 0;

    virtual bool IsAcquiring() const = 0;           // a page is on its way
    virtual int PercentAcquired() const = 0;        // 0 where the scanner does not tell
    virtual std::int32_t AcquiredCount() const = 0; // pages waiting
    virtual void CopyAcquired(std::int32_t page, PixelArray& picture) = 0; // and it waits no longer

    // What ended the last acquisition without a page, as a sentence for the person; asking forgets it.
    virtual std::string TakeFailure() = 0;
};

} // namespace pictorel
