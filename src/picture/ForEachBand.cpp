// Runs a loop over rows on all cores, see ForEachBand.h.
#include "picture/ForEachBand.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>

#include <algorithm>
#include <cstddef>

namespace pictorel {
namespace {

// A band of this size is large enough that starting it costs nothing worth naming, and a picture below two
// such bands (a preview copy) is done faster by the caller alone.
constexpr std::size_t kBandBytes = std::size_t{512} << 10;

} // namespace

void ForEachBand(int rows, std::size_t bytesPerRow, const std::function<void(int, int)>& body) {
    if (rows <= 0) {
        return;
    }
    const std::size_t rowBytes = std::max<std::size_t>(bytesPerRow, 1);
    if (static_cast<std::size_t>(rows) * rowBytes < 2 * kBandBytes) {
        body(0, rows);
        return;
    }
    const int grain = static_cast<int>(std::clamp<std::size_t>(kBandBytes / rowBytes, 1, rows));
    tbb::parallel_for(tbb::blocked_range<int>(0, rows, grain),
                      [&](const tbb::blocked_range<int>& band) { body(band.begin(), band.end()); });
}

} // namespace pictorel
