// Checked conversions, see Numbers.h.
#include "platform/Numbers.h"

#include <QString>

#include <cmath>
#include <limits>

namespace pictorel {
namespace {

template <typename Narrow>
Narrow CheckedNarrow(std::int64_t value) {
    if (value < std::numeric_limits<Narrow>::min() || value > std::numeric_limits<Narrow>::max()) {
        throw NumberError("Overflow: " + std::to_string(value));
    }
    return static_cast<Narrow>(value);
}

std::int64_t RoundToWhole(double value) {
    constexpr double kExact = 9007199254740992.0; // 2^53
    if (!(std::abs(value) < kExact)) {
        throw NumberError("Overflow");
    }
    const double floor = std::floor(value);
    const double fraction = value - floor;
    const auto below = static_cast<std::int64_t>(floor);
    if (fraction < 0.5) {
        return below;
    }
    return fraction > 0.5 || below % 2 != 0 ? below + 1 : below;
}

} // namespace

std::int32_t RoundHalfEven(double value) {
    return CheckedNarrow<std::int32_t>(RoundToWhole(value));
}

std::int16_t ToInt16(std::int64_t value) {
    return CheckedNarrow<std::int16_t>(value);
}

std::int16_t ToInt16(double value) {
    return CheckedNarrow<std::int16_t>(RoundToWhole(value));
}

std::uint8_t ToByte(std::int64_t value) {
    return CheckedNarrow<std::uint8_t>(value);
}

std::int64_t ToWholeNumber(const QString& text) {
    bool isNumber = false;
    const double value = text.trimmed().toDouble(&isNumber);
    if (!isNumber) {
        throw NumberError("Not a number: " + text.toStdString());
    }
    return RoundToWhole(value);
}

std::int16_t ToInt16(const QString& text) {
    return ToInt16(ToWholeNumber(text));
}

} // namespace pictorel
