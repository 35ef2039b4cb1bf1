// Writing PNG files, see Png.h: libpng makes the chunks, the pixels are deflated in bands on all cores.
#include "picture/ForEachBand.h"
#include "picture/ImagingError.h"
#include "picture/codecs/ByteReader.h"
#include "picture/codecs/Deflate.h"
#include "picture/codecs/Exif.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/png/Png.h"
#include "picture/codecs/png/PngFilters.h"

#include <png.h>
#include <zlib.h>

#include <csetjmp>
#include <cstring>
#include <vector>

namespace pictorel::codecs {
namespace {

constexpr std::size_t kBandBytes = std::size_t{1}
                                   << 20; // small against it: the 32 KiB that deflate looks back

struct Band {
    ByteBuffer deflated;
    uLong checksum = 0;
    std::size_t bytes = 0; // before deflating
};

// One row as PNG has it: R, G, B or R, G, B, A.
void ToPngRow(const std::uint8_t* bgra, std::uint8_t* out, int pixels, bool withAlpha) {
    const int pixelBytes = withAlpha ? 4 : 3;
    for (int x = 0; x < pixels; ++x, bgra += PixelArray::kComponents, out += pixelBytes) {
        out[0] = bgra[2];
        out[1] = bgra[1];
        out[2] = bgra[0];
        if (withAlpha) {
            out[3] = bgra[3];
        }
    }
}

Band MakeBand(const PixelArray& picture, bool withAlpha, int firstRow, int endRow) {
    const std::size_t pixelBytes = withAlpha ? 4 : 3;
    const std::size_t rowBytes = static_cast<std::size_t>(picture.Width()) * pixelBytes;
    std::vector<std::uint8_t> rows(2 * (pixelBytes + rowBytes)); // zeros left of either
    std::uint8_t* row = rows.data() + pixelBytes;
    std::uint8_t* above = row + rowBytes + pixelBytes;
    if (firstRow > 0) {
        ToPngRow(picture.Row(firstRow - 1), above, picture.Width(), withAlpha);
    }
    PngRowFilter filter(rowBytes, pixelBytes);
    ByteBuffer filtered(static_cast<std::size_t>(endRow - firstRow) * (rowBytes + 1));
    std::uint8_t* out = filtered.data();
    for (int y = firstRow; y < endRow; ++y, out += rowBytes + 1) {
        ToPngRow(picture.Row(y), row, picture.Width(), withAlpha);
        filter.Apply(row, above, out);
        std::swap(row, above);
    }
    Band band;
    band.bytes = filtered.size();
    band.checksum = adler32_z(1, filtered.data(), filtered.size());
    band.deflated = Deflate(filtered, endRow == picture.Height());
    return band;
}

// The zlib stream of the pixels, cut as the bands are.
std::vector<Band> MakeBands(const PixelArray& picture, bool withAlpha) {
    const int rowsPerBand = std::max(1, static_cast<int>(kBandBytes / picture.RowBytes()));
    const int count = (picture.Height() + rowsPerBand - 1) / rowsPerBand;
    std::vector<Band> bands(static_cast<std::size_t>(count));
    ForEachBand(count, std::max(kBandBytes, picture.RowBytes()), [&](int first, int end) {
        for (int i = first; i < end; ++i) {
            bands[static_cast<std::size_t>(i)] = MakeBand(picture, withAlpha, i * rowsPerBand,
                                                          std::min((i + 1) * rowsPerBand, picture.Height()));
        }
    });
    constexpr std::uint8_t kZlibHeader[] = {0x78, 0x9C}; // 32 KiB window, default effort
    bands.front().deflated.insert(bands.front().deflated.begin(), std::begin(kZlibHeader),
                                  std::end(kZlibHeader));
    uLong checksum = 1;
    for (const Band& band : bands) {
        checksum = adler32_combine(checksum, band.checksum, static_cast<z_off_t>(band.bytes));
    }
    for (int shift = 24; shift >= 0; shift -= 8) {
        bands.back().deflated.push_back(static_cast<std::uint8_t>(checksum >> shift));
    }
    return bands;
}

// The content of the chunk that holds an XMP packet (ISO 16684-1 and its part on storage in files); empty
// where there is none.
ByteBuffer XmpText(const ByteBuffer& xmp) {
    ByteBuffer text;
    if (!xmp.empty()) {
        text.assign(kPngXmpKeyword.begin(), kPngXmpKeyword.end());
        text.insert(text.end(), xmp.begin(), xmp.end());
    }
    return text;
}

class PngEncoder {
  public:
    PngEncoder() {
        png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, JumpBack, IgnoreWarning);
        info_ = png_ == nullptr ? nullptr : png_create_info_struct(png_);
    }
    ~PngEncoder() { png_destroy_write_struct(&png_, &info_); }
    PngEncoder(const PngEncoder&) = delete;
    PngEncoder& operator=(const PngEncoder&) = delete;

