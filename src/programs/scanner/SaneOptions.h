// The settings of an open scanner: found by name, set to the nearest value that it offers.
#pragma once

#include "programs/scanner/SaneDevice.h"

#include <sane/sane.h>

namespace pictorel::scanner {

// Colour mode, depth, resolution and area, in this order, since each may change what the next one offers. A
// setting that the scanner lacks or refuses keeps the scanner's own value.
void ApplyWishes(SANE_Handle device, const ScanWishes& wishes);

struct Resolution {
    double x = 0; // dots per inch; 0 where the scanner does not tell
    double y = 0;
};

Resolution CurrentResolution(SANE_Handle device);

} // namespace pictorel::scanner
