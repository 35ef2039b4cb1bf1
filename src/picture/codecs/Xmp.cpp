// Takes statements out of XMP packets, see Xmp.h. They are XML, in which a property is an attribute or an
// element; names have the prefixes that their makers recommend, which all writers use.
#include "picture/codecs/Xmp.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace pictorel::codecs {
namespace {

constexpr std::array<std::string_view, 10> kClaims{
    "tiff:Orientation",       "tiff:ImageWidth",      "tiff:ImageLength",
    "tiff:XResolution",       "tiff:YResolution",     "tiff:ResolutionUnit",
    "exif:PixelXDimension",   "exif:PixelYDimension", "xmp:Thumbnails",
    "xmpNote:HasExtendedXMP", // which is in segments that are not kept
};

constexpr bool IsBlank(char c) noexcept {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

constexpr auto kNowhere = std::string_view::npos;

// Where the element ends that starts with `<` at an offset; npos where it does not.
std::size_t ElementEnd(std::string_view text, std::size_t start, std::string_view name) {
    const std::size_t tagEnd = text.find('>', start);
    if (tagEnd == kNowhere || text[tagEnd - 1] == '/') {
        return tagEnd == kNowhere ? kNowhere : tagEnd + 1;
    }
    std::size_t close = text.find("</", tagEnd);
    while (close != kNowhere && text.substr(close + 2, name.size()) != name) {
        close = text.find("</", close + 2);
    }
    const std::size_t end = close == kNowhere ? kNowhere : text.find('>', close);
    return end == kNowhere ? kNowhere : end + 1;
}

// Where the attribute ends whose name ends at an offset.
std::size_t AttributeEnd(std::string_view text, std::size_t nameEnd) {
    std::size_t at = nameEnd;
    while (at < text.size() && (IsBlank(text[at]) || text[at] == '=')) {
        ++at;
    }
    if (at >= text.size() || (text[at] != '"' && text[at] != '\'')) {
        return kNowhere;
    }
    const std::size_t quote = text.find(text[at], at + 1);
    return quote == kNowhere ? kNowhere : quote + 1;
}

// False where the packet is damaged.
bool TakeOut(std::string_view name, ByteBuffer& xmp) {
    const std::string_view text(reinterpret_cast<const char*>(xmp.data()), xmp.size());
    for (std::size_t at = text.find(name); at != kNowhere; at = text.find(name, at + 1)) {
        const char before = at == 0 ? '\0' : text[at - 1];
        const std::size_t nameEnd = at + name.size();
        const char after = nameEnd < text.size() ? text[nameEnd] : '\0';
        const bool wholeName = IsBlank(after) || after == '=' || after == '>' || after == '/';
        if (!wholeName || (before != '<' && !IsBlank(before))) {
            continue;
        }
        const std::size_t from = before == '<' ? at - 1 : at;
        const std::size_t end = before == '<' ? ElementEnd(text, from, name) : AttributeEnd(text, nameEnd);
        if (end == kNowhere) {
            return false;
        }
        std::fill(xmp.begin() + static_cast<std::ptrdiff_t>(from),
                  xmp.begin() + static_cast<std::ptrdiff_t>(end), std::uint8_t{' '});
    }
    return true;
}

} // namespace

ByteBuffer WithoutPictureClaims(ByteView xmp) {
    constexpr std::string_view kRoot = "rdf:RDF"; // that any packet has
    if (xmp.size() > kLargestXmp ||
        std::search(xmp.begin(), xmp.end(), kRoot.begin(), kRoot.end()) == xmp.end()) {
        return {};
    }
    ByteBuffer kept(xmp.begin(), xmp.end());
    const bool whole = std::all_of(kClaims.begin(), kClaims.end(),
                                   [&](std::string_view name) { return TakeOut(name, kept); });
    return whole ? kept : ByteBuffer{};
}

} // namespace pictorel::codecs
