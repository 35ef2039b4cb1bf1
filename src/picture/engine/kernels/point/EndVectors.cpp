// Counts at both ends of the range in vectors, see EndKernels.h: each byte of a vector counts for itself, up
// to 255.
#include "picture/PixelArray.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/point/EndKernels.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/point/EndVectors.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {
#if HWY_TARGET == HWY_SCALAR // vectors of one number: the processor has none that we know

const EndKernels& VectorKernels() {
    return EndKernels::Plain();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<std::uint8_t>;
using Pixels = hn::Repartition<std::uint32_t, Bytes>;
using ByteVector = hn::Vec<Bytes>;

// The sum of byte `kChannel` of every pixel.
template <int kChannel>
HWY_INLINE std::uint64_t SumOf(ByteVector counts) {
    const auto channel =
        hn::And(hn::ShiftRight<8 * kChannel>(hn::BitCast(Pixels(), counts)), hn::Set(Pixels(), 255));
    const hn::Repartition<std::uint64_t, Bytes> sums;
    return hn::GetLane(hn::SumOfLanes(sums, hn::SumsOf8(hn::BitCast(Bytes(), channel))));
}

void CountEnds(const std::uint8_t* row, int width, const EndLimits& limits, EndCounts& counts) {
    const Bytes bytes;
    const std::size_t lanes = hn::Lanes(bytes);
    ByteVector limit[2 * kLimitsPerEnd];
    for (std::size_t k = 0; k < limits.size(); ++k) {
        std::uint32_t pixel;
        std::memcpy(&pixel, limits[k].data(), sizeof pixel);
        limit[k] = hn::BitCast(bytes, hn::Set(Pixels(), pixel));
    }
    const auto allBits = hn::Set(bytes, 255);
    const std::size_t whole = static_cast<std::size_t>(width) * kComponents / lanes * lanes; // bytes
    for (std::size_t i = 0; i < whole;) {
        ByteVector below[2 * kLimitsPerEnd];
        std::fill(std::begin(below), std::end(below), hn::Zero(bytes));
        for (const std::size_t end = std::min(whole, i + 255 * lanes); i < end; i += lanes) {
            const auto dark = hn::Load(bytes, row + i);
            const auto bright = hn::Xor(dark, allBits);
            for (std::size_t k = 0; k < kLimitsPerEnd; ++k) {
                const std::size_t other = k + kLimitsPerEnd;
                below[k] = hn::Sub(below[k], hn::VecFromMask(bytes, hn::Lt(dark, limit[k])));
                below[other] = hn::Sub(below[other], hn::VecFromMask(bytes, hn::Lt(bright, limit[other])));
            }
        }
        for (std::size_t k = 0; k < counts.size(); ++k) {
            counts[k][0] += SumOf<0>(below[k]);
            counts[k][1] += SumOf<1>(below[k]);
            counts[k][2] += SumOf<2>(below[k]);
        }
    }
    const auto done = static_cast<int>(whole / kComponents);
    EndKernels::Plain().CountEnds(row + whole, width - done, limits, counts);
}

const EndKernels& VectorKernels() {
    static constexpr EndKernels kKernels{
        .CountEnds = CountEnds,
    };
    return kKernels;
}

#endif

} // namespace
} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine {

HWY_EXPORT(VectorKernels);

const EndKernels& EndKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
