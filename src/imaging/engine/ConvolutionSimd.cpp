// Convolution with a symmetric kernel in vectors, see Convolution.h.
#include "imaging/engine/Convolution.h"

#include <algorithm>
#include <array>
#include <utility>

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

// Taps next to each other in a row lie across cache lines, which costs the longest vectors more than they
// save.
using Wides = hn::CappedTag<WideComponent, 16>;

// One vector at a time, with the weights in registers: what limits the loop are its loads.
template <std::size_t kRadius>
void ConvolveWithin(const WideComponent* const* taps, const HalfKernel& kernel, WideComponent* out,
                    std::size_t count) {
    const Wides wides;
    const std::size_t lanes = hn::Lanes(wides);
    const WideComponent* rows[2 * kRadius + 1];
    std::copy_n(taps, 2 * kRadius + 1, rows);
    hn::Vec<Wides> weights[kRadius + 1];
    for (std::size_t k = 0; k <= kRadius; ++k) {
        weights[k] = hn::Set(wides, kernel[k]);
    }
    const auto convolve = [&](std::size_t i) HWY_ATTR {
        auto sum = hn::MulFixedPoint15(hn::LoadU(wides, rows[kRadius] + i), weights[0]);
        HWY_UNROLL(16)
        for (std::size_t k = 1; k <= kRadius; ++k) {
            const auto both =
                hn::Add(hn::LoadU(wides, rows[kRadius - k] + i), hn::LoadU(wides, rows[kRadius + k] + i));
            sum = hn::Add(sum, hn::MulFixedPoint15(both, weights[k]));
        }
        hn::StoreU(sum, wides, out + i);
    };
    for (std::size_t i = 0; i + lanes <= count; i += lanes) {
        convolve(i);
    }
    convolve(count - lanes); // what it writes twice is the same twice
}

using Convolver = void (*)(const WideComponent* const*, const HalfKernel&, WideComponent*, std::size_t);

template <std::size_t... kRadii>
constexpr std::array<Convolver, sizeof...(kRadii)> MakeConvolvers(std::index_sequence<kRadii...> /*radii*/) {
    return {ConvolveWithin<kRadii>...};
}

void Convolve(const WideComponent* const* taps, const HalfKernel& kernel, WideComponent* out,
              std::size_t count) {
    static constexpr auto kConvolvers = MakeConvolvers(std::make_index_sequence<kUsualTaps>());
    if (count < hn::Lanes(Wides()) || kernel.size() > kConvolvers.size()) {
        scalar::Convolve(taps, kernel, out, count);
        return;
    }
    kConvolvers[kernel.size() - 1](taps, kernel, out, count);
}

#endif

} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine {

HWY_EXPORT(Convolve);

void Convolve(const WideComponent* const* taps, const HalfKernel& kernel, WideComponent* out,
              std::size_t count) {
    HWY_DYNAMIC_DISPATCH(Convolve)(taps, kernel, out, count);
}

} // namespace pictorel::engine
#endif
