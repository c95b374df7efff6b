// A disk that is full or broken, at any write, sync, truncation or opening of a file: nothing is changed, the
// error says why, and the operation succeeds later.

#include "frameworks/AddressBook/store/file/backup.h"
#include "frameworks/AddressBook/store/file/paths.h"
#include "frameworks/AddressBook/store/file/repair.h"
#include "tests/store/behind_the_back.h"
#include "tests/store/contents.h"
#include "tests/store/scratch.h"
#include "tests/support/fault_vfs.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <cstring>
#include <functional>

namespace addressbook::test {
namespace {

namespace fs = std::filesystem;
using testing::AnyOf;
using testing::Eq;
using testing::HasSubstr;
using testing::IsEmpty;

class FailingDiskTest : public Scratch, public testing::WithParamInterface<int> {
  protected:
    fs::path file() const { return folder() / kFileName; }

    // Does [work] again and again; each time the disk fails a moment later, until it does so after the end.
    // Looks at what is there after each failure.
    void fail(const std::function<void()>& work, const std::function<void()>& look, int step = 1) {
        int good = 0;
        for (bool failed = true; failed; good += step) {
            SCOPED_TRACE("failed after " + std::to_string(good));
            ASSERT_LT(good, 500);
            disk_.arm(good, GetParam());
            try {
                work();
                failed = false;
                disk_.disarm();
            } catch (const StoreError& error) {
                disk_.disarm();
                const bool full = GetParam() == SQLITE_FULL && !std::strstr(error.what(), "disk I/O error") &&
                                  !std::strstr(error.what(), "unable to open");
                EXPECT_EQ(error.reason(), full ? StoreError::Reason::full : StoreError::Reason::io)
                    << error.what();
                EXPECT_THAT(error.what(), testing::AllOf(HasSubstr(root().string()), testing::EndsWith(".")));
                look();
            } catch (const BackupError& error) { // the backup cannot be read
                disk_.disarm();
                EXPECT_THAT(error.what(), HasSubstr(root().string()));
                look();
            }
            if (HasFatalFailure()) {
                return;
            }
        }
        EXPECT_GT(good, 1);
    }

    // Fails while the book that is a copy of the folder [kept] is opened, in which [contents] are found afterwards.
    void failAtOpening(const fs::path& kept, const Contents& contents, int step = 1) {
        fail(
            [&] {
                fs::remove_all(folder());
                fs::copy(kept, folder());
                EXPECT_EQ(contentsOf(Store(folder())), contents);
            },
            [&] { EXPECT_EQ(contentsOf(Store(folder())), contents); }, step);
    }

    // Nothing that was begun is left in the folder: but for SQLite's own files there is one file at most.
    static void expectNothingElse(const fs::path& folder) {
        int files = 0;
        for (const auto& entry : fs::directory_iterator(folder)) {
            const std::string name = entry.path().filename();
            files += name.ends_with("-wal") || name.ends_with("-shm") ? 0 : 1;
        }
        EXPECT_LE(files, 1);
    }
    // Adds a person to the book.
    void makeBook() const {
        Store store(folder());
        addPerson(store, {{"First", text("Ann")}});
    }

