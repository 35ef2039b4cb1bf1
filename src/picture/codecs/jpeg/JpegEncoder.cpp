// Encodes pictures through libjpeg in strips, see JpegEncoder.h.
#include "picture/codecs/jpeg/JpegEncoder.h"

#include "picture/BufferPool.h"
#include "picture/ForEachBand.h"
#include "picture/codecs/jpeg/JpegLibrary.h"
#include "picture/codecs/jpeg/JpegWorkingTables.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <span>

namespace pictorel::codecs {
namespace {

constexpr int kBlock = 8; // pixels a side
// Restart markers count to eight: strips of eight rows of blocks all begin with the same number, so that
// their bytes need no change.
constexpr int kStripRows = 8 * kBlock;

// More than the bytes that a strip can become: no code for a coefficient has more than 16 bits, no value more
// than 11, and a byte of ones takes a second.
std::size_t StripBound(int width) noexcept {
    constexpr std::size_t kBytesPerSample = 2 * (16 + 11) / 8 + 1;
    constexpr std::size_t kHeader = 4096;
    const auto blocks = static_cast<std::size_t>((width + kBlock - 1) / kBlock);
    return blocks * kBlock * kStripRows * 3 * kBytesPerSample + kHeader;
}

// What all strips of a file have in common.
struct Job {
    const PixelArray& picture;
    const JpegSettings& settings;
    const WorkingTables* tables; // null: those of the JPEG standard
};

struct Session {
    jpeg_compress_struct jpeg{};
    JpegErrors errors{};
    jpeg_destination_mgr destination{};
    const Job& job;
    std::span<const JpegMarker> markers; // of this strip
    std::uint8_t* overWhite;             // room for kBlock rows, or null where pixels are taken as they are
    int firstRow;
    int rows;

    ~Session() { jpeg_destroy_compress(&jpeg); }
};

template <class Table>
void UseTable(JHUFF_TBL& table, const Table& ours) {
    std::copy(ours.codesOfLength.begin(), ours.codesOfLength.end(), table.bits + 1);
    std::copy(ours.symbols.begin(), ours.symbols.end(), table.huffval);
}

// The tables that suit the picture, judged by how much green changes from pixel to pixel in a few rows.
const WorkingTables& TablesFor(const PixelArray& picture) noexcept {
    constexpr int kRowStep = 64;
    constexpr std::int64_t kGrainyStep = 4; // levels, on average
    std::int64_t steps = 0;
    std::int64_t pairs = 0;
    for (int y = 0; y < picture.Height(); y += kRowStep) {
        const std::uint8_t* green = picture.Row(y) + 1;
        for (int x = 1; x < picture.Width(); ++x, green += PixelArray::kComponents) {
            steps += std::abs(int{green[PixelArray::kComponents]} - int{green[0]});
            ++pairs;
        }
    }
    return steps < kGrainyStep * pairs ? kSoftTables : kGrainyTables;
}

void SetUp(Session& session) {
    jpeg_compress_struct& library = session.jpeg;
    library.image_width = static_cast<JDIMENSION>(session.job.picture.Width());
    library.image_height = static_cast<JDIMENSION>(session.rows);
    library.input_components = PixelArray::kComponents;
    library.in_color_space = JCS_EXT_BGRX;
    jpeg_set_defaults(&library);
    const bool plainRgb = session.job.settings.pixels == JpegPixels::AsTheyAre;
    jpeg_set_colorspace(&library, plainRgb ? JCS_RGB : JCS_YCbCr);
    jpeg_set_quality(&library, session.job.settings.quality, TRUE);
    for (int i = 0; i < library.num_components; ++i) {
        library.comp_info[i].h_samp_factor = 1;
        library.comp_info[i].v_samp_factor = 1;
    }
    library.restart_in_rows = 1;
    if (session.job.tables != nullptr) {
        UseTable(*library.dc_huff_tbl_ptrs[0], session.job.tables->dc);
        UseTable(*library.ac_huff_tbl_ptrs[0], session.job.tables->ac);
    }
    const Metadata& details = session.job.picture.Details();
    if (details.dotsPerInchX > 0 && details.dotsPerInchY > 0) {
        const auto density = [](double dotsPerInch) {
            return static_cast<UINT16>(std::lround(std::clamp(dotsPerInch, 1.0, 65535.0)));
        };
        library.density_unit = 1;
        library.X_density = density(details.dotsPerInchX);
        library.Y_density = density(details.dotsPerInchY);
    }
}

void LayOverWhite(const std::uint8_t* from, std::uint8_t* to, int pixels) noexcept {
    for (int x = 0; x < pixels; ++x, from += PixelArray::kComponents, to += PixelArray::kComponents) {
        const unsigned alpha = from[3];
        for (int i = 0; i < 3; ++i) {
            to[i] = static_cast<std::uint8_t>((from[i] * alpha + 255U * (255U - alpha) + 127U) / 255U);
        }
    }
}

void EncodeStrip(Session& session) {
    jpeg_compress_struct& library = session.jpeg;
    library.err = &session.errors.base;
    jpeg_create_compress(&library);
    library.dest = &session.destination;
    SetUp(session);
    jpeg_start_compress(&library, TRUE);
    for (const JpegMarker& marker : session.markers) {
        jpeg_write_marker(&library, marker.marker, marker.payload.data(),
                          static_cast<unsigned>(marker.payload.size()));
    }
    const auto rowBytes = session.job.picture.RowBytes();
    while (library.next_scanline < library.image_height) {
        std::array<JSAMPROW, kBlock> rows{};
        const auto first = static_cast<int>(library.next_scanline);
        const int count = std::min(kBlock, session.rows - first);
        for (int i = 0; i < count; ++i) {
            const std::uint8_t* row = session.job.picture.Row(session.firstRow + first + i);
            if (session.overWhite != nullptr) {
                std::uint8_t* const laid = session.overWhite + static_cast<std::size_t>(i) * rowBytes;
                LayOverWhite(row, laid, session.job.picture.Width());
                row = laid;
            }
            // The library only reads its input rows.
            rows[static_cast<std::size_t>(i)] = const_cast<JSAMPROW>(row);
        }
        jpeg_write_scanlines(&library, rows.data(), static_cast<JDIMENSION>(count));
    }
    jpeg_finish_compress(&library);
}

// An encoded strip, the complete file of a picture of its own.
struct EncodedStrip {
    std::shared_ptr<std::uint8_t> memory;
    std::size_t bytes = 0;
};

// Puts strips together in their order, whatever the order in which they come.
class StripJoiner {
  public:
    StripJoiner(int height, const ByteSink& sink) : height_(height), sink_(sink) {}

