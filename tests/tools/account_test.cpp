// Accounts on servers: adding, listing and removing them, and where their passwords come from.

#include "tests/carddav/certificate.h"
#include "tests/carddav/server.h"
#include "tests/tools/account_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>

namespace addressbook {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class AccountTest : public testing::Test, public ServerSandbox {
  protected:
    // Returns everything that is in the book's files.
    std::string book() const {
        std::string bytes;
        for (const auto& each : fs::directory_iterator(Sandbox::book())) {
            bytes += bytesOf(each.path());
        }
        return bytes;
    }
    json list() const { return json::parse(run({"account", "list", "--json"}).out); }
};

TEST_F(AccountTest, IsAddedListedAndRemoved) {
    const std::string user = newUser();
    const Outcome added = add(user, "Friends");
    EXPECT_EQ(added.status, 0) << added.err;
    EXPECT_THAT(added.out, AllOf(StartsWith("Friends\t" + url("/" + user + "/")), HasSubstr("\tchosen\n")));
    const std::string name = user + "@127.0.0.1";
    EXPECT_EQ(added.err, name + "/Friends: added; addressbook sync fetches the people\n");
    const json accounts = list();
    ASSERT_EQ(accounts.size(), 1U);
    EXPECT_EQ(accounts[0]["name"], name);
    EXPECT_EQ(accounts[0]["address"], url());
    EXPECT_EQ(accounts[0]["user"], user);
    EXPECT_EQ(accounts[0]["password"], "file");
    EXPECT_EQ(accounts[0]["books"][0]["name"], "Friends");
    EXPECT_EQ(accounts[0]["books"][0]["records"], 0);
    EXPECT_EQ(accounts[0]["books"][0]["default"], false);
    EXPECT_THAT(run({"account", "list"}).out,
                AllOf(StartsWith(name + "/Friends\thttp://"), HasSubstr("/\t" + user + "\tfile\t0\t\n")));
    const Outcome removed = run({"account", "remove", name});
    EXPECT_EQ(removed.status, 0);
    EXPECT_EQ(removed.err, name + ": removed; 0 records stay here\n");
    EXPECT_THAT(run({"account", "list"}).err, HasSubstr("no accounts yet"));
    EXPECT_THAT(book(), Not(HasSubstr(kPassword)));
}

TEST_F(AccountTest, FurtherBooksOfTheServerJoinTheAccount) {
    const std::string user = newUser(), name = user + "@127.0.0.1";
    ASSERT_EQ(add(user, "Friends").status, 0);
    EXPECT_EQ(add(user, "Work", {"--default"}).status, 0);
    json accounts = list();
    ASSERT_EQ(accounts.size(), 1U);
    ASSERT_EQ(accounts[0]["books"].size(), 2U);
    EXPECT_EQ(accounts[0]["books"][1]["default"], true);
    EXPECT_THAT(add(user, "work").err,
                HasSubstr("has an address book named \"work\" already; --book takes that"));
    const auto addAgain = [&](const std::vector<std::string>& further) {
        std::vector<std::string> arguments{"account",         "add",     url(), "--user", user,
                                           "--password-file", "password"};
        arguments.insert(arguments.end(), further.begin(), further.end());
        return run(arguments);
    };
    Outcome again = addAgain({});
    EXPECT_EQ(again.status, 1);
    EXPECT_THAT(again.err, HasSubstr("several address books; --book NAME says which: "));
    again = addAgain({"--book", "Work", "--name", "another"});
    EXPECT_EQ(again.status, 1);
    EXPECT_THAT(again.err, HasSubstr("the address book Work belongs to " + name + "/Work already"));
    again = run(
        {"account", "add", url(), "--user", user, "--password-command", "cat password", "--book", "Work"});
    EXPECT_EQ(again.status, 0);
    EXPECT_EQ(again.err, name + "/Work: was there already; the account's settings are those given now\n");
    EXPECT_EQ(list()[0]["password"], "command");
    EXPECT_EQ(list()[0]["books"].size(), 2U);
    again = addAgain({"--book", "/srv/contacts"});
    EXPECT_EQ(again.status, 1);
    EXPECT_THAT(again.err, AllOf(HasSubstr("no address book named \"/srv/contacts\"; it has: "),
                                 HasSubstr("addressbook --book FOLDER account add")));
    // Another folder, and both books at once.
    fs::create_directory(folder() / "other");
    const Outcome both = run({"--book", "other", "account", "add", url(), "--user", user, "--password-file",
                              "password", "--book", "Work", "--book", "friends", "--name", "both"});
    EXPECT_EQ(both.status, 0) << both.err;
    EXPECT_EQ(both.err, "both/Work, both/Friends: added; addressbook sync fetches the people\n");
    EXPECT_EQ(list().size(), 1U);
    EXPECT_EQ(run({"account", "default", name + "/Friends"}).status, 0);
    EXPECT_EQ(list()[0]["books"][0]["default"], true);
    EXPECT_EQ(list()[0]["books"][1]["default"], false);
    EXPECT_EQ(run({"account", "default", "local"}).status, 0);
    EXPECT_EQ(list()[0]["books"][0]["default"], false);
}

TEST_F(AccountTest, ABooksOwnAddressIsEnough) {
    const std::string user = newUser();
    ASSERT_EQ(add(user, "Friends").status, 0);
    ASSERT_EQ(add(user, "Work").status, 0);
    const std::string address = list()[0]["books"][1]["url"];
    ASSERT_EQ(run({"account", "remove", user + "@127.0.0.1"}).status, 0);
    const Outcome added = run(
        {"account", "add", address, "--user", user, "--password-command", "cat password", "--name", "mine"});
    EXPECT_EQ(added.status, 0) << added.err;
    EXPECT_THAT(added.err, StartsWith("mine/Work: added"));
}

TEST_F(AccountTest, WhatCannotBeIsRefusedInASentence) {
    const std::string user = newUser();
    const auto refusal = [&](const std::vector<std::string>& further, int status) {
        std::vector<std::string> arguments{"account", "add"};
        arguments.insert(arguments.end(), further.begin(), further.end());
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, status) << outcome.err;
        EXPECT_EQ(outcome.out, "");
        return outcome.err;
    };
    EXPECT_THAT(refusal({}, 2), HasSubstr("URL|MAIL is required"));
    EXPECT_THAT(refusal({"ftp://x"}, 4),
                HasSubstr("neither a mail address nor the address of a server: ftp://x"));
    EXPECT_THAT(refusal({url(), "--password-file", "a", "--keyring"}, 2), HasSubstr("excludes"));
    EXPECT_THAT(refusal({url(), "--book", "a", "--create", "b"}, 2), HasSubstr("excludes"));
    EXPECT_THAT(refusal({url(), "--name", "a/b"}, 2), HasSubstr("an account cannot be named \"a/b\""));
    EXPECT_THAT(refusal({url(), "--name", "local"}, 2), HasSubstr("cannot be named \"local\""));
    EXPECT_THAT(refusal({url(), "--ca-file", "gone.pem"}, 1),
                HasSubstr("gone.pem: there is no file of certificates"));
    EXPECT_THAT(refusal({url()}, 4), HasSubstr("asks for a user name and a password; --user tells who asks"));
    EXPECT_THAT(refusal({url(), "--user", user}, 1),
                HasSubstr("there is no terminal to ask for the password"));
    EXPECT_THAT(refusal({"http://192.0.2.1/", "--user", user, "--password-file", "password"}, 4),
                AllOf(HasSubstr("plain http to 192.0.2.1 is refused"), HasSubstr("--allow-http")));
    EXPECT_THAT(refusal({"http://127.0.0.1:1/", "--user", user, "--password-file", "password"}, 4),
                HasSubstr("127.0.0.1"));
    EXPECT_THAT(refusal({url(), "--user", user, "--password-file", "password"}, 1),
                HasSubstr("the server has no address book yet; --create NAME makes one"));
    EXPECT_FALSE(fs::exists(Sandbox::book() / "AddressBook.db"));
    EXPECT_EQ(run({"account"}).status, 2);
}

