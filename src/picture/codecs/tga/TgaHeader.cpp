// The header, colour map and footer of a Targa file, see TgaHeader.h.
#include "picture/codecs/tga/TgaHeader.h"

#include "picture/codecs/ByteReader.h"
#include "picture/codecs/PixelSupport.h"

#include <algorithm>
#include <optional>

namespace pictorel::codecs {
namespace {

constexpr std::size_t kHeaderBytes = 18;
constexpr std::uint8_t kRunLengths = 8; // added to the type
constexpr std::int64_t kLongestRun = 128;
constexpr std::int64_t kMostTruncated = 64; // a file that holds less than this fraction is no picture

struct TypeRow {
    int type;
    TgaColour colour;
    std::array<int, 4> bits; // a pixel may have
};
constexpr TypeRow kTypes[] = {
    {1, TgaColour::Mapped, {8, 15, 16, 16}},
    {2, TgaColour::True, {15, 16, 24, 32}},
    {3, TgaColour::Grey, {8, 8, 16, 16}}, // 16: grey and alpha
};

// The fields of the header as the file has them.
struct Fields {
    int idBytes;
    int mapType;
    int type;
    int mapFirst;
    int mapLength;
    int mapBits;
    int width;
    int height;
    int bits;
    int descriptor;

    explicit Fields(ByteView file)
        : idBytes(ByteAt(file, 0)),
          mapType(ByteAt(file, 1)),
          type(ByteAt(file, 2)),
          mapFirst(LittleEndian16(file, 3)),
          mapLength(LittleEndian16(file, 5)),
          mapBits(ByteAt(file, 7)),
          width(LittleEndian16(file, 12)),
          height(LittleEndian16(file, 14)),
          bits(ByteAt(file, 16)),
          descriptor(ByteAt(file, 17)) {}

