// Sun raster pictures, see Ras.h.
#include "picture/codecs/ras/Ras.h"

#include "picture/ForEachBand.h"
#include "picture/codecs/ByteReader.h"
#include "picture/codecs/FileMemory.h"
#include "picture/codecs/PixelSupport.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace pictorel::codecs {
namespace {

constexpr std::uint32_t kMagic = 0x59A66A95;
constexpr std::size_t kHeaderBytes = 32;
constexpr std::uint32_t kRunLengths = 2; // types
constexpr std::uint32_t kRedFirst = 3;
constexpr std::uint32_t kEqualMap = 1;      // map type: all reds, all greens, all blues
constexpr std::int64_t kLongestRun = 256;   // bytes that three bytes stand for
constexpr std::int64_t kMostTruncated = 64; // a file that holds less than this fraction is no picture

struct RasHeader {
    int width = 0;
    int height = 0;
    int bits = 0;
    std::uint32_t type = 0;
    std::array<std::array<std::uint8_t, 4>, 256> palette{};
    ByteView pixels;
    std::size_t rowBytes = 0;
};

bool IsKnownDepth(std::uint32_t bits) {
    constexpr std::uint32_t kDepths[] = {1, 4, 8, 24, 32};
    return std::find(std::begin(kDepths), std::end(kDepths), bits) != std::end(kDepths);
}

void MakePalette(RasHeader& header, std::uint32_t mapType, ByteView map) {
    const std::size_t usable = header.bits <= 8 ? std::size_t{1} << header.bits : 0;
    const std::size_t colours = mapType == kEqualMap ? map.size() / 3 : 0;
    header.palette.fill({0, 0, 0, 255});
    for (std::size_t i = 0; i < usable; ++i) {
        if (i < colours) {
            header.palette[i] = {map[2 * colours + i], map[colours + i], map[i], 255};
        } else if (colours == 0) { // greys; of a single bit 1 is black
            const auto grey = static_cast<std::uint8_t>(usable == 2 ? 255 * (1 - i) : i * 255 / (usable - 1));
            header.palette[i] = {grey, grey, grey, 255};
        }
    }
}

// The bytes of a run-length compressed file as one stream: runs may cross the ends of rows.
class RasRunLengths {
  public:
    explicit RasRunLengths(ByteView data) : data_(data) {}

    // Up to `wanted` bytes; fewer only where the file ends.
    std::size_t Read(std::uint8_t* out, std::size_t wanted) {
        std::size_t done = 0;
        while (done < wanted && (left_ > 0 || at_ < data_.size())) {
            if (left_ > 0) {
                const std::size_t count = std::min(left_, wanted - done);
                std::memset(out + done, value_, count);
                left_ -= count;
                done += count;
            } else if (data_[at_] == kEscape) {
                TakeEscape();
            } else {
                const std::size_t count = PlainBytes(wanted - done);
                std::memcpy(out + done, data_.data() + at_, count);
                at_ += count;
                done += count;
            }
        }
        return done;
    }

    // How many bytes there are in all.
    std::size_t Count() {
        std::size_t count = 0;
        while (at_ < data_.size()) {
            if (data_[at_] == kEscape) {
                TakeEscape();
                count += left_;
                left_ = 0;
            } else {
                const std::size_t plain = PlainBytes(data_.size());
                at_ += plain;
                count += plain;
            }
        }
        return count;
    }

  private:
    static constexpr std::uint8_t kEscape = 0x80;

    // An escape and 0 is the escape's own value once; else a count less one and a value.
    void TakeEscape() {
        const std::uint8_t count = ByteAt(data_, at_ + 1);
        const std::size_t bytes = count == 0 ? 2 : 3;
        if (at_ + bytes > data_.size()) {
            at_ = data_.size();
            return;
        }
        left_ = std::size_t{count} + 1;
        value_ = count == 0 ? kEscape : data_[at_ + 2];
        at_ += bytes;
    }

    std::size_t PlainBytes(std::size_t wanted) const {
        const std::size_t most = std::min(wanted, data_.size() - at_);
        const void* const escape = std::memchr(data_.data() + at_, kEscape, most);
        return escape == nullptr ? most
                                 : static_cast<std::size_t>(static_cast<const std::uint8_t*>(escape) -
                                                            (data_.data() + at_));
    }

