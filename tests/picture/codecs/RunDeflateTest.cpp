// Runs and Huffman codes: zlib unpacks what was packed, whatever the bytes are.
#include "picture/codecs/RunDeflate.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <bit>
#include <utility>

namespace pictorel::codecs {
namespace {

ByteBuffer Inflated(ByteView packed, std::size_t size) {
    ByteBuffer out(size + 1);
    z_stream stream{};
    EXPECT_EQ(inflateInit2(&stream, -15), Z_OK);
    stream.next_in = const_cast<Bytef*>(packed.data());
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = out.data();
    stream.avail_out = static_cast<uInt>(out.size());
    EXPECT_EQ(inflate(&stream, Z_FINISH), Z_STREAM_END);
    EXPECT_EQ(stream.avail_in, 0U);
    out.resize(stream.total_out);
    inflateEnd(&stream);
    return out;
}

void ExpectComesBack(const ByteBuffer& data) {
    EXPECT_EQ(Inflated(DeflateRuns(data, true), data.size()), data);
    ByteBuffer pieces = DeflateRuns(data, false);
    const ByteBuffer last = DeflateRuns(data, true);
    pieces.insert(pieces.end(), last.begin(), last.end());
    ByteBuffer twice = data;
    twice.insert(twice.end(), data.begin(), data.end());
    EXPECT_EQ(Inflated(pieces, twice.size()), twice);
}

TEST(RunDeflate, ComesBack) {
    std::uint32_t random = 1;
    const auto next = [&random] { return (random = random * 1664525 + 1013904223) >> 8; };
    enum Kind { kZeros, kNoise, kTwoValues, kRuns, kSkewed, kKinds };
    // About the lengths of runs and of blocks.
    for (const std::size_t size : {0, 1, 3, 4, 5, 257, 258, 259, 260, 261, 517, 32768, 32769, 200000}) {
        for (int kind = 0; kind < kKinds; ++kind) {
            ByteBuffer data(size);
            for (std::size_t i = 0; i < size; ++i) {
                const std::uint32_t value = next();
                const std::uint32_t byte =
                    kind == kZeros       ? 0
                    : kind == kNoise     ? value
                    : kind == kTwoValues ? value & 1
                    : kind == kRuns && i > 0 && value % 30 != 0
                        ? data[i - 1]
                        : static_cast<std::uint32_t>(std::countr_zero(next() | 1U << 20));
                data[i] = static_cast<std::uint8_t>(byte);
            }
            SCOPED_TRACE(size);
            ExpectComesBack(data);
        }
    }
}

// Counts that grow as Fibonacci's numbers ask for codes longer than the format has.
TEST(RunDeflate, CodesAreCutToTheLongest) {
    ByteBuffer data;
    std::size_t count = 1;
    std::size_t following = 1;
    for (int symbol = 0; symbol < 21; ++symbol) {
        data.insert(data.end(), count, static_cast<std::uint8_t>(symbol * 11));
        count = std::exchange(following, count + following);
    }
    std::uint32_t random = 1;
    for (std::size_t i = data.size(); i-- > 1;) {
        random = random * 1664525 + 1013904223;
        std::swap(data[i], data[(random >> 8) % (i + 1)]);
    }
    ExpectComesBack(data);
}

TEST(RunDeflate, RunsTakeNextToNothing) {
    EXPECT_LT(DeflateRuns(ByteBuffer(1000000), true).size(), 2000U);
}

} // namespace
} // namespace pictorel::codecs
