// The working picture: the engine's operations behind the ImageTransform interface.
#pragma once

#include "editor/ImageTransform.h"
#include "editor/ImageUtility.h"

namespace pictorel {

// A reduced copy that has finer ones is worked on in those, and the result is reduced to its size.
class WorkingPicture : public ImageTransform {
  public:
    void SetPicture(const PixelArray& picture) override;
    void CopyPicture(PixelArray& picture) const override;
    void CopySecondPlane(PixelArray& plane) const override;
    bool HasSecondPlane() const override { return picture_.HasAlpha(); }

    void AutoContrast() override;
    void AutoLevels() override;
    void Brightness(std::int32_t amount) override;
    void Contrast(double factor) override;
    void Gamma(double gamma) override;
    void Hue(double degrees) override;
    void Lightness(double amount) override;
    void Saturation(double amount) override;
    void RedChannel(std::int32_t amount) override;
    void GreenChannel(std::int32_t amount) override;
    void BlueChannel(std::int32_t amount) override;
    void Colorize(std::uint8_t red, std::uint8_t green, std::uint8_t blue) override;
    void Invert() override;
    void Equalize(double weight) override;
    void Threshold(std::uint8_t level) override;
    void Posterize(std::int32_t levels) override;
    void MinimalFilter(std::int32_t radius) override;
    void MaximalFilter(std::int32_t radius) override;
    void Blur(double strength) override;
    void Sharpen(double strength) override;
    void MotionBlur(double degrees, std::int32_t length) override;
    void GaussianBlur(std::int32_t sigma) override;
    void ZoomBlur(double percent) override;
    void Noise(std::int32_t percent, bool monochrome) override;
    void Diffuse(std::int32_t radius, double percent) override;
    void Emboss(double degrees, std::int32_t height, double amount) override;
    void Mosaic(std::int32_t size, bool centred) override;
    void Halftone(std::int32_t size, double gain) override;
    void Mirror(bool topToBottom) override;
    void Rotate(double degrees, ColourValue background) override;
    void Resize(std::int32_t width, std::int32_t height, std::int32_t method,
                ColourValue background) override;
    void Perspective(bool vertical, double degrees) override;
    void Skew(bool vertical, double degrees) override;
    void Twirl(double degrees) override;
    void Reproduce(std::int32_t count) override;
    void QuarterTurn(std::int32_t direction) override;

    void SetBackgroundColour(ColourValue background) override { background_ = background; }

  private:
    // What the next operation starts from; throws ImagingError(InvalidValue) where there is no picture.
    const PixelArray& Source() const;
    const PixelArray& LighterSource() const;     // for what takes long, see FinerCopies
    const PixelArray& SourceForExtremes() const; // for the brightest and the darkest of a square
    const PixelArray& SourceOfItsSize();         // for what changes the size: never a finer copy

    // Whether no operation has changed a pixel of the reduced copy that was set.
    bool IsUntouched() const noexcept;

    // The working picture in the size of what was set.
    const PixelArray& Result() const;

    PixelArray asSet_; // the reduced copy where there are finer ones; empty otherwise
    PixelArray picture_;
    std::shared_ptr<const FinerCopies> finer_; // of asSet_, or null

    mutable PixelArray reduced_; // made from ...
    mutable PixelArray reducedFrom_;
    ColourValue background_ = 0;
};

class PictureMeasure : public ImageUtility {
  public:
    std::int32_t Width(const PixelArray& picture) const override { return picture.Width(); }
    std::int32_t Height(const PixelArray& picture) const override { return picture.Height(); }
};

} // namespace pictorel