    // Hands on all strips whose turn it is. A thread that finds another one doing so leaves its strip to it.
    void Add(int index, EncodedStrip strip) {
        std::unique_lock lock(mutex_);
        waiting_.emplace(index, std::move(strip));
        if (handingOn_) {
            return;
        }
        handingOn_ = true;
        while (!waiting_.empty() && waiting_.begin()->first == next_) {
            const EncodedStrip first = std::move(waiting_.begin()->second);
            waiting_.erase(waiting_.begin());
            lock.unlock();
            HandOn(first);
            lock.lock();
            ++next_;
        }
        handingOn_ = false;
    }

    void Finish() {
        constexpr std::array<std::uint8_t, 2> kEnd{0xFF, jpeg::kEndOfImage};
        sink_(kEnd);
    }

  private:
    // The first strip gives the header, for the height of the whole picture; others give their scan.
    void HandOn(const EncodedStrip& strip) {
        std::uint8_t* const bytes = strip.memory.get();
        const std::vector<JpegSegment> segments = JpegSegments(ByteView(bytes, strip.bytes));
        // Without the end of the image.
        const ByteView wanted(bytes, strip.bytes - jpeg::kMarkerBytes);
        if (next_ > 0) {
            constexpr std::array<std::uint8_t, 2> kJoint{0xFF, jpeg::kRestart0 + 7};
            sink_(kJoint);
            sink_(wanted.subspan(segments.back().end()));
            return;
        }
        const auto frame = std::find_if(segments.begin(), segments.end(), [](const JpegSegment& s) {
            return s.marker == jpeg::kBaseline || s.marker == jpeg::kExtendedSequential;
        });
        if (frame != segments.end()) {
            const std::size_t heightOffset = frame->offset + jpeg::kMarkerBytes + jpeg::kLengthBytes + 1;
            bytes[heightOffset] = static_cast<std::uint8_t>(height_ >> 8);
            bytes[heightOffset + 1] = static_cast<std::uint8_t>(height_ & 0xFF);
        }
        sink_(wanted);
    }

    const int height_;
    const ByteSink& sink_;
    std::mutex mutex_;
    std::map<int, EncodedStrip> waiting_;
    int next_ = 0;
    bool handingOn_ = false;
};

EncodedStrip Encode(const Job& job, std::span<const JpegMarker> markers, int firstRow) {
    const PixelArray& picture = job.picture;
    std::size_t room = StripBound(picture.Width());
    for (const JpegMarker& marker : markers) {
        room += marker.payload.size() + jpeg::kMarkerBytes + jpeg::kLengthBytes;
    }
    EncodedStrip strip{TakeBuffer(room)};
    const bool laidOver = picture.HasAlpha() && job.settings.pixels == JpegPixels::OverWhite;
    ByteBuffer overWhite(laidOver ? picture.RowBytes() * kBlock : 0);
    Session session{.job = job,
                    .markers = markers,
                    .overWhite = laidOver ? overWhite.data() : nullptr,
                    .firstRow = firstRow,
                    .rows = std::min(kStripRows, picture.Height() - firstRow)};
    InstallJpegErrors(session.errors);
    session.destination.next_output_byte = strip.memory.get();
    session.destination.free_in_buffer = room;
    session.destination.init_destination = [](j_compress_ptr) {};
    session.destination.empty_output_buffer = [](j_compress_ptr library) -> boolean {
        ERREXIT(library, JERR_BUFFER_SIZE); // StripBound() rules it out
        return FALSE;
    };
    session.destination.term_destination = [](j_compress_ptr) {};
    if (!Guarded(session.errors, EncodeStrip, session)) {
        throw JpegFailure(session.errors);
    }
    strip.bytes = room - session.destination.free_in_buffer;
    return strip;
}

} // namespace

void EncodeJpeg(const PixelArray& picture, const JpegSettings& settings,
                const std::vector<JpegMarker>& markers, const ByteSink& sink) {
    CheckPictureSize(picture.Width(), picture.Height());
    const int strips = (picture.Height() + kStripRows - 1) / kStripRows;
    const Job job{picture, settings,
                  settings.pixels == JpegPixels::AsTheyAre ? &TablesFor(picture) : nullptr};
    StripJoiner joiner(picture.Height(), sink);
    // Strips are taken from the top down whatever band a thread is given, so that few wait for their turn.
    std::atomic<int> next = 0;
    ForEachBand(strips, kStripRows * picture.RowBytes(), [&](int first, int end) {
        for (int i = first; i < end; ++i) {
            const int strip = next.fetch_add(1);
            const std::span<const JpegMarker> own(markers.data(), strip == 0 ? markers.size() : 0);
            joiner.Add(strip, Encode(job, own, strip * kStripRows));
        }
    });
    joiner.Finish();
}

} // namespace pictorel::codecs
