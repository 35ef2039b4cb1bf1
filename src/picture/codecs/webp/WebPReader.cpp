// Reading WebP files through libwebp, see WebP.h.
#include "picture/codecs/ByteReader.h"
#include "picture/codecs/ColourProfile.h"
#include "picture/codecs/Exif.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/webp/WebP.h"

#include <webp/decode.h>
#include <webp/demux.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace pictorel::codecs {
namespace {

// A lossless picture of one colour takes a bit or two for each of the blocks it is cut into.
constexpr std::int64_t kMostPixelsPerByte = std::int64_t{1} << 15;

struct DeleteDemuxer {
    void operator()(WebPDemuxer* demuxer) const noexcept { WebPDemuxDelete(demuxer); }
};
struct DeleteDecoder {
    void operator()(WebPIDecoder* decoder) const noexcept { WebPIDelete(decoder); }
};
using Demuxer = std::unique_ptr<WebPDemuxer, DeleteDemuxer>;
using Decoder = std::unique_ptr<WebPIDecoder, DeleteDecoder>;

// The chunks of a file, those at least that are there. A file whose container makes no sense may still hold
// a picture that the decoder finds by itself: then there is nothing but that.
class Container {
  public:
    explicit Container(ByteView file) : file_(file) {
        const WebPData data{file.data(), file.size()};
        WebPDemuxState state = WEBP_DEMUX_PARSING_HEADER;
        demuxer_.reset(WebPDemuxPartial(&data, &state));
        if (demuxer_ && state < WEBP_DEMUX_PARSED_HEADER) {
            demuxer_.reset();
        }
    }

    struct Frame {
        ByteView data; // for the decoder
        int x = 0;     // of its left upper corner on the canvas
        int y = 0;
        int width = 0;
        int height = 0;
        int canvasWidth = 0;
        int canvasHeight = 0;

        bool FillsCanvas() const { return width == canvasWidth && height == canvasHeight; }
    };

    Frame FirstFrame() const {
        WebPIterator iterator{};
        if (demuxer_ && WebPDemuxGetFrame(demuxer_.get(), 1, &iterator) != 0) {
            const Frame frame{{iterator.fragment.bytes, iterator.fragment.size},
                              iterator.x_offset,
                              iterator.y_offset,
                              iterator.width,
                              iterator.height,
                              static_cast<int>(WebPDemuxGetI(demuxer_.get(), WEBP_FF_CANVAS_WIDTH)),
                              static_cast<int>(WebPDemuxGetI(demuxer_.get(), WEBP_FF_CANVAS_HEIGHT))};
            WebPDemuxReleaseIterator(&iterator);
            return frame;
        }
        WebPBitstreamFeatures features;
        if (WebPGetFeatures(file_.data(), file_.size(), &features) != VP8_STATUS_OK ||
            features.has_animation != 0) {
            Refuse("The WebP file is damaged before its first pixel.");
        }
        return {file_, 0, 0, features.width, features.height, features.width, features.height};
    }

    ByteView Chunk(const char* name) const {
        WebPChunkIterator iterator{};
        if (!demuxer_ || WebPDemuxGetChunk(demuxer_.get(), name, 1, &iterator) == 0) {
            return {};
        }
        const ByteView chunk(iterator.chunk.bytes, iterator.chunk.size);
        WebPDemuxReleaseChunkIterator(&iterator);
        return chunk;
    }

  private:
    ByteView file_;
    Demuxer demuxer_;
};

// How many rows were decoded into pixels that start at `rows`.
int DecodeRows(const Container::Frame& frame, std::uint8_t* rows, std::ptrdiff_t stride) {
    WebPDecoderConfig config;
    if (WebPInitDecoderConfig(&config) == 0) {
        Refuse("WebP files cannot be read with the library that is installed.");
    }
    config.options.use_threads = 1;
    config.output.colorspace = MODE_BGRA;
    config.output.is_external_memory = 1;
    config.output.u.RGBA = {rows, static_cast<int>(stride),
                            static_cast<std::size_t>(stride) * static_cast<std::size_t>(frame.height)};
    const Decoder decoder(WebPIDecode(nullptr, 0, &config));
    if (!decoder) {
        throw std::bad_alloc();
    }
    const VP8StatusCode status = WebPIUpdate(decoder.get(), frame.data.data(), frame.data.size());
    if (status == VP8_STATUS_OK) {
        return frame.height;
    }
    if (status == VP8_STATUS_OUT_OF_MEMORY) {
        throw std::bad_alloc();
    }
    int lastRow = 0;
    return WebPIDecGetRGB(decoder.get(), &lastRow, nullptr, nullptr, nullptr) == nullptr
               ? 0
               : std::clamp(lastRow, 0, frame.height);
}

PixelArray DecodeFrame(const Container::Frame& frame) {
    PixelArray picture(frame.width, frame.height);
    const int rows = DecodeRows(frame, picture.WritableRows(), picture.Stride());
    if (rows == 0) {
        Refuse("The WebP file is damaged or ends before its first row of pixels.");
    }
    FillWhite(picture, rows, picture.Height());
    picture.SetPartShown(static_cast<double>(rows) / picture.Height());
    return picture;
}

PixelArray OnCanvas(const PixelArray& frame, const Container::Frame& place) {
    PixelArray canvas(place.canvasWidth, place.canvasHeight);
    std::uint8_t* const rows = canvas.WritableRows();
    std::memset(rows, 0,
                static_cast<std::size_t>(canvas.Stride()) * static_cast<std::size_t>(canvas.Height()));
    for (int y = 0; y < frame.Height(); ++y) {
        std::memcpy(
            rows + (place.y + y) * canvas.Stride() + std::ptrdiff_t{place.x} * PixelArray::kComponents,
            frame.Row(y), frame.RowBytes());
    }
    return canvas;
}

} // namespace

bool IsWebP(ByteView file) noexcept {
    return StartsWith(file, "RIFF") && StartsWith(Slice(file, 8), "WEBPVP8");
}

PixelArray ReadWebP(ByteView file, const ReadOptions& /*options*/) {
    const Container container(file);
    const Container::Frame frame = container.FirstFrame();
    CheckClaimedSize(frame.canvasWidth, frame.canvasHeight, file.size(), kMostPixelsPerByte);
    if (frame.x + frame.width > frame.canvasWidth || frame.y + frame.height > frame.canvasHeight) {
        Refuse("The WebP file has a frame that lies beside its canvas.");
    }
    PixelArray picture = DecodeFrame(frame);
    if (!frame.FillsCanvas()) {
        const double part = picture.PartShown();
        picture = OnCanvas(picture, frame);
        picture.SetPartShown(part);
    }
    SettleAlpha(picture);
    ConvertToSrgb(picture, container.Chunk("ICCP"));
    const ByteView exif = WithoutExifPrefix(container.Chunk("EXIF"));
    KeepMetadata(picture, exif, container.Chunk("XMP "));
    return ApplyOrientation(std::move(picture), ExifOrientation(exif));
}

} // namespace pictorel::codecs
