// Decodes JPEG data through libjpeg, see JpegDecoder.h.
#include "picture/codecs/jpeg/JpegDecoder.h"

#include "picture/Limits.h"
#include "picture/codecs/jpeg/JpegLibrary.h"
#include "picture/codecs/jpeg/JpegPlanes.h"
#include "picture/codecs/jpeg/JpegSegments.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

namespace pictorel::codecs {
namespace {

// A progressive file costs a pass over the whole picture for every scan, however small the scan is. Real
// files have a dozen.
constexpr int kMaximumScans = 500;
constexpr std::int64_t kMaximumScannedPixels = std::int64_t{32} << 30;

// What the library may take for the coefficients of a progressive picture.
constexpr auto kMaximumLibraryMemory = static_cast<long>(
    std::min(std::int64_t{4} << 30, static_cast<std::int64_t>(std::numeric_limits<long>::max())));

constexpr std::array<JOCTET, 2> kEndOfImage{0xFF, JPEG_EOI};

struct Session;
Session& SessionOf(j_common_ptr library) noexcept {
    return *static_cast<Session*>(library->client_data);
}

// One decoding. Plain data with a destructor: what steps under Guarded() work on.
struct Session {
    jpeg_decompress_struct jpeg{};
    JpegErrors errors{};
    jpeg_source_mgr source{};
    jpeg_progress_mgr progress{};
    std::array<ByteView, 2> parts;
    std::size_t nextPart = 0;
    const JpegTarget* target = nullptr;
    bool inPlanes = false; // components come one by one, into `planes`
    JpegPlanes planes;
    int lostRow = -1; // row of MCUs from which the first coefficients are missing, -1 while none are
    int lostScan = 0;
    bool exhausted = false;
    bool tooManyScans = false;

