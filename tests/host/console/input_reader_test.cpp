#include "host/console/input_reader.h"

#include "host/calc/session.h"

#include <gtest/gtest.h>

namespace host {
namespace {

TEST(InputReaderTest, OneLineIsOneCalculation) {
    Session session;
    InputReader reader(session.functions(), "");
    const auto calculation = reader.addLine("1 + 1");
    ASSERT_TRUE(calculation);
    EXPECT_EQ(session.evaluate(*calculation).asText(), u"2");
    EXPECT_FALSE(reader.isOpen());
}

TEST(InputReaderTest, AnIncompleteLineGoesOn) {
    Session session;
    InputReader reader(session.functions(), "");
    EXPECT_FALSE(reader.addLine("Let ( [ a = 1 ;"));
    EXPECT_TRUE(reader.isOpen());
    EXPECT_FALSE(reader.addLine("  b = \"x"));
    EXPECT_FALSE(reader.addLine(""));
    EXPECT_FALSE(reader.addLine("y\" ] ;"));
    const auto calculation = reader.addLine("a & b )");
    ASSERT_TRUE(calculation);
    EXPECT_EQ(session.evaluate(*calculation).asText(), u"1x\r\ry");
    EXPECT_FALSE(reader.isOpen());
}

TEST(InputReaderTest, LinesWithoutACalculationAreNone) {
    Session session;
    InputReader reader(session.functions(), "");
    for (const char* line : {"", "  \t", "// a comment", "/* another */"}) {
        EXPECT_FALSE(reader.addLine(line)) << line;
        EXPECT_FALSE(reader.isOpen()) << line;
    }
    EXPECT_NO_THROW(reader.finish());
    EXPECT_FALSE(reader.addLine("/* a comment"));
    EXPECT_TRUE(reader.isOpen());
    EXPECT_FALSE(reader.addLine("that ends */"));
    EXPECT_FALSE(reader.isOpen());
}

TEST(InputReaderTest, CommandsOfThePromptAreNoCalculations) {
    Session session;
    InputReader reader(session.functions(), "input");
    for (const char* line : {":help Upper", " ?"}) {
        try {
            reader.addLine(line);
            ADD_FAILURE() << line;
        } catch (const CalcError& error) {
            EXPECT_STREQ(error.what(), "commands are for the prompt on a terminal; expected a calculation");
        }
    }
    EXPECT_TRUE(reader.addLine("1"));
}

TEST(InputReaderTest, AMistakeForgetsTheLines) {
    Session session;
    InputReader reader(session.functions(), "input");
    EXPECT_FALSE(reader.addLine("1 +"));
    try {
        reader.addLine(")");
        FAIL();
    } catch (const CalcError& error) {
        EXPECT_EQ(error.summary().substr(0, 10), "input:2:1:");
    }
    EXPECT_FALSE(reader.isOpen());
    EXPECT_TRUE(reader.addLine("5"));
}

TEST(InputReaderTest, TheEndMustNotComeInTheMiddle) {
    Session session;
    InputReader reader(session.functions(), "input");
    EXPECT_TRUE(reader.addLine("5"));
    EXPECT_FALSE(reader.addLine("( 1"));
    try {
        reader.finish();
        FAIL();
    } catch (const CalcError& error) {
        EXPECT_EQ(error.summary(), "input:2:4: expected an operator or \")\", found the end");
    }
}

} // namespace
} // namespace host