TEST_F(AccountTest, PasswordFileIsForItsOwnerAlone) {
    const std::string user = newUser();
    const auto refusal = [&] {
        const Outcome outcome = add(user, "Friends");
        EXPECT_EQ(outcome.status, 1);
        return outcome.err;
    };
    for (const std::string mode : {"644", "640", "602"}) {
        shell("chmod " + mode + " password");
        EXPECT_THAT(refusal(), HasSubstr("password: others than its owner may use this file; chmod 600"))
            << mode;
    }
    shell("chmod 600 password; : >password");
    EXPECT_THAT(refusal(), HasSubstr("there is no password in its first line"));
    shell("rm password; mkdir password");
    EXPECT_THAT(refusal(), HasSubstr("an ordinary file"));
    shell("rmdir password");
    EXPECT_THAT(refusal(), HasSubstr("password: cannot read: No such file"));
    file("password", std::string(kPassword) + "\r\nand a second line\n");
    shell("chmod 400 password");
    EXPECT_EQ(add(user, "Friends").status, 0);
}

TEST_F(AccountTest, PasswordCommandThatFailsIsNamedWithoutWhatItPrinted) {
    const std::string user = newUser();
    const auto refusal = [&](const std::string& command) {
        const Outcome outcome =
            run({"account", "add", url(), "--user", user, "--password-command", command, "--create", "x"});
        EXPECT_NE(outcome.status, 0);
        return outcome.err;
    };
    EXPECT_THAT(refusal("echo wrong-one; exit 3"),
                AllOf(HasSubstr("the command for the password ended with the exit status 3: echo"),
                      Not(HasSubstr("wrong-one\n"))));
    EXPECT_THAT(refusal("true"), HasSubstr("the command for the password printed none: true"));
    EXPECT_THAT(refusal("kill -9 $$"), HasSubstr("the exit status 137"));
    EXPECT_THAT(refusal("no-such-program 2>/dev/null"), HasSubstr("the exit status 127"));
    EXPECT_THAT(refusal("echo wrong"), HasSubstr("does not accept this user name and password"));
    // One that never ends printing is cut off, and one that waits is ended by Ctrl-C.
    EXPECT_THAT(refusal("yes $(seq 1000 | tr -d '\\n')"), HasSubstr("exit status 141"));
    const Outcome stopped = shell("timeout --preserve-status -s INT 1 \"$A\" account add " + url() +
                                  " --user " + user + " --password-command 'sleep 60'");
    EXPECT_EQ(stopped.status, 130) << stopped.err;
}

