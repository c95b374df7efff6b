// fmhost test: its output, the selection of checks, and the JUnit report.
#include "tests/host/console/program.h"

#include <gmock/gmock.h>
#include <libxml/parser.h>
#include <libxml/xpath.h>
#include <memory>

namespace host {
namespace {

using testing::HasSubstr;

class TestRunTest : public ProgramTest {
  protected:
    // The text that an XPath expression has in the report; "(no XML)" for a report that is none.
    std::string report(const std::string& path) const {
        const std::string bytes = read(folder_ / "report.xml");
        const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
            xmlReadMemory(bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr, XML_PARSE_NOERROR),
            xmlFreeDoc);
        if (document == nullptr) {
            return "(no XML)";
        }
        const std::unique_ptr<xmlXPathContext, decltype(&xmlXPathFreeContext)> context(
            xmlXPathNewContext(document.get()), xmlXPathFreeContext);
        const std::unique_ptr<xmlXPathObject, decltype(&xmlXPathFreeObject)> found(
            xmlXPathEvalExpression(reinterpret_cast<const xmlChar*>(("string(" + path + ")").c_str()),
                                   context.get()),
            xmlXPathFreeObject);
        return reinterpret_cast<const char*>(found->stringval);
    }
};

TEST_F(TestRunTest, FailuresAreShownWithTheirDifference) {
    write("good.calc", "# two\nLet ( $x = 1 ; $x )\n= 1\n\"a¶\" & \\\n $x\n= a¶1\n$x\n~ \\d\nLenght ( 1 )\n! "
                       "mean Length\n\"\"\n=\n");
    expect(plain("test good.calc"), ExitCode::ok, "5 passed, 0 failed\n", "");
    write("bad.calc", "1 + 1\n= 3\n\n\"abc\"\n~ ab\n1\n! x\nNothing\n= 1\n1\n~ (\nNothing\n! else\n2\n= 2\n");
    expect(
        plain("test bad.calc"), ExitCode::failure,
        "bad.calc:1: 1 + 1\n  expected: 3\n  got:      2\n"
        "bad.calc:4: \"abc\"\n  expected: a match of ab\n  got:      abc\n"
        "bad.calc:6: 1\n  expected: an error with \"x\"\n  got:      1\n"
        "bad.calc:8: Nothing\n  expected: 1\n  got:      the error: there is no function or variable called "
        "Nothing\n"
        "bad.calc:10: 1\n  expected: a match of this pattern, which is none: (\n  got:      1\n"
        "bad.calc:12: Nothing\n  expected: an error with \"else\"\n"
        "  got:      the error: there is no function or variable called Nothing\n"
        "1 passed, 6 failed\n",
        "");
}

TEST_F(TestRunTest, AMarkStandsWhereResultsDiffer) {
    write("a.calc", "\"Grüße aus Köln\"\n= Grüße aus Kiel\n\"abc\"\n= abcd\n");
    expect(plain("test a.calc"), ExitCode::failure,
           "a.calc:1: \"Grüße aus Köln\"\n  expected: Grüße aus Kiel\n  got:      Grüße aus Köln\n"
           "                       ^\n"
           "a.calc:3: \"abc\"\n  expected: abcd\n  got:      abc\n               ^\n0 passed, 2 failed\n",
           "");
    write("long.calc", "Substitute ( 10 ^ 300 ; 1 ; 2 )\n= 2" + std::string(150, '0') + "7" +
                           std::string(149, '0') + "\n");
    EXPECT_EQ(plain("test long.calc").out, "long.calc:1: Substitute ( 10 ^ 300 ; 1 ; 2 )\n"
                                           "  expected: …" +
                                               std::string(60, '0') + "7" + std::string(59, '0') +
                                               "…\n  got:      …" + std::string(120, '0') + "…\n" +
                                               std::string(12 + 1 + 60, ' ') + "^\n0 passed, 1 failed\n");
}

TEST_F(TestRunTest, FilesThatAreNoTests) {
    write("empty.calc", "# nothing\n");
    expect(plain("test empty.calc"), ExitCode::failure,
           "empty.calc: there are no checks in this file\n0 passed, 1 failed\n", "");
    write("form.calc", "1\n2\n= 2\n");
    expect(plain("test form.calc"), ExitCode::failure,
           "form.calc:1: a calculation without a check; expected a line with =, ~ or ! after it\n1 passed, 1 "
           "failed\n",
           "");
    expect(plain("test none.calc"), ExitCode::usage, "",
           "fmhost: can not read none.calc: No such file or directory\n");
}

TEST_F(TestRunTest, SeveralTestFilesDoNotSeeEachOther) {
    write("one.calc", "Let ( $$x = Test_Count ( 1 ; 1 ) ; $$x )\n= 1\n");
    EXPECT_EQ(good("test one.calc one.calc").out, "2 passed, 0 failed\n");
    write("two.calc", "$$x\n=\n1\n= 2\n");
    const Outcome result = good("test one.calc two.calc");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "two.calc:3: 1\n  expected: 2\n  got:      1\n2 passed, 1 failed\n");
}

