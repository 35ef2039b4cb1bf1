// The row filters of PNG, see PngFilters.h. Formulas: ISO/IEC 15948 (PNG), section 9.
#include "picture/codecs/png/PngFilters.h"

#include <array>
#include <cstdlib>
#include <cstring>

namespace pictorel::codecs {
namespace {

int None(int /*left*/, int /*above*/, int /*corner*/) {
    return 0;
}
int Left(int left, int /*above*/, int /*corner*/) {
    return left;
}
int Above(int /*left*/, int above, int /*corner*/) {
    return above;
}
int Average(int left, int above, int /*corner*/) {
    return (left + above) >> 1;
}
int Paeth(int left, int above, int corner) {
    const int toLeft = std::abs(above - corner);
    const int toAbove = std::abs(left - corner);
    const int toCorner = std::abs(left + above - 2 * corner);
    const int upper = toAbove <= toCorner ? above : corner;
    return toLeft <= toAbove && toLeft <= toCorner ? left : upper;
}

// Filters a row by what `predict` foretells; returns the sum of magnitudes.
template <int (*predict)(int, int, int)>
std::uint64_t FilterRow(const std::uint8_t* row, const std::uint8_t* above, std::uint8_t* out,
                        std::size_t rowBytes, std::size_t pixelBytes) {
    const std::uint8_t* const left = row - pixelBytes;
    const std::uint8_t* const corner = above - pixelBytes;
    for (std::size_t i = 0; i < rowBytes; ++i) {
        out[i] = static_cast<std::uint8_t>(row[i] - predict(left[i], above[i], corner[i]));
    }
    std::uint32_t sum = 0; // 128 x 131,068 bytes at most
    for (std::size_t i = 0; i < rowBytes; ++i) {
        sum += static_cast<std::uint32_t>(out[i] < 128 ? out[i] : 256 - out[i]);
    }
    return sum;
}

using Filter = std::uint64_t (*)(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, std::size_t,
                                 std::size_t);
constexpr std::array<Filter, 5> kFilters{FilterRow<None>, FilterRow<Left>, FilterRow<Above>,
                                         FilterRow<Average>, FilterRow<Paeth>}; // by their numbers

} // namespace

PngRowFilter::PngRowFilter(std::size_t rowBytes, std::size_t pixelBytes)
    : rowBytes_(rowBytes), pixelBytes_(pixelBytes), candidate_(rowBytes) {}

void PngRowFilter::Apply(const std::uint8_t* row, const std::uint8_t* above, std::uint8_t* out) {
    std::uint64_t best = UINT64_MAX;
    for (std::size_t number = 0; number < kFilters.size(); ++number) {
        const std::uint64_t sum = kFilters[number](row, above, candidate_.data(), rowBytes_, pixelBytes_);
        if (sum < best) {
            best = sum;
            out[0] = static_cast<std::uint8_t>(number);
            std::memcpy(out + 1, candidate_.data(), rowBytes_);
        }
    }
}

} // namespace pictorel::codecs
