// Looks into the decoders' set-ups among the properties of a HEIF file, see HeifChroma.h.
#include "picture/codecs/heif/HeifChroma.h"

#include "picture/codecs/ByteReader.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace pictorel::codecs {
namespace {

constexpr std::size_t kBoxHeader = 8; // size, type
constexpr std::size_t kVersionAndFlags = 4;

// The boxes in a row of them, one after another.
class Boxes {
  public:
    explicit Boxes(ByteView row) noexcept : row_(row) {}

    // False at the end, and where the next box makes no sense.
    bool Next() noexcept {
        if (row_.size() < kBoxHeader) {
            return false;
        }
        constexpr std::uint32_t kToTheEnd = 0;
        constexpr std::uint32_t kSizeIsLong = 1;
        const std::uint32_t told = BigEndian32(row_, 0);
        const std::size_t size = told == kToTheEnd     ? row_.size()
                                 : told == kSizeIsLong ? LongSize()
                                                       : std::size_t{told};
        const std::size_t header = told == kSizeIsLong ? 2 * kBoxHeader : kBoxHeader;
        if (size < header) {
            return false;
        }
        type_ = row_.subspan(4, 4);
        content_ = Slice(row_, header, size - header);
        row_ = Slice(row_, size);
        return true;
    }

    bool Is(std::string_view type) const noexcept { return StartsWith(type_, type); }
    ByteView Content() const noexcept { return content_; }

    // The content of the next box of the type; empty where there is none.
    ByteView Find(std::string_view type) noexcept {
        while (Next()) {
            if (Is(type)) {
                return content_;
            }
        }
        return {};
    }

  private:
    std::size_t LongSize() const noexcept {
        return std::size_t{BigEndian32(row_, kBoxHeader)} << 32 | BigEndian32(row_, kBoxHeader + 4);
    }

    ByteView row_;
    ByteView type_;
    ByteView content_;
};

HeifChroma OfHevc(ByteView setUp) noexcept { // ISO/IEC 14496-15
    constexpr std::size_t kFormatAt = 16;
    constexpr HeifChroma kFormats[] = {HeifChroma::None, HeifChroma::Coarse, HeifChroma::Half,
                                       HeifChroma::Full};
    return kFormats[ByteAt(setUp, kFormatAt) & 3];
}

HeifChroma OfAv1(ByteView setUp) noexcept { // AV1 Codec ISO Media File Format Binding
    const unsigned flags = ByteAt(setUp, 2);
    constexpr unsigned kIsGrey = 0x10;
    constexpr unsigned kIsHalfWidth = 0x08;
    constexpr unsigned kIsHalfHeight = 0x04;
    if ((flags & kIsGrey) != 0) {
        return HeifChroma::None;
    }
    if ((flags & kIsHalfWidth) == 0) {
        return HeifChroma::Full;
    }
    return (flags & kIsHalfHeight) != 0 ? HeifChroma::Coarse : HeifChroma::Half;
}

} // namespace

HeifChroma FinestChroma(ByteView file) noexcept {
    const ByteView meta = Slice(Boxes(file).Find("meta"), kVersionAndFlags);
    Boxes properties(Boxes(Boxes(meta).Find("iprp")).Find("ipco"));
    std::optional<HeifChroma> finest;
    while (properties.Next()) {
        if (properties.Is("hvcC")) {
            finest = std::max(finest.value_or(HeifChroma::None), OfHevc(properties.Content()));
        } else if (properties.Is("av1C")) {
            finest = std::max(finest.value_or(HeifChroma::None), OfAv1(properties.Content()));
        }
    }
    return finest.value_or(HeifChroma::Full);
}

} // namespace pictorel::codecs
