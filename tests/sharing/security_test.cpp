// Where the password goes, and where it does not.

#include "tests/carddav/book_server.h"
#include "tests/sharing/machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace sharing_test {
namespace {

using addressbook::Outcome;
using carddav_test::BookServer;
using carddav_test::Certificate;
using carddav_test::Received;
using carddav_test::Reply;
using carddav_test::Server;
using testing::HasSubstr;

Reply redirect(const std::string& address) {
    return {301, "", {"Location: " + address}};
}

bool heardPassword(const std::vector<Received>& received) {
    return std::any_of(received.begin(), received.end(),
                       [](const Received& one) { return one.has("authorization"); });
}

TEST(SecurityTest, RedirectToAnotherHostGetsNoPassword) {
    Server other([](const Received&) { return Reply{401, "", {"WWW-Authenticate: Basic realm=\"x\""}}; });
    BookServer server;
    Machine machine;
    machine.join(server.url(), "friends");
    machine.add(person(kIda, "Ida", "Holm"));
    server.fail([&](const Received& received) {
        return std::optional(redirect(other.url(received.target, "localhost")));
    });
    const Outcome outcome = machine.sync();
    EXPECT_NE(outcome.status, 0);
    EXPECT_THAT(outcome.err, HasSubstr("localhost"));
    EXPECT_FALSE(other.received().empty());
    EXPECT_FALSE(heardPassword(other.received()));
    server.fail({});
    machine.syncWell();
    EXPECT_EQ(server.cards().size(), 1U);
}

TEST(SecurityTest, RedirectOnTheServerIsFollowed) {
    BookServer server;
    Machine machine;
    machine.join(server.url(), "friends");
    machine.add(person(kIda, "Ida", "Holm"));
    int redirected = 0;
    server.fail([&](const Received& received) -> std::optional<Reply> {
        if (received.target.ends_with("?again")) {
            return std::nullopt;
        }
        ++redirected;
        return Reply{307, "", {"Location: " + received.target + "?again"}};
    });
    machine.syncWell();
    EXPECT_GT(redirected, 1);
    EXPECT_EQ(server.cards().size(), 1U);
}

TEST(SecurityTest, FromHttpsToHttpIsRefused) {
    const Certificate certificate;
    Server plain([](const Received&) { return Reply{404}; });
    BookServer server({}, &certificate);
    Machine machine;
    machine.join(server.url(), "friends", {"--ca-file", machine.file("ca.pem", certificate.pem())});
    server.fail(
        [&](const Received& received) { return std::optional(redirect(plain.url(received.target))); });
    const Outcome outcome = machine.sync();
    EXPECT_NE(outcome.status, 0);
    EXPECT_THAT(outcome.err, HasSubstr("from https to plain http"));
    EXPECT_TRUE(plain.received().empty());
}

TEST(SecurityTest, SelfSignedCertificateNeedsItsFile) {
    const Certificate certificate;
    BookServer server({}, &certificate);
    Machine machine;
    const std::string password = machine.passwordFile();
    const std::vector<std::string> add = {"account",         "add",    server.url(), "--user", "ida",
                                          "--password-file", password, "--book",     "friends"};
    const Outcome refused = machine.run(add);
    EXPECT_NE(refused.status, 0);
    EXPECT_THAT(refused.err, testing::AllOf(HasSubstr("self-signed"), HasSubstr("--ca-file")));
    EXPECT_TRUE(server.received().empty());
    // The file is kept in mind with the account.
    machine.join(server.url(), "friends", {"--ca-file", machine.file("ca.pem", certificate.pem())});
    machine.add(person(kIda, "Ida", "Holm"));
    machine.syncWell();
    EXPECT_EQ(server.cards().size(), 1U);
}

TEST(SecurityTest, PlainHttpToAnotherMachineIsRefused) {
    Machine machine;
    const Outcome refused = machine.run({"account", "add", "http://dav.example.com/", "--user", "ida",
                                         "--password-file", machine.passwordFile()});
    EXPECT_NE(refused.status, 0);
    EXPECT_THAT(refused.err, testing::AllOf(HasSubstr("plain http"), HasSubstr("--allow-http")));
}

TEST(SecurityTest, PasswordIsNowhere) {
    BookServer server;
    Machine machine;
    machine.join(server.url(), "friends");
    machine.add(person(kIda, "Ida", "Holm"));
    machine.syncWell();
    EXPECT_EQ(machine.shell("$A account list; $A account list --json; ! grep -r s3cret book home").status, 0);
    EXPECT_THAT(machine.run({"account", "list", "--json"}).out, testing::Not(HasSubstr("s3cret")));
}

} // namespace
} // namespace sharing_test
