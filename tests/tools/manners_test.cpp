// The program when it is interrupted, in dry runs, and on a terminal.

#include "tests/tools/program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>

namespace addressbook {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::AnyOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

constexpr int kInterrupted = 128 + SIGINT, kTerminated = 128 + SIGTERM, kHungUp = 128 + SIGHUP;

class MannersTest : public testing::Test, public Sandbox {
  protected:
    // Cards of so many people.
    static std::string cards(int count) {
        std::string text;
        for (int at = 0; at < count; ++at) {
            text += "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Name " + std::to_string(at) + "\r\nEND:VCARD\r\n";
        }
        return text;
    }
    std::size_t people() {
        const std::string out = run({"list", "--fields", "name"}).out;
        return static_cast<std::size_t>(std::count(out.begin(), out.end(), '\n'));
    }
    // What lies in the folder beside what is there in any case.
    std::vector<std::string> files() {
        std::vector<std::string> names;
        for (const auto& each : fs::directory_iterator(folder())) {
            const std::string name = each.path().filename();
            if (name != "book" && name != "home" && name != "stdin" && name != "stdout" && name != "stderr") {
                names.push_back(name);
            }
        }
        return names;
    }
};

// Stopped at moments that are spread over the time that it takes.
TEST_F(MannersTest, WithoutABookItSaysWhereOneWouldBeAndHowToFillIt) {
    for (const std::string command : {"", " list", " check", " export"}) {
        const Outcome outcome = shell("unset ADDRESSBOOK_HOME; $A" + command);
        EXPECT_EQ(outcome.status, 3) << command;
        EXPECT_THAT(outcome.err, HasSubstr("no address book yet; it would be " +
                                           (folder() / "home/data/AddressBook/AddressBook.db").string()))
            << command;
        EXPECT_THAT(outcome.err, HasSubstr("addressbook import contacts.vcf")) << command;
    }
    EXPECT_FALSE(fs::exists(folder() / "home/data"));
    // One that was named may be a mistake.
    EXPECT_THAT(run({"list"}).err, HasSubstr("or correct ADDRESSBOOK_HOME"));
}

TEST_F(MannersTest, WithoutACommandItSaysHowManyAreInTheBook) {
    file("cards.vcf", cards(3));
    ASSERT_EQ(run({"import", "cards.vcf"}).status, 0);
    const Outcome outcome = run({});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr((book() / "AddressBook.db").string() + ": 3 people and 0 groups\n"));
}

