// Refuses a parameter that an operation cannot take, with a text that names it.
#pragma once

#include "imaging/ImagingError.h"

#include <cmath>
#include <string>

namespace pictorel::engine {

// Throws ImagingError(InvalidValue) unless lowest <= value <= highest.
inline void RequireWithin(double value, int lowest, int highest, const std::string& name) {
    if (!(value >= lowest && value <= highest)) {
        throw ImagingError(ImagingFailure::InvalidValue, name + " must be between " + std::to_string(lowest) +
                                                             " and " + std::to_string(highest) + ".");
    }
}

// Throws ImagingError(InvalidValue) for infinities and what is no number.
inline void RequireFinite(double value, const std::string& name) {
    if (!std::isfinite(value)) {
        throw ImagingError(ImagingFailure::InvalidValue, name + " must be a finite number.");
    }
}

} // namespace pictorel::engine
