// Writing GIF files through giflib, see Gif.h.
#include "picture/ImagingError.h"
#include "picture/codecs/gif/Gif.h"
#include "picture/codecs/gif/IndexedPicture.h"

#include <gif_lib.h>

#include <memory>
#include <new>

namespace pictorel::codecs {
namespace {

int Append(GifFileType* gif, const GifByteType* data, int bytes) noexcept {
    auto& out = *static_cast<ByteBuffer*>(gif->UserData);
    try { // nothing may be thrown through giflib
        out.insert(out.end(), data, data + bytes);
        return bytes;
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

struct CloseGif {
    void operator()(GifFileType* gif) const noexcept { EGifCloseFile(gif, nullptr); }
};
struct FreeColours {
    void operator()(ColorMapObject* colours) const noexcept { GifFreeMapObject(colours); }
};
using Gif = std::unique_ptr<GifFileType, CloseGif>;
using Colours = std::unique_ptr<ColorMapObject, FreeColours>;

void Check(bool succeeded) {
    if (!succeeded) { // the only thing that can fail: there is no file, and all values are in range
        throw ImagingError(ImagingFailure::OutOfMemory, "There is not enough memory to save this picture.");
    }
}

Colours MakeColours(const std::vector<Bgr>& palette) {
    int size = 2;
    while (size < static_cast<int>(palette.size())) {
        size *= 2;
    }
    Colours colours(GifMakeMapObject(size, nullptr));
    Check(colours != nullptr);
    for (std::size_t i = 0; i < palette.size(); ++i) {
        colours->Colors[i] = {palette[i][2], palette[i][1], palette[i][0]};
    }
    return colours;
}

void PutTransparency(GifFileType* gif, int index) {
    GraphicsControlBlock control{};
    control.TransparentColor = index;
    GifByteType bytes[4] = {};
    EGifGCBToExtension(&control, bytes);
    Check(EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, sizeof bytes, bytes) == GIF_OK);
}

} // namespace

ByteBuffer WriteGif(const PixelArray& picture, const WriteOptions& /*options*/) {
    IndexedPicture indexed = MakeIndexed(picture);
    const Colours colours = MakeColours(indexed.palette);
    const int width = picture.Width();
    const int height = picture.Height();
    ByteBuffer out;
    out.reserve(indexed.indices.size() / 2);
    {
        const Gif gif(EGifOpen(&out, Append, nullptr));
        Check(gif != nullptr);
        EGifSetGifVersion(gif.get(), true);
        Check(EGifPutScreenDesc(gif.get(), width, height, 8, 0, colours.get()) == GIF_OK);
        if (indexed.transparentIndex >= 0) {
            PutTransparency(gif.get(), indexed.transparentIndex);
        }
        Check(EGifPutImageDesc(gif.get(), 0, 0, width, height, false, nullptr) == GIF_OK);
        GifPixelType* row = indexed.indices.data();
        for (int y = 0; y < height; ++y, row += width) {
            Check(EGifPutLine(gif.get(), row, width) == GIF_OK);
        }
    }
    Check(!out.empty() && out.back() == ';'); // written when the file closes
    return out;
}

} // namespace pictorel::codecs
