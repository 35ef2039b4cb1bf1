// The marker segments of a JPEG file before its first scan, and the metadata that travels in them.
#pragma once

#include "picture/codecs/Codec.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace pictorel::codecs {

namespace jpeg {
// The second byte of the markers that we look at.
inline constexpr int kRestart0 = 0xD0; // to 0xD7
inline constexpr int kStartOfImage = 0xD8;
inline constexpr int kEndOfImage = 0xD9;
inline constexpr int kStartOfScan = 0xDA;
inline constexpr int kQuantisation = 0xDB;
inline constexpr int kRestartInterval = 0xDD;
inline constexpr int kBaseline = 0xC0;           // start of frame, Huffman, 8 bits
inline constexpr int kExtendedSequential = 0xC1; // start of frame, Huffman
inline constexpr int kApp0 = 0xE0;               // JFIF
inline constexpr int kApp1 = 0xE1;               // EXIF
inline constexpr int kApp2 = 0xE2;               // ICC profile
inline constexpr int kApp11 = 0xEB;              // our own, in working files
inline constexpr int kApp14 = 0xEE;              // Adobe: how colours are coded
inline constexpr int kComment = 0xFE;

inline constexpr std::size_t kMarkerBytes = 2;
inline constexpr std::size_t kLengthBytes = 2;
inline constexpr std::size_t kMaximumPayload = 65533; // 65535 less the length itself
} // namespace jpeg

struct JpegSegment {
    int marker;         // second byte of its marker
    std::size_t offset; // of the marker in the file
    ByteView payload;   // after the length
    std::size_t end() const noexcept {
        return offset + jpeg::kMarkerBytes + jpeg::kLengthBytes + payload.size();
    }
};

// The segments up to and with the first start of scan (which is last, if the file gets that far). Garbage
// between segments is stepped over, a segment that is cut off ends the list.
std::vector<JpegSegment> JpegSegments(ByteView file);

// A segment to be written.
struct JpegMarker {
    int marker;
    ByteBuffer payload; // at most kMaximumPayload
};

// What follows this signature in the segment's payload; empty where it is of another kind.
ByteView PayloadAfter(const JpegSegment& segment, int marker, std::string_view signature) noexcept;

// What EXIF (with the orientation as stored), XMP, ICC and JFIF segments say. A profile with missing, doubled
// or contradictory chunks is left out.
Metadata JpegMetadata(const std::vector<JpegSegment>& segments);

// Segments that hold the EXIF block and the XMP packet (where they fit into one each) and the profile of a
// picture.
std::vector<JpegMarker> MetadataMarkers(const PixelArray& picture);

} // namespace pictorel::codecs
