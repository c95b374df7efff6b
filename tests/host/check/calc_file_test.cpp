#include "host/check/calc_file.h"

#include <gtest/gtest.h>

namespace host {
namespace {

TEST(CalcFileTest, CalculationsAndTheirChecks) {
    const CalcTestFile file =
        parseCalcTest("# comment\n1 + 1\n= 2\n\nx\n~ \\d+\r\ny\n!  a part \n\"\"\n=\n", false);
    ASSERT_TRUE(file.faults.empty());
    ASSERT_EQ(file.checks.size(), 4U);
    EXPECT_EQ(file.checks[0].line, 2);
    EXPECT_EQ(file.checks[0].text, "1 + 1");
    EXPECT_EQ(file.checks[0].kind, CheckKind::equals);
    EXPECT_EQ(file.checks[0].expected, "2");
    EXPECT_EQ(file.checks[1].kind, CheckKind::matches);
    EXPECT_EQ(file.checks[1].expected, "\\d+");
    EXPECT_EQ(file.checks[2].kind, CheckKind::fails);
    EXPECT_EQ(file.checks[2].expected, " a part ");
    EXPECT_EQ(file.checks[3].line, 9);
    EXPECT_EQ(file.checks[3].expected, "");
}

TEST(CalcFileTest, ABackslashContinuesALine) {
    const CalcTestFile file = parseCalcTest("1 +\\\n# 2\\\n= 3\n= 4", false);
    ASSERT_EQ(file.checks.size(), 1U);
    EXPECT_EQ(file.checks[0].text, "1 +\n# 2\n= 3");
    EXPECT_EQ(file.checks[0].expected, "4");
}

TEST(CalcFileTest, FaultsOfForm) {
    const CalcTestFile file = parseCalcTest("= 1\n1\n2\n= 2\n3\n\n= 3\n4", false);
    ASSERT_EQ(file.faults.size(), 5U);
    EXPECT_EQ(file.faults[0].line, 1);
    EXPECT_EQ(file.faults[0].message, "a check without a calculation before it");
    EXPECT_EQ(file.faults[1].line, 2);
    EXPECT_EQ(file.faults[1].message,
              "a calculation without a check; expected a line with =, ~ or ! after it");
    EXPECT_EQ(file.faults[2].line, 5);
    EXPECT_EQ(file.faults[3].line, 7);
    EXPECT_EQ(file.faults[4].line, 8);
    EXPECT_EQ(file.checks.size(), 1U);
}

TEST(CalcFileTest, OnlyTheCalcBlocksOfMarkdownCount) {
    const CalcTestFile file =
        parseCalcTest("# Title\ntext\n= 0\n```calc\n1\n= 1\n```\n```\n2\n```\n```calc\n3\n= 3\n```\n", true);
    EXPECT_TRUE(file.faults.empty());
    ASSERT_EQ(file.checks.size(), 2U);
    EXPECT_EQ(file.checks[0].line, 5);
    EXPECT_EQ(file.checks[1].text, "3");
}

} // namespace
} // namespace host
