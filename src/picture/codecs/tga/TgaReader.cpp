// Reading Targa files, see Tga.h.
#include "picture/ForEachBand.h"
#include "picture/codecs/ByteReader.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/tga/Tga.h"
#include "picture/codecs/tga/TgaHeader.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace pictorel::codecs {
namespace {

// The 16-bit pixels of a row: five bits a component.
class FiveBitTable {
  public:
    FiveBitTable() {
        for (std::size_t value = 0; value < wide_.size(); ++value) {
            wide_[value] = static_cast<std::uint8_t>((value * 255 + 15) / 31);
        }
    }
    void Convert(const std::uint8_t* data, std::uint8_t* bgra, int pixels, bool hasAlpha) const {
        for (int x = 0; x < pixels; ++x, data += 2, bgra += PixelArray::kComponents) {
            const unsigned packed = data[0] | static_cast<unsigned>(data[1]) << 8;
            bgra[0] = wide_[packed & 31];
            bgra[1] = wide_[packed >> 5 & 31];
            bgra[2] = wide_[packed >> 10 & 31];
            bgra[3] = !hasAlpha || (packed & 0x8000) != 0 ? std::uint8_t{255} : std::uint8_t{0};
        }
    }

  private:
    std::array<std::uint8_t, 32> wide_{};
};

// Turns pixels as the file has them into blue, green, red, alpha.
class TgaPixels {
  public:
    explicit TgaPixels(const TgaHeader& header)
        : header_(header), hasAlpha_(header.alpha != TgaAlpha::None) {}

    void Convert(const std::uint8_t* data, std::uint8_t* bgra, int pixels) const {
        if (header_.colour == TgaColour::Mapped) {
            ConvertMapped(data, bgra, pixels);
        } else if (header_.colour == TgaColour::Grey) {
            ConvertGrey(data, bgra, pixels);
        } else if (header_.pixelBytes == 2) {
            fiveBits_.Convert(data, bgra, pixels, hasAlpha_);
        } else if (header_.pixelBytes == 3) {
            CopyOpaque(data, bgra, pixels);
        } else {
            ConvertQuadruples(data, bgra, pixels);
        }
    }

  private:
    void ConvertMapped(const std::uint8_t* data, std::uint8_t* bgra, int pixels) const {
        const bool isWide = header_.pixelBytes == 2;
        for (int x = 0; x < pixels; ++x, bgra += PixelArray::kComponents) {
            const std::size_t index = isWide ? data[2 * x] | std::size_t{data[2 * x + 1]} << 8 : data[x];
            std::memcpy(bgra, header_.palette[index].data(), PixelArray::kComponents);
        }
    }

    void ConvertGrey(const std::uint8_t* data, std::uint8_t* bgra, int pixels) const {
        for (int x = 0; x < pixels; ++x, data += header_.pixelBytes, bgra += PixelArray::kComponents) {
            bgra[0] = bgra[1] = bgra[2] = data[0];
            bgra[3] = hasAlpha_ ? data[1] : std::uint8_t{255};
        }
    }

    void ConvertQuadruples(const std::uint8_t* data, std::uint8_t* bgra, int pixels) const {
        std::memcpy(bgra, data, static_cast<std::size_t>(pixels) * PixelArray::kComponents);
        for (int x = 0; !hasAlpha_ && x < pixels; ++x) {
            bgra[PixelArray::kComponents * x + 3] = 255;
        }
    }

    const TgaHeader& header_;
    bool hasAlpha_;
    FiveBitTable fiveBits_;
};

// The pixels of a run-length compressed file, as one stream: packets may cross the ends of rows.
class TgaRunLengths {
  public:
    TgaRunLengths(ByteView data, int pixelBytes)
        : data_(data), pixelBytes_(static_cast<std::size_t>(pixelBytes)) {}

    // Up to `wanted` pixels; fewer only where the file ends.
    int Read(std::uint8_t* out, int wanted) {
        int done = 0;
        while (done < wanted && (left_ > 0 || NextPacket())) {
            const int count = std::min(left_, wanted - done);
            const int given = isRun_ ? Repeat(out, count) : Copy(out, count);
            left_ = given < count ? 0 : left_ - count;
            done += given;
            out += static_cast<std::size_t>(given) * pixelBytes_;
        }
        return done;
    }

  private:
    bool NextPacket() {
        const std::size_t valueAt = at_ + 1;
        if (valueAt + pixelBytes_ > data_.size()) {
            return false;
        }
        isRun_ = (data_[at_] & 0x80) != 0;
        left_ = (data_[at_] & 0x7F) + 1;
        value_ = data_.data() + valueAt;
        at_ = valueAt + (isRun_ ? pixelBytes_ : 0);
        return true;
    }

