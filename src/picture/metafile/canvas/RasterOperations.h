// How what is drawn mixes with what is there: operations on two operands (pen or brush, and paper) and on
// three.
#pragma once

#include <QPainter>

#include <cstdint>

namespace pictorel::metafile {

// Operations on two operands are counted from 1 to 16: one less than their truth table, whose bit 2 p + d
// tells the result for pen bit p and paper bit d.
inline constexpr int kCopyPen = 13;

// The painter's mode for it; the plain copy where `operation` is none of the sixteen.
QPainter::CompositionMode CompositionOf(int operation) noexcept;

// Operations on three operands are truth tables of 8 bits: bit 4 p + 2 s + d tells the result for pattern bit
// p, source bit s and paper bit d.
using TernaryOperation = std::uint8_t;
inline constexpr TernaryOperation kCopySource = 0xCC;
inline constexpr TernaryOperation kKeepPaper = 0xAA;

constexpr bool UsesPattern(TernaryOperation operation) noexcept {
    return (operation >> 4) != (operation & 0x0F);
}
constexpr bool UsesSource(TernaryOperation operation) noexcept {
    return (operation >> 2 & 0x33) != (operation & 0x33);
}

// The operation on pattern and paper that one of three becomes where it does not use the source.
constexpr int WithoutSource(TernaryOperation operation) noexcept {
    return ((operation & 0x03) | (operation >> 2 & 0x0C)) + 1;
}
static_assert(WithoutSource(0xF0) == kCopyPen && WithoutSource(0x55) == 6 && WithoutSource(0x5A) == 7);

// The operation's result for each bit of the operands.
constexpr std::uint32_t Combined(TernaryOperation operation, std::uint32_t pattern, std::uint32_t source,
                                 std::uint32_t paper) noexcept {
    std::uint32_t result = 0;
    for (unsigned row = 0; row < 8; ++row) {
        if ((operation >> row & 1U) != 0) {
            result |= ((row & 4U) != 0 ? pattern : ~pattern) & ((row & 2U) != 0 ? source : ~source) &
                      ((row & 1U) != 0 ? paper : ~paper);
        }
    }
    return result;
}
static_assert(Combined(0x66, 0, 0b1100, 0b1010) == 0b0110); // exclusive or of source and paper

} // namespace pictorel::metafile
