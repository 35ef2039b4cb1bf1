// Writes a picture as a Windows metafile with a placeable header, see Metafile.h.
#include "picture/codecs/ByteReader.h"
#include "picture/metafile/Metafile.h"
#include "picture/metafile/WrittenBitmap.h"
#include "picture/metafile/wmf/WmfFormat.h"

#include <cmath>

namespace pictorel::metafile {
namespace {

using codecs::AppendLittleEndian16;
using codecs::AppendLittleEndian32;
using codecs::ByteBuffer;

// Where the picture stands on paper: a unit is a pixel across, and as much of an inch down.
struct Frame {
    int width;
    int height;
    int unitsPerInch;
};

Frame FrameOf(const PixelArray& picture) {
    const Resolution resolution = WrittenResolution(picture);
    const double height = picture.Height() * resolution.x / resolution.y;
    const double scale = std::min(1.0, kMaximumSide / height);
    const auto whole = [scale](double value) {
        return std::max(1, static_cast<int>(std::lround(value * scale)));
    };
    return {whole(picture.Width()), whole(height), whole(resolution.x)};
}

void AppendPlaceableHeader(ByteBuffer& out, const Frame& frame) {
    AppendLittleEndian32(out, kPlaceableKey);
    AppendLittleEndian16(out, 0); // no handle
    AppendLittleEndian16(out, 0); // left, top, right, bottom
    AppendLittleEndian16(out, 0);
    AppendLittleEndian16(out, static_cast<std::uint32_t>(frame.width));
    AppendLittleEndian16(out, static_cast<std::uint32_t>(frame.height));
    AppendLittleEndian16(out, static_cast<std::uint32_t>(frame.unitsPerInch));
    AppendLittleEndian32(out, 0);
    std::uint32_t checksum = 0;
    for (std::size_t at = 0; at < kPlaceableHeaderBytes - 2; at += 2) {
        checksum ^= codecs::LittleEndian16(out, at);
    }
    AppendLittleEndian16(out, checksum);
}

// Lengths are in words of 16 bits.
void AppendRecord(ByteBuffer& out, WmfType type, std::initializer_list<int> words) {
    AppendLittleEndian32(out, static_cast<std::uint32_t>(3 + words.size()));
    AppendLittleEndian16(out, static_cast<std::uint32_t>(type));
    for (const int word : words) {
        AppendLittleEndian16(out, static_cast<std::uint32_t>(word));
    }
}

} // namespace

ByteBuffer WriteWmf(const PixelArray& picture, const codecs::WriteOptions& /*options*/) {
    const Frame frame = FrameOf(picture);
    const WrittenBitmap bitmap(picture);
    constexpr std::size_t kStretchHeaderBytes = 28;
    const std::size_t bitmapRecordBytes = kStretchHeaderBytes + bitmap.Bytes().size();

    ByteBuffer records;
    AppendRecord(records, WmfType::SetMapMode, {kAnisotropic});
    AppendRecord(records, WmfType::SetWindowOrg, {0, 0});
    AppendRecord(records, WmfType::SetWindowExt, {frame.height, frame.width});
    AppendRecord(records, WmfType::SetStretchBltMode, {kStretchByHalftone});
    ByteBuffer end;
    AppendRecord(end, WmfType::EndOfFile, {});

    ByteBuffer out;
    const std::size_t fileBytes = kWmfHeaderBytes + records.size() + bitmapRecordBytes + end.size();
    out.reserve(kPlaceableHeaderBytes + fileBytes);
    AppendPlaceableHeader(out, frame);
    AppendLittleEndian16(out, 1); // in memory, as all files say
    AppendLittleEndian16(out, kWmfHeaderBytes / 2);
    AppendLittleEndian16(out, 0x0300);
    AppendLittleEndian32(out, static_cast<std::uint32_t>(fileBytes / 2));
    AppendLittleEndian16(out, 0);                                                 // no objects
    AppendLittleEndian32(out, static_cast<std::uint32_t>(bitmapRecordBytes / 2)); // the longest record
    AppendLittleEndian16(out, 0);

    out.insert(out.end(), records.begin(), records.end());
    AppendLittleEndian32(out, static_cast<std::uint32_t>(bitmapRecordBytes / 2));
    AppendLittleEndian16(out, static_cast<std::uint32_t>(WmfType::StretchDib));
    AppendLittleEndian32(out, kSourceCopy);
    for (const int word :
         {0, picture.Height(), picture.Width(), 0, 0, frame.height, frame.width, 0, 0}) { // from, then to
        AppendLittleEndian16(out, static_cast<std::uint32_t>(word));
    }
    out.insert(out.end(), bitmap.Bytes().begin(), bitmap.Bytes().end());
    out.insert(out.end(), end.begin(), end.end());
    return out;
}

} // namespace pictorel::metafile
