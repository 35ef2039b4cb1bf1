// Numbers that look random but depend on nothing except the position: the same picture always gets the same.
#pragma once

#include <cstdint>

namespace pictorel::engine {

inline constexpr std::uint32_t kFirstMixer = 0x9E3779B1U;
inline constexpr std::uint32_t kSecondMixer = 0xA24BAED5U;
inline constexpr std::uint32_t kColumnStride = 0xB5297A4DU;

// A mixing of 32 bits in which every bit of the input reaches every bit of the result: multiplications by odd
// numbers and shifts, so that different inputs give different results.
constexpr std::uint32_t MixBits(std::uint32_t bits) noexcept {
    bits ^= bits >> 16;
    bits *= kFirstMixer;
    bits ^= bits >> 15;
    bits *= kSecondMixer;
    bits ^= bits >> 16;
    return bits;
}

// More bits from mixed ones.
constexpr std::uint32_t MixOnce(std::uint32_t bits) noexcept {
    bits *= kSecondMixer;
    return bits ^ bits >> 16;
}

// 32 evenly spread bits for the row `y`, to be given to RandomAt.
constexpr std::uint32_t RandomRow(int y) noexcept {
    return MixBits(static_cast<std::uint32_t>(y) + 0x6C8E9CF5U);
}

constexpr std::uint32_t RandomAt(std::uint32_t row, int x) noexcept {
    return MixBits(row + static_cast<std::uint32_t>(x) * kColumnStride);
}

} // namespace pictorel::engine
