// Writes a picture as an enhanced metafile, see Metafile.h.
#include "picture/codecs/ByteReader.h"
#include "picture/metafile/Metafile.h"
#include "picture/metafile/WrittenBitmap.h"
#include "picture/metafile/emf/EmfFormat.h"

#include <cmath>

namespace pictorel::metafile {
namespace {

using codecs::AppendLittleEndian32;
using codecs::ByteBuffer;

constexpr std::uint32_t kHeaderBytes = 108;
constexpr std::uint32_t kModeBytes = 12;
constexpr std::uint32_t kStretchHeaderBytes = 80;
constexpr std::uint32_t kEndBytes = 20;
constexpr std::uint32_t kDeviceInches = 100; // so large that whole pixels tell its resolution well

void Append(ByteBuffer& out, std::initializer_list<std::uint32_t> values) {
    for (const std::uint32_t value : values) {
        AppendLittleEndian32(out, value);
    }
}

std::uint32_t Rounded(double value) {
    return static_cast<std::uint32_t>(std::lround(value));
}

// The device that the file says it was made for has the picture's resolution, so that a pixel is a pixel.
void AppendHeader(ByteBuffer& out, const PixelArray& picture, std::uint32_t fileBytes) {
    constexpr double kFrameUnitsPerInch = 2540;
    constexpr std::uint32_t kRecords = 4;
    const Resolution resolution = WrittenResolution(picture);
    Append(out, {static_cast<std::uint32_t>(EmfType::Header), kHeaderBytes});
    Append(out, {0, 0, static_cast<std::uint32_t>(picture.Width()) - 1,
                 static_cast<std::uint32_t>(picture.Height()) - 1}); // bounds: both ends inside
    Append(out, {0, 0, Rounded(picture.Width() * kFrameUnitsPerInch / resolution.x),
                 Rounded(picture.Height() * kFrameUnitsPerInch / resolution.y)});
    Append(out, {kEmfSignature, 0x10000, fileBytes, kRecords, 1, 0, 0, 0}); // one handle, no description
    Append(out, {Rounded(resolution.x * kDeviceInches), Rounded(resolution.y * kDeviceInches)});
    Append(out, {kDeviceInches * 254 / 10, kDeviceInches * 254 / 10}); // millimetres
    Append(out, {0, 0, 0});                                            // no pixel format, no OpenGL
    Append(out, {kDeviceInches * 25400, kDeviceInches * 25400});       // micrometres
}

} // namespace

ByteBuffer WriteEmf(const PixelArray& picture, const codecs::WriteOptions& /*options*/) {
    const WrittenBitmap bitmap(picture);
    const auto width = static_cast<std::uint32_t>(picture.Width());
    const auto height = static_cast<std::uint32_t>(picture.Height());
    const auto bitmapRecordBytes = static_cast<std::uint32_t>(kStretchHeaderBytes + bitmap.Bytes().size());
    const std::uint32_t fileBytes = kHeaderBytes + kModeBytes + bitmapRecordBytes + kEndBytes;

    ByteBuffer out;
    out.reserve(fileBytes);
    AppendHeader(out, picture, fileBytes);
    Append(out, {static_cast<std::uint32_t>(EmfType::SetStretchBltMode), kModeBytes, kStretchByHalftone});
    Append(out, {static_cast<std::uint32_t>(EmfType::StretchDiBits), bitmapRecordBytes});
    Append(out, {0, 0, width - 1, height - 1}); // bounds
    Append(out, {0, 0, 0, 0, width, height});   // to; from, and its size
    Append(out, {kStretchHeaderBytes, WrittenBitmap::kHeaderBytes,
                 kStretchHeaderBytes + WrittenBitmap::kHeaderBytes,
                 static_cast<std::uint32_t>(bitmap.Bytes().size() - WrittenBitmap::kHeaderBytes)});
    Append(out, {0, kSourceCopy, width, height}); // colours, operation; size on the device
    out.insert(out.end(), bitmap.Bytes().begin(), bitmap.Bytes().end());
    Append(out, {static_cast<std::uint32_t>(EmfType::EndOfFile), kEndBytes, 0, 16, kEndBytes});
    return out;
}

} // namespace pictorel::metafile
