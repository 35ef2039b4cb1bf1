// Convolution with a symmetric kernel in vectors, see ConvolutionKernels.h.
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/blur/ConvolutionKernels.h"

#include <algorithm>
#include <array>
#include <utility>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/blur/ConvolutionVectors.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
// After foreach_target.h, which includes this file once for each kind of vectors.
#include "picture/engine/kernels/base/KeepInRegister-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {
#if HWY_TARGET == HWY_SCALAR // vectors of one number: the processor has none that we know

const ConvolutionKernels& VectorKernels() {
    return ConvolutionKernels::Plain();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

// Taps next to each other in a row lie across cache lines, which costs the longest vectors more than they
// save; taps one below the other do not.
using Beside = hn::CappedTag<Wide, 16>;
using Below = hn::CappedTag<Wide, kWideStep>;
template <class D>
using BytesOf = hn::Repartition<std::uint8_t, D>;
template <class D>
using SignedOf = hn::RebindToSigned<D>;

// A kernel in registers. Round says how products are rounded.
template <class D, std::size_t kRadius, class Round>
struct Weights {
    HWY_INLINE explicit Weights(const HalfKernel& kernel) {
        for (std::size_t k = 0; k <= kRadius; ++k) {
            weights[k] = hn::Set(D(), static_cast<Wide>(kernel[k] * Round::kPerWeight));
        }
    }

    HWY_INLINE hn::Vec<D> Product(hn::Vec<D> value, std::size_t k) const {
        return Round::Product(D(), value, weights[k]);
    }

    // The sum of the weighted taps, at(k) for k from 0.
    template <class Tap>
    HWY_INLINE hn::Vec<D> Sum(const Tap& at) const {
        auto sum = Product(at(kRadius), 0);
        HWY_UNROLL(16)
        for (std::size_t k = 1; k <= kRadius; ++k) {
            const auto average = hn::AverageRound(at(kRadius - k), at(kRadius + k));
            sum = hn::Add(sum, Product(average, k));
        }
        return sum;
    }

    hn::Vec<D> weights[kRadius + 1];
};

struct ToNearest {
    static constexpr int kPerWeight = 1;
    template <class D>
    static HWY_INLINE hn::Vec<D> Product(D wides, hn::Vec<D> value, hn::Vec<D> weight) {
        const SignedOf<D> signedWides;
        return hn::BitCast(
            wides, hn::MulFixedPoint15(hn::BitCast(signedWides, value), hn::BitCast(signedWides, weight)));
    }
};

struct Downwards {
    static constexpr int kPerWeight = 2;
    template <class D>
    static HWY_INLINE hn::Vec<D> Product(D /*wides*/, hn::Vec<D> value, hn::Vec<D> weight) {
        return hn::MulHigh(value, weight);
    }
};

template <std::size_t kRadius>
struct Down {
    static void Run(const Wide* const* taps, const HalfKernel& kernel, Wide* out, std::size_t count) {
        const Below wides;
        const Weights<Below, kRadius, ToNearest> weights(kernel);
        const Wide* rows[2 * kRadius + 1];
        std::copy_n(taps, 2 * kRadius + 1, rows);
        for (std::size_t i = 0; i < count; i += hn::Lanes(wides)) {
            const auto tap = [&](std::size_t k) HWY_ATTR { return hn::Load(wides, rows[k] + i); };
            hn::Store(weights.Sum(tap), wides, out + i);
        }
    }
};

template <std::size_t kRadius>
struct Along {
    static void Run(const Wide* in, const HalfKernel& kernel, Wide* out, std::size_t count) {
        const Beside wides;
        const Weights<Beside, kRadius, ToNearest> weights(kernel);
        for (std::size_t i = 0; i < count; i += hn::Lanes(wides)) {
            const auto tap = [&](std::size_t k)
                                 HWY_ATTR { return hn::LoadU(wides, in + i + k * kWidesPerPixel); };
            hn::Store(weights.Sum(tap), wides, out + i);
        }
    }
};

template <std::size_t kRadius>
struct Across {
    static void Run(const std::uint8_t* in, const HalfKernel& kernel, int width, Wide* out) {
        const Beside wides;
        const BytesOf<Beside> bytes;
        const Weights<Beside, kRadius, Downwards> weights(kernel);
        const auto neighbours = hn::Set(wides, static_cast<Wide>(kRadius));
        Wide* const odd = out + HalfLength(width);
        for (std::size_t i = 0; i < 2 * static_cast<std::size_t>(width); i += hn::Lanes(wides)) {
            const auto tap = [&](std::size_t k) HWY_ATTR {
                auto both = hn::BitCast(wides, hn::LoadU(bytes, in + 2 * i + k * kComponents));
                KeepInRegister(both);
                return both;
            };
            const auto lower = [](auto both) HWY_ATTR { return hn::ShiftLeft<kOpaqueBits>(both); };
            const auto centre = tap(kRadius);
            auto sum = weights.Product(lower(centre), 0);
            auto sumOfBoth = hn::Add(weights.Product(centre, 0), neighbours);
            HWY_UNROLL(16)
            for (std::size_t k = 1; k <= kRadius; ++k) {
                const auto before = tap(kRadius - k);
                const auto behind = tap(kRadius + k);
                sum = hn::Add(sum, weights.Product(hn::AverageRound(lower(before), lower(behind)), k));
                sumOfBoth = hn::Add(sumOfBoth, weights.Product(hn::AverageRound(before, behind), k));
            }
            hn::Store(hn::Add(sum, neighbours), wides, out + i);
            hn::Store(hn::Sub(sumOfBoth, hn::ShiftRight<kOpaqueBits>(sum)), wides, odd + i);
        }
    }
};

// The lower and the upper bytes of pairs, from wide components without their fractions.
HWY_INLINE hn::Vec<BytesOf<Below>> Joined(hn::Vec<Below> lower, hn::Vec<Below> upper) {
    const auto whole = hn::Set(Below(), 0xFF00);
    return hn::BitCast(BytesOf<Below>(), hn::Or(hn::ShiftRight<kOpaqueBits>(lower), hn::And(upper, whole)));
}

// Sharpens components that lie in the upper bytes, as Sharpened does in the plain loops. Gives levels.
HWY_INLINE hn::Vec<Below> Sharpened(hn::Vec<Below> original, hn::Vec<Below> blurred,
                                    hn::Vec<SignedOf<Below>> share) {
    const SignedOf<Below> signedWides;
    const auto halved = [&](hn::Vec<Below> v)
                            HWY_ATTR { return hn::BitCast(signedWides, hn::ShiftRight<1>(v)); };
    const auto added = hn::MulFixedPoint15(hn::Sub(halved(original), halved(blurred)), share);
    const auto level = hn::BitCast(signedWides, hn::ShiftRight<3>(original));
    const auto sum = hn::SaturatedAdd(hn::Add(level, hn::Set(signedWides, 16)), added);
    const auto clamped =
        hn::Min(hn::Max(hn::ShiftRight<5>(sum), hn::Zero(signedWides)), hn::Set(signedWides, 255));
    return hn::BitCast(Below(), clamped);
}

template <std::size_t kRadius>
struct ToPixels {
    static void Run(const Wide* const* taps, const HalfKernel& kernel, const PixelTarget& target) {
        target.streams ? Finish<true>(taps, kernel, target) : Finish<false>(taps, kernel, target);
    }

    // The target is copied, since for the compiler pixels may lie anywhere, even over it.
    template <bool kStreams>
    static void Finish(const Wide* const* taps, const HalfKernel& kernel, const PixelTarget target) {
        const Below wides;
        const BytesOf<Below> bytes;
        const Weights<Below, kRadius, Downwards> weights(kernel);
        const Wide* rows[2 * kRadius + 1];
        std::copy_n(taps, 2 * kRadius + 1, rows);
        const std::size_t half = HalfLength(target.width);
        const auto rounding = hn::Set(wides, kOpaqueUnit / 2 + 1);
        const auto share = hn::Set(SignedOf<Below>(), target.share);
        for (std::size_t i = 0; i < 2 * static_cast<std::size_t>(target.width); i += hn::Lanes(wides)) {
            const auto lowerTap = [&](std::size_t k) HWY_ATTR { return hn::Load(wides, rows[k] + i); };
            const auto upperTap = [&](std::size_t k) HWY_ATTR { return hn::Load(wides, rows[k] + half + i); };
            const auto lower = weights.Sum(lowerTap);
            const auto upper = weights.Sum(upperTap);
            auto pixels = hn::Zero(bytes);
            if (target.share == 0) {
                pixels = Joined(hn::Add(lower, rounding), hn::Add(upper, rounding));
            } else {
                const auto one = hn::Set(wides, 1);
                const auto original = hn::BitCast(wides, hn::LoadU(bytes, target.original + 2 * i));
                const auto sharpLower =
                    Sharpened(hn::ShiftLeft<kOpaqueBits>(original), hn::Add(lower, one), share);
                const auto sharpUpper =
                    Sharpened(hn::And(original, hn::Set(wides, 0xFF00)), hn::Add(upper, one), share);
                pixels = hn::BitCast(bytes, hn::Or(sharpLower, hn::ShiftLeft<kOpaqueBits>(sharpUpper)));
            }
            kStreams ? hn::Stream(pixels, bytes, target.pixels + 2 * i)
                     : hn::Store(pixels, bytes, target.pixels + 2 * i);
        }
    }
};

template <template <std::size_t> class Loop, std::size_t... kRadii>
constexpr auto MakeLoops(std::index_sequence<kRadii...> /*radii*/) {
    return std::array{&Loop<kRadii>::Run...};
}

// The loop for a kernel of this size; null for an unusual one.
template <template <std::size_t> class Loop>
auto LoopFor(const HalfKernel& kernel) {
    static constexpr auto kLoops = MakeLoops<Loop>(std::make_index_sequence<kUsualTaps>());
    return kernel.size() <= kLoops.size() ? kLoops[kernel.size() - 1] : nullptr;
}

void Convolve(const Wide* const* taps, const HalfKernel& kernel, Wide* out, std::size_t count) {
    const auto loop = LoopFor<Down>(kernel);
    loop != nullptr ? loop(taps, kernel, out, count)
                    : ConvolutionKernels::Plain().Convolve(taps, kernel, out, count);
}

void ConvolveAlong(const Wide* in, const HalfKernel& kernel, Wide* out, std::size_t count) {
    const auto loop = LoopFor<Along>(kernel);
    loop != nullptr ? loop(in, kernel, out, count)
                    : ConvolutionKernels::Plain().ConvolveAlong(in, kernel, out, count);
}

void ConvolveAcross(const std::uint8_t* in, const HalfKernel& kernel, int width, Wide* out) {
    const auto loop = LoopFor<Across>(kernel);
    loop != nullptr ? loop(in, kernel, width, out)
                    : ConvolutionKernels::Plain().ConvolveAcross(in, kernel, width, out);
}

void ConvolveToPixels(const Wide* const* taps, const HalfKernel& kernel, const PixelTarget& target) {
    const auto loop = LoopFor<ToPixels>(kernel);
    loop != nullptr ? loop(taps, kernel, target)
                    : ConvolutionKernels::Plain().ConvolveToPixels(taps, kernel, target);
}

const ConvolutionKernels& VectorKernels() {
    static constexpr ConvolutionKernels kKernels{
        .Convolve = Convolve,
        .ConvolveAlong = ConvolveAlong,
        .ConvolveAcross = ConvolveAcross,
        .ConvolveToPixels = ConvolveToPixels,
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

const ConvolutionKernels& ConvolutionKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
