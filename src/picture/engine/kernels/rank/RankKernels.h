// Rows of components and the brightest or darkest of those near them.
#pragma once

#include "picture/engine/kernels/base/Sizes.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace pictorel::engine {

enum class Rank { Brightest, Darkest };

// Windows laid side by side to make a wider one: `parts` (2 to kMostParts) of them, `step` bytes apart but
// for the last, which begins `last` bytes behind the first.
inline constexpr int kMostParts = 4;
struct WindowStep {
    int parts;
    std::ptrdiff_t step;
    std::ptrdiff_t last;
};

inline constexpr std::size_t kRankRoom = kCacheLine;

// Where a row's results go: `streams` past the cache.
struct RankRow {
    const std::uint8_t* alpha; // pixels whose alpha is kept
    std::uint8_t* out;         // begins on a 64-byte boundary, room for the last 64 bytes begun
    int width;
    bool streams;
    const std::uint8_t* ahead = nullptr; // of the picture, fetched meanwhile; or null
};

// Whether the brightest or the darkest is the extreme, `rank` says. All but ExtremeOfRows read and write up
// to kRankRoom bytes further than they are asked to.
struct RankKernels {
    // upper[i] and lower[i], `count` bytes each, become the extremes of rows[...][offset + i], of two or more
    // rows, without the last and without the first.
    void (*ExtremeOfRows)(Rank rank, std::span<const std::uint8_t* const> rows, std::size_t offset,
                          std::size_t count, std::uint8_t* upper, std::uint8_t* lower);

    // out[i] becomes the extreme of the components that `step` names, from in[i] on; `out` may be `in`.
    void (*SpreadWindow)(Rank rank, const WindowStep& step, std::size_t count, const std::uint8_t* in,
                         std::uint8_t* out);

    // The same, into a row of the result, with alpha from the row given for it.
    void (*JoinRow)(Rank rank, const WindowStep& step, const std::uint8_t* colour, const RankRow& row);

    // inner + share (outer - inner), rounded to nearest, with alpha from the row given for it. `share` is in
    // 1/kFixedUnit, 0 to kFixedUnit - 1.
    void (*MixRow)(const std::uint8_t* inner, const std::uint8_t* outer, int share, const RankRow& row);

    static const RankKernels& Plain();
    static const RankKernels& Best();
};

} // namespace pictorel::engine
