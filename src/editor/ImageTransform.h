// The working picture and every pixel operation on it.
#pragma once

#include "editor/ImageView.h"
#include "picture/PixelArray.h"

#include <cstdint>

namespace pictorel {

// The number in each comment is the member's number in the interface catalogue that the operation table is
// written against. Every operation replaces the working picture by its result; what each one does to the
// pixels is documented with the engine's functions. All throw ImagingError and then leave the working picture
// as it was; with no working picture every operation throws.
class ImageTransform {
  public:
    virtual ~ImageTransform() = default;

    virtual void SetPicture(const PixelArray& picture) = 0;    // 1
    virtual void CopyPicture(PixelArray& picture) const = 0;   // 2
    virtual void CopySecondPlane(PixelArray& plane) const = 0; // 4
    virtual bool HasSecondPlane() const = 0;                   // 401

    virtual void AutoContrast() = 0;                                                    // 6
    virtual void AutoLevels() = 0;                                                      // 7
    virtual void Brightness(std::int32_t amount) = 0;                                   // 8
    virtual void Contrast(double factor) = 0;                                           // 9
    virtual void Gamma(double gamma) = 0;                                               // 10
    virtual void Hue(double degrees) = 0;                                               // 11
    virtual void Lightness(double amount) = 0;                                          // 12
    virtual void Saturation(double amount) = 0;                                         // 13
    virtual void RedChannel(std::int32_t amount) = 0;                                   // 15
    virtual void GreenChannel(std::int32_t amount) = 0;                                 // 16
    virtual void BlueChannel(std::int32_t amount) = 0;                                  // 17
    virtual void Colorize(std::uint8_t red, std::uint8_t green, std::uint8_t blue) = 0; // 18
    virtual void Invert() = 0;                                                          // 21
    virtual void Equalize(double weight) = 0;                                           // 22
    virtual void Threshold(std::uint8_t level) = 0;                                     // 23
    virtual void Posterize(std::int32_t levels) = 0;                                    // 25
    virtual void MinimalFilter(std::int32_t radius) = 0;                                // 108
    virtual void MaximalFilter(std::int32_t radius) = 0;                                // 109
    virtual void Blur(double strength) = 0;                           // 112; sigma = strength / 10
    virtual void Sharpen(double strength) = 0;                        // 113; amount = strength / 25
    virtual void MotionBlur(double degrees, std::int32_t length) = 0; // 201
    virtual void GaussianBlur(std::int32_t sigma) = 0;                // 202
    virtual void ZoomBlur(double percent) = 0;                        // 204
    virtual void Noise(std::int32_t percent, bool monochrome) = 0;    // 205
    virtual void Diffuse(std::int32_t radius, double percent) = 0;    // 206
    virtual void Emboss(double degrees, std::int32_t height, double amount) = 0;      // 207
    virtual void Mosaic(std::int32_t size, bool centred) = 0;                         // 210
    virtual void Halftone(std::int32_t size, double gain) = 0;                        // 214
    virtual void Mirror(bool topToBottom) = 0;                                        // 301
    virtual void Rotate(double degrees, ColourValue background) = 0;                  // 302
    virtual void Resize(std::int32_t width, std::int32_t height, std::int32_t method, //
                        ColourValue background) = 0;                                  // 303
    virtual void Perspective(bool vertical, double degrees) = 0;                      // 305
    virtual void Skew(bool vertical, double degrees) = 0;                             // 306
    virtual void Twirl(double degrees) = 0;                                           // 307
    virtual void Reproduce(std::int32_t count) = 0;                                   // 310
    virtual void QuarterTurn(std::int32_t direction) = 0;                             // 311; -1 left, 1 right

    // The colour of the area that perspective, skew and twirl expose; rotate is given its own.
    virtual void SetBackgroundColour(ColourValue background) = 0;
};

} // namespace pictorel
