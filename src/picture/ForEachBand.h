// Runs a loop over rows on all cores, in bands.
#pragma once

#include <functional>

namespace pictorel {

// Calls body(firstRow, endRow) for bands that together cover 0 <= row < rows once each, on several threads
// when the work pays for them, and returns when all have ended. `bytesPerRow` is what one row reads and
// writes: it decides whether and how finely to divide. The first exception of a band is rethrown here.
void ForEachBand(int rows, std::size_t bytesPerRow,
                 const std::function<void(int firstRow, int endRow)>& body);

} // namespace pictorel
