// The Huffman compressed pixels of OS/2 bitmap files, see BmpHuffman.h.
#include "picture/codecs/bmp/BmpHuffman.h"

#include "picture/codecs/ByteReader.h"
#include "picture/codecs/tiff/Tiff.h"

#include <cstring>

namespace pictorel::codecs {
namespace {

// TIFF holds the same codes, and its library knows them: a TIFF file of one strip.
ByteBuffer WrapInTiff(const BmpHeader& header) {
    constexpr std::uint32_t kLong = 4;
    constexpr std::uint32_t kDirectoryAt = 8;
    constexpr std::uint32_t kFax3 = 3;
    const auto height = static_cast<std::uint32_t>(header.height);
    struct Entry {
        std::uint32_t tag;
        std::uint32_t value;
    };
    Entry entries[] = {
        {256, static_cast<std::uint32_t>(header.width)},
        {257, height},
        {258, 1},     // bits a sample
        {259, kFax3}, // compression
        {262, 0},     // white is 0
        {273, 0},     // where the strip is
        {278, height},
        {279, static_cast<std::uint32_t>(header.pixels.size())},
    };
    constexpr auto kCount = static_cast<std::uint32_t>(std::size(entries));
    entries[5].value = kDirectoryAt + 2 + 12 * kCount + 4;
    ByteBuffer file{'I', 'I', 42, 0};
    AppendLittleEndian32(file, kDirectoryAt);
    AppendLittleEndian16(file, kCount);
    for (const Entry& entry : entries) {
        AppendLittleEndian16(file, entry.tag);
        AppendLittleEndian16(file, kLong);
        AppendLittleEndian32(file, 1);
        AppendLittleEndian32(file, entry.value);
    }
    AppendLittleEndian32(file, 0); // no other picture
    file.insert(file.end(), header.pixels.begin(), header.pixels.end());
    return file;
}

} // namespace

PixelArray DecodeBmpHuffman(const BmpHeader& header) {
    const PixelArray decoded = ReadTiff(WrapInTiff(header), {});
    PixelArray picture(header.width, header.height);
    for (int row = 0; row < header.height; ++row) {
        const std::uint8_t* bit = decoded.Row(row);
        const int y = header.topDown ? row : header.height - 1 - row;
        std::uint8_t* pixel = picture.WritableRows() + y * picture.Stride();
        for (int x = 0; x < header.width;
             ++x, bit += PixelArray::kComponents, pixel += PixelArray::kComponents) {
            std::memcpy(pixel, header.palette[*bit != 0 ? 0 : 1].data(), PixelArray::kComponents);
        }
    }
    picture.SetPartShown(decoded.PartShown());
    return picture;
}

} // namespace pictorel::codecs
