// A book on a read-only disk: it is read completely, with the log that a killed process left; it reports that
// it may only be read; and saves that others make there become visible.

#include "frameworks/AddressBook/store/file/backup.h"
#include "frameworks/AddressBook/store/file/paths.h"
#include "tests/store/builders.h"
#include "tests/store/scratch.h"
#include "tests/support/system_calls.h"

#include <gmock/gmock.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <map>
#include <set>

namespace addressbook::test {
namespace {

namespace fs = std::filesystem;
using Reason = StoreError::Reason;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

const Query kAnn = query("First", Comparison::containsSubString, text("Ann")); // NOLINT(cert-err58-cpp)

class ReadOnlyDiskTest : public Scratch {
  protected:
    fs::path file() const { return folder() / kFileName; }
    fs::path beside(const char* suffix) const { return file().string() + suffix; }

    // As if the book had been written long ago: nothing changes at the moment at which it is opened.
    void age() const {
        const auto before = fs::file_time_type::clock::now() - std::chrono::hours(1);
        for (const auto& entry : fs::directory_iterator(folder())) {
            fs::last_write_time(entry.path(), before);
        }
    }
    // A process that saves a person and is killed then.
    void killAfterSaving(const std::string& first) const {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            Store store(folder());
            addPerson(store, {{"First", text(first)}});
            kill(getpid(), SIGKILL);
        }
        waitpid(child, nullptr, 0);
        ASSERT_GT(fs::file_size(beside("-wal")), 0U);
    }
    std::map<fs::path, std::uintmax_t> files() const {
        std::map<fs::path, std::uintmax_t> sizes;
        for (const auto& entry : fs::directory_iterator(folder())) {
            sizes.emplace(entry.path(), entry.file_size());
        }
        return sizes;
    }
    // The book opens, is read whole, refuses a save, and leaves everything as it is.
    void expectReadOnly(std::size_t people, bool snapshot) const {
        const auto before = files();
        {
            Store store(folder());
            EXPECT_TRUE(store.readOnly());
            EXPECT_EQ(store.readsWithoutLocks(), snapshot);
            EXPECT_EQ(store.rows(Kind::person).size(), people);
            EXPECT_EQ(found(store, kAnn).size(), people);
            for (const RowId row : store.rows(Kind::person)) {
                EXPECT_EQ(store.value(row, "First"), text("Ann"));
            }
            EXPECT_THAT(store.check(), IsEmpty());
            try {
                addPerson(store, {});
                ADD_FAILURE() << "saved";
            } catch (const StoreError& error) {
                EXPECT_EQ(error.reason(), Reason::readOnly);
                EXPECT_THAT(error.what(), AllOf(HasSubstr(file().string()), HasSubstr("may only be read")));
            }
        }
        EXPECT_EQ(files(), before);
    }
    void expectRefused(const char* sentence) const {
        try {
            const Store store(folder());
            ADD_FAILURE() << "opened";
        } catch (const StoreError& error) {
            EXPECT_EQ(error.reason(), Reason::readOnly);
            EXPECT_THAT(error.what(),
                        AllOf(HasSubstr(folder().string()), HasSubstr(sentence), EndsWith(".")));
        }
    }
};

TEST_F(ReadOnlyDiskTest, IsRead) {
    {
        Store store(folder());
        addPerson(store, {{"First", text("Ann")}});
    }
    const support::ReadOnlyDisk disk(root());
    expectReadOnly(1, true);
}

TEST_F(ReadOnlyDiskTest, WithALogOfAKilledProcessIsReadWithIt) {
    {
        Store store(folder());
        addPerson(store, {{"First", text("Ann")}});
    }
    killAfterSaving("Ann");
    {
        const support::ReadOnlyDisk disk(root());
        expectReadOnly(2, false);
    }
    fs::remove(beside("-shm")); // as where only what belongs to the book was copied
    {
        const support::ReadOnlyDisk disk(root());
        expectReadOnly(2, true);
    }
    EXPECT_EQ(Store(folder()).count(Kind::person), 2);
}

TEST_F(ReadOnlyDiskTest, WithALogOfAnotherBookIsRefused) {
    {
        const Store store(folder());
    }
    {
        Store other(root() / "other");
        addPerson(other, {});
        fs::copy_file(other.file().string() + "-wal", beside("-wal"));
    }
    const support::ReadOnlyDisk disk(root());
    try {
        const Store store(folder());
        ADD_FAILURE() << "opened";
    } catch (const StoreError& error) {
        EXPECT_EQ(error.reason(), Reason::damaged);
        EXPECT_THAT(error.what(), HasSubstr("belongs to another file"));
    }
}

// What a restore leaves that is killed before it removes the log of the old book.
TEST_F(ReadOnlyDiskTest, LeftInTheMiddleOfARestoreIsRefusedThereAndFinishedElsewhere) {
    const fs::path backup = root() / "backup";
    {
        Store store(folder());
        backUp(folder(), backup, Existing::refuse);
        addPerson(store, {});
        fs::copy_file(beside("-wal"), root() / "log");
        restore(folder(), backup);
    }
    fs::copy_file(root() / "log", beside("-wal"));
    const support::ReadOnlyDisk disk(root());
    try {
        const Store store(folder());
        ADD_FAILURE() << "opened";
    } catch (const StoreError& error) {
        EXPECT_EQ(error.reason(), Reason::readOnly) << error.what();
        EXPECT_THAT(error.what(), HasSubstr("Read-only file system"));
    }
    disk.writable([&] { EXPECT_EQ(Store(folder()).count(Kind::person), 0); });
}

TEST_F(ReadOnlyDiskTest, LeftInTheMiddleOfASaveIsRefusedThereAndUndoneElsewhere) {
    {
        Store store(folder());
        addPerson(store, {{"First", text("Ann")}});
    }
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) { // as a backup that was copied into the book's place is written, before it has a log
        sqlite3* database = nullptr;
        sqlite3_open(file().c_str(), &database);
        sqlite3_exec(database,
                     "PRAGMA journal_mode = DELETE; PRAGMA cache_size = 1; BEGIN; DELETE FROM record;"
                     "CREATE TABLE filler(x); INSERT INTO filler VALUES (zeroblob(1000000))",
                     nullptr, nullptr, nullptr);
        kill(getpid(), SIGKILL);
    }
    waitpid(child, nullptr, 0);
    ASSERT_GT(fs::file_size(beside("-journal")), 0U);
    {
        const support::ReadOnlyDisk disk(root());
        expectRefused("in the middle of a save");
    }
    const Store store(folder(), Store::Access::readOnly);
    EXPECT_EQ(found(store, kAnn).size(), 1U);
    EXPECT_THAT(store.check(), IsEmpty());
}

