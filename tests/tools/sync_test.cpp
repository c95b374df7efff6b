// The commands sync, conflicts and move, with a real server and with one that answers as a test wants.

#include "tests/carddav/server.h"
#include "tests/tools/account_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <atomic>
#include <filesystem>

namespace addressbook {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string kIda = "11111111-1111-4111-8111-111111111111";
const std::string kOle = "22222222-2222-4222-8222-222222222222";
constexpr const char* kTwo =
    "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Berg;Ida;;;\r\nTEL;type=CELL:12\r\nUID:11111111-1111-4111-8111-"
    "111111111111\r\n"
    "END:VCARD\r\nBEGIN:VCARD\r\nVERSION:3.0\r\nN:Tal;Ole;;;\r\nUID:22222222-2222-4222-8222-222222222222\r\n"
    "END:VCARD\r\n";

// A user with the account "ida" in the book, and in another one in the folder "other".
class SyncCommandTest : public testing::Test, public ServerSandbox {
  protected:
    SyncCommandTest() : user_(newUser()) {
        std::filesystem::create_directory(folder() / "other");
        EXPECT_EQ(add(user_, "Friends", {"--name", "ida"}).status, 0);
        EXPECT_EQ(run({"--book", "other", "account", "add", url(), "--user", user_, "--password-file",
                       "password", "--name", "ida", "--default"})
                      .status,
                  0);
    }
    // Runs the program with the other book.
    Outcome other(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"--book", "other"});
        return run(arguments);
    }
    // Brings two people into both books.
    void share() const {
        ASSERT_EQ(run({"import", "-"}, kTwo).status, 0);
        ASSERT_EQ(run({"move", kIda, kOle, "--to", "ida"}).status, 0);
        ASSERT_EQ(run({"sync"}).err, "ida/Friends: 2 sent\n");
        ASSERT_EQ(other({"sync"}).err, "ida/Friends: 2 fetched\n");
    }
    static std::size_t lines(const std::string& text) {
        return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    }
    std::string user_;
};

TEST_F(SyncCommandTest, WhatIsMovedToAnAccountIsSentAndItSaysWhereItBelongs) {
    ASSERT_EQ(run({"import", "-"}, kTwo).status, 0);
    EXPECT_EQ(run({"sync"}).err, "ida/Friends: nothing new\n") << "what was there stays here";
    EXPECT_THAT(run({"show", kIda}).out, HasSubstr("account                         local\n"));
    const Outcome moved = run({"move", kIda, kOle, kIda, "--to", "ida/Friends"});
    EXPECT_EQ(moved.status, 0);
    EXPECT_EQ(moved.out, kIda + ":ABPerson\tIda Berg\n" + kOle + ":ABPerson\tOle Tal\n");
    EXPECT_EQ(moved.err, "2 records moved to ida/Friends\n");
    EXPECT_EQ(run({"move", kIda, "--to", "ida"}).err,
              "0 records moved to ida/Friends; the others belong to it already\n");
    EXPECT_EQ(run({"sync", "--dry-run"}).err, "ida/Friends: 2 sent (dry run, nothing changed)\n");
    EXPECT_EQ(run({"sync"}).err, "ida/Friends: 2 sent\n");
    EXPECT_EQ(other({"sync"}).err, "ida/Friends: 2 fetched\n");
    EXPECT_EQ(json::parse(other({"show", kIda, "--json"}).out)["account"], "ida/Friends");
    // Away again: deleted there and in the other book, not here.
    EXPECT_EQ(run({"move", kOle, "--to", "local"}).status, 0);
    EXPECT_THAT(run({"list", "--account", "ida", "--fields", "name"}).out,
                AllOf(HasSubstr("Ida"), Not(HasSubstr("Ole"))));
    EXPECT_THAT(run({"list", "--account", "local", "--fields", "name"}).out,
                AllOf(HasSubstr("Ole"), Not(HasSubstr("Ida"))));
    EXPECT_EQ(run({"sync"}).err, "ida/Friends: 1 deleted on the server\n");
    EXPECT_EQ(other({"sync"}).err, "ida/Friends: 1 deleted here\n");
    EXPECT_EQ(lines(run({"list"}).out), 2U);
    // And back before the server knew.
    EXPECT_EQ(run({"move", kIda, "--to", "local"}).status, 0);
    EXPECT_EQ(run({"move", kIda, "--to", "ida"}).status, 0);
    EXPECT_EQ(other({"sync"}).err, "ida/Friends: nothing new\n");
    EXPECT_EQ(lines(other({"list"}).out), 1U);
    EXPECT_EQ(run({"check"}).status, 0);
}

