// Runs along a line in vectors, see HorizontalKernels.h.
#include "picture/engine/kernels/base/CubicWeights.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/warp/HorizontalKernels.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/warp/HorizontalVectors.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {
#if HWY_TARGET == HWY_SCALAR // vectors of one number: the processor has none that we know

const HorizontalKernels& VectorKernels() {
    return HorizontalKernels::Plain();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

// The four neighbours of a point fill 32 bytes: one vector, or two.
using Shorts = hn::CappedTag<std::int16_t, kCubicTaps * kPixelBytes>;
using TwoPixels = hn::FixedTag<std::int16_t, 2 * kPixelBytes>;

// `count` components, at least those of four pixels.
void MixRows(const std::uint8_t* first, std::ptrdiff_t stride, const CubicWeights& down, std::ptrdiff_t count,
             std::int16_t* mixed) {
    const Shorts shorts;
    const hn::Rebind<std::uint8_t, Shorts> bytes;
    const std::ptrdiff_t lanes = hn::Lanes(shorts);
    const auto weight0 = hn::Set(shorts, down[0]);
    const auto weight1 = hn::Set(shorts, down[1]);
    const auto weight2 = hn::Set(shorts, down[2]);
    const auto weight3 = hn::Set(shorts, down[3]);
    for (std::ptrdiff_t i = 0; i < count; i += lanes) {
        i = std::min(i, count - lanes); // what is written twice is the same twice
        const auto product = [&](int k, auto weight) HWY_ATTR {
            const auto level = hn::PromoteTo(shorts, hn::LoadU(bytes, first + k * stride + i));
            return hn::MulFixedPoint15(hn::ShiftLeft<kMixedBits + 1>(level), weight);
        };
        const auto sum = hn::Add(hn::Add(product(0, weight0), product(1, weight1)),
                                 hn::Add(product(2, weight2), product(3, weight3)));
        hn::StoreU(sum, shorts, mixed + i);
    }
}

// The weighted neighbours of a point: pixels 0 and 2 added up, then 1 and 3.
template <class D>
HWY_INLINE hn::Vec<TwoPixels> WeightedPixels(D shorts, const std::int16_t* neighbours,
                                             const CubicWeights& across) {
    alignas(32) static constexpr std::uint8_t kOrder[32] = {0, 1, 0, 1, 0, 1, 0, 1, 2, 3, 2, 3, 2, 3, 2, 3,
                                                            4, 5, 4, 5, 4, 5, 4, 5, 6, 7, 6, 7, 6, 7, 6, 7};
    const hn::Repartition<std::uint8_t, D> bytes;
    std::int64_t all;
    std::memcpy(&all, across.data(), sizeof all);
    const auto weights = hn::BitCast(bytes, hn::Set(hn::Repartition<std::int64_t, D>(), all));
    const auto product = [&](int i) HWY_ATTR {
        const std::ptrdiff_t lanes = hn::Lanes(shorts);
        const auto order = hn::Load(bytes, kOrder + 2 * lanes * i);
        return hn::MulFixedPoint15(hn::LoadU(shorts, neighbours + lanes * i),
                                   hn::BitCast(shorts, hn::TableLookupBytes(weights, order)));
    };
    if constexpr (hn::MaxLanes(D()) == kCubicTaps * kPixelBytes) {
        const auto all4 = product(0);
        return hn::Add(hn::LowerHalf(TwoPixels(), all4), hn::UpperHalf(TwoPixels(), all4));
    } else {
        return hn::Add(product(0), product(1));
    }
}

HWY_INLINE hn::Vec<TwoPixels> Levels(hn::Vec<TwoPixels> a, hn::Vec<TwoPixels> b) {
    const TwoPixels pixels;
    const hn::Repartition<std::int64_t, TwoPixels> longs;
    const auto lower = hn::InterleaveLower(longs, hn::BitCast(longs, a), hn::BitCast(longs, b));
    const auto upper = hn::InterleaveUpper(longs, hn::BitCast(longs, a), hn::BitCast(longs, b));
    const auto sum = hn::Add(hn::BitCast(pixels, lower), hn::BitCast(pixels, upper));
    return hn::ShiftRight<kMixedBits - 1>(hn::Add(sum, hn::Set(pixels, 1 << (kMixedBits - 2))));
}

void SampleHorizontal(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                      std::uint8_t* to) {
    constexpr int kTogether = 4;
    const std::ptrdiff_t left = (run.bounds.left >> kPhaseBits) - 1;
    const std::ptrdiff_t right = (run.bounds.right >> kPhaseBits) + kCubicTaps - 2;
    const std::uint8_t* const first = pixels + ((run.y[0] >> kPhaseBits) - 1) * stride + left * kPixelBytes;
    const std::ptrdiff_t count = (right - left + 1) * kPixelBytes;
    HWY_ALIGN std::int16_t mixed[kHorizontalWidth * kPixelBytes];
    MixRows(first, stride, WeightsAt(run.y[0]), count, mixed);
    const hn::FixedTag<std::uint8_t, 2 * kPixelBytes> half;
    const hn::FixedTag<std::uint8_t, kTogether * kPixelBytes> bytes;
    for (int i = 0; i < run.count; i += kTogether) {
        const auto weighted = [&](int k) HWY_ATTR {
            const std::int32_t x = run.x[std::min(i + k, run.count - 1)];
            return WeightedPixels(Shorts(), mixed + ((x >> kPhaseBits) - 1 - left) * kPixelBytes,
                                  WeightsAt(x));
        };
        const auto lower = hn::DemoteTo(half, Levels(weighted(0), weighted(1)));
        const auto upper = hn::DemoteTo(half, Levels(weighted(2), weighted(3)));
        const auto four = hn::Combine(bytes, upper, lower);
        if (i + kTogether <= run.count) {
            hn::StoreU(four, bytes, to + i * kPixelBytes);
        } else {
            std::uint8_t last[kTogether * kPixelBytes];
            hn::StoreU(four, bytes, last);
            std::memcpy(to + i * kPixelBytes, last, static_cast<std::size_t>(run.count - i) * kPixelBytes);
        }
    }
}

const HorizontalKernels& VectorKernels() {
    static constexpr HorizontalKernels kKernels{
        .SampleHorizontal = SampleHorizontal,
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

const HorizontalKernels& HorizontalKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
