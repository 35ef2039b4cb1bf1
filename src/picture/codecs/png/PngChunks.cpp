// Walks PNG chunks, see PngChunks.h.
#include "picture/codecs/png/PngChunks.h"

#include "picture/codecs/ByteReader.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <string>

namespace pictorel::codecs {
namespace {

constexpr std::size_t kBeforeData = 8; // length and name
constexpr std::size_t kAroundData = 12;

struct Chunk {
    ByteView whole; // as far as the file holds it
    std::string_view name;
    ByteView data;
};

// Calls `visit` with each chunk until it returns false. Returns the place where the last one ought to end.
template <class Visit>
std::size_t ForEachChunk(ByteView file, const Visit& visit) {
    std::size_t at = kPngSignature.size();
    while (at + kBeforeData <= file.size()) {
        const std::size_t length = BigEndian32(file, at);
        const Chunk chunk{Slice(file, at, kAroundData + length),
                          {reinterpret_cast<const char*>(file.data() + at + 4), 4},
                          Slice(file, at + kBeforeData, length)};
        at += kAroundData + length;
        if (!visit(chunk)) {
            break;
        }
    }
    return at;
}

// Ancillary chunks, which are small letters first, are taken only if they tell of colours, size or
// orientation.
bool IsWanted(std::string_view name) {
    constexpr std::array<std::string_view, 7> kWanted{"tRNS", "gAMA", "cHRM", "sRGB", "iCCP", "pHYs", "eXIf"};
    return std::isupper(static_cast<unsigned char>(name[0])) != 0 ||
           std::find(kWanted.begin(), kWanted.end(), name) != kWanted.end();
}

// At most `limit` bytes: what a text unpacks to is nothing that the file vouches for.
ByteBuffer Inflated(ByteView packed, std::size_t limit) {
    ByteBuffer out(limit);
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK) {
        return {};
    }
    stream.next_in = const_cast<Bytef*>(packed.data()); // only read
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = out.data();
    stream.avail_out = static_cast<uInt>(out.size());
    inflate(&stream, Z_SYNC_FLUSH);
    out.resize(stream.total_out);
    inflateEnd(&stream);
    return out;
}

// The text: an empty line, the kind of block, its length, then its bytes.
ByteBuffer BytesOfText(ByteView text) {
    const auto skipLine = [&text] {
        const auto end = std::find(text.begin(), text.end(), std::uint8_t{'\n'});
        text = text.subspan(
            std::min<std::size_t>(static_cast<std::size_t>(end - text.begin()) + 1, text.size()));
    };
    for (int i = 0; i < 3; ++i) {
        skipLine();
    }
    ByteBuffer bytes;
    int high = -1;
    for (const std::uint8_t letter : text) {
        if (std::isxdigit(letter) == 0) {
            continue;
        }
        const int value = std::isdigit(letter) != 0 ? letter - '0' : std::tolower(letter) - 'a' + 10;
        if (high < 0) {
            high = value;
        } else {
            bytes.push_back(static_cast<std::uint8_t>(high << 4 | value));
            high = -1;
        }
    }
    return bytes;
}

} // namespace

std::vector<ByteView> PngParts(ByteView file) {
    std::vector<ByteView> parts{Slice(file, 0, kPngSignature.size())};
    bool hasHeader = false;
    ForEachChunk(file, [&](const Chunk& chunk) {
        const bool header = chunk.name == "IHDR";
        if (IsWanted(chunk.name) && !(header && hasHeader)) {
            const ByteView last = parts.back();
            if (last.data() + last.size() == chunk.whole.data()) {
                parts.back() = ByteView(last.data(), last.size() + chunk.whole.size());
            } else {
                parts.push_back(chunk.whole);
            }
        }
        hasHeader = hasHeader || header;
        return chunk.name != "IEND";
    });
    return parts;
}

ByteView PngData(ByteView file, ByteBuffer& joined) {
    std::vector<ByteView> pieces;
    std::size_t bytes = 0;
    ForEachChunk(file, [&](const Chunk& chunk) {
        if (chunk.name == "IDAT") {
            pieces.push_back(chunk.data);
            bytes += chunk.data.size();
        }
        return chunk.name != "IEND";
    });
    if (pieces.size() == 1) {
        return pieces.front();
    }
    joined.reserve(bytes);
    for (const ByteView& piece : pieces) {
        joined.insert(joined.end(), piece.begin(), piece.end());
    }
    return joined;
}

bool IsPngCutShort(ByteView file) {
    return ForEachChunk(file, [](const Chunk&) { return true; }) > file.size();
}

ByteView FindPngChunk(ByteView file, std::string_view name, std::string_view begin) {
    ByteView found;
    ForEachChunk(file, [&](const Chunk& chunk) {
        if (chunk.name == name && StartsWith(chunk.data, begin)) {
            found = chunk.data.subspan(begin.size());
        }
        return found.empty();
    });
    return found;
}

ByteView FindSoundPngChunk(ByteView file, std::string_view name) {
    ByteView found;
    ForEachChunk(file, [&](const Chunk& chunk) {
        if (chunk.name == name && chunk.whole.size() == chunk.data.size() + kAroundData) {
            const ByteView checked = chunk.whole.subspan(4, 4 + chunk.data.size());
            if (crc32(0, checked.data(), static_cast<uInt>(checked.size())) ==
                BigEndian32(chunk.whole, kBeforeData + chunk.data.size())) {
                found = chunk.data;
            }
        }
        return found.empty();
    });
    return found;
}

ByteBuffer FindPngExifText(ByteView file) {
    constexpr std::string_view kBlockSignature("Exif\0\0", 6);
    constexpr std::size_t kLargest = std::size_t{1}
                                     << 20; // of the text: eight times what a JPEG segment holds
    for (const std::string_view kind : {"exif", "APP1"}) {
        const std::string keyword = "Raw profile type " + std::string(kind) + '\0';
        const ByteView packed = FindPngChunk(file, "zTXt", keyword + '\0');
        const ByteView plain = FindPngChunk(file, "tEXt", keyword);
        const ByteBuffer bytes = packed.empty() ? BytesOfText(plain.first(std::min(plain.size(), kLargest)))
                                                : BytesOfText(Inflated(packed, kLargest));
        if (StartsWith(bytes, kBlockSignature)) {
            return {bytes.begin() + kBlockSignature.size(), bytes.end()};
        }
    }
    return {};
}

} // namespace pictorel::codecs