    support::FaultVfs disk_;
};

TEST_P(FailingDiskTest, AtASave) {
    Store store(folder());
    const std::string uid = addPerson(store, {{"First", text("before")}});
    const Values before = store.values(store.find(uid)->row);
    std::string added;
    fail(
        [&] {
            ChangeSet changes = changesAt(2);
            added = newUid(Kind::person);
            changes.records = {updated(uid, {{"Note", text("after")}, {".Image", Bytes(40'000)}}),
                               inserted(added, {})};
            store.save(changes);
        },
        [&] {
            ASSERT_EQ(store.values(store.find(uid)->row), before);
            ASSERT_FALSE(store.find(added));
        });
    EXPECT_TRUE(store.find(added));
    EXPECT_EQ(store.value(store.find(uid)->row, "Note"), text("after"));
    EXPECT_THAT(store.check(), IsEmpty());
}

TEST_P(FailingDiskTest, AtMakingABook) {
    fail([&] { Store{folder()}; },
         [&] { // either there is none, or it is whole
             expectNothingElse(folder());
             if (!fs::exists(file())) {
                 return;
             }
             EXPECT_THAT(Store(folder()).check(), IsEmpty());
             fs::remove(file());
         },
         3);
    EXPECT_THAT(Store(folder()).check(), IsEmpty());
}

// With saves that wait in the log, as a killed process leaves them.
TEST_P(FailingDiskTest, AtOpeningABook) {
    Contents before;
    const fs::path kept = root() / "kept";
    {
        Store store(folder());
        addPerson(store, {{"First", text("Ann")}});
        before = contentsOf(store);
        fs::copy(folder(), kept);
    }
    failAtOpening(kept, before);
}

TEST_P(FailingDiskTest, AtUndoingAnInterruptedSave) {
    const fs::path kept = root() / "kept";
    makeBook();
    const Contents before = contentsOf(Store(folder()));
    interruptSave(folder());
    fs::copy(folder(), kept);
    failAtOpening(kept, before, 3);
}

// With the index of the log that another program has made.
TEST_P(FailingDiskTest, AtReadingABookThatIsOpen) {
    Store store(folder());
    addPerson(store, {{"First", text("Ann")}});
    const Contents before = contentsOf(store);
    const auto read = [&] { EXPECT_EQ(contentsOf(Store(folder(), Store::Access::readOnly)), before); };
    int good = 0;
    for (bool failed = true; failed; ++good) {
        ASSERT_LT(good, 100);
        disk_.arm(good, GetParam());
        try {
            read();
            failed = false;
        } catch (const StoreError& error) {
            EXPECT_THAT(error.what(), HasSubstr(file().string()));
        }
        disk_.disarm();
        read();
    }
    EXPECT_GT(good, 1) << "read without what the other program says of the log";
    EXPECT_EQ(contentsOf(store), before);
}

TEST_P(FailingDiskTest, AtBringingAnOlderBookUpToDate) {
    makeBook();
    const Contents before = contentsOf(Store(folder()));
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(file().c_str(), &database), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(database, downgradeTo(1).c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(database);
    const std::string older = bytesOf(file());
    fail([&] { EXPECT_EQ(contentsOf(Store(folder())), before); },
         [&] {
             EXPECT_EQ(contentsOf(Store(folder())), before);
             std::ofstream(file(), std::ios::binary) << older;
         });
}

TEST_P(FailingDiskTest, AtABackup) {
    const fs::path backup = root() / "backups" / "backup";
    fs::create_directory(backup.parent_path());
    makeBook();
    backUp(folder(), backup, Existing::refuse);
    const std::string older = bytesOf(backup);
    makeBook();
    fail([&] { EXPECT_EQ(backUp(folder(), backup, Existing::replace).people, 2); },
         [&] {
             EXPECT_TRUE(bytesOf(backup) == older);
             expectNothingElse(backup.parent_path());
         },
         3);
    EXPECT_FALSE(bytesOf(backup) == older);
}

TEST_P(FailingDiskTest, AtRestoring) {
    const fs::path backup = root() / "backup";
    makeBook();
    backUp(folder(), backup, Existing::refuse);
    const Contents older = contentsOf(Store(folder()));
    makeBook();
    const Contents newer = contentsOf(Store(folder()));
    fail([&] { restore(folder(), backup); },
         [&] {
             EXPECT_EQ(contentsOf(Store(folder())), newer);
             expectNothingElse(folder());
         },
         3);
    EXPECT_EQ(contentsOf(Store(folder())), older);
}

TEST_P(FailingDiskTest, AtARepair) {
    makeBook();
    std::string bytes = bytesOf(file());
    bytes[bytes.find("Ann")] = 'E';
    std::ofstream(file(), std::ios::binary) << bytes;
    fail([&] { EXPECT_TRUE(repair(folder()).needed); },
         [&] {
             EXPECT_TRUE(bytesOf(file()) == bytes);
             expectNothingElse(folder());
         },
         11);
    const Store store(folder());
    EXPECT_EQ(store.count(Kind::person), 1);
    EXPECT_THAT(store.check(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Errors, FailingDiskTest, testing::Values(SQLITE_FULL, SQLITE_IOERR_WRITE),
                         [](const auto& code) {
                             return std::string(code.param == SQLITE_FULL ? "Full" : "Broken");
                         });

} // namespace
} // namespace addressbook::test
