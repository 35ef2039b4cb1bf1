// Memory in which the decoder program leaves a picture, and the picture that is taken out of it. Nothing that
// the program says is believed.
#pragma once

#include "editor/Descriptor.h"
#include "picture/PixelArray.h"
#include "programs/decoder/DecoderMessages.h"

#include <cstdint>

namespace pictorel {

class AnswerMemory {
  public:
    // Room for so many bytes, which take no memory until they are written. Throws ImagingError(OutOfMemory).
    explicit AnswerMemory(std::int64_t bytes);

    int Number() const noexcept { return descriptor_.Number(); }
    std::int64_t Bytes() const noexcept { return bytes_; }

    // The picture of a good answer, in this memory, which nobody can change from then on. Throws
    // ImagingError(UnsupportedFormat) where the answer does not hold together, or where the program has kept
    // a hand on the memory; ImagingError(OutOfMemory).
    PixelArray Take(const decoder::Answer& answer);

  private:
    bool Holds(const decoder::Part& part) const noexcept;
    void Seal(const decoder::Answer& answer) const;
    std::vector<std::uint8_t> Bytes(const decoder::Part& part) const;
    PixelArray Rows(const decoder::Answer& answer) const;

    Descriptor descriptor_;
    std::int64_t bytes_;
};

} // namespace pictorel
