#include "host/check/checker.h"

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

} // namespace
} // namespace host