TEST_F(SyncCommandTest, AllOfAPlaceIsMovedAtOnceButCategoriesGoWithTheirPeople) {
    ASSERT_EQ(run({"import", "-"}, std::string(kTwo) +
                                       "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Choir;;;;\r\nFN:Choir\r\n"
                                       "X-ADDRESSBOOKSERVER-KIND:group\r\nEND:VCARD\r\n")
                  .status,
              0);
    EXPECT_THAT(run({"move", "--to", "ida"}).err, HasSubstr("move needs ids, or --from"));
    EXPECT_EQ(run({"move", kIda, "--from", "local", "--to", "ida"}).status, 2);
    EXPECT_THAT(run({"move", "--from", "local", "--to", "ida"}).err, HasSubstr("3 records moved to ida"));
    EXPECT_EQ(run({"sync"}).err, "ida/Friends: 3 sent\n");
    EXPECT_EQ(other({"sync"}).err, "ida/Friends: 3 fetched\n");
    EXPECT_THAT(other({"groups"}).out, HasSubstr("Choir"));
    file("per.vcf", "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:per\r\nN:Lund;Per;;;\r\nFN:Per "
                    "Lund\r\nCATEGORIES:Band\r\nEND:VCARD\r\n");
    ASSERT_EQ(run({"account", "list"}).status, 0);
    shell("curl -sf -u " + user_ + ":" + kPassword +
          " -H 'Content-Type: text/vcard' -T per.vcf \"$(\"$A\" account list | "
          "cut -f 2)per.vcf\"");
    ASSERT_EQ(run({"sync"}).err, "ida/Friends: 1 fetched\n");
    EXPECT_THAT(run({"groups", "--account", "ida"}).out, HasSubstr("Band"));
    EXPECT_THAT(run({"move", "--from", "ida", "--to", "local"}).err, HasSubstr("4 records moved to local"));
    EXPECT_EQ(run({"sync", "--force"}).err, "ida/Friends: 4 deleted on the server\n");
    EXPECT_THAT(run({"groups"}).out, HasSubstr("Band\t1"));
}

TEST_F(SyncCommandTest, BetweenTwoAddressBooksTheUidStays) {
    share();
    ASSERT_EQ(add(user_, "Work", {"--name", "ida"}).status, 0);
    EXPECT_THAT(run({"move", kIda, "--to", "ida"}).err,
                HasSubstr("ida has several address books; say which: "));
    ASSERT_EQ(run({"move", kIda, "--to", "ida/Work"}).status, 0);
    EXPECT_EQ(run({"sync"}).err, "ida/Friends: 1 deleted on the server\nida/Work: 1 sent\n");
    EXPECT_EQ(run({"sync", "ida/Work"}).err, "ida/Work: nothing new\n");
    EXPECT_THAT(run({"show", kIda}).out, HasSubstr("ida/Work\n"));
}

TEST_F(SyncCommandTest, NewPeopleGoToTheDefaultAddressBook) {
    ASSERT_EQ(other({"import", file("two.vcf", kTwo)}).status, 0);
    EXPECT_EQ(other({"sync"}).err, "ida/Friends: 2 sent\n");
    EXPECT_EQ(run({"sync"}).err, "ida/Friends: 2 fetched\n");
}

TEST_F(SyncCommandTest, ValuesThatHadToYieldAreListedTakenAndDropped) {
    share();
    ASSERT_EQ(run({"set", kIda, "phones/mobile=34", "note=here", "nickname=Idun"}).status, 0);
    ASSERT_EQ(other({"set", kIda, "phones/mobile=56", "note=there"}).status, 0);
    EXPECT_EQ(run({"sync"}).err, "ida/Friends: 1 sent\n");
    EXPECT_EQ(other({"sync"}).err, "ida/Friends: 1 fetched, 1 sent, 1 merged, 2 conflicts\n"
                                   "addressbook conflicts shows the values that had to yield\n");
    EXPECT_THAT(other({"conflicts"}).out, AllOf(HasSubstr("\tIda Berg\tnote\there\tserver\t"),
                                                HasSubstr("\tIda Berg\tphones/Mobile\t34\tserver\t")));
    const json conflicts = json::parse(other({"conflicts", "--json"}).out);
    ASSERT_EQ(conflicts.size(), 2U);
    EXPECT_EQ(conflicts[0]["record"], kIda + ":ABPerson");
    const auto idOf = [&](const std::string& property) {
        const auto at = std::find_if(conflicts.begin(), conflicts.end(),
                                     [&](const json& conflict) { return conflict["property"] == property; });
        return std::to_string((*at)["id"].get<int>());
    };
    EXPECT_EQ(other({"conflicts", "take", idOf("phones")}).err, "Ida Berg: phones/Mobile is 34 again\n");
    EXPECT_EQ(other({"conflicts", "drop", idOf("note"), "99"}).status, 1) << "all of them or none";
    EXPECT_EQ(lines(other({"conflicts"}).out), 1U);
    EXPECT_EQ(other({"conflicts", "drop", idOf("note")}).err, "1 value forgotten\n");
    EXPECT_EQ(other({"conflicts"}).err, "no conflicts\n");
    EXPECT_EQ(other({"sync"}).err, "ida/Friends: 1 sent\n");
    EXPECT_EQ(run({"sync"}).err, "ida/Friends: 1 fetched\n");
    EXPECT_THAT(run({"list", "--fields", "phones,note,nickname"}).out, HasSubstr("\t34\tthere\tIdun\n"));
    EXPECT_EQ(run({"conflicts", "take", "1"}).status, 1);
    EXPECT_EQ(run({"conflicts", "take", "x"}).status, 2);
}

