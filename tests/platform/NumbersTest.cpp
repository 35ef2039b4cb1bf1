// Conversions that round halves to even and refuse what does not fit.
#include "platform/Numbers.h"

#include <QString>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

namespace pictorel {
namespace {

// What the conversion gives, or nothing where it refuses.
template <class Convert>
auto ValueOrNothing(const Convert& convert) -> std::optional<decltype(convert())> {
    try {
        return convert();
    } catch (const NumberError&) {
        return std::nullopt;
    }
}

TEST(Numbers, RoundHalvesToTheEvenNeighbour) {
    struct Case {
        double value;
        std::int32_t rounded;
    };
    const auto cases = {
        Case{0.5, 0},
        Case{1.5, 2},
        Case{2.5, 2},
        Case{3.5, 4},
        Case{-0.5, 0},
        Case{-1.5, -2},
        Case{-2.5, -2},
        Case{-3.5, -4},
        Case{0.49999999999999994, 0}, // adding a half and cutting gives 1
        Case{0.5000000001, 1},
        Case{-0.5000000001, -1},
        Case{-2.4, -2},
        Case{-2.6, -3},
        Case{2147483647.4, 2147483647},
        Case{-2147483648.5, std::numeric_limits<std::int32_t>::min()},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(RoundHalfEven(c.value), c.rounded) << c.value;
    }
}

TEST(Numbers, WhatNo32BitNumberHoldsIsRefused) {
    for (const double value :
         {2147483647.5, -2147483649.0, 1e300, -1e300, HUGE_VAL, -HUGE_VAL, std::nan("")}) {
        EXPECT_THROW(RoundHalfEven(value), NumberError) << value;
    }
}

TEST(Numbers, SixteenBitsHaveTheirLimits) {
    EXPECT_EQ(ToInt16(std::int64_t{32767}), 32767);
    EXPECT_EQ(ToInt16(std::int64_t{-32768}), -32768);
    EXPECT_THROW(ToInt16(std::int64_t{32768}), NumberError);
    EXPECT_THROW(ToInt16(std::int64_t{-32769}), NumberError);
    EXPECT_THROW(ToInt16(std::int64_t{1} << 32), NumberError) << "the low half is 0";
    EXPECT_EQ(ToInt16(32767.49), 32767);
    EXPECT_THROW(ToInt16(32767.5), NumberError) << "refused after rounding";
    EXPECT_EQ(ToInt16(-32768.5), -32768);
}

TEST(Numbers, BytesHaveTheirLimits) {
    EXPECT_EQ(ToByte(0), 0);
    EXPECT_EQ(ToByte(255), 255);
    EXPECT_THROW(ToByte(256), NumberError);
    EXPECT_THROW(ToByte(-1), NumberError);
}

TEST(Numbers, TextsOfFields) {
    struct Case {
        const char* text;
        std::optional<std::int16_t> value;
    };
    const auto cases = {
        Case{"12", 12},
        Case{" 12 ", 12},
        Case{"\t12\n", 12},
        Case{"+12", 12},
        Case{"-12", -12},
        Case{"007", 7},
        Case{"12.5", 12},
        Case{"13.5", 14},
        Case{".5", 0},
        Case{"32767", 32767},
        Case{"1e3", 1000},
        Case{"32768", std::nullopt},
        Case{"", std::nullopt},
        Case{" ", std::nullopt},
        Case{"abc", std::nullopt},
        Case{"12 34", std::nullopt},
        Case{"12px", std::nullopt},
        Case{"--1", std::nullopt},
        Case{"99999999999", std::nullopt},
        Case{"1e400", std::nullopt},
        Case{"inf", std::nullopt},
        Case{"nan", std::nullopt},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ValueOrNothing([&] { return ToInt16(QString::fromUtf8(c.text)); }), c.value)
            << '"' << c.text << '"';
    }
    EXPECT_EQ(ToWholeNumber(QStringLiteral("99999999999")), 99999999999)
        << "a field may hold more than 32 bits";
}

} // namespace
} // namespace pictorel
