// Picture files of every format of the codec table, behind the ImageCodec interface.
#pragma once

#include "editor/ImageCodec.h"
#include "editor/WorkingFileMemory.h"
#include "picture/codecs/Codec.h"

#include <functional>
#include <memory>
#include <string>

namespace pictorel {

// Tells whether a file name is of one of this process's own working files. They carry what JPEG cannot hold
// in a private segment, which is believed in them only.
using IsWorkingFile = std::function<bool(const std::string& fileName)>;

class PictureFileCodec : public ImageCodec {
  public:
    PictureFileCodec(IsWorkingFile isWorkingFile, std::shared_ptr<WorkingFileMemory> memory,
                     codecs::CodecTable formats = codecs::CodecTable());

    bool Read(const std::string& fileName, PixelArray& picture) override;
    void Write(const PixelArray& picture, const std::string& fileName, std::string_view format) override;
    void FileRenamed(const std::string& from, const std::string& to) override {
        memory_->FileRenamed(from, to);
    }
    void SetQuality(int quality) override { quality_ = quality; }

  private:
    IsWorkingFile isWorkingFile_;
    std::shared_ptr<WorkingFileMemory> memory_;
    codecs::CodecTable formats_;
    int quality_ = 100;
};

} // namespace pictorel
