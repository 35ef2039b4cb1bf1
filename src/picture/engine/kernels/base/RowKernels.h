// Whole rows of bytes: copied into a result, added to sums.
#pragma once

#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

struct RowKernels {
    // Copies `size` bytes, which do not overlap, into a row of a result: past the cache where it `streams`
    // and `out` begins on a whole vector. `ahead`, a row of the picture that is read soon, is fetched
    // meanwhile; it may be null.
    void (*CopyRow)(const std::uint8_t* in, std::size_t size, bool streams, std::uint8_t* out,
                    const std::uint8_t* ahead);

    // sums[i] += row[i] for `count` bytes, modulo 2^16.
    void (*AddBytes)(const std::uint8_t* row, std::size_t count, std::uint16_t* sums);

    static const RowKernels& Plain();
    static const RowKernels& Best();
};

} // namespace pictorel::engine
