// Backup, restore and repair, by the real program.

#include "frameworks/AddressBook/store/store.h"
#include "tests/store/builders.h"
#include "tests/tools/program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sys/stat.h>

namespace addressbook {
namespace {

namespace fs = std::filesystem;
using test::addPerson;
using test::saveRecords;
using test::text;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class BackupTest : public testing::Test, public Sandbox {
  protected:
    BackupTest() : file_(folder() / "saved.backup") {}

    // The book's file, and the files beside it.
    fs::path database() const { return book() / "AddressBook.db"; }
    std::vector<fs::path> beside() const {
        std::vector<fs::path> files;
        for (const auto& entry : fs::directory_iterator(book())) {
            if (entry.path() != database() && entry.path() != database().string() + "-wal" &&
                entry.path() != database().string() + "-shm") {
                files.push_back(entry.path());
            }
        }
        return files;
    }
    std::string names() const { return run({"list", "--fields", "firstname"}).out; }
    static std::string line(const std::string& uid, const std::string& name) {
        return uid + '\t' + name + '\n';
    }
    Outcome backUp() const { return run({"backup", file_}); }
    Outcome restore() const { return run({"restore", file_}); }

    const fs::path file_;
};

TEST_F(BackupTest, ComesBack) {
    std::string ada;
    {
        Store store(book());
        ada = addPerson(store, {{"First", text("Ada")}, {".Image", Bytes{1, 2, 3}}});
        const Outcome outcome = backUp();
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.err, file_.string() + ": 1 person and 0 groups backed up\n");
        EXPECT_EQ(outcome.out, "");
        addPerson(store, {{"First", text("Bob")}});
        saveRecords(store, {test::updated(ada, {{"First", text("Eve")}, {".Image", {}}})});
    }
    const Outcome outcome = restore();
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(names(), line(ada, "Ada"));
    EXPECT_EQ(run({"check"}).status, 0);
    {
        const Store store(book());
        EXPECT_EQ(store.value(store.find(ada)->row, property::kImage), Value(Bytes{1, 2, 3}));
    }
    ASSERT_THAT(beside(), SizeIs(1));
    const fs::path kept = beside().front();
    EXPECT_THAT(kept.filename().string(),
                testing::MatchesRegex("AddressBook-[0-9]{4}-[0-9]{2}-[0-9]{2}-[0-9]{6}\\.db"));
    EXPECT_EQ(outcome.err, file_.string() +
                               ": 1 person and 0 groups restored\nthe address book that was "
                               "there is kept as " +
                               kept.string() + "\n");
    EXPECT_EQ(run({"restore", kept}).status, 0);
    EXPECT_THAT(names(), testing::AllOf(HasSubstr("Eve"), HasSubstr("Bob")));
    EXPECT_THAT(beside(), SizeIs(2));
}

TEST_F(BackupTest, IsOneFileForItsOwnerOnly) {
    {
        const Store store(book());
    }
    const mode_t old = umask(0);
    EXPECT_EQ(backUp().status, 0);
    EXPECT_EQ(restore().status, 0);
    umask(old);
    EXPECT_EQ(fs::status(file_).permissions(), fs::perms(0600));
    for (const auto& entry : fs::directory_iterator(book())) {
        EXPECT_EQ(entry.status().permissions(), fs::perms(0600)) << entry.path();
    }
    for (const auto& entry : fs::directory_iterator(folder())) {
        EXPECT_THAT(entry.path().filename().string(),
                    testing::AnyOf("book", "home", "stdin", "stdout", "stderr", "saved.backup"));
    }
}

TEST_F(BackupTest, HoldsWhatIsSavedWhileOthersHaveTheBookOpenAndGoOnSaving) {
    Store store(book());
    const Store reader(book());
    for (int i = 0; i < 30; ++i) {
        addPerson(store, {{"First", text(std::to_string(i))}, {"Note", text(std::string(9000, 'x'))}});
        if (i % 10 == 9) {
            EXPECT_EQ(run({"backup", "--force", file_}).err,
                      file_.string() + ": " + std::to_string(i + 1) + " people and 0 groups backed up\n");
        }
    }
    EXPECT_EQ(reader.count(Kind::person), 30);
}

TEST_F(BackupTest, ReplacesNothingUnasked) {
    {
        const Store store(book());
    }
    file("saved.backup", "precious");
    const Outcome outcome = backUp();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              "addressbook: " + file_.string() + ": there is such a file; --force replaces it\n");
    EXPECT_EQ(bytesOf(file_), "precious");
    EXPECT_EQ(run({"backup", "--force", file_}).status, 0);
    EXPECT_THAT(bytesOf(file_), StartsWith("SQLite format 3"));
    for (const std::string& target :
         {database().string(), folder().string(), (folder() / "no" / "such").string()}) {
        EXPECT_EQ(run({"backup", "--force", target}).status, 1) << target;
    }
    EXPECT_EQ(run({"backup"}).status, 2);
}

TEST_F(BackupTest, IsRefusedWhereThereIsNoBook) {
    const Outcome outcome = backUp();
    EXPECT_EQ(outcome.status, 3);
    EXPECT_THAT(outcome.err, HasSubstr("There is no address book in"));
    EXPECT_FALSE(fs::exists(file_));
}

TEST_F(BackupTest, RestoresWhereThereIsNoBook) {
    std::string ada;
    {
        Store store(book());
        ada = addPerson(store, {{"First", text("Ada")}});
    }
    EXPECT_EQ(backUp().status, 0);
    for (const auto& entry : fs::directory_iterator(book())) {
        fs::remove(entry.path());
    }
    EXPECT_EQ(restore().status, 0);
    EXPECT_EQ(names(), line(ada, "Ada"));
    EXPECT_THAT(beside(), IsEmpty());
}

