// Deflating the filtered rows of a picture, see Deflate.h.
#include "picture/codecs/Deflate.h"

#include "picture/ImagingError.h"
#include "picture/codecs/ByteReader.h"
#include "picture/codecs/RunDeflate.h"

#include <zlib.h>

namespace pictorel::codecs {
namespace {

constexpr int kSampleLevel = 4;
constexpr int kLevel = 6;
constexpr std::size_t kSampleBytes = 32U << 10; // each: a whole window, so that strings show
constexpr std::size_t kSamples = 3;
constexpr double kWorthwhile = 0.95; // strings take twenty times as long

ByteBuffer DeflateStrings(int level, ByteView data, bool isLast) {
    constexpr int kLargestWindow = 15;
    constexpr int kMemoryLevel = 9;
    z_stream stream{};
    if (deflateInit2(&stream, level, Z_DEFLATED, -kLargestWindow, kMemoryLevel, Z_DEFAULT_STRATEGY) != Z_OK) {
        throw ImagingError(ImagingFailure::OutOfMemory, "There is not enough memory to save this picture.");
    }
    ByteBuffer out;
    try {
        constexpr std::size_t kFlushBytes = 16; // beyond the bound: the empty block that ends a piece
        out.resize(deflateBound(&stream, data.size()) + kFlushBytes);
    } catch (...) {
        deflateEnd(&stream);
        throw;
    }
    stream.next_in = const_cast<Bytef*>(data.data()); // zlib does not write to it
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = out.data();
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, isLast ? Z_FINISH : Z_SYNC_FLUSH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

// Pieces from all over the data: the rows of a drawing differ.
ByteBuffer Sample(ByteView data) {
    ByteBuffer sample;
    for (std::size_t i = 0; i < kSamples; ++i) {
        const ByteView piece = Slice(data, data.size() * (2 * i + 1) / (2 * kSamples), kSampleBytes);
        sample.insert(sample.end(), piece.begin(), piece.end());
    }
    return sample;
}

bool GainsByStrings(ByteView data) {
    const ByteBuffer sample = Sample(data);
    const auto runs = static_cast<double>(DeflateRuns(sample, true).size());
    const auto strings = static_cast<double>(DeflateStrings(kSampleLevel, sample, true).size());
    return strings < runs * kWorthwhile;
}

} // namespace

ByteBuffer Deflate(ByteView data, bool isLast) {
    return GainsByStrings(data) ? DeflateStrings(kLevel, data, isLast) : DeflateRuns(data, isLast);
}

} // namespace pictorel::codecs
