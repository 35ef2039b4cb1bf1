// Where a kernel writes the pixels of a result's row; included once for each kind of vectors.
#if defined(PICTOREL_ROW_WRITER_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef PICTOREL_ROW_WRITER_INL_H
#undef PICTOREL_ROW_WRITER_INL_H
#else
#define PICTOREL_ROW_WRITER_INL_H
#endif

#include "picture/engine/kernels/base/Streaming.h"

#include <hwy/cache_control.h>
#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {

using RowBytes = hwy::HWY_NAMESPACE::Vec<hwy::HWY_NAMESPACE::ScalableTag<std::uint8_t>>;

// Results of long rows go past the cache, since a picture that has them is larger than it; those of short
// ones, which a preview shows right away, stay there.
class RowWriter {
  public:
    RowWriter(std::uint8_t* out, int width) : RowWriter(out, width >= kStreamedWidth) {}
    // `ahead`: a row of the picture that is read soon, fetched meanwhile; or null.
    RowWriter(std::uint8_t* out, bool streams, const std::uint8_t* ahead = nullptr)
        : out_(out), ahead_(ahead), streams_(streams) {}
    ~RowWriter() {
        if (streams_) {
            hwy::FlushStream();
        }
    }
    RowWriter(const RowWriter&) = delete;
    RowWriter& operator=(const RowWriter&) = delete;

    HWY_INLINE void Write(RowBytes pixels, std::size_t at) const {
        namespace hn = hwy::HWY_NAMESPACE;
        const hn::ScalableTag<std::uint8_t> bytes;
        if (ahead_ != nullptr) {
            FetchAhead(ahead_ + at);
        }
        if (streams_) {
            hn::Stream(pixels, bytes, out_ + at);
        } else {
            hn::Store(pixels, bytes, out_ + at);
        }
    }

  private:
    static constexpr int kStreamedWidth = 2048;

    std::uint8_t* out_;
    const std::uint8_t* ahead_;
    bool streams_;
};

} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
