// Convolution with a symmetric kernel in vectors, see Convolution.h.
#include "imaging/engine/Convolution.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/engine/ConvolutionSimd.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR

using scalar::Convolve;

#else

namespace hn = hwy::HWY_NAMESPACE;

using Wides = hn::ScalableTag<WideComponent>;
using Sums = hn::ScalableTag<std::int32_t>;
using WideVector = hn::Vec<Wides>;
using SumVector = hn::Vec<Sums>;

// sum + products of the lanes of `a` and `b`, those of neighbours added up in one 32-bit lane.
SumVector AddPairs(SumVector sum, WideVector a, WideVector b) {
#if HWY_ARCH_X86 && HWY_TARGET != HWY_EMU128 // elsewhere it leaves open which products go together
    SumVector unused = hn::Zero(Sums());
    return hn::ReorderWidenMulAccumulate(Sums(), a, b, sum, unused);
#else
    const auto low = [](WideVector v)
                         HWY_ATTR { return hn::ShiftRight<16>(hn::ShiftLeft<16>(hn::BitCast(Sums(), v))); };
    const auto high = [](WideVector v) HWY_ATTR { return hn::ShiftRight<16>(hn::BitCast(Sums(), v)); };
    return hn::Add(sum, hn::Add(hn::Mul(low(a), low(b)), hn::Mul(high(a), high(b))));
#endif
}

// The sums of `kVectors` neighbouring vectors, two taps at a time: interleaved, so that the products of one
// component lie next to each other.
template <std::size_t kVectors>
void ConvolveVectors(const WideComponent* in, std::ptrdiff_t step, const HalfKernel& kernel,
                     WideComponent* out) {
    const Wides wides;
    const Sums sums;
    const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(wides));
    SumVector lower[kVectors];
    SumVector upper[kVectors];
    for (std::size_t v = 0; v < kVectors; ++v) {
        lower[v] = upper[v] = hn::Set(sums, kKernelUnit / 2);
    }
    const auto both = [&](const WideComponent* centre, std::ptrdiff_t distance) HWY_ATTR {
        return hn::Add(hn::LoadU(wides, centre - distance), hn::LoadU(wides, centre + distance));
    };
    for (std::size_t k = 0; k < kernel.size(); k += 2) {
        const bool paired = k + 1 < kernel.size();
        const auto weights = hn::InterleaveLower(wides, hn::Set(wides, kernel[k]),
                                                 hn::Set(wides, paired ? kernel[k + 1] : WideComponent{0}));
        const auto distance = static_cast<std::ptrdiff_t>(k) * step;
        for (std::size_t v = 0; v < kVectors; ++v) {
            const WideComponent* const centre = in + static_cast<std::ptrdiff_t>(v) * lanes;
            const auto near = k == 0 ? hn::LoadU(wides, centre) : both(centre, distance);
            const auto far = paired ? both(centre, distance + step) : near;
            lower[v] = AddPairs(lower[v], hn::InterleaveLower(wides, near, far), weights);
            upper[v] = AddPairs(upper[v], hn::InterleaveUpper(wides, near, far), weights);
        }
    }
    constexpr int kKernelBits = 15;
    static_assert(1 << kKernelBits == kKernelUnit);
    for (std::size_t v = 0; v < kVectors; ++v) {
        const auto rounded = hn::ReorderDemote2To(wides, hn::ShiftRight<kKernelBits>(lower[v]),
                                                  hn::ShiftRight<kKernelBits>(upper[v]));
        hn::StoreU(rounded, wides, out + static_cast<std::ptrdiff_t>(v) * lanes);
    }
}

void Convolve(const WideComponent* in, std::ptrdiff_t step, const HalfKernel& kernel, WideComponent* out,
              std::size_t count) {
    constexpr std::size_t kVectors = 4; // as many as there are registers for
    const std::size_t lanes = hn::Lanes(Wides());
    if (count < lanes) {
        scalar::Convolve(in, step, kernel, out, count);
        return;
    }
    std::size_t i = 0;
    for (; i + kVectors * lanes <= count; i += kVectors * lanes) {
        ConvolveVectors<kVectors>(in + i, step, kernel, out + i);
    }
    for (; i < count; i += lanes) {
        // The last vector moves back to end with the row; what it writes twice is the same twice.
        i = std::min(i, count - lanes);
        ConvolveVectors<1>(in + i, step, kernel, out + i);
    }
}

#endif

} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine {

HWY_EXPORT(Convolve);

void Convolve(const WideComponent* in, std::ptrdiff_t step, const HalfKernel& kernel, WideComponent* out,
              std::size_t count) {
    HWY_DYNAMIC_DISPATCH(Convolve)(in, step, kernel, out, count);
}

} // namespace pictorel::engine
#endif
