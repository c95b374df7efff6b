#include "host/calc/custom_functions.h"

#include "host/calc/parser.h"
#include "host/calc/session.h"
#include "host/calc/stack_limit.h"
#include "host/values/text.h"

#include <gtest/gtest.h>

namespace host {
namespace {

// Before the first calculation of any test.
[[maybe_unused]] const bool kStackIsGrown = (growStack(), true);

class CustomFunctionsTest : public testing::Test {
  protected:
    // Loads a text; answers "line:column code message", a line each.
    std::string load(const char* text) {
        std::vector<CalcError> errors;
        functions_.load({std::make_shared<Source>("", fromUtf8(text))}, session_.functions(), errors);
        std::string result;
        for (const CalcError& error : errors) {
            result += std::to_string(error.place().line) + ":" + std::to_string(error.place().column) + " " +
                      std::to_string(static_cast<int>(error.code())) + " " + error.what() + "\n";
        }
        return result;
    }

    std::string value(const char16_t* calculation) {
        try {
            return toUtf8(session_.evaluate(calculation).asText());
        } catch (const CalcError& error) {
            return std::string("error ") + error.what();
        }
    }

    Session session_;
    CustomFunctions functions_;
};

TEST_F(CustomFunctionsTest, DefinitionsFollowEachOther) {
    EXPECT_EQ(load("/* one */ Twice ( x ) = x * 2 // end\n\nBoth ( a ; b ) = Twice ( a ) &\n  Twice ( b "
                   ")\nSix = Twice ( 3 )\n"
                   "Empty ( ) = \"\""),
              "");
    EXPECT_EQ(value(u"both ( 2 ; Six )"), "412");
    EXPECT_EQ(value(u"Empty & Empty ( )"), "");
    EXPECT_EQ(value(u"Twice ( 1 ; 2 )"), "error Twice takes 1 argument, 2 given: Twice ( x )");
    EXPECT_EQ(functions_.all().size(), 4U);
    EXPECT_EQ(load(""), "");
    EXPECT_EQ(value(u"Six"), "error there is no function or variable called Six; did you mean Sin?");
}

TEST_F(CustomFunctionsTest, ParametersAreTheirOwnNames) {
    EXPECT_EQ(load("Outer ( x ) = Let ( y = x + 1 ; Inner ( y ) & x & y )\nInner ( x ) = Let ( [ x = x * 10 "
                   "; $seen = x ] ; x )"),
              "");
    EXPECT_EQ(value(u"Let ( x = 7 ; Outer ( 1 ) & x )"), "20127");
    EXPECT_EQ(value(u"$seen"), "20");
    EXPECT_EQ(value(u"Evaluate ( \"Outer ( 3 )\" )"), "4034");
}

TEST_F(CustomFunctionsTest, RecursionHasFileMakersLimits) {
    EXPECT_EQ(
        load("Depth ( n ) = If ( n = 0 ; 0 ; 1 + Depth ( n - 1 ) )\n"
             "Turn ( n ; total ) = Case ( n = 0 ; total ; Let ( m = n - 1 ; Turn ( m ; total + 1 ) ) )\n"
             "Even ( n ) = If ( n = 0 ; 1 ; Odd ( n - 1 ) )\nOdd ( n ) = If ( n = 0 ; 0 ; Even ( n - 1 ) )\n"
             "Forever ( x ) = Forever ( x ) + 1"),
        "");
    EXPECT_EQ(value(u"Depth ( 5000 )"), "5000");
    EXPECT_EQ(value(u"Depth ( 10000 )"), "?");
    EXPECT_EQ(value(u"Turn ( 49999 ; 0 )"), "49999");
    EXPECT_EQ(value(u"Turn ( 50000 ; 0 )"), "?");
    EXPECT_EQ(value(u"SetRecursion ( Turn ( 200000 ; 0 ) ; 300000 )"), "200000");
    EXPECT_EQ(value(u"SetRecursion ( Depth ( 10 ) ; 10 )"), "?");
    EXPECT_EQ(value(u"Even ( 40001 )"), "0");
    EXPECT_EQ(value(u"Forever ( 1 )"), "?");
    EXPECT_EQ(value(u"SetRecursion ( Forever ( 1 ) ; 99999999 )"),
              "error the evaluation is nested too deeply: does it call itself without an end?");
}

TEST_F(CustomFunctionsTest, AnInterruptEndsARecursion) {
    EXPECT_EQ(load("Forever ( x ) = Forever ( x + 1 )"), "");
    session_.setTimeLimit(std::chrono::seconds(1));
    EXPECT_EQ(value(u"SetRecursion ( Forever ( 1 ) ; 99999999999 )"),
              "error stopped: it takes longer than --timeout allows");
    EXPECT_EQ(value(u"1 + 1"), "2");
    session_.interruptFlag() = true;
    EXPECT_EQ(value(u"Forever ( 1 )"), "error stopped");
}

TEST_F(CustomFunctionsTest, MistakesAreToldAndTheOthersWork) {
    EXPECT_EQ(
        load("Good ( x ) = x + 1\nBad ( x ) = x + (\nAlso ( y ) = Good ( y )\nUpper ( x ) = x\nWith ( "
             "Pi ) = 1\n"
             "good = 1\nNoBody ( x )\nTwo ( x ; ) = 1\nCalls ( x ) = Missing ( x )\nSame ( a ; A ) = a"),
        "4:1 1300 the language has a Upper already\n"
        "5:8 1301 Pi is a name of the language; expected another one\n"
        "6:1 1300 there is a function called good already\n"
        "8:1 1208 expected \"=\" before the calculation of NoBody, found Two\n"
        "8:11 1209 expected the name of a parameter, found )\n"
        "10:12 1213 there is a parameter called A already\n"
        "3:1 1208 there is no function called Also\n"
        "9:15 1208 there is no function called Missing\n");
    EXPECT_EQ(value(u"Good ( 1 )"), "2");
}

TEST_F(CustomFunctionsTest, WhatWasReplacedIsLookedUpAgain) {
    EXPECT_EQ(load("One = 1"), "");
    const Calculation calculation =
        parseCalculation(std::make_shared<Source>("", u"One + 1"), session_.functions());
    EXPECT_EQ(load("One = 5"), "");
    EXPECT_EQ(toUtf8(session_.evaluate(calculation).asText()), "6");
}

} // namespace
} // namespace host