TEST_F(BackupTest, ThatIsNoneOrDamagedLeavesTheBook) {
    std::string ada;
    {
        Store store(book());
        ada = addPerson(store, {{"First", text("Ada")}, {"Note", text(std::string(20'000, 'n'))}});
    }
    EXPECT_EQ(backUp().status, 0);
    const std::string sound = bytesOf(file_);
    std::string damaged = sound;
    damaged[damaged.find("nnnnnnnn")] = 'm'; // in the card
    const struct {
        const char* what;
        std::string content;
        const char* says;
    } cases[] = {{"letter", std::string(5000, 'x'), "is no address book"},
                 {"nothing", "", "this is no backup of an address book"},
                 {"short", sound.substr(0, 9000), "damaged"},
                 {"damaged", damaged, "it is damaged and was not copied"}};
    for (const auto& [what, content, says] : cases) {
        file("saved.backup", content);
        const Outcome outcome = restore();
        EXPECT_EQ(outcome.status, 1) << what;
        EXPECT_THAT(outcome.err, testing::AllOf(HasSubstr(says), HasSubstr(file_.string()),
                                                testing::Not(HasSubstr(".AddressBook.db-"))))
            << what;
        EXPECT_EQ(names(), line(ada, "Ada"));
        EXPECT_THAT(beside(), IsEmpty());
    }
    fs::remove(file_);
    EXPECT_EQ(restore().status, 1);
    EXPECT_EQ(run({"restore", database()}).status, 1);
}

TEST_F(BackupTest, OfADamagedBookIsRefusedAndLeavesAnOlderOne) {
    {
        Store store(book());
        addPerson(store, {{"Note", text(std::string(20'000, 'n'))}});
    }
    EXPECT_EQ(backUp().status, 0);
    const std::string before = bytesOf(file_);
    std::string content = bytesOf(database());
    content[content.find("nnnnnnnn")] = 'm';
    std::ofstream(database(), std::ios::binary) << content;
    const Outcome outcome = run({"backup", "--force", file_});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr(database().string() + ": it is damaged and was not copied: "
                                                             "addressbook repair rescues"));
    EXPECT_EQ(bytesOf(file_), before);
}

TEST_F(BackupTest, RestoredUnderOpenStoresIsSeenByThemAndNothingOfTheOldLogIsTakenOver) {
    Store store(book());
    const std::string ada = addPerson(store, {{"First", text("Ada")}});
    EXPECT_EQ(backUp().status, 0);
    const std::string bob = addPerson(store, {{"First", text("Bob")}}); // waits in the log, for it is open
    ASSERT_GT(fs::file_size(database().string() + "-wal"), 0U);
    EXPECT_FALSE(store.moved());
    const Outcome outcome = restore();
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_TRUE(store.moved());
    EXPECT_THROW(addPerson(store, {{"First", text("lost")}}), StoreError);
    EXPECT_EQ(names(), line(ada, "Ada"));
    EXPECT_EQ(run({"check"}).status, 0);
    // What was kept has all of it, together with the log that lies beside it.
    ASSERT_THAT(beside(), SizeIs(2));
    const fs::path kept = beside()[0].extension() == ".db" ? beside()[0] : beside()[1];
    EXPECT_EQ(run({"restore", kept}).status, 0);
    EXPECT_THAT(names(), testing::AllOf(HasSubstr(ada), HasSubstr(bob)));
}

TEST_F(BackupTest, WaitsForNoSaveToBeLostWhileItIsRestored) {
    {
        const Store store(book());
    }
    EXPECT_EQ(backUp().status, 0);
    const std::string restore =
        "for i in 1 2 3 4 5; do $A restore '" + file_.string() + "' || exit 9; done; ";
    const std::string import = "for i in 1 2 3 4 5 6 7 8; do printf "
                               "'BEGIN:VCARD\\nVERSION:3.0\\nN:x%s\\nEND:VCARD\\n' $i | $A import - "
                               "2>/dev/null; $A check || exit 8; done";
    const Outcome outcome = shell("( " + import + " ) & " + restore + " wait $! || exit 7");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
}

TEST_F(BackupTest, RepairTellsWhatIsLostAndKeepsTheDamagedBook) {
    std::string ada;
    {
        Store store(book());
        ada = addPerson(store, {{"First", text("Ada")}, {"Note", text(std::string(20'000, 'n'))}});
    }
    EXPECT_EQ(run({"repair"}).err, database().string() + ": sound, nothing to repair\n");
    std::string content = bytesOf(database());
    content[content.find("nnnnnnnn")] = 'm';
    std::ofstream(database(), std::ios::binary) << content;
    EXPECT_EQ(run({"check"}).status, 1);
    const Outcome outcome = run({"repair"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, ada + " is damaged: 2 of its values were readable; look at it.\n");
    ASSERT_THAT(beside(), SizeIs(1));
    EXPECT_EQ(outcome.err, "1 person and 0 groups rescued\nthe address book that was there is kept as " +
                               beside()[0].string() + "\n");
    EXPECT_TRUE(bytesOf(beside()[0]) == content);
    EXPECT_EQ(run({"check"}).status, 0);
    EXPECT_EQ(names(), line(ada, "Ada"));
    file("book/AddressBook.db", std::string(9000, 'x'));
    EXPECT_EQ(run({"repair"}).status, 3);
    EXPECT_EQ(bytesOf(database()), std::string(9000, 'x'));
}

} // namespace
} // namespace addressbook
