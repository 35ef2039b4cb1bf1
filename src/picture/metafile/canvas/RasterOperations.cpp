// How what is drawn mixes with what is there, see RasterOperations.h.
#include "picture/metafile/canvas/RasterOperations.h"

#include <array>

namespace pictorel::metafile {
namespace {

using Mode = QPainter::CompositionMode;

// In the order of the truth tables.
constexpr std::array<Mode, 16> kModes{
    QPainter::RasterOp_ClearDestination,        QPainter::RasterOp_NotSourceAndNotDestination,
    QPainter::RasterOp_NotSourceAndDestination, QPainter::RasterOp_NotSource,
    QPainter::RasterOp_SourceAndNotDestination, QPainter::RasterOp_NotDestination,
    QPainter::RasterOp_SourceXorDestination,    QPainter::RasterOp_NotSourceOrNotDestination,
    QPainter::RasterOp_SourceAndDestination,    QPainter::RasterOp_NotSourceXorDestination,
    QPainter::CompositionMode_Destination,      QPainter::RasterOp_NotSourceOrDestination,
    QPainter::CompositionMode_SourceOver,       QPainter::RasterOp_SourceOrNotDestination,
    QPainter::RasterOp_SourceOrDestination,     QPainter::RasterOp_SetDestination,
};
static_assert(kModes[kCopyPen - 1] == QPainter::CompositionMode_SourceOver);

} // namespace

QPainter::CompositionMode CompositionOf(int operation) noexcept {
    const bool known = operation >= 1 && operation <= static_cast<int>(kModes.size());
    return kModes[static_cast<std::size_t>(known ? operation : kCopyPen) - 1];
}

} // namespace pictorel::metafile
