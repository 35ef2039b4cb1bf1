// The row loops of the view's filters, compiled for each vector unit and chosen at run time, see
// ViewFilters.h.
#include "picture/PixelMath.h"
#include "view/ViewFilters.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "view/ViewFilterRows.cpp"
#include <hwy/foreach_target.h>
// The targets' own order of inclusion.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

constexpr int kMixedBits = 6; // a byte times 64 leaves 16 bits room for overshoot
constexpr int kRowShift = kWeightBits - kMixedBits;
constexpr int kColumnShift = kWeightBits + kMixedBits;

// Plain loops: no neighbours mix, and compilers use the whole vector unit.
void MixThreeRows(const std::uint8_t* const* rows, const std::int16_t* weights, int count,
                  std::int16_t* mixed) {
    const std::uint8_t *const row0 = rows[0], *const row1 = rows[1], *const row2 = rows[2];
    const std::int16_t weight0 = weights[0], weight1 = weights[1], weight2 = weights[2];
    for (int i = 0; i < count; ++i) {
        const int sum = row0[i] * weight0 + row1[i] * weight1 + row2[i] * weight2;
        mixed[i] = static_cast<std::int16_t>((sum + (1 << (kRowShift - 1))) >> kRowShift);
    }
}

void MixFourRows(const std::uint8_t* const* rows, const std::int16_t* weights, int count,
                 std::int16_t* mixed) {
    const std::uint8_t *const row0 = rows[0], *const row1 = rows[1], *const row2 = rows[2],
                              *const row3 = rows[3];
    const std::int16_t weight0 = weights[0], weight1 = weights[1], weight2 = weights[2], weight3 = weights[3];
    for (int i = 0; i < count; ++i) {
        const int sum = row0[i] * weight0 + row1[i] * weight1 + row2[i] * weight2 + row3[i] * weight3;
        mixed[i] = static_cast<std::int16_t>((sum + (1 << (kRowShift - 1))) >> kRowShift);
    }
}

void PremultiplyHere(const std::uint8_t* plain, int count, std::uint8_t* premultiplied) {
    for (int x = 0; x < count; ++x) {
        StorePixel(premultiplied + 4 * x, Premultiplied(LoadPixel(plain + 4 * x)));
    }
}

#if HWY_TARGET == HWY_SCALAR
void MixColumnsHere(const std::int16_t* mixed, const Taps* columns, int count, int firstColumn,
                    std::uint8_t* pixels) {
    for (int x = 0; x < count; ++x) {
        const std::int16_t* const source = mixed + 4 * (columns[x].first - firstColumn);
        int cap = 255; // the alpha, as soon as it is known
        for (int c = 3; c >= 0; --c) {
            int sum = 1 << (kColumnShift - 1);
            for (int t = 0; t < kCubicTaps; ++t)
                sum += source[4 * t + c] * columns[x].weights[static_cast<std::size_t>(t)];
            const int value = std::clamp(sum >> kColumnShift, 0, cap);
            cap = c == 3 ? value : cap;
            pixels[4 * x + c] = static_cast<std::uint8_t>(value);
        }
    }
}
#else
// One pixel a turn, since each begins at a place of its own: its four components fill a vector.
void MixColumnsHere(const std::int16_t* HWY_RESTRICT mixed, const Taps* HWY_RESTRICT columns, int count,
                    int firstColumn, std::uint8_t* HWY_RESTRICT pixels) {
    const hn::FixedTag<std::int16_t, 8> wide;
    const hn::FixedTag<std::int32_t, 4> sums;
    const hn::FixedTag<std::int16_t, 4> words;
    const hn::FixedTag<std::uint8_t, 4> bytes;
    const auto half = hn::Set(sums, 1 << (kColumnShift - 1));
    for (int x = 0; x < count; ++x) {
        const std::int16_t* const source = mixed + 4 * (columns[x].first - firstColumn);
        std::int32_t weightPairs[2];
        hwy::CopyBytes<sizeof weightPairs>(columns[x].weights.data(), weightPairs);
        const auto first = hn::InterleaveLower(wide, hn::LoadU(wide, source), hn::LoadU(wide, source + 4));
        const auto second =
            hn::InterleaveLower(wide, hn::LoadU(wide, source + 8), hn::LoadU(wide, source + 12));
        auto odd = hn::Zero(sums);
        auto even = hn::ReorderWidenMulAccumulate(
            sums, first, hn::BitCast(wide, hn::Set(sums, weightPairs[0])), half, odd);
        even = hn::ReorderWidenMulAccumulate(sums, second, hn::BitCast(wide, hn::Set(sums, weightPairs[1])),
                                             even, odd);
        const auto mean = hn::ShiftRight<kColumnShift>(hn::RearrangeToOddPlusEven(even, odd));
        const auto capped = hn::Min(hn::DemoteTo(words, mean), hn::DemoteTo(words, hn::Broadcast<3>(mean)));
        hn::StoreU(hn::DemoteTo(bytes, capped), bytes, pixels + 4 * x);
    }
}
#endif

} // namespace
} // namespace pictorel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel {
namespace {

HWY_EXPORT(MixThreeRows);
HWY_EXPORT(MixFourRows);
HWY_EXPORT(MixColumnsHere);
HWY_EXPORT(PremultiplyHere);

} // namespace

void MixRows(int taps, const std::array<const std::uint8_t*, 4>& rows,
             const std::array<std::int16_t, 4>& weights, int count, std::int16_t* mixed) {
    if (taps == kAreaTaps) {
        HWY_DYNAMIC_DISPATCH(MixThreeRows)(rows.data(), weights.data(), count, mixed);
    } else {
        HWY_DYNAMIC_DISPATCH(MixFourRows)(rows.data(), weights.data(), count, mixed);
    }
}

void MixColumns(const std::int16_t* mixed, int firstColumn, const std::vector<Taps>& columns,
                std::uint8_t* pixels) {
    HWY_DYNAMIC_DISPATCH(MixColumnsHere)
    (mixed, columns.data(), static_cast<int>(columns.size()), firstColumn, pixels);
}

void PremultiplyRow(const std::uint8_t* plain, int count, std::uint8_t* premultiplied) {
    HWY_DYNAMIC_DISPATCH(PremultiplyHere)(plain, count, premultiplied);
}

} // namespace pictorel
#endif