    ByteBuffer Write(const PixelArray& picture) {
        const bool withAlpha = NeedsAlpha(picture);
        const std::vector<Band> bands = MakeBands(picture, withAlpha);
        std::size_t total = picture.Details().exif.size() + picture.Details().icc.size() +
                            picture.Details().xmp.size() + 1024;
        for (const Band& band : bands) {
            total += band.deflated.size() + 12;
        }
        out_.reserve(total);
        Metadata details = picture.Details();
        details.exif = WithPictureSize(details.exif, picture.Width(), picture.Height());
        const ByteBuffer xmp = XmpText(details.xmp);
        if (info_ == nullptr || !WriteChunks(picture, details, xmp, withAlpha, bands)) {
            throw ImagingError(ImagingFailure::OutOfMemory,
                               "There is not enough memory to save this picture.");
        }
        return std::move(out_);
    }

  private:
    [[noreturn]] static void JumpBack(png_structp png, png_const_charp /*text*/) { png_longjmp(png, 1); }
    static void IgnoreWarning(png_structp /*png*/, png_const_charp /*text*/) {}
    static void Flush(png_structp /*png*/) {}

    static void Append(png_structp png, png_bytep data, std::size_t bytes) {
        if (!static_cast<PngEncoder*>(png_get_io_ptr(png))->TryAppend(data, bytes)) {
            png_error(png, "out of memory");
        }
    }
    bool TryAppend(const std::uint8_t* data, std::size_t bytes) noexcept {
        try { // nothing may be thrown through libpng
            out_.insert(out_.end(), data, data + bytes);
            return true;
        } catch (const std::bad_alloc&) {
            return false;
        }
    }

    // False where libpng gave up; nothing here owns anything, since it jumps.
    bool WriteChunks(const PixelArray& picture, const Metadata& details, const ByteBuffer& xmp,
                     bool withAlpha, const std::vector<Band>& bands) {
        if (setjmp(png_jmpbuf(png_)) != 0) {
            return false;
        }
        png_set_write_fn(png_, this, Append, Flush);
        png_set_benign_errors(png_, 1); // a profile that libpng dislikes is left out
        png_set_IHDR(png_, info_, static_cast<png_uint_32>(picture.Width()),
                     static_cast<png_uint_32>(picture.Height()), 8,
                     withAlpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        SetDetails(details);
        png_write_info(png_, info_);
        if (!xmp.empty()) {
            png_write_chunk(png_, reinterpret_cast<png_const_bytep>("iTXt"), xmp.data(), xmp.size());
        }
        for (const Band& band : bands) {
            png_write_chunk(png_, reinterpret_cast<png_const_bytep>("IDAT"), band.deflated.data(),
                            band.deflated.size());
        }
        png_write_chunk(png_, reinterpret_cast<png_const_bytep>("IEND"), nullptr, 0);
        return true;
    }

    void SetDetails(const Metadata& details) {
        if (details.icc.empty()) {
            png_set_sRGB(png_, info_, PNG_sRGB_INTENT_PERCEPTUAL);
        } else {
            png_set_iCCP(png_, info_, "ICC profile", PNG_COMPRESSION_TYPE_BASE, details.icc.data(),
                         static_cast<png_uint_32>(details.icc.size()));
        }
        const std::uint32_t x = MetreFromInches(details.dotsPerInchX);
        const std::uint32_t y = MetreFromInches(details.dotsPerInchY);
        if (x != 0 && y != 0) {
            png_set_pHYs(png_, info_, x, y, PNG_RESOLUTION_METER);
        }
        if (!details.exif.empty()) {
            png_set_eXIf_1(png_, info_, static_cast<png_uint_32>(details.exif.size()),
                           const_cast<png_bytep>(details.exif.data())); // libpng copies it
        }
    }

    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    ByteBuffer out_;
};

} // namespace

ByteBuffer WritePng(const PixelArray& picture, const WriteOptions& /*options*/) {
    return PngEncoder().Write(picture);
}

} // namespace pictorel::codecs
