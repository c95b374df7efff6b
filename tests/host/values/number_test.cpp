#include "host/values/number.h"

#include "host/values/text.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace host {

namespace {

Number number(std::string_view text) {
    return Number::fromText(fromUtf8(text));
}
std::string text(const Number& value) {
    return toUtf8(value.toText());
}

constexpr int64_t kLeast = std::numeric_limits<int64_t>::min();
constexpr int64_t kMost = std::numeric_limits<int64_t>::max();

TEST(NumberTest, WritesAllDigitsAndNoExponent) {
    EXPECT_EQ(text(0), "0");
    EXPECT_EQ(text(-42), "-42");
    EXPECT_EQ(text(number("0.5")), ".5");
    EXPECT_EQ(text(number("-0.5")), "-.5");
    EXPECT_EQ(text(number("0012.3400")), "12.34");
    EXPECT_EQ(text(number(".0001")), ".0001");
    EXPECT_EQ(text(number("1e30")), "1" + std::string(30, '0'));
    EXPECT_EQ(text(number("-0")), "0");
    EXPECT_EQ(text(kLeast), "-9223372036854775808");
}

TEST(NumberTest, ReadsTextByItsDigits) {
    const std::pair<std::string_view, std::string_view> rows[] = {
        {"", "0"},
        {"no digit", "0"},
        {"$1,254.50", "1254.5"},
        {"FY98", "98"},
        {"2 + 2", "22"},
        {"- 5", "-5"},
        {"a-b5", "-5"},
        {"5-", "5"},
        {"+-5", "-5"},
        {"1.2.3", "1.23"},
        {".-5", ".5"},
        {"(030) 123-456", "-30123456"},
        {"(42)", "-42"},
        {"x-5", "-5"},
        {".(5)", ".5"},
        {"1e3", "1000"},
        {"1.5E-3", ".0015"},
        {"-1e+2", "-100"},
        {"Room 2E5", "25"},
        {"1e", "1"},
        {"1e2x", "12"},
        {"1e-999999999999", "0"},
        {"0e999999999999", "0"},
        {"\u0663", "0"},
    };
    for (const auto& [given, expected] : rows) {
        EXPECT_EQ(text(number(given)), expected) << given;
    }
    EXPECT_TRUE(Number::standsIn(u"x1"));
    EXPECT_FALSE(Number::standsIn(u"-.x"));
}

TEST(NumberTest, KeepsFourHundredDigits) {
    const std::string digits = std::string(399, '1') + "7";
    EXPECT_EQ(text(number(digits)), digits);
    EXPECT_EQ(text(number("." + digits)), "." + digits);
    EXPECT_EQ(text(-number(digits)), "-" + digits);
    EXPECT_THROW(number(digits + "1"), NumberError);
    EXPECT_THROW(number("1e400"), NumberError);
    EXPECT_EQ(text(number("1e-400")), "." + std::string(399, '0') + "1");
    EXPECT_EQ(text(number("4e-401")), "0");
    EXPECT_EQ(text(number("5e-401")), "." + std::string(399, '0') + "1");
    // 401 significant digits: the last is rounded away.
    EXPECT_EQ(text(number("1." + std::string(399, '2') + "5")), "1." + std::string(398, '2') + "3");
    EXPECT_THROW(number(std::string(400, '9') + ".9"), NumberError); // rounds up to 401 digits
    // Digits by the ten thousand.
    EXPECT_EQ(text(number("." + std::string(50'000, '3'))), "." + std::string(400, '3'));
}

TEST(NumberTest, AddsSubtractsAndMultipliesExactly) {
    EXPECT_EQ(text(number("0.1") + number("0.2")), ".3");
    EXPECT_EQ(text(number("1.5") - number("1.5")), "0");
    EXPECT_EQ(text(number("-1.25") * number("0.8")), "-1");
    EXPECT_EQ(text(Number(kMost) + 1), "9223372036854775808");
    EXPECT_EQ(text(Number(kMost) + 1 - 1), "9223372036854775807");
    EXPECT_EQ(text(-Number(kLeast)), "9223372036854775808");
    EXPECT_EQ(text(-(-Number(kLeast))), "-9223372036854775808");
    EXPECT_EQ(text(Number(kMost) * kMost), "85070591730234615847396907784232501249");
    EXPECT_EQ(text(number("1e399") * number("1e-400")), ".1");
    const std::string nines(400, '9');
    EXPECT_THROW(number(nines) + 1, NumberError);
    EXPECT_THROW(number(nines) * 2, NumberError);
    EXPECT_EQ(text(number(nines) - number(nines)), "0");
}

TEST(NumberTest, DividesToSixteenPlaces) {
    EXPECT_EQ(text(Number(1) / 3), ".3333333333333333");
    EXPECT_EQ(text(Number(2) / 3), ".6666666666666667");
    EXPECT_EQ(text(Number(-2) / 3), "-.6666666666666667");
    EXPECT_EQ(text(Number(200000) / 3), "66666.6666666666666667");
    EXPECT_EQ(text(Number(6) / -3), "-2");
    EXPECT_EQ(text(Number(1) / 8), ".125");
    EXPECT_EQ(text(number("0.6") / number("0.2")), "3");
    EXPECT_EQ(text(Number(kLeast) / -1), "9223372036854775808");
    EXPECT_EQ(text(Number(1) / 3000), ".0003333333333333");
    EXPECT_EQ(text(Number(1) / number("3e20")), "0");
    EXPECT_EQ(text(Number::divide(2, 3, 2)), ".67");
    EXPECT_EQ(text(Number::divide(7, 2, 0)), "4");
    EXPECT_EQ(text(Number::divide(1, 3, 400)), "." + std::string(400, '3'));
    EXPECT_THROW(Number(1) / 0, NumberError);
    EXPECT_THROW(Number(0) / number("0.0"), NumberError);
}

TEST(NumberTest, ModuloHasTheSignOfTheDivisor) {
    EXPECT_EQ(text(Number::modulo(7, 3)), "1");
    EXPECT_EQ(text(Number::modulo(-7, 3)), "2");
    EXPECT_EQ(text(Number::modulo(7, -3)), "-2");
    EXPECT_EQ(text(Number::modulo(-6, 3)), "0");
    EXPECT_EQ(text(Number::modulo(number("5.5"), number("0.2"))), ".1");
    EXPECT_THROW(Number::modulo(1, 0), NumberError);
}

TEST(NumberTest, Powers) {
    EXPECT_EQ(text(Number::power(2, 100)), "1267650600228229401496703205376");
    EXPECT_EQ(text(Number::power(-2, 3)), "-8");
    EXPECT_EQ(text(Number::power(2, -2)), ".25");
    EXPECT_EQ(text(Number::power(9, number("0.5"))), "3");
    EXPECT_EQ(text(Number::power(2, number("0.5"))), "1.414213562373095");
    EXPECT_EQ(text(Number::power(number("1e200"), number("0.5"))), "1" + std::string(100, '0'));
    EXPECT_EQ(text(Number::power(number("1.5"), 2)), "2.25");
    EXPECT_EQ(text(Number::power(0, 0)), "1");
    EXPECT_EQ(text(Number::power(0, 5)), "0");
    EXPECT_EQ(text(Number::power(10, -17)), "0");
    EXPECT_EQ(text(Number::power(10, -400, 400)), "." + std::string(399, '0') + "1");
    EXPECT_EQ(text(Number::power(10, -500)), "0");
    EXPECT_EQ(text(Number::power(-1, number("1e30"))), "1");
    EXPECT_EQ(text(Number::power(-1, number("1e30") + 1)), "-1");
    EXPECT_THROW(Number::power(10, 400), NumberError);
    EXPECT_THROW(Number::power(10, number("1e300")), NumberError);
    EXPECT_THROW(Number::power(0, -1), NumberError);
    EXPECT_THROW(Number::power(-8, number("0.5")), NumberError);
}

TEST(NumberTest, RoundsHalvesAwayFromZero) {
    EXPECT_EQ(text(number("2.345").rounded(2)), "2.35");
    EXPECT_EQ(text(number("-2.345").rounded(2)), "-2.35");
    EXPECT_EQ(text(number("2.344").rounded(2)), "2.34");
    EXPECT_EQ(text(Number(1250).rounded(-2)), "1300");
    EXPECT_EQ(text(Number(49).rounded(-2)), "0");
    EXPECT_EQ(text(Number(5).rounded(std::numeric_limits<int>::max())), "5");
    EXPECT_EQ(text(Number(5).rounded(std::numeric_limits<int>::min())), "0");
    EXPECT_EQ(text(number("-2.9").truncated()), "-2");
    EXPECT_EQ(text(number("2.987").truncated(1)), "2.9");
    EXPECT_EQ(text(number("-2.1").floor()), "-3");
    EXPECT_EQ(text(number("2.1").floor()), "2");
    EXPECT_EQ(text(number("-2").floor()), "-2");
    EXPECT_EQ(text(number("-2.5").abs()), "2.5");
}

TEST(NumberTest, ComparesByValue) {
    EXPECT_EQ(number("1.50"), number("1.5"));
    EXPECT_LT(number("1.5"), 2);
    EXPECT_LT(-2, number("-1.5"));
    EXPECT_GT(number("1e300"), number("1e299"));
    EXPECT_GT(number(".0000000000000000001"), 0);
    EXPECT_EQ(Number(kMost) + 1 - 1, kMost);
}

TEST(NumberTest, ConvertsToAndFromOtherNumbers) {
    EXPECT_EQ(text(Number::fromDouble(0.1)), ".1");
    EXPECT_EQ(text(Number::fromDouble(-1e22)), "-10000000000000000000000");
    EXPECT_EQ(text(Number::fromDouble(5e-324)), "." + std::string(323, '0') + "5");
    EXPECT_THROW(Number::fromDouble(std::nan("")), NumberError);
    EXPECT_THROW(Number::fromDouble(-INFINITY), NumberError);
    EXPECT_DOUBLE_EQ(number("0.1").toDouble(), 0.1);
    EXPECT_DOUBLE_EQ(Number(-7).toDouble(), -7.0);
    EXPECT_EQ(number("1e399").toDouble(), INFINITY);
    EXPECT_EQ(number("-1e399").toDouble(), -INFINITY);
    EXPECT_EQ(number("1e-399").toDouble(), 0.0);
    EXPECT_EQ(number("-2.9").toInt64(), -2);
    EXPECT_EQ(number("1e30").toInt64(), kMost);
    EXPECT_EQ(number("-1e30").toInt64(), kLeast);
    EXPECT_TRUE(number("1e30").isInteger());
    EXPECT_FALSE(number("1.5").isInteger());
    EXPECT_EQ(number("-1.25").places(), 2);
    EXPECT_EQ(number("-1.25").sign(), -1);
}

} // namespace

} // namespace host
