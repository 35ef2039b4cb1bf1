// The fields of one record, read within its bounds: what lies beyond them reads as 0.
#pragma once

#include "picture/codecs/ByteReader.h"

#include <QPointF>
#include <QRectF>
#include <QRgb>

#include <bit>
#include <cmath>

namespace pictorel::metafile {

class Fields {
  public:
    explicit Fields(codecs::ByteView bytes) : bytes_(bytes) {}

    std::size_t Size() const noexcept { return bytes_.size(); }
    codecs::ByteView From(std::size_t at) const noexcept { return codecs::Slice(bytes_, at); }
    codecs::ByteView Part(std::size_t at, std::size_t length) const noexcept {
        return codecs::Slice(bytes_, at, length);
    }

    std::uint8_t Byte(std::size_t at) const noexcept { return codecs::ByteAt(bytes_, at); }
    std::uint16_t Word(std::size_t at) const noexcept { return codecs::LittleEndian16(bytes_, at); }
    std::int16_t Short(std::size_t at) const noexcept { return static_cast<std::int16_t>(Word(at)); }
    std::uint32_t UInt(std::size_t at) const noexcept { return codecs::LittleEndian32(bytes_, at); }
    std::int32_t Int(std::size_t at) const noexcept { return codecs::LittleEndianSigned32(bytes_, at); }

    // A number that arithmetic can bear: what is infinite or absurd becomes 0.
    double Real(std::size_t at) const noexcept {
        constexpr float kAbsurd = 1e9F;
        const auto value = std::bit_cast<float>(UInt(at));
        return std::abs(value) < kAbsurd ? double{value} : 0.0;
    }

    QPointF Point32(std::size_t at) const noexcept { return {double(Int(at)), double(Int(at + 4))}; }
    QPointF Point16(std::size_t at) const noexcept { return {double(Short(at)), double(Short(at + 2))}; }
    QRectF Rect32(std::size_t at) const noexcept { return {Point32(at), Point32(at + 8)}; }

    // 0x00BBGGRR
    QRgb Colour(std::size_t at) const noexcept { return qRgb(Byte(at), Byte(at + 1), Byte(at + 2)); }

    // How many entries of `entryBytes` there really are from `at` on, of the `claimed` ones.
    std::size_t CountOf(std::uint32_t claimed, std::size_t at, std::size_t entryBytes) const noexcept {
        return std::min<std::size_t>(claimed, at < Size() ? (Size() - at) / entryBytes : 0);
    }

  private:
    codecs::ByteView bytes_;
};

} // namespace pictorel::metafile
