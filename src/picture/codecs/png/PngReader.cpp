// Reading PNG files through libpng, see Png.h.
#include "picture/BufferPool.h"
#include "picture/ForEachBand.h"
#include "picture/ImagingError.h"
#include "picture/codecs/ByteReader.h"
#include "picture/codecs/CalibratedProfile.h"
#include "picture/codecs/ColourProfile.h"
#include "picture/codecs/Exif.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/Xmp.h"
#include "picture/codecs/png/Png.h"
#include "picture/codecs/png/PngChunks.h"
#include "picture/codecs/png/PngPlainPixels.h"

#include <png.h>

#include <bit>
#include <csetjmp>
#include <cstring>
#include <string_view>
#include <vector>

namespace pictorel::codecs {
namespace {

constexpr std::int64_t kDeflateRatio = 1032;          // the most that a byte of deflated data can become
constexpr int kBatchRows = 256;                       // converted together, on all cores
constexpr png_alloc_size_t kLargestChunk = 64U << 20; // of profiles and the like, unpacked
constexpr std::size_t kReadBytes = 64U << 10;         // of pixels at a time
constexpr png_uint_32 kMostChunksKept = 128;

// Before libpng takes memory: the size stands at a fixed place.
void CheckHeader(ByteView file) {
    constexpr std::size_t kWidthAt = 16;
    constexpr int kChannels[] = {1, 1, 3, 1, 2, 1, 4, 1}; // by colour type
    const int channels = kChannels[ByteAt(file, kWidthAt + 9) & 7];
    const int bits = std::max<int>(1, ByteAt(file, kWidthAt + 8)) * channels;
    CheckClaimedSize(BigEndian32(file, kWidthAt), BigEndian32(file, kWidthAt + 4), file.size(),
                     kDeflateRatio * 8 * 2 / bits + 1);
}

class PngDecoder {
  public:
    explicit PngDecoder(ByteView file) : file_(file), parts_(PngParts(file)), isCut_(IsPngCutShort(file)) {
        png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, JumpBack, IgnoreWarning);
        info_ = png_ == nullptr ? nullptr : png_create_info_struct(png_);
        if (info_ == nullptr) {
            png_destroy_read_struct(&png_, nullptr, nullptr);
            throw ImagingError(ImagingFailure::OutOfMemory, "There is not enough memory for this picture.");
        }
    }
    ~PngDecoder() { png_destroy_read_struct(&png_, &info_, nullptr); }
    PngDecoder(const PngDecoder&) = delete;
    PngDecoder& operator=(const PngDecoder&) = delete;

    PixelArray Read() {
        if (!ReadHeader()) {
            Refuse("The PNG file is damaged before its first pixel.");
        }
        FindProfile();
        PixelArray picture(static_cast<int>(png_get_image_width(png_, info_)),
                           static_cast<int>(png_get_image_height(png_, info_)));
        isWide_ = png_get_bit_depth(png_, info_) == 16;
        isGreyProfile_ = !icc_.empty() && (png_get_color_type(png_, info_) & PNG_COLOR_MASK_COLOR) == 0;
        isDirect_ = !isWide_ && !isGreyProfile_;
        isInterlaced_ = png_get_interlace_type(png_, info_) != PNG_INTERLACE_NONE;
        hasTransparentColour_ = png_get_valid(png_, info_, PNG_INFO_tRNS) != 0;
        fileColours_ = png_get_color_type(png_, info_);
        const bool hasAlpha = HasAlphaChannel() || hasTransparentColour_;
        if (!SetTransforms()) {
            Refuse("The PNG file is damaged before its first pixel.");
        }
        isDirect_ ? ReadDirect(picture) : ReadConverting(picture);
        if (hasAlpha) {
            SettleAlpha(picture);
        }
        return Finish(std::move(picture));
    }

  private:
    [[noreturn]] static void JumpBack(png_structp png, png_const_charp /*text*/) { png_longjmp(png, 1); }
    static void IgnoreWarning(png_structp /*png*/, png_const_charp /*text*/) {}

