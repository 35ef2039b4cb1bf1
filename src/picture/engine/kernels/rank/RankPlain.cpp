// The brightest or darkest of neighbouring components as plain loops, see RankKernels.h.
#include "picture/engine/kernels/base/FixedPoint.h"
#include "picture/engine/kernels/rank/RankKernels.h"

#include <algorithm>

namespace pictorel::engine {
namespace {

std::uint8_t Picked(Rank rank, std::uint8_t a, std::uint8_t b) {
    return rank == Rank::Brightest ? std::max(a, b) : std::min(a, b);
}

void ExtremeOfRows(Rank rank, std::span<const std::uint8_t* const> rows, std::size_t offset,
                   std::size_t count, std::uint8_t* upper, std::uint8_t* lower) {
    for (std::size_t i = 0; i < count; ++i) {
        std::uint8_t found = rows[1][offset + i];
        for (const std::uint8_t* const row : rows.subspan(1, rows.size() - 2)) {
            found = Picked(rank, found, row[offset + i]);
        }
        upper[i] =
            rows.size() == 2 ? rows.front()[offset + i] : Picked(rank, found, rows.front()[offset + i]);
        lower[i] = Picked(rank, found, rows.back()[offset + i]);
    }
}

void SpreadWindow(Rank rank, const WindowStep& step, std::size_t count, const std::uint8_t* in,
                  std::uint8_t* out) {
    for (std::size_t i = 0; i < count; ++i) {
        std::uint8_t found = in[i];
        for (int part = 1; part < step.parts; ++part) {
            found = Picked(rank, found, in[i + (part + 1 < step.parts ? part * step.step : step.last)]);
        }
        out[i] = found;
    }
}

void JoinRow(Rank rank, const WindowStep& step, const std::uint8_t* colour, const RankRow& row) {
    SpreadWindow(rank, step, 4 * static_cast<std::size_t>(row.width), colour, row.out);
    for (int i = 3; i < 4 * row.width; i += 4) {
        row.out[i] = row.alpha[i];
    }
}

void MixRow(const std::uint8_t* inner, const std::uint8_t* outer, int share, const RankRow& row) {
    for (int i = 0; i < 4 * row.width; ++i) {
        const int change = FixedProduct(outer[i] - inner[i], share);
        row.out[i] = i % 4 == 3 ? row.alpha[i] : static_cast<std::uint8_t>(inner[i] + change);
    }
}

constexpr RankKernels kPlain{
    .ExtremeOfRows = ExtremeOfRows,
    .SpreadWindow = SpreadWindow,
    .JoinRow = JoinRow,
    .MixRow = MixRow,
};

} // namespace

const RankKernels& RankKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
