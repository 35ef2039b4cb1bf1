// Rows of components and the brightest or darkest of those near them.
#pragma once

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

// Vectors of all but ExtremeOfRows read and write this much further than they are asked to.
inline constexpr std::size_t kRankRoom = 64;

// Where a row's results go: `streams` past the cache.
struct RankRow {
    const std::uint8_t* alpha; // pixels whose alpha is kept
    std::uint8_t* out;         // begins on a 64-byte boundary, room for the last 64 bytes begun
    int width;
    bool streams;
    const std::uint8_t* ahead = nullptr; // of the picture, fetched meanwhile; or null
};

// The share of the outer square in a mix of two, in 1/2^15.
inline constexpr int kShareBits = 15;

// ExtremeOfRows: upper[i] and lower[i] = the extremes of rows[...][offset + i], of two or more rows, without
// the last and without the first.
// SpreadWindow: out[i] = the extreme of the components that `step` names, from in[i] on; `out` may be `in`.
// JoinRow: the same, with alpha from the row given for it.
// MixRow: inner + share (outer - inner), rounded to nearest, with alpha from the row given for it.
namespace scalar {
void ExtremeOfRows(Rank rank, std::span<const std::uint8_t* const> rows, std::size_t offset,
                   std::size_t count, std::uint8_t* upper, std::uint8_t* lower);
void SpreadWindow(Rank rank, const WindowStep& step, std::size_t count, const std::uint8_t* in,
                  std::uint8_t* out);
void JoinRow(Rank rank, const WindowStep& step, const std::uint8_t* colour, const RankRow& row);
void MixRow(const std::uint8_t* inner, const std::uint8_t* outer, int share, const RankRow& row);
} // namespace scalar
namespace simd { // the same with the best vectors that the processor has
void ExtremeOfRows(Rank rank, std::span<const std::uint8_t* const> rows, std::size_t offset,
                   std::size_t count, std::uint8_t* upper, std::uint8_t* lower);
void SpreadWindow(Rank rank, const WindowStep& step, std::size_t count, const std::uint8_t* in,
                  std::uint8_t* out);
void JoinRow(Rank rank, const WindowStep& step, const std::uint8_t* colour, const RankRow& row);
void MixRow(const std::uint8_t* inner, const std::uint8_t* outer, int share, const RankRow& row);
} // namespace simd

} // namespace pictorel::engine
