// Picture files: reading one of any known format, writing one in each of eleven.
#pragma once

#include "editor/WorkingFileMemory.h"
#include "editor/decoding/PictureDecoder.h"
#include "picture/codecs/Codec.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace pictorel {

// Tells whether a file name is of one of this process's own working files. They carry what JPEG cannot hold
// in a private segment, which is believed in them only.
using IsWorkingFile = std::function<bool(const std::string& fileName)>;

// File names are UTF-8. With a decoder, files that are not our own are read through it alone. Where it does
// not work on this machine, JPEG and PNG are read here, since most pictures are of these kinds and their
// libraries the best tested; others are refused.
class ImageCodec {
  public:
    ImageCodec(IsWorkingFile isWorkingFile, std::shared_ptr<WorkingFileMemory> memory,
               codecs::CodecTable formats = codecs::CodecTable(),
               std::shared_ptr<PictureDecoder> decoder = nullptr);

    // Decides by content, never by extension. False, with `picture` empty, when the file cannot be opened or
    // is no picture that this editor reads. Throws ImagingError where it is one but cannot be had (TooLarge,
    // OutOfMemory), and where only the decoder could tell and does not run (FileAccess). What is had of a
    // damaged one says so by its PartShown().
    bool Read(const std::string& fileName, PixelArray& picture);

    // The writer is named by the format's extension, any letter case. The save is atomic: whatever happens
    // half-way, a file that was there stays whole. Throws ImagingError (FileAccess saying why,
    // UnsupportedFormat for an unknown format).
    void Write(const PixelArray& picture, const std::string& fileName, std::string_view format);

    // A file that this codec wrote or read has another name now, so that what is known of it is not lost.
    void FileRenamed(const std::string& from, const std::string& to) { memory_->FileRenamed(from, to); }

    void SetQuality(int quality) { quality_ = quality; } // 1..100, of JPEG and JPEG 2000

  private:
    bool ReadAny(const std::string& fileName, PixelArray& picture) const;

    IsWorkingFile isWorkingFile_;
    std::shared_ptr<WorkingFileMemory> memory_;
    codecs::CodecTable formats_;
    std::shared_ptr<PictureDecoder> decoder_;
    int quality_ = 100;
};

} // namespace pictorel
