#include "base/numbers.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "support/comma_locale.h"

using namespace orbinex;
using namespace std::literals;

namespace {

TEST(Integers, areDigitsWithAnOptionalSign) {
    const std::pair<std::string_view, std::optional<std::int64_t>> cases[] = {
        {"0", 0},
        {"+7", 7},
        {"-7", -7},
        {"-0", 0},
        {"007", 7},
        {"9223372036854775807", INT64_MAX},
        {"-9223372036854775808", INT64_MIN},
        {"9223372036854775808", std::nullopt},
        {"-9223372036854775809", std::nullopt},
        {"", std::nullopt},
        {"+", std::nullopt},
        {"-", std::nullopt},
        {"+-1", std::nullopt},
        {"--1", std::nullopt},
        {" 1", std::nullopt},
        {"1 ", std::nullopt},
        {"1.0", std::nullopt},
        {"0x10", std::nullopt},
        {"1\0"sv, std::nullopt},
        {"\u0661", std::nullopt},
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(parseInteger(text), expected) << text;
}

TEST(Decimals, takeEveryFormThatAProgramWrites) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const std::pair<std::string_view, std::optional<double>> cases[] = {
        {"-6.5", -6.5},
        {"+6.", 6},
        {".5", 0.5},
        {"1e3", 1000},
        {"1E-3", 0.001},
        {"0x1.8p1", 3},
        {"-0X.8", -0.5},
        {"inf", infinity},
        {"-Infinity", -infinity},
        {"1e400", infinity},
        {"-1e400", -infinity},
        {"0.001e400", infinity},
        {"1e99999999999999999999", infinity},
        {"0e99999999999999999999", 0},
        {"1e-99999999999999999999", 0},
        {"1000e-400", 0},
        {"0x1p5000", infinity},
        {"0x1p-5000", 0},
        {"0x1p-1074", 5e-324},
        {"4.9e-324", 5e-324},
        {"2.2250738585072011e-308", 2.2250738585072011e-308},
        {"", std::nullopt},
        {".", std::nullopt},
        {"-", std::nullopt},
        {"+-1", std::nullopt},
        {"-+1", std::nullopt},
        {" 1", std::nullopt},
        {"1 ", std::nullopt},
        {"1,5", std::nullopt},
        {"1e", std::nullopt},
        {"1e+", std::nullopt},
        {"0x", std::nullopt},
        {"0xinf", std::nullopt},
        {"0x-1", std::nullopt},
        {"0x1p+-3", std::nullopt},
        {"1e+-3", std::nullopt},
        {"infinit", std::nullopt},
        {"1.5\0"sv, std::nullopt},
        {"1\0"
         "2"sv,
         std::nullopt},
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(parseDecimal(text), expected) << text;

    EXPECT_TRUE(std::isnan(parseDecimal("nan").value_or(0)));
    EXPECT_TRUE(std::signbit(parseDecimal("-0").value_or(1)));
}

TEST(FixedFormat, isThatOfPrintf) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 20000; ++i) {
        // Any bit pattern, then one of everyday size; the latter often lies half-way between two results.
        const double values[] = {std::bit_cast<double>(random()),
                                 static_cast<double>(static_cast<int>(random() % 40001) - 20000) / 16};
        for (const double value : values) {
            if (std::isnan(value)) continue;
            for (const int decimals : {0, 1, 3, 9}) {
                std::array<char, 400> expected{};
                std::snprintf(expected.data(), expected.size(), "%.*f", decimals, value);
                ASSERT_EQ(formatFixed(value, decimals), expected.data());
            }
        }
    }
    EXPECT_EQ(formatFixed(-0.04, 1), "-0.0");
    EXPECT_EQ(formatFixed(std::numeric_limits<double>::infinity(), 1), "inf");
    EXPECT_EQ(formatFixed(std::numeric_limits<double>::quiet_NaN(), 1), "nan");
}

TEST(DecimalFormat, isReadBackAsTheSameNumber) {
    std::mt19937_64 random(8);
    for (int i = 0; i < 50000; ++i) {
        const auto value = std::bit_cast<double>(random());
        const auto read = parseDecimal(formatDecimal(value));
        ASSERT_TRUE(read);
        const auto same = std::bit_cast<std::uint64_t>(*read) == std::bit_cast<std::uint64_t>(value);
        ASSERT_TRUE(same || (std::isnan(*read) && std::isnan(value))) << value;
    }
    EXPECT_EQ(formatDecimal(-6), "-6");
    EXPECT_EQ(formatDecimal(0.1), "0.1");
}

TEST(Numbers, areTheSameWhereTheUserWritesACommaForThePoint) {
    const test::CommaLocale german;
    EXPECT_EQ(formatFixed(1234.5, 1), "1234.5");
    EXPECT_EQ(formatDecimal(1234.5), "1234.5");
    EXPECT_EQ(parseDecimal("1234.5"), 1234.5);
    EXPECT_EQ(parseDecimal("1234,5"), std::nullopt);
    EXPECT_EQ(parseInteger("1.234"), std::nullopt);
}

}  // namespace