    static void Supply(png_structp png, png_bytep out, std::size_t bytes) {
        auto& parts = static_cast<PngDecoder*>(png_get_io_ptr(png))->parts_;
        auto& next = static_cast<PngDecoder*>(png_get_io_ptr(png))->nextPart_;
        while (bytes > 0) {
            if (next == parts.size()) {
                png_error(png, "the file ends here");
            }
            ByteView& part = parts[next];
            const std::size_t taken = std::min(bytes, part.size());
            std::memcpy(out, part.data(), taken);
            part = part.subspan(taken);
            out += taken;
            bytes -= taken;
            next += part.empty() ? 1 : 0;
        }
    }

    // Runs calls into libpng; false where it gave up. Giving up jumps over `body`, which must own nothing.
    template <class Body>
    bool Guarded(const Body& body) {
        if (setjmp(png_jmpbuf(png_)) != 0) {
            return false;
        }
        body();
        return true;
    }

    bool ReadHeader() {
        return Guarded([this] {
            png_set_read_fn(png_, this, Supply);
            png_set_user_limits(png_, kMaximumSide, kMaximumSide);
            png_set_chunk_cache_max(png_, kMostChunksKept);
            png_set_chunk_malloc_max(png_, kLargestChunk);
            png_set_compression_buffer_size(png_, isCut_ ? 1 : kReadBytes);
            png_set_benign_errors(png_, 1);
            png_set_option(png_, PNG_IGNORE_ADLER32, PNG_OPTION_ON); // the pixels are there by then
            png_set_option(png_, PNG_MAXIMUM_INFLATE_WINDOW,
                           PNG_OPTION_ON); // a wrong window size costs nothing
            png_read_info(png_, info_);
            // Pixels are taken whatever their checksum: where they are damaged in earnest, inflating ends.
            png_set_crc_action(png_, PNG_CRC_QUIET_USE, PNG_CRC_WARN_DISCARD);
        });
    }

    // An embedded profile holds over the sRGB mark, and that over gamma and primaries.
    void FindProfile() {
        png_charp name = nullptr;
        int method = 0;
        png_bytep data = nullptr;
        png_uint_32 bytes = 0;
        if (png_get_iCCP(png_, info_, &name, &method, &data, &bytes) != 0) {
            icc_.assign(data, data + bytes);
            return;
        }
        if (png_get_valid(png_, info_, PNG_INFO_sRGB) != 0) {
            return;
        }
        CalibratedRgb space;
        double gamma = 0;
        if (png_get_gAMA(png_, info_, &gamma) != 0 && gamma > 0) {
            space.gamma.fill(1 / gamma);
        }
        auto& [red, green, blue] = space.primaries;
        png_get_cHRM(png_, info_, &space.white.x, &space.white.y, &red.x, &red.y, &green.x, &green.y, &blue.x,
                     &blue.y);
        calibrated_ = MakeCalibratedProfile(space);
    }

    // What libpng hands over: B, G, R, A bytes; or 16-bit R, G, B, A; or, for a profile of greys, grey and
    // alpha of either size.
    bool SetTransforms() {
        return Guarded([this] {
            png_set_expand(png_);
            png_set_add_alpha(png_, isWide_ ? 0xFFFF : 0xFF, PNG_FILLER_AFTER);
            if (!isGreyProfile_) {
                png_set_gray_to_rgb(png_);
            }
            if (isDirect_) {
                png_set_bgr(png_);
            } else if (isWide_ && std::endian::native == std::endian::little) {
                png_set_swap(png_);
            }
            passes_ = png_set_interlace_handling(png_);
            png_read_update_info(png_, info_);
        });
    }

    // Reads rows that stand `stride` bytes apart. False where the file gives no more of them. The passes of
    // an interlaced picture fill whole blocks, so that a file cut short shows a coarse picture.
    bool ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, int count) {
        return Guarded([this, rows, stride, count] {
            for (int pass = 0; pass < passes_; ++pass) {
                for (int y = 0; y < count; ++y) {
                    png_bytep const row = rows + y * stride;
                    png_read_row(png_, isInterlaced_ ? nullptr : row, isInterlaced_ ? row : nullptr);
                    anyRow_ = true;
                }
            }
        });
    }

    bool HasAlphaChannel() const { return (fileColours_ & PNG_COLOR_MASK_ALPHA) != 0; }

    // Whether the rows hold red, green and blue bytes as they are.
    bool IsPlain() const {
        return !isWide_ && !isInterlaced_ && !hasTransparentColour_ &&
               (fileColours_ == PNG_COLOR_TYPE_RGB || fileColours_ == PNG_COLOR_TYPE_RGB_ALPHA);
    }

