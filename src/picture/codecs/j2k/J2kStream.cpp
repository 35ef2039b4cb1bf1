// The headers of a JPEG 2000 codestream, see J2kStream.h.
#include "picture/codecs/j2k/J2kStream.h"

#include "picture/codecs/ByteReader.h"
#include "picture/codecs/PixelSupport.h"

#include <algorithm>

namespace pictorel::codecs {
namespace {

enum Marker : std::uint16_t {
    kSize = 0xFF51,
    kCoding = 0xFF52,
    kComponentCoding = 0xFF53,
    kTilePart = 0xFF90,
    kEnd = 0xFFD9,
    kData = 0xFF93,
};
constexpr std::size_t kTilePartBytes = 12; // the marker with its segment
constexpr int kMostBits = 31;              // that the library decodes
constexpr int kMostLevels = 32;

// What an honest file may ask for. The floors let small files be; above them a file has to have the bytes.
constexpr std::int64_t kMostPixelsPerByte = 2000;
constexpr std::int64_t kFreeSamples = std::int64_t{64} << 20; // 256 MiB in the library
constexpr std::int64_t kFreeTileMemory = std::int64_t{64} << 20;
constexpr std::int64_t kTileMemoryPerByte = 64;
constexpr std::int64_t kTileMemory = 6000; // that the library takes for a tile, and for each component of it
constexpr std::int64_t kTileComponentMemory = 1200;
constexpr std::int64_t kFreePrecincts = 1 << 16;    // of a tile: about 1 KB each
constexpr std::int64_t kFreeAllPrecincts = 1 << 18; // of all tiles: time
constexpr std::int64_t kFreePackets = 1 << 22;      // of a tile: 2 bytes each
constexpr std::int64_t kFreeCodeBlocks = 1 << 18;   // of a tile: about 200 bytes each

std::int64_t DivideUp(std::int64_t value, std::int64_t by) {
    return (value + by - 1) / by;
}

[[noreturn]] void RefuseDemand() {
    Refuse("The JPEG 2000 file is far too short for what its headers ask for.");
}

class StreamReader {
  public:
    explicit StreamReader(ByteView data) : data_(data), bytes_(static_cast<std::int64_t>(data.size())) {}

    J2kStream Read() {
        std::size_t at = 2;
        if (BigEndian16(data_, at) != kSize) {
            Refuse("The JPEG 2000 file does not say the size of its picture.");
        }
        ReadSize(Slice(data_, at + 4, BigEndian16(data_, at + 2)));
        if (!SkipSegments(at, kTilePart)) {
            Refuse("The JPEG 2000 file ends before its first tile.");
        }
        while (BigEndian16(data_, at) == kTilePart && TakeTilePart(at)) {
        }
        stream_.lacksEnd = tileParts_ > 0 && isLastWhole_ && BigEndian16(data_, at) != kEnd;
        stream_.usable = data_.first(std::min(stream_.lacksEnd ? at : end_, data_.size()));
        if (tileParts_ == 0) {
            Refuse("The JPEG 2000 file is damaged or ends before its first tile.");
        }
        return std::move(stream_);
    }

  private:
    // `at` points at a marker; goes past segments up to the marker `last`. False where there is none.
    bool SkipSegments(std::size_t& at, std::uint16_t last) {
        for (;;) {
            const std::uint16_t marker = BigEndian16(data_, at);
            if (marker == last) {
                return true;
            }
            const std::size_t length = BigEndian16(data_, at + 2);
            if (marker < 0xFF00 || length < 2 || at + 2 + length > data_.size()) {
                return false;
            }
            ReadSegment(marker, Slice(data_, at + 4, length - 2));
            at += 2 + length;
        }
    }

    void ReadSegment(std::uint16_t marker, ByteView segment) {
        if (marker == kCoding) {
            layers_ = std::max<std::int64_t>(layers_, BigEndian16(segment, 2));
            WeighCoding((ByteAt(segment, 0) & 1) != 0, Slice(segment, 5));
        } else if (marker == kComponentCoding) {
            const std::size_t at = stream_.components.size() < 257 ? 1 : 2;
            WeighCoding((ByteAt(segment, at) & 1) != 0, Slice(segment, at + 1));
        }
    }