TEST_F(AccountTest, ThePasswordIsNowhereToBeSeen) {
    const std::string user = newUser();
    // The processes are looked at while the server is asked, which a command for the password can do.
    file("look", "#!/bin/sh\nps -ww -eo args >seen-processes; cat /proc/$PPID/environ >>seen-processes; cat "
                 "password\n");
    const Outcome added =
        run({"account", "add", url(), "--user", user, "--password-command", "sh look", "--create", "x"});
    ASSERT_EQ(added.status, 0) << added.err;
    const std::string seen = bytesOf(folder() / "seen-processes");
    EXPECT_THAT(seen, AllOf(HasSubstr("account add"), Not(HasSubstr(kPassword))));
    EXPECT_THAT(book(), AllOf(HasSubstr("sh look"), Not(HasSubstr(kPassword))));
    EXPECT_THAT(added.out + added.err, Not(HasSubstr(kPassword)));
}

TEST_F(AccountTest, ATerminalIsAskedForUserPasswordAndBook) {
    const std::string user = newUser();
    ASSERT_EQ(add(user, "Friends").status, 0);
    ASSERT_EQ(add(user, "Work").status, 0);
    ASSERT_EQ(run({"account", "remove", user + "@127.0.0.1"}).status, 0);
    const Outcome added = onTerminal("$A account add " + url(), {{"User name for 127.0.0.1: ", user},
                                                                 {"Password of " + user, "wrong"},
                                                                 {"try again", kPassword},
                                                                 {"by its number or name? ", "work"}});
    EXPECT_EQ(added.status, 0) << added.out;
    EXPECT_THAT(added.out,
                AllOf(HasSubstr("/Work: added; addressbook sync fetches the people, and asks for the "
                                "password each time"),
                      Not(HasSubstr(kPassword))));
    EXPECT_EQ(list()[0]["password"], "prompt");
    EXPECT_EQ(list()[0]["user"], user);
}

