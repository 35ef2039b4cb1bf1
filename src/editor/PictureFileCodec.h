// Picture files of every format of the codec table, behind the ImageCodec interface.
#pragma once

#include "editor/ImageCodec.h"
#include "editor/WorkingFileMemory.h"
#include "editor/decoding/PictureDecoder.h"
#include "picture/codecs/Codec.h"

#include <functional>
#include <memory>
#include <string>

namespace pictorel {

// Tells whether a file name is of one of this process's own working files. They carry what JPEG cannot hold
// in a private segment, which is believed in them only.
using IsWorkingFile = std::function<bool(const std::string& fileName)>;

// With a decoder, files that are not our own are read through it alone. Where it does not work on this
// machine, JPEG and PNG are read here, since most pictures are of these kinds and their libraries the best
// tested; others are refused.
class PictureFileCodec : public ImageCodec {
  public:
    PictureFileCodec(IsWorkingFile isWorkingFile, std::shared_ptr<WorkingFileMemory> memory,
                     codecs::CodecTable formats = codecs::CodecTable(),
                     std::shared_ptr<PictureDecoder> decoder = nullptr);

    bool Read(const std::string& fileName, PixelArray& picture) override;
    void Write(const PixelArray& picture, const std::string& fileName, std::string_view format) override;
    void FileRenamed(const std::string& from, const std::string& to) override {
        memory_->FileRenamed(from, to);
    }
    void SetQuality(int quality) override { quality_ = quality; }

  private:
    bool ReadAny(const std::string& fileName, PixelArray& picture) const;

    IsWorkingFile isWorkingFile_;
    std::shared_ptr<WorkingFileMemory> memory_;
    codecs::CodecTable formats_;
    std::shared_ptr<PictureDecoder> decoder_;
    int quality_ = 100;
};

} // namespace pictorel