TEST_F(SyncCommandTest, MoreThanHalfOfThePeopleVanishOnlyWhenThatIsMeant) {
    std::string cards;
    for (int at = 0; at < 20; ++at) {
        cards += "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Name " + std::to_string(at) + "\r\nEND:VCARD\r\n";
    }
    ASSERT_EQ(other({"import", file("many.vcf", cards)}).status, 0);
    ASSERT_EQ(other({"sync"}).err, "ida/Friends: 20 sent\n");
    ASSERT_EQ(run({"sync"}).status, 0);
    ASSERT_EQ(shell("\"$A\" list | cut -f 1 | xargs \"$A\" delete").status, 0);
    const Outcome held = run({"sync"});
    EXPECT_EQ(held.status, 5);
    EXPECT_THAT(held.err, AllOf(StartsWith("addressbook: ida/Friends: 20 of 20 cards were deleted here"),
                                HasSubstr("; --force goes on\n")));
    EXPECT_EQ(onTerminal("$A sync", {{". Go on? [y/N]", "n"}}).status, 5);
    EXPECT_EQ(other({"sync"}).err, "ida/Friends: nothing new\n");
    const Outcome asked = onTerminal("$A sync", {{". Go on? [y/N]", "y"}});
    EXPECT_EQ(asked.status, 0);
    EXPECT_THAT(asked.out, HasSubstr("20 deleted on the server"));
    EXPECT_EQ(other({"sync"}).status, 5);
    EXPECT_EQ(other({"sync", "--force"}).err, "ida/Friends: 20 deleted here\n");
}

TEST_F(SyncCommandTest, AServerThatIsNotThereDoesNotStopTheOthers) {
    ASSERT_EQ(other({"import", file("two.vcf", kTwo)}).status, 0);
    std::string address;
    {
        carddav_test::Server server([](const carddav_test::Received&) {
            return carddav_test::multistatus(
                carddav_test::response("/b/", "<D:resourcetype><D:collection/><C:addressbook/></"
                                              "D:resourcetype><D:displayname>B</D:displayname>"));
        });
        address = server.url("/b/");
        ASSERT_EQ(other({"account", "add", address, "--name", "away"}).status, 0);
    }
    const Outcome outcome = other({"sync", "away", "ida", "ida/Friends"});
    EXPECT_EQ(outcome.status, 4);
    EXPECT_THAT(outcome.err, AllOf(HasSubstr("ida/Friends: 2 sent\n"),
                                   HasSubstr("addressbook: away/B: 127.0.0.1 cannot be reached")));
    EXPECT_EQ(other({"sync", "ida"}).status, 0);
    EXPECT_EQ(other({"sync", "nobody"}).status, 1);
    EXPECT_EQ(other({"sync", "--watch", "0"}).status, 2);
    EXPECT_EQ(other({"sync", "--watch", "5", "--dry-run"}).status, 2);
    shell("chmod 644 password");
    const Outcome noPassword = other({"sync", "ida"});
    EXPECT_EQ(noPassword.status, 4);
    EXPECT_THAT(noPassword.err, StartsWith("addressbook: ida/Friends: "));
    EXPECT_EQ(other({"account", "remove", "ida"}).status, 0);
    EXPECT_EQ(other({"account", "remove", "away"}).status, 0);
    EXPECT_THAT(other({"sync"}).err, HasSubstr("there is no account to keep in step with"));
}

