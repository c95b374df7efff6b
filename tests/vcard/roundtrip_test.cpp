// Random cards, from a fixed seed, are unchanged when they are written and read.

#include "tests/vcard/random_card.h"
#include "tests/vcard/support.h"

#include <gmock/gmock.h>

namespace addressbook::vcard {
namespace {

TEST(RoundTripTest, RandomCards) {
    RandomCard maker(20240229);
    for (int round = 0; round < 500; ++round) {
        const Card card = maker.card();
        const std::string text = write(card);
        const ReadResult result = readAll(text);
        ASSERT_EQ(result.problems.size(), 0u) << text;
        ASSERT_EQ(result.cards.size(), 1u) << text;
        for (const auto& [property, value] : card.values) {
            EXPECT_EQ(describe(result.cards[0], property), describe(value)) << property << '\n' << text;
        }
        ASSERT_TRUE(sameContents(card, result.cards[0])) << text;
        ASSERT_EQ(write(result.cards[0]), text);
        const std::string text4 = write(card, WrittenVersion::v4);
        const ReadResult result4 = readAll(text4);
        ASSERT_EQ(result4.cards.size(), 1u) << text4;
        for (const auto& [property, value] : card.values) {
            EXPECT_EQ(describe(result4.cards[0], property), describe(value)) << property << '\n' << text4;
        }
        ASSERT_TRUE(sameContents(card, result4.cards[0])) << text4;
    }
}

TEST(RoundTripTest, UnknownLines) {
    const Card card = readOne(cardText({
        "N;SORT-AS=\"x,y\":A;B",
        "TEL;X-ID=1;type=HOME:1",
        "TEL;X-ID=2;type=HOME:1",
        "TEL;type=boat,MSG,pref:1",
        "item9.ADR;LABEL=\"a^nb\":;;Lane",
        "item9.X-ABADR:no code",
        "item9.X-EXTRA:1",
        "ORG;TYPE=work:Mill",
        "ORG:Lake",
        "NOTE;LANGUAGE=da:hej",
        "KEY;ENCODING=b;TYPE=x:QUJD",
        "X-EMPTY:",
        "X-A;P=\"a;b:c\":v;w\\,x",
        "PHOTO;X-CROP=1:QUJD",
        "PHOTO;VALUE=uri:http://x.example",
        "group.X-B:1",
        "group.X-ABLabel:l",
        "UID:not a uuid",
        "BDAY;ALTID=1:2000-01-02",
        "BDAY;ALTID=1;VALUE=text:then",
        "EMAIL;PREF=3:a",
        "EMAIL;PREF=2:b",
    }));
    const Card again = readOne(write(card));
    EXPECT_EQ(unknownLines(again), unknownLines(card));
    EXPECT_TRUE(sameContents(card, again));
    EXPECT_EQ(write(again), write(card));
    EXPECT_GT(unknownLines(card).size(), 15u);
}

// Each line with what was once lost or doubled by it.
TEST(RoundTripTest, UnknownLinesThatAreHardToTellApart) {
    const std::vector<std::vector<std::string>> cards{
        {"TEL;type=HOME:1", "TEL;PREF=1:2", "TEL;type=HOME;PREF=3:1"}, // equal lines, one with parameters
        {"item1.TEL:1", "item1.EMAIL:a", "item1.X-ABLabel:both", "item1.X-MORE:x"},
        {"item1.TEL:1", "item1.X-ABLabel:one", "item1.X-ABLabel:two", "item1.X-MORE:x"},
        {"item1.ADR:;;a", "item1.ADR:;;b", "item1.X-ABADR:dk", "item1.X-MORE:x"},
        {"NOTE;QUOTED-PRINTABLE:a=00b", "X-A;QUOTED-PRINTABLE:a=00b"},
    };
    for (std::vector<std::string> lines : cards) {
        lines.insert(lines.begin(), "N:A");
        const Card card = readOne(cardText(lines));
        const Card again = readOne(write(card));
        EXPECT_EQ(unknownLines(again), unknownLines(card)) << write(card);
        EXPECT_TRUE(sameContents(card, again)) << write(card);
        EXPECT_EQ(write(again), write(card));
    }
}

TEST(RoundTripTest, LabelsChangedInsideAGroupStayApart) {
    Card card =
        readOne(cardText({"N:A", "item1.TEL:1", "item1.EMAIL:a", "item1.X-ABLabel:both", "item1.X-MORE:x"}));
    card.values["Email"].as<MultiValue>()->entries[0].label = "other";
    const Card again = readOne(write(card));
    EXPECT_EQ(describe(again, property::kPhone), "[both:1]");
    EXPECT_EQ(describe(again, property::kEmail), "[other:a]");
}

// In 4.0 it is the card's own line, which has one place.
TEST(RoundTripTest, AUniqueIdThatIsAnAddressStaysInItsPlace) {
    const Card card =
        readOne(cardText({"N:A", "UID:urn:uuid:22222222-2222-4222-8222-222222222225", "X-MORE:x"}));
    for (const WrittenVersion version : {WrittenVersion::v3, WrittenVersion::v4}) {
        const std::string written = write(card, version);
        EXPECT_THAT(written, testing::HasSubstr("UID:urn:uuid:22222222-2222-4222-8222-222222222225\r\n"));
        EXPECT_EQ(write(readOne(written), version), written);
    }
}

} // namespace
} // namespace addressbook::vcard
