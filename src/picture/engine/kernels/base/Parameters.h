// Checks of parameters that the formulas cannot take; the ranges of the sliders all pass.
#pragma once

#include "picture/ImagingError.h"

#include <cmath>
#include <string>

namespace pictorel::engine {

// Throws ImagingError(InvalidValue) unless `value` lies in lowest..highest; NaN does not.
inline void RequireRange(const char* name, double value, double lowest, double highest) {
    if (!(value >= lowest && value <= highest)) {
        throw ImagingError(ImagingFailure::InvalidValue,
                           std::string("The value of ") + name + " is out of range.");
    }
}

} // namespace pictorel::engine
