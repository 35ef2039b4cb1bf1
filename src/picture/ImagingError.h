// The one exception of the engine and the codecs: what kind of failure it was, and a text fit for a person.
#pragma once

#include <stdexcept>
#include <string>

namespace pictorel {

enum class ImagingFailure {
    UnsupportedFormat, // the bytes are no picture of a kind we read, or are damaged beyond use
    TooLarge,          // beyond the limits of Limits.h, found out before memory is taken
    OutOfMemory,       // the system has no memory for the picture
    InvalidValue,      // a parameter outside what the operation or the control takes
    FileAccess,        // the file cannot be opened, read, written or renamed
};

class ImagingError : public std::runtime_error {
  public:
    ImagingError(ImagingFailure kind, const std::string& text) : std::runtime_error(text), kind_(kind) {}

    ImagingFailure Kind() const noexcept { return kind_; }

  private:
    ImagingFailure kind_;
};

} // namespace pictorel
