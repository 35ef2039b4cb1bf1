// Operations that move pixels: mirrors, turns, warps and tiling.
#pragma once

#include "picture/PixelArray.h"
#include "picture/engine/Window.h"

#include <cstdint>

// Alpha moves along with the colours (interpolated premultiplied where the source has alpha). Warps keep the
// canvas size and work about the centre with bicubic (Keys, a = -0.5) interpolation; the area they expose
// gets `background` (0x00BBGGRR), opaque, with an antialiased border.
namespace pictorel::engine {

// The pixels of the window, as far as it lies in the picture. Throws ImagingError(InvalidValue) where no part
// of it does.
PixelArray Crop(const PixelArray& source, const Window& window);

PixelArray MirrorTopToBottom(const PixelArray& source);
PixelArray MirrorLeftToRight(const PixelArray& source);
PixelArray QuarterTurnLeft(const PixelArray& source);  // W x H becomes H x W
PixelArray QuarterTurnRight(const PixelArray& source); // W x H becomes H x W

// Counter-clockwise for positive degrees, as the angles of the other operations; whole turns are neutral.
// Right angles move pixels and blur nothing: where a quarter turn has no middle on the canvas (one side even,
// the other odd) it lies half a pixel off, except on a reduced copy, which is interpolated instead.
PixelArray Rotate(const PixelArray& source, double degrees, std::uint32_t background,
                  const OptionalWindow& window = {});

// Shear by tan(degrees); -90..90, 0 is neutral, at +-90 only background is left. Vertical moves columns up
// and down (the right side up for positive degrees), horizontal moves rows left and right (the top to the
// right).
PixelArray Skew(const PixelArray& source, bool vertical, double degrees, std::uint32_t background,
                const OptionalWindow& window = {});

// A plane tilted by `degrees` (vertical: about the horizontal middle line, positive with the top away;
// horizontal: about the vertical one, positive with the left side away), seen from twice the longer side
// away; -90..90, 0 is neutral, at +-90 only background is left.
PixelArray Perspective(const PixelArray& source, bool vertical, double degrees, std::uint32_t background,
                       const OptionalWindow& window = {});

// Turned by `degrees` (counter-clockwise) at the centre, falling smoothly to 0 at half the shorter side; 0 is
// neutral. Exposes nothing: `background` is there for the likeness of the others.
PixelArray Twirl(const PixelArray& source, double degrees, std::uint32_t background,
                 const OptionalWindow& window = {});

// count x count reduced copies tiled over the canvas, at least a pixel each; 1 is neutral. Tile i begins at
// the rounded i/count of the side.
PixelArray Reproduce(const PixelArray& source, int count, const OptionalWindow& window = {});

} // namespace pictorel::engine
