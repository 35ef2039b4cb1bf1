// The loops of motion blur as plain loops, see MotionRows.h.
#include "picture/engine/kernels/blur/MotionRows.h"

#include "picture/PixelArray.h"

#include <cmath>

namespace pictorel::engine {
namespace {

constexpr int kFixedUnit = 32768;

// The product of two 16-bit numbers in 1/32768, rounded.
int Product(int a, int b) {
    return (a * b + kFixedUnit / 2) >> 15;
}

std::uint8_t MeanOf(int sum, int tips, const FixedLine& line) {
    const int mean = Product(sum << line.shift, line.perLength) + Product(tips * kWideUnit, line.tipShare);
    return static_cast<std::uint8_t>(std::min((mean + FixedLine::kMeanUnit / 2) / FixedLine::kMeanUnit, 255));
}

} // namespace

std::optional<FixedLine> FixedLine::Of(const Line& line) {
    const int sumOfWhites = (2 * line.whole + 2) * 255; // while one row enters before another leaves
    if (sumOfWhites >= kFixedUnit) {
        return std::nullopt;
    }
    int shift = 0;
    while ((sumOfWhites << (shift + 1)) < kFixedUnit) {
        ++shift;
    }
    const double perLength = kMeanUnit / line.length * kFixedUnit / (1 << shift);
    if (perLength >= kFixedUnit - 1) {
        return std::nullopt;
    }
    const double tipShare = kMeanUnit / line.length * line.tip * kFixedUnit / kWideUnit;
    return FixedLine{line.whole, shift, static_cast<std::int16_t>(std::lround(perLength)),
                     static_cast<std::int16_t>(std::lround(tipShare))};
}

namespace scalar {

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
    constexpr int kComponents = PixelArray::kComponents;
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

void SumPairs(const WideComponent* centre, const std::vector<WeightedPair>& pairs, std::size_t count,
              WideComponent* sums) {
    for (std::size_t i = 0; i < count; ++i, ++centre) {
        int sum = 2;
        for (const WeightedPair& pair : pairs) {
            sum += Product(centre[pair.way] + centre[-pair.way], pair.weight);
        }
        sums[i] = static_cast<WideComponent>(sum / 4);
    }
}

} // namespace scalar

} // namespace pictorel::engine
