// The exact texts and places of errors, and the limits.
#include "host/calc/parser.h"
#include "tests/host/calc/calc_table.h"

namespace host {
namespace {

ErrorKind kindOf(const std::string& calculation) {
    const FunctionRegistry none;
    try {
        parseCalculation(std::make_shared<Source>("", fromUtf8(calculation)), none);
    } catch (const CalcError& error) {
        return error.kind();
    }
    ADD_FAILURE() << "no error: " << calculation;
    return ErrorKind::evaluation;
}

std::string reportOf(const std::string& name, const std::string& calculation) {
    const FunctionRegistry none;
    try {
        parseCalculation(std::make_shared<Source>(name, fromUtf8(calculation)), none);
    } catch (const CalcError& error) {
        return error.report();
    }
    return "no error";
}

TEST(ErrorsTest, Messages) {
    constexpr const char* kValue = "a value (a number, a text in quotes, a variable, a function or \"(\")";
    const std::string expectedValue = std::string("expected ") + kValue;
    Session session;
    const auto expectError = [&](const char* calculation, const std::string& message) {
        EXPECT_EQ(outcome(session, calculation), "error " + message) << calculation;
    };
    expectError("", "1:1: " + expectedValue + ", found the end");
    expectError("   // nothing", "1:14: " + expectedValue + ", found the end");
    expectError("1 +", "1:4: " + expectedValue + ", found the end");
    expectError("1 + * 2", "1:5: " + expectedValue + ", found *");
    expectError("( )", "1:3: " + expectedValue + ", found )");
    expectError("Left ( ; 1 )", "1:8: " + expectedValue + ", found ;");
    expectError("[ 1 ]", "1:1: a list in brackets is not allowed here; " + expectedValue);
    expectError("1 2", "1:3: expected an operator or the end of the calculation, found 2");
    expectError("\"a\" \"b\"", "1:5: expected an operator or the end of the calculation, found \"b\"");
    expectError("1 )", "1:3: expected an operator or the end of the calculation, found )");
    expectError("( 1", "1:4: expected an operator or \")\", found the end");
    expectError("( 1 ; 2 )", "1:5: expected an operator or \")\", found ;");
    expectError("Left ( \"a\" ; 1", "1:15: expected an operator, \";\" or the \")\" of Left, found the end");
    expectError("Left ( \"a\" 1 )", "1:12: expected an operator, \";\" or the \")\" of Left, found 1");
    expectError("\"abc", "1:1: this text is not closed; expected \"\\\"\"");
    expectError("1 + \"abc", "1:5: this text is not closed; expected \"\\\"\"");
    expectError("1 /* x", "1:3: this comment is not closed; expected \"*/\"");
    expectError("1 ? 2", "1:3: a calculation has no use for the character \"?\"");
    expectError("1 \x01", "1:3: a calculation has no use for the character U+0001");
    expectError("$ + 1", "1:2: expected the name of a variable after \"$\"");
    expectError("Table::Field",
                "1:1: \"Table\" reads like a field: there are no tables here, use a $variable");
    expectError("“a”", "1:1: " + expectedValue + ", found “a”");
}

TEST(ErrorsTest, ArgumentCounts) {
    expectRows({
        {"Left ( \"a\" )", "error 1:1: Left takes 2 arguments, 1 given: Left ( text ; numberOfCharacters )"},
        {"Left", "error 1:1: Left takes 2 arguments, 0 given: Left ( text ; numberOfCharacters )"},
        {"1 + Trim ( 1 ; 2 )", "error 1:5: Trim takes 1 argument, 2 given: Trim ( text )"},
        {"True ( 1 )", "error 1:1: True takes no arguments, 1 given: True"},
        {"If ( 1 )", "error 1:1: If takes 2 to 3 arguments, 1 given: If ( test ; result1 {; result2 } )"},
        {"List ( )", "error 1:1: List takes at least 1 argument, 0 given: List ( field {; field... } )"},
        {"Substitute ( 1 ; 2 )",
         "error 1:1: Substitute takes 3 arguments, 2 given: Substitute ( text ; searchString ; "
         "replaceString )"},
        {"Substitute ( 1 ; [ 2 ] )",
         "error 1:18: Substitute takes its arguments one by one or in lists: Substitute ( text ; "
         "searchString ; "
         "replaceString ) or Substitute ( text ; [ search1 ; replace1 ] {; ...} )"},
        {"Substitute ( 1 ; [ 2 ; 3 ] ; 4 )",
         "error 1:30: Substitute takes its arguments one by one or in lists: Substitute ( text ; "
         "searchString ; "
         "replaceString ) or Substitute ( text ; [ search1 ; replace1 ] {; ...} )"},
        {"Substitute ( [ 1 ; 2 ] ; [ 2 ; 3 ] )",
         "error 1:14: Substitute takes its arguments one by one or in lists: Substitute ( text ; "
         "searchString ; "
         "replaceString ) or Substitute ( text ; [ search1 ; replace1 ] {; ...} )"},
        {"JSONSetElement ( 1 ; 2 ; 3 )",
         "error 1:1: JSONSetElement takes 4 arguments, 3 given: JSONSetElement ( json ; "
         "keyOrIndexOrPath ; value ; type )"},
    });
}

TEST(ErrorsTest, Suggestions) {
    expectRows({
        {"Lenght ( \"a\" )", "error 1:1: there is no function called Lenght; did you mean Length?"},
        {"1 + Uper ( \"a\" )", "error 1:5: there is no function called Uper; did you mean Upper?"},
        {"substitude ( 1 ; 2 ; 3 )",
         "error 1:1: there is no function called substitude; did you mean Substitute?"},
        // What begins with the name comes first, the shortest of it; a single letter begins too much.
        {"Weekof ( 1 )", "error 1:1: there is no function called Weekof; did you mean WeekOfYear?"},
        {"getv ( 1 ; 2 )", "error 1:1: there is no function called getv; did you mean GetValue?"},
        {"Le ( \"a\" )", "error 1:1: there is no function called Le; did you mean Let?"},
        {"Let ( total = 1 ; tot )",
         "error 1:19: there is no function or variable called tot; did you mean total?"},
        {"Get ( Last )", "error 1:7: Get knows no Last; did you mean LastError?"},
        {"U ( 1 )", "error 1:1: there is no function called U"},
        {"Xyzzy ( 1 )", "error 1:1: there is no function called Xyzzy"},
        {"Let ( total = 1 ; totla )",
         "error 1:19: there is no function or variable called totla; did you mean total?"},
        {"Get ( LastEror )", "error 1:7: Get knows no LastEror; did you mean LastError?"},
        {"Get ( 1 )", "error 1:7: expected the name of what to get, for instance LastError, found 1"},
    });
}

TEST(ErrorsTest, LetAndWhile) {
    expectRows({
        {"Let ( 1 ; 2 )", "error 1:7: expected the name of a variable, found 1"},
        {"Let ( a ; 2 )", "error 1:9: expected \"=\" after the name of a variable, found ;"},
        {"Let ( a = 1 )", "error 1:13: expected an operator or \";\" before the result of Let, found )"},
        {"Let ( [ a = 1 ; ] ; a )", "error 1:17: expected the name of a variable, found ]"},
        {"Let ( [ a = 1 ; a )", "error 1:19: expected \"=\" after the name of a variable, found )"},
        {"Let a = 1", "error 1:1: there is no function or variable called Let a"},
        {"Let", "error 1:4: expected \"(\" after Let, found the end"},
        {"Let ( a = 1 ; a ) & a", "error 1:21: there is no function or variable called a"},
        {"While ( [ i = 0 ] ; i < 3 ; i = i + 1 )",
         "error 1:39: expected an operator or \";\" before the result of While, found )"},
    });
}

TEST(ErrorsTest, IncompleteInputIsAKindOfItsOwn) {
    for (const char* text :
         {"", "1 +", "(", "( 1", "Left (", "Left ( \"a\" ;", "\"abc", "1 /* x", "Let ( [ a = 1 ;", "Get (",
          "Get ( LastError", "Let ( a", "not", "$x &", "While ( [ i = 0 ]"}) {
        EXPECT_EQ(kindOf(text), ErrorKind::incomplete) << text;
    }
    for (const char* text :
         {"1 2", ")", "( ]", "Left ( 1 )", "Nothing", "1 ? 2", "Get ( Rich )", "[", "Let ( 1"}) {
        EXPECT_EQ(kindOf(text), ErrorKind::syntax) << text;
    }
}

TEST(ErrorsTest, ReportShowsTheLineAndTheCaret) {
    EXPECT_EQ(reportOf("", "Let ( x = 1 ; Lenght ( x ) )"),
              "1:15: there is no function called Lenght; did you mean Length?\n"
              "    Let ( x = 1 ; Lenght ( x ) )\n"
              "                  ^");
    EXPECT_EQ(reportOf("sums.calc", "1 +\r\n\t2 +\r\n\t* 3\r\n+ 4"),
              "sums.calc:3:2: expected a value (a number, a text in quotes, a variable, a function or "
              "\"(\"), found *\n"
              "    \t* 3\n"
              "    \t^");
    EXPECT_EQ(reportOf("", "\"ä😀\" ?"), "1:6: a calculation has no use for the character \"?\"\n"
                                         "    \"ä😀\" ?\n"
                                         "         ^");
}

TEST(ErrorsTest, ReportCutsLongLinesAroundThePlace) {
    const std::string report = reportOf("", std::string(500, ' ') + "? " + std::string(500, '1'));
    EXPECT_EQ(report, "1:501: a calculation has no use for the character \"?\"\n"
                      "    …" +
                          std::string(60, ' ') + "? " + std::string(58, '1') +
                          "…\n"
                          "     " +
                          std::string(60, ' ') + "^");
}

TEST(ErrorsTest, LinesEndWithReturnLineFeedOrBoth) {
    const Source source("", u"a\rb\nc\r\nd");
    EXPECT_EQ(source.place(0).line, 1U);
    EXPECT_EQ(source.place(2).line, 2U);
    EXPECT_EQ(source.place(4).line, 3U);
    EXPECT_EQ(source.place(7).line, 4U);
    EXPECT_EQ(source.place(7).column, 1U);
    EXPECT_EQ(source.place(99).column, 2U);
}

TEST(LimitsTest, NestingIsRefusedBeforeTheStackEnds) {
    const auto nested = [](size_t depth, const std::string& open, const std::string& close) {
        std::string text;
        for (size_t i = 0; i < depth; ++i) {
            text += open;
        }
        text += "1";
        for (size_t i = 0; i < depth; ++i) {
            text += close;
        }
        return text;
    };
    Session session;
    EXPECT_EQ(outcome(session, nested(kMaxNesting - 1, "(", ")")), "1");
    EXPECT_EQ(outcome(session, nested(kMaxNesting, "(", ")")),
              "error 1:251: this calculation is nested too deeply: at most 250 levels");
    for (const char* open : {"(", "Trim(", "- ", "not ", "Let(a=", "List(1;(", "If(1;", "2^("}) {
        EXPECT_NE(outcome(session, nested(100'000, open, ")")).find("nested too deeply"), std::string::npos)
            << open;
    }
}

TEST(LimitsTest, DeepestCalculationInsideEvaluateInsideEvaluate) {
    Session session;
    EXPECT_EQ(outcome(session, "Let ( $code = \"Evaluate ( $code )\" ; Evaluate ( $code ) )"), "?");
    EXPECT_EQ(outcome(session, "1 + 1"), "2");
}

TEST(LimitsTest, LongCalculations) {
    Session session;
    std::string sum = "0";
    for (int i = 0; i < 250'000; ++i) {
        sum += "+ 1 ";
    }
    EXPECT_EQ(outcome(session, sum), "250000");
    std::string joined = "\"\"";
    for (int i = 0; i < 100'000; ++i) {
        joined += "&\"ab\"";
    }
    EXPECT_EQ(outcome(session, "Length ( " + joined + " )"), "200000");
    EXPECT_EQ(outcome(session, "Length ( \"" + std::string(1'000'000, 'x') + "\" )"), "1000000");
    EXPECT_EQ(outcome(session, std::string(1'000'000, 'x')).substr(0, 20), "error 1:1: there is ");
}

// As many names as a calculation may define, all of them used, and many forms with the same name inside each other.
TEST(LimitsTest, ManyNames) {
    Session session;
    std::string let = "Let ( [ v = 0";
    for (int i = 0; i < 100'000; ++i) {
        let += " ; v" + std::to_string(i) + " = " + std::to_string(i);
    }
    EXPECT_EQ(outcome(session, let + " ] ; v7 + v99999 )"), "100006");
    std::string nested = "x";
    for (int i = 0; i < 100; ++i) {
        nested.insert(0, "Let ( x = " + std::to_string(i) + " ; x & ");
        nested += " & x )";
    }
    EXPECT_EQ(outcome(session, "Let ( x = 5 ; Length ( " + nested + " ) & x )"), "3815");
    EXPECT_EQ(outcome(session, "Let ( x = 5 ; Let ( x = 6 ; x ) & x ) & x"),
              "error 1:41: there is no function or variable called x");
}

TEST(LimitsTest, AnInterruptedSessionStopsAndGoesOn) {
    Session session;
    session.interruptFlag() = true;
    EXPECT_EQ(outcome(session, "1 + 1"), "error 1:1: stopped");
    session.interruptFlag() = false;
    EXPECT_EQ(outcome(session, "1 + 1"), "2");
}

} // namespace
} // namespace host
