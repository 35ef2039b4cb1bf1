// The loops of motion blur as plain loops, see MotionKernels.h.
#include "picture/engine/kernels/base/FixedPoint.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/blur/MotionKernels.h"
#include "picture/engine/kernels/blur/MotionLoops-inl.h"

#include <algorithm>

namespace pictorel::engine {
namespace {

std::uint8_t MeanOf(int sum, int tips, const FixedLine& line) {
    const int mean =
        FixedProduct(sum << line.shift, line.perLength) + FixedProduct(tips * kMotionUnit, line.tipShare);
    return static_cast<std::uint8_t>(std::min((mean + FixedLine::kMeanUnit / 2) / FixedLine::kMeanUnit, 255));
}

void Slide(const Stack& stack, const FixedLine& line) {
    std::vector<int> sums(static_cast<std::size_t>(stack.size));
    for (int index = -line.whole; index <= line.whole; ++index) {
        for (int i = 0; i < stack.size; ++i) {
            sums[static_cast<std::size_t>(i)] += stack.Row(index)[i];
        }
    }
    for (int index = 0; index < stack.count; ++index) {
        const std::uint8_t* const before = stack.Row(index - line.whole - 1);
        const std::uint8_t* const leaving = stack.Row(index - line.whole);
        const std::uint8_t* const entering = stack.Row(index + line.whole + 1);
        for (int i = 0; i < stack.size; ++i) {
            int& sum = sums[static_cast<std::size_t>(i)];
            stack.out[index * stack.outStep + i] = MeanOf(sum, before[i] + entering[i], line);
            sum += entering[i] - leaving[i];
        }
    }
}

void SlideAlong(const RowAlong& row, const FixedLine& line) {
    const int before = -(line.whole + 1) * kComponents;
    const int last = line.whole * kComponents;
    for (int component = 0; component < kComponents; ++component) {
        int sum = 0; // of the line around the pixel before the first
        for (int i = before; i < last; i += kComponents) {
            sum += row.in[component + i];
        }
        for (int i = component; i < row.width * kComponents; i += kComponents) {
            sum += row.in[i + last] - row.in[i + before];
            const int tips = row.in[i + before] + row.in[i + last + kComponents];
            row.out[i] = MeanOf(sum, tips, line);
        }
    }
}

void SumPairs(const MotionComponent* centre, const std::vector<WeightedPair>& pairs, std::size_t count,
              MotionComponent* sums) {
    for (std::size_t i = 0; i < count; ++i, ++centre) {
        int sum = 2;
        for (const WeightedPair& pair : pairs) {
            sum += FixedProduct(centre[pair.way] + centre[-pair.way], pair.weight);
        }
        sums[i] = static_cast<MotionComponent>(sum / 4);
    }
}

void NarrowColours(const MotionComponent* wide, int width, std::uint8_t* out) {
    for (int x = 0; x < width; ++x) {
        for (int k = 0; k < 3; ++k) {
            out[kComponents * x + k] =
                static_cast<std::uint8_t>((wide[3 * x + k] + kMotionUnit / 2) / kMotionUnit);
        }
        out[kComponents * x + 3] = 255;
    }
}

constexpr MotionKernels kPlain{
    .Slide = Slide,
    .SlideAlong = SlideAlong,
    .SlideRow = HWY_NAMESPACE::SlideRow,
    .AddToMean = HWY_NAMESPACE::AddToMean,
    .WidenRow = HWY_NAMESPACE::WidenRow,
    .NarrowRow = HWY_NAMESPACE::NarrowRow,
    .WidenColours = HWY_NAMESPACE::WidenColours,
    .NarrowColours = NarrowColours,
    .SumPairs = SumPairs,
};

} // namespace

const MotionKernels& MotionKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