    int AttributeBits() const { return descriptor & 15; }
    int Interleave() const { return 1 << (descriptor >> 6); } // every how many rows the next one stands
    int MapEntryBytes() const { return (mapBits + 7) / 8; }
    std::size_t MapBytes() const {
        return mapType != 1 ? 0
                            : static_cast<std::size_t>(mapLength) * static_cast<std::size_t>(MapEntryBytes());
    }
    std::size_t PixelsAt() const { return kHeaderBytes + static_cast<std::size_t>(idBytes) + MapBytes(); }
};

const TypeRow* FindType(int type) {
    const auto* const row = std::find_if(std::begin(kTypes), std::end(kTypes),
                                         [&](const TypeRow& r) { return r.type == (type & ~kRunLengths); });
    return row == std::end(kTypes) ? nullptr : row;
}

bool IsOneOf(int value, std::initializer_list<int> values) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

bool MapMakesSense(const Fields& fields, const TypeRow& type) {
    if (fields.mapType == 0) {
        return type.colour != TgaColour::Mapped && fields.mapLength == 0 &&
               IsOneOf(fields.mapBits, {0, 8, 15, 16, 24, 32});
    }
    return fields.mapType == 1 && fields.mapLength > 0 && fields.mapFirst + fields.mapLength <= 65536 &&
           IsOneOf(fields.mapBits, {8, 15, 16, 24, 32});
}

ByteView Footer(ByteView file) {
    const ByteView footer = Slice(file, file.size() < kTgaFooterBytes ? 0 : file.size() - kTgaFooterBytes);
    return StartsWith(Slice(footer, 8), kTgaSignature) ? footer : ByteView{};
}

// Sloppy programs leave anything in the fields that their pictures do not need. Their files are believed
// where they are signed, or as long as raw pixels need them to be.
bool IsVouchedFor(ByteView file, const Fields& fields) {
    const auto pixels = static_cast<std::size_t>(fields.width) * static_cast<std::size_t>(fields.height);
    const bool isRaw = (fields.type & kRunLengths) == 0;
    return !Footer(file).empty() ||
           (isRaw &&
            fields.PixelsAt() + pixels * static_cast<std::size_t>((fields.bits + 7) / 8) == file.size());
}

// The attributes type of the extension area, where the file has one.
std::optional<int> AttributesOfExtension(ByteView file) {
    const ByteView footer = Footer(file);
    const std::size_t extensionAt = LittleEndian32(footer, 0);
    if (footer.empty() || extensionAt < kHeaderBytes ||
        LittleEndian16(file, extensionAt) < kTgaExtensionBytes ||
        extensionAt + kTgaExtensionBytes > file.size() - kTgaFooterBytes) {
        return std::nullopt;
    }
    return file[extensionAt + kTgaAttributesAt];
}

TgaAlpha AlphaOf(ByteView file, const Fields& fields, TgaColour colour) {
    const int colourBits = colour == TgaColour::Mapped ? fields.mapBits : fields.bits;
    const bool hasRoom = colourBits == 32 || colourBits == 16;
    if (!hasRoom) {
        return TgaAlpha::None;
    }
    const bool isInHeader = fields.AttributeBits() > 0;
    if (const auto attributes = AttributesOfExtension(file)) {
        const bool isContradicted = *attributes == kTgaNoAlpha && isInHeader;
        return *attributes == kTgaPremultipliedAlpha ? TgaAlpha::Premultiplied
               : *attributes == kTgaAlpha            ? TgaAlpha::Plain
               : isContradicted                      ? TgaAlpha::Unsure
                                                     : TgaAlpha::None;
    }
    // Many programs leave alpha in the fourth byte without a word, or promise it and never set it; a
    // sixteenth bit that nobody speaks of is as often junk.
    const bool isLikely = colourBits == 32 || colour == TgaColour::Grey;
    return isInHeader || isLikely ? TgaAlpha::Unsure : TgaAlpha::None;
}

std::vector<std::array<std::uint8_t, 4>> ReadPalette(ByteView file, const Fields& fields, bool hasAlpha) {
    const std::size_t entryBytes = static_cast<std::size_t>(fields.MapEntryBytes());
    const ByteView map =
        Slice(file, kHeaderBytes + static_cast<std::size_t>(fields.idBytes), fields.MapBytes());
    std::vector<std::array<std::uint8_t, 4>> palette(fields.bits == 8 ? 256 : 65536, {0, 0, 0, 255});
    const auto first = static_cast<std::size_t>(fields.mapFirst);
    for (std::size_t i = 0; (i + 1) * entryBytes <= map.size() && first + i < palette.size(); ++i) {
        palette[first + i] = TgaColourOf(map.data() + i * entryBytes, static_cast<int>(entryBytes), hasAlpha);
    }
    return palette;
}

} // namespace

std::array<std::uint8_t, 4> TgaColourOf(const std::uint8_t* data, int bytes, bool hasAlpha) noexcept {
    if (bytes == 1) {
        return {data[0], data[0], data[0], 255};
    }
    if (bytes > 2) {
        return {data[0], data[1], data[2], bytes > 3 && hasAlpha ? data[3] : std::uint8_t{255}};
    }
    const int packed = data[0] | data[1] << 8;
    const auto wide = [packed](int shift) {
        return static_cast<std::uint8_t>(((packed >> shift & 31) * 255 + 15) / 31);
    };
    const bool isOpaque = !hasAlpha || (packed & 0x8000) != 0;
    return {wide(0), wide(5), wide(10), isOpaque ? std::uint8_t{255} : std::uint8_t{0}};
}

bool IsTgaHeader(ByteView file) noexcept {
    const Fields fields(file);
    const TypeRow* const type = FindType(fields.type);
    if (type == nullptr || file.size() <= kHeaderBytes) {
        return false;
    }
    const bool isPicture = std::find(type->bits.begin(), type->bits.end(), fields.bits) != type->bits.end() &&
                           fields.width > 0 && fields.height > 0 && fields.Interleave() <= 4 &&
                           fields.PixelsAt() < file.size() &&
                           (type->colour != TgaColour::Mapped || MapMakesSense(fields, *type));
    const bool isClean = MapMakesSense(fields, *type) && IsOneOf(fields.AttributeBits(), {0, 1, 8});
    return isPicture && (isClean || IsVouchedFor(file, fields));
}

TgaHeader ReadTgaHeader(ByteView file) {
    if (!IsTgaHeader(file)) {
        Refuse("The file is no Targa picture.");
    }
    const Fields fields(file);
    TgaHeader header;
    header.colour = FindType(fields.type)->colour;
    header.hasRunLengths = (fields.type & kRunLengths) != 0;
    header.pixelBytes = (fields.bits + 7) / 8;
    const std::int64_t pixelsInRun = header.hasRunLengths ? kLongestRun : 1;
    CheckClaimedSize(fields.width, fields.height, file.size(), kMostTruncated * pixelsInRun);
    header.width = fields.width;
    header.height = fields.height;
    header.rightToLeft = (fields.descriptor & 0x10) != 0;
    header.topDown = (fields.descriptor & 0x20) != 0;
    header.interleave = fields.Interleave();
    header.alpha = AlphaOf(file, fields, header.colour);
    if (header.colour == TgaColour::Mapped) {
        header.palette = ReadPalette(file, fields, header.alpha != TgaAlpha::None);
    }
    header.pixels = Slice(file, fields.PixelsAt());
    return header;
}

} // namespace pictorel::codecs
