// A bitmap inside a metafile, see Bitmap.h.
#include "picture/metafile/canvas/Bitmap.h"

#include "picture/ImagingError.h"
#include "picture/codecs/ByteReader.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/bmp/Bmp.h"

#include <cstdlib>
#include <cstring>

namespace pictorel::metafile {
namespace {

using codecs::AppendLittleEndian16;
using codecs::AppendLittleEndian32;
using codecs::ByteBuffer;
using codecs::ByteView;
using codecs::LittleEndian16;
using codecs::LittleEndian32;

constexpr std::uint32_t kCoreHeaderBytes = 12;
constexpr std::uint32_t kInfoHeaderBytes = 40;
constexpr std::uint32_t kLongestHeaderBytes = 124;
constexpr std::size_t kFileHeaderBytes = 14;

bool HasCoreHeader(ByteView information) {
    return LittleEndian32(information, 0) == kCoreHeaderBytes;
}

int DepthOf(ByteView information) {
    return LittleEndian16(information, HasCoreHeader(information) ? 10 : 14);
}

std::size_t MaskBytes(ByteView information) { // those that stand between header and colour table
    constexpr std::uint32_t kBitFields = 3;
    const bool hasMasks =
        LittleEndian32(information, 0) == kInfoHeaderBytes && LittleEndian32(information, 16) == kBitFields;
    return hasMasks ? 12 : 0;
}

std::size_t ColoursOf(ByteView information) {
    constexpr std::uint32_t kMostColours = 256;
    const int depth = DepthOf(information);
    const std::uint32_t used = HasCoreHeader(information) ? 0 : LittleEndian32(information, 32);
    if (used != 0) {
        return std::min(used, kMostColours);
    }
    return depth <= 8 ? std::size_t{1} << depth : 0;
}

// A colour table of numbers of palette entries, turned into one of colours.
ByteBuffer WithColours(ByteView information, const std::vector<QRgb>& palette) {
    const std::size_t headerBytes = LittleEndian32(information, 0) + MaskBytes(information);
    ByteBuffer out(information.begin(), information.begin() + static_cast<std::ptrdiff_t>(
                                                                  std::min(headerBytes, information.size())));
    for (std::size_t i = 0; i < ColoursOf(information); ++i) {
        const std::size_t entry = LittleEndian16(information, headerBytes + 2 * i);
        const QRgb colour = entry < palette.size() ? palette[entry] : 0;
        out.insert(out.end(),
                   {static_cast<std::uint8_t>(qBlue(colour)), static_cast<std::uint8_t>(qGreen(colour)),
                    static_cast<std::uint8_t>(qRed(colour))});
        if (!HasCoreHeader(information)) {
            out.push_back(0);
        }
    }
    return out;
}

QImage Wrapped(PixelArray picture, QImage::Format format) { // without copying its pixels
    auto* const owner = new PixelArray(std::move(picture));
    return {owner->Row(0),
            owner->Width(),
            owner->Height(),
            owner->Stride(),
            format,
            [](void* array) { delete static_cast<PixelArray*>(array); },
            owner};
}

// Colour above its alpha would overflow where it is mixed.
void BoundByAlpha(PixelArray& picture) {
    std::uint8_t* const rows = picture.WritableRows();
    for (int y = 0; y < picture.Height(); ++y) {
        std::uint8_t* pixel = rows + y * picture.Stride();
        for (int x = 0; x < picture.Width(); ++x, pixel += PixelArray::kComponents) {
            for (int i = 0; i < 3; ++i) {
                pixel[i] = std::min(pixel[i], pixel[3]);
            }
        }
    }
}

double InchesFromHeader(ByteView header, std::size_t at) {
    return HasCoreHeader(header) ? 0 : codecs::InchesFromMetre(codecs::LittleEndianSigned32(header, at));
}

} // namespace

Bitmap::Bitmap(ByteView information, ByteView pixels, bool indexed, const std::vector<QRgb>& palette)
    : pixels_(pixels), depth_(DepthOf(information)) {
    constexpr std::size_t kMostBytes = kLongestHeaderBytes + 12 + 4 * 256;
    information = codecs::Slice(information, 0, kMostBytes);
    header_ =
        indexed ? WithColours(information, palette) : ByteBuffer(information.begin(), information.end());
    if (HasCoreHeader(information)) {
        size_ = {LittleEndian16(information, 4), LittleEndian16(information, 6)};
        return;
    }
    const std::int32_t width = codecs::LittleEndianSigned32(information, 4);
    const std::int32_t height = codecs::LittleEndianSigned32(information, 8);
    topDown_ = height < 0;
    if (width > 0 && width <= kMaximumSide && height >= -kMaximumSide && height <= kMaximumSide) {
        size_ = {width, std::abs(height)};
    }
}

Bitmap Bitmap::Packed(ByteView bytes, bool indexed, const std::vector<QRgb>& palette) {
    const std::size_t entryBytes = indexed ? 2 : HasCoreHeader(bytes) ? 3 : 4;
    const std::size_t informationBytes =
        std::min<std::size_t>(LittleEndian32(bytes, 0), kLongestHeaderBytes) + MaskBytes(bytes) +
        ColoursOf(bytes) * entryBytes;
    return {codecs::Slice(bytes, 0, informationBytes), codecs::Slice(bytes, informationBytes), indexed,
            palette};
}

// Brought into the form of a device-independent one: its rows are of whole 16 bits, the top one first.
std::optional<Bitmap> Bitmap::OfDevice(ByteView bytes) {
    constexpr std::size_t kHeader = 10;
    const int width = LittleEndian16(bytes, 2);
    const int height = LittleEndian16(bytes, 4);
    const std::size_t rowBytes = LittleEndian16(bytes, 6);
    const int planes = codecs::ByteAt(bytes, 8);
    const int depth = codecs::ByteAt(bytes, 9);
    const std::size_t neededBytes =
        (static_cast<std::size_t>(width) * static_cast<std::size_t>(depth) + 7) / 8;
    const bool known = planes == 1 && (depth == 1 || depth == 16 || depth == 24 || depth == 32);
    const ByteView pixels = codecs::Slice(bytes, kHeader);
    if (!known || width == 0 || height == 0 || rowBytes < neededBytes ||
        pixels.size() < rowBytes * static_cast<std::size_t>(height)) {
        return std::nullopt;
    }
    Bitmap bitmap;
    AppendLittleEndian32(bitmap.header_, kInfoHeaderBytes);
    AppendLittleEndian32(bitmap.header_, static_cast<std::uint32_t>(width));
    AppendLittleEndian32(bitmap.header_, static_cast<std::uint32_t>(-height));
    AppendLittleEndian16(bitmap.header_, 1);
    AppendLittleEndian16(bitmap.header_, static_cast<std::uint32_t>(depth));
    bitmap.header_.resize(kInfoHeaderBytes);
    if (depth == 1) {
        AppendLittleEndian32(bitmap.header_, 0x000000);
        AppendLittleEndian32(bitmap.header_, 0xFFFFFF);
    }
    const std::size_t paddedBytes = (neededBytes + 3) / 4 * 4;
    bitmap.deviceRows_.resize(paddedBytes * static_cast<std::size_t>(height));
    for (std::size_t y = 0; y < static_cast<std::size_t>(height); ++y) {
        std::memcpy(bitmap.deviceRows_.data() + y * paddedBytes, pixels.data() + y * rowBytes, neededBytes);
    }
    bitmap.size_ = {width, height};
    bitmap.topDown_ = true;
    bitmap.depth_ = depth;
    return bitmap;
}

double Bitmap::DotsPerInchX() const noexcept {
    return InchesFromHeader(header_, 24);
}

double Bitmap::DotsPerInchY() const noexcept {
    return InchesFromHeader(header_, 28);
}

void Bitmap::KeepRows(int count) {
    if (count <= 0 || count >= size_.height()) {
        return;
    }
    size_.setHeight(count);
    const bool isCore = HasCoreHeader(header_);
    const auto height = static_cast<std::uint32_t>(topDown_ ? -count : count);
    for (std::size_t i = 0; i < (isCore ? 2 : 4); ++i) {
        header_[(isCore ? 6 : 8) + i] = static_cast<std::uint8_t>(height >> 8 * i);
    }
}

// As the bitmap file that it would be.
QImage Bitmap::Decode(bool withAlpha) const {
    if (size_.isEmpty()) {
        return {};
    }
    const ByteView pixels = deviceRows_.empty() ? pixels_ : ByteView(deviceRows_);
    ByteBuffer file;
    file.reserve(kFileHeaderBytes + header_.size() + pixels.size());
    AppendLittleEndian16(file, 'B' | 'M' << 8);
    AppendLittleEndian32(file, static_cast<std::uint32_t>(kFileHeaderBytes + header_.size() + pixels.size()));
    AppendLittleEndian32(file, 0);
    AppendLittleEndian32(file, static_cast<std::uint32_t>(kFileHeaderBytes + header_.size()));
    file.insert(file.end(), header_.begin(), header_.end());
    file.insert(file.end(), pixels.begin(), pixels.end());
    try {
        PixelArray picture = codecs::ReadBmp(file, {});
        file = ByteBuffer();
        if (withAlpha && picture.HasAlpha()) {
            BoundByAlpha(picture);
            return Wrapped(std::move(picture), QImage::Format_ARGB32_Premultiplied);
        }
        if (picture.HasAlpha()) {
            codecs::MakeOpaque(picture);
        }
        return Wrapped(std::move(picture), QImage::Format_RGB32);
    } catch (const ImagingError& error) {
        if (error.Kind() == ImagingFailure::OutOfMemory) {
            throw;
        }
        return {};
    }
}

} // namespace pictorel::metafile