TEST_F(ReadOnlyDiskTest, NoneIsMade) {
    const support::ReadOnlyDisk disk(root());
    expectRefused("Read-only file system");
    disk.writable([&] { fs::create_directory(folder()); });
    expectRefused("Read-only file system");
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(ReadOnlyDiskTest, IsBackedUpButNotRestored) {
    {
        Store store(folder());
        addPerson(store, {{"First", text("Ann")}});
    }
    const fs::path copies = root() / "copies";
    fs::create_directory(copies);
    const support::ReadOnlyDisk disk(folder());
    EXPECT_EQ(backUp(folder(), copies / "backup", Existing::refuse).people, 1);
    try {
        restore(folder(), copies / "backup");
        ADD_FAILURE() << "restored";
    } catch (const StoreError& error) {
        EXPECT_EQ(error.reason(), Reason::readOnly);
        EXPECT_THAT(error.what(), HasSubstr("Read-only file system"));
    }
}

TEST_F(ReadOnlyDiskTest, ShowsWhatOthersSave) {
    std::string first;
    {
        Store store(folder());
        first = addPerson(store, {{"First", text("Ann")}});
    }
    age();
    const support::ReadOnlyDisk disk(root());
    const Store reader(folder());
    ASSERT_TRUE(reader.readsWithoutLocks());
    EXPECT_EQ(reader.lastChange(), 1);

    // One that closes the book after its save.
    std::string second;
    disk.writable([&] {
        Store store(folder());
        second = addPerson(store, {{"First", text("Ann")}, {"own", text("x")}});
    });
    ASSERT_EQ(reader.lastChange(), 2);
    EXPECT_THAT(found(reader, kAnn), ElementsAre(first, second));
    EXPECT_EQ(reader.value(reader.find(second)->row, "own"), text("x"));
    EXPECT_THAT(reader.changesSince(1).back().inserted, ElementsAre(second));

    // One that keeps it open; who is in the middle of reading is not disturbed.
    std::unique_ptr<Store> writer;
    std::string third;
    {
        const Store::ReadTransaction reading(reader);
        disk.writable([&] {
            writer = std::make_unique<Store>(folder());
            third = addPerson(*writer, {{"First", text("Ann")}});
        });
        EXPECT_EQ(reader.lastChange(), 2);
    }
    ASSERT_EQ(reader.lastChange(), 3);
    EXPECT_FALSE(reader.readsWithoutLocks());
    EXPECT_THAT(found(reader, kAnn), ElementsAre(first, second, third));
    saveRecords(*writer, {updated(first, {{"First", text("Bea")}})});
    EXPECT_EQ(reader.value(reader.find(first)->row, "First"), text("Bea"));
    EXPECT_FALSE(reader.moved());

    const fs::path aside = root() / "aside";
    disk.writable([&] {
        fs::copy_file(file(), aside);
        writer.reset();
        fs::rename(aside, file());
    });
    EXPECT_TRUE(reader.moved());
}

// The modification time of a file does not reveal a second change in one tick of its clock.
TEST_F(ReadOnlyDiskTest, ShowsASaveThatTheTimesDoNotTell) {
    {
        Store store(folder());
        addPerson(store, {{"First", text("Ann")}});
    }
    const support::ReadOnlyDisk disk(root());
    const Store reader(folder());
    ASSERT_TRUE(reader.readsWithoutLocks());
    EXPECT_EQ(reader.lastChange(), 1);
    const auto time = fs::last_write_time(file());
    const auto size = fs::file_size(file());
    disk.writable([&] {
        Store store(folder());
        addPerson(store, {{"First", text("Ann")}});
    });
    ASSERT_EQ(fs::file_size(file()), size);
    fs::last_write_time(file(), time);
    EXPECT_EQ(reader.lastChange(), 2);
}

} // namespace
} // namespace addressbook::test
