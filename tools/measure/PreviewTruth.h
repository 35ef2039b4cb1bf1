// How true a slider's preview is: what it shows, beside what letting go will make of the picture.
#pragma once

#include "editor/FileConverter.h"
#include "editor/PictureFileCodec.h"
#include "picture/PixelArray.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace pictorel::measure {

class PreviewTruth {
  public:
    // Makes the picture's reduced copy by the road that the editor takes, through working files. Throws
    // ImagingError, and std::filesystem::filesystem_error where there is no temporary folder.
    explicit PreviewTruth(PixelArray picture);
    ~PreviewTruth();
    PreviewTruth(const PreviewTruth&) = delete;
    PreviewTruth& operator=(const PreviewTruth&) = delete;

    const PixelArray& Copy() const noexcept { return copy_; } // 250 pixels wide

    // Structural similarity of slider i's preview at `value`, the other sliders at their defaults, and the
    // committed picture reduced to its size.
    double Of(int slider, std::int32_t value) const;

    // What slider i makes of a picture or of a reduced copy.
    static PixelArray AfterSlider(const PixelArray& picture, int slider, std::int32_t value);

  private:
    std::string Path(const char* name) const { return (folder_ / name).string(); }

    PixelArray picture_;
    PixelArray copy_;
    std::filesystem::path folder_;
    std::shared_ptr<WorkingFileMemory> memory_ = std::make_shared<WorkingFileMemory>();
    PictureFileCodec codec_;
    FileConverter converter_;
};

} // namespace pictorel::measure
