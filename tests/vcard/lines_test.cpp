// Line ends, folds and soft line breaks: a card is read alike with all of them.

#include "tests/vcard/support.h"

#include <gtest/gtest.h>

namespace addressbook::vcard {
namespace {

std::string withLineEnds(const std::string& text, const std::string& end) {
    std::string result;
    for (const char byte : text) {
        result += byte == '\n' ? end : std::string(1, byte);
    }
    return result;
}

TEST(LinesTest, EveryLineEnd) {
    const std::string text =
        "begin:vcard\nversion:3.0\nn:Berg;Ida\n\nnote:one \n two\n  three\ntel:1\nend:vcard\n";
    for (const std::string end : {"\n", "\r\n", "\r", "\r\r\n"}) {
        const Card card = readOne(withLineEnds(text, end));
        EXPECT_EQ(describe(card, property::kNote), "one two three") << testing::PrintToString(end);
        EXPECT_EQ(describe(card, property::kPhone), "[Other:1]") << testing::PrintToString(end);
    }
}

TEST(LinesTest, MixedLineEndsAndNoneAtTheEnd) {
    const Card card = readOne("BEGIN:VCARD\r\nN:Berg\rTEL:1\nTEL:2\r\r\nNOTE:a\n b\r c\r\n d\r\nEND:VCARD");
    EXPECT_EQ(describe(card, property::kPhone), "[Other:1 Other:2]");
    EXPECT_EQ(describe(card, property::kNote), "abcd");
}

TEST(LinesTest, FoldsOfVersion21KeepTheirSpace) {
    EXPECT_EQ(describe(readOne(cardText({"N:A", "NOTE:one", " two"}, "2.1")), property::kNote), "one two");
    EXPECT_EQ(describe(readOne(cardText({"N:A", "NOTE:one", " two"}, "3.0")), property::kNote), "onetwo");
}

TEST(LinesTest, SoftLineBreaks) {
    const Card card = readOne(cardText({"N:A", "NOTE;ENCODING=QUOTED-PRINTABLE:one=", "#two= ", " three=", "",
                                        "TEL:1", "X-A;QUOTED-PRINTABLE:b="},
                                       "2.1"));
    EXPECT_EQ(describe(card, property::kNote), "one#two three");
    EXPECT_EQ(describe(card, property::kPhone), "[Other:1]");
    EXPECT_EQ(unknownLines(card),
              std::vector<std::string>{"X-A:b"}); // its break has nothing but END behind it
}

TEST(LinesTest, CommentsAndLooseLines) {
    const Card card = readOne(cardText({"# a comment", "N:A", "loose", "TEL:1"}));
    EXPECT_EQ(describe(card, property::kPhone), "[Other:1]");
    ASSERT_EQ(card.skipped.size(), 1u);
    EXPECT_EQ(card.skipped[0].line, 5u);
    EXPECT_EQ(card.skipped[0].reason, "no property: \"loose\"");
}

TEST(LinesTest, FoldedHeader) {
    const Card card = readOne(cardText({"N:A", "PHOTO;X-CROP=12345;ENCO", " DING=b;TYPE=JPEG:QUJ", " D"}));
    EXPECT_EQ(describe(card, property::kImage), "3 bytes");
    EXPECT_EQ(unknownLines(card), std::vector<std::string>{"+PHOTO;X-CROP=12345:"});
}

} // namespace
} // namespace addressbook::vcard
