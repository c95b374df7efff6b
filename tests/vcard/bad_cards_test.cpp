// Bad cards: each gives one problem with its number, line and reason, and the good card after it is read.

#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/unfold.h"
#include "tests/vcard/support.h"

#include <gtest/gtest.h>

#include <chrono>
#include <sstream>

namespace addressbook::vcard {
namespace {

struct Row {
    std::string name;
    std::string text;
    std::size_t line;
    std::string reason;
};

const std::string kGood = "BEGIN:VCARD\r\nN:Good\r\nEND:VCARD\r\n";

TEST(BadCardsTest, EachIsOneProblemAndTheNextIsRead) {
    const std::vector<Row> rows{
        {"no END", "BEGIN:VCARD\n", 1, "no END:VCARD before the BEGIN:VCARD in line 2"},
        {"no BEGIN", "END:VCARD\n", 1, "END:VCARD without BEGIN:VCARD"},
        {"text", "Dear all,\nhere are\n", 1, "no vCard begins here: \"Dear all,\""},
        {"binary",
         std::string("\x7F"
                     "ELF\0\0",
                     6) +
             "\n",
         1, "binary data, no vCard"},
        {"empty", "\n\nBEGIN:VCARD\nVERSION:3.0\nEND:VCARD\n", 3, "the card has nothing in it"},
        {"nothing but an id", "BEGIN:VCARD\nUID:1\nREV:2\nEND:VCARD\n", 1, "the card has nothing in it"},
        {"nothing but a wrong line", "BEGIN:VCARD\nloose\nEND:VCARD\n", 2,
         "the card has nothing in it; no property: \"loose\""},
        {"calendar", "BEGIN:VCALENDAR\nEND:VCALENDAR\n", 1, "no vCard begins here: \"BEGIN:VCALENDAR\""},
    };
    for (const Row& row : rows) {
        const ReadResult result = readAll(row.text + kGood);
        EXPECT_EQ(result.cards.size(), 1u) << row.name;
        ASSERT_EQ(result.problems.size(), 1u) << row.name;
        EXPECT_EQ(result.problems[0].number, 1u) << row.name;
        EXPECT_EQ(result.problems[0].line, row.line) << row.name;
        EXPECT_EQ(result.problems[0].reason, row.reason) << row.name;
        EXPECT_EQ(result.cards.at(0).number, 2u) << row.name;
    }
}

// A line that cannot be read is left out and named; the rest of the card is there.
TEST(BadCardsTest, ABadLineCostsNothingElse) {
    struct Bad {
        std::string line, reason;
        std::size_t at = 4;
    };
    const std::vector<Bad> rows{
        {"NOTE:a" + std::string(1, '\0') + "b", "binary data inside the card: \"NOTE:a?b\""},
        {"PHOTO;ENCODING=b:QU*D", "the picture is no base64 data: \"PHOTO;ENCODING=b:QU*D\""},
        {"PHOTO;ENCODING=b:QU==QUJD", "the picture is no base64 data: \"PHOTO;ENCODING=b:QU==QUJD\""},
        {"PHOTO:it's me", "the picture is no base64 data: \"PHOTO:it's me\""},
        {"BDAY:1981-02-29", "no date: \"BDAY:1981-02-29\""},
        {"BDAY:in spring", "no date: \"BDAY:in spring\""},
        {"item1.X-ABDATE;TYPE=x:99-99", "no date: \"item1.X-ABDATE;TYPE=x:99-99\""},
        {"ADR;ENCODING=BASE64:*;*", "no base64 data: \"ADR;ENCODING=b:*;*\""},
        {"BEGIN:VEVENT\r\nSUMMARY:x\r\nEND:VEVENT", "wrong nesting inside the card: \"BEGIN:VEVENT\""},
        {"END:VEVENT", "wrong nesting inside the card: \"END:VEVENT\""},
        {"loose", "no property: \"loose\""},
    };
    for (const Bad& row : rows) {
        const Card card = readOne(cardText({"N:Berg", row.line, "TEL:1"}));
        EXPECT_EQ(describe(card, property::kLast), "Berg") << row.line;
        EXPECT_EQ(describe(card, property::kPhone), "[Other:1]") << row.line;
        EXPECT_EQ(card.values.size(), 2u) << row.line;
        ASSERT_EQ(card.skipped.size(), 1u) << row.line;
        EXPECT_EQ(card.skipped[0].line, row.at) << row.line;
        EXPECT_EQ(card.skipped[0].reason, row.reason) << row.line;
    }
}

// What is too long for a name is none, and the rest of the card is there. Names of one's own may be longer.
TEST(BadCardsTest, NamesAreOnlySoLong) {
    const std::pair<std::size_t, std::string> longest[] = {{67, ""}, {1000, "X-"}};
    for (const auto& [most, begin] : longest) {
        SCOPED_TRACE(most);
        const std::string name = begin + std::string(most - begin.size(), 'A');
        EXPECT_TRUE(readOne(cardText({"N:Berg", name + ":x", "TEL:1"})).skipped.empty());
        const Card card = readOne(cardText({"N:Berg", name + "A:x", "TEL:1"}));
        EXPECT_EQ(describe(card, property::kPhone), "[Other:1]");
        ASSERT_EQ(card.skipped.size(), 1u);
        EXPECT_EQ(card.skipped[0].line, 4u);
    }
}

TEST(BadCardsTest, WhatStandsBeforeAValueIsOnlySoLong) {
    const auto line = [](std::size_t header) {
        const std::string begin = "NOTE;X-A=";
        return begin + std::string(header - begin.size(), 'a') + ":x";
    };
    EXPECT_EQ(describe(readOne(cardText({"N:Berg", line(kMaxHeader - 1)})), property::kNote), "x");
    const Card card = readOne(cardText({"N:Berg", line(kMaxHeader), "TEL:1"}));
    EXPECT_EQ(describe(card, property::kPhone), "[Other:1]");
    ASSERT_EQ(card.skipped.size(), 1u);
    EXPECT_EQ(card.skipped[0].line, 4u);
}

// A value of more parts than any has: the last that is looked at has the rest.
TEST(BadCardsTest, AValueHasOnlySoManyParts) {
    const std::string separators(kMaxParts + 10, ';');
    EXPECT_EQ(splitEscaped(separators, ';').size(), kMaxParts);
    EXPECT_EQ(splitEscaped(separators, ';').back(), separators.substr(kMaxParts - 1));
    EXPECT_EQ(describe(readOne(cardText({"N:Berg" + separators})), property::kLast), "Berg");
}

TEST(BadCardsTest, TruncatedAnywhere) {
    const std::string text =
        cardText({"N:Berg;Ida", "NOTE;QUOTED-PRINTABLE:a=", "b", "PHOTO;ENCODING=b:QUJD", " REVG"});
    const std::size_t whole = text.rfind("END:VCARD") + 9;
    for (std::size_t length = 1; length < text.size(); ++length) {
        const ReadResult result = readAll(std::string_view(text).substr(0, length));
        const bool hasName = length > text.find("\r\nNOTE");
        EXPECT_EQ(result.cards.size(), hasName ? 1u : 0u) << length;
        EXPECT_EQ(result.problems.size(), hasName ? 0u : 1u) << length;
        for (const Card& card : result.cards) {
            EXPECT_EQ(card.unended.empty(), length >= whole) << length;
            // Nothing is taken of a line that the end cuts off.
            EXPECT_EQ(describe(card, property::kLast), "Berg") << length;
            if (length <= text.find("\r\nb")) {
                EXPECT_TRUE(describe(card, property::kNote) == "-" ||
                            (describe(card, property::kNote) == "a=" && text[length - 1] < ' '))
                    << length;
            }
        }
    }
}

TEST(BadCardsTest, UnbalancedNestingLosesOnlyItself) {
    const ReadResult result =
        readAll("BEGIN:VCARD\nN:Outer\nBEGIN:VCARD\nN:Inner\nEND:VCARD\nTEL:1\nEND:VCARD\n" + kGood);
    ASSERT_EQ(result.cards.size(), 3u);
    EXPECT_EQ(describe(result.cards[0], property::kLast), "Outer");
    EXPECT_EQ(result.cards[0].unended, "no END:VCARD before the BEGIN:VCARD in line 3");
    EXPECT_EQ(describe(result.cards[1], property::kLast), "Inner");
    ASSERT_EQ(result.problems.size(), 1u);
    EXPECT_EQ(result.problems[0].reason, "no vCard begins here: \"TEL:1\"");
}

TEST(BadCardsTest, IncompletePictureIsNamed) {
    const Card card = readOne(cardText({"N:A", "PHOTO;ENCODING=b:QUJDR"}));
    EXPECT_EQ(describe(card, property::kImage), "3 bytes");
    ASSERT_EQ(card.skipped.size(), 1u);
    EXPECT_EQ(card.skipped[0].reason,
              "the last bits of a picture, which is incomplete: \"PHOTO;ENCODING=b:QUJDR\"");
}

TEST(BadCardsTest, EmptyInput) {
    EXPECT_FALSE(Reader(std::string_view()).next());
    EXPECT_FALSE(Reader(std::string_view("\xFF\xFE\x00")).next());
    EXPECT_FALSE(Reader(std::string_view("\r\n\r\n")).next());
}

// Hostile sizes are answered, and soon: the time would be minutes or hours if any of them took quadratic
// time.
TEST(BadCardsTest, HugeInputIsRefusedSoon) {
    const std::string begin = "BEGIN:VCARD\r\nN:A\r\n", end = "\r\nEND:VCARD\r\n";
    const std::size_t much = kMaxCardBytes + 1;
    struct Huge {
        std::string name, text, reason;
    };
    std::string telephones, folds;
    for (std::size_t at = 0; at <= kMaxCardLines; ++at) {
        telephones += "TEL:1\r\n";
    }
    for (std::size_t at = 0; at < 400'000; ++at) {
        folds += "\r\n x";
    }
    const std::vector<Huge> rows{
        {"one line", begin + "NOTE:" + std::string(much, 'x') + end, "a line of more than 32 MB: \"NOTE:xxx"},
        {"no line end", std::string(much, 'x') + "\n",
         "no vCard begins here: \"" + std::string(60, 'x') + "...\""},
        {"properties", begin + telephones + end,
         "the card has more than 20000 properties; it ends here: \"TEL:1\""},
        {"folds", begin + "NOTE:" + folds + end, ""},
        {"folded name", begin + "NOTE" + folds + end, "no property: \"NOTExxx"},
        {"semicolons", begin + "ORG" + std::string(much / 4, ';') + ":" + std::string(much / 4, ';') + end,
         "no property: \"ORG;;;"},
        {"carriage returns", begin + std::string(much / 16, '\r') + end, ""},
    };
    for (const Huge& row : rows) {
        const auto start = std::chrono::steady_clock::now();
        ReadResult result = readAll(row.text + kGood);
        ASSERT_FALSE(result.cards.empty()) << row.name;
        EXPECT_EQ(describe(result.cards.back(), property::kLast), "Good") << row.name;
        for (const Problem& skipped : result.cards.front().skipped) {
            result.problems.push_back(skipped);
        }
        const std::string reason = result.problems.empty() ? "" : result.problems[0].reason;
        EXPECT_TRUE(row.reason.empty() ? reason.empty() : reason.starts_with(row.reason))
            << row.name << reason;
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20)) << row.name;
    }
}

TEST(ReadingTest, StreamsAndTextsAgree) {
    std::string text;
    for (int at = 0; at < 5000; ++at) {
        text += cardText(
            {"N:Card " + std::to_string(at), "NOTE:" + std::string(static_cast<std::size_t>(at % 300), 'n')});
    }
    std::istringstream stream(text);
    Reader fromStream(stream);
    Reader fromText{std::string_view(text)};
    std::size_t cards = 0;
    while (auto left = fromStream.next()) {
        const auto right = fromText.next();
        ASSERT_TRUE(right);
        ASSERT_TRUE(sameContents(std::get<Card>(*left), std::get<Card>(*right)));
        ++cards;
    }
    EXPECT_EQ(cards, 5000u);
    EXPECT_EQ(fromStream.bytesRead(), text.size());
}

} // namespace
} // namespace addressbook::vcard
