// A server that fails while an address book is brought in step with it: what users are told, and that nothing is lost
// on either side, and the next time all is done.

#include "tests/carddav/book_server.h"
#include "tests/sharing/machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace sharing_test {
namespace {

using addressbook::Outcome;
using carddav_test::BookServer;
using carddav_test::multistatus;
using carddav_test::Received;
using carddav_test::Reply;
using testing::HasSubstr;

// What the program ends with.
constexpr int kRefused = 1;  // by the server, one card
constexpr int kNoServer = 4; // nothing could be done, or not all

// Which requests fail, and how.
struct Fault {
    const char* name;
    const char* method; // "" for all
    Reply reply;
    int status; // of the program
    const char* says;
    bool isForGood = false; // the server is not asked again before the record changes
};

std::ostream& operator<<(std::ostream& out, const Fault& fault) {
    return out << fault.name;
}

std::string entityBomb() {
    std::string text = "<?xml version=\"1.0\"?><!DOCTYPE D:multistatus [<!ENTITY a0 \"ha\">";
    for (int at = 1; at <= 30; ++at) {
        const std::string inner = "&a" + std::to_string(at - 1) + ';';
        text += "<!ENTITY a" + std::to_string(at) + " \"" + inner + inner + "\">";
    }
    return text + "]><D:multistatus "
                  "xmlns:D=\"DAV:\"><D:response><D:href>&a30;</D:href></D:response></D:multistatus>";
}

// A reply that ends in its middle.
Reply brokenOff() {
    Reply reply = multistatus(std::string(10000, ' '));
    reply.cutAt = 5000;
    return reply;
}

Reply raw(const std::string& bytes) {
    Reply reply;
    reply.raw = bytes;
    return reply;
}

Reply busy(int status) {
    return {status, "", {"Retry-After: 3600"}};
}

Reply xml(const std::string& text) {
    return {207, text};
}

constexpr const char* kOpen = R"(<?xml version="1.0"?><D:multistatus xmlns:D="DAV:"><D:response><D:hre)";

const Fault kFaults[] = {
    {"Unauthorised",
     "",
     {401, "", {"WWW-Authenticate: Basic realm=\"x\""}},
     kNoServer,
     "does not accept this user name and password"},
    {"Forbidden", "", {403}, kNoServer, "does not allow this account"},
    {"NotFound", "", {404}, kNoServer, "has nothing at this address"},
    {"TooManyRequests", "", busy(429), kNoServer, "asks to wait for 3600 seconds"},
    {"Unavailable", "", busy(503), kNoServer, "is not available at the moment"},
    {"ServerError", "", {500}, kNoServer, "has a fault of its own"},
    {"BadGateway", "", {502}, kNoServer, "has a fault of its own"},
    {"Full", "", {507}, kNoServer, "has no room left"},
    {"NoHttp", "", raw("SSH-2.0-OpenSSH_9.2\r\n"), kNoServer, "127.0.0.1"},
    {"NoAnswer", "", raw("\r\n"), kNoServer, "127.0.0.1"},
    {"BrokenOff", "", brokenOff(), kNoServer, "the connection to 127.0.0.1 failed"},
    {"PageOfSomebodyElse", "", {200, "<html><body>Please log in</body></html>"}, kNoServer, ""},
    {"NoXml", "", xml("nothing"), kNoServer, ""},
    {"TruncatedXml", "", xml(kOpen), kNoServer, ""},
    {"EntityBomb", "", xml(entityBomb()), kNoServer, ""},
    {"ReportBrokenOff", "REPORT", brokenOff(), kNoServer, "the connection to 127.0.0.1 failed"},
    {"ReportTruncated", "REPORT", xml(kOpen), kNoServer, ""},
    {"ReportForbidden", "REPORT", {403}, kNoServer, "does not allow this account"},
    {"PutUnauthorised",
     "PUT",
     {401, "", {"WWW-Authenticate: Basic realm=\"x\""}},
     kNoServer,
     "does not accept this user name and password"},
    {"PutBusy", "PUT", busy(429), kNoServer, "asks to wait for 3600 seconds"},
    {"PutBrokenOff", "PUT", raw("HTTP/1.1 20"), kNoServer, "127.0.0.1"},
    {"PutForbidden", "PUT", {403}, kRefused, "does not allow this account", true},
    {"PutNotFound", "PUT", {404}, kRefused, "has nothing at this address"},
    {"PutConflict", "PUT", {409}, kRefused, "cannot do this with what it holds"},
    {"PutChanged", "PUT", {412}, kRefused, "the card was changed on the server each time"},
    {"PutTooLarge", "PUT", {413}, kRefused, "takes nothing as large as this", true},
    {"PutLocked", "PUT", {423}, kRefused, "has this locked"},
    {"PutServerError", "PUT", {500}, kRefused, "has a fault of its own"},
    {"PutFull", "PUT", {507}, kRefused, "has no room left"},
    {"DeleteLocked", "DELETE", {423}, kRefused, "has this locked"},
    {"DeleteChanged", "DELETE", {412}, kRefused, "the card was changed on the server each time"},
};

std::string cardOf(const BookServer& server, const std::string& uid) {
    for (const auto& [path, card] : server.cards()) {
        if (card.find("UID:" + uid + "\r\n") != std::string::npos) {
            return card;
        }
    }
    return {};
}

class BadServerTest : public testing::TestWithParam<Fault> {};

TEST_P(BadServerTest, LosesNothing) {
    const Fault& fault = GetParam();
    BookServer server;
    server.put("/ida/friends/ole.vcf", person(kOle, "Ole", "Berg"));
    server.put("/ida/friends/eva.vcf", person(kEva, "Eva", "Lund"));
    server.put("/ida/friends/ada.vcf", person(kAda, "Ada", "Holm"));
    Machine machine;
    machine.join(server.url(), "friends");
    machine.syncWell();
    // Each side adds somebody and changes somebody, and here somebody is deleted.
    machine.add(person(kIda, "Ida", "Holm"));
    machine.set(kOle, "nickname=Changed here");
    machine.remove(kAda);
    server.put("/ida/friends/eva.vcf", person(kEva, "Eva", "Lund", "NICKNAME:Changed there\r\n"));

    server.fail([&](const Received& received) {
        const bool fails = *fault.method == '\0' || received.method == fault.method;
        return fails ? std::optional(fault.reply) : std::nullopt;
    });
    const Outcome failed = machine.sync();
    EXPECT_EQ(failed.status, fault.status) << failed.out << failed.err;
    EXPECT_THAT(failed.err, HasSubstr(fault.says));
    EXPECT_THAT(failed.err, testing::Not(HasSubstr("s3cret")));
    EXPECT_NE(failed.err, "");
    EXPECT_THAT(machine.show(kIda), HasSubstr("Ida"));
    EXPECT_THAT(machine.show(kOle), HasSubstr("Changed here"));

    server.fail({});
    if (fault.isForGood) {
        machine.syncWell();
        machine.set(kIda, "note=again");
        machine.set(kOle, "note=again");
    }
    machine.syncWell();
    EXPECT_THAT(cardOf(server, kIda), HasSubstr("FN:Ida Holm"));
    EXPECT_THAT(cardOf(server, kOle), HasSubstr("NICKNAME:Changed here"));
    EXPECT_EQ(cardOf(server, kAda), "");
    EXPECT_THAT(machine.show(kEva), HasSubstr("Changed there"));
    EXPECT_EQ(server.cards().size(), 3U);
    EXPECT_EQ(machine.everybody().size(), 3U);
}

INSTANTIATE_TEST_SUITE_P(Faults, BadServerTest, testing::ValuesIn(kFaults),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(ForbiddenDeletionTest, CardStaysThereAndComesBackWhenItChanges) {
    BookServer server;
    server.put("/ida/friends/ada.vcf", person(kAda, "Ada", "Holm"));
    server.put("/ida/friends/eva.vcf", person(kEva, "Eva", "Lund"));
    Machine machine;
    machine.join(server.url(), "friends");
    machine.syncWell();
    machine.remove(kAda);
    server.fail([](const Received& received) {
        return received.method == "DELETE" ? std::optional(Reply{403}) : std::nullopt;
    });
    const Outcome refused = machine.sync();
    EXPECT_EQ(refused.status, kRefused);
    EXPECT_THAT(refused.err, HasSubstr("does not allow this account"));
    EXPECT_EQ(server.cards().size(), 2U);
    server.put("/ida/friends/ada.vcf", person(kAda, "Ada", "Berg"));
    machine.syncWell();
    EXPECT_THAT(machine.show(kAda), HasSubstr("Berg"));
    EXPECT_EQ(server.cards().size(), 2U);
}

} // namespace
} // namespace sharing_test
