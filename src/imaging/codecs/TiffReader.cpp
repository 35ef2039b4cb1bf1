// Reading TIFF files through libtiff, see Tiff.h.
#include "imaging/BufferPool.h"
#include "imaging/ForEachBand.h"
#include "imaging/codecs/ByteReader.h"
#include "imaging/codecs/Exif.h"
#include "imaging/codecs/PixelSupport.h"
#include "imaging/codecs/Tiff.h"
#include "imaging/codecs/TiffFile.h"
#include "imaging/codecs/TiffLayout.h"
#include "imaging/codecs/TiffRgba.h"
#include "imaging/codecs/TiffSamples.h"

#include <array>
#include <vector>

namespace pictorel::codecs {
namespace {

constexpr int kBatchRows = 256;      // converted together, on all cores
constexpr int kMostDirectories = 64; // looked at for one of full resolution
constexpr tmsize_t kLargestTile = tmsize_t{1} << 28;

// The first directory that is neither a thumbnail nor a mask; the first of all where there is none.
void GoToPicture(TIFF* tiff) {
    for (int i = 0; i < kMostDirectories; ++i) {
        std::uint32_t kind = 0;
        TIFFGetFieldDefaulted(tiff, TIFFTAG_SUBFILETYPE, &kind);
        if ((kind & (FILETYPE_REDUCEDIMAGE | FILETYPE_MASK)) == 0) {
            return;
        }
        if (TIFFReadDirectory(tiff) == 0) {
            break;
        }
    }
    if (TIFFSetDirectory(tiff, 0) == 0) {
        Refuse("The TIFF file is damaged.");
    }
}

class SampleReader {
  public:
    SampleReader(TIFF* tiff, const TiffLayout& layout, PixelArray& picture)
        : tiff_(tiff),
          layout_(layout),
          converter_(layout),
          picture_(picture),
          rows_(picture.WritableRows()),
          planes_(!layout.isPlanar ? 1 : std::max(layout.colourSamples, layout.alphaSample + 1)) {}

    // False where nothing at all could be decoded.
    bool Read() {
        TIFFIsTiled(tiff_) != 0 ? ReadTiles() : ReadStrips();
        return isAny_;
    }

  private:
    // Rows are read one after another, since a strip may be the whole picture and break off anywhere; a
    // broken one costs only its own rest.
    void ReadStrips() {
        std::uint32_t rowsPerStrip = 0;
        TIFFGetFieldDefaulted(tiff_, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip);
        const auto stripRows = static_cast<int>(
            std::clamp<std::uint32_t>(rowsPerStrip, 1, static_cast<std::uint32_t>(layout_.height)));
        const tmsize_t rowBytes = TIFFScanlineSize(tiff_);
        if (rowBytes <= 0 || rowBytes > kLargestTile) {
            Refuse("The rows of the TIFF file are larger than any picture's.");
        }
        // Planes are read strip by strip; otherwise a batch may stop inside a strip or hold many.
        const int batch = planes_ > 1 ? stripRows : std::min(layout_.height, kBatchRows);
        const auto memory = TakeBuffer(static_cast<std::size_t>(rowBytes) * static_cast<std::size_t>(batch) *
                                       static_cast<std::size_t>(planes_));
        int brokenStrip = -1;
        for (int top = 0; top < layout_.height; top += batch) {
            const int count = std::min(batch, layout_.height - top);
            std::vector<std::uint8_t> isThere(static_cast<std::size_t>(count), 1);
            for (int plane = 0; plane < planes_; ++plane) {
                brokenStrip = planes_ > 1 ? -1 : brokenStrip;
                for (int i = 0; i < count; ++i) {
                    const int strip = (top + i) / stripRows;
                    std::uint8_t* const row = memory.get() + (plane * batch + i) * rowBytes;
                    if (strip == brokenStrip ||
                        TIFFReadScanline(tiff_, row, static_cast<std::uint32_t>(top + i),
                                         static_cast<std::uint16_t>(plane)) != 1) {
                        brokenStrip = strip;
                        isThere[static_cast<std::size_t>(i)] = 0;
                    }
                }
            }
            ConvertRows(memory.get(), rowBytes, batch, isThere, {0, top, layout_.width, count});
        }
    }

