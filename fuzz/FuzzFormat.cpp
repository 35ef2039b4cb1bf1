// Reads a file as one format and, where that succeeds, writes it back: what a lossless format gives back has
// to be the same picture. Formats that are only read are only read.
#include "picture/ImagingError.h"
#include "picture/codecs/Codec.h"
#ifdef PICTOREL_WITH_METAFILES
#include "picture/metafile/Metafile.h"
#endif

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

using pictorel::PixelArray;
using pictorel::codecs::ByteView;
using pictorel::codecs::Codec;

constexpr int kWrittenBack = 1 << 16; // pixels: larger pictures would only make it slow

const pictorel::codecs::CodecTable& Formats() {
#ifdef PICTOREL_WITH_METAFILES
    static const pictorel::codecs::CodecTable table(pictorel::metafile::MetafileCodecs());
#else
    static const pictorel::codecs::CodecTable table;
#endif
    return table;
}

#ifdef PICTOREL_FUZZ_FORMAT
bool IsWanted(const Codec& codec) {
    return std::equal(codec.extension.begin(), codec.extension.end(),
                      std::string_view(PICTOREL_FUZZ_FORMAT).begin(),
                      std::string_view(PICTOREL_FUZZ_FORMAT).end(),
                      [](unsigned char a, unsigned char b) { return std::tolower(a) == b; });
}
#endif

bool IsLossless(const Codec& codec) {
    return codec.extension != "JPG" && codec.extension != "GIF";
}

bool HoldsAlpha(const Codec& codec) {
    return codec.extension == "PNG" || codec.extension == "TIF" || codec.extension == "TGA" ||
           codec.extension == "J2K";
}

void Fail(const Codec& codec, const char* text) {
    std::fprintf(stderr, "%.*s: %s\n", static_cast<int>(codec.name.size()), codec.name.data(), text);
    std::abort();
}

void CompareWrittenBack(const Codec& codec, const PixelArray& picture) {
    const auto file = codec.write(picture, {});
    if (!codec.sniff(file)) {
        Fail(codec, "does not know its own file");
    }
    const PixelArray again = codec.read(file, {});
    if (again.Width() != picture.Width() || again.Height() != picture.Height()) {
        Fail(codec, "another size was read back");
    }
    if (!IsLossless(codec) || (picture.HasAlpha() && !HoldsAlpha(codec))) {
        return;
    }
    for (int y = 0; y < picture.Height(); ++y) {
        if (std::memcmp(again.Row(y), picture.Row(y), picture.RowBytes()) != 0) {
            Fail(codec, "other pixels were read back");
        }
    }
}

} // namespace

// 0 always; `file` is read by every codec that takes it for its own, or by the one that the build names.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ByteView file(data, size);
    for (const Codec& codec : Formats().Rows()) {
#ifdef PICTOREL_FUZZ_FORMAT
        if (!IsWanted(codec)) {
            continue;
        }
#endif
        if (!codec.sniff(file)) {
            continue;
        }
        try {
            const PixelArray picture = codec.read(file, {});
            if (codec.write != nullptr && std::int64_t{picture.Width()} * picture.Height() <= kWrittenBack) {
                CompareWrittenBack(codec, picture);
            }
        } catch (const pictorel::ImagingError& error) {
            if (std::strlen(error.what()) == 0) {
                Fail(codec, "refuses without a word");
            }
        }
    }
    return 0;
}
