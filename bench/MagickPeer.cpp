// ImageMagick's library, in this process, so that starting a program is not measured.
#include "FormatPeer.h"

#ifdef PICTOREL_MAGICK
#include <magick/MagickCore.h>
#endif

#include <algorithm>
#include <string>

namespace pictorel::bench {

#ifdef PICTOREL_MAGICK
namespace {

struct FreeImages {
    void operator()(Image* images) const { DestroyImageList(images); }
};
using Images = std::unique_ptr<Image, FreeImages>;

class MagickPeer : public FormatPeer {
  public:
    explicit MagickPeer(const PixelArray& picture) {
        MagickCoreGenesis("", MagickFalse);
        exception_ = AcquireExceptionInfo();
        codecs::ByteBuffer rows;
        for (int y = 0; y < picture.Height(); ++y) {
            rows.insert(rows.end(), picture.Row(y), picture.Row(y) + picture.RowBytes());
        }
        image_.reset(ConstituteImage(static_cast<std::size_t>(picture.Width()),
                                     static_cast<std::size_t>(picture.Height()), "BGRP", CharPixel,
                                     rows.data(), exception_));
    }
    ~MagickPeer() override { DestroyExceptionInfo(exception_); }
    MagickPeer(const MagickPeer&) = delete;
    MagickPeer& operator=(const MagickPeer&) = delete;

    bool Decode(std::string_view extension, const codecs::ByteBuffer& file) override {
        ImageInfo* const info = Info(extension);
        const Images images(BlobToImage(info, file.data(), file.size(), exception_));
        DestroyImageInfo(info);
        return images != nullptr;
    }

    std::optional<codecs::ByteBuffer> Encode(std::string_view extension) override {
        ImageInfo* const info = Info(extension);
        if (extension == "JPG") {
            info->quality = 100;
        }
        info->compression = extension == "TIF"   ? ZipCompression
                            : extension == "TGA" ? RLECompression
                                                 : UndefinedCompression;
        const Images copy(CloneImage(image_.get(), 0, 0, MagickTrue, exception_));
        CopyMagickString(copy->magick, info->magick, MaxTextExtent);
        copy->quality = info->quality;
        std::size_t size = 0;
        auto* const bytes = static_cast<std::uint8_t*>(ImageToBlob(info, copy.get(), &size, exception_));
        DestroyImageInfo(info);
        if (bytes == nullptr) {
            return {};
        }
        codecs::ByteBuffer file(bytes, bytes + size);
        RelinquishMagickMemory(bytes);
        return file;
    }

  private:
    static ImageInfo* Info(std::string_view extension) {
        ImageInfo* const info = AcquireImageInfo();
        const std::string name = extension == "RAS"   ? "SUN"
                                 : extension == "J2K" ? "JP2"
                                                      : std::string(extension);
        CopyMagickString(info->magick, name.c_str(), MaxTextExtent);
        CopyMagickString(info->filename, (name + ":").c_str(), MaxTextExtent);
        return info;
    }

    ExceptionInfo* exception_ = nullptr;
    Images image_;
};

} // namespace

std::unique_ptr<FormatPeer> MakeMagickPeer(const PixelArray& picture) {
    return std::make_unique<MagickPeer>(picture);
}
#else
std::unique_ptr<FormatPeer> MakeMagickPeer(const PixelArray& /*picture*/) {
    return nullptr;
}
#endif

} // namespace pictorel::bench