    Session(const JpegStream& stream, const JpegTarget* rows);
    ~Session() { jpeg_destroy_decompress(&jpeg); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Offset in the first part of what would be read next.
    std::size_t Position() const noexcept {
        const JOCTET* const at = source.next_input_byte;
        const bool inside = at != nullptr && nextPart == 1 && !exhausted;
        return inside ? static_cast<std::size_t>(at - parts[0].data()) : parts[0].size();
    }
};

boolean NextPart(j_decompress_ptr library) {
    Session& session = SessionOf(reinterpret_cast<j_common_ptr>(library));
    while (session.nextPart < session.parts.size()) {
        const ByteView part = session.parts[session.nextPart++];
        if (!part.empty()) {
            session.source.next_input_byte = part.data();
            session.source.bytes_in_buffer = part.size();
            return TRUE;
        }
    }
    session.exhausted = true;
    session.source.next_input_byte = kEndOfImage.data();
    session.source.bytes_in_buffer = kEndOfImage.size();
    return TRUE;
}

void Skip(j_decompress_ptr library, long bytes) {
    Session& session = SessionOf(reinterpret_cast<j_common_ptr>(library));
    auto left = static_cast<std::size_t>(std::max(bytes, 0L));
    while (left > session.source.bytes_in_buffer && !session.exhausted) {
        left -= session.source.bytes_in_buffer;
        NextPart(library);
    }
    left = std::min(left, session.exhausted ? 0 : session.source.bytes_in_buffer);
    session.source.next_input_byte += left;
    session.source.bytes_in_buffer -= left;
}

// Whether the scan being read brings the first coefficients of the first component: without them there is
// nothing to see, while a loss in later scans costs only detail or colour.
bool CarriesThePicture(const jpeg_decompress_struct& library) noexcept {
    const bool first = library.progressive_mode == 0 || (library.Ss == 0 && library.Ah == 0);
    return first && library.cur_comp_info[0] != nullptr && library.cur_comp_info[0]->component_index == 0;
}

void NoteLoss(j_common_ptr common, int level) {
    if (level >= 0) {
        return;
    }
    ++common->err->num_warnings;
    Session& session = SessionOf(common);
    if (common->err->msg_code == JWRN_HIT_MARKER && session.lostRow < 0 && CarriesThePicture(session.jpeg)) {
        session.lostRow = static_cast<int>(session.jpeg.input_iMCU_row);
        session.lostScan = session.jpeg.input_scan_number;
    }
}

// Called by the library for every row of MCUs that it reads or gives out.
void Watch(j_common_ptr common) {
    Session& session = SessionOf(common);
    jpeg_decompress_struct& library = session.jpeg;
    // The decoder found its way again at a restart marker.
    if (session.lostRow >= 0 && session.lostScan == library.input_scan_number && library.unread_marker == 0 &&
        jpeg_input_complete(&library) == FALSE) {
        session.lostRow = -1;
    }
    // An arithmetic decoder takes the end of the data for zeros, without a word. The row that met it is over.
    if (library.arith_code != 0 && session.exhausted && session.lostRow < 0 && CarriesThePicture(library)) {
        session.lostRow = std::max(static_cast<int>(library.input_iMCU_row) - 1, 0);
        session.lostScan = library.input_scan_number;
    }
    const std::int64_t pixels = static_cast<std::int64_t>(library.image_width) * library.image_height;
    if (library.input_scan_number > kMaximumScans ||
        library.input_scan_number * pixels > kMaximumScannedPixels) {
        session.tooManyScans = true;
        common->err->error_exit(common);
    }
}

Session::Session(const JpegStream& stream, const JpegTarget* rows)
    : parts{stream.head, stream.scan}, target(rows) {
    InstallJpegErrors(errors);
    errors.base.emit_message = NoteLoss;
    source.init_source = [](j_decompress_ptr) {};
    source.fill_input_buffer = NextPart;
    source.skip_input_data = Skip;
    source.resync_to_restart = jpeg_resync_to_restart;
    source.term_source = [](j_decompress_ptr) {};
    progress.progress_monitor = Watch;
}

void ReadHeader(Session& session) {
    jpeg_decompress_struct& library = session.jpeg;
    library.err = &session.errors.base;
    library.client_data = &session;
    jpeg_create_decompress(&library);
    library.mem->max_memory_to_use = kMaximumLibraryMemory;
    library.src = &session.source;
    library.progress = &session.progress;
    jpeg_read_header(&library, TRUE);
}

void ReadRows(Session& session) {
    jpeg_decompress_struct& library = session.jpeg;
    const JpegTarget& target = *session.target;
    const bool ink = library.jpeg_color_space == JCS_CMYK || library.jpeg_color_space == JCS_YCCK;
    library.out_color_space = ink ? JCS_CMYK : JCS_EXT_BGRA;
    session.inPlanes = JpegPlanes::AreNeeded(library);
    library.raw_data_out = session.inPlanes ? TRUE : FALSE;
    jpeg_start_decompress(&library);
    if (session.inPlanes) {
        return session.planes.Read(library);
    }
    constexpr int kRowsAtOnce = 16;
    while (library.output_scanline < library.output_height) {
        std::array<JSAMPROW, kRowsAtOnce> rows{};
        const auto first = static_cast<int>(library.output_scanline);
        const int count = std::min(kRowsAtOnce, target.height - first);
        for (int i = 0; i < count; ++i) {
            rows[static_cast<std::size_t>(i)] = target.rows + (first + i) * target.stride;
        }
        jpeg_read_scanlines(&library, rows.data(), static_cast<JDIMENSION>(count));
    }
}

// Where the marker segment starts in which a reader at `position` gave up.
std::size_t SegmentBefore(ByteView file, std::size_t position) noexcept {
    for (std::size_t at = std::min(position, file.size() - 1); at-- > 0;) {
        const int marker = file[at + 1];
        if (file[at] == 0xFF && marker >= jpeg::kBaseline && marker != 0xFF &&
            (marker < JPEG_RST0 || marker > JPEG_RST0 + 7)) {
            return at;
        }
    }
    return 0;
}

int GoodRows(const Session& session) noexcept {
    const jpeg_decompress_struct& library = session.jpeg;
    const int height = std::min(static_cast<int>(library.output_scanline), session.target->height);
    if (session.lostRow < 0) {
        return height;
    }
    const int mcuRow = library.max_v_samp_factor * DCTSIZE;
    // A picture of a single row of MCUs is better shown in part than not at all.
    const bool single = mcuRow >= session.target->height;
    return single ? height : std::min(height, session.lostRow * mcuRow);
}

// Huffman codes take a bit or more for each block of 8 x 8 pixels, so a file that is shorter than that has
// lost most of the picture it announces, if it ever had one. Only large sizes are looked at: a small one
// costs nothing to try.
void RefuseAbsurdSize(const jpeg_decompress_struct& library, std::size_t fileBytes) {
    constexpr std::int64_t kLarge = std::int64_t{32} << 20; // pixels
    const std::int64_t blocksPerByte = library.arith_code != 0 ? 800 : 8;
    const std::int64_t pixels = static_cast<std::int64_t>(library.image_width) * library.image_height;
    if (pixels > kLarge && pixels / DCTSIZE2 > static_cast<std::int64_t>(fileBytes) * blocksPerByte) {
        throw ImagingError(ImagingFailure::UnsupportedFormat,
                           "The JPEG file is far too short for the size that it announces.");
    }
}

struct Attempt {
    JpegOutcome outcome;
    std::size_t usableBytes; // of the head: where damage between two scans starts, its size if there is none
};

int ShownRows(const Session& session) {
    const int rows = GoodRows(session);
    if (session.inPlanes) {
        session.planes.Show(*session.target, rows);
    }
    return rows;
}

Attempt DecodeOnce(const JpegStream& stream, const JpegTarget& target) {
    Session session(stream, &target);
    const std::size_t allBytes = stream.head.size();
    if (!Guarded(session.errors, ReadHeader, session) ||
        static_cast<int>(session.jpeg.image_width) != target.width ||
        static_cast<int>(session.jpeg.image_height) != target.height) {
        return {{0, false}, allBytes};
    }
    if (Guarded(session.errors, ReadRows, session)) {
        return {{ShownRows(session), session.errors.base.num_warnings == 0}, allBytes};
    }
    if (session.tooManyScans) {
        throw ImagingError(ImagingFailure::UnsupportedFormat, "The JPEG file has an absurd number of scans.");
    }
    const ImagingError failure = JpegFailure(session.errors);
    if (failure.Kind() != ImagingFailure::UnsupportedFormat) {
        throw failure;
    }
    const bool betweenScans = session.jpeg.output_scanline == 0 && session.jpeg.input_scan_number > 1;
    return {{ShownRows(session), false},
            betweenScans ? SegmentBefore(stream.head, session.Position()) : allBytes};
}

} // namespace

JpegInfo ReadJpegInfo(ByteView file) {
    Session session({file, {}}, nullptr);
    if (!Guarded(session.errors, ReadHeader, session)) {
        throw JpegFailure(session.errors);
    }
    const jpeg_decompress_struct& library = session.jpeg;
    CheckPictureSize(library.image_width, library.image_height);
    RefuseAbsurdSize(library, file.size());
    JpegColour colour = JpegColour::Rgb;
    switch (library.jpeg_color_space) {
        case JCS_GRAYSCALE:
            colour = JpegColour::Grey;
            break;
        case JCS_YCbCr:
        case JCS_RGB:
            break;
        case JCS_CMYK:
        case JCS_YCCK: // Adobe's programs write 255 for no ink
            colour = library.saw_Adobe_marker != 0 ? JpegColour::InkInverted : JpegColour::Ink;
            break;
        default:
            throw ImagingError(ImagingFailure::UnsupportedFormat,
                               "The colours of this JPEG file are not supported.");
    }
    return {static_cast<int>(library.image_width), static_cast<int>(library.image_height), colour};
}

JpegOutcome DecodeJpeg(const JpegStream& stream, const JpegTarget& target) {
    const Attempt first = DecodeOnce(stream, target);
    if (first.usableBytes == stream.head.size()) {
        return first.outcome;
    }
    // The scans before the damage may still make a picture.
    return {DecodeOnce({stream.head.first(first.usableBytes), {}}, target).outcome.goodRows, false};
}

} // namespace pictorel::codecs
