// The bitmap inside a written metafile, see WrittenBitmap.h.
#include "picture/metafile/WrittenBitmap.h"

#include "picture/codecs/bmp/Bmp.h"

namespace pictorel::metafile {
namespace {

constexpr std::size_t kFileHeaderBytes = 14; // of a bitmap that is a file

double Plausible(double pixelsPerInch) {
    constexpr double kFewest = 1;
    constexpr double kMost = 20000; // so that a metafile's 16-bit count of units an inch holds it
    return pixelsPerInch >= kFewest && pixelsPerInch <= kMost ? pixelsPerInch : kUsualResolution;
}

} // namespace

WrittenBitmap::WrittenBitmap(const PixelArray& picture) : file_(codecs::WriteBmp(picture, {})) {}

codecs::ByteView WrittenBitmap::Bytes() const noexcept {
    return codecs::ByteView(file_).subspan(kFileHeaderBytes);
}

Resolution WrittenResolution(const PixelArray& picture) noexcept {
    const Metadata& details = picture.Details();
    return {Plausible(details.dotsPerInchX), Plausible(details.dotsPerInchY)};
}

} // namespace pictorel::metafile
