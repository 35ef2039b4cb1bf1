// The brightest or darkest of neighbouring components in vectors, see RankRows.h.
#include "imaging/engine/RankRows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/engine/RankRowsSimd.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR

using scalar::JoinRow;
using scalar::MixRow;
using scalar::SpreadWindow;

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

template <int kParts, class Pick>
void SpreadParts(const Pick& pick, const WindowStep& step, std::size_t count, const std::uint8_t* in,
                 std::uint8_t* out) {
    const Bytes bytes;
    for (std::size_t i = 0; i < count; i += hn::Lanes(bytes)) {
        ByteVector found = pick(hn::LoadU(bytes, in + i), hn::LoadU(bytes, in + i + step.last));
        for (int part = 1; part < kParts - 1; ++part) {
            found = pick(found, hn::LoadU(bytes, in + i + part * step.step));
        }
        hn::StoreU(found, bytes, out + i);
    }
}

template <class Pick>
void SpreadWith(const Pick& pick, const WindowStep& step, std::size_t count, const std::uint8_t* in,
                std::uint8_t* out) {
    static_assert(kMostParts == 4);
    if (step.parts == 2) {
        SpreadParts<2>(pick, step, count, in, out);
    } else if (step.parts == 3) {
        SpreadParts<3>(pick, step, count, in, out);
    } else {
        SpreadParts<4>(pick, step, count, in, out);
    }
}

void SpreadWindow(Rank rank, const WindowStep& step, std::size_t count, const std::uint8_t* in,
                  std::uint8_t* out) {
    if (rank == Rank::Brightest) {
        SpreadWith(PickBrightest(), step, count, in, out);
    } else {
        SpreadWith(PickDarkest(), step, count, in, out);
    }
}

// Writes colourAt(first component) with the row's alpha.
template <class ColourAt>
void WriteRow(const RankRow& row, const ColourAt& colourAt) {
    const Bytes bytes;
    const auto isAlpha = hn::BitCast(bytes, hn::Set(hn::ScalableTag<std::uint32_t>(), 0xFF000000U));
    const std::size_t count = 4 * static_cast<std::size_t>(row.width);
    for (std::size_t i = 0; i < count; i += hn::Lanes(bytes)) {
        const auto alpha = hn::And(isAlpha, hn::LoadU(bytes, row.alpha + i));
        const auto pixels = hn::Or(hn::AndNot(isAlpha, colourAt(i)), alpha);
        if (row.streams) {
            hn::Stream(pixels, bytes, row.out + i);
        } else {
            hn::Store(pixels, bytes, row.out + i);
        }
    }
    hwy::FlushStream();
}

void JoinRow(const std::uint8_t* colour, const RankRow& row) {
    WriteRow(row, [=](std::size_t i) HWY_ATTR { return hn::LoadU(Bytes(), colour + i); });
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

#endif

} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine {

HWY_EXPORT(SpreadWindow);
HWY_EXPORT(JoinRow);
HWY_EXPORT(MixRow);

namespace simd {

void SpreadWindow(Rank rank, const WindowStep& step, std::size_t count, const std::uint8_t* in,
                  std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(SpreadWindow)(rank, step, count, in, out);
}

void JoinRow(const std::uint8_t* colour, const RankRow& row) {
    HWY_DYNAMIC_DISPATCH(JoinRow)(colour, row);
}

void MixRow(const std::uint8_t* inner, const std::uint8_t* outer, int share, const RankRow& row) {
    HWY_DYNAMIC_DISPATCH(MixRow)(inner, outer, share, row);
}

} // namespace simd
} // namespace pictorel::engine
#endif