TEST_F(MannersTest, ExportThatIsStoppedLeavesNoFile) {
    ASSERT_EQ(run({"import", "-"}, cards(20'000)).status, 0);
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_EQ(run({"export", "out.vcf"}).status, 0);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
    fs::remove(folder() / "out.vcf");
    int stopped = 0;
    for (int moment = 1; moment <= 6; ++moment) {
        const std::string signal = moment % 3 == 0 ? "INT" : moment % 3 == 1 ? "TERM" : "HUP";
        SCOPED_TRACE(signal);
        const Outcome outcome = shell("timeout --preserve-status -s " + signal + ' ' +
                                      std::to_string(time.count() * moment / 8) + " \"$A\" export out.vcf");
        EXPECT_THAT(outcome.status, AnyOf(0, kInterrupted, kTerminated, kHungUp)) << outcome.err;
        stopped += outcome.status != 0 ? 1 : 0;
        EXPECT_EQ(files(),
                  outcome.status == 0 ? std::vector<std::string>{"out.vcf"} : std::vector<std::string>{});
        fs::remove(folder() / "out.vcf");
    }
    EXPECT_GE(stopped, 2);
}

TEST_F(MannersTest, ExportIsForItsOwnerOnlyUnlessItReplacesAnotherFile) {
    ASSERT_EQ(run({"import", "-"}, cards(1)).status, 0);
    EXPECT_EQ(shell("umask 022; \"$A\" export out.vcf; stat -c %a out.vcf").out, "600\n");
    EXPECT_EQ(shell("chmod 640 out.vcf; \"$A\" export out.vcf; stat -c %a out.vcf").out, "640\n");
}

TEST_F(MannersTest, BackupThatIsStoppedLeavesNothing) {
    ASSERT_EQ(run({"import", "-"}, cards(20'000)).status, 0);
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_EQ(run({"backup", "copy"}).status, 0);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
    fs::remove(folder() / "copy");
    int stopped = 0;
    for (int moment = 1; moment <= 6; ++moment) {
        const Outcome outcome = shell("timeout --preserve-status -s INT " +
                                      std::to_string(time.count() * moment / 8) + " \"$A\" backup copy");
        EXPECT_THAT(outcome.status, AnyOf(0, kInterrupted)) << outcome.err;
        stopped += outcome.status != 0 ? 1 : 0;
        EXPECT_EQ(files(),
                  outcome.status == 0 ? std::vector<std::string>{"copy"} : std::vector<std::string>{});
        fs::remove(folder() / "copy");
    }
    EXPECT_GE(stopped, 1);
}

// More cards than one save takes; then it waits for others that do not come.
TEST_F(MannersTest, ImportThatIsStoppedTellsWhatIsSavedAndIsCompletedByAnother) {
    file("cards", cards(27'000));
    const Outcome outcome =
        shell("mkfifo fifo; \"$A\" import fifo & exec 3>fifo; cat cards >&3; "
              "until \"$A\" 2>/dev/null | grep -q '[1-9][0-9]* people'; do sleep 0.1; done; "
              "kill -TERM $!; wait $!");
    EXPECT_EQ(outcome.status, kTerminated);
    const std::size_t saved = people();
    EXPECT_GT(saved, 0U);
    EXPECT_LT(saved, 27'000U);
    EXPECT_EQ(outcome.err, "addressbook: interrupted: " + std::to_string(saved) +
                               " people are saved, the others and all groups are not; running it again "
                               "completes it\n");
    EXPECT_EQ(run({"check"}).status, 0);
    EXPECT_THAT(run({"import", "cards"}).err,
                HasSubstr(std::to_string(27'000 - saved) + " added, 0 updated"));
    EXPECT_EQ(people(), 27'000U);
}

TEST_F(MannersTest, ImportThatWaitsForInputCanBeStopped) {
    const Outcome outcome =
        shell("mkfifo fifo; exec 3<>fifo; timeout --preserve-status -k 5 -s INT 0.5 \"$A\" import - <&3");
    EXPECT_EQ(outcome.status, kInterrupted);
    EXPECT_EQ(outcome.err, "addressbook: interrupted: nothing is saved; running it again completes it\n");
}

TEST_F(MannersTest, SignalsThatAreIgnoredStayIgnored) {
    EXPECT_EQ(shell("mkfifo fifo; trap '' HUP; \"$A\" import - <fifo & exec 3>fifo; sleep 0.5; kill -HUP $!; "
                    "exec 3>&-; wait $!")
                  .err,
              "addressbook: standard input: no vCard in it\n");
}

TEST_F(MannersTest, DryRunIsRefusedWhereTheImportIs) {
    const std::string path = file("one.vcf", cards(1));
    file("file", "");
    fs::create_directory(folder() / "log");
    file("log/AddressBook.db-wal", "x");
    for (const std::string place : {"no/such", "file", "log"}) {
        const Outcome dry = run({"import", "--dry-run", "--book", place, path});
        const Outcome real = run({"import", "--book", place, path});
        EXPECT_EQ(dry.status, 3) << place;
        EXPECT_EQ(dry.status, real.status) << place;
        EXPECT_EQ(dry.err, real.err);
    }
    EXPECT_EQ(shell("ADDRESSBOOK_HOME=gone \"$A\" import --dry-run one.vcf").status, 3);
    EXPECT_EQ(run({"import", "--dry-run", "--book", "new", path}).status, 0);
    EXPECT_FALSE(fs::exists(folder() / "new"));
}

// A book that this user may not write is told of before the cards are read. Root may write it all the same, unless that
// right is taken away.
TEST_F(MannersTest, ImportIntoABookThatMayOnlyBeReadIsRefusedAtOnce) {
    ASSERT_EQ(run({"import", "-"}, cards(1)).status, 0);
    file("more.vcf", cards(2));
    for (const std::string option : {"", "--dry-run"}) {
        const Outcome outcome = shell("chmod -R a-w book; [ $(id -u) -ne 0 ] || "
                                      "set -- setpriv --bounding-set=-dac_override; \"$@\" \"$A\" import " +
                                      option + " more.vcf; status=$?; chmod -R u+w book; exit $status");
        EXPECT_EQ(outcome.status, 3) << option;
        EXPECT_THAT(outcome.err, HasSubstr("may only be read"));
    }
}

TEST_F(MannersTest, ShowHidesWhatOnlyTheBookKnows) {
    ASSERT_EQ(run({"import", "-"}, "BEGIN:VCARD\nN:A\nUID:1\nX-OTHER:kept\nEND:VCARD\n"
                                   "BEGIN:VCARD\nFN:G\nKIND:group\nUID:2\nMEMBER:urn:uuid:gone\nEND:VCARD\n")
                  .status,
              0);
    EXPECT_THAT(run({"export"}).out, HasSubstr("X-OTHER:kept"));
    for (const std::string each : {"list", "groups"}) {
        const std::string out = run({each}).out;
        const std::string id = out.substr(0, out.find('\t'));
        EXPECT_THAT(run({"show", id}).out, Not(AnyOf(HasSubstr("X-"), HasSubstr("vcard"))));
        EXPECT_THAT(run({"show", id, "--json"}).out, Not(AnyOf(HasSubstr("X-"), HasSubstr("vcard"))));
    }
}

TEST_F(MannersTest, ATerminalShowsHowFarItIs) {
    const Outcome outcome =
        shell("mkfifo fifo; { cat; sleep 1; echo 'BEGIN:VCARD\nN:B\nEND:VCARD'; } >fifo & "
              "script -qec \"$A import fifo\" /dev/null </dev/null");
    EXPECT_THAT(outcome.out, ContainsRegex("\r\x1B\\[Kfifo: 1 card\r\x1B\\[K1 card read: 1 added"));
}

// The library for servers brings some twenty others with it.
TEST_F(MannersTest, OnlyWhoAsksAServerWaitsForItsLibraries) {
    EXPECT_THAT(shell("LD_TRACE_LOADED_OBJECTS=1 $A").out,
                AllOf(HasSubstr("libsqlite3"), Not(HasSubstr("libcurl")), Not(HasSubstr("libxml2"))));
}

TEST_F(MannersTest, TheLibraryForServersIsNamedWhenItIsMissing) {
    run({"import", file("card.vcf", cards(1))});
    const Outcome outcome = shell("cp $A alone && ./alone account add --user ida --password-command 'echo "
                                  "secret' https://localhost:1/");
    EXPECT_EQ(outcome.status, 1) << outcome.out;
    EXPECT_THAT(outcome.err,
                HasSubstr("the library for servers cannot be loaded: libAddressBookCardDAV.so: "));
    EXPECT_THAT(shell("./alone list").out, HasSubstr("Name 0")) << "all else goes on";
}

} // namespace
} // namespace addressbook
