#include "tests/host/wrapper/support.h"

#include <cmath>
#include <limits>

namespace {

using fmx::FixPtUniquePtr;

TEST(WrapperFixPtTest, IsMadeAndAssigned) {
    const FixPtUniquePtr zero;
    EXPECT_EQ(digitsOf(*zero), u"0");
    EXPECT_EQ(zero->GetPrecision(), 16);
    const FixPtUniquePtr number(-7, 30);
    EXPECT_EQ(digitsOf(*number), u"-7");
    EXPECT_EQ(number->GetPrecision(), 30);
    EXPECT_EQ(FixPtUniquePtr(1, *number)->GetPrecision(), 30);
    EXPECT_EQ(FixPtUniquePtr(1, 4000)->GetPrecision(), 400);
    EXPECT_EQ(FixPtUniquePtr(1, -1)->GetPrecision(), 0);
    number->AssignInt(std::numeric_limits<fmx::int32>::min());
    EXPECT_EQ(digitsOf(*number), u"-2147483648");
    number->AssignDouble(0.1);
    EXPECT_EQ(digitsOf(*number), u".1");
    zero->AssignFixPt(*number);
    EXPECT_EQ(digitsOf(*zero), u".1");
    EXPECT_EQ(zero->GetPrecision(), 30);
    EXPECT_THROW(number->AssignDouble(std::nan("")), std::exception);
    EXPECT_EQ(digitsOf(*number), u".1");
}

TEST(WrapperFixPtTest, Compares) {
    const FixPtUniquePtr one(1);
    const FixPtUniquePtr two(2);
    EXPECT_TRUE(*one == *FixPtUniquePtr(1, 400));
    EXPECT_TRUE(*one != *two);
    EXPECT_TRUE(*one < *two);
    EXPECT_TRUE(*one <= *one);
    EXPECT_TRUE(*two > *one);
    EXPECT_TRUE(*two >= *one);
    EXPECT_FALSE(*two < *one);
}

TEST(WrapperFixPtTest, Counts) {
    const FixPtUniquePtr number(std::numeric_limits<fmx::int32>::max());
    number->Increment(5);
    EXPECT_EQ(digitsOf(*number), u"2147483652");
    number->Decrement(-3);
    EXPECT_EQ(digitsOf(*number), u"2147483655");
    number->Negate();
    number->Decrement(45);
    EXPECT_EQ(digitsOf(*number), u"-2147483700");
}

TEST(WrapperFixPtTest, HoldsNumbersOf64Bits) {
    constexpr fmx::int64 kLargest = std::numeric_limits<fmx::int64>::max();
    constexpr fmx::int64 kSmallest = std::numeric_limits<fmx::int64>::min();
    const FixPtUniquePtr number;
    number->AssignInt64(kLargest);
    EXPECT_EQ(digitsOf(*number), u"9223372036854775807");
    EXPECT_EQ(number->AsLong64(), kLargest);
    EXPECT_EQ(number->AsLong(), std::numeric_limits<fmx::int32>::max());
    number->Increment64(kLargest);
    EXPECT_EQ(digitsOf(*number), u"18446744073709551614");
    EXPECT_EQ(number->AsLong64(), kLargest);
    number->AssignInt64(kSmallest);
    EXPECT_EQ(digitsOf(*number), u"-9223372036854775808");
    EXPECT_EQ(number->AsLong64(), kSmallest);
    number->Decrement64(kSmallest);
    EXPECT_EQ(digitsOf(*number), u"0");
    number->Decrement64(1);
    number->Decrement64(kLargest);
    number->Decrement64(1);
    EXPECT_EQ(number->AsLong64(), kSmallest);
}

TEST(WrapperFixPtTest, CalculatesWithTheGreaterPrecision) {
    const FixPtUniquePtr one(1);
    const FixPtUniquePtr three(3, 20);
    const FixPtUniquePtr result;
    one->Add(*three, *result);
    EXPECT_EQ(digitsOf(*result), u"4");
    EXPECT_EQ(result->GetPrecision(), 20);
    one->Subtract(*three, *result);
    EXPECT_EQ(digitsOf(*result), u"-2");
    three->Multiply(*three, *result);
    EXPECT_EQ(digitsOf(*result), u"9");
    EXPECT_EQ(one->Divide(*three, *result), 0);
    EXPECT_EQ(digitsOf(*result), u".33333333333333333333");
    result->SetPrecision(2);
    EXPECT_EQ(digitsOf(*result), u".33");
    result->Add(*result, *result);
    EXPECT_EQ(digitsOf(*result), u".66");
}

TEST(WrapperFixPtTest, RefusesToDivideByZero) {
    const FixPtUniquePtr zero;
    const FixPtUniquePtr result(5);
    EXPECT_NE(FixPtUniquePtr(1)->Divide(*zero, *result), 0);
    EXPECT_EQ(digitsOf(*result), u"5");
}

TEST(WrapperFixPtTest, HoldsFourHundredDigits) {
    const FixPtUniquePtr third(0, 400);
    EXPECT_EQ(FixPtUniquePtr(1, 400)->Divide(*FixPtUniquePtr(3), *third), 0);
    EXPECT_EQ(digitsOf(*third), u"." + std::u16string(400, u'3'));
    fmx::DataUniquePtr data;
    const fmx::FixPt& large = numberFrom(*data, std::u16string(400, u'9'));
    EXPECT_EQ(digitsOf(large), std::u16string(400, u'9'));
    const FixPtUniquePtr result;
    large.Subtract(*FixPtUniquePtr(9), *result);
    EXPECT_EQ(digitsOf(*result), std::u16string(399, u'9') + u"0");
    EXPECT_THROW(large.Add(*FixPtUniquePtr(1), *result), std::exception); // one digit more
    EXPECT_EQ(digitsOf(*result), std::u16string(399, u'9') + u"0");
}

TEST(WrapperFixPtTest, ConvertsToPlainNumbers) {
    fmx::DataUniquePtr data;
    EXPECT_TRUE(numberFrom(*data, u".01").AsBool());
    EXPECT_FALSE(FixPtUniquePtr(0)->AsBool());
    EXPECT_EQ(numberFrom(*data, u"-2.9").AsLong(), -2);
    EXPECT_EQ(numberFrom(*data, u"1e30").AsLong(), std::numeric_limits<fmx::int32>::max());
    EXPECT_EQ(numberFrom(*data, u"-1e30").AsLong(), std::numeric_limits<fmx::int32>::min());
    EXPECT_DOUBLE_EQ(numberFrom(*data, u"-2.5").AsFloat(), -2.5);
}

} // namespace
