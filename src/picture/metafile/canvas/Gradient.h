// Areas whose colour runs from corner to corner.
#pragma once

#include "picture/metafile/canvas/DeviceContext.h"

#include <array>

namespace pictorel::metafile {

// The modes in records.
inline constexpr std::uint32_t kAcross = 0;
inline constexpr std::uint32_t kDownwards = 1;
inline constexpr std::uint32_t kTriangles = 2;

struct GradientVertex {
    QPointF point; // logical units
    QRgb colour = 0xFF000000;
};

// The rectangle between two corners, its colour running across or downwards.
void FillGradient(DeviceContext& context, const GradientVertex& from, const GradientVertex& to,
                  bool downwards);

// Colours at the corners, mixed between them.
void FillTriangle(DeviceContext& context, const std::array<GradientVertex, 3>& corners);

} // namespace pictorel::metafile
