// From rows of TIFF samples, whatever their size and kind, to B, G, R, A.
#pragma once

#include "imaging/codecs/ColourProfile.h"
#include "imaging/codecs/TiffLayout.h"

#include <cstdint>
#include <span>

namespace pictorel::codecs {

class TiffRowConverter {
  public:
    explicit TiffRowConverter(const TiffLayout& layout);

    // `planes` are the row in each plane up to the last that means anything (colours, then alpha), or the one
    // row of all samples.
    // Const use is safe from several threads.
    void ConvertRow(std::span<const std::uint8_t* const> planes, std::uint8_t* bgra, int pixels) const;

    // A number for a sample: unpacked to 0..255, or to 0..65535 where samples are wide.
    using Fetch = std::uint16_t (*)(const std::uint8_t* row, std::size_t index, const TiffLayout& layout);

  private:
    template <class Number>
    void Convert(std::span<const std::uint8_t* const> planes, std::uint8_t* bgra, int pixels) const;
    template <class Number>
    void Gather(std::span<const std::uint8_t* const> planes, int sample, Number* out, int step,
                int pixels) const;
    void LookUp(const std::uint8_t* row, std::uint8_t* bgra, int pixels) const;

    const TiffLayout& layout_;
    Fetch fetch_;
    ColourConverter converter_;
};

} // namespace pictorel::codecs
