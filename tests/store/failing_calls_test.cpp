// A system call that changes files fails once, each in turn, while a book is made, saved, brought up to date, backed up, restored or
// repaired: the error says so, the book is then either in its old or in its new state, and the next attempt succeeds.

#include "frameworks/AddressBook/store/file/backup.h"
#include "frameworks/AddressBook/store/file/paths.h"
#include "frameworks/AddressBook/store/file/repair.h"
#include "tests/store/contents.h"
#include "tests/store/long_run.h"
#include "tests/store/scratch.h"
#include "tests/support/system_calls.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <functional>

namespace addressbook::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;

class FailingCallsTest : public Scratch, public testing::WithParamInterface<int> {
  protected:
    FailingCallsTest() {
        fs::create_directory(backup().parent_path());
        fs::create_directory(root() / "kept");
    }

    fs::path file() const { return folder() / kFileName; }
    fs::path backup() const { return root() / "backups" / "backup"; }

    // Does [work] again and again from what is there now; each time another call fails: all that change names, and of the
    // others as many as make test-long asks for. [look] is told whether the work was done nevertheless.
    void fail(const std::function<void()>& work, const std::function<void(bool)>& look) {
        replace(root() / "kept", root());
        support::failAfterCalls(INT_MAX, GetParam());
        work();
        support::stopFailing();
        const std::string made = support::callsMade();
        look(true);
        const auto calls = static_cast<int>(made.size());
        ASSERT_GT(calls, 10);
        const int apart = std::max(1, calls / numberFrom("VELOCARD_KILLS", 5));
        for (int call = 0; call < calls && !HasFailure(); ++call) {
            if (call % apart != 0 && made[static_cast<std::size_t>(call)] != 'n') {
                continue;
            }
            SCOPED_TRACE("failed at call " + std::to_string(call) + " of " + made);
            replace(root(), root() / "kept");
            bool done = false;
            try {
                support::failAfterCalls(call, GetParam());
                work();
                done = true;
            } catch (const std::exception& error) { // StoreError, BackupError
                support::stopFailing();
                EXPECT_THAT(error.what(), HasSubstr(root().string()));
            }
            EXPECT_TRUE(support::stopFailing());
            look(done);
        }
    }

    // Makes book and backups those of another folder.
    void replace(const fs::path& here, const fs::path& there) const {
        for (const fs::path& one : {folder(), backup().parent_path()}) {
            fs::remove_all(here / one.filename());
            if (fs::exists(there / one.filename())) {
                fs::copy(there / one.filename(), here / one.filename(), fs::copy_options::recursive);
            }
        }
    }

    static Contents contentsIn(const fs::path& folder) {
        const Store store(folder);
        EXPECT_THAT(store.check(), IsEmpty());
        return contentsOf(store);
    }
    Contents contentsOfBackup() const {
        fs::remove_all(root() / "probe");
        restore(root() / "probe", backup());
        return contentsIn(root() / "probe");
    }
    void makeBook(const char* first) const {
        addPerson(*std::make_unique<Store>(folder()), {{"First", text(first)}});
    }
};

TEST_P(FailingCallsTest, AtMakingABook) {
    fail([&] { Store{folder()}; }, [&](bool) { EXPECT_THAT(contentsIn(folder()).records, IsEmpty()); });
}

TEST_P(FailingCallsTest, AtASave) {
    makeBook("Ann");
    const Contents before = contentsIn(folder());
    fail([&] { makeBook("Bea"); },
         [&](bool done) {
             const Contents now = contentsIn(folder());
             EXPECT_TRUE(now.records.size() == 2 || (!done && now == before));
         });
}

TEST_P(FailingCallsTest, AtBringingAnOlderBookUpToDate) {
    makeBook("Ann");
    flushIndexes(*std::make_unique<Store>(folder()));
    const Contents before = contentsIn(folder());
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(file().c_str(), &database), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(database, downgradeTo(1).c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(database);
    fail([&] { Store{folder()}; }, [&](bool) { EXPECT_EQ(contentsIn(folder()), before); });
}

TEST_P(FailingCallsTest, AtABackup) {
    makeBook("Ann");
    const Contents book = contentsIn(folder());
    fail([&] { backUp(folder(), backup(), Existing::refuse); },
         [&](bool done) {
             EXPECT_EQ(contentsIn(folder()), book);
             if (!done && !fs::exists(backup())) {
                 backUp(folder(), backup(), Existing::refuse);
             }
             EXPECT_EQ(contentsOfBackup(), book);
         });
}

TEST_P(FailingCallsTest, AtABackupThatReplacesAnother) {
    makeBook("Ann");
    backUp(folder(), backup(), Existing::refuse);
    const Contents older = contentsIn(folder());
    makeBook("Bea");
    const Contents newer = contentsIn(folder());
    fail([&] { backUp(folder(), backup(), Existing::replace); },
         [&](bool done) {
             const Contents now = contentsOfBackup();
             EXPECT_TRUE(now == newer || (!done && now == older));
         });
}

TEST_P(FailingCallsTest, AtRestoring) {
    makeBook("Ann");
    backUp(folder(), backup(), Existing::refuse);
    const Contents older = contentsIn(folder());
    makeBook("Bea");
    const Contents newer = contentsIn(folder());
    fail([&] { restore(folder(), backup()); },
         [&](bool done) {
             const Contents now = contentsIn(folder());
             EXPECT_TRUE(now == older || (!done && now == newer));
         });
}

TEST_P(FailingCallsTest, AtARepair) {
    makeBook("Ann");
    std::string bytes = bytesOf(file());
    bytes[bytes.find("Ann")] = 'E';
    std::ofstream(file(), std::ios::binary) << bytes;
    fail([&] { repair(folder()); },
         [&](bool done) {
             if (!done && bytesOf(file()) == bytes) {
                 repair(folder());
             }
             EXPECT_EQ(contentsIn(folder()).records.size(), 1U);
         });
}

INSTANTIATE_TEST_SUITE_P(Errors, FailingCallsTest, testing::Values(EIO, ENOSPC), [](const auto& error) {
    return std::string(error.param == EIO ? "Broken" : "Full");
});

// On FAT and on some servers' disks there are neither hard links nor renaming without replacing.
class PlainFileSystemTest : public Scratch {
  protected:
    support::PlainFileSystem plain_;
};

TEST_F(PlainFileSystemTest, HasBooksBackupsAndWhatARestoreKeeps) {
    const fs::path backup = root() / "backup";
    addPerson(*std::make_unique<Store>(folder()), {{"First", text("Ann")}});
    backUp(folder(), backup, Existing::refuse);
    EXPECT_THROW(backUp(folder(), backup, Existing::refuse), BackupError) << "there is such a file";
    addPerson(*std::make_unique<Store>(folder()), {{"First", text("Bea")}});
    const std::string newer = bytesOf(folder() / kFileName);
    restore(folder(), backup);
    EXPECT_EQ(Store(folder()).count(Kind::person), 1);
    int kept = 0;
    for (const auto& entry : fs::directory_iterator(folder())) {
        kept += entry.path() != folder() / kFileName && bytesOf(entry.path()) == newer ? 1 : 0;
    }
    EXPECT_EQ(kept, 1) << "the book that was replaced is kept";
}

} // namespace
} // namespace addressbook::test
