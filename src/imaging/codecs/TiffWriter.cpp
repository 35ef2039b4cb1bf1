// Writing TIFF files, see Tiff.h: libtiff makes the directory, strips are deflated on all cores.
#include "imaging/ForEachBand.h"
#include "imaging/ImagingError.h"
#include "imaging/codecs/Deflate.h"
#include "imaging/codecs/PixelSupport.h"
#include "imaging/codecs/Tiff.h"
#include "imaging/codecs/TiffFile.h"

#include <vector>

namespace pictorel::codecs {
namespace {

constexpr std::size_t kStripBytes = std::size_t{1} << 20;
constexpr std::size_t kClassicBytes = std::size_t{4'000'000'000}; // beyond it offsets need 64 bits

// One row as differences from the pixel to the left (predictor 2): R, G, B or R, G, B, A.
void PredictRow(const std::uint8_t* bgra, std::uint8_t* out, int pixels, int samples) {
    constexpr int kOrder[] = {2, 1, 0, 3};
    for (int i = 0; i < samples; ++i) {
        const std::uint8_t* in = bgra + kOrder[i];
        std::uint8_t* difference = out + i;
        std::uint8_t left = 0;
        for (int x = 0; x < pixels; ++x, in += PixelArray::kComponents, difference += samples) {
            *difference = static_cast<std::uint8_t>(*in - left);
            left = *in;
        }
    }
}

std::vector<ByteBuffer> MakeStrips(const PixelArray& picture, int samples, int stripRows) {
    const std::size_t rowBytes =
        static_cast<std::size_t>(picture.Width()) * static_cast<std::size_t>(samples);
    const int count = (picture.Height() + stripRows - 1) / stripRows;
    std::vector<ByteBuffer> strips(static_cast<std::size_t>(count));
    ForEachBand(count, std::max(kStripBytes, rowBytes), [&](int first, int end) {
        ByteBuffer predicted;
        for (int strip = first; strip < end; ++strip) {
            const int top = strip * stripRows;
            const int rows = std::min(stripRows, picture.Height() - top);
            predicted.resize(rowBytes * static_cast<std::size_t>(rows));
            for (int i = 0; i < rows; ++i) {
                PredictRow(picture.Row(top + i), predicted.data() + static_cast<std::size_t>(i) * rowBytes,
                           picture.Width(), samples);
            }
            strips[static_cast<std::size_t>(strip)] = Deflate(predicted, DeflatePart::Whole);
        }
    });
    return strips;
}

void SetTags(TIFF* tiff, const PixelArray& picture, int samples, int stripRows) {
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(picture.Width()));
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(picture.Height()));
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE);
    TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(stripRows));
    if (samples == 4) {
        const std::uint16_t kind = EXTRASAMPLE_UNASSALPHA;
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind);
    }
    const Metadata& details = picture.Details();
    if (details.dotsPerInchX > 0 && details.dotsPerInchY > 0) {
        TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
        TIFFSetField(tiff, TIFFTAG_XRESOLUTION, details.dotsPerInchX);
        TIFFSetField(tiff, TIFFTAG_YRESOLUTION, details.dotsPerInchY);
    }
    if (!details.icc.empty()) {
        TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(details.icc.size()),
                     details.icc.data());
    }
}

} // namespace

ByteBuffer WriteTiff(const PixelArray& picture, const WriteOptions& /*options*/) {
    const int samples = NeedsAlpha(picture) ? 4 : 3;
    const std::size_t rowBytes =
        static_cast<std::size_t>(picture.Width()) * static_cast<std::size_t>(samples);
    const int stripRows = static_cast<int>(std::max<std::size_t>(1, kStripBytes / rowBytes));
    const std::vector<ByteBuffer> strips = MakeStrips(picture, samples, stripRows);
    std::size_t total = picture.Details().icc.size() + 4096 + 64 * strips.size();
    for (const ByteBuffer& strip : strips) {
        total += strip.size();
    }
    TiffMemory memory;
    memory.isWriting = true;
    memory.written.reserve(total);
    bool isWhole = false;
    {
        const TiffHandle tiff = OpenTiff(memory, total > kClassicBytes ? "w8" : "w");
        if (tiff) {
            SetTags(tiff.get(), picture, samples, stripRows);
            isWhole = true;
            std::uint32_t number = 0;
            for (const ByteBuffer& strip : strips) {
                // libtiff takes a writable buffer and leaves it as it is.
                const auto bytes = static_cast<tmsize_t>(strip.size());
                isWhole =
                    isWhole && TIFFWriteRawStrip(tiff.get(), number, const_cast<std::uint8_t*>(strip.data()),
                                                 bytes) == bytes;
                ++number;
            }
            isWhole = isWhole && TIFFFlush(tiff.get()) != 0;
        }
    }
    if (!isWhole || memory.isOutOfMemory) {
        throw ImagingError(ImagingFailure::OutOfMemory, "There is not enough memory to save this picture.");
    }
    return std::move(memory.written);
}

} // namespace pictorel::codecs
