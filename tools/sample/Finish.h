// The camera's part of a picture: lens, exposure, vignette and grain, and the file.
#pragma once

#include "Picture.h"

#include <filesystem>

namespace pictorel::sample {

struct Look {
    float exposure; // factor on the light before the film curve
    float vignette; // darkening of the corners, 0..1
    float grain;    // standard deviation of the grain in 8-bit steps
    bool filmCurve; // false keeps colours as painted, for drawings
};

// Writes the picture as binary PPM (P6). Throws std::runtime_error when the file cannot be written whole.
void WritePicture(const Picture& picture, const Look& look, const std::filesystem::path& path);

} // namespace pictorel::sample
