// Decoding JPEG 2000 by OpenJPEG, see J2kDecoder.h.
#include "imaging/codecs/J2kDecoder.h"

#include "imaging/codecs/J2kLibrary.h"
#include "imaging/codecs/PixelSupport.h"

#include <new>

namespace pictorel::codecs {

struct J2kDecoder::Implementation {
    J2kSource source;
    J2kByteStream bytes;
    J2kCodec codec{opj_create_decompress(OPJ_CODEC_J2K)};
    J2kImage image;
    bool isAtEnd = false;

    explicit Implementation(const J2kStream& stream)
        : source{stream.usable, stream.cutLengthAt, stream.trueLength}, bytes(MakeReadStream(source)) {
        if (!codec) {
            throw std::bad_alloc();
        }
        opj_dparameters_t parameters;
        opj_set_default_decoder_parameters(&parameters);
        opj_image_t* made = nullptr;
        const bool isSetUp = opj_setup_decoder(codec.get(), &parameters) != OPJ_FALSE &&
                             opj_decoder_set_strict_mode(codec.get(), OPJ_FALSE) != OPJ_FALSE;
        const int threads = J2kThreads(stream.grid.Width() * stream.grid.Height());
        if (threads > 1) {
            opj_codec_set_threads(codec.get(), threads);
        }
        const bool isRead = isSetUp && opj_read_header(bytes.get(), codec.get(), &made) != OPJ_FALSE;
        image.reset(made);
        if (!isRead || image->numcomps != stream.components.size()) {
            Refuse("The header of the JPEG 2000 file is damaged.");
        }
    }

    bool Next(J2kTile& tile) {
        if (isAtEnd) {
            return false;
        }
        OPJ_UINT32 number = 0;
        OPJ_UINT32 size = 0;
        OPJ_UINT32 components = 0;
        OPJ_INT32 x0 = 0;
        OPJ_INT32 y0 = 0;
        OPJ_INT32 x1 = 0;
        OPJ_INT32 y1 = 0;
        OPJ_BOOL isMore = OPJ_FALSE;
        isAtEnd = opj_read_tile_header(codec.get(), bytes.get(), &number, &size, &x0, &y0, &x1, &y1,
                                       &components, &isMore) == OPJ_FALSE ||
                  isMore == OPJ_FALSE;
        if (isAtEnd) {
            return false;
        }
        tile.area = {x0, y0, x1, y1};
        tile.samples.resize(size);
        isAtEnd =
            opj_decode_tile_data(codec.get(), number, tile.samples.data(), size, bytes.get()) == OPJ_FALSE;
        return !isAtEnd;
    }
};

J2kDecoder::J2kDecoder(const J2kStream& stream) : implementation_(std::make_unique<Implementation>(stream)) {}

J2kDecoder::~J2kDecoder() = default;

bool J2kDecoder::Next(J2kTile& tile) {
    return implementation_->Next(tile);
}

} // namespace pictorel::codecs
