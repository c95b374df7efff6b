// addressbook check --explain: its description of searches, and its errors for those that it cannot parse.

#include "tests/tools/program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace addressbook {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

const std::string kPeople =
    "BEGIN:VCARD\nVERSION:3.0\nN:Meier;Ida\nTEL;type=CELL:+41 79 1\nTEL;type=boat:34\nNOTE:a \"quoted\" "
    "note\n"
    "ADR;type=HOME:;;Weg "
    "1;Zürich;;8000;\nBDAY:1980-03-22\nUID:11111111-1111-4111-8111-111111111111\nEND:VCARD\n"
    "BEGIN:VCARD\nVERSION:3.0\nN:Tal;Ole\nTEL;type=HOME:+41 79 2\nBDAY:1990-12-01\nEND:VCARD\n"
    "BEGIN:VCARD\nVERSION:3.0\nFN:Rowers\nX-ADDRESSBOOKSERVER-KIND:group\nEND:VCARD\n";

class ExplainProgramTest : public testing::Test, public Sandbox {
  protected:
    // With so many records that the save writes the indexes.
    ExplainProgramTest() {
        std::string cards = kPeople;
        for (int i = 0; i < 8; ++i) {
            cards += "BEGIN:VCARD\nVERSION:3.0\nFN:Crew " + std::to_string(i) +
                     "\nX-ADDRESSBOOKSERVER-KIND:group\nEND:VCARD\n";
        }
        EXPECT_EQ(run({"import", file("people.vcf", cards)}).status, 0);
    }

    // Returns the description of a search, without the times.
    std::string explained(const std::string& search) {
        const Outcome outcome = run({"check", "--explain", search});
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_EQ(outcome.err, "");
        std::string text;
        for (std::size_t at = 0, end = 0; at < outcome.out.size(); at = end + 1) {
            end = outcome.out.find('\n', at);
            std::string line = outcome.out.substr(at, end - at);
            if (line.ends_with(" ms")) {
                const std::size_t time = line.rfind("; ");
                EXPECT_THAT(line.substr(time), MatchesRegex("; [0-9]+\\.[0-9][0-9][0-9] ms"));
                line.erase(time);
            }
            text += line + '\n';
        }
        return text;
    }
    // What is said to a search that cannot be read.
    std::string refused(const std::string& search) {
        const Outcome outcome = run({"check", "--explain", "Last = \"x\"", search});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.out, "");
        const std::string start = "addressbook: --explain " + search + ": ";
        EXPECT_TRUE(outcome.err.starts_with(start) && outcome.err.ends_with("\n")) << outcome.err;
        return outcome.err.substr(start.size(), outcome.err.size() - start.size() - 1);
    }
};

struct Search {
    const char* text;
    const char* condition; // as it is told
    const char* answer;
};

