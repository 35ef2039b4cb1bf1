// The brightest or darkest of neighbouring components as plain loops, see RankRows.h.
#include "imaging/engine/RankRows.h"

#include <algorithm>

namespace pictorel::engine::scalar {

void SpreadWindow(Rank rank, const WindowStep& step, std::size_t count, const std::uint8_t* in,
                  std::uint8_t* out) {
    for (std::size_t i = 0; i < count; ++i) {
        std::uint8_t found = in[i];
        for (int part = 1; part < step.parts; ++part) {
            const std::uint8_t other = in[i + (part + 1 < step.parts ? part * step.step : step.last)];
            found = rank == Rank::Brightest ? std::max(found, other) : std::min(found, other);
        }
        out[i] = found;
    }
}

void JoinRow(const std::uint8_t* colour, const RankRow& row) {
    for (int i = 0; i < 4 * row.width; i += 4) {
        std::copy_n(colour + i, 3, row.out + i);
        row.out[i + 3] = row.alpha[i + 3];
    }
}

void MixRow(const std::uint8_t* inner, const std::uint8_t* outer, int share, const RankRow& row) {
    for (int i = 0; i < 4 * row.width; ++i) {
        const int change = ((outer[i] - inner[i]) * share + (1 << (kShareBits - 1))) >> kShareBits;
        row.out[i] = i % 4 == 3 ? row.alpha[i] : static_cast<std::uint8_t>(inner[i] + change);
    }
}

} // namespace pictorel::engine::scalar
