// The exit statuses of the program that tries to break the walls.
#pragma once

namespace pictorel::decoder::test {

inline constexpr int kRefused = 0;
inline constexpr int kSucceeded = 10;
inline constexpr int kNotAllStand = 11; // this machine lacks one of the walls that were wanted
inline constexpr int kWrongUse = 12;

} // namespace pictorel::decoder::test
