// The loops of embossing in vectors, see EmbossRows.h.
#include "imaging/engine/EmbossRows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/engine/EmbossRowsSimd.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h, which includes this file once for each kind of vectors.
#include "imaging/engine/LumaLanes-inl.h"
#include "imaging/engine/RowWriter-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
#if HWY_TARGET == HWY_SCALAR

using scalar::MakeRelief;
using scalar::SumFour;
using scalar::WideLumaRow;

#else

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::Rebind<float, LumaLanes>;
using Lumas = hn::Rebind<WideLuma, LumaLanes>; // as many as there are pixels in a vector
using Bytes = hn::ScalableTag<std::uint8_t>;

void WideLumaRow(const std::uint8_t* in, int width, WideLuma* luma) {
    const Floats floats;
    const auto scale = hn::Set(floats, static_cast<float>(kWideLumaUnit) / kLumaUnit);
    const auto half = hn::Set(floats, 0.5F);
    const auto lanes = static_cast<int>(hn::Lanes(floats));
    for (int x = 0; x < width; x += lanes) {
        const auto pixels = hn::BitCast(PixelLanes(), hn::LoadU(Bytes(), in + 4 * x));
        const auto scaled = hn::ConvertTo(floats, AddScaledLuma(hn::Zero(LumaLanes()), pixels));
        const auto whole = hn::ConvertTo(LumaLanes(), hn::Add(hn::Mul(scaled, scale), half));
        hn::StoreU(hn::DemoteTo(Lumas(), whole), Lumas(), luma + x);
    }
}

void SumFour(const FourRows& rows, const FourWeights& weights, int count, WideLuma* sums) {
    const hn::CappedTag<WideLuma, 16> wides;
    const auto lanes = static_cast<int>(hn::Lanes(wides));
    const auto first = hn::Set(wides, weights[0]);
    const auto second = hn::Set(wides, weights[1]);
    const auto third = hn::Set(wides, weights[2]);
    const auto fourth = hn::Set(wides, weights[3]);
    const auto product = [&](std::size_t k, int i, auto weight)
                             HWY_ATTR { return hn::MulFixedPoint15(hn::LoadU(wides, rows[k] + i), weight); };
    for (int i = 0; i < count; i += lanes) {
        const auto upper = hn::Add(product(0, i, first), product(1, i, second));
        const auto lower = hn::Add(product(2, i, third), product(3, i, fourth));
        hn::StoreU(hn::Add(upper, lower), wides, sums + i);
    }
}

void MakeRelief(const ReliefRow& row) {
    const Floats floats;
    const LumaLanes lumas;
    const auto perLevel = hn::Set(floats, row.gain / kWideLumaUnit);
    const auto lanes = static_cast<int>(hn::Lanes(floats));
    const auto alphaBits = hn::Set(PixelLanes(), 0xFF000000U);
    const RowWriter writer(row.out, row.width);
    const auto level = [=](const WideLuma* from)
                           HWY_ATTR { return hn::PromoteTo(lumas, hn::LoadU(Lumas(), from)); };
    for (int x = 0; x < row.width; x += lanes) {
        const auto slope = hn::ConvertTo(floats, hn::Sub(level(row.light + x), level(row.shade + x)));
        const auto grey = hn::Add(hn::Set(floats, 128.0F), hn::Mul(perLevel, slope));
        const auto clamped = hn::Min(hn::Max(grey, hn::Zero(floats)), hn::Set(floats, 255.0F));
        const auto rounded = hn::ConvertTo(lumas, hn::Add(clamped, hn::Set(floats, 0.5F)));
        const auto byte = hn::BitCast(PixelLanes(), rounded);
        const auto colour = hn::Or(hn::Or(byte, hn::ShiftLeft<8>(byte)), hn::ShiftLeft<16>(byte));
        const auto before = hn::BitCast(PixelLanes(), hn::Load(Bytes(), row.in + 4 * x));
        writer.Write(hn::BitCast(Bytes(), hn::Or(colour, hn::And(before, alphaBits))),
                     4 * static_cast<std::size_t>(x));
    }
}

#endif

} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine::simd {

HWY_EXPORT(MakeRelief);
HWY_EXPORT(SumFour);
HWY_EXPORT(WideLumaRow);

void WideLumaRow(const std::uint8_t* in, int width, WideLuma* luma) {
    HWY_DYNAMIC_DISPATCH(WideLumaRow)(in, width, luma);
}

void SumFour(const FourRows& rows, const FourWeights& weights, int count, WideLuma* sums) {
    HWY_DYNAMIC_DISPATCH(SumFour)(rows, weights, count, sums);
}

void MakeRelief(const ReliefRow& row) {
    HWY_DYNAMIC_DISPATCH(MakeRelief)(row);
}

} // namespace pictorel::engine::simd
#endif
