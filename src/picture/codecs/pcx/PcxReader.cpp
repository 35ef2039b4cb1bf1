// Reading PCX files, see Pcx.h.
#include "picture/codecs/ByteReader.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/pcx/Pcx.h"
#include "picture/codecs/pcx/PcxHeader.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace pictorel::codecs {
namespace {

// The bytes of the rows as one stream: runs may cross the ends of planes and rows.
class PcxBytes {
  public:
    PcxBytes(ByteView data, bool hasRunLengths) : data_(data), hasRunLengths_(hasRunLengths) {}

    // Up to `wanted` bytes; fewer only where the file ends.
    std::size_t Read(std::uint8_t* out, std::size_t wanted) {
        if (!hasRunLengths_) {
            const std::size_t count = std::min(wanted, data_.size() - at_);
            std::memcpy(out, data_.data() + at_, count);
            at_ += count;
            return count;
        }
        std::size_t done = 0;
        while (done < wanted) {
            if (left_ > 0) {
                const std::size_t count = std::min(left_, wanted - done);
                std::memset(out + done, value_, count);
                left_ -= count;
                done += count;
            } else if (at_ < data_.size() && data_[at_] < kRun) {
                out[done++] = data_[at_++];
            } else if (at_ + 1 < data_.size()) {
                left_ = data_[at_] & (kRun ^ 0xFFU);
                value_ = data_[at_ + 1];
                at_ += 2;
            } else {
                break;
            }
        }
        return done;
    }

    // What of the file was not needed.
    ByteView Rest() const { return data_.subspan(at_); }

  private:
    static constexpr std::uint8_t kRun = 0xC0;

    ByteView data_;
    bool hasRunLengths_;
    std::size_t at_ = 0;
    std::size_t left_ = 0; // of the run
    std::uint8_t value_ = 0;
};

class PcxReader {
  public:
    explicit PcxReader(ByteView file)
        : file_(file), header_(ReadPcxHeader(file)), data_(Slice(file, kPcxHeaderBytes)) {
        MakePalette();
    }

    PixelArray Read() {
        PixelArray picture(header_.width, header_.height);
        std::uint8_t* const rows = picture.WritableRows();
        PcxBytes bytes(data_, header_.hasRunLengths);
        std::vector<std::uint8_t> row(header_.RowBytes());
        std::int64_t shown = 0;
        int wholeRows = 0;
        for (int y = 0; y < header_.height; ++y) {
            std::uint8_t* const bgra = rows + y * picture.Stride();
            const int present = PixelsIn(bytes.Read(row.data(), row.size()));
            shown += present;
            wholeRows += present == header_.width ? 1 : 0;
            ConvertRow(row.data(), bgra, present);
            std::memset(bgra + present * PixelArray::kComponents, 0xFF,
                        static_cast<std::size_t>(header_.width - present) * PixelArray::kComponents);
        }
        NotePixelsShown(picture, static_cast<double>(shown));
        if (header_.planes == 4 && header_.bits == 8) {
            JudgeAlpha(picture, 0, wholeRows);
        }
        Metadata details;
        details.dotsPerInchX = header_.dotsPerInchX;
        details.dotsPerInchY = header_.dotsPerInchY;
        picture.SetDetails(std::move(details));
        return picture;
    }

  private:
    void MakePalette() {
        if (header_.bits * header_.planes < 8) {
            palette_ = ReadPcxHeaderPalette(file_, header_);
        } else if (header_.IsIndexed()) {
            const ByteView colours = FindPcxPalette(file_);
            if (!colours.empty()) {
                data_ = data_.first(data_.size() - colours.size() - 1);
            }
            palette_ = MakePcxPalette(colours.empty() ? PaletteBehindPixels() : colours);
        }
    }

    // For files that something was appended to, or whose palette lacks its marker.
    ByteView PaletteBehindPixels() const {
        constexpr std::uint8_t kMarker = 12;
        PcxBytes bytes(data_, header_.hasRunLengths);
        std::vector<std::uint8_t> row(header_.RowBytes());
        for (int y = 0; y < header_.height; ++y) {
            if (bytes.Read(row.data(), row.size()) < row.size()) {
                return {};
            }
        }
        const ByteView rest = bytes.Rest();
        return Slice(rest, ByteAt(rest, 0) == kMarker && rest.size() > 768 ? 1 : 0);
    }

    // How many pixels of a row are whole, when so many of its bytes are there.
    int PixelsIn(std::size_t bytes) const {
        const auto planeBytes = static_cast<std::size_t>(header_.planeBytes);
        const std::size_t before = planeBytes * (static_cast<std::size_t>(header_.planes) - 1);
        const std::size_t ofLastPlane = bytes > before ? bytes - before : 0;
        return static_cast<int>(std::min(ofLastPlane * 8 / static_cast<std::size_t>(header_.bits),
                                         static_cast<std::size_t>(header_.width)));
    }

    void ConvertRow(const std::uint8_t* row, std::uint8_t* bgra, int pixels) const {
        if (!header_.IsIndexed()) {
            ConvertPlanes(row, bgra, pixels);
        } else if (header_.bits == 8) {
            for (int x = 0; x < pixels; ++x) {
                std::memcpy(bgra + x * PixelArray::kComponents, palette_[row[x]].data(), 4);
            }
        } else {
            ConvertPacked(row, bgra, pixels);
        }
    }

    void ConvertPlanes(const std::uint8_t* row, std::uint8_t* bgra, int pixels) const {
        const std::uint8_t* const red = row;
        const std::uint8_t* const green = red + header_.planeBytes;
        const std::uint8_t* const blue = green + header_.planeBytes;
        const std::uint8_t* const alpha = header_.planes == 4 ? blue + header_.planeBytes : nullptr;
        for (int x = 0; x < pixels; ++x, bgra += PixelArray::kComponents) {
            bgra[0] = blue[x];
            bgra[1] = green[x];
            bgra[2] = red[x];
            bgra[3] = alpha != nullptr ? alpha[x] : std::uint8_t{255};
        }
    }

    // The bits of the first plane are the lowest of the index.
    void ConvertPacked(const std::uint8_t* row, std::uint8_t* bgra, int pixels) const {
        const int perByte = 8 / header_.bits;
        const unsigned mask = (1U << header_.bits) - 1;
        for (int x = 0; x < pixels; ++x, bgra += PixelArray::kComponents) {
            const int shift = 8 - header_.bits * (x % perByte + 1); // the leftmost pixel in the highest bits
            unsigned index = 0;
            for (int plane = 0; plane < header_.planes; ++plane) {
                const unsigned packed = row[plane * header_.planeBytes + x / perByte];
                index |= (packed >> shift & mask) << (plane * header_.bits);
            }
            std::memcpy(bgra, palette_[index].data(), 4);
        }
    }

    ByteView file_;
    PcxHeader header_;
    ByteView data_; // of the pixels
    PcxPalette palette_{};
};

} // namespace

bool IsPcx(ByteView file) noexcept {
    return IsPcxHeader(file);
}

PixelArray ReadPcx(ByteView file, const ReadOptions& /*options*/) {
    return PcxReader(file).Read();
}

} // namespace pictorel::codecs
