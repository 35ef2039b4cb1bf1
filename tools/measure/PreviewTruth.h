// How true a slider's preview is: what it shows, beside what letting go will make of the picture.
#pragma once

#include "editor/Editor.h"

#include <cstdint>
#include <memory>

namespace pictorel::measure {

class PreviewTruth {
  public:
    // Makes the picture's reduced copy by the road that the editor takes, through working files: of the whole
    // picture, or of the part that is shown. Throws ImagingError.
    explicit PreviewTruth(PixelArray picture, ShownPart part = {});
    ~PreviewTruth();
    PreviewTruth(const PreviewTruth&) = delete;
    PreviewTruth& operator=(const PreviewTruth&) = delete;

    const PixelArray& Copy() const noexcept; // 250 pixels wide

    // Structural similarity of slider i's preview at `value`, the other sliders at their defaults, and the
    // committed picture (or the part of it that is shown) reduced to its size.
    double Of(int slider, std::int32_t value) const;

    // The same where the committed picture, AfterSlider, is at hand.
    double Of(int slider, std::int32_t value, const PixelArray& committed) const;

    // What slider i makes of a picture.
    static PixelArray AfterSlider(const PixelArray& picture, int slider, std::int32_t value);

  private:
    class Screen;
    class Silence;

    std::unique_ptr<Silence> silence_;
    std::unique_ptr<Screen> screen_;
    std::unique_ptr<Editor> editor_;
    ShownPart part_;
};

} // namespace pictorel::measure
