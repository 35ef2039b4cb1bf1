// The zoom levels that zooming in and out goes through, see ZoomLadder.h.
#include "view/ZoomLadder.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace pictorel {
namespace {

// Ten rungs a decade, three to a doubling, rounded so that 100 % and its halves down to 12.5 % stand on it.
constexpr std::array kRungs = {0.01,  0.0125, 0.016, 0.02, 0.025, 0.032, 0.04, 0.05, 0.064, 0.08, 0.1,
                               0.125, 0.16,   0.2,   0.25, 0.32,  0.4,   0.5,  0.64, 0.8,   1.0,  1.25,
                               1.6,   2.0,    2.5,   3.2,  4.0,   5.0,   6.4,  8.0,  10.0};

constexpr bool RisesInEvenSteps() {
    for (std::size_t i = 1; i < kRungs.size(); ++i) {
        const double step = kRungs[i] / kRungs[i - 1];
        if (step < 1.24 || step > 1.29) {
            return false;
        }
    }
    return true;
}

static_assert(RisesInEvenSteps(), "the rungs rise by about a quarter each");
static_assert(kRungs.front() == kSmallestZoom && kRungs.back() == kLargestZoom);

constexpr double kSameRung = 1e-6; // relative

} // namespace

double RungAbove(double zoom) noexcept {
    const auto* const rung = std::upper_bound(kRungs.begin(), kRungs.end(), zoom * (1.0 + kSameRung));
    return rung == kRungs.end() ? zoom : *rung;
}

double RungBelow(double zoom) noexcept {
    const auto* const rung = std::lower_bound(kRungs.begin(), kRungs.end(), zoom * (1.0 - kSameRung));
    return rung == kRungs.begin() ? zoom : *std::prev(rung);
}

} // namespace pictorel
