// Walks and makes JPEG marker segments, see JpegSegments.h.
#include "picture/codecs/jpeg/JpegSegments.h"

#include "picture/codecs/Exif.h"
#include "picture/codecs/Xmp.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace pictorel::codecs {
namespace {

constexpr std::string_view kExifSignature("Exif\0\0", 6);
constexpr std::string_view kXmpSignature("http://ns.adobe.com/xap/1.0/\0", 29);
constexpr std::string_view kIccSignature("ICC_PROFILE\0", 12);
constexpr std::string_view kJfifSignature("JFIF\0", 5);
constexpr std::size_t kIccCounters = 2; // number of the chunk, from 1, and number of chunks

std::size_t Big16(ByteView bytes, std::size_t at) noexcept {
    return static_cast<std::size_t>(bytes[at]) << 8 | bytes[at + 1];
}

bool StandsAlone(int marker) noexcept { // a marker without a length
    return marker == 0x01 || (marker >= jpeg::kRestart0 && marker <= jpeg::kEndOfImage);
}

ByteBuffer AssembledProfile(const std::vector<JpegSegment>& segments) {
    std::vector<ByteView> chunks;
    std::size_t found = 0;
    for (const JpegSegment& segment : segments) {
        const ByteView chunk = PayloadAfter(segment, jpeg::kApp2, kIccSignature);
        if (chunk.size() < kIccCounters) {
            continue;
        }
        const std::size_t number = chunk[0];
        const std::size_t count = chunk[1];
        if (chunks.empty()) {
            chunks.resize(count);
        }
        if (count != chunks.size() || number < 1 || number > count || !chunks[number - 1].empty()) {
            return {};
        }
        chunks[number - 1] = chunk.subspan(kIccCounters);
        ++found;
    }
    if (found != chunks.size()) {
        return {};
    }
    ByteBuffer profile;
    for (const ByteView chunk : chunks) {
        profile.insert(profile.end(), chunk.begin(), chunk.end());
    }
    return profile;
}

// The first such payload.
ByteView FindPayload(const std::vector<JpegSegment>& segments, int marker,
                     std::string_view signature) noexcept {
    for (const JpegSegment& segment : segments) {
        if (const ByteView found = PayloadAfter(segment, marker, signature); !found.empty()) {
            return found;
        }
    }
    return {};
}

Resolution JfifResolution(const std::vector<JpegSegment>& segments) {
    constexpr double kCentimetresPerInch = 2.54;
    const ByteView jfif = FindPayload(segments, jpeg::kApp0, kJfifSignature);
    if (jfif.size() < 7) { // version, unit, two densities
        return {};
    }
    const int unit = jfif[2]; // 0 is a mere aspect ratio
    const double perInch = unit == 1 ? 1.0 : unit == 2 ? kCentimetresPerInch : 0.0;
    return {static_cast<double>(Big16(jfif, 3)) * perInch, static_cast<double>(Big16(jfif, 5)) * perInch};
}

void Append(ByteBuffer& bytes, std::string_view text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
}

// A block that is in one segment or, being too long, in none.
void AppendBlock(std::vector<JpegMarker>& markers, std::string_view signature, ByteView block) {
    if (!block.empty() && block.size() <= jpeg::kMaximumPayload - signature.size()) {
        ByteBuffer& payload = markers.emplace_back(JpegMarker{jpeg::kApp1, {}}).payload;
        Append(payload, signature);
        payload.insert(payload.end(), block.begin(), block.end());
    }
}

} // namespace

std::vector<JpegSegment> JpegSegments(ByteView file) {
    std::vector<JpegSegment> segments;
    std::size_t at = 0;
    while (true) {
        while (at < file.size() && file[at] != 0xFF) {
            ++at;
        }
        while (at + 1 < file.size() && file[at + 1] == 0xFF) { // fill bytes
            ++at;
        }
        if (file.size() < jpeg::kMarkerBytes || at > file.size() - jpeg::kMarkerBytes) {
            return segments;
        }
        const int marker = file[at + 1];
        const std::size_t offset = at;
        at += jpeg::kMarkerBytes;
        if (marker == jpeg::kEndOfImage) {
            return segments;
        }
        if (marker == 0 || StandsAlone(marker)) {
            continue;
        }
        if (file.size() - at < jpeg::kLengthBytes) {
            return segments;
        }
        const std::size_t length = Big16(file, at);
        if (length < jpeg::kLengthBytes || length > file.size() - at) {
            return segments;
        }
        segments.push_back(
            {marker, offset, file.subspan(at + jpeg::kLengthBytes, length - jpeg::kLengthBytes)});
        at += length;
        if (marker == jpeg::kStartOfScan) {
            return segments;
        }
    }
}

ByteView PayloadAfter(const JpegSegment& segment, int marker, std::string_view signature) noexcept {
    const bool fits = segment.marker == marker && segment.payload.size() >= signature.size() &&
                      std::memcmp(segment.payload.data(), signature.data(), signature.size()) == 0;
    return fits ? segment.payload.subspan(signature.size()) : ByteView{};
}

Metadata JpegMetadata(const std::vector<JpegSegment>& segments) {
    const ByteView exif = FindPayload(segments, jpeg::kApp1, kExifSignature);
    const Resolution jfif = JfifResolution(segments);
    const Resolution fromExif = ExifResolution(exif);
    const bool known = fromExif.dotsPerInchX > 0 && fromExif.dotsPerInchY > 0;
    Metadata details;
    details.exif.assign(exif.begin(), exif.end());
    details.xmp = WithoutPictureClaims(FindPayload(segments, jpeg::kApp1, kXmpSignature));
    details.icc = AssembledProfile(segments);
    details.dotsPerInchX = known ? fromExif.dotsPerInchX : jfif.dotsPerInchX;
    details.dotsPerInchY = known ? fromExif.dotsPerInchY : jfif.dotsPerInchY;
    return details;
}

std::vector<JpegMarker> MetadataMarkers(const PixelArray& picture) {
    const Metadata& details = picture.Details();
    std::vector<JpegMarker> markers;
    AppendBlock(markers, kExifSignature, WithPictureSize(details.exif, picture.Width(), picture.Height()));
    AppendBlock(markers, kXmpSignature, details.xmp);
    constexpr std::size_t kChunk = jpeg::kMaximumPayload - kIccSignature.size() - kIccCounters;
    const std::size_t chunks = (details.icc.size() + kChunk - 1) / kChunk;
    if (chunks > 255) {
        return markers; // more than the counters can tell
    }
    for (std::size_t i = 0; i < chunks; ++i) {
        JpegMarker& icc = markers.emplace_back(JpegMarker{jpeg::kApp2, {}});
        Append(icc.payload, kIccSignature);
        icc.payload.push_back(static_cast<std::uint8_t>(i + 1));
        icc.payload.push_back(static_cast<std::uint8_t>(chunks));
        const auto first = details.icc.begin() + static_cast<std::ptrdiff_t>(i * kChunk);
        icc.payload.insert(
            icc.payload.end(), first,
            first + static_cast<std::ptrdiff_t>(std::min(kChunk, details.icc.size() - i * kChunk)));
    }
    return markers;
}

} // namespace pictorel::codecs
