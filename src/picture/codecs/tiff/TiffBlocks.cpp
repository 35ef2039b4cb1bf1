// Single strips and tiles, see TiffBlocks.h.
#include "picture/codecs/tiff/TiffBlocks.h"

#include "picture/codecs/ByteReader.h"

#include <tiffio.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>

namespace pictorel::codecs {
namespace {

// The library of JBIG ends the process where memory lacks, and takes as much as the data claim: the claim
// must be that of the block.
bool IsSafeJbig(ByteView packed, const TiffLayout& layout) {
    constexpr std::size_t kHeader = 20;
    if (packed.size() < kHeader) {
        return false;
    }
    std::array<std::uint8_t, kHeader> head{};
    std::copy_n(packed.begin(), kHeader, head.begin());
    if (!layout.reversedBits) { // the library takes the bits of JBIG data the other way round
        TIFFReverseBits(head.data(), kHeader);
    }
    return BigEndian32(head, 4) == static_cast<std::uint32_t>(layout.blockWidth) &&
           BigEndian32(head, 8) <= static_cast<std::uint32_t>(layout.blockHeight) && head[2] == 1;
}

} // namespace

// The packed bytes of a block as far as the file holds them. Where their count is missing, they may go on to
// the end of the file.
ByteView TiffBlockReader::PackedBytes(std::uint32_t index) {
    const std::uint64_t offset = TIFFGetStrileOffset(tiff_.Handle(), index);
    const std::uint64_t count = TIFFGetStrileByteCount(tiff_.Handle(), index);
    if (offset == 0) {
        return {}; // a block that was left out
    }
    ByteView packed = Slice(file_, offset, count == 0 ? file_.size() : count);
    // Some are turned over in place for decoding, and rows of words are found by their address. The copy is
    // no larger than what a block can need.
    if (layout_.reversedBits || layout_.compression == COMPRESSION_JBIG ||
        layout_.compression == COMPRESSION_CCITTRLEW) {
        packed = packed.first(std::min(packed.size(), 2 * layout_.BlockBytes() + (std::size_t{1} << 20)));
        copy_.assign(packed.begin(), packed.end());
        packed = copy_;
    }
    return packed;
}

int TiffBlockReader::Decode(int block, int plane, int rows, std::uint8_t* out) {
    const auto index = static_cast<std::uint32_t>(plane) * static_cast<std::uint32_t>(layout_.Blocks()) +
                       static_cast<std::uint32_t>(block);
    const ByteView packed = PackedBytes(index);
    if (packed.empty() || (layout_.compression == COMPRESSION_JBIG && !IsSafeJbig(packed, layout_))) {
        return 0;
    }
    const auto decodes = [&](int wanted) {
        // The library only writes to these where they are the copy.
        void* const bytes = const_cast<std::uint8_t*>(packed.data());
        return TIFFReadFromUserBuffer(
                   tiff_.Handle(), index, bytes, static_cast<tmsize_t>(packed.size()), out,
                   static_cast<tmsize_t>(static_cast<std::size_t>(wanted) * layout_.blockRowBytes)) != 0;
    };
    // A tile is whole even where it hangs over the edge of the picture.
    if (decodes(layout_.tiled ? layout_.blockHeight : rows)) {
        return rows;
    }
    // Damaged: the most rows that can be decoded before the damage.
    int good = 0;
    for (int bad = rows + 1; bad - good > 1;) {
        const int middle = good + (bad - good) / 2;
        (decodes(middle) ? good : bad) = middle;
    }
    if (good > 0) {
        decodes(good);
    }
    return good;
}

int DecodeConvertedBlock(const TiffFile& tiff, const TiffLayout& layout, int block, std::uint8_t* bgra,
                         std::ptrdiff_t stride) {
    TIFFRGBAImage image{};
    std::array<char, 1024> message{};
    if (TIFFRGBAImageBegin(&image, tiff.Handle(), 0, message.data()) == 0) {
        return 0;
    }
    const std::unique_ptr<TIFFRGBAImage, decltype(&TIFFRGBAImageEnd)> end(&image, &TIFFRGBAImageEnd);
    const int left = block % layout.blocksAcross * layout.blockWidth;
    const int top = block / layout.blocksAcross * layout.blockHeight;
    const int width = std::min(layout.blockWidth, layout.width - left);
    const int height = std::min(layout.blockHeight, layout.height - top);
    image.orientation = ORIENTATION_TOPLEFT; // turned upright later, as a whole
    image.req_orientation = ORIENTATION_TOPLEFT;
    image.row_offset = top;
    image.col_offset = left;
    std::vector<std::uint32_t> raster(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    TIFFRGBAImageGet(&image, raster.data(), static_cast<std::uint32_t>(width),
                     static_cast<std::uint32_t>(height));
    int good = 0;
    for (int y = 0; y < height; ++y) {
        const std::uint32_t* from = raster.data() + std::ptrdiff_t{y} * width;
        std::uint8_t* to = bgra + y * stride;
        bool some = false;
        for (int x = 0; x < width; ++x, ++from, to += PixelArray::kComponents) {
            const bool decoded = TIFFGetA(*from) != 0;
            some = some || decoded;
            to[0] = static_cast<std::uint8_t>(decoded ? TIFFGetB(*from) : 255);
            to[1] = static_cast<std::uint8_t>(decoded ? TIFFGetG(*from) : 255);
            to[2] = static_cast<std::uint8_t>(decoded ? TIFFGetR(*from) : 255);
            to[3] = 255;
        }
        good += some ? 1 : 0;
    }
    return good;
}

} // namespace pictorel::codecs
