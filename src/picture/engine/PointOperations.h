// Operations that look at one pixel at a time: brightness, contrast, colour, tone.
#pragma once

#include "picture/PixelArray.h"

#include <cstdint>

// All work on 8-bit sRGB values c = 0..255, leave alpha alone, round to nearest and clamp to 0..255. A
// parameter at its neutral value gives back the source itself, bit for bit. Luma Y is Rec. 709 on the encoded
// values: 0.2126 R + 0.7152 G + 0.0722 B (ITU-R BT.709-6, 3.2). Parameters that the formulas cannot take
// throw ImagingError(InvalidValue).
namespace pictorel::engine {

PixelArray Brightness(const PixelArray& source, int amount);  // c + amount; neutral 0
PixelArray Contrast(const PixelArray& source, double factor); // 127.5 + (c - 127.5) factor; neutral 1
PixelArray Gamma(const PixelArray& source,
                 double gamma); // 255 (c/255)^(1/gamma); 0: all below white go black
PixelArray AddToChannels(const PixelArray& source, int red, int green, int blue); // c + amount; neutral 0
PixelArray Colorize(const PixelArray& source, std::uint8_t red, std::uint8_t green,
                    std::uint8_t blue);                     // c x tint / 255; neutral 255
PixelArray Invert(const PixelArray& source);                // 255 - c
PixelArray Posterize(const PixelArray& source, int levels); // `levels` evenly spaced values, at least 2
PixelArray Threshold(const PixelArray& source, int level);  // Y >= level gives white, else black
PixelArray Saturation(const PixelArray& source,
                      double amount);                     // Y + (c - Y)(1 + amount), -1..6; neutral 0
PixelArray Hue(const PixelArray& source, double degrees); // HSL hue turned; whole turns are neutral
// HSL lightness moved towards white by the fraction `amount` > 0, towards black by -amount; neutral 0.
PixelArray Lightness(const PixelArray& source, double amount);

} // namespace pictorel::engine
