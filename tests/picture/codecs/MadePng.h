// PNG files put together chunk by chunk.
#pragma once

#include "picture/codecs/PictureSupport.h"

#include <zlib.h>

#include <string>
#include <string_view>
#include <vector>

namespace pictorel::codecs::testing {

inline ByteBuffer Chunk(std::string_view type, const ByteBuffer& data) {
    const ByteBuffer named = Bytes().Text(type).Append(data).Done();
    return Bytes()
        .Be32({static_cast<std::int64_t>(data.size())})
        .Append(named)
        .Be32({static_cast<std::int64_t>(crc32(0, named.data(), static_cast<uInt>(named.size())))})
        .Done();
}

inline ByteBuffer Deflated(const ByteBuffer& data) {
    uLongf size = compressBound(data.size());
    ByteBuffer out(size);
    compress(out.data(), &size, data.data(), data.size());
    out.resize(size);
    return out;
}

struct Recipe {
    std::int64_t width = 2;
    std::int64_t height = 1;
    int bits = 8;
    int colourType = 2; // 0 grey, 2 RGB, 3 palette, 4 grey and alpha, 6 RGB and alpha
    int interlace = 0;
    ByteBuffer extra{}; // whole chunks between header and pixels
    ByteBuffer rows{};  // with their filter bytes
    ByteBuffer after{}; // whole chunks behind the pixels
};

inline ByteBuffer Header(const Recipe& recipe) {
    return Bytes()
        .Be32({recipe.width, recipe.height})
        .U8({recipe.bits, recipe.colourType, 0, 0, recipe.interlace})
        .Done();
}

inline ByteBuffer MakePng(const Recipe& recipe) {
    return Bytes()
        .Text("\x89PNG\r\n\x1A\n")
        .Append(Chunk("IHDR", Header(recipe)))
        .Append(recipe.extra)
        .Append(Chunk("IDAT", Deflated(recipe.rows)))
        .Append(recipe.after)
        .Append(Chunk("IEND", {}))
        .Done();
}

struct Case {
    const char* name;
    Recipe recipe;
    std::string expected;
};

inline void ExpectAll(const std::vector<Case>& cases) {
    for (const Case& c : cases) {
        EXPECT_EQ(SpelledFile(MakePng(c.recipe)), c.expected) << c.name;
    }
}

inline ByteBuffer Palette() {
    return Chunk("PLTE", {255, 0, 0, 0, 255, 0, 0, 0, 255});
}

inline ByteBuffer GammaChunk(std::int64_t gamma) {
    return Chunk("gAMA", Bytes().Be32({gamma}).Done());
}

} // namespace pictorel::codecs::testing
