// Puts faults of JPEG files right, see JpegMend.h.
#include "picture/codecs/jpeg/JpegMend.h"

#include "picture/codecs/ByteReader.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace pictorel::codecs {
namespace {

constexpr std::size_t kHeightInFrame = 1; // behind the number of bits
constexpr std::array kFrames{0xC0, 0xC1, 0xC2, 0xC9, 0xCA};

// Of the marker behind the first scan that tells the height (ISO/IEC 10918-1, B.2.5); 0 where there is none.
int HeightBehindScan(ByteView file, std::size_t from) noexcept {
    constexpr std::array<std::uint8_t, 4> kNumberOfLines{0xFF, 0xDC, 0, 4};
    const auto rest = Slice(file, from);
    const auto found = std::search(rest.begin(), rest.end(), kNumberOfLines.begin(), kNumberOfLines.end());
    return BigEndian16(rest, static_cast<std::size_t>(found - rest.begin()) + kNumberOfLines.size());
}

// The segment of the frame that has no height.
const JpegSegment* FrameWithoutHeight(const std::vector<JpegSegment>& segments) noexcept {
    const auto found = std::find_if(segments.begin(), segments.end(), [](const JpegSegment& s) {
        return std::find(kFrames.begin(), kFrames.end(), s.marker) != kFrames.end() &&
               s.payload.size() > kHeightInFrame + 1 && BigEndian16(s.payload, kHeightInFrame) == 0;
    });
    return found == segments.end() ? nullptr : &*found;
}

bool HasRestartMarker(ByteView scan) noexcept {
    for (std::size_t i = 0; i + 1 < scan.size(); ++i) {
        const auto* const next =
            static_cast<const std::uint8_t*>(std::memchr(scan.data() + i, 0xFF, scan.size() - 1 - i));
        if (next == nullptr) {
            return false;
        }
        if (next[1] >= jpeg::kRestart0 && next[1] < jpeg::kStartOfImage) {
            return true;
        }
        i = static_cast<std::size_t>(next - scan.data());
    }
    return false;
}

} // namespace

std::optional<ByteBuffer> MendedJpeg(ByteView file, const std::vector<JpegSegment>& segments) {
    if (segments.empty()) {
        return {};
    }
    const std::size_t start = segments.front().offset;
    const JpegSegment* const frame = FrameWithoutHeight(segments);
    const int height = frame == nullptr ? 0 : HeightBehindScan(file, segments.back().end());
    if (start == jpeg::kMarkerBytes && height == 0) {
        return {};
    }
    ByteBuffer mended{0xFF, jpeg::kStartOfImage};
    mended.insert(mended.end(), file.begin() + static_cast<std::ptrdiff_t>(start), file.end());
    if (height != 0) {
        const std::size_t at = frame->offset - start + jpeg::kMarkerBytes + jpeg::kMarkerBytes +
                               jpeg::kLengthBytes + kHeightInFrame;
        mended[at] = static_cast<std::uint8_t>(height >> 8);
        mended[at + 1] = static_cast<std::uint8_t>(height & 0xFF);
    }
    return mended;
}

std::optional<ByteBuffer> WithoutRestartInterval(ByteView file, const std::vector<JpegSegment>& segments) {
    const auto interval = std::find_if(segments.begin(), segments.end(), [](const JpegSegment& s) {
        return s.marker == jpeg::kRestartInterval && s.payload.size() == 2 && BigEndian16(s.payload, 0) != 0;
    });
    if (interval == segments.end() || HasRestartMarker(Slice(file, segments.back().end()))) {
        return {};
    }
    ByteBuffer without(file.begin(), file.end());
    const auto from = without.begin() + static_cast<std::ptrdiff_t>(interval->offset);
    without.erase(from, from + static_cast<std::ptrdiff_t>(interval->end() - interval->offset));
    return without;
}

} // namespace pictorel::codecs
