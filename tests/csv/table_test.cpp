// Rows of CSV files as programs write them.

#include "frameworks/AddressBook/csv/table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace addressbook::csv {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using Cells = std::vector<std::string>;

std::vector<Cells> rowsOf(const std::string& text, const std::string& charset = "") {
    std::istringstream input(text);
    TableReader reader(input, charset);
    std::vector<Cells> rows;
    while (const Row* row = reader.next()) {
        rows.push_back(row->cells);
    }
    return rows;
}

std::string utf16(std::u16string_view text, bool bigEndian) {
    std::string bytes;
    for (const char16_t unit : text) {
        const char high = static_cast<char>(unit >> 8), low = static_cast<char>(unit & 0xFF);
        bytes += bigEndian ? std::string{high, low} : std::string{low, high};
    }
    return bytes;
}

TEST(CsvTableTest, TakesAnyLineEndAndKeepsWhatIsQuoted) {
    const Cells first{"a", " b ", ""}, second{"x,\"y\"\r\nz", "", "c"};
    for (const std::string end : {"\r\n", "\n", "\r"}) {
        EXPECT_THAT(rowsOf("a, b ," + end + end + "\"x,\"\"y\"\"\r\nz\",,c" + end),
                    ElementsAre(first, second));
        EXPECT_THAT(rowsOf("a, b ," + end + "\"x,\"\"y\"\"\r\nz\",,c"), ElementsAre(first, second));
    }
}

TEST(CsvTableTest, TellsTheLineInWhichARowBegins) {
    std::istringstream input("a,b\r\n\r\n\"1\n2\",x\nlast,\n");
    TableReader reader(input);
    EXPECT_EQ(reader.next()->line, 1U);
    EXPECT_EQ(reader.next()->line, 3U);
    EXPECT_EQ(reader.next()->line, 5U);
    EXPECT_EQ(reader.next(), nullptr);
}

TEST(CsvTableTest, GuessesTheSeparatorByTheFirstLine) {
    EXPECT_THAT(rowsOf("a;b;\"c,d,e,f\"\n1,5;2;3\n"),
                ElementsAre(Cells{"a", "b", "c,d,e,f"}, Cells{"1,5", "2", "3"}));
    EXPECT_THAT(rowsOf("a\tb\n1,2\t3\n"), ElementsAre(Cells{"a", "b"}, Cells{"1,2", "3"}));
    EXPECT_THAT(rowsOf("a|b\n"), ElementsAre(Cells{"a", "b"}));
    EXPECT_THAT(rowsOf("sep=|\na,b|c\n"), ElementsAre(Cells{"a,b", "c"}));
    EXPECT_THAT(rowsOf("alone\nx\n"), ElementsAre(Cells{"alone"}, Cells{"x"}));
}

TEST(CsvTableTest, ReadsTheCharacterSetsOfSpreadsheets) {
    const Cells wanted{"Jørgen", "Ås"};
    const std::string utf8 = "Jørgen,Ås\n";
    EXPECT_THAT(rowsOf(utf8), ElementsAre(wanted));
    EXPECT_THAT(rowsOf("\xEF\xBB\xBF" + utf8), ElementsAre(wanted));
    for (const bool bigEndian : {false, true}) {
        EXPECT_THAT(rowsOf(utf16(u"Jørgen,Ås\n", bigEndian)), ElementsAre(wanted));
        EXPECT_THAT(rowsOf(utf16(u"\xFEFFJørgen,Ås\n", bigEndian)), ElementsAre(wanted));
    }
    EXPECT_THAT(rowsOf(utf16(u"a,b\n", false)), ElementsAre(Cells{"a", "b"}));
    EXPECT_THAT(rowsOf("J\xBFrgen,\x81s\n", "macintosh"), ElementsAre(wanted));
    std::istringstream latin("J\xF8rgen,\xC5s\n");
    TableReader reader(latin);
    EXPECT_EQ(reader.next()->cells, wanted);
    EXPECT_NE(reader.guessedCharset(), "");
    EXPECT_THROW(rowsOf(utf8, "no-such-set"), std::invalid_argument);
    // ASCII at first, and a character that the end of a piece cuts.
    const std::string filler(65'535, 'x');
    EXPECT_THAT(rowsOf(filler + "ø,y\n"), ElementsAre(Cells{filler + "ø", "y"}));
}

TEST(CsvTableTest, AQuoteThatIsNotClosedIsToldWithItsLine) {
    for (const std::string text : {"a,b\n1,\"2\n3,4\n", "a,b\n1,\"2"}) {
        try {
            rowsOf(text);
            FAIL() << "accepted";
        } catch (const TableError& error) {
            EXPECT_THAT(error.what(), HasSubstr("line 2: a quotation mark"));
        }
    }
    EXPECT_THROW(rowsOf("a\n\"" + std::string(kMaxRowBytes + 100, 'x')), TableError);
    EXPECT_THAT(rowsOf("a\"b,c\n"), ElementsAre(Cells{"a\"b", "c"}));
}

TEST(CsvTableTest, WritesWhatItReads) {
    const Cells cells{"", "plain", " space", "a,b", "say \"x\"", "two\r\nlines", "\n", "ø"};
    EXPECT_EQ(line({"a", "", "b,\"c\""}), "a,,\"b,\"\"c\"\"\"\r\n");
    EXPECT_THAT(rowsOf(line({"head", "2", "3", "4", "5", "6", "7", "8"}) + line(cells)).back(), cells);
}

} // namespace
} // namespace addressbook::csv