    ByteView data_;
    std::size_t at_ = 0;
    std::size_t left_ = 0; // of the run
    std::uint8_t value_ = 0;
};

// Rows are padded to 16 bits. Some programs forget that, which shows where the bytes are exactly enough
// without.
std::size_t FindRowBytes(const RasHeader& header) {
    const std::size_t packed =
        (static_cast<std::size_t>(header.width) * static_cast<std::size_t>(header.bits) + 7) / 8;
    if (packed % 2 == 0) {
        return packed;
    }
    const std::size_t present =
        header.type == kRunLengths ? RasRunLengths(header.pixels).Count() : header.pixels.size();
    return present == packed * static_cast<std::size_t>(header.height) ? packed : packed + 1;
}

RasHeader ReadHeader(ByteView file) {
    const std::uint32_t bits = BigEndian32(file, 12);
    RasHeader header;
    header.type = BigEndian32(file, 20);
    if (!IsKnownDepth(bits) || header.type > kRedFirst) {
        Refuse("The Sun raster picture is of a kind that this editor cannot read.");
    }
    header.bits = static_cast<int>(bits);
    const std::int64_t pixelsOfRun = header.type == kRunLengths ? kLongestRun : 1;
    const std::int64_t width = BigEndian32(file, 4);
    const std::int64_t height = BigEndian32(file, 8);
    CheckClaimedSize(width, height, file.size(), kMostTruncated * 8 * pixelsOfRun / header.bits + 1);
    header.width = static_cast<int>(width);
    header.height = static_cast<int>(height);
    const std::uint32_t mapBytes = BigEndian32(file, 28);
    MakePalette(header, BigEndian32(file, 24), Slice(file, kHeaderBytes, mapBytes));
    header.pixels = Slice(file, kHeaderBytes + std::size_t{mapBytes}); // the length field is often 0 or wrong
    header.rowBytes = FindRowBytes(header);
    return header;
}

// Of 32 bits the first eight are padding.
void ConvertTrueColour(const RasHeader& header, const std::uint8_t* data, std::uint8_t* bgra, int pixels) {
    const int pixelBytes = header.bits / 8;
    const int padding = pixelBytes - 3;
    const int blue = padding + (header.type == kRedFirst ? 2 : 0);
    const int green = padding + 1;
    const int red = padding + (header.type == kRedFirst ? 0 : 2);
    for (int x = 0; x < pixels; ++x, data += pixelBytes, bgra += PixelArray::kComponents) {
        bgra[0] = data[blue];
        bgra[1] = data[green];
        bgra[2] = data[red];
        bgra[3] = 255;
    }
}

// The pixels that the bytes of a row hold, then white. How many they are.
int ConvertRow(const RasHeader& header, ByteView data, std::uint8_t* bgra) {
    const int present = static_cast<int>(std::min(data.size() * 8 / static_cast<std::size_t>(header.bits),
                                                  static_cast<std::size_t>(header.width)));
    if (header.bits <= 8) {
        ColourIndices(data.data(), header.bits, header.palette, bgra, present);
    } else {
        ConvertTrueColour(header, data.data(), bgra, present);
    }
    std::memset(bgra + present * PixelArray::kComponents, 0xFF,
                static_cast<std::size_t>(header.width - present) * PixelArray::kComponents);
    return present;
}

// Both return how many pixels the file holds.
double ReadRaw(const RasHeader& header, PixelArray& picture) {
    const std::size_t rowBytes = header.rowBytes;
    std::uint8_t* const rows = picture.WritableRows();
    ForEachBand(header.height, rowBytes + picture.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            ConvertRow(header, Slice(header.pixels, static_cast<std::size_t>(y) * rowBytes, rowBytes),
                       rows + y * picture.Stride());
        }
    });
    return PixelsInRows(header.pixels.size(), rowBytes, header.bits, header.width);
}

double ReadRunLengths(const RasHeader& header, PixelArray& picture) {
    RasRunLengths bytes(header.pixels);
    std::uint8_t* const rows = picture.WritableRows();
    std::vector<std::uint8_t> row(header.rowBytes);
    double pixels = 0;
    for (int y = 0; y < header.height; ++y) {
        const std::size_t present = bytes.Read(row.data(), row.size());
        pixels += ConvertRow(header, ByteView(row.data(), present), rows + y * picture.Stride());
    }
    return pixels;
}

} // namespace

bool IsRas(ByteView file) noexcept {
    return file.size() > kHeaderBytes && BigEndian32(file, 0) == kMagic;
}

PixelArray ReadRas(ByteView file, const ReadOptions& /*options*/) {
    const RasHeader header = ReadHeader(file);
    if (header.pixels.empty()) {
        Refuse("The Sun raster picture ends before its first pixel.");
    }
    PixelArray picture(header.width, header.height);
    NotePixelsShown(picture,
                    header.type == kRunLengths ? ReadRunLengths(header, picture) : ReadRaw(header, picture));
    return picture;
}

ByteBuffer WriteRas(const PixelArray& picture, const WriteOptions& /*options*/) {
    const std::size_t rowBytes = (static_cast<std::size_t>(picture.Width()) * 3 + 1) / 2 * 2;
    const std::size_t pixelBytes = rowBytes * static_cast<std::size_t>(picture.Height());
    ByteBuffer file;
    ReserveFile(file, kHeaderBytes + pixelBytes);
    AppendBigEndian32(file, kMagic);
    AppendBigEndian32(file, static_cast<std::uint32_t>(picture.Width()));
    AppendBigEndian32(file, static_cast<std::uint32_t>(picture.Height()));
    AppendBigEndian32(file, 24);
    AppendBigEndian32(file, static_cast<std::uint32_t>(pixelBytes));
    AppendBigEndian32(file, 1); // standard
    AppendBigEndian32(file, 0); // no map
    AppendBigEndian32(file, 0);
    file.resize(kHeaderBytes + pixelBytes);
    std::uint8_t* const rows = file.data() + kHeaderBytes;
    ForEachBand(picture.Height(), rowBytes + picture.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            FlattenRow(picture, y, rows + static_cast<std::size_t>(y) * rowBytes);
        }
    });
    return file;
}

} // namespace pictorel::codecs
