// Passwords in the desktop's keyring, with a session bus and a keyring of the test's own.

#include "tests/tools/account_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace addressbook {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class KeyringTest : public testing::Test, public ServerSandbox {
  protected:
    // Runs a script with a keyring that is open, and in which $A is the program.
    Outcome withKeyring(const std::string& script) const {
        file("script",
             "printf '\\n' | gnome-keyring-daemon --unlock --components=secrets >daemon.log 2>&1\n" + script);
        std::filesystem::create_directory(folder() / "run");
        return shell("chmod 700 run; export A XDG_RUNTIME_DIR=$PWD/run; dbus-run-session -- sh script");
    }
};

TEST_F(KeyringTest, PasswordThatIsThereIsFoundAndGoesWithTheAccount) {
    const std::string user = newUser();
    ASSERT_EQ(add(user, "Friends").status, 0);
    ASSERT_EQ(run({"account", "remove", user + "@127.0.0.1"}).status, 0);
    const std::string item = " server 127.0.0.1 user " + user;
    const Outcome outcome = withKeyring("secret-tool store --label=mine" + item +
                                        " <password\n"
                                        "$A account add " +
                                        url() + " --user " + user +
                                        " --keyring; echo added $?\n"
                                        "secret-tool lookup" +
                                        item +
                                        " >found; cmp found password && echo kept\n"
                                        "$A account remove " +
                                        user +
                                        "@127.0.0.1; echo removed $?\n"
                                        "secret-tool lookup" +
                                        item + " || echo gone\n");
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("added 0\n"), HasSubstr("removed 0\ngone\n"))) << outcome.err;
}

TEST_F(KeyringTest, PasswordThatIsTypedIsPutThereOnceTheServerTookIt) {
    const std::string user = newUser();
    ASSERT_EQ(add(user, "Friends").status, 0);
    ASSERT_EQ(run({"account", "remove", user + "@127.0.0.1"}).status, 0);
    file("typing",
         "export A\n"
         "mkfifo keys; script -qefc \"$A account add " +
             url() + " --user " + user +
             " --keyring\" /dev/null <keys >seen 2>&1 & exec 3>keys\n"
             "await() { for i in $(seq 200); do grep -qF \"$1\" seen && break; sleep 0.05; done; }\n"
             "await 'Password of'; echo wrong >&3; await 'try again'; cat password >&3; wait $!\n"
             "echo added $?; cat seen\n");
    const Outcome outcome =
        withKeyring(". ./typing; secret-tool lookup server 127.0.0.1 user " + user + " >found\n");
    EXPECT_THAT(outcome.out,
                AllOf(HasSubstr("added 0\n"), HasSubstr("/Friends: added"), Not(HasSubstr(kPassword))));
    EXPECT_EQ(bytesOf(folder() / "found"), kPassword);
    EXPECT_THAT(bytesOf(book() / "AddressBook.db") + bytesOf(book() / "AddressBook.db-wal"),
                Not(HasSubstr(kPassword)));
}

TEST_F(KeyringTest, WithoutAKeyringThatIsSaid) {
    const Outcome outcome =
        shell("unset DISPLAY; DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere \"$A\" account add " + url() +
              " --user " + newUser() + " --keyring --create x");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("the desktop's keyring does not answer: "));
}

} // namespace
} // namespace addressbook
