// Converts a picture file into a JPEG of another size, behind the ImageConvert interface.
#pragma once

#include "editor/ImageCodec.h"
#include "editor/ImageConvert.h"
#include "editor/WorkingFileMemory.h"
#include "picture/PicturePyramid.h"

#include <memory>

namespace pictorel {

// The result carries its Reduction: its width / the width of the source.
class FileConverter : public ImageConvert {
  public:
    // `pyramids` are shared with the view of the picture that is converted.
    FileConverter(ImageCodec& codec, std::shared_ptr<const WorkingFileMemory> memory,
                  std::shared_ptr<SharedPyramids> pyramids = std::make_shared<SharedPyramids>());

    void SetOutputSize(std::int32_t width, std::int32_t height) override;
    void UseWholePicture() override {} // a file that shows a part is converted whole like any other
    void Convert(const std::string& source, const std::string& target) override;

  private:
    ImageCodec& codec_;
    std::shared_ptr<const WorkingFileMemory> memory_;
    std::shared_ptr<SharedPyramids> pyramids_;
    std::int32_t width_ = 0;
    std::int32_t height_ = 0;
};

} // namespace pictorel