    int Repeat(std::uint8_t* out, int count) const {
        if (pixelBytes_ == 1) {
            std::memset(out, *value_, static_cast<std::size_t>(count));
        } else {
            for (int i = 0; i < count; ++i, out += pixelBytes_) {
                std::memcpy(out, value_, pixelBytes_);
            }
        }
        return count;
    }

    int Copy(std::uint8_t* out, int wanted) {
        const std::size_t count =
            std::min(static_cast<std::size_t>(wanted), (data_.size() - at_) / pixelBytes_);
        std::memcpy(out, data_.data() + at_, count * pixelBytes_);
        at_ = count < static_cast<std::size_t>(wanted) ? data_.size() : at_ + count * pixelBytes_;
        return static_cast<int>(count);
    }

    ByteView data_;
    std::size_t pixelBytes_;
    std::size_t at_ = 0;
    int left_ = 0; // pixels of the packet
    bool isRun_ = false;
    const std::uint8_t* value_ = nullptr;
};

class TgaReader {
  public:
    explicit TgaReader(ByteView file)
        : header_(ReadTgaHeader(file)),
          pixels_(header_),
          picture_(header_.width, header_.height),
          rows_(picture_.WritableRows()) {}

    PixelArray Read() {
        const std::int64_t present = header_.hasRunLengths ? ReadRunLengths() : ReadRaw();
        NotePixelsShown(picture_, static_cast<double>(present));
        const int wholeRows = static_cast<int>(present / header_.width);
        const bool isApart = header_.interleave > 1; // the rows present then lie all over the picture
        const int firstRow = header_.topDown || isApart ? 0 : header_.height - wholeRows;
        SettleAlphaOf(firstRow, isApart ? header_.height : firstRow + wholeRows);
        return std::move(picture_);
    }

  private:
    // Puts the pixels of a row of the file in their place, white where there are none.
    void Place(int fileRow, const std::uint8_t* data, int present) const {
        const int row = RowInPicture(fileRow);
        const int y = header_.topDown ? row : header_.height - 1 - row;
        std::uint8_t* const bgra = rows_ + y * picture_.Stride();
        if (present > 0) { // else there is not even a place to read from
            pixels_.Convert(data, bgra, present);
        }
        std::memset(bgra + present * PixelArray::kComponents, 0xFF,
                    static_cast<std::size_t>(header_.width - present) * PixelArray::kComponents);
        if (header_.rightToLeft) {
            auto* const first = reinterpret_cast<std::uint32_t*>(bgra);
            std::reverse(first, first + header_.width);
        }
    }

    int RowInPicture(int fileRow) const {
        int first = 0;
        const auto rowsFrom = [&] {
            return (header_.height - first + header_.interleave - 1) / header_.interleave;
        };
        while (fileRow >= rowsFrom()) {
            fileRow -= rowsFrom();
            ++first;
        }
        return first + fileRow * header_.interleave;
    }

    // Both return the number of pixels that the file holds.
    std::int64_t ReadRaw() const {
        const auto pixelBytes = static_cast<std::size_t>(header_.pixelBytes);
        const std::size_t rowBytes = static_cast<std::size_t>(header_.width) * pixelBytes;
        ForEachBand(header_.height, rowBytes + picture_.RowBytes(), [&](int first, int end) {
            for (int row = first; row < end; ++row) {
                const ByteView data =
                    Slice(header_.pixels, static_cast<std::size_t>(row) * rowBytes, rowBytes);
                Place(row, data.data(), static_cast<int>(data.size() / pixelBytes));
            }
        });
        return std::min(static_cast<std::int64_t>(header_.pixels.size() / pixelBytes),
                        std::int64_t{header_.width} * header_.height);
    }

    std::int64_t ReadRunLengths() const {
        TgaRunLengths packets(header_.pixels, header_.pixelBytes);
        std::vector<std::uint8_t> row(static_cast<std::size_t>(header_.width * header_.pixelBytes));
        std::int64_t present = 0;
        for (int y = 0; y < header_.height; ++y) {
            const int pixels = packets.Read(row.data(), header_.width);
            present += pixels;
            Place(y, row.data(), pixels);
        }
        return present;
    }

    void SettleAlphaOf(int firstRow, int endRow) {
        if (header_.alpha == TgaAlpha::Unsure) {
            JudgeAlpha(picture_, firstRow, endRow);
        } else if (header_.alpha != TgaAlpha::None) {
            SettleAlpha(picture_);
        }
        if (header_.alpha == TgaAlpha::Premultiplied) {
            Unpremultiply(picture_);
        }
    }

    TgaHeader header_;
    TgaPixels pixels_;
    PixelArray picture_;
    std::uint8_t* rows_;
};

} // namespace

bool IsTga(ByteView file) noexcept {
    return IsTgaHeader(file);
}

PixelArray ReadTga(ByteView file, const ReadOptions& /*options*/) {
    return TgaReader(file).Read();
}

} // namespace pictorel::codecs