    void ReadTiles() {
        std::uint32_t tileWidth = 0;
        std::uint32_t tileHeight = 0;
        TIFFGetField(tiff_, TIFFTAG_TILEWIDTH, &tileWidth);
        TIFFGetField(tiff_, TIFFTAG_TILELENGTH, &tileHeight);
        const tmsize_t tileBytes = TIFFTileSize(tiff_);
        const tmsize_t rowBytes = TIFFTileRowSize(tiff_);
        if (tileBytes <= 0 || rowBytes <= 0 || tileBytes > kLargestTile || tileWidth > kLargestTile ||
            tileHeight > kLargestTile) {
            Refuse("The tiles of the TIFF file are larger than any picture's.");
        }
        const auto memory =
            TakeBuffer(static_cast<std::size_t>(tileBytes) * static_cast<std::size_t>(planes_));
        const auto width = static_cast<int>(tileWidth);
        const auto height = static_cast<int>(tileHeight);
        for (int top = 0; top < layout_.height; top += height) {
            for (int left = 0; left < layout_.width; left += width) {
                if (ReadTile(memory.get(), tileBytes, left, top)) {
                    const int rows = std::min(height, layout_.height - top);
                    ConvertRows(memory.get(), rowBytes, static_cast<int>(tileBytes / rowBytes),
                                std::vector<std::uint8_t>(static_cast<std::size_t>(rows), 1),
                                {left, top, std::min(width, layout_.width - left), rows});
                }
            }
        }
    }

    bool ReadTile(std::uint8_t* memory, tmsize_t tileBytes, int left, int top) {
        for (int plane = 0; plane < planes_; ++plane) {
            const std::uint32_t tile =
                TIFFComputeTile(tiff_, static_cast<std::uint32_t>(left), static_cast<std::uint32_t>(top), 0,
                                static_cast<std::uint16_t>(plane));
            if (TIFFReadEncodedTile(tiff_, tile, memory + plane * tileBytes, tileBytes) != tileBytes) {
                return false;
            }
        }
        return true;
    }

    struct Area {
        int left;
        int top;
        int width;
        int rows;
    };

    // `memory` holds `planeRows` rows of each plane.
    void ConvertRows(const std::uint8_t* memory, tmsize_t rowBytes, int planeRows,
                     const std::vector<std::uint8_t>& isThere, Area area) {
        isAny_ = isAny_ || std::find(isThere.begin(), isThere.end(), 1) != isThere.end();
        constexpr std::size_t kWorkPerByte = 4; // converting costs more than the memory it stands in
        ForEachBand(area.rows, picture_.RowBytes() * kWorkPerByte, [&](int first, int end) {
            std::array<const std::uint8_t*, 64> planes{};
            for (int i = first; i < end; ++i) {
                if (isThere[static_cast<std::size_t>(i)] == 0) {
                    continue;
                }
                for (int plane = 0; plane < planes_; ++plane) {
                    planes[static_cast<std::size_t>(plane)] = memory + (plane * planeRows + i) * rowBytes;
                }
                converter_.ConvertRow(planes,
                                      rows_ + (area.top + i) * picture_.Stride() +
                                          std::ptrdiff_t{PixelArray::kComponents} * area.left,
                                      area.width);
            }
        });
    }

    TIFF* tiff_;
    const TiffLayout& layout_;
    TiffRowConverter converter_;
    PixelArray& picture_;
    std::uint8_t* rows_;
    int planes_; // that are read
    bool isAny_ = false;
};

void JudgeAlpha(const TiffLayout& layout, PixelArray& picture) {
    if (layout.alphaSample < 0) {
        return;
    }
    const AlphaRange range = FindAlphaRange(picture, 0, picture.Height());
    if (layout.isAlphaGuessed && range.highest == 0) {
        MakeOpaque(picture); // then it was no alpha
    } else {
        picture.SetHasAlpha(range.lowest < 255);
    }
}

} // namespace

bool IsTiff(ByteView file) noexcept {
    using namespace std::string_view_literals;
    return StartsWith(file, "II*\0"sv) || StartsWith(file, "MM\0*"sv) || StartsWith(file, "II+\0"sv) ||
           StartsWith(file, "MM\0+"sv);
}

PixelArray ReadTiff(ByteView file, const ReadOptions& /*options*/) {
    TiffMemory memory;
    memory.file = file;
    const TiffHandle tiff = OpenTiff(memory, "r");
    if (!tiff) {
        Refuse("The TIFF file is damaged before its first picture.");
    }
    GoToPicture(tiff.get());
    const TiffLayout layout = ReadTiffLayout(tiff.get(), file.size());
    PixelArray picture(layout.width, layout.height);
    FillWhite(picture, 0, layout.height);
    const bool isAny = layout.isDecodedByLibrary ? ReadTiffRgba(tiff.get(), layout, picture)
                                                 : SampleReader(tiff.get(), layout, picture).Read();
    if (!isAny) {
        Refuse("The TIFF file is damaged or ends before its first pixel.");
    }
    JudgeAlpha(layout, picture);
    Metadata details;
    details.dotsPerInchX = layout.dotsPerInchX;
    details.dotsPerInchY = layout.dotsPerInchY;
    if (!layout.isDecodedByLibrary) {
        details.icc = ProfileAfterConversion(layout.icc);
    }
    picture.SetDetails(std::move(details));
    return ApplyOrientation(std::move(picture), layout.orientation);
}

} // namespace pictorel::codecs
