// The row filters of PNG and the choice among them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace pictorel::codecs {

// Filters the rows of a picture one after another.
class PngRowFilter {
  public:
    PngRowFilter(std::size_t rowBytes, std::size_t pixelBytes);

    // Writes the filter's number and rowBytes filtered bytes to `out`: the filter whose bytes, taken as
    // signed, have the smallest sum of magnitudes, which deflates well. `row` and `above` have pixelBytes
    // readable zeros before them; `above` is all zeros for the first row.
    void Apply(const std::uint8_t* row, const std::uint8_t* above, std::uint8_t* out);

  private:
    std::size_t rowBytes_;
    std::size_t pixelBytes_;
    std::vector<std::uint8_t> candidate_;
};

} // namespace pictorel::codecs
