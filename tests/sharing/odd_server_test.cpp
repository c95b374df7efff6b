// Servers that do things in another way, or store other cards than they are sent.

#include "tests/carddav/book_server.h"
#include "tests/sharing/machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace sharing_test {
namespace {

using addressbook::Outcome;
using carddav_test::BookServer;
using carddav_test::Habits;
using carddav_test::Received;
using carddav_test::Reply;
using testing::HasSubstr;
using testing::Not;

std::size_t count(const BookServer& server, const std::string& method) {
    const std::vector<Received> received = server.received();
    return static_cast<std::size_t>(std::count_if(received.begin(), received.end(),
                                                  [&](const Received& one) { return one.method == method; }));
}

struct Oddity {
    const char* name;
    Habits habits;
};

std::ostream& operator<<(std::ostream& out, const Oddity& oddity) {
    return out << oddity.name;
}

Habits withoutTokens() {
    Habits habits;
    habits.syncTokens = false;
    return habits;
}

Habits tellingNoEtag() {
    Habits habits;
    habits.tellsEtag = false;
    return habits;
}

Habits writingEtags(std::function<std::string(const std::string&)> etag) {
    Habits habits;
    habits.etag = std::move(etag);
    return habits;
}

Habits writingHrefs(std::function<std::string(const std::string&, const std::string&)> href) {
    Habits habits;
    habits.href = std::move(href);
    return habits;
}

// Other lines in another order, as servers do that keep people and not cards.
std::string rewritten(const std::string& card) {
    const std::size_t end = card.rfind("END:VCARD");
    const std::size_t name = card.find("\r\nN:") + 2;
    const std::size_t after = card.find("\r\n", name) + 2;
    return card.substr(0, name) + "PRODID:-//Somebody//Else//EN\r\n" + card.substr(after, end - after) +
           card.substr(name, after - name) + "REV:2020-01-01T00:00:00Z\r\n" + card.substr(end);
}

Habits rewriting(bool tellsEtag) {
    Habits habits;
    habits.store = rewritten;
    habits.tellsEtag = tellsEtag;
    return habits;
}

const Oddity kOddities[] = {
    {"None", {}},
    {"NoSyncTokens", withoutTokens()},
    {"EtagIsNotTold", tellingNoEtag()},
    {"EtagWithoutQuotes", writingEtags([](const std::string& number) { return "no-" + number; })},
    {"EtagIsMissing", writingEtags([](const std::string&) { return std::string(); })},
    {"HrefsAreAddresses",
     writingHrefs([](const std::string& path, const std::string& origin) { return origin + path; })},
    {"HrefsAreEncodedOtherwise", writingHrefs([](const std::string& path, const std::string&) {
         std::string all;
         for (const char c : path) {
             all += c == '-' ? "%2d" : c == '.' ? "%2E" : c == 'B' ? "%42" : std::string(1, c);
         }
         return all;
     })},
    {"CardsAreRewritten", rewriting(true)},
    {"CardsAreRewrittenAndEtagIsNotTold", rewriting(false)},
};

class OddServerTest : public testing::TestWithParam<Oddity> {};

TEST_P(OddServerTest, ComesInStepAndComesToRest) {
    BookServer server(GetParam().habits);
    server.put("/ida/friends/Ole Berg.vcf",
               person(kOle, "Ole", "Berg", "X-KEPT;X-A=\"b;c\":\\, as it was\r\n"));
    Machine machine;
    machine.join(server.url(), "friends");
    machine.add(person(kIda, "Ida", "Holm"));
    machine.syncWell();
    EXPECT_THAT(machine.show(kOle), HasSubstr("Berg"));
    ASSERT_EQ(server.cards().size(), 2U);

    machine.set(kOle, "nickname=Olli");
    machine.set(kIda, "jobtitle=Baker");
    machine.syncWell();
    EXPECT_THAT(
        server.cards().at("/ida/friends/Ole Berg.vcf"),
        testing::AllOf(HasSubstr("NICKNAME:Olli\r\n"), HasSubstr("X-KEPT;X-A=\"b;c\":\\, as it was\r\n")));

    // What the server did to the cards is no change of ours.
    const std::size_t written = count(server, "PUT");
    machine.syncWell();
    machine.syncWell();
    EXPECT_EQ(count(server, "PUT"), written);
    EXPECT_EQ(machine.everybody().size(), 2U);

    // And what another client does arrives.
    server.remove("/ida/friends/Ole Berg.vcf");
    machine.syncWell();
    EXPECT_EQ(machine.everybody().size(), 1U);
    EXPECT_EQ(server.cards().size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Oddities, OddServerTest, testing::ValuesIn(kOddities),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(ForgottenTokenTest, NothingIsDoubledOrLost) {
    BookServer server;
    for (int at = 0; at < 5; ++at) {
        const std::string uid = std::string(kIda).substr(0, 35) + std::to_string(at);
        server.put("/ida/friends/" + std::to_string(at) + ".vcf", person(uid, "Number", std::to_string(at)));
    }
    Machine machine;
    machine.join(server.url(), "friends");
    machine.syncWell();
    machine.set(kIda, "nickname=Idi");
    server.remove("/ida/friends/4.vcf");
    server.forgetTokens();
    machine.syncWell();
    EXPECT_EQ(machine.everybody().size(), 4U);
    EXPECT_EQ(server.cards().size(), 4U);
    EXPECT_THAT(server.cards().at("/ida/friends/1.vcf"), HasSubstr("NICKNAME:Idi"));
}

TEST(LostAnswerTest, CardIsNotSentTwice) {
    BookServer server;
    Machine machine;
    machine.join(server.url(), "friends");
    machine.add(person(kIda, "Ida", "Holm"));
    // It stores the card, and the answer never comes.
    server.fail([&](const Received& received) -> std::optional<Reply> {
        if (received.method != "PUT") {
            return std::nullopt;
        }
        Reply reply;
        reply.raw = " ";
        return reply;
    });
    EXPECT_NE(machine.sync().status, 0);
    server.fail({});
    const std::string path = [&] {
        for (const Received& received : server.received()) {
            if (received.method == "PUT") {
                server.put(received.target, received.body);
                return received.target;
            }
        }
        return std::string();
    }();
    ASSERT_NE(path, "");
    machine.syncWell();
    EXPECT_EQ(server.cards().size(), 1U);
    EXPECT_EQ(machine.everybody().size(), 1U);
    machine.set(kIda, "nickname=Idi");
    machine.syncWell();
    EXPECT_THAT(server.cards().at(path), HasSubstr("NICKNAME:Idi"));
}

TEST(EmptyListingTest, AsksBeforeMostIsDeleted) {
    BookServer server;
    for (int at = 0; at < 9; ++at) {
        const std::string uid = std::string(kIda).substr(0, 35) + std::to_string(at);
        server.put("/ida/friends/" + std::to_string(at) + ".vcf", person(uid, "Number", std::to_string(at)));
    }
    Machine machine;
    machine.join(server.url(), "friends");
    machine.syncWell();
    for (int at = 0; at < 9; ++at) {
        server.remove("/ida/friends/" + std::to_string(at) + ".vcf");
    }
    const Outcome refused = machine.sync();
    EXPECT_NE(refused.status, 0);
    EXPECT_THAT(refused.err, HasSubstr("--force"));
    EXPECT_EQ(machine.everybody().size(), 9U);
    const Outcome forced = machine.sync({"--force"});
    EXPECT_EQ(forced.status, 0) << forced.err;
    EXPECT_TRUE(machine.everybody().empty());
}

TEST(BusyServerTest, WaitsAsLongAsItIsAsked) {
    BookServer server;
    server.put("/ida/friends/ole.vcf", person(kOle, "Ole", "Berg"));
    Machine machine;
    machine.join(server.url(), "friends");
    int refused = 0;
    server.fail([&](const Received&) -> std::optional<Reply> {
        return refused++ == 0 ? std::optional(Reply{429, "", {"Retry-After: 1"}}) : std::nullopt;
    });
    machine.syncWell();
    EXPECT_THAT(machine.show(kOle), HasSubstr("Berg"));
}

} // namespace
} // namespace sharing_test