TEST_F(SyncCommandTest, ABookFromElsewhereRunsNoCommandAndSendsNoPassword) {
    const std::vector<std::string> add{
        "account", "add", url(), "--user", newUser(), "--password-command", "touch ran; cat password",
        "--name",  "else"};
    std::vector<std::string> first = add;
    first.insert(first.end(), {"--create", "Others"});
    ASSERT_EQ(run(first).status, 0);
    ASSERT_EQ(run({"sync", "else"}).status, 0);
    shell("rm -r home/config ran");
    const Outcome refused = run({"sync", "else"});
    EXPECT_EQ(refused.status, 4);
    EXPECT_THAT(refused.err, HasSubstr("you have not said on this machine that " + url()));
    EXPECT_FALSE(std::filesystem::exists(folder() / "ran"));
    ASSERT_EQ(run(add).status, 0);
    EXPECT_EQ(run({"sync", "else"}).status, 0);
    EXPECT_EQ(shell("stat -c %a home/config/addressbook/permissions").out, "600\n");
}

TEST_F(SyncCommandTest, PeopleOfAnAccountThatIsRemovedStayUnlessTheyAreNotToo) {
    share();
    EXPECT_EQ(
        onTerminal("$A account remove ida", {{"here as well? They stay on the server. [y/N]", ""}}).status,
        0);
    EXPECT_EQ(lines(run({"list", "--account", "local"}).out), 2U);
    EXPECT_EQ(other({"account", "remove", "ida", "--delete-people"}).err,
              "ida: removed; 2 records deleted here\n");
    EXPECT_EQ(lines(other({"list"}).out), 0U);
    ASSERT_EQ(run({"account", "add", url(), "--user", user_, "--password-file", "password", "--name", "ida"})
                  .status,
              0);
    EXPECT_EQ(run({"sync"}).status, 0);
    EXPECT_EQ(lines(run({"list"}).out), 2U) << "they stayed on the server, and are the same people";
}

TEST_F(SyncCommandTest, WatchingSendsAtOnceAsksEverySoOftenAndEndsCleanly) {
    share();
    const Outcome outcome = shell(
        "await() { for i in $(seq 200); do grep -q \"$1\" log && return; sleep 0.05; done; echo no $1; }\n"
        "\"$A\" sync --watch 2 2>log & watching=$!; await 'keeping in step: ida/Friends'; sleep 0.5\n"
        "\"$A\" set " +
        kIda +
        " note=a; await '1 sent'\n"
        "\"$A\" --book other sync 2>/dev/null; \"$A\" --book other set " +
        kIda +
        " note=b\n"
        "\"$A\" --book other sync 2>/dev/null; await '1 fetched'; \"$A\" list --fields note | grep -c 'b$'\n"
        "kill -TERM $watching; wait $watching; echo status $?");
    EXPECT_EQ(outcome.out, "1\nstatus 143\n") << bytesOf(folder() / "log");
    EXPECT_EQ(bytesOf(folder() / "log"),
              "keeping in step: ida/Friends; Ctrl-C ends it\nida/Friends: 1 sent\nida/Friends: 1 fetched\n");
    EXPECT_EQ(run({"check"}).status, 0);
}

TEST_F(SyncCommandTest, WatchingTellsATroubleOnceAndThatItHasPassed) {
    std::atomic<bool> isDown{false};
    carddav_test::Server server([&](const carddav_test::Received& received) {
        const std::string book = "<D:resourcetype><D:collection/><C:addressbook/></D:resourcetype>"
                                 "<D:displayname>B</D:displayname><S:getctag>1</S:getctag>";
        return received.header("depth") == "0" && isDown
                   ? carddav_test::Reply{500}
                   : carddav_test::multistatus(carddav_test::response("/b/", book));
    });
    ASSERT_EQ(run({"account", "add", server.url("/b/"), "--name", "odd"}).status, 0);
    ASSERT_EQ(run({"sync", "odd"}).status, 0);
    isDown = true;
    const std::size_t before = server.received().size();
    const Outcome down = shell("timeout --preserve-status -s INT 8 \"$A\" sync odd --watch 1");
    EXPECT_EQ(down.status, 130);
    EXPECT_EQ(lines(down.err), 2U) << down.err;
    EXPECT_THAT(down.err, HasSubstr("addressbook: odd/B: 127.0.0.1"));
    EXPECT_LE(server.received().size() - before, 4U) << "tried again once, five seconds later";
    EXPECT_GE(server.received().size() - before, 2U);
}

} // namespace
} // namespace addressbook
