#include "host/check/checker.h"

#include "host/calc/custom_functions.h"
#include "host/values/text.h"

#include <gtest/gtest.h>

namespace host {
namespace {

// "line:column-line:column code message", a line each.
std::string problems(const char* text, FileKind kind) {
    const FunctionRegistry functions;
    const StepRegistry steps;
    const auto at = [](Place place) {
        return std::to_string(place.line) + ":" + std::to_string(place.column);
    };
    std::string result;
    for (const Diagnostic& found :
         check(std::make_shared<Source>("file", fromUtf8(text)), kind, {functions, steps})) {
        EXPECT_EQ(found.file, "file");
        result += at(found.begin) + "-" + at(found.end) + " " + std::to_string(found.code) + " " +
                  found.message + "\n";
    }
    return result;
}

TEST(CheckerTest, KindsOfFiles) {
    EXPECT_EQ(fileKind("a/b.calc"), FileKind::calculations);
    EXPECT_EQ(fileKind("b.md"), FileKind::markdown);
    EXPECT_EQ(fileKind("b.fmscript"), FileKind::script);
    EXPECT_EQ(fileKind("b.fmfn"), FileKind::customFunctions);
    EXPECT_EQ(fileKind("b.txt"), std::nullopt);
}

TEST(CheckerTest, TheRangeIsTheWord) {
    EXPECT_EQ(problems("1 +\n Lenght ( 2 )", FileKind::calculation),
              "2:2-2:8 1208 there is no function called Lenght; did you mean Length?\n");
    EXPECT_EQ(problems("Length ( \"\xF0\x9F\x98\x80\" ) \"x", FileKind::calculation),
              "1:16-1:17 1206 this text is not closed; expected \"\\\"\"\n");
    EXPECT_EQ(problems("1 + 2", FileKind::calculation), "");
}

TEST(CheckerTest, EveryCalculationOfAFileIsLookedAt) {
    EXPECT_EQ(problems("1 +\n= 2\n\nfoo\n~ x\nbar\n! there is\n2\n", FileKind::calculations),
              "1:4-1:4 1204 expected a value (a number, a text in quotes, a variable, a function or \"(\"), "
              "found the "
              "end\n"
              "4:1-4:4 102 there is no function or variable called foo\n"
              "8:1-8:1 1200 a calculation without a check; expected a line with =, ~ or ! after it\n");
    EXPECT_EQ(problems("# Title\n1 +\n```calc\n1\n= 1\nfoo\n= 2\n```\n", FileKind::markdown),
              "6:1-6:4 102 there is no function or variable called foo\n");
}

TEST(CheckerTest, EveryMistakeOfAScriptIsTold) {
    EXPECT_EQ(
        problems("If [ 1 + ]\nBep\nEnd If\nSet Field [ x ]\nLoop\n", FileKind::script),
        "1:10-1:11 1204 expected a value (a number, a text in quotes, a variable, a function or "
        "\"(\"), found ]\n"
        "2:1-2:4 1208 there is no script step called Bep; did you mean Beep?\n"
        "4:1-4:10 1225 Set Field is not supported: there are no fields here; use Set Variable or Insert "
        "Calculated Result with a variable\n"
        "5:1-5:5 1203 this Loop is not closed; expected End Loop\n");
}

TEST(CheckerTest, NamesOfScriptsAreLookedUp) {
    const FunctionRegistry functions;
    const StepRegistry steps;
    const Vocabulary known{functions, steps, [](std::u16string_view file, std::u16string_view name) {
                               return file.empty() && name == u"There";
                           }};
    const auto found =
        check(std::make_shared<Source>("s", u"Perform Script [ “There” ]\nPerform Script [ \"Gone\" ]\n"
                                            u"Perform Script [ \"a\" & \"b\" ]\n"
                                            u"Perform Script [ “There” from file: “x” ]"),
              FileKind::script, known);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].message, "there is no script called Gone");
    EXPECT_EQ(found[0].severity, Severity::warning);
    EXPECT_EQ(found[0].code, 104);
    EXPECT_EQ(found[1].begin.line, 4U);
}

TEST(CheckerTest, AFileOfCustomFunctionsKnowsItself) {
    EXPECT_EQ(problems("A ( x ) = B ( x )\nB ( x ) = A ( x ; 1 )\n", FileKind::customFunctions),
              "2:11-2:12 1202 A takes 1 argument, 2 given: A ( x )\n");
    FunctionRegistry functions;
    CustomFunctions loaded;
    std::vector<CalcError> errors;
    loaded.load(
        {std::make_shared<Source>("a/f.fmfn", u"One = 1"), std::make_shared<Source>("a/g.fmfn", u"Two = 2")},
        functions, errors);
    const StepRegistry steps;
    const auto found = check(std::make_shared<Source>("a/../a/f.fmfn", u"One = Two\nTwo = 3"),
                             FileKind::customFunctions, {functions, steps});
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].message, "there is a function called Two already");
}

} // namespace
} // namespace host