TEST_F(TestRunTest, AFilterJudgesSomeAndEvaluatesAll) {
    write("a.calc", "Let ( $x = 1 ; $x )\n= 7\n$x + 1\n= 2\nUpper ( \"a\" )\n= A\n" + std::string(6, '\n') +
                        "3\n= 4\n");
    expect(plain("test a.calc --filter '$X +'"), ExitCode::ok, "1 passed, 0 failed\n", "");
    expect(plain("test a.calc --filter '$x +' --filter upper"), ExitCode::ok, "2 passed, 0 failed\n", "");
    expect(plain("test a.calc --exclude '$x =' --exclude a.calc:13"), ExitCode::ok, "2 passed, 0 failed\n",
           "");
    EXPECT_THAT(plain("test a.calc --filter a.calc:1").out, HasSubstr("0 passed, 1 failed\n")); // not line 13
    expect(plain("test a.calc --filter nowhere"), ExitCode::failure, "0 passed, 0 failed\n",
           "fmhost: no calculation is left by --filter and --exclude\n");
}

TEST_F(TestRunTest, RepeatedFilesStartAfresh) {
    write("a.calc", "Let ( $$x = $$x + 1 ; $$x )\n= 1\n");
    expect(plain("test a.calc --repeat 3"), ExitCode::ok, "3 passed, 0 failed\n", "");
    write("b.calc", "1\n= 2\n");
    expect(plain("test b.calc --repeat 2"), ExitCode::failure,
           "b.calc:1: 1\n  expected: 2\n  got:      1\nb.calc:1: 1\n  expected: 2\n  got:      1\n"
           "b.calc:1: failed in 2 of 2 runs\n0 passed, 2 failed\n",
           "");
    EXPECT_EQ(plain("test b.calc --repeat 0").status, 2);
}

TEST_F(TestRunTest, TheReportForMachines) {
    write("a.calc", "\"<&\\\"\" & Char ( 1 )\n= <&>\n1\n= 1\n");
    write("b.calc", "2\n= 2\n");
    const Outcome result = plain("test a.calc b.calc --repeat 2 --junit report.xml");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(report("/testsuites/@tests"), "6");
    EXPECT_EQ(report("/testsuites/@failures"), "2");
    EXPECT_EQ(report("count(//testsuite)"), "4");
    EXPECT_EQ(report("//testsuite[1]/@name"), "a.calc");
    EXPECT_EQ(report("//testsuite[2]/@name"), "a.calc (run 2)");
    EXPECT_EQ(report("//testsuite[1]/@failures"), "1");
    EXPECT_EQ(report("//testsuite[1]/testcase[1]/@name"), "line 1: \"<&\\\"\" & Char ( 1 )");
    EXPECT_EQ(report("//testsuite[1]/testcase[2]/@line"), "3");
    EXPECT_EQ(report("count(//testsuite[1]/testcase[2]/failure)"), "0");
    EXPECT_EQ(report("//testsuite[1]/testcase[2]/@classname"), "a.calc");
    EXPECT_EQ(report("//testsuite[1]/testcase[2]/@file"), "a.calc");
    EXPECT_EQ(report("//testsuite[1]/@errors"), "0");
    EXPECT_EQ(report("//testsuite[3]/@tests"), "1");
    EXPECT_THAT(report("//testsuite[1]/@time"), testing::MatchesRegex("[0-9]+\\.[0-9]+"));
    EXPECT_THAT(report("//testcase[1]/@time"), testing::MatchesRegex("[0-9]+\\.[0-9]+"));
    EXPECT_GT(std::stod(report("/testsuites/@time")), 0.0);
    EXPECT_EQ(report("//failure[1]/@type"), "difference");
    EXPECT_EQ(report("//failure[1]/@message"), "expected: <&>");
    EXPECT_EQ(report("//failure[1]"), "a.calc:1: \"<&\\\"\" & Char ( 1 )\n  expected: <&>\n"
                                      "  got:      <&\"␁\n              ^");
    EXPECT_FALSE(std::filesystem::exists(folder_ / "report.xml.part"));
}

TEST_F(TestRunTest, AReportThatCanNotBeWritten) {
    write("a.calc", "1\n= 1\n");
    const Outcome result = plain("test a.calc --junit nowhere/report.xml");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "fmhost: can not write nowhere/report.xml: No such file or directory\n");
}

TEST_F(TestRunTest, APluginThatEndsTheProgramFailsTheCalculationThatCalledIt) {
    write("a.calc", "1\n= 1\nTest_Throw ( \"abort\" )\n= 1\n2\n= 2\n");
    const Outcome result = good("test a.calc --junit report.xml");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out, HasSubstr("a.calc:3: Test_Throw ( \"abort\" )\n  the host ended early: "));
    EXPECT_THAT(result.out, HasSubstr("1 passed, 1 failed\n"));
    EXPECT_THAT(report("//testcase[2]/failure/@message"), HasSubstr("the host ended early"));
}

} // namespace
} // namespace host
