// Cards that one of the two sides does not take: the others go on, and users are told which it is and why.

#include "tests/carddav/book_server.h"
#include "tests/sharing/machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace sharing_test {
namespace {

using addressbook::Outcome;
using carddav_test::BookServer;
using carddav_test::Received;
using carddav_test::Reply;
using testing::HasSubstr;

TEST(BadCardTest, WhatIsNoCardStaysThereAndTheOthersCome) {
    const std::string bad[] = {"hello", "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Cut",
                               std::string(1, '\xFF') + "\r\n", "BEGIN:VCALENDAR\r\nEND:VCALENDAR\r\n"};
    BookServer server;
    int number = 0;
    for (const std::string& card : bad) {
        server.put("/ida/friends/bad" + std::to_string(number++) + ".vcf", card);
    }
    server.put("/ida/friends/ole.vcf", person(kOle, "Ole", "Berg"));
    Machine machine;
    machine.join(server.url(), "friends");
    machine.add(person(kIda, "Ida", "Holm"));
    const Outcome first = machine.sync();
    EXPECT_NE(first.err, "");
    EXPECT_THAT(first.out + first.err, HasSubstr("bad0.vcf"));
    EXPECT_THAT(machine.show(kOle), HasSubstr("Berg"));
    machine.sync();
    const auto cards = server.cards();
    EXPECT_EQ(cards.size(), 6U);
    number = 0;
    for (const std::string& card : bad) {
        EXPECT_EQ(cards.at("/ida/friends/bad" + std::to_string(number++) + ".vcf"), card);
    }
    // Somebody mends one.
    server.put("/ida/friends/bad0.vcf", person(kEva, "Eva", "Lund"));
    machine.sync();
    EXPECT_THAT(machine.show(kEva), HasSubstr("Lund"));
}

TEST(BadCardTest, CardThatTheServerRefusesKeepsBackNoOther) {
    BookServer server;
    Machine machine;
    machine.join(server.url(), "friends");
    machine.add(person(kIda, "Ida", "Holm") + person(kOle, "Ole", "Berg") + person(kEva, "Eva", "Lund"));
    server.fail([](const Received& received) -> std::optional<Reply> {
        if (received.method == "PUT" && received.body.find("Ole") != std::string::npos) {
            return Reply{413};
        }
        return std::nullopt;
    });
    const Outcome outcome = machine.sync();
    EXPECT_THAT(outcome.out + outcome.err,
                testing::AllOf(HasSubstr("Ole Berg"), HasSubstr("takes nothing as large as this")));
    EXPECT_EQ(server.cards().size(), 2U);
    // It is sent again when it has changed: perhaps it is smaller then.
    server.fail({});
    machine.set(kOle, "nickname=Olli");
    machine.syncWell();
    EXPECT_EQ(server.cards().size(), 3U);
}

TEST(BadCardTest, CardWithoutUidGetsOneThatIsPutBack) {
    BookServer server;
    const std::string path = "/ida/friends/by hand.vcf";
    server.put(path,
               "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Holm;Ida;;;\r\nFN:Ida Holm\r\nX-KEPT:yes\r\nEND:VCARD\r\n");
    Machine one;
    one.join(server.url(), "friends");
    one.syncWell();
    const std::string card = server.cards().at(path);
    EXPECT_THAT(card, testing::AllOf(HasSubstr("\r\nUID:"), HasSubstr("X-KEPT:yes\r\n"),
                                     HasSubstr("FN:Ida Holm\r\n")));
    Machine two;
    two.join(server.url(), "friends");
    two.syncWell();
    one.syncWell();
    EXPECT_EQ(server.cards().size(), 1U);
    EXPECT_EQ(server.cards().at(path), card);
    EXPECT_EQ(one.everybody(), two.everybody());
    EXPECT_EQ(one.everybody().size(), 1U);
}

TEST(BadCardTest, TwoCardsWithOneUidAreOneRecordAndStay) {
    BookServer server;
    server.put("/ida/friends/a.vcf", person(kIda, "Ida", "Holm"));
    server.put("/ida/friends/b.vcf", person(kIda, "Ida", "Holm", "NOTE:twice\r\n"));
    Machine machine;
    machine.join(server.url(), "friends");
    machine.sync();
    machine.sync();
    EXPECT_EQ(machine.everybody().size(), 1U);
    EXPECT_EQ(server.cards().size(), 2U);
}

TEST(BadCardTest, MembersThatComeLaterJoinTheirGroup) {
    BookServer server;
    server.put("/ida/friends/choir.vcf", group(kChoir, "Choir", {kIda, kOle}));
    server.put("/ida/friends/ole.vcf", person(kOle, "Ole", "Berg"));
    Machine machine;
    machine.join(server.url(), "friends");
    machine.syncWell();
    machine.set(kChoir, "name=The choir");
    machine.syncWell();
    EXPECT_THAT(server.cards().at("/ida/friends/choir.vcf"), HasSubstr(kIda));
    server.put("/ida/friends/ida.vcf", person(kIda, "Ida", "Holm"));
    machine.syncWell();
    EXPECT_THAT(machine.show(kIda), HasSubstr("The choir"));
}

} // namespace
} // namespace sharing_test
