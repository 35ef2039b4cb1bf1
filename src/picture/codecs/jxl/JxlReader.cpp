// JPEG XL files: the picture and what stands in boxes beside it, see Jxl.h.
#include "picture/codecs/ByteReader.h"
#include "picture/codecs/Exif.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/jxl/Jxl.h"
#include "picture/codecs/jxl/JxlBoxes.h"
#include "picture/codecs/jxl/JxlDecoding.h"

#include <jxl/decode.h>

namespace pictorel::codecs {

bool IsJxl(ByteView file) noexcept {
    constexpr std::size_t kShortestFile = 12; // the signature of a bare codestream has two bytes only
    if (file.size() < kShortestFile) {
        return false;
    }
    const JxlSignature signature = JxlSignatureCheck(file.data(), file.size());
    return signature == JXL_SIG_CODESTREAM || signature == JXL_SIG_CONTAINER;
}

PixelArray ReadJxl(ByteView file, const ReadOptions& /*options*/) {
    PixelArray picture = DecodeJxl(file);
    const JxlBoxes boxes = ReadJxlBoxes(file);
    // The codestream's own orientation has been applied; that of the EXIF block says the same once more.
    KeepMetadata(picture, ExifOfBox(boxes.exif), boxes.xmp);
    return picture;
}

} // namespace pictorel::codecs
