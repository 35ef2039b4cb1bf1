// The brightest or darkest of neighbouring components in vectors, see RankKernels.h.
#include "picture/engine/kernels/base/WholePixel.h"
#include "picture/engine/kernels/rank/RankKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/rank/RankVectors.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h, which includes this file once for each kind of vectors.
#include "picture/engine/kernels/base/RowWriter-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {
#if HWY_TARGET == HWY_SCALAR // vectors of one number: the processor has none that we know

const RankKernels& VectorKernels() {
    return RankKernels::Plain();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<std::uint8_t>;
using Shorts = hn::ScalableTag<std::int16_t>;
using ByteVector = hn::Vec<Bytes>;
using ShortVector = hn::Vec<Shorts>;

struct PickBrightest {
    ByteVector operator()(ByteVector a, ByteVector b) const { return hn::Max(a, b); }
};

struct PickDarkest {
    ByteVector operator()(ByteVector a, ByteVector b) const { return hn::Min(a, b); }
};

// Calls body(pick) with what picks the extremes of this rank.
template <class Body>
HWY_INLINE void WithPick(Rank rank, const Body& body) {
    if (rank == Rank::Brightest) {
        body(PickBrightest());
    } else {
        body(PickDarkest());
    }
}

template <int kVectors, class Pick>
HWY_INLINE void PickOfRows(const Pick& pick, std::span<const std::uint8_t* const> rows, std::size_t offset,
                           std::uint8_t* upper, std::uint8_t* lower) {
    const Bytes bytes;
    const auto at = [&](std::size_t k, int v)
                        HWY_ATTR { return hn::LoadU(bytes, rows[k] + offset + v * hn::Lanes(bytes)); };
    const std::size_t last = rows.size() - 1;
    ByteVector shared[kVectors];
    for (int v = 0; v < kVectors; ++v) {
        shared[v] = at(1, v);
    }
    for (std::size_t k = 2; k < last; ++k) {
        for (int v = 0; v < kVectors; ++v) {
            shared[v] = pick(shared[v], at(k, v));
        }
    }
    for (int v = 0; v < kVectors; ++v) {
        hn::StoreU(pick(shared[v], at(0, v)), bytes, upper + v * hn::Lanes(bytes));
        hn::StoreU(pick(shared[v], at(last, v)), bytes, lower + v * hn::Lanes(bytes));
    }
}

void ExtremeOfRows(Rank rank, std::span<const std::uint8_t* const> rows, std::size_t offset,
                   std::size_t count, std::uint8_t* upper, std::uint8_t* lower) {
    const std::size_t one = hn::Lanes(Bytes());
    if (count < one || rows.size() < 3) {
        RankKernels::Plain().ExtremeOfRows(rank, rows, offset, count, upper, lower);
        return;
    }
    WithPick(rank, [&](const auto& pick) HWY_ATTR {
        constexpr int kTogether = 4;
        std::size_t i = 0;
        for (; i + kTogether * one <= count; i += kTogether * one) {
            PickOfRows<kTogether>(pick, rows, offset + i, upper + i, lower + i);
        }
        for (; i + one <= count; i += one) {
            PickOfRows<1>(pick, rows, offset + i, upper + i, lower + i);
        }
        // What it writes twice is the same twice.
        PickOfRows<1>(pick, rows, offset + count - one, upper + count - one, lower + count - one);
    });
}

// Calls body(at), at(in) giving the vector of extremes that `step` names from in[0] on.
template <class Pick, class Body>
HWY_INLINE void WithWindow(const Pick& pick, const WindowStep& step, const Body& body) {
    const Bytes bytes;
    const auto ends = [=](const std::uint8_t* in)
                          HWY_ATTR { return pick(hn::LoadU(bytes, in), hn::LoadU(bytes, in + step.last)); };
    const auto next = [=](const std::uint8_t* in) HWY_ATTR { return hn::LoadU(bytes, in + step.step); };
    const auto third = [=](const std::uint8_t* in) HWY_ATTR { return hn::LoadU(bytes, in + 2 * step.step); };
    static_assert(kMostParts == 4);
    if (step.parts == 2) {
        body(ends);
    } else if (step.parts == 3) {
        body([=](const std::uint8_t* in) HWY_ATTR { return pick(ends(in), next(in)); });
    } else {
        body([=](const std::uint8_t* in) HWY_ATTR { return pick(pick(ends(in), next(in)), third(in)); });
    }
}

void SpreadWindow(Rank rank, const WindowStep& step, std::size_t count, const std::uint8_t* in,
                  std::uint8_t* out) {
    WithPick(rank, [&](const auto& pick) HWY_ATTR {
        WithWindow(pick, step, [&](const auto& at) HWY_ATTR {
            for (std::size_t i = 0; i < count; i += hn::Lanes(Bytes())) {
                hn::StoreU(at(in + i), Bytes(), out + i);
            }
        });
    });
}

// Writes colourAt(first component) with the row's alpha.
template <class ColourAt>
void WriteRow(const RankRow& row, const ColourAt& colourAt) {
    const Bytes bytes;
    const auto isAlpha = hn::BitCast(bytes, hn::Set(hn::ScalableTag<std::uint32_t>(), kOpaque));
    const std::size_t count = 4 * static_cast<std::size_t>(row.width);
    const RowWriter writer(row.out, row.streams, row.ahead);
    for (std::size_t i = 0; i < count; i += hn::Lanes(bytes)) {
        const auto alpha = hn::And(isAlpha, hn::LoadU(bytes, row.alpha + i));
        const auto pixels = hn::Or(hn::AndNot(isAlpha, colourAt(i)), alpha);
        writer.Write(pixels, i);
    }
}

void JoinRow(Rank rank, const WindowStep& step, const std::uint8_t* colour, const RankRow& row) {
    WithPick(rank, [&](const auto& pick) HWY_ATTR {
        WithWindow(pick, step, [&](const auto& at) HWY_ATTR {
            WriteRow(row, [&](std::size_t i) HWY_ATTR { return at(colour + i); });
        });
    });
}

void MixRow(const std::uint8_t* inner, const std::uint8_t* outer, int share, const RankRow& row) {
    const Shorts shorts;
    const auto shares = hn::Set(shorts, static_cast<std::int16_t>(share));
    const hn::Half<Bytes> half;
    const auto mixed = [=](const std::uint8_t* a, const std::uint8_t* b) HWY_ATTR {
        const ShortVector from = hn::PromoteTo(shorts, hn::LoadU(half, a));
        const ShortVector to = hn::PromoteTo(shorts, hn::LoadU(half, b));
        return hn::Add(from, hn::MulFixedPoint15(hn::Sub(to, from), shares));
    };
    WriteRow(row, [=](std::size_t i) HWY_ATTR {
        const std::size_t next = i + hn::Lanes(half);
        return hn::Combine(Bytes(), hn::DemoteTo(half, mixed(inner + next, outer + next)),
                           hn::DemoteTo(half, mixed(inner + i, outer + i)));
    });
}

const RankKernels& VectorKernels() {
    static constexpr RankKernels kKernels{
        .ExtremeOfRows = ExtremeOfRows,
        .SpreadWindow = SpreadWindow,
        .JoinRow = JoinRow,
        .MixRow = MixRow,
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

const RankKernels& RankKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