    // True where another one may follow, at the new `at`. What is no proper tile part, and all behind it, is
    // kept from the library, so that nothing gets there unweighed.
    bool TakeTilePart(std::size_t& at) {
        const std::int64_t tile = BigEndian16(data_, at + 4);
        const std::size_t length = BigEndian32(data_, at + 6);
        std::size_t dataAt = at + kTilePartBytes;
        if (BigEndian16(data_, at + 2) != kTilePartBytes - 2 || tile >= tiles_ ||
            !SkipSegments(dataAt, kData) || (length != 0 && at + length < dataAt + 2)) {
            return false;
        }
        WeighPackets();
        ++tileParts_;
        const bool isLast = length == 0 || length > data_.size() - at;
        isLastWhole_ = !isLast;
        const double share =
            length == 0 || !isLast ? 1 : static_cast<double>(data_.size() - at) / static_cast<double>(length);
        const int partsOfTile = ByteAt(data_, at + 11); // 0 where the file does not tell
        stream_.presentOfLast =
            partsOfTile > 0 ? std::min(1.0, (ByteAt(data_, at + 10) + share) / partsOfTile) : share;
        if (length != 0 && isLast) {
            stream_.cutLengthAt = at + 6;
            stream_.trueLength = static_cast<std::uint32_t>(data_.size() - at);
        }
        at = isLast ? data_.size() : at + length;
        constexpr std::size_t kEndMarkerBytes = 2;
        end_ = at + kEndMarkerBytes;
        return !isLast;
    }

    void ReadSize(ByteView segment) {
        const auto number = [&](std::size_t at) { return std::int64_t{BigEndian32(segment, at)}; };
        J2kArea& grid = stream_.grid;
        grid = {number(10), number(14), number(2), number(6)};
        const std::int64_t tileWidth = number(18);
        const std::int64_t tileHeight = number(22);
        const std::int64_t tileX = number(26);
        const std::int64_t tileY = number(30);
        const std::size_t components = BigEndian16(segment, 34);
        if (grid.Width() <= 0 || grid.Height() <= 0 || tileWidth == 0 || tileHeight == 0 || tileX > grid.x0 ||
            tileY > grid.y0 || tileX + tileWidth <= grid.x0 || tileY + tileHeight <= grid.y0 ||
            components == 0 || components > 16384 || segment.size() < 36 + 3 * components) {
            Refuse("The JPEG 2000 file has a size that no picture can have.");
        }
        ReadComponents(segment, components);
        CheckSize();
        tileWidth_ = std::min(tileWidth, grid.Width());
        tileHeight_ = std::min(tileHeight, grid.Height());
        tiles_ = DivideUp(grid.x1 - tileX, tileWidth) * DivideUp(grid.y1 - tileY, tileHeight);
        const std::int64_t eachTile =
            kTileMemory + kTileComponentMemory * static_cast<std::int64_t>(components);
        if (tiles_ > 65535 || tiles_ * eachTile > kFreeTileMemory + kTileMemoryPerByte * bytes_) {
            RefuseDemand();
        }
    }

    void ReadComponents(ByteView segment, std::size_t count) {
        stream_.stepX = stream_.stepY = 255;
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint8_t depth = ByteAt(segment, 36 + 3 * i);
            const J2kComponent component{(depth & 0x7F) + 1, (depth & 0x80) != 0, ByteAt(segment, 37 + 3 * i),
                                         ByteAt(segment, 38 + 3 * i)};
            if (component.bits > kMostBits || component.stepX == 0 || component.stepY == 0) {
                Refuse("The JPEG 2000 file has samples of a kind that this editor cannot read.");
            }
            stream_.stepX = std::min(stream_.stepX, component.stepX);
            stream_.stepY = std::min(stream_.stepY, component.stepY);
            stream_.components.push_back(component);
        }
    }

