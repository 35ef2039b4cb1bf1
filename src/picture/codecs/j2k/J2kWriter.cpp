// Writing JPEG 2000 files, see J2k.h.
#include "picture/ForEachBand.h"
#include "picture/ImagingError.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/j2k/J2k.h"
#include "picture/codecs/j2k/J2kLibrary.h"
#include "picture/codecs/j2k/Jp2Boxes.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>

namespace pictorel::codecs {
namespace {

constexpr int kTileSide = 1024; // its coefficients stay in the cache, and memory small
constexpr int kLosslessQuality = 100;

// The reversible colour transform makes red - green and blue - green, of nine bits, but the library sets
// aside bits for eight: strong enough differences would come back wrong.
bool ColourTransformIsSafe(const PixelArray& picture) {
    constexpr int kMostDifference = 127;
    std::atomic<bool> isSafe = true;
    ForEachBand(picture.Height(), picture.RowBytes(), [&](int first, int end) {
        int most = 0;
        for (int y = first; y < end; ++y) {
            const std::uint8_t* pixel = picture.Row(y);
            for (int x = 0; x < picture.Width(); ++x, pixel += PixelArray::kComponents) {
                most = std::max({most, std::abs(pixel[0] - pixel[1]), std::abs(pixel[2] - pixel[1])});
            }
        }
        if (most > kMostDifference) {
            isSafe = false;
        }
    });
    return isSafe;
}

class J2kEncoder {
  public:
    J2kEncoder(const PixelArray& picture, bool withAlpha)
        : picture_(picture), components_(withAlpha ? 4U : 3U), stream_(MakeWriteStream(sink_)) {}

    ByteBuffer Encode(int quality) {
        SetUp(quality);
        bool isWell = opj_start_compress(codec_.get(), image_.get(), stream_.get()) != OPJ_FALSE;
        OPJ_UINT32 number = 0;
        for (int y = 0; y < picture_.Height(); y += kTileSide) {
            for (int x = 0; x < picture_.Width(); x += kTileSide) {
                isWell = isWell && WriteTile(number++, x, y);
            }
        }
        if (!isWell || opj_end_compress(codec_.get(), stream_.get()) == OPJ_FALSE) {
            throw ImagingError(ImagingFailure::OutOfMemory,
                               "There is not enough memory to save this picture.");
        }
        stream_.reset(); // its last bytes go out
        return std::move(sink_.data);
    }

  private:
    void SetUp(int quality) {
        std::array<opj_image_cmptparm_t, 4> layout{};
        for (auto& component : layout) {
            component.dx = component.dy = 1;
            component.w = static_cast<OPJ_UINT32>(picture_.Width());
            component.h = static_cast<OPJ_UINT32>(picture_.Height());
            component.prec = 8;
        }
        image_.reset(opj_image_tile_create(components_, layout.data(), OPJ_CLRSPC_SRGB));
        if (!codec_ || !image_) {
            throw std::bad_alloc();
        }
        image_->x1 = static_cast<OPJ_UINT32>(picture_.Width());
        image_->y1 = static_cast<OPJ_UINT32>(picture_.Height());
        for (OPJ_UINT32 i = 3; i < components_; ++i) {
            image_->comps[i].alpha = 1;
        }
        opj_cparameters_t parameters = ParametersFor(quality);
        if (opj_setup_encoder(codec_.get(), &parameters, image_.get()) == OPJ_FALSE) {
            throw ImagingError(ImagingFailure::InvalidValue, "The picture cannot be written as JPEG 2000.");
        }
        const int threads = J2kThreads(std::int64_t{picture_.Width()} * picture_.Height());
        if (threads > 1) {
            opj_codec_set_threads(codec_.get(), threads);
        }
    }

    opj_cparameters_t ParametersFor(int quality) {
        opj_cparameters_t parameters;
        opj_set_default_encoder_parameters(&parameters);
        parameters.cp_comment = comment_.data();
        parameters.tcp_numlayers = 1;
        const bool isLossless = quality >= kLosslessQuality;
        parameters.tcp_mct = !isLossless || ColourTransformIsSafe(picture_) ? 1 : 0; // alpha stands outside
        if (isLossless) {
            parameters.cp_disto_alloc = 1;
            parameters.tcp_rates[0] = 0;
        } else { // 26 dB, where artefacts are plain to see, to 50 dB, where none are
            parameters.irreversible = 1;
            parameters.cp_fixed_quality = 1;
            parameters.tcp_distoratio[0] = 26.0F + 0.24F * static_cast<float>(quality);
        }
        const int shorter = std::min({picture_.Width(), picture_.Height(), kTileSide});
        while (parameters.numresolution > 1 && 1 << (parameters.numresolution - 1) > shorter) {
            --parameters.numresolution;
        }
        parameters.tile_size_on = OPJ_TRUE;
        parameters.cp_tdx = std::min(kTileSide, picture_.Width());
        parameters.cp_tdy = std::min(kTileSide, picture_.Height());
        return parameters;
    }

    // The components of the tile one after another.
    bool WriteTile(OPJ_UINT32 number, int x, int y) {
        const int width = std::min(kTileSide, picture_.Width() - x);
        const int height = std::min(kTileSide, picture_.Height() - y);
        const std::size_t planeBytes = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
        samples_.resize(planeBytes * components_);
        constexpr std::array<std::ptrdiff_t, 4> kPlaces{2, 1, 0, 3}; // of red, green, blue, alpha in a pixel
        ForEachBand(height, static_cast<std::size_t>(width) * 8, [&](int first, int end) {
            for (int row = first; row < end; ++row) {
                for (std::size_t plane = 0; plane < components_; ++plane) {
                    const std::uint8_t* in =
                        picture_.Row(y + row) + x * PixelArray::kComponents + kPlaces[plane];
                    std::uint8_t* const out = samples_.data() + plane * planeBytes +
                                              static_cast<std::size_t>(row) * static_cast<std::size_t>(width);
                    for (int i = 0; i < width; ++i, in += PixelArray::kComponents) {
                        out[i] = *in;
                    }
                }
            }
        });
        return opj_write_tile(codec_.get(), number, samples_.data(), static_cast<OPJ_UINT32>(samples_.size()),
                              stream_.get()) != OPJ_FALSE;
    }

    const PixelArray& picture_;
    OPJ_UINT32 components_;
    J2kSink sink_;
    J2kByteStream stream_;
    J2kCodec codec_{opj_create_compress(OPJ_CODEC_J2K)};
    J2kImage image_;
    ByteBuffer samples_;
    std::array<char, 9> comment_{"Pictorel"}; // not const: the library asks for it so
};

} // namespace

ByteBuffer WriteJ2k(const PixelArray& picture, const WriteOptions& options) {
    const bool withAlpha = NeedsAlpha(picture);
    ByteBuffer codestream = J2kEncoder(picture, withAlpha).Encode(options.quality);
    return withAlpha || picture.Details() != Metadata{} ? WrapInJp2Boxes(picture, withAlpha, codestream)
                                                        : codestream;
}

} // namespace pictorel::codecs
