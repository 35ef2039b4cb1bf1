// Conversions to 16-bit and byte numbers that round halves to even and refuse what does not fit.
#pragma once

#include <cstdint>
#include <stdexcept>

class QString;

namespace pictorel {

struct NumberError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The nearest whole number, halves to the even neighbour. Throws NumberError for what no 32-bit number holds.
std::int32_t RoundHalfEven(double value);

// Throw NumberError where the value does not fit.
std::int16_t ToInt16(std::int64_t value);
std::int16_t ToInt16(double value); // rounds first
std::uint8_t ToByte(std::int64_t value);

// The text as a 16-bit whole number, blanks around it ignored, decimals rounded. Throws NumberError.
std::int16_t ToInt16(const QString& text);

// The text as a whole number of any size that a field can hold. Throws NumberError where it is no number.
std::int64_t ToWholeNumber(const QString& text);

} // namespace pictorel
