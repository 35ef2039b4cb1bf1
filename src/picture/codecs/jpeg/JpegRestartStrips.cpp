// Cuts the scan of a JPEG file at its restart markers, see JpegRestartStrips.h.
#include "picture/codecs/jpeg/JpegRestartStrips.h"

#include "picture/ForEachBand.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>
#include <optional>

namespace pictorel::codecs {
namespace {

constexpr int kBlock = 8;         // pixels a side
constexpr int kStripsWanted = 16; // enough to keep the cores evenly busy
constexpr int kLeastStripPixels = 64 << 10;
constexpr int kRestartNumbers = 8;

struct Frame {
    int width = 0;
    int height = 0;
    int mcusPerRow = 0;
    int mcuRows = 0;
    int restartInterval = 0;      // in MCUs
    std::size_t heightOffset = 0; // in the file
};

int Big16(ByteView bytes, std::size_t at) noexcept {
    return bytes[at] << 8 | bytes[at + 1];
}

// The layout of the frame, if it is one that can be cut.
std::optional<Frame> ReadFrame(const std::vector<JpegSegment>& segments) {
    Frame frame;
    int components = 0;
    int widestSampling = 1;
    for (const JpegSegment& segment : segments) {
        const ByteView data = segment.payload;
        if (segment.marker == jpeg::kBaseline || segment.marker == jpeg::kExtendedSequential) {
            constexpr std::size_t kFixed = 6; // precision, height, width, number of components
            constexpr std::size_t kPerComponent = 3;
            if (components != 0 || data.size() < kFixed || data.size() != kFixed + data[5] * kPerComponent) {
                return {};
            }
            components = data[5];
            frame.height = Big16(data, 1);
            frame.width = Big16(data, 3);
            frame.heightOffset = segment.offset + jpeg::kMarkerBytes + jpeg::kLengthBytes + 1;
            for (int i = 0; i < components; ++i) {
                const int sampling = data[kFixed + static_cast<std::size_t>(i) * kPerComponent + 1];
                widestSampling = std::max(widestSampling, sampling >> 4);
                if ((sampling & 0x0F) != 1) {
                    return {};
                }
            }
        } else if (segment.marker == jpeg::kRestartInterval && data.size() == 2) {
            frame.restartInterval = Big16(data, 0);
        }
    }
    const bool oneScan = !segments.empty() && segments.back().marker == jpeg::kStartOfScan &&
                         !segments.back().payload.empty() && segments.back().payload[0] == components;
    if (!oneScan || components == 0 || frame.width == 0 || frame.height == 0 || frame.restartInterval == 0) {
        return {};
    }
    // The MCU of a scan with a single component is one block, whatever its sampling.
    const int mcuWidth = components == 1 ? kBlock : kBlock * widestSampling;
    frame.mcusPerRow = (frame.width + mcuWidth - 1) / mcuWidth;
    frame.mcuRows = (frame.height + kBlock - 1) / kBlock;
    return frame;
}

struct FoundMarker {
    std::size_t offset;
    std::uint8_t code;
};

// All markers in entropy-coded data, found on all cores.
std::vector<FoundMarker> FindMarkers(ByteView scan) {
    constexpr std::size_t kPiece = std::size_t{1} << 20;
    const std::size_t pieces = (scan.size() + kPiece - 1) / kPiece;
    std::vector<std::vector<FoundMarker>> found(pieces);
    ForEachBand(static_cast<int>(pieces), kPiece, [&](int first, int end) {
        for (auto piece = static_cast<std::size_t>(first); piece < static_cast<std::size_t>(end); ++piece) {
            const std::uint8_t* at = scan.data() + piece * kPiece;
            const std::uint8_t* const last = scan.data() + std::min((piece + 1) * kPiece, scan.size() - 1);
            while (at < last) {
                at = static_cast<const std::uint8_t*>(
                    std::memchr(at, 0xFF, static_cast<std::size_t>(last - at)));
                if (at == nullptr) {
                    break;
                }
                if (at[1] != 0) {
                    found[piece].push_back({static_cast<std::size_t>(at - scan.data()), at[1]});
                }
                ++at;
            }
        }
    });
    std::vector<FoundMarker> all;
    for (const auto& piece : found) {
        all.insert(all.end(), piece.begin(), piece.end());
    }
    return all;
}

// Whether the scan consists of exactly so many intervals with restart markers in their order between them.
bool RestartsAreInOrder(const std::vector<FoundMarker>& markers, std::size_t intervals) {
    if (markers.size() < intervals) { // the last is followed by the end of the image
        return false;
    }
    for (std::size_t i = 0; i + 1 < intervals; ++i) {
        if (markers[i].code != jpeg::kRestart0 + static_cast<int>(i % kRestartNumbers)) {
            return false;
        }
    }
    return markers[intervals - 1].code == jpeg::kEndOfImage;
}

ByteBuffer HeadWithoutMetadata(ByteView file, const std::vector<JpegSegment>& segments, const Frame& frame,
                               std::size_t& heightOffset) {
    ByteBuffer head{0xFF, jpeg::kStartOfImage};
    for (const JpegSegment& segment : segments) {
        const bool application = segment.marker >= jpeg::kApp0 && segment.marker <= jpeg::kApp0 + 15;
        const bool tellsColours = segment.marker == jpeg::kApp0 || segment.marker == jpeg::kApp14;
        if ((application && !tellsColours) || segment.marker == jpeg::kComment) {
            continue;
        }
        if (frame.heightOffset > segment.offset && frame.heightOffset < segment.end()) {
            heightOffset = head.size() + frame.heightOffset - segment.offset;
        }
        const ByteView bytes = file.subspan(segment.offset, segment.end() - segment.offset);
        head.insert(head.end(), bytes.begin(), bytes.end());
    }
    return head;
}

} // namespace

ByteBuffer JpegStripPlan::HeadFor(int rows) const {
    ByteBuffer patched = head;
    patched[heightOffset] = static_cast<std::uint8_t>(rows >> 8);
    patched[heightOffset + 1] = static_cast<std::uint8_t>(rows & 0xFF);
    return patched;
}

JpegStripPlan PlanStrips(ByteView file, const std::vector<JpegSegment>& segments) {
    const std::optional<Frame> frame = ReadFrame(segments);
    if (!frame || segments.back().end() >= file.size()) {
        return {};
    }
    // A strip holds whole rows of MCUs and whole rounds of restart numbers, so that its markers count from 0.
    const int common = std::gcd(frame->restartInterval, frame->mcusPerRow);
    const int rowsToAMarker = frame->restartInterval / common; // rows until one starts at a marker
    const int intervals = frame->mcusPerRow / common;          // in so many rows
    const int period = rowsToAMarker * (kRestartNumbers / std::gcd(intervals, kRestartNumbers));
    const int leastRows = kLeastStripPixels / kBlock / std::max(frame->width, 1) + 1;
    const int rowsWanted = std::max({frame->mcuRows / kStripsWanted, leastRows, 1});
    const int rowsPerStrip = (rowsWanted + period - 1) / period * period;
    if (rowsPerStrip >= frame->mcuRows) {
        return {};
    }
    const ByteView scan = file.subspan(segments.back().end());
    const std::vector<FoundMarker> markers = FindMarkers(scan);
    const auto intervalsBefore = [&](int mcuRow) {
        const auto mcus = static_cast<std::size_t>(mcuRow) * static_cast<std::size_t>(frame->mcusPerRow);
        const auto interval = static_cast<std::size_t>(frame->restartInterval);
        return (mcus + interval - 1) / interval;
    };
    if (!RestartsAreInOrder(markers, intervalsBefore(frame->mcuRows))) {
        return {};
    }
    JpegStripPlan plan;
    plan.head = HeadWithoutMetadata(file, segments, *frame, plan.heightOffset);
    for (int row = 0; row < frame->mcuRows; row += rowsPerStrip) {
        const int end = std::min(row + rowsPerStrip, frame->mcuRows);
        const std::size_t interval = intervalsBefore(row);
        const std::size_t from = interval == 0 ? 0 : markers[interval - 1].offset + jpeg::kMarkerBytes;
        const std::size_t to = markers[intervalsBefore(end) - 1].offset;
        plan.strips.push_back({row * kBlock, std::min(end * kBlock, frame->height) - row * kBlock,
                               scan.subspan(from, to - from)});
    }
    return plan;
}

} // namespace pictorel::codecs