TEST_F(ExplainProgramTest, TellsTheIndex) {
    const Search kSearches[] = {
        {"Last = 'Meier'", "Last Equal \"Meier\"", "exact look-up in the value index; 1 index row; 1 hit"},
        {"lastname is \"MEIER\"", "Last EqualCaseInsensitive \"MEIER\"",
         "exact look-up in the value index; 1 index row; 1 hit"},
        {"last kABPrefixMatch \"Mei\"", "Last PrefixMatch \"Mei\"",
         "range of the value index (prefix); 1 index row; 1 hit"},
        {"Last contains \"EIE\"", "Last ContainsSubStringCaseInsensitive \"EIE\"",
         "trigram index of texts; 1 index row; 1 hit"},
        {"Last ContainsSubString \"EIE\"", "Last ContainsSubString \"EIE\"",
         "trigram index of texts; 1 index row; 1 record read; 0 hits"},
        {"Last contains \"ei\"", "Last ContainsSubStringCaseInsensitive \"ei\"",
         "scan of the values of the property; 2 index rows; 1 hit"},
        {"Last isNot \"tal\"", "Last NotEqualCaseInsensitive \"tal\"",
         "exact look-up in the value index; 1 index row; taken away from all 2; 1 hit"},
        {"Last!=nil", "Last NotEqual nil",
         "scan of the values of the property; 2 index rows; taken away from all 2; 0 hits"},
        {"Birthday < 1985-01-01", "Birthday LessThan 1985-01-01",
         "range of the value index; 1 index row; 1 hit"},
        {"Birthday = 1980-03-22", "Birthday Equal 1980-03-22",
         "exact look-up in the value index; 1 index row; 1 hit"},
        {"Birthday WithinIntervalAroundToday -1 days", "Birthday WithinIntervalAroundToday -86400",
         "no look-up, nothing can match; 0 index rows; 0 hits"},
        {"Birthday WithinIntervalFromToday 7 days", "Birthday WithinIntervalFromToday 604800",
         "range of the value index (interval); 0 index rows; 0 hits"},
        {"ABPersonFlags > 1.5", "ABPersonFlags GreaterThan 1.5", nullptr},
        {"Phone label mobile beginsWith \"+41\"",
         "Phone label \"_$!<Mobile>!$_\" PrefixMatchCaseInsensitive \"+41\"",
         "range of the value index (prefix); 1 index row; 1 hit"},
        {"Phone label boat = \"34\"", "Phone label \"boat\" Equal \"34\"",
         "exact look-up in the value index; 1 index row; 1 hit"},
        {"Phone label \"Mobile\" beginsWith \"+41\"",
         "Phone label \"Mobile\" PrefixMatchCaseInsensitive \"+41\"",
         "range of the value index (prefix); 0 index rows; 0 hits"},
        {"Address key City label Home is \"zürich\"",
         "Address key \"City\" label \"_$!<Home>!$_\" EqualCaseInsensitive \"zürich\"",
         "exact look-up in the value index; 1 index row; 1 hit"},
        {"UID = \"11111111-1111-4111-8111-111111111111:ABPerson\"",
         "UID Equal \"11111111-1111-4111-8111-111111111111:ABPerson\"",
         "look-up of the unique id; 1 index row; 1 hit"},
        {"UID endsWith \"person\"", "UID SuffixMatchCaseInsensitive \"person\"",
         "scan of all unique ids; 2 index rows; 2 hits"},
        {"GroupName contains \"row\"", "GroupName ContainsSubStringCaseInsensitive \"row\"",
         "trigram index of texts; 1 index row; 1 hit"},
        {"Note = \"a \\\"quoted\\\" note\"", "Note Equal \"a \\\"quoted\\\" note\"",
         "exact look-up in the value index; 1 index row; 1 hit"},
        {"Note contains \"\\n\\t\\\\\"", "Note ContainsSubStringCaseInsensitive \"\\n\\t\\\\\"",
         "trigram index of texts; 0 index rows; 0 hits"},
        {"Nickname = \"x\"", "Nickname Equal \"x\"", "no look-up, nothing can match; 0 index rows; 0 hits"},
    };
    for (const Search& search : kSearches) {
        const std::string told = explained(search.text);
        if (search.answer != nullptr) {
            EXPECT_EQ(told, std::string(search.condition) + "\n  " + search.answer + '\n');
        }
        // The description of a search is a search itself.
        EXPECT_EQ(explained(search.condition), told);
    }
}

