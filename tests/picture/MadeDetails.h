// Metadata of a picture, every field set and each in its own way.
#pragma once

#include "picture/Metadata.h"

namespace pictorel::test {

inline Metadata MadeDetails() {
    Metadata details;
    details.exif = {'I', 'I', '*', 0, 8, 0, 0, 0};
    details.icc = {4, 5, 6};
    details.dotsPerInchX = 300;
    details.dotsPerInchY = 72;
    return details;
}

} // namespace pictorel::test
