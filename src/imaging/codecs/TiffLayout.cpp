// What the tags of a TIFF picture say about its samples, see TiffLayout.h.
#include "imaging/codecs/TiffLayout.h"

#include "imaging/codecs/PixelSupport.h"

#include <algorithm>

namespace pictorel::codecs {
namespace {

constexpr int kMostSamples = 64;

template <class Value>
Value Tag(TIFF* tiff, std::uint32_t tag, Value fallback) {
    Value value = fallback;
    return TIFFGetFieldDefaulted(tiff, tag, &value) != 0 ? value : fallback;
}
int Tag16(TIFF* tiff, std::uint32_t tag, int fallback) {
    return Tag<std::uint16_t>(tiff, tag, static_cast<std::uint16_t>(fallback));
}

// How many bytes of samples an honest file may hold in one of its own, some of it cut off.
struct Density {
    int compression;
    std::int64_t bytesPerByte;
};
constexpr Density kDensities[] = {
    {COMPRESSION_NONE, 64},      {COMPRESSION_PACKBITS, 4096},      {COMPRESSION_LZW, 8192},
    {COMPRESSION_DEFLATE, 2064}, {COMPRESSION_ADOBE_DEFLATE, 2064}, {COMPRESSION_JPEG, 2048},
};
constexpr std::int64_t kDensest = 32768; // blank fax pages, and the strongest packers

class LayoutReader {
  public:
    LayoutReader(TIFF* tiff, std::size_t fileBytes) : tiff_(tiff), fileBytes_(fileBytes) {}

    TiffLayout Read() {
        ReadSize();
        ReadSamples();
        ReadColour();
        ReadAlpha();
        ReadDetails();
        if (layout_.colour == TiffColour::Palette) {
            ReadPalette();
        }
        return std::move(layout_);
    }