    // Of the picture, or of the pass. libpng may give up over what follows the last row: that row is there.
    int RowsFinished() const { return static_cast<int>(png_get_current_row_number(png_)); }

    // Of an interlaced picture a pass fills blocks, each of one pixel of the file's.
    double PixelsFinished(const PixelArray& picture) const {
        const double rowsShown = std::min(RowsFinished(), picture.Height());
        if (!isInterlaced_) {
            return rowsShown * picture.Width();
        }
        constexpr std::array kPartAfter{0.0,     1.0 / 64, 1.0 / 32, 1.0 / 16,
                                        1.0 / 8, 1.0 / 4,  1.0 / 2,  1.0}; // passes
        const auto pass = static_cast<std::size_t>(std::min<int>(png_get_current_pass_number(png_), 6));
        const double part =
            kPartAfter[pass] + (kPartAfter[pass + 1] - kPartAfter[pass]) * rowsShown / picture.Height();
        return part * picture.Width() * picture.Height();
    }

    // A picture of which an interlaced file's coarsest pass is there shows something true all over.
    void NoteDamage(PixelArray& picture, double pixels) const {
        if (isInterlaced_) {
            picture.SetPartShown(pixels / (static_cast<double>(picture.Width()) * picture.Height()));
        } else {
            NotePixelsShown(picture, pixels);
        }
    }

    void RefuseWithoutRows() const {
        if (!anyRow_ && RowsFinished() == 0) {
            Refuse("The PNG file is damaged or ends before its first row of pixels.");
        }
    }

    void ReadDirect(PixelArray& picture) {
        if (isInterlaced_) {
            FillWhite(picture, 0, picture.Height());
        }
        isPassedBy_ = IsPlain() && ReadPlainPng(file_, HasAlphaChannel(), picture);
        isWhole_ = isPassedBy_;
        if (!isPassedBy_) {
            isWhole_ = ReadRows(picture.WritableRows(), picture.Stride(), picture.Height());
            RefuseWithoutRows();
        }
        if (!isWhole_) {
            NoteDamage(picture, PixelsFinished(picture));
        }
        if (!isWhole_ && !isInterlaced_) {
            FillWhite(picture, std::min(RowsFinished(), picture.Height()), picture.Height());
        }
        if (!calibrated_.empty() || !icc_.empty()) {
            ConvertToSrgb(picture, icc_.empty() ? calibrated_ : icc_);
        }
    }

    void ReadConverting(PixelArray& picture) {
        const SampleLayout layout =
            !isGreyProfile_ ? SampleLayout::Rgba16 : (isWide_ ? SampleLayout::Grey16 : SampleLayout::Grey8);
        const ByteBuffer& profile = icc_.empty() ? calibrated_ : icc_;
        const ColourConverter converter(layout, profile);
        const auto rowBytes = static_cast<std::ptrdiff_t>(png_get_rowbytes(png_, info_));
        const int batch = isInterlaced_ ? picture.Height() : std::min(kBatchRows, picture.Height());
        const auto samples = TakeBuffer(static_cast<std::size_t>(rowBytes) * static_cast<std::size_t>(batch));
        isWhole_ = true;
        for (int y = 0; y < picture.Height(); y += batch) {
            const int count = std::min(batch, picture.Height() - y);
            std::memset(samples.get(), 0xFF, static_cast<std::size_t>(rowBytes * count));
            const bool wasWhole = isWhole_;
            isWhole_ = isWhole_ && ReadRows(samples.get(), rowBytes, count);
            RefuseWithoutRows();
            if (wasWhole && !isWhole_) {
                NoteDamage(picture, PixelsFinished(picture));
            }
            ConvertRows(converter, samples.get(), rowBytes, picture, y, count);
        }
        Metadata details = picture.Details();
        details.icc = ProfileAfterConversion(profile);
        picture.SetDetails(std::move(details));
    }

    void ConvertRows(const ColourConverter& converter, const std::uint8_t* samples, std::ptrdiff_t rowBytes,
                     PixelArray& picture, int firstRow, int count) const {
        std::uint8_t* const rows = picture.WritableRows() + firstRow * picture.Stride();
        ForEachBand(count, picture.RowBytes() * 8, [&](int first, int end) {
            std::vector<std::uint8_t> grey(isGreyProfile_ ? static_cast<std::size_t>(rowBytes) / 2 : 0);
            for (int y = first; y < end; ++y) {
                const std::uint8_t* const row = samples + y * rowBytes;
                std::uint8_t* const bgra = rows + y * picture.Stride();
                if (isGreyProfile_) {
                    ConvertGreyRow(converter, row, grey.data(), bgra, picture.Width());
                } else {
                    converter.ConvertRow(row, bgra, picture.Width());
                }
            }
        });
    }

