// Changing the text of a card: what does not change stays byte for byte.

#include "frameworks/AddressBook/vcard/edit_card.h"

#include "tests/support/files.h"
#include "tests/support/rounds.h"
#include "tests/vcard/random_card.h"
#include "tests/vcard/support.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

namespace addressbook::vcard {
namespace {

using Lines = std::vector<std::string>;

MultiValue& list(Card& card, std::string_view property) {
    return *card.values[std::string(property)].as<MultiValue>();
}

// A text, a change of it, and what it is afterwards.
struct Case {
    const char* name;
    Lines before;
    std::function<void(Card&)> change;
    Lines after;
    std::string version = "3.0";
};

const std::vector<Case>& cases() {
    static const std::vector<Case> kCases{
        {"one entry of several",
         {"PRODID:-//x//y", "REV:1", "N:A;B", "FN:B A", "TEL;type=CELL;X-ID=7:1", "X-B;P=q:1",
          "TEL;TYPE=\"work,voice\":2", "tel;HOME:3"},
         [](Card& card) { list(card, property::kPhone).entries[1].value = std::string("22"); },
         {"PRODID:-//x//y", "REV:1", "N:A;B", "FN:B A", "TEL;type=CELL;X-ID=7:1", "TEL;type=WORK:22",
          "X-B;P=q:1", "tel;HOME:3"}},
        {"an entry more",
         {"EMAIL;TYPE=home:a", "N:A", "FN:A", "X-A:1"},
         [](Card& card) {
             list(card, property::kEmail).entries.push_back({"1", "_$!<Work>!$_", std::string("b")});
         },
         {"EMAIL;TYPE=home:a", "EMAIL;type=INTERNET;type=WORK:b", "N:A", "FN:A", "X-A:1"}},
        {"an entry of a group of lines less",
         {"N:A", "FN:A", "item1.ADR:;;Lane 1;Town", "item1.X-ABADR:dk", "item1.X-ABLabel:Hut", "item2.URL:u",
          "item2.X-ABLabel:Site"},
         [](Card& card) { card.values.erase(std::string(property::kAddress)); },
         {"N:A", "FN:A", "item2.URL:u", "item2.X-ABLabel:Site"}},
        {"one of two that share a label",
         {"N:A", "FN:A", "item1.TEL:1", "item1.EMAIL:a", "item1.X-ABLabel:both"},
         [](Card& card) { card.values.erase(std::string(property::kPhone)); },
         {"N:A", "FN:A", "item1.EMAIL:a", "item1.X-ABLabel:both"}},
        {"a label of one's own, in a group that is free",
         {"N:A", "FN:A", "item1.URL:u", "item1.X-ABLabel:Site", "TEL:1"},
         [](Card& card) { list(card, property::kPhone).entries[0].label = "boat"; },
         {"N:A", "FN:A", "item1.URL:u", "item1.X-ABLabel:Site", "item2.TEL:1", "item2.X-ABLabel:boat"}},
        {"the name alone",
         {"FN:Dr Ida A", "N:A;Ida;;Dr;", "NOTE:x\\ny", "X-C:1"},
         [](Card& card) { card.values[std::string(property::kLast)] = std::string("B"); },
         {"FN:Dr Ida B", "N:B;Ida;;Dr;", "NOTE:x\\ny", "X-C:1"}},
        {"the same entry under two names",
         {"N:A", "FN:A", "IMPP;X-SERVICE-TYPE=AIM:aim:ida", "X-AIM:ida", "X-D:1"},
         [](Card& card) { card.values.erase(std::string(property::kAim)); },
         {"N:A", "FN:A", "X-D:1"}},
        {"entries in another order",
         {"N:A", "FN:A", "TEL;X-ID=1:1", "X-E:1", "TEL;X-ID=2:2", "TEL;X-ID=3:3"},
         [](Card& card) {
             auto& entries = list(card, property::kPhone).entries;
             std::rotate(entries.begin(), entries.begin() + 1, entries.end());
         },
         {"N:A", "FN:A", "X-E:1", "TEL;X-ID=2:2", "TEL;X-ID=3:3", "TEL;X-ID=1:1"}},
        {"a company no longer",
         {"VERSION:4.0", "KIND:org", "N:A;B;;;", "FN:B A", "ORG:Mill"},
         [](Card& card) { card.values.erase(std::string(property::kPersonFlags)); },
         {"VERSION:4.0", "N:A;B;;;", "FN:B A", "ORG:Mill"},
         "4.0"},
        {"a line that cannot be read stays",
         {"N:A", "FN:A", "TITLE:Old", "no property", "X-F:1"},
         [](Card& card) { card.values[std::string(property::kJobTitle)] = std::string("New"); },
         {"N:A", "FN:A", "TITLE:New", "no property", "X-F:1"}},
        {"no UID yet",
         {"N:A", "FN:A"},
         [](Card& card) { card.uid = "00000000-0000-0000-0000-00000000000A:ABPerson"; },
         {"N:A", "FN:A", "UID:00000000-0000-0000-0000-00000000000A"}},
        {"categories are a set",
         {"N:A", "FN:A", "CATEGORIES:z, b", "CATEGORIES:c"},
         [](Card& card) { card.categories = {"b", "c", "z"}; },
         {"N:A", "FN:A", "CATEGORIES:z, b", "CATEGORIES:c"}},
        {"members of Apple's groups",
         {"X-ADDRESSBOOKSERVER-KIND:group", "N:G", "FN:G",
          "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:00000000-0000-0000-0000-00000000000a",
          "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:00000000-0000-0000-0000-00000000000b", "X-G:1"},
         [](Card& card) {
             card.memberUids = {"urn:uuid:00000000-0000-0000-0000-00000000000c",
                                "00000000-0000-0000-0000-00000000000B"};
         },
         {"X-ADDRESSBOOKSERVER-KIND:group", "N:G", "FN:G",
          "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:00000000-0000-0000-0000-00000000000b",
          "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:00000000-0000-0000-0000-00000000000c", "X-G:1"}},
        {"members as the standard has them",
         {"KIND:group", "FN:G", "MEMBER:urn:uuid:a"},
         [](Card& card) { card.memberUids.emplace_back("mailto:b"); },
         {"KIND:group", "FN:G", "MEMBER:urn:uuid:a", "MEMBER:mailto:b"}},
        {"an unknown line more and one less",
         {"N:A", "FN:A", "X-H:1", "item3.X-I:2", "item3.TEL:1"},
         [](Card& card) {
             card.values[std::string(property::kUnknownLines)] =
                 Array{std::string("+item1.TEL:1"), std::string("item1.X-I:2"), std::string("X-J:3")};
         },
         {"N:A", "FN:A", "item3.X-I:2", "X-J:3", "item3.TEL:1"}},
        {"a value of which another line is left",
         {"N:A", "FN:A", "TITLE;X-ID=1:one", "TITLE:two", "X-K;P=\"q\":1"},
         [](Card& card) { card.values.erase(std::string(property::kJobTitle)); },
         {"N:A", "FN:A", "TITLE:two", "X-K;P=\"q\":1"}},
        {"a second anniversary",
         {"VERSION:4.0", "FN:A", "N:A;;;;", "ANNIVERSARY:20000102"},
         [](Card& card) {
             auto& entries = list(card, property::kOtherDates).entries;
             entries.push_back({"1", entries[0].label, *parseDay("2001-02-03", 0)});
         },
         {"VERSION:4.0", "FN:A", "N:A;;;;", "ANNIVERSARY:20000102",
          "item1.X-ABDATE;VALUE=date-and-or-time:20010203", "item1.X-ABLabel:_$!<Anniversary>!$_"},
         "4.0"},
    };
    return kCases;
}

// Returns the lines as one card; those of a case with a version of their own have it among them.
std::string textOf(const Lines& lines, const std::string& version, const char* end) {
    std::string text = "BEGIN:VCARD\r\n";
    if (version == "3.0") {
        text += "VERSION:3.0\r\n";
    }
    for (const std::string& line : lines) {
        text += line + "\r\n";
    }
    text += "END:VCARD\r\n";
    std::string result;
    for (const char byte : text) {
        result += byte == '\r' ? "" : byte == '\n' ? std::string(end) : std::string(1, byte);
    }
    return result;
}

TEST(EditCardTest, ChangesTheLinesOfWhatDiffers) {
    for (const Case& each : cases()) {
        for (const char* end : {"\r\n", "\n"}) {
            const std::string text = textOf(each.before, each.version, end);
            ReadResult read = readAll(text);
            ASSERT_EQ(read.cards.size(), 1u) << each.name;
            each.change(read.cards[0]);
            EXPECT_EQ(editCard(text, read.cards[0]), textOf(each.after, each.version, end)) << each.name;
        }
    }
}

TEST(EditCardTest, WhatNoTextCanSayIsNoChange) {
    const std::string text = cardText({"N:A;B", "FN:B A", "X-L;P=\"q\":1"});
    Card card = readOne(text);
    card.values[std::string(property::kFirst)] = std::string("B ");
    card.values[std::string(property::kHomePage)] = std::string("not in vCards");
    EXPECT_EQ(editCard(text, card), text);
    EXPECT_TRUE(sayTheSame(card, readOne(text)));
}

TEST(EditCardTest, KeepsFoldingAndDataInWhatStays) {
    const std::string text =
        "BEGIN:VCARD\r\nVERSION:3.0\r\nN:A\r\nFN:A\r\nNOTE:a\r\n b\r\n\tc\r\nPHOTO;ENCODING=b;"
        "TYPE=JPEG:\r\n  QUJD\r\n\r\nTITLE:T\r\nEND:VCARD";
    Card card = readOne(text);
    card.values[std::string(property::kJobTitle)] = std::string("U");
    std::string expected = text;
    expected.replace(expected.find("TITLE:T"), 7, "TITLE:U");
    EXPECT_EQ(editCard(text, card), expected);
}

// Behind the note the last line would be read as more of it.
TEST(EditCardTest, NoNoteTakesALineWhenWhatStoodBetweenGoes) {
    const std::string text = cardText({"N:A", "FN:A", "NOTE:n", "TITLE:t", "Odd Name:x"});
    Card card = readOne(text);
    card.values.erase(std::string(property::kJobTitle));
    const Card edited = readOne(editCard(text, card));
    EXPECT_TRUE(sameContents(edited, card));
    EXPECT_EQ(unknownLines(edited), Lines{"Odd Name:x"});
}

TEST(EditCardTest, OldVersionIsWrittenAnewWhenItDiffers) {
    const std::string text = cardText({"N:A", "TEL;CELL:1"}, "2.1");
    Card card = readOne(text);
    EXPECT_EQ(editCard(text, card), text);
    card.values[std::string(property::kJobTitle)] = std::string("T");
    EXPECT_EQ(editCard(text, card), write(card));
}

TEST(EditCardTest, WhatIsNoCardIsWrittenAnew) {
    const Card card = readOne(cardText({"N:A"}));
    for (const char* text : {"", "BEGIN:VCARD\r\nN:A\r\n", "nothing", "BEGIN:VCARD\r\nEND:VCARD\r\n"}) {
        EXPECT_EQ(editCard(text, card), write(card)) << text;
    }
}

TEST(EditCardTest, RandomCardsReadAsWhatTheyWereChangedTo) {
    RandomCard maker(20260101);
    for (int round = 0; round < support::rounds(400); ++round) {
        const Card before = maker.card();
        Card after = round % 2 ? maker.changed(before) : maker.card();
        after.uid = before.uid;
        for (const WrittenVersion version : {WrittenVersion::v3, WrittenVersion::v4}) {
            std::string text = write(before, version);
            text.replace(text.find("END:VCARD\r\n"), 0, "");
            EXPECT_EQ(editCard(text, before), text);
            // What only the text has tells that it was not written anew.
            text.replace(text.find("\r\nN:"), 2, "\r\nPRODID:-//x//y\r\nx-a;p=\"q\":1\r\n");
            Card wanted = after;
            wanted.values[std::string(property::kUnknownLines)] = Array{std::string("x-a;P=q:1")};
            const std::string edited = editCard(text, wanted);
            const Card again = readOne(edited);
            ASSERT_TRUE(sayTheSame(wanted, again)) << text << edited;
            EXPECT_NE(edited.find("\r\nPRODID:-//x//y\r\nx-a;p=\"q\":1\r\n"), std::string::npos)
                << text << edited;
            EXPECT_EQ(editCard(edited, wanted), edited);
        }
    }
}

// Cards as programs write them, which read back as they are.
TEST(EditCardTest, SamplesStayWhenNothingChanges) {
    int cards = 0;
    for (const auto& file : std::filesystem::directory_iterator(CARDS_FOLDER)) {
        const std::string all = support::bytesOf(file.path());
        for (std::size_t at = 0; at < all.size();) {
            std::size_t end = all.find("END:VCARD", at);
            end = end == std::string::npos ? all.size() : std::min(all.find('\n', end), all.size() - 1) + 1;
            const std::string text = all.substr(at, end - at);
            at = end;
            const ReadResult read = readAll(text);
            if (read.cards.size() == 1 && read.problems.empty() && read.cards[0].unended.empty()) {
                EXPECT_EQ(editCard(text, read.cards[0]), text) << file.path();
                ++cards;
            }
        }
    }
    EXPECT_GT(cards, 20);
}

} // namespace
} // namespace addressbook::vcard
