// Where scattered pixels are taken from, see DiffuseKernels.h.
#include "picture/engine/kernels/base/PositionRandom.h"
#include "picture/engine/kernels/stylize/DiffuseKernels.h"

#include <algorithm>

namespace pictorel::engine {
namespace {

// Evenly one of -radius..radius, from 16 random bits.
int Displacement(std::uint32_t random, int radius) {
    return static_cast<int>((random * (2 * static_cast<std::uint32_t>(radius) + 1)) >> 16) - radius;
}

void ChooseSources(const Scatter& scatter, int y, std::int32_t* sources) {
    const std::uint32_t randomRow = RandomRow(scatter.top + y);
    for (int x = 0; x <= scatter.lastColumn; ++x) {
        const std::uint32_t choice = RandomAt(randomRow, scatter.left + x);
        int column = x;
        int row = y;
        if (choice <= scatter.lastMoved) {
            const std::uint32_t place = MixOnce(choice);
            column = std::clamp(x + Displacement(place & 0xFFFF, scatter.radius), 0, scatter.lastColumn);
            row = std::clamp(y + Displacement(place >> 16, scatter.radius), 0, scatter.lastRow);
        }
        sources[x] = row * scatter.rowPixels + column;
    }
}

constexpr DiffuseKernels kPlain{
    .ChooseSources = ChooseSources,
};

} // namespace

const DiffuseKernels& DiffuseKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
