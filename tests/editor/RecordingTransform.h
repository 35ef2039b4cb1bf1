// Records the calls that an operation makes, as text: "Blur(5) Sharpen(0)".
#pragma once

#include "editor/ImageTransform.h"
#include "picture/ImagingError.h"

#include <sstream>
#include <string>
#include <type_traits>

namespace pictorel::test {

class RecordingTransform : public ImageTransform {
  public:
    std::string calls;
    bool fails = false; // every call throws after it was recorded

    void SetPicture(const PixelArray& /*picture*/) override { Record("SetPicture"); }
    void CopyPicture(PixelArray& /*picture*/) const override {}
    void CopySecondPlane(PixelArray& /*plane*/) const override {}
    bool HasSecondPlane() const override { return false; }

    void AutoContrast() override { Record("AutoContrast"); }
    void AutoLevels() override { Record("AutoLevels"); }
    void Brightness(std::int32_t amount) override { Record("Brightness", amount); }
    void Contrast(double factor) override { Record("Contrast", factor); }
    void Gamma(double gamma) override { Record("Gamma", gamma); }
    void Hue(double degrees) override { Record("Hue", degrees); }
    void Lightness(double amount) override { Record("Lightness", amount); }
    void Saturation(double amount) override { Record("Saturation", amount); }
    void RedChannel(std::int32_t amount) override { Record("RedChannel", amount); }
    void GreenChannel(std::int32_t amount) override { Record("GreenChannel", amount); }
    void BlueChannel(std::int32_t amount) override { Record("BlueChannel", amount); }
    void Colorize(std::uint8_t red, std::uint8_t green, std::uint8_t blue) override {
        Record("Colorize", int{red}, int{green}, int{blue});
    }
    void Invert() override { Record("Invert"); }
    void Equalize(double weight) override { Record("Equalize", weight); }
    void Threshold(std::uint8_t level) override { Record("Threshold", int{level}); }
    void Posterize(std::int32_t levels) override { Record("Posterize", levels); }
    void MinimalFilter(std::int32_t radius) override { Record("MinimalFilter", radius); }
    void MaximalFilter(std::int32_t radius) override { Record("MaximalFilter", radius); }
    void Blur(double strength) override { Record("Blur", strength); }
    void Sharpen(double strength) override { Record("Sharpen", strength); }
    void MotionBlur(double degrees, std::int32_t length) override { Record("MotionBlur", degrees, length); }
    void GaussianBlur(std::int32_t sigma) override { Record("GaussianBlur", sigma); }
    void ZoomBlur(double percent) override { Record("ZoomBlur", percent); }
    void Noise(std::int32_t percent, bool monochrome) override { Record("Noise", percent, monochrome); }
    void Diffuse(std::int32_t radius, double percent) override { Record("Diffuse", radius, percent); }
    void Emboss(double degrees, std::int32_t height, double amount) override {
        Record("Emboss", degrees, height, amount);
    }
    void Mosaic(std::int32_t size, bool centred) override { Record("Mosaic", size, centred); }
    void Halftone(std::int32_t size, double gain) override { Record("Halftone", size, gain); }
    void Mirror(bool topToBottom) override { Record("Mirror", topToBottom); }
    void Rotate(double degrees, ColourValue background) override { Record("Rotate", degrees, background); }
    void Resize(std::int32_t width, std::int32_t height, std::int32_t method,
                ColourValue background) override {
        Record("Resize", width, height, method, background);
    }
    void Perspective(bool vertical, double degrees) override { Record("Perspective", vertical, degrees); }
    void Skew(bool vertical, double degrees) override { Record("Skew", vertical, degrees); }
    void Twirl(double degrees) override { Record("Twirl", degrees); }
    void Reproduce(std::int32_t count) override { Record("Reproduce", count); }
    void QuarterTurn(std::int32_t direction) override { Record("QuarterTurn", direction); }
    void SetBackgroundColour(ColourValue background) override { Record("SetBackgroundColour", background); }

  private:
    template <class Argument>
    static Argument Shown(Argument argument) {
        if constexpr (std::is_floating_point_v<Argument>) {
            return argument + 0.0; // minus zero is zero
        }
        return argument;
    }

    template <class... Arguments>
    void Record(const char* name, Arguments... arguments) {
        std::ostringstream text;
        text << std::boolalpha << (calls.empty() ? "" : " ") << name << '(';
        [[maybe_unused]] const char* separator = "";
        ((text << separator << Shown(arguments), separator = ","), ...);
        text << ')';
        calls += text.str();
        if (fails) {
            throw ImagingError(ImagingFailure::OutOfMemory, "The call fails.");
        }
    }
};

} // namespace pictorel::test
