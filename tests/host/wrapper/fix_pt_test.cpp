#include "tests/host/wrapper/support.h"

#include <cmath>
#include <limits>

namespace {

using fmx::FixPtAutoPtr;

TEST(WrapperFixPt, IsMadeAndAssigned) {
    const FixPtAutoPtr zero;
    EXPECT_EQ(digitsOf(*zero), u"0");
    EXPECT_EQ(zero->GetPrecision(), 16);
    const FixPtAutoPtr number(-7, 30);
    EXPECT_EQ(digitsOf(*number), u"-7");
    EXPECT_EQ(number->GetPrecision(), 30);
    EXPECT_EQ(FixPtAutoPtr(1, *number)->GetPrecision(), 30);
    EXPECT_EQ(FixPtAutoPtr(1, 4000)->GetPrecision(), 400);
    EXPECT_EQ(FixPtAutoPtr(1, -1)->GetPrecision(), 0);
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

TEST(WrapperFixPt, Compares) {
    const FixPtAutoPtr one(1);
    const FixPtAutoPtr two(2);
    EXPECT_TRUE(*one == *FixPtAutoPtr(1, 400));
    EXPECT_TRUE(*one != *two);
    EXPECT_TRUE(*one < *two);
    EXPECT_TRUE(*one <= *one);
    EXPECT_TRUE(*two > *one);
    EXPECT_TRUE(*two >= *one);
    EXPECT_FALSE(*two < *one);
}

TEST(WrapperFixPt, Counts) {
    const FixPtAutoPtr number(std::numeric_limits<fmx::int32>::max());
    number->Increment();
    EXPECT_EQ(digitsOf(*number), u"2147483648");
    number->Decrement();
    number->Negate();
    EXPECT_EQ(digitsOf(*number), u"-2147483647");
}

TEST(WrapperFixPt, CalculatesWithTheGreaterPrecision) {
    const FixPtAutoPtr one(1);
    const FixPtAutoPtr three(3, 20);
    const FixPtAutoPtr result;
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

TEST(WrapperFixPt, RefusesToDivideByZero) {
    const FixPtAutoPtr zero;
    const FixPtAutoPtr result(5);
    EXPECT_NE(FixPtAutoPtr(1)->Divide(*zero, *result), 0);
    EXPECT_EQ(digitsOf(*result), u"5");
}

TEST(WrapperFixPt, HoldsFourHundredDigits) {
    const FixPtAutoPtr third(0, 400);
    EXPECT_EQ(FixPtAutoPtr(1, 400)->Divide(*FixPtAutoPtr(3), *third), 0);
    EXPECT_EQ(digitsOf(*third), u"." + std::u16string(400, u'3'));
    fmx::DataAutoPtr data;
    const fmx::FixPt& large = numberFrom(*data, std::u16string(400, u'9'));
    EXPECT_EQ(digitsOf(large), std::u16string(400, u'9'));
    const FixPtAutoPtr result;
    large.Subtract(*FixPtAutoPtr(9), *result);
    EXPECT_EQ(digitsOf(*result), std::u16string(399, u'9') + u"0");
    EXPECT_THROW(large.Add(*FixPtAutoPtr(1), *result), std::exception); // one digit more
    EXPECT_EQ(digitsOf(*result), std::u16string(399, u'9') + u"0");
}

TEST(WrapperFixPt, ConvertsToPlainNumbers) {
    fmx::DataAutoPtr data;
    EXPECT_TRUE(numberFrom(*data, u".01").AsBool());
    EXPECT_FALSE(FixPtAutoPtr(0)->AsBool());
    EXPECT_EQ(numberFrom(*data, u"-2.9").AsLong(), -2);
    EXPECT_EQ(numberFrom(*data, u"1e30").AsLong(), std::numeric_limits<fmx::int32>::max());
    EXPECT_EQ(numberFrom(*data, u"-1e30").AsLong(), std::numeric_limits<fmx::int32>::min());
    EXPECT_DOUBLE_EQ(numberFrom(*data, u"-2.5").AsFloat(), -2.5);
}

} // namespace
