// The loops of embossing in vectors, see EmbossKernels.h.
#include "picture/engine/kernels/base/WholePixel.h"
#include "picture/engine/kernels/stylize/EmbossKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/stylize/EmbossVectors.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h, which includes this file once for each kind of vectors.
#include "picture/engine/kernels/base/LumaLanes-inl.h"
#include "picture/engine/kernels/base/RowWriter-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {
#if HWY_TARGET == HWY_SCALAR // vectors of one number: the processor has none that we know

const EmbossKernels& VectorKernels() {
    return EmbossKernels::Plain();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::Rebind<float, LumaLanes>;
using Lumas = hn::Rebind<EmbossLuma, LumaLanes>; // as many as there are pixels in a vector
using Bytes = hn::ScalableTag<std::uint8_t>;

void EmbossLumaRow(const std::uint8_t* in, int width, EmbossLuma* luma) {
    const LumaLanes lumas;
    const auto lanes = static_cast<int>(hn::Lanes(lumas));
    for (int x = 0; x < width; x += lanes) {
        const auto pixels = hn::BitCast(PixelLanes(), hn::LoadU(Bytes(), in + 4 * x));
        const auto sum = AddWeighted<kEmbossLumaBlue, kEmbossLumaGreen, kEmbossLumaRed>(
            hn::Set(lumas, 1 << (kEmbossWeightBits - 1)), pixels);
        hn::StoreU(hn::DemoteTo(Lumas(), hn::ShiftRight<kEmbossWeightBits>(sum)), Lumas(), luma + x);
    }
}

// Four weights, each in all lanes.
template <class D>
struct Four {
    Four(D d, const FourWeights& weights)
        : first(hn::Set(d, weights[0])),
          second(hn::Set(d, weights[1])),
          third(hn::Set(d, weights[2])),
          fourth(hn::Set(d, weights[3])) {}

    HWY_INLINE hn::Vec<D> SumOf(D d, const FourRows& rows, int i) const {
        const auto upper = hn::Add(hn::MulFixedPoint15(hn::LoadU(d, rows[0] + i), first),
                                   hn::MulFixedPoint15(hn::LoadU(d, rows[1] + i), second));
        const auto lower = hn::Add(hn::MulFixedPoint15(hn::LoadU(d, rows[2] + i), third),
                                   hn::MulFixedPoint15(hn::LoadU(d, rows[3] + i), fourth));
        return hn::Add(upper, lower);
    }

    hn::Vec<D> first;
    hn::Vec<D> second;
    hn::Vec<D> third;
    hn::Vec<D> fourth;
};

void SumFour(const FourRows& rows, const FourWeights& weights, int count, EmbossLuma* sums) {
    // Neighbours in a row lie across cache lines, which costs the longest vectors more than they save.
    const hn::CappedTag<EmbossLuma, 16> wides;
    const Four<decltype(wides)> four(wides, weights);
    const FourRows from = rows;
    const auto lanes = static_cast<int>(hn::Lanes(wides));
    for (int i = 0; i < count; i += lanes) {
        hn::StoreU(four.SumOf(wides, from, i), wides, sums + i);
    }
}

void MakeRelief(const ReliefRow& row) {
    const Floats floats;
    const LumaLanes lumas;
    const Lumas wides;
    const Bytes bytes;
    // The lowest byte of each pixel three times, and nothing for alpha.
    alignas(16) static constexpr std::uint8_t kSpread[16] = {0, 0, 0, 0x80, 4,  4,  4,  0x80,
                                                             8, 8, 8, 0x80, 12, 12, 12, 0x80};
    const auto spread = hn::LoadDup128(bytes, kSpread);
    const auto alphaBits = hn::BitCast(bytes, hn::Set(PixelLanes(), kOpaque));
    const auto perLevel = hn::Set(floats, row.gain / kEmbossLumaUnit);
    const auto middle = hn::Set(floats, 128.5F);
    const auto most = hn::Set(floats, 255.5F);
    const Four<Lumas> lightWeights(wides, row.lightWeights);
    const Four<Lumas> shadeWeights(wides, row.shadeWeights);
    const FourRows light = row.light;
    const FourRows shade = row.shade;
    const auto lanes = static_cast<int>(hn::Lanes(floats));
    const RowWriter writer(row.out, row.streams, row.ahead);
    for (int x = 0; x < row.width; x += lanes) {
        const auto slope = hn::Sub(lightWeights.SumOf(wides, light, x), shadeWeights.SumOf(wides, shade, x));
        const auto levels = hn::ConvertTo(floats, hn::PromoteTo(lumas, slope));
        const auto grey = hn::Add(middle, hn::Mul(perLevel, levels));
        const auto whole = hn::ConvertTo(lumas, hn::Min(hn::Max(grey, hn::Zero(floats)), most));
        const auto colour = hn::TableLookupBytesOr0(hn::BitCast(bytes, whole), spread);
        const auto alpha = hn::And(hn::LoadU(bytes, row.in + 4 * x), alphaBits);
        writer.Write(hn::Or(colour, alpha), 4 * static_cast<std::size_t>(x));
    }
}

const EmbossKernels& VectorKernels() {
    static constexpr EmbossKernels kKernels{
        .EmbossLumaRow = EmbossLumaRow,
        .SumFour = SumFour,
        .MakeRelief = MakeRelief,
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

const EmbossKernels& EmbossKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
