// Looking up every component of a row in a map, in vectors, see PointKernels.h and SectionedMap.h.
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/point/MapKernels.h"

#include <algorithm>

#define HWY_WANT_AVX3_DL // whose shuffles reach over all bytes of a vector
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/point/MapVectors.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h, which includes this file once for each kind of vectors.
#include "picture/engine/kernels/base/LumaLanes-inl.h"
#include "picture/engine/kernels/base/RowWriter-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {
// The looking up leans on what an index beyond its table gives on x86: the entry of its lower four bits.
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128 || !HWY_ARCH_X86

const MapKernels& VectorKernels() {
    return MapKernels::Plain();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<std::uint8_t>;
using ByteVector = hn::Vec<Bytes>;

// A block of pixels as four vectors: of pixels, or of one component each.
struct Block {
    ByteVector v0;
    ByteVector v1;
    ByteVector v2;
    ByteVector v3;
};

#if HWY_TARGET == HWY_AVX3_DL

// Looks up the values of vectors: a shuffle of two vectors reaches one half of the map.
class Lookup {
  public:
    explicit Lookup(const SectionedMap& map)
        : map_{Quarter(map, 0), Quarter(map, 1), Quarter(map, 2), Quarter(map, 3)} {}

    HWY_INLINE ByteVector operator()(ByteVector values) const {
        const __m512i lower = _mm512_permutex2var_epi8(map_.v0.raw, values.raw, map_.v1.raw);
        const __m512i upper = _mm512_permutex2var_epi8(map_.v2.raw, values.raw, map_.v3.raw);
        return ByteVector{_mm512_mask_mov_epi8(lower, _mm512_movepi8_mask(values.raw), upper)};
    }

  private:
    static HWY_INLINE ByteVector Quarter(const SectionedMap& map, std::size_t quarter) {
        const Bytes bytes;
        return hn::LoadU(bytes, map.plain.data() + quarter * hn::Lanes(bytes));
    }

    Block map_;
};

#else

// Looks up the values of vectors.
class Lookup {
  public:
    explicit Lookup(const SectionedMap& map) : differences_(map.differences.data()) {}

    HWY_INLINE ByteVector operator()(ByteVector values) const {
        const Bytes bytes;
        const auto upper = hn::Xor(values, hn::Set(bytes, static_cast<std::uint8_t>(SectionedMap::kHalf)));
        ByteVector result = hn::Zero(bytes);
        // A shuffle gives 0 for indices with the sign bit: in each half those of the other half, and those
        // that lie before the section.
        ByteVector left = values;
        ByteVector right = upper;
        for (std::size_t first = 0; first < SectionedMap::kHalf; first += SectionedMap::kSection) {
            result = hn::Xor(result, hn::TableLookupBytesOr0(Section(first), left));
            result = hn::Xor(result, hn::TableLookupBytesOr0(Section(SectionedMap::kHalf + first), right));
            left = Lowered(left);
            right = Lowered(right);
        }
        return result;
    }

  private:
    HWY_INLINE ByteVector Section(std::size_t first) const {
        return hn::LoadDup128(Bytes(), differences_ + first);
    }

    // The next section begins at 0; what is negative stays negative.
    static HWY_INLINE ByteVector Lowered(ByteVector values) {
        const hn::ScalableTag<std::int8_t> numbers;
        const auto lowered = hn::SaturatedSub(
            hn::BitCast(numbers, values), hn::Set(numbers, static_cast<std::int8_t>(SectionedMap::kSection)));
        return hn::BitCast(Bytes(), lowered);
    }

    const std::uint8_t* differences_;
};

#endif

// Of 4 x 4 pixels or components, rows become columns and back.
HWY_INLINE Block Transposed(const Block& block) {
    const Bytes bytes;
    const hn::ScalableTag<std::uint32_t> fours;
    const hn::ScalableTag<std::uint64_t> eights;
    const auto a = hn::BitCast(fours, block.v0);
    const auto b = hn::BitCast(fours, block.v1);
    const auto c = hn::BitCast(fours, block.v2);
    const auto d = hn::BitCast(fours, block.v3);
    const auto lowAB = hn::BitCast(eights, hn::InterleaveLower(fours, a, b));
    const auto lowCD = hn::BitCast(eights, hn::InterleaveLower(fours, c, d));
    const auto highAB = hn::BitCast(eights, hn::InterleaveUpper(fours, a, b));
    const auto highCD = hn::BitCast(eights, hn::InterleaveUpper(fours, c, d));
    return {hn::BitCast(bytes, hn::InterleaveLower(eights, lowAB, lowCD)),
            hn::BitCast(bytes, hn::InterleaveUpper(eights, lowAB, lowCD)),
            hn::BitCast(bytes, hn::InterleaveLower(eights, highAB, highCD)),
            hn::BitCast(bytes, hn::InterleaveUpper(eights, highAB, highCD))};
}

// The bytes of a row of 4 x 4 in the order of its columns; twice gives them back.
HWY_INLINE ByteVector Regrouped(ByteVector v) {
    alignas(16) static constexpr std::uint8_t kOrder[16] = {0, 4, 8,  12, 1, 5, 9,  13,
                                                            2, 6, 10, 14, 3, 7, 11, 15};
    return hn::TableLookupBytes(v, hn::LoadDup128(Bytes(), kOrder));
}

HWY_INLINE Block Regrouped(const Block& block) {
    return {Regrouped(block.v0), Regrouped(block.v1), Regrouped(block.v2), Regrouped(block.v3)};
}

HWY_INLINE Block LoadBlock(const std::uint8_t* from) {
    const Bytes bytes;
    const std::size_t lanes = hn::Lanes(bytes);
    return {hn::Load(bytes, from), hn::Load(bytes, from + lanes), hn::Load(bytes, from + 2 * lanes),
            hn::Load(bytes, from + 3 * lanes)};
}

// Calls change(block of pixels) for a whole row. What is left of a row at its end goes through a block of its
// own.
template <class Change>
HWY_INLINE void ChangeBlocks(const std::uint8_t* in, std::uint8_t* out, int width, const Change& change) {
    const Bytes bytes;
    const std::size_t lanes = hn::Lanes(bytes);
    const std::size_t size = static_cast<std::size_t>(width) * kComponents;
    const RowWriter writer(out, width);
    std::size_t i = 0;
    for (; i + 4 * lanes <= size; i += 4 * lanes) {
        const Block block = change(LoadBlock(in + i));
        writer.Write(block.v0, i);
        writer.Write(block.v1, i + lanes);
        writer.Write(block.v2, i + 2 * lanes);
        writer.Write(block.v3, i + 3 * lanes);
    }
    if (i < size) {
        HWY_ALIGN std::uint8_t rest[4 * hn::MaxLanes(bytes)] = {};
        std::copy(in + i, in + size, rest);
        const Block block = change(LoadBlock(rest));
        hn::Store(block.v0, bytes, rest);
        hn::Store(block.v1, bytes, rest + lanes);
        hn::Store(block.v2, bytes, rest + 2 * lanes);
        hn::Store(block.v3, bytes, rest + 3 * lanes);
        std::copy(rest, rest + (size - i), out + i);
    }
}

void MapRow(const std::uint8_t* in, std::uint8_t* out, int width, const SectionedMaps& maps) {
    const Lookup blue(maps.blue);
    const Lookup green(maps.green);
    const Lookup red(maps.red);
    ChangeBlocks(in, out, width, [&](const Block& pixels) HWY_ATTR {
        const Block components = Transposed(Regrouped(pixels));
        return Regrouped(
            Transposed({blue(components.v0), green(components.v1), red(components.v2), components.v3}));
    });
}

// Byte 0 of every pixel, for all four vectors of a block: those of vector k from byte 4 k of each 16 on.
HWY_INLINE ByteVector LowestBytes(const Block& block) {
    const Block grouped = Regrouped(block);
    return Transposed(grouped).v0;
}

HWY_INLINE ByteVector LumaOf(ByteVector pixels) {
    return hn::BitCast(Bytes(), RoundedLuma(hn::BitCast(PixelLanes(), pixels)));
}

void AddByLumaRow(const std::uint8_t* in, std::uint8_t* out, int width, const SectionedChange& change) {
    const Lookup raising(change.raising);
    const Lookup lowering(change.lowering);
    // For vector k of a block: each of its four bytes three times, and nothing for alpha.
    alignas(16) static constexpr std::uint8_t kSpread[16] = {0, 0, 0, 0x80, 1, 1, 1, 0x80,
                                                             2, 2, 2, 0x80, 3, 3, 3, 0x80};
    const Bytes bytes;
    const ByteVector spread = hn::LoadDup128(bytes, kSpread);
    ChangeBlocks(in, out, width, [&](const Block& p) HWY_ATTR {
        const ByteVector luma = LowestBytes({LumaOf(p.v0), LumaOf(p.v1), LumaOf(p.v2), LumaOf(p.v3)});
        const ByteVector raise = raising(luma);
        const ByteVector lower = lowering(luma);
        const auto changed = [&](ByteVector pixels, std::uint8_t k) HWY_ATTR {
            const auto places = hn::Add(spread, hn::Set(bytes, static_cast<std::uint8_t>(4 * k)));
            const auto raised = hn::SaturatedAdd(pixels, hn::TableLookupBytesOr0(raise, places));
            return hn::SaturatedSub(raised, hn::TableLookupBytesOr0(lower, places));
        };
        return Block{changed(p.v0, 0), changed(p.v1, 1), changed(p.v2, 2), changed(p.v3, 3)};
    });
}

const MapKernels& VectorKernels() {
    static constexpr MapKernels kKernels{
        .MapRow = MapRow,
        .AddByLumaRow = AddByLumaRow,
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

const MapKernels& MapKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
