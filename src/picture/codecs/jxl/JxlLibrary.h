// What the JPEG XL sources share of libjxl: its decoder, kept safe.
#pragma once

#include <jxl/decode.h>

#include <memory>
#include <new>

namespace pictorel::codecs {

struct DestroyJxlDecoder {
    void operator()(JxlDecoder* decoder) const noexcept { JxlDecoderDestroy(decoder); }
};
using JxlDecoderHandle = std::unique_ptr<JxlDecoder, DestroyJxlDecoder>;

inline JxlDecoderHandle MakeJxlDecoder() {
    JxlDecoderHandle decoder(JxlDecoderCreate(nullptr));
    if (!decoder) {
        throw std::bad_alloc();
    }
    return decoder;
}

} // namespace pictorel::codecs