    void CheckSize() const {
        const J2kArea picture = stream_.grid.Sampled(stream_.stepX, stream_.stepY);
        CheckClaimedSize(picture.Width(), picture.Height(), data_.size(), kMostPixelsPerByte);
        std::int64_t samples = 0;
        for (const J2kComponent& component : stream_.components) {
            const J2kArea area = stream_.grid.Sampled(component.stepX, component.stepY);
            samples += area.Width() * area.Height();
        }
        if (samples > kFreeSamples && samples / (4 * kMostPixelsPerByte) > bytes_) {
            RefuseDemand();
        }
    }

    // The levels, code blocks and precincts of one way of coding, taken as that of all components.
    void WeighCoding(bool hasPrecincts, ByteView coding) {
        const int levels = ByteAt(coding, 0);
        if (levels > kMostLevels) {
            Refuse("The JPEG 2000 file is coded in a way that no file can be.");
        }
        const int blockBits = (ByteAt(coding, 1) & 15) + 2 + (ByteAt(coding, 2) & 15) + 2;
        const auto components = static_cast<std::int64_t>(stream_.components.size());
        std::int64_t precincts = 0;
        for (int r = 0; r <= levels; ++r) {
            const int size = hasPrecincts ? ByteAt(coding, 5 + static_cast<std::size_t>(r)) : 0xFF;
            const int reduction = levels - r;
            const auto across = [reduction](std::int64_t length, int bits) {
                return (length >> reduction >> bits) + 2; // one more for either end that is cut
            };
            const std::int64_t here = across(tileWidth_, size & 15) * across(tileHeight_, size >> 4);
            precincts += here;
            mostPrecincts_ = std::max(mostPrecincts_, here);
        }
        mostLevels_ = std::max<std::int64_t>(mostLevels_, levels + 1);
        stream_.levels = std::max(stream_.levels, levels);
        const std::int64_t all = precincts * components;
        const std::int64_t blocks = (tileWidth_ * tileHeight_ * components >> blockBits) + all;
        if (all > std::max(kFreePrecincts, bytes_ / 4) ||
            all * tiles_ > std::max(kFreeAllPrecincts, bytes_) ||
            blocks > std::max(kFreeCodeBlocks, bytes_)) {
            RefuseDemand();
        }
    }

    void WeighPackets() const {
        const std::int64_t packets =
            layers_ * mostLevels_ * mostPrecincts_ * static_cast<std::int64_t>(stream_.components.size());
        if (packets > std::max(kFreePackets, 16 * bytes_)) {
            RefuseDemand();
        }
    }

    ByteView data_;
    std::int64_t bytes_;
    J2kStream stream_;
    std::int64_t tiles_ = 0;
    std::int64_t tileWidth_ = 0; // of the largest tile
    std::int64_t tileHeight_ = 0;
    std::int64_t layers_ = 0;
    std::int64_t mostLevels_ = 0; // of all ways of coding
    std::int64_t mostPrecincts_ = 0;
    std::size_t end_ = 0; // of what makes sense
    int tileParts_ = 0;
    bool isLastWhole_ = false;
};

} // namespace

J2kArea J2kArea::Sampled(std::int64_t stepX, std::int64_t stepY) const {
    return {DivideUp(x0, stepX), DivideUp(y0, stepY), DivideUp(x1, stepX), DivideUp(y1, stepY)};
}

J2kArea J2kStream::PixelsOf(const J2kArea& part) const {
    const J2kArea whole = grid.Sampled(stepX, stepY);
    J2kArea area = part.Sampled(stepX, stepY);
    area.x0 -= whole.x0;
    area.x1 -= whole.x0;
    area.y0 -= whole.y0;
    area.y1 -= whole.y0;
    return area;
}

J2kStream ReadJ2kStream(ByteView codestream) {
    return StreamReader(codestream).Read();
}

} // namespace pictorel::codecs