TEST_F(ExplainProgramTest, TellsCompoundsInTheOrderInWhichTheyRan) {
    EXPECT_EQ(explained("Note contains \"no\" and Last = \"Meier\" or (First = \"Ole\" and Note = nil)"),
              "any of these\n"
              "  searched in this order; 1 hit\n"
              "  1. all of these\n"
              "     searched in this order; 1 hit\n"
              "     1. Last Equal \"Meier\"\n"
              "        exact look-up in the value index; 1 index row; 1 hit\n"
              "     2. Note ContainsSubStringCaseInsensitive \"no\"\n"
              "        what was left, record by record; 1 record read; 1 hit\n"
              "  2. all of these\n"
              "     searched in this order; 0 hits\n"
              "     1. First Equal \"Ole\"\n"
              "        exact look-up in the value index; 1 index row; 1 hit\n"
              "     2. Note Equal nil\n"
              "        what was left, record by record; 1 record read; 0 hits\n");
    EXPECT_THAT(explained("First = \"Eve\" AND Note = nil"),
                HasSubstr("  2. Note Equal nil\n     not looked up, nothing was left\n"));
    const Outcome two = run({"check", "--explain", "Last = 'Tal'", "--explain", "Last = 'Meier'"});
    EXPECT_THAT(two.out, MatchesRegex("Last Equal \"Tal\"\n[^\n]*\nLast Equal \"Meier\"\n[^\n]*\n"));
}

TEST_F(ExplainProgramTest, SaysWhereASearchCannotBeRead) {
    const std::pair<const char*, const char*> kWrong[] = {
        {"", "column 1: expected a property, as Last, or \"(\", not the end"},
        {"Lsat = \"x\"", "column 1: expected a property; none is named \"Lsat\"; did you mean Last?"},
        {"Kühlschrank = 1", "column 1: expected a property; none is named \"Kühlschrank\""},
        {"Last contian \"x\"", "column 6: expected \"key\", \"label\" or a comparison, as contains or =, not "
                               "\"contian\"; did you mean contains?"},
        {"Last kAB \"x\"",
         "column 6: expected \"key\", \"label\" or a comparison, as contains or =, not \"kAB\""},
        {"Birthday WithinIntervalAroundToday -9223372036854775808 days",
         "column 57: expected a whole number before it, not \"days\""},
        {"Last \"x\"", "column 6: expected \"key\", \"label\" or a comparison, as contains or =, not \"x\""},
        {"Phone label Home >> 1",
         "column 18: expected a comparison, as contains or =, not \">>\"; did you mean >?"},
        {"Address key = 1", "column 13: expected the name of a field, as City, not \"=\""},
        {"Phone label = 1", "column 13: expected a label, as Home, not \"=\""},
        {"Last = x",
         "column 8: expected a value (text in quotes, a number, a date as 2026-01-31, or nil), not \"x\""},
        {"Birthday = 2026-02-30", "column 12: expected a value (text in quotes, a number, a date as "
                                  "2026-01-31, or nil), not \"2026-02-30\""},
        {"Birthday WithinIntervalAroundToday 1.5 days",
         "column 40: expected a whole number before it, not \"days\""},
        {"First = \"Zoë\" \"x\"", "column 15: expected \"and\", \"or\" or the end, not \"x\""},
        {"Last = 'x", "column 10: expected the closing ' of the text in column 8"},
        {"(Last = 'x'", "column 12: expected \"and\", \"or\" or \")\", not the end"},
        {"Last = 'x' and", "column 15: expected a property, as Last, or \"(\", not the end"},
    };
    for (const auto& [search, message] : kWrong) {
        EXPECT_EQ(refused(search), message);
    }
    EXPECT_EQ(run({"check", "--explain"}).status, 2);
    EXPECT_EQ(run({"check", "--explain", "Last = 'x'", "--book", (folder() / "no/such").string()}).status, 3);
}

TEST_F(ExplainProgramTest, HelpTellsTheGrammar) {
    const std::string help = run({"check", "--help"}).out;
    EXPECT_THAT(help, HasSubstr("PROPERTY [key FIELD] [label LABEL] COMPARISON VALUE"));
    // Every example of the help is a search that can be read.
    int examples = 0;
    const std::string start = "addressbook check --explain '";
    for (std::size_t at = 0; (at = help.find(start, at)) != std::string::npos; ++examples) {
        at += start.size();
        const std::string search = help.substr(at, help.find("'\n", at) - at);
        EXPECT_EQ(run({"check", "--explain", search}).status, 0) << search;
    }
    EXPECT_EQ(examples, 3);
}

} // namespace
} // namespace addressbook
