// What the operations on single pixels do to one row, in vectors, see PointKernels.h. Sums and products are
// taken in the order of the plain loops, so that both give the same bits.
#include "picture/engine/kernels/base/Luma.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/base/WholePixel.h"
#include "picture/engine/kernels/point/PointKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/point/PointVectors.cpp"
#include <hwy/foreach_target.h>
// Included again for every kind of vectors, after the line above.
#include "picture/engine/kernels/base/LumaLanes-inl.h"
#include "picture/engine/kernels/base/RowWriter-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {
#if HWY_TARGET == HWY_SCALAR // vectors of one number: the processor has none that we know

const PointKernels& VectorKernels() {
    return PointKernels::Plain();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<std::uint8_t>;
using Pixels = hn::ScalableTag<std::uint32_t>; // one lane a pixel, blue in the lowest byte
using Ints = hn::ScalableTag<std::int32_t>;
using Shorts = hn::ScalableTag<std::int16_t>;
using Floats = hn::ScalableTag<float>;
using ByteVector = hn::Vec<Bytes>;
using PixelVector = hn::Vec<Pixels>;
using ShortVector = hn::Vec<Shorts>;
using FloatVector = hn::Vec<Floats>;

// Rows begin on 64-byte boundaries and have room up to the next one, so there is no rest shorter than a
// vector.
template <class Change>
void ChangeBytes(const std::uint8_t* in, std::uint8_t* out, int width, const Change& change) {
    const Bytes bytes;
    const std::size_t size = static_cast<std::size_t>(width) * kComponents;
    const RowWriter writer(out, width);
    for (std::size_t i = 0; i < size; i += hn::Lanes(bytes)) {
        writer.Write(change(hn::Load(bytes, in + i)), i);
    }
}

struct Colours {
    FloatVector blue;
    FloatVector green;
    FloatVector red;
};

template <int kShift>
FloatVector Component(PixelVector pixels) {
    const auto component = hn::And(hn::ShiftRight<kShift>(pixels), hn::Set(Pixels(), 255));
    return hn::ConvertTo(Floats(), hn::BitCast(Ints(), component));
}

Colours Split(PixelVector pixels) {
    return {Component<0>(pixels), Component<8>(pixels), Component<16>(pixels)};
}

// Calls change(colours), which gives those after the change, 0..255, and rounds them to nearest: after adding
// 2^23 a float has the whole number in its lowest bits.
template <class Change>
void ChangeColours(const std::uint8_t* in, std::uint8_t* out, int width, const Change& change) {
    const Bytes bytes;
    const Pixels pixels;
    const std::size_t size = static_cast<std::size_t>(width) * kComponents;
    const RowWriter writer(out, width);
    const auto rounded = [=](FloatVector value) HWY_ATTR {
        const auto bits = hn::BitCast(pixels, hn::Add(value, hn::Set(Floats(), 0x1p23F)));
        return hn::And(bits, hn::Set(pixels, 255));
    };
    for (std::size_t i = 0; i < size; i += hn::Lanes(bytes)) {
        const auto before = hn::BitCast(pixels, hn::Load(bytes, in + i));
        const Colours after = change(Split(before));
        const auto blueGreen = hn::Or(rounded(after.blue), hn::ShiftLeft<8>(rounded(after.green)));
        const auto redAlpha =
            hn::Or(hn::ShiftLeft<16>(rounded(after.red)), hn::And(before, hn::Set(pixels, kOpaque)));
        writer.Write(hn::BitCast(bytes, hn::Or(blueGreen, redAlpha)), i);
    }
}

// Three components and the same bytes of alpha that leave it alone.
ByteVector Repeated(const std::array<std::uint8_t, 4>& pixel) {
    const std::uint32_t lane = pixel[0] | std::uint32_t{pixel[1]} << 8 | std::uint32_t{pixel[2]} << 16 |
                               std::uint32_t{pixel[3]} << 24;
    return hn::BitCast(Bytes(), hn::Set(Pixels(), lane));
}

void AddRow(const std::uint8_t* in, std::uint8_t* out, int width, const ClampedSum& sum) {
    const ByteVector lowest = Repeated(sum.lowest);
    const ByteVector highest = Repeated(sum.highest);
    const ByteVector amount = Repeated(sum.amount);
    ChangeBytes(in, out, width,
                [&](ByteVector c) HWY_ATTR { return hn::Add(hn::Min(hn::Max(c, lowest), highest), amount); });
}

void InvertRow(const std::uint8_t* in, std::uint8_t* out, int width) {
    const ByteVector colourBits = Repeated({255, 255, 255, 0});
    ChangeBytes(in, out, width, [&](ByteVector c) HWY_ATTR { return hn::Xor(c, colourBits); });
}

void ThresholdRow(const std::uint8_t* in, std::uint8_t* out, int width, int level) {
    const Pixels pixels;
    const auto tooDark = hn::Set(Ints(), level * kLumaUnit - 1);
    ChangeBytes(in, out, width, [&](ByteVector row) HWY_ATTR {
        const auto before = hn::BitCast(pixels, row);
        const auto luma = AddScaledLuma(hn::Zero(Ints()), before);
        const auto white = hn::BitCast(pixels, hn::VecFromMask(Ints(), hn::Gt(luma, tooDark)));
        const auto colourBits = hn::Set(pixels, 0x00FFFFFF);
        return hn::BitCast(Bytes(), hn::Or(hn::And(white, colourBits), hn::AndNot(colourBits, before)));
    });
}

void SaturationRow(const std::uint8_t* in, std::uint8_t* out, int width, const SaturationChange& change) {
    const Ints ints;
    const Pixels pixels;
    const Floats floats;
    const auto zero = hn::Zero(ints);
    const auto low = hn::Set(pixels, 255);
    const auto highest = hn::Set(ints, 255);
    const auto half = hn::Set(ints, 1 << (SaturationChange::kBits - 1));
    const auto factor = hn::Set(ints, change.factor);
    const auto lumaFactor = hn::Set(floats, change.lumaFactor);
    ChangeBytes(in, out, width, [&](ByteVector row) HWY_ATTR {
        const auto before = hn::BitCast(pixels, row);
        const auto luma = hn::Mul(hn::ConvertTo(floats, AddScaledLuma(zero, before)), lumaFactor);
        const auto rest = hn::Add(hn::ConvertTo(ints, luma), half);
        const auto changed = [&](PixelVector component) HWY_ATTR {
            const auto product = hn::Mul(hn::BitCast(ints, component), factor);
            const auto whole = hn::ShiftRight<SaturationChange::kBits>(hn::Add(product, rest));
            return hn::BitCast(pixels, hn::Min(hn::Max(whole, zero), highest));
        };
        const auto blue = changed(hn::And(before, low));
        const auto green = changed(hn::And(hn::ShiftRight<8>(before), low));
        const auto red = changed(hn::And(hn::ShiftRight<16>(before), low));
        const auto alpha = hn::And(before, hn::Set(pixels, kOpaque));
        return hn::BitCast(
            Bytes(), hn::Or(hn::Or(blue, hn::ShiftLeft<8>(green)), hn::Or(hn::ShiftLeft<16>(red), alpha)));
    });
}

// The colours of two vectors of pixels, those of the second in the upper halves.
struct ColourPairs {
    ShortVector blue;
    ShortVector green;
    ShortVector red;
};

ColourPairs SplitPairs(PixelVector first, PixelVector second) {
    const Shorts shorts;
    const auto low = hn::Set(Pixels(), 0x000000FF);
    const auto high = hn::Set(Pixels(), 0x00FF0000);
    const auto joined = [=](PixelVector a, PixelVector b) HWY_ATTR {
        return hn::BitCast(shorts, hn::Or(hn::And(a, low), hn::And(b, high)));
    };
    return {joined(first, hn::ShiftLeft<16>(second)),
            joined(hn::ShiftRight<8>(first), hn::ShiftLeft<8>(second)),
            joined(hn::ShiftRight<16>(first), second)};
}

// Calls change(colours of two vectors), which gives those after the change as numbers of 0..255.
template <class Change>
void ChangePairs(const std::uint8_t* in, std::uint8_t* out, int width, const Change& change) {
    const Bytes bytes;
    const Pixels pixels;
    const auto alphaBits = hn::Set(pixels, kOpaque);
    const std::size_t one = hn::Lanes(bytes);
    const std::size_t size = static_cast<std::size_t>(width) * kComponents;
    const RowWriter writer(out, width);
    for (std::size_t i = 0; i < size; i += 2 * one) {
        const bool hasSecond = i + one < size;
        const auto first = hn::BitCast(pixels, hn::Load(bytes, in + i));
        const auto second = hasSecond ? hn::BitCast(pixels, hn::Load(bytes, in + i + one)) : first;
        const ColourPairs after = change(SplitPairs(first, second));
        const auto blue = hn::BitCast(pixels, after.blue);
        const auto green = hn::BitCast(pixels, after.green);
        const auto red = hn::BitCast(pixels, after.red);
        const auto lower = hn::And(hn::Or(blue, hn::ShiftLeft<8>(green)), hn::Set(pixels, 0xFFFF));
        writer.Write(
            hn::BitCast(bytes, hn::Or(hn::Or(lower, hn::ShiftLeft<16>(red)), hn::And(first, alphaBits))), i);
        if (hasSecond) {
            const auto upper = hn::ShiftRight<16>(hn::Or(blue, hn::ShiftLeft<8>(green)));
            const auto colour = hn::Or(upper, hn::And(red, hn::Set(pixels, 0xFF0000)));
            writer.Write(hn::BitCast(bytes, hn::Or(colour, hn::And(second, alphaBits))), i + one);
        }
    }
}

void HueRow(const std::uint8_t* in, std::uint8_t* out, int width, const HueTurn& turn) {
    const Shorts shorts;
    const hn::ScalableTag<std::uint16_t> counts;
    const auto zero = hn::Zero(shorts);
    const auto sextants = hn::Set(shorts, static_cast<std::int16_t>(turn.sextants));
    const auto fraction = hn::Set(counts, turn.fraction);
    ChangePairs(in, out, width, [&](const ColourPairs& c) HWY_ATTR {
        const auto lowest = hn::Min(hn::Min(c.blue, c.green), c.red);
        const auto highest = hn::Max(hn::Max(c.blue, c.green), c.red);
        const auto one = hn::Sub(highest, lowest);
        const auto two = hn::Add(one, one);
        const auto three = hn::Add(two, one);
        const auto four = hn::Add(two, two);
        const auto six = hn::Add(four, two);
        const auto atRed = hn::Sub(c.green, c.blue);
        const auto atGreen = hn::Add(hn::Sub(c.blue, c.red), two);
        const auto atBlue = hn::Add(hn::Sub(c.red, c.green), four);
        auto hue = hn::IfThenElse(hn::Eq(c.green, highest), atGreen, atBlue);
        hue = hn::IfThenElse(hn::Eq(c.red, highest),
                             hn::IfThenElse(hn::Lt(atRed, zero), hn::Add(atRed, six), atRed), hue);
        const auto rest = hn::AverageRound(hn::MulHigh(hn::BitCast(counts, two), fraction), hn::Zero(counts));
        hue = hn::Add(hue, hn::Add(hn::Mul(sextants, one), hn::BitCast(shorts, rest)));
        hue = hn::IfThenElse(hn::Lt(hue, six), hue, hn::Sub(hue, six));
        const auto between = [&](ShortVector share)
                                 HWY_ATTR { return hn::Add(lowest, hn::Min(hn::Max(share, zero), one)); };
        return ColourPairs{between(hn::Sub(two, hn::Abs(hn::Sub(hue, four)))),
                           between(hn::Sub(two, hn::Abs(hn::Sub(hue, two)))),
                           between(hn::Sub(hn::Abs(hn::Sub(hue, three)), one))};
    });
}

void LightnessRow(const std::uint8_t* in, std::uint8_t* out, int width, float amount) {
    const Floats floats;
    const auto half = hn::Set(floats, 0.5F);
    const auto one = hn::Set(floats, 1.0F);
    const auto full = hn::Set(floats, 255.0F);
    const auto amounts = hn::Set(floats, amount);
    ChangeColours(in, out, width, [&](const Colours& c) HWY_ATTR {
        const auto sum =
            hn::Add(hn::Min(hn::Min(c.blue, c.green), c.red), hn::Max(hn::Max(c.blue, c.green), c.red));
        const auto reach = amount > 0 ? hn::Sub(hn::Set(floats, 510.0F), sum) : sum;
        const auto newSum = hn::Add(sum, hn::Mul(reach, amounts));
        const auto room = hn::Max(hn::Sub(full, hn::Abs(hn::Sub(sum, full))), one);
        const auto scale = hn::Div(hn::Sub(full, hn::Abs(hn::Sub(newSum, full))), room);
        const auto middle = hn::Mul(sum, half);
        const auto newMiddle = hn::Mul(newSum, half);
        const auto moved = [&](FloatVector v)
                               HWY_ATTR { return hn::Add(newMiddle, hn::Mul(hn::Sub(v, middle), scale)); };
        return Colours{moved(c.blue), moved(c.green), moved(c.red)};
    });
}

void LumaRow(const std::uint8_t* in, std::uint8_t* luma, int width) {
    const Bytes bytes;
    const Pixels pixels;
    const std::size_t lanes = hn::Lanes(pixels);
    for (std::size_t x = 0; x < static_cast<std::size_t>(width); x += lanes) {
        const auto row = hn::BitCast(pixels, hn::Load(bytes, in + x * kComponents));
        const auto value = hn::BitCast(pixels, RoundedLuma(row));
        hn::StoreU(hn::U8FromU32(value), hn::Rebind<std::uint8_t, Pixels>(), luma + x);
    }
}

const PointKernels& VectorKernels() {
    static constexpr PointKernels kKernels{
        .AddRow = AddRow,
        .InvertRow = InvertRow,
        .ThresholdRow = ThresholdRow,
        .SaturationRow = SaturationRow,
        .HueRow = HueRow,
        .LightnessRow = LightnessRow,
        .LumaRow = LumaRow,
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

const PointKernels& PointKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
