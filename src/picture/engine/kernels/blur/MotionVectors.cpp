// The loops of motion blur in vectors, see MotionKernels.h.
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/base/Streaming.h"
#include "picture/engine/kernels/blur/MotionKernels.h"

#include <array>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/blur/MotionVectors.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
// After foreach_target.h, which includes this file once for each kind of vectors.
#include "picture/engine/kernels/base/KeepInRegister-inl.h"
#include "picture/engine/kernels/blur/MotionLoops-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {
#if HWY_TARGET == HWY_SCALAR // vectors of one number: the processor has none that we know

const MotionKernels& VectorKernels() {
    return MotionKernels::Plain();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Wides = hn::CappedTag<MotionComponent, 16>;
using Unsigned = hn::RebindToUnsigned<Wides>;
using Bytes = hn::Rebind<std::uint8_t, Wides>;
using WideVector = hn::Vec<Wides>;

HWY_INLINE WideVector LoadWidened(const std::uint8_t* from) {
    return hn::PromoteTo(Wides(), hn::LoadU(Bytes(), from));
}

// The sums of one vector's components over the rows -whole to whole.
HWY_INLINE WideVector FirstSum(const Stack& stack, int whole, std::size_t i) {
    auto sum = hn::Zero(Wides());
    for (int index = -whole; index <= whole; ++index) {
        sum = hn::Add(sum, LoadWidened(stack.Row(index) + i));
    }
    return sum;
}

// A line in registers.
class MeanOf {
  public:
    HWY_INLINE explicit MeanOf(const FixedLine& line)
        : shift_(line.shift),
          perLength_(hn::Set(Wides(), line.perLength)),
          tipShare_(hn::Set(Wides(), line.tipShare)),
          half_(hn::Set(Wides(), FixedLine::kMeanUnit / 2)) {}

    // In levels, 0 to 256.
    HWY_INLINE WideVector operator()(WideVector sum, WideVector tips) const {
        const auto mean = hn::Add(hn::MulFixedPoint15(hn::ShiftLeftSame(sum, shift_), perLength_),
                                  hn::MulFixedPoint15(hn::ShiftLeft<kMotionBits>(tips), tipShare_));
        return hn::ShiftRight<FixedLine::kMeanBits>(hn::Add(mean, half_));
    }

  private:
    int shift_;
    WideVector perLength_;
    WideVector tipShare_;
    WideVector half_;
};

template <bool kStreams>
void SlideRows(const Stack& stack, const FixedLine& line) {
    const Wides wides;
    const Bytes bytes;
    const std::size_t lanes = hn::Lanes(wides);
    const auto size = static_cast<std::size_t>(stack.size);
    std::vector<MotionComponent> sums(size + lanes);
    for (std::size_t i = 0; i < size; i += lanes) {
        hn::StoreU(FirstSum(stack, line.whole, i), wides, sums.data() + i);
    }
    const MeanOf meanOf(line);
    for (int index = 0; index < stack.count; ++index) {
        const std::uint8_t* const before = stack.Row(index - line.whole - 1);
        const std::uint8_t* const leaving = stack.Row(index - line.whole);
        const std::uint8_t* const entering = stack.Row(index + line.whole + 1);
        const std::uint8_t* const next = stack.Row(index + line.whole + 1 + kRowsAhead);
        std::uint8_t* const out = stack.out + index * stack.outStep;
        for (std::size_t i = 0; i < size; i += lanes) {
            FetchAhead(next + i);
            const auto sum = hn::LoadU(wides, sums.data() + i);
            const auto enters = LoadWidened(entering + i);
            const auto mean = hn::DemoteTo(bytes, meanOf(sum, hn::Add(LoadWidened(before + i), enters)));
            kStreams ? hn::Stream(mean, bytes, out + i) : hn::StoreU(mean, bytes, out + i);
            hn::StoreU(hn::Add(sum, hn::Sub(enters, LoadWidened(leaving + i))), wides, sums.data() + i);
        }
    }
    hwy::FlushStream();
}

void Slide(const Stack& stack, const FixedLine& line) {
    // Vectors of fewer bytes are not written past the cache whole.
    constexpr std::size_t kStreamed = 16;
    stack.streams&& hn::Lanes(Bytes()) == kStreamed ? SlideRows<true>(stack, line)
                                                    : SlideRows<false>(stack, line);
}

using Pixels = hn::Repartition<std::uint32_t, Wides>; // two components of each

// The sums of lines that end at one pixel after the other, of two of their components.
class SlidingSum {
  public:
    HWY_INLINE explicit SlidingSum(WideVector sums) : sums_(sums) {}

    // Adds the differences of some more pixels; gives the sum after each.
    HWY_INLINE WideVector Next(WideVector differences) {
        const Pixels pixels;
        const Wides wides;
        auto within = hn::BitCast(pixels, differences); // 16 bytes
        within = Added(within, hn::ShiftLeftLanes<1>(pixels, within));
        within = Added(within, hn::ShiftLeftLanes<2>(pixels, within));
        auto whole = hn::Broadcast<3>(within);
        if constexpr (hn::MaxLanes(Wides()) > 8) {
            within = Added(within, hn::ConcatLowerLower(pixels, whole, hn::Zero(pixels)));
            whole = Added(whole, hn::ConcatLowerUpper(pixels, whole, whole));
        }
        const auto result = hn::Add(sums_, hn::BitCast(wides, within));
        sums_ = hn::Add(sums_, hn::BitCast(wides, whole));
        return result;
    }

  private:
    using PixelVector = hn::Vec<Pixels>;

    static HWY_INLINE PixelVector Added(PixelVector a, PixelVector b) {
        return hn::BitCast(Pixels(), hn::Add(hn::BitCast(Wides(), a), hn::BitCast(Wides(), b)));
    }

    WideVector sums_; // so far
};

template <bool kStreams>
void SlideAlongRow(const RowAlong& row, const FixedLine& line) {
    const Wides wides;
    const Unsigned unsignedWides;
    const hn::Repartition<std::uint8_t, Wides> bytes;
    const std::uint8_t* const before = row.in - (line.whole + 1) * kComponents;
    const std::uint8_t* const last = row.in + line.whole * kComponents;
    std::array<MotionComponent, kComponents> first{}; // of the line around the pixel before the first
    for (const std::uint8_t* pixel = before; pixel != last; pixel += kComponents) {
        for (std::size_t k = 0; k < kComponents; ++k) {
            first[k] = static_cast<MotionComponent>(first[k] + pixel[k]);
        }
    }
    const auto alternating = [&](MotionComponent even, MotionComponent odd)
                                 HWY_ATTR { return hn::OddEven(hn::Set(wides, odd), hn::Set(wides, even)); };
    SlidingSum lowerSums(alternating(first[0], first[2]));
    SlidingSum upperSums(alternating(first[1], first[3]));
    const auto load = [&](const std::uint8_t* from) HWY_ATTR {
        auto both = hn::BitCast(unsignedWides, hn::LoadU(bytes, from));
        KeepInRegister(both);
        return both;
    };
    const auto lower = [&](auto both)
                           HWY_ATTR { return hn::And(hn::BitCast(wides, both), hn::Set(wides, 255)); };
    const auto upper = [&](auto both) HWY_ATTR { return hn::BitCast(wides, hn::ShiftRight<8>(both)); };
    const MeanOf meanOf(line);
    const auto blurred = [&](SlidingSum& sums, auto leaves, auto end, auto behind) HWY_ATTR {
        const auto sum = sums.Next(hn::Sub(end, leaves));
        const auto mean = meanOf(sum, hn::Add(leaves, behind));
        return hn::Min(mean, hn::Set(wides, 255));
    };
    const std::uint8_t* const ahead = row.ahead;
    const int size = row.width * kComponents;
    for (int i = 0; i < size; i += static_cast<int>(hn::Lanes(bytes))) {
        if (ahead != nullptr) {
            FetchAhead(ahead + i);
        }
        const auto leaves = load(before + i);
        const auto end = load(last + i);
        const auto behind = load(last + kComponents + i);
        const auto low = blurred(lowerSums, lower(leaves), lower(end), lower(behind));
        const auto high = blurred(upperSums, upper(leaves), upper(end), upper(behind));
        const auto pixels = hn::BitCast(bytes, hn::Or(low, hn::ShiftLeft<8>(high)));
        kStreams ? hn::Stream(pixels, bytes, row.out + i) : hn::StoreU(pixels, bytes, row.out + i);
    }
    hwy::FlushStream();
}

void SlideAlong(const RowAlong& row, const FixedLine& line) {
    row.streams ? SlideAlongRow<true>(row, line) : SlideAlongRow<false>(row, line);
}

template <std::size_t kVectors>
HWY_INLINE void SumVectors(const MotionComponent* centre, const std::vector<WeightedPair>& pairs,
                           MotionComponent* sums) {
    const Wides wides;
    const std::size_t lanes = hn::Lanes(wides);
    WideVector sum[kVectors];
    for (std::size_t v = 0; v < kVectors; ++v) {
        sum[v] = hn::Set(wides, 2);
    }
    for (const WeightedPair& pair : pairs) {
        const auto weight = hn::Set(wides, pair.weight);
        for (std::size_t v = 0; v < kVectors; ++v) {
            const MotionComponent* const from = centre + v * lanes;
            const auto both = hn::Add(hn::LoadU(wides, from + pair.way), hn::LoadU(wides, from - pair.way));
            sum[v] = hn::Add(sum[v], hn::MulFixedPoint15(both, weight));
        }
    }
    for (std::size_t v = 0; v < kVectors; ++v) {
        // Only now it fits into 15 bits.
        const auto quarter = hn::ShiftRight<2>(hn::BitCast(Unsigned(), sum[v]));
        hn::StoreU(hn::BitCast(wides, quarter), wides, sums + v * lanes);
    }
}

void SumPairs(const MotionComponent* centre, const std::vector<WeightedPair>& pairs, std::size_t count,
              MotionComponent* sums) {
    constexpr std::size_t kVectors = 4;
    const std::size_t lanes = hn::Lanes(Wides());
    if (count < lanes) {
        MotionKernels::Plain().SumPairs(centre, pairs, count, sums);
        return;
    }
    std::size_t i = 0;
    for (; i + kVectors * lanes <= count; i += kVectors * lanes) {
        SumVectors<kVectors>(centre + i, pairs, sums + i);
    }
    for (; i < count; i += lanes) {
        i = std::min(i, count - lanes); // what is written twice is the same twice
        SumVectors<1>(centre + i, pairs, sums + i);
    }
}

// The compiler finds no good vectors for groups of three.
void NarrowColours(const MotionComponent* HWY_RESTRICT wide, int width, std::uint8_t* HWY_RESTRICT out) {
    const hn::CappedTag<MotionComponent, 16> wides;
    const hn::Rebind<std::uint8_t, decltype(wides)> bytes;
    const int lanes = static_cast<int>(hn::Lanes(wides));
    const auto narrow = [&](auto component) HWY_ATTR {
        const auto half = hn::Set(wides, kMotionUnit / 2);
        return hn::DemoteTo(bytes, hn::ShiftRight<kMotionBits>(hn::Add(component, half)));
    };
    int x = 0;
    for (; x + lanes <= width; x += lanes) {
        auto blue = hn::Zero(wides);
        auto green = blue;
        auto red = blue;
        hn::LoadInterleaved3(wides, wide + 3 * x, blue, green, red);
        hn::StoreInterleaved4(narrow(blue), narrow(green), narrow(red), hn::Set(bytes, 255), bytes,
                              out + kComponents * x);
    }
    MotionKernels::Plain().NarrowColours(wide + 3 * x, width - x, out + kComponents * x);
}

const MotionKernels& VectorKernels() {
    static constexpr MotionKernels kKernels{
        .Slide = Slide,
        .SlideAlong = SlideAlong,
        .SlideRow = SlideRow,
        .AddToMean = AddToMean,
        .WidenRow = WidenRow,
        .NarrowRow = NarrowRow,
        .WidenColours = WidenColours,
        .NarrowColours = NarrowColours,
        .SumPairs = SumPairs,
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

const MotionKernels& MotionKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