    void ConvertGreyRow(const ColourConverter& converter, const std::uint8_t* greyAndAlpha,
                        std::uint8_t* grey, std::uint8_t* bgra, int pixels) const {
        const int sampleBytes = isWide_ ? 2 : 1;
        for (int x = 0; x < pixels; ++x) {
            std::memcpy(grey + x * sampleBytes, greyAndAlpha + 2 * x * sampleBytes,
                        static_cast<std::size_t>(sampleBytes));
        }
        converter.ConvertRow(grey, bgra, pixels);
        for (int x = 0; x < pixels; ++x) {
            const std::uint8_t* const alpha = greyAndAlpha + (2 * x + 1) * sampleBytes;
            std::uint16_t wide = 0;
            std::memcpy(&wide, alpha, static_cast<std::size_t>(sampleBytes));
            bgra[4 * x + 3] = isWide_ ? static_cast<std::uint8_t>((wide * 255U + 32767U) / 65535U) : *alpha;
        }
    }

    // EXIF and resolution may stand behind the pixels; damage there takes nothing from the picture.
    PixelArray Finish(PixelArray picture) {
        if (isWhole_ && !isPassedBy_) {
            Guarded([this] { png_read_end(png_, info_); });
        }
        Metadata details = picture.Details();
        details.xmp = WithoutPictureClaims(FindPngChunk(file_, "iTXt", kPngXmpKeyword));
        png_uint_32 exifBytes = 0;
        png_bytep exifData = nullptr;
        int orientation = 1;
        const bool hasChunk = png_get_eXIf_1(png_, info_, &exifBytes, &exifData) != 0;
        const ByteView behindPixels = isPassedBy_ ? FindSoundPngChunk(file_, "eXIf") : ByteView();
        const ByteBuffer exif = hasChunk               ? ByteBuffer(exifData, exifData + exifBytes)
                                : behindPixels.empty() ? FindPngExifText(file_)
                                                       : ByteBuffer(behindPixels.begin(), behindPixels.end());
        if (!exif.empty()) {
            orientation = ExifOrientation(exif);
            details.exif = WithUprightOrientation(exif);
            const Resolution resolution = ExifResolution(exif);
            details.dotsPerInchX = resolution.dotsPerInchX;
            details.dotsPerInchY = resolution.dotsPerInchY;
        }
        png_uint_32 x = 0;
        png_uint_32 y = 0;
        int unit = PNG_RESOLUTION_UNKNOWN;
        if (png_get_pHYs(png_, info_, &x, &y, &unit) != 0 && unit == PNG_RESOLUTION_METER) {
            details.dotsPerInchX = InchesFromMetre(x);
            details.dotsPerInchY = InchesFromMetre(y);
        }
        picture.SetDetails(std::move(details));
        return ApplyOrientation(std::move(picture), orientation);
    }

    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    ByteView file_;
    std::vector<ByteView> parts_; // that libpng gets; what it has read is taken off
    std::size_t nextPart_ = 0;
    // libpng takes a whole buffer of pixels or none: of a file cut short it is to take byte by byte, to the
    // end.
    bool isCut_;
    ByteBuffer icc_;        // the file's own profile
    ByteBuffer calibrated_; // made from its gamma and primaries
    bool isWide_ = false;
    bool isGreyProfile_ = false;
    int fileColours_ = 0; // libpng's colour type, of the file
    bool hasTransparentColour_ = false;
    bool isDirect_ = false;
    bool isInterlaced_ = false;
    bool isWhole_ = false; // every row was there
    int passes_ = 1;
    bool anyRow_ = false;
    bool isPassedBy_ = false; // the pixels were read without libpng, which would inflate them once more
};

} // namespace

bool IsPng(ByteView file) noexcept {
    return StartsWith(file, kPngSignature);
}

PixelArray ReadPng(ByteView file, const ReadOptions& /*options*/) {
    CheckHeader(file);
    return PngDecoder(file).Read();
}

} // namespace pictorel::codecs
