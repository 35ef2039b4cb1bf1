// Operations that move pixels: mirrors, turns, warps and tiling.
#pragma once

#include "imaging/PixelArray.h"

#include <cstdint>

// Alpha moves along with the colours (interpolated premultiplied where the source has alpha). Warps keep the
// canvas size and work about the centre with bicubic (Keys, a = -0.5) interpolation; the area they expose
// gets `background` (0x00BBGGRR), opaque, with an antialiased border.
namespace pictorel::engine {

PixelArray MirrorTopToBottom(const PixelArray& source);
PixelArray MirrorLeftToRight(const PixelArray& source);
PixelArray QuarterTurnLeft(const PixelArray& source);  // W x H becomes H x W
PixelArray QuarterTurnRight(const PixelArray& source); // W x H becomes H x W

// Counter-clockwise for positive degrees, as the angles of the other operations; whole turns are neutral.
PixelArray Rotate(const PixelArray& source, double degrees, std::uint32_t background);

// Shear by tan(degrees); -90..90, 0 is neutral, at +-90 only background is left. Vertical moves columns up
// and down, horizontal moves rows left and right.
PixelArray Skew(const PixelArray& source, bool vertical, double degrees, std::uint32_t background);

// A plane tilted by `degrees` (vertical: about the horizontal middle line, so that top or bottom recedes),
// seen from twice the longer side away; -90..90, 0 is neutral, at +-90 only background is left.
PixelArray Perspective(const PixelArray& source, bool vertical, double degrees, std::uint32_t background);

// Turned by `degrees` at the centre, falling smoothly to 0 at half the shorter side; 0 is neutral.
PixelArray Twirl(const PixelArray& source, double degrees, std::uint32_t background);

// count x count reduced copies tiled over the canvas; 1 is neutral.
PixelArray Reproduce(const PixelArray& source, int count);

} // namespace pictorel::engine
