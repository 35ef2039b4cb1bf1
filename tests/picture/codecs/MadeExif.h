// EXIF blocks made on the spot, in either byte order.
#pragma once

#include "picture/codecs/Codec.h"

#include <string_view>

namespace pictorel::codecs::testing {

struct ExifFields {
    bool littleEndian = true;
    int orientation = 1;
    unsigned resolutionX = 72;
    unsigned resolutionY = 72;
    int unit = 2; // 1 none, 2 inch, 3 centimetre
    bool thumbnail = true;
};

// A block with a maker's name, the fields, and a second directory with a little thumbnail (which without
// `thumbnail` is not linked and cleared).
inline ByteBuffer MadeExif(const ExifFields& fields) {
    ByteBuffer block;
    const auto byte = [&](unsigned value) { block.push_back(static_cast<std::uint8_t>(value)); };
    const auto word = [&](unsigned value) {
        byte(fields.littleEndian ? value & 0xFFU : value >> 8 & 0xFFU);
        byte(fields.littleEndian ? value >> 8 & 0xFFU : value & 0xFFU);
    };
    const auto quad = [&](unsigned value) {
        word(fields.littleEndian ? value & 0xFFFFU : value >> 16);
        word(fields.littleEndian ? value >> 16 : value & 0xFFFFU);
    };
    const auto shortEntry = [&](unsigned tag, int value) {
        word(tag), word(3), quad(1), word(static_cast<unsigned>(value)), word(0);
    };
    const auto entry = [&](unsigned tag, unsigned type, unsigned count, unsigned value) {
        word(tag), word(type), quad(count), quad(value);
    };
    constexpr unsigned kFirst = 8;
    constexpr unsigned kValues = kFirst + 2 + 5 * 12 + 4;
    constexpr unsigned kSecond = kValues + 8 + 8 + 8;
    constexpr unsigned kThumbnail = kSecond + 2 + 2 * 12 + 4;
    byte(fields.littleEndian ? 'I' : 'M'), byte(fields.littleEndian ? 'I' : 'M'), word(42), quad(kFirst);
    word(5);
    entry(0x010F, 2, 8, kValues);
    shortEntry(0x0112, fields.orientation);
    entry(0x011A, 5, 1, kValues + 8);
    entry(0x011B, 5, 1, kValues + 16);
    shortEntry(0x0128, fields.unit);
    quad(fields.thumbnail ? kSecond : 0);
    for (const char letter : std::string_view("A maker\0", 8)) {
        byte(static_cast<unsigned char>(letter));
    }
    quad(fields.resolutionX * 10), quad(10), quad(fields.resolutionY * 10), quad(10);
    word(2);
    entry(0x0201, 4, 1, kThumbnail);
    entry(0x0202, 4, 1, 6);
    quad(0);
    for (const unsigned value : {0xFFU, 0xD8U, 0x12U, 0x34U, 0xFFU, 0xD9U}) {
        byte(fields.thumbnail ? value : 0);
    }
    return block;
}

// The block as it stands in a JPEG segment.
inline ByteBuffer ExifPayload(const ExifFields& fields) {
    const std::string_view signature("Exif\0\0", 6);
    ByteBuffer payload(signature.begin(), signature.end());
    const ByteBuffer exif = MadeExif(fields);
    payload.insert(payload.end(), exif.begin(), exif.end());
    return payload;
}

} // namespace pictorel::codecs::testing
