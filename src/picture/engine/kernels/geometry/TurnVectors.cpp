// Pixels that change places in registers, see TurnKernels.h.
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/geometry/TurnKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/geometry/TurnVectors.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
// After foreach_target.h, which includes this file once for each kind of vectors.
#include "picture/engine/kernels/base/RowWriter-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {
#if HWY_TARGET == HWY_SCALAR // vectors of one number: the processor has none that we know

const TurnKernels& VectorKernels() {
    return TurnKernels::Plain();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

constexpr int kSide = 4;
constexpr int kLinePixels = kSide * kSide; // of a line of the cache
constexpr hn::FixedTag<std::uint8_t, kSide * kPixelBytes> kBytes;
constexpr hn::FixedTag<std::uint32_t, kSide> kPixels;
constexpr hn::FixedTag<std::uint64_t, kSide / 2> kPairs;

template <bool kStreams>
HWY_INLINE void TransposeSquare(const std::uint8_t* from, std::ptrdiff_t fromStep, std::uint8_t* to,
                                std::ptrdiff_t toStep) {
    const auto column = [=](int x)
                            HWY_ATTR { return hn::BitCast(kPixels, hn::LoadU(kBytes, from + x * fromStep)); };
    const auto a = column(0);
    const auto b = column(1);
    const auto c = column(2);
    const auto d = column(3);
    const auto upperLeft = hn::BitCast(kPairs, hn::InterleaveLower(kPixels, a, b));
    const auto upperRight = hn::BitCast(kPairs, hn::InterleaveLower(kPixels, c, d));
    const auto lowerLeft = hn::BitCast(kPairs, hn::InterleaveUpper(kPixels, a, b));
    const auto lowerRight = hn::BitCast(kPairs, hn::InterleaveUpper(kPixels, c, d));
    const auto write = [=](int y, auto row) HWY_ATTR {
        if constexpr (kStreams) {
            hn::Stream(hn::BitCast(kBytes, row), kBytes, to + y * toStep);
        } else {
            hn::StoreU(hn::BitCast(kBytes, row), kBytes, to + y * toStep);
        }
    };
    write(0, hn::InterleaveLower(kPairs, upperLeft, upperRight));
    write(1, hn::InterleaveUpper(kPairs, upperLeft, upperRight));
    write(2, hn::InterleaveLower(kPairs, lowerLeft, lowerRight));
    write(3, hn::InterleaveUpper(kPairs, lowerLeft, lowerRight));
}

template <bool kStreams>
void TransposeSquares(const TurnTile& tile, int width, int height) {
    for (int y = 0; y < height; y += kSide) {
        for (int x = 0; x < width; x += kSide) {
            if (tile.ahead !=
                nullptr) { // each square fetches a line: four, one below another, their four rows
                const int row = x + y / kSide % kSide;
                FetchAhead(tile.ahead + row * tile.fromStep + y / kLinePixels * kLinePixels * kPixelBytes);
            }
            TransposeSquare<kStreams>(tile.from + x * tile.fromStep + y * kPixelBytes, tile.fromStep,
                                      tile.to + y * tile.toStep + x * kPixelBytes, tile.toStep);
        }
    }
}

// The squares, then what is left of the tile on the right and below.
void Transpose(const TurnTile& tile) {
    const int width = tile.width / kSide * kSide;
    const int height = tile.height / kSide * kSide;
    tile.streams ? TransposeSquares<true>(tile, width, height) : TransposeSquares<false>(tile, width, height);
    TurnTile rest = tile;
    rest.from += width * tile.fromStep;
    rest.to += width * kPixelBytes;
    rest.width = tile.width - width;
    TurnKernels::Plain().Transpose(rest);
    rest = tile;
    rest.from += height * kPixelBytes;
    rest.to += height * tile.toStep;
    rest.height = tile.height - height;
    rest.width = width;
    TurnKernels::Plain().Transpose(rest);
}

void MirrorRow(const std::uint8_t* in, std::uint8_t* out, int width) {
    const hn::ScalableTag<std::uint8_t> bytes;
    const hn::ScalableTag<std::uint32_t> pixels;
    const auto lanes = static_cast<int>(hn::Lanes(pixels));
    const RowWriter writer(out, width);
    int x = 0;
    for (; x + lanes <= width; x += lanes) {
        const auto block = hn::BitCast(pixels, hn::LoadU(bytes, in + (width - lanes - x) * kPixelBytes));
        writer.Write(hn::BitCast(bytes, hn::Reverse(pixels, block)),
                     static_cast<std::size_t>(x) * kPixelBytes);
    }
    TurnKernels::Plain().MirrorRow(in, out + x * kPixelBytes, width - x);
}

void EndStreaming() {
    hwy::FlushStream();
}

const TurnKernels& VectorKernels() {
    static constexpr TurnKernels kKernels{
        .Transpose = Transpose,
        .MirrorRow = MirrorRow,
        .EndStreaming = EndStreaming,
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

const TurnKernels& TurnKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
