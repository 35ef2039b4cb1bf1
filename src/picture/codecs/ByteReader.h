// Bounded reading and writing of the numbers in a file held in memory.
#pragma once

#include "picture/codecs/Codec.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pictorel::codecs {

// The part of `file` from `offset` on, at most `length` bytes: what lies beyond the end is left out.
inline ByteView Slice(ByteView file, std::size_t offset, std::size_t length = std::dynamic_extent) noexcept {
    if (offset >= file.size()) {
        return {};
    }
    return file.subspan(offset, std::min(length, file.size() - offset));
}

// Numbers at an offset. Bytes beyond the end of the file read as 0, so a reader may look before it checks.
inline std::uint8_t ByteAt(ByteView file, std::size_t offset) noexcept {
    return offset < file.size() ? file[offset] : std::uint8_t{0};
}
inline std::uint16_t LittleEndian16(ByteView file, std::size_t offset) noexcept {
    return static_cast<std::uint16_t>(ByteAt(file, offset) | ByteAt(file, offset + 1) << 8);
}
inline std::uint32_t LittleEndian32(ByteView file, std::size_t offset) noexcept {
    return LittleEndian16(file, offset) | std::uint32_t{LittleEndian16(file, offset + 2)} << 16;
}
inline std::int32_t LittleEndianSigned32(ByteView file, std::size_t offset) noexcept {
    return static_cast<std::int32_t>(LittleEndian32(file, offset));
}
inline std::uint16_t BigEndian16(ByteView file, std::size_t offset) noexcept {
    return static_cast<std::uint16_t>(ByteAt(file, offset) << 8 | ByteAt(file, offset + 1));
}
inline std::uint32_t BigEndian32(ByteView file, std::size_t offset) noexcept {
    return std::uint32_t{ByteAt(file, offset)} << 24 | std::uint32_t{ByteAt(file, offset + 1)} << 16 |
           std::uint32_t{ByteAt(file, offset + 2)} << 8 | ByteAt(file, offset + 3);
}

inline bool StartsWith(ByteView file, std::string_view signature) noexcept {
    return file.size() >= signature.size() &&
           std::equal(signature.begin(), signature.end(), file.begin(),
                      [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
}

inline void AppendLittleEndian16(ByteBuffer& out, std::uint32_t value) {
    out.push_back(static_cast<std::uint8_t>(value));
    out.push_back(static_cast<std::uint8_t>(value >> 8));
}
inline void AppendLittleEndian32(ByteBuffer& out, std::uint32_t value) {
    AppendLittleEndian16(out, value);
    AppendLittleEndian16(out, value >> 16);
}
inline void AppendBigEndian16(ByteBuffer& out, std::uint32_t value) {
    out.push_back(static_cast<std::uint8_t>(value >> 8));
    out.push_back(static_cast<std::uint8_t>(value));
}
inline void AppendBigEndian32(ByteBuffer& out, std::uint32_t value) {
    AppendBigEndian16(out, value >> 16);
    AppendBigEndian16(out, value);
}

} // namespace pictorel::codecs
