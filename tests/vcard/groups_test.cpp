// Cards of groups, and groups that cards of people name.

#include "tests/vcard/support.h"

#include <gtest/gtest.h>

namespace addressbook::vcard {
namespace {

TEST(GroupsTest, BothSpellings) {
    const std::string a = "11111111-AAAA-4111-8111-111111111111", b = "22222222-AAAA-4222-8222-222222222222";
    for (const std::string prefix : {"X-ADDRESSBOOKSERVER-", ""}) {
        const std::string member = prefix + "MEMBER:urn:uuid:";
        const Card card = readOne(cardText({"N:Rowers;;;;", "FN:The Rowers", prefix + "KIND:group",
                                            member + a, member + "22222222-aaaa-4222-8222-222222222222",
                                            member + a, "UID:" + b, "X-COLOR:red"}));
        EXPECT_EQ(card.kind, Kind::group);
        EXPECT_EQ(card.uid, b + ":ABGroup");
        EXPECT_EQ(describe(card, property::kGroupName), "The Rowers");
        EXPECT_EQ(card.memberUids, (std::vector<std::string>{
                                       "urn:uuid:" + a, "urn:uuid:22222222-aaaa-4222-8222-222222222222"}));
        EXPECT_EQ(unknownLines(card), std::vector<std::string>{"X-COLOR:red"});
        EXPECT_TRUE(sameContents(card, readOne(write(card))));
    }
}

TEST(GroupsTest, NameFromN) {
    EXPECT_EQ(describe(readOne(cardText({"N:Rowers", "KIND:group"}, "4.0")), property::kGroupName), "Rowers");
}

TEST(GroupsTest, MembersThatAreNoCardsAreKept) {
    const Card card = readOne(cardText({"FN:G", "KIND:group", "MEMBER:mailto:a@b.example"}, "4.0"));
    EXPECT_EQ(card.memberUids, std::vector<std::string>{"mailto:a@b.example"});
    EXPECT_EQ(linesOf(write(card)).back(), "X-ADDRESSBOOKSERVER-MEMBER:mailto:a@b.example");
}

TEST(GroupsTest, WithNothingInItAreRefused) {
    const ReadResult result = readAll(cardText({"KIND:group"}, "4.0"));
    ASSERT_EQ(result.problems.size(), 1u);
    EXPECT_EQ(result.problems[0].reason, "the group has neither name nor members");
}

TEST(GroupsTest, Categories) {
    const Card card = readOne(cardText({"N:A", "CATEGORIES:Rowers,Best\\, Friends", "CATEGORIES: Chess ,"}));
    EXPECT_EQ(card.categories, (std::vector<std::string>{"Rowers", "Best, Friends", "Chess"}));
}

} // namespace
} // namespace addressbook::vcard