TEST_F(AccountTest, CtrlCEndsTheQuestionAndTheTerminalShowsAgainWhatIsTyped) {
    const Outcome outcome =
        onTerminal("trap : INT; $A account add " + url() + " --user ida; echo status $?; stty -a",
                   {{"Password of ida", "\\003"}});
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("status 130"), HasSubstr(" echo "), Not(HasSubstr("-echo "))));
}

TEST_F(AccountTest, OfAMailAddressBothUserNamesAreTried) {
    const carddav_test::Certificate certificate;
    carddav_test::Server server(
        [](const carddav_test::Received& received) {
            const std::string who = received.header("authorization");
            return who == "Basic aWRhOm9wZW4tc2VzYW1lLTQy" // ida
                       ? carddav_test::multistatus(carddav_test::response(
                             received.target,
                             "<D:resourcetype><D:collection/><C:addressbook/></D:resourcetype>"
                             "<D:displayname>Friends</D:displayname>"))
                       : carddav_test::Reply{401, "", {"WWW-Authenticate: Basic realm=\"books\""}};
        },
        &certificate);
    file("ca.pem", certificate.pem());
    const Outcome outcome = run({"account", "add", "ida@localhost:" + std::to_string(server.port()),
                                 "--ca-file", "ca.pem", "--password-file", "password"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(list()[0]["user"], "ida");
}

TEST_F(AccountTest, AnotherHostGetsThePasswordOnlyWhenTheUserSaysSo) {
    carddav_test::Server server([&](const carddav_test::Received&) {
        return carddav_test::Reply{301, "", {"Location: " + url("/")}}; // another port is another host
    });
    const std::string user = newUser();
    ASSERT_EQ(add(user, "Friends").status, 0);
    ASSERT_EQ(run({"account", "remove", user + "@127.0.0.1"}).status, 0);
    const std::string line = "account add " + server.url() + " --user " + user + " --password-file password";
    const Outcome silent = shell("\"$A\" " + line);
    EXPECT_EQ(silent.status, 4);
    EXPECT_THAT(silent.err, HasSubstr("asks for the password; unasked it is not sent to another host"));
    Outcome asked = onTerminal("$A " + line, {{"Shall it get the password? [y/N]", "n"}});
    EXPECT_EQ(asked.status, 4) << asked.out;
    asked = onTerminal("$A " + line, {{"Shall it get the password? [y/N]", "y"}});
    EXPECT_EQ(asked.status, 0) << asked.out;
    EXPECT_THAT(asked.out, HasSubstr("/Friends: added"));
}

TEST_F(AccountTest, ACertificateThatNobodyKnowsIsTrustedWithItsFile) {
    const carddav_test::Certificate certificate;
    carddav_test::Server server(
        [](const carddav_test::Received&) {
            return carddav_test::multistatus(carddav_test::response(
                "/book/", "<D:resourcetype><D:collection/><C:addressbook/></D:resourcetype>"
                          "<D:displayname>Friends</D:displayname>"));
        },
        &certificate);
    const std::string address = "https://localhost:" + std::to_string(server.port()) + "/book/";
    Outcome outcome = run({"account", "add", address});
    EXPECT_EQ(outcome.status, 4);
    EXPECT_THAT(outcome.err, HasSubstr("--ca-file"));
    file("ca.pem", certificate.pem());
    outcome = run({"account", "add", address, "--ca-file", "ca.pem"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(list()[0]["caFile"], (folder() / "ca.pem").string());
    EXPECT_EQ(list()[0]["password"], "none");
}

} // namespace
} // namespace addressbook