  private:
    void ReadSize() {
        layout_.bits = Tag16(tiff_, TIFFTAG_BITSPERSAMPLE, 1);
        layout_.samples = Tag16(tiff_, TIFFTAG_SAMPLESPERPIXEL, 1);
        compression_ = Tag16(tiff_, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
        if (layout_.bits < 1 || layout_.bits > 64 || layout_.samples < 1 || layout_.samples > kMostSamples) {
            Refuse("The TIFF file has a number of bits or samples a pixel that no picture has.");
        }
        std::int64_t density = kDensest;
        for (const Density& known : kDensities) {
            density = known.compression == compression_ ? known.bytesPerByte : density;
        }
        const auto width = Tag<std::uint32_t>(tiff_, TIFFTAG_IMAGEWIDTH, 0);
        const auto height = Tag<std::uint32_t>(tiff_, TIFFTAG_IMAGELENGTH, 0);
        CheckClaimedSize(width, height, fileBytes_, density * 8 / (layout_.bits * layout_.samples) + 1);
        layout_.width = static_cast<int>(width);
        layout_.height = static_cast<int>(height);
        layout_.orientation = Tag16(tiff_, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    }

    void ReadSamples() {
        if (TIFFIsCODECConfigured(static_cast<std::uint16_t>(compression_)) == 0) {
            Refuse("The TIFF file is compressed in a way that this editor cannot read.");
        }
        layout_.sampleFormat = Tag16(tiff_, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
        layout_.isPlanar = layout_.samples > 1 &&
                           Tag16(tiff_, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE;
        if (layout_.sampleFormat == SAMPLEFORMAT_IEEEFP) {
            double value = 0;
            layout_.floatMinimum = TIFFGetField(tiff_, TIFFTAG_SMINSAMPLEVALUE, &value) != 0 ? value : 0;
            layout_.floatMaximum = TIFFGetField(tiff_, TIFFTAG_SMAXSAMPLEVALUE, &value) != 0 ? value : 1;
            if (!(layout_.floatMaximum > layout_.floatMinimum)) {
                layout_.floatMinimum = 0;
                layout_.floatMaximum = 1;
            }
        }
    }

    int Photometric() const {
        std::uint16_t photometric = 0;
        if (TIFFGetField(tiff_, TIFFTAG_PHOTOMETRIC, &photometric) != 0) {
            return photometric;
        }
        if (layout_.samples >= 3) {
            return PHOTOMETRIC_RGB;
        }
        const bool isFax = compression_ == COMPRESSION_CCITTRLE || compression_ == COMPRESSION_CCITTFAX3 ||
                           compression_ == COMPRESSION_CCITTFAX4;
        return isFax ? PHOTOMETRIC_MINISWHITE : PHOTOMETRIC_MINISBLACK;
    }

    void Set(TiffColour colour, int samples) {
        layout_.colour = colour;
        layout_.colourSamples = samples;
        if (layout_.samples < samples) {
            Refuse("The TIFF file has fewer samples a pixel than its kind of colours asks for.");
        }
    }

    void ReadColour() {
        const int photometric = Photometric();
        switch (photometric) {
            case PHOTOMETRIC_MINISWHITE:
            case PHOTOMETRIC_MINISBLACK:
            case PHOTOMETRIC_MASK:
                Set(TiffColour::Grey, 1);
                layout_.isInverted = photometric == PHOTOMETRIC_MINISWHITE;
                break;
            case PHOTOMETRIC_RGB:
                Set(TiffColour::Rgb, 3);
                break;
            case PHOTOMETRIC_PALETTE:
                Set(TiffColour::Palette, 1);
                break;
            case PHOTOMETRIC_SEPARATED:
                Set(TiffColour::Cmyk, 4);
                break;
            case PHOTOMETRIC_CIELAB:
            case PHOTOMETRIC_ICCLAB:
                Set(TiffColour::Lab, 3);
                layout_.hasSignedAb = photometric == PHOTOMETRIC_CIELAB;
                break;
            case PHOTOMETRIC_YCBCR:
                ReadYCbCr();
                break;
            case PHOTOMETRIC_LOGL:
            case PHOTOMETRIC_LOGLUV:
                layout_.isDecodedByLibrary = true;
                break;
            default:
                Refuse("The TIFF file has a kind of colours that this editor cannot read.");
        }
        if (compression_ == COMPRESSION_JBIG || compression_ == COMPRESSION_OJPEG) {
            layout_.isDecodedByLibrary = true; // they cannot be read row by row
        }
    }

    // JPEG strips come as RGB when asked for; other YCbCr samples may stand in blocks.
    void ReadYCbCr() {
        if (compression_ == COMPRESSION_JPEG && !layout_.isPlanar) {
            TIFFSetField(tiff_, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
            Set(TiffColour::Rgb, 3);
        } else {
            layout_.isDecodedByLibrary = true;
        }
    }

    // Extra samples of no stated meaning are selections and the like. A file that has them without saying so
    // means alpha.
    void ReadAlpha() {
        std::uint16_t count = 0;
        std::uint16_t* kinds = nullptr;
        if (TIFFGetField(tiff_, TIFFTAG_EXTRASAMPLES, &count, &kinds) == 0 || count == 0) {
            layout_.isAlphaGuessed = layout_.colour == TiffColour::Rgb && layout_.samples == 4;
            layout_.alphaSample = layout_.isAlphaGuessed ? 3 : -1;
            return;
        }
        for (int i = 0; i < count && layout_.colourSamples + i < layout_.samples; ++i) {
            if (kinds[i] == EXTRASAMPLE_ASSOCALPHA || kinds[i] == EXTRASAMPLE_UNASSALPHA) {
                layout_.alphaSample = layout_.colourSamples + i;
                layout_.isPremultiplied = kinds[i] == EXTRASAMPLE_ASSOCALPHA;
                return;
            }
        }
    }

    void ReadDetails() {
        std::uint32_t bytes = 0;
        const void* data = nullptr;
        if (TIFFGetField(tiff_, TIFFTAG_ICCPROFILE, &bytes, &data) != 0 && data != nullptr) {
            const auto* const icc = static_cast<const std::uint8_t*>(data);
            layout_.icc.assign(icc, icc + bytes);
        }
        const int unit = Tag16(tiff_, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
        const double perInch = unit == RESUNIT_INCH ? 1 : (unit == RESUNIT_CENTIMETER ? 2.54 : 0);
        const auto resolution = [&](std::uint32_t tag) {
            const double value = Tag<float>(tiff_, tag, 0) * perInch;
            return value > 0 && value < 1e6 ? value : 0;
        };
        layout_.dotsPerInchX = resolution(TIFFTAG_XRESOLUTION);
        layout_.dotsPerInchY = resolution(TIFFTAG_YRESOLUTION);
    }

    void ReadPalette() {
        std::uint16_t* red = nullptr;
        std::uint16_t* green = nullptr;
        std::uint16_t* blue = nullptr;
        if (layout_.bits > 16 || layout_.sampleFormat == SAMPLEFORMAT_IEEEFP ||
            TIFFGetField(tiff_, TIFFTAG_COLORMAP, &red, &green, &blue) == 0) {
            Refuse("The TIFF file has no palette for its colours.");
        }
        const std::size_t count = std::size_t{1} << layout_.bits;
        // Old programs wrote 8-bit values into the 16-bit fields.
        std::uint16_t largest = 0;
        for (std::size_t i = 0; i < count; ++i) {
            largest = std::max({largest, red[i], green[i], blue[i]});
        }
        const unsigned white = largest < 256 ? 255 : 65535;
        const auto scaled = [white](std::uint16_t value) {
            return static_cast<std::uint8_t>((value * 255U + white / 2) / white);
        };
        layout_.palette.resize(count);
        for (std::size_t i = 0; i < count; ++i) {
            layout_.palette[i] = {scaled(blue[i]), scaled(green[i]), scaled(red[i]), 255};
        }
        auto* const entries = layout_.palette.front().data();
        ColourConverter(SampleLayout::Bgra8, layout_.icc)
            .ConvertRow(entries, entries, static_cast<int>(count));
    }

    TIFF* tiff_;
    std::size_t fileBytes_;
    int compression_ = COMPRESSION_NONE;
    TiffLayout layout_;
};

} // namespace

TiffLayout ReadTiffLayout(TIFF* tiff, std::size_t fileBytes) {
    return LayoutReader(tiff, fileBytes).Read();
}

} // namespace pictorel::codecs
