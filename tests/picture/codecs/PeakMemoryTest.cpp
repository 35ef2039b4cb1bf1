// What opening a picture takes at most: its pixels and half as much again.
#include "picture/BufferPool.h"
#include "picture/codecs/Codec.h"
#include "support/Pictures.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace pictorel::codecs {
namespace {

constexpr double kMega = 1e6;

// Megabytes of this process by a name of its status: "VmHWM:", the most so far, or "VmRSS:", now.
double Memory(const std::string& wanted) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        double kilobytes = 0;
        if (word == wanted && status >> kilobytes) {
            return kilobytes * 1024 / kMega;
        }
    }
    return 0;
}

// What reading the picture takes beyond its pixels, in their measure.
double PeakOf(const Codec& codec, const PixelArray& made) {
    const ByteBuffer file = codec.write(made, {});
    const double pixels = static_cast<double>(made.Stride()) * made.Height() / kMega;
    TrimBufferPool();
    std::ofstream("/proc/self/clear_refs") << 5; // the most so far becomes what is now
    const double before = Memory("VmRSS:");
    const PixelArray picture = codec.read(file, {});
    return (Memory("VmHWM:") - before) / pixels;
}

TEST(PeakMemory, OfOpeningIsAtMostHalfAsMuchAgain) {
#ifdef PICTOREL_SANITIZED
    GTEST_SKIP() << "the sanitizer has memory of its own";
#endif
    // So large that one tile of a format that is read tile by tile is a small part of it.
    const PixelArray photo = test::PhotoLike({3200, 2800});
    const PixelArray huge = test::Constant({9000, 7600}, {1, 2, 3, 255});
    for (const Codec& codec : Codecs()) {
        if (codec.write != nullptr) {
            // PNG takes twice the memory for half the time while that is little.
            EXPECT_LT(PeakOf(codec, codec.name == "PNG" ? huge : photo), 1.5) << codec.name;
        }
    }
}

} // namespace
} // namespace pictorel::codecs
