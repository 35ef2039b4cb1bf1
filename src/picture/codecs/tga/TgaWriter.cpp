// Writing Targa files, see Tga.h.
#include "picture/codecs/ByteReader.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/RowBands.h"
#include "picture/codecs/tga/Tga.h"
#include "picture/codecs/tga/TgaHeader.h"

#include <algorithm>
#include <cstring>

namespace pictorel::codecs {
namespace {

constexpr int kLongestPacket = 128; // pixels
constexpr std::uint8_t kRun = 0x80;

// Packs one row; no packet crosses its end, as the format asks.
class TgaRowPacker {
  public:
    TgaRowPacker(int width, bool withAlpha) : width_(width), pixelBytes_(withAlpha ? 4 : 3) {}

    std::size_t LongestRow() const {
        const auto width = static_cast<std::size_t>(width_);
        return width * static_cast<std::size_t>(pixelBytes_) + (width + kLongestPacket - 1) / kLongestPacket;
    }

    std::uint8_t* Pack(const std::uint8_t* bgra, std::uint8_t* out) const {
        int x = 0;
        while (x < width_) {
            const int limit = std::min(width_, x + kLongestPacket);
            int end = x + 1;
            if (end < limit && At(bgra, x) == At(bgra, end)) {
                while (end < limit && At(bgra, end) == At(bgra, x)) {
                    ++end;
                }
                *out++ = static_cast<std::uint8_t>(kRun | (end - x - 1));
                out = Put(bgra, x, x + 1, out);
            } else {
                while (end < limit && At(bgra, end) != At(bgra, end - 1)) {
                    ++end;
                }
                if (end < limit) {
                    --end; // the pixel before the one that repeats it begins the run
                }
                *out++ = static_cast<std::uint8_t>(end - x - 1);
                out = Put(bgra, x, end, out);
            }
            x = end;
        }
        return out;
    }

  private:
    static std::uint32_t At(const std::uint8_t* bgra, int x) {
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, bgra + std::ptrdiff_t{PixelArray::kComponents} * x, sizeof pixel);
        return pixel;
    }

    std::uint8_t* Put(const std::uint8_t* bgra, int first, int end, std::uint8_t* out) const {
        const std::uint8_t* pixel = bgra + std::ptrdiff_t{PixelArray::kComponents} * first;
        if (pixelBytes_ == 4) {
            std::memcpy(out, pixel, static_cast<std::size_t>(end - first) * 4);
            return out + std::ptrdiff_t{4} * (end - first);
        }
        for (int x = first; x < end; ++x, pixel += PixelArray::kComponents, out += 3) {
            out[0] = pixel[0];
            out[1] = pixel[1];
            out[2] = pixel[2];
        }
        return out;
    }

    int width_;
    int pixelBytes_;
};

void AppendHeader(ByteBuffer& file, const PixelArray& picture, bool withAlpha) {
    constexpr std::uint8_t kTrueColourRunLengths = 10;
    file.assign({0, 0, kTrueColourRunLengths, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    AppendLittleEndian16(file, static_cast<std::uint32_t>(picture.Width()));
    AppendLittleEndian16(file, static_cast<std::uint32_t>(picture.Height()));
    file.push_back(withAlpha ? 32 : 24);
    // Bits of alpha, and top row first: some programs show rows that stand the other way upside down.
    constexpr std::uint8_t kTopDown = 0x20;
    file.push_back(kTopDown | (withAlpha ? 8 : 0));
}

void AppendFooter(ByteBuffer& file, bool withAlpha) {
    const std::size_t extensionAt = file.size();
    AppendLittleEndian16(file, kTgaExtensionBytes);
    file.resize(extensionAt + kTgaExtensionBytes); // author, date and the rest: not known
    file[extensionAt + kTgaAttributesAt] = withAlpha ? kTgaAlpha : kTgaNoAlpha;
    // Beyond 4 GiB the place has no number.
    AppendLittleEndian32(file, extensionAt <= UINT32_MAX ? static_cast<std::uint32_t>(extensionAt) : 0U);
    AppendLittleEndian32(file, 0); // no developer area
    file.insert(file.end(), kTgaSignature.begin(), kTgaSignature.end());
}

} // namespace

ByteBuffer WriteTga(const PixelArray& picture, const WriteOptions& /*options*/) {
    const bool withAlpha = NeedsAlpha(picture);
    const TgaRowPacker packer(picture.Width(), withAlpha);
    ByteBuffer file;
    AppendHeader(file, picture, withAlpha);
    AppendRows(file, picture.Height(), packer.LongestRow(),
               [&](int row, std::uint8_t* out) { return packer.Pack(picture.Row(row), out); });
    AppendFooter(file, withAlpha);
    return file;
}

} // namespace pictorel::codecs
