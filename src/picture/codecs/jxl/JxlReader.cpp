// JPEG XL files: the picture and what stands in boxes beside it, see Jxl.h.
#include "picture/codecs/Exif.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/jxl/Jxl.h"
#include "picture/codecs/jxl/JxlBoxes.h"
#include "picture/codecs/jxl/JxlDecoding.h"
#include "picture/codecs/jxl/JxlLibrary.h"

namespace pictorel::codecs {

namespace {

// The signature of a bare codestream has two bytes only, so its header has to make sense as well.
bool HasHeader(ByteView file) noexcept {
    const JxlDecoderHandle decoder(JxlDecoderCreate(nullptr));
    return decoder && JxlDecoderSubscribeEvents(decoder.get(), JXL_DEC_BASIC_INFO) == JXL_DEC_SUCCESS &&
           JxlDecoderSetInput(decoder.get(), file.data(), file.size()) == JXL_DEC_SUCCESS &&
           JxlDecoderProcessInput(decoder.get()) == JXL_DEC_BASIC_INFO;
}

} // namespace

bool IsJxl(ByteView file) noexcept {
    switch (JxlSignatureCheck(file.data(), file.size())) {
        case JXL_SIG_CONTAINER:
            return true;
        case JXL_SIG_CODESTREAM:
            return HasHeader(file);
        default:
            return false;
    }
}

PixelArray ReadJxl(ByteView file, const ReadOptions& /*options*/) {
    PixelArray picture = DecodeJxl(file);
    const JxlBoxes boxes = ReadJxlBoxes(file);
    // The codestream's own orientation has been applied; that of the EXIF block says the same once more.
    KeepMetadata(picture, ExifOfBox(boxes.exif), boxes.xmp);
    return picture;
}

} // namespace pictorel::codecs
