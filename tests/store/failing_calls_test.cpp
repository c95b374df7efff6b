// A system call that changes files fails, each in turn, while a book is made, saved, brought up to date, backed up, restored or
// repaired: the error says so, the book is then either in its old or in its new state, and the next attempt succeeds.

#include "frameworks/AddressBook/store/file/backup.h"
#include "frameworks/AddressBook/store/file/paths.h"
#include "frameworks/AddressBook/store/file/repair.h"
#include "tests/store/behind_the_back.h"
#include "tests/store/contents.h"
#include "tests/store/long_run.h"
#include "tests/store/scratch.h"
#include "tests/support/system_calls.h"

#include <gmock/gmock.h>

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
    // others [some], or as many as make test-long asks for. [look] is told whether the work was done nevertheless.
    void fail(const std::function<void()>& work, const std::function<void(bool)>& look, int some = 5) {
        replace(root() / "kept", root());
        support::failAfterCalls(INT_MAX, GetParam());
        work();
        support::stopFailing();
        const std::string made = support::callsMade();
        look(true);
        const auto calls = static_cast<int>(made.size());
        ASSERT_GT(calls, 10);
        const int apart = std::max(1, calls / numberFrom("VELOCARD_KILLS", some));
        for (int call = 0; call < calls && !HasFailure(); ++call) {
            if (call % apart != 0 && made[static_cast<std::size_t>(call)] != 'n') {
                continue;
            }
            SCOPED_TRACE("failed at call " + std::to_string(call) + " of " + made);
            replace(root(), root() / "kept");
            bool done = false;
            try {
                // A full disk remains full.
                support::failAfterCalls(call, GetParam(),
                                        GetParam() == ENOSPC ? support::Failing::fromThenOn
                                                             : support::Failing::once);
                work();
                done = true;
            } catch (const StoreError& error) {
                support::stopFailing();
                EXPECT_TRUE(error.reason() == StoreError::Reason::io ||
                            (error.reason() == StoreError::Reason::full && GetParam() == ENOSPC))
                    << error.what();
                EXPECT_THAT(error.what(), HasSubstr(root().string()));
            } catch (const BackupError& error) {
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
    Contents contentsOfBackup() const { return contentsOfBackup(backup()); }
    Contents contentsOfBackup(const fs::path& file) const {
        fs::remove_all(root() / "probe");
        restore(root() / "probe", file);
        return contentsIn(root() / "probe");
    }
    // Expects the book with what was restored and the one that was there beside it; where that failed, the latter may be
    // all that is there.
    void expectRestored(bool done, const Contents& restored, const Contents& before) const {
        const Contents now = contentsIn(folder());
        if (!done && now == before) {
            return;
        }
        EXPECT_EQ(now, restored);
        std::vector<Contents> kept;
        for (const auto& entry : fs::directory_iterator(folder())) {
            if (entry.path() != file() && entry.path().extension() == file().extension()) {
                kept.push_back(contentsOfBackup(entry.path()));
            }
        }
        EXPECT_THAT(kept, testing::ElementsAre(before));
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
    execute(file(), downgradeTo(1));
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
    fail([&] { restore(folder(), backup()); }, [&](bool done) { expectRestored(done, older, newer); });
}

TEST_P(FailingCallsTest, AtARepair) {
    makeBook("Ann");
    makeBook("Bea");
    std::string bytes = bytesOf(file());
    bytes[bytes.find("Ann")] = 'E';
    std::ofstream(file(), std::ios::binary) << bytes;
    RepairReport report;
    fail([&] { report = repair(folder()); },
         [&](bool done) {
             if (!done) {
                 EXPECT_TRUE(bytesOf(file()) == bytes);
                 report = repair(folder());
             }
             EXPECT_TRUE(bytesOf(report.kept) == bytes);
             EXPECT_EQ(contentsIn(folder()).records.size(), 2U);
             // What could not be written for a moment is not lost.
             EXPECT_THAT(report.lost, testing::ElementsAre(HasSubstr("is damaged: ")));
         },
         15);
}

TEST_P(FailingCallsTest, AtUndoingAnInterruptedSave) {
    makeBook("Ann");
    const Contents before = contentsIn(folder());
    interruptSave(folder());
    fail([&] { Store{folder()}; }, [&](bool) { EXPECT_EQ(contentsIn(folder()), before); }, 1000);
}

// The log of the old book still lies beside the new one.
TEST_P(FailingCallsTest, AtFinishingARestore) {
    makeBook("Ann");
    backUp(folder(), backup(), Existing::refuse);
    const Contents backedUp = contentsIn(folder());
    {
        const Store store(folder());
        makeBook("Bea");
        for (const char* suffix : {"-wal", "-shm"}) {
            fs::copy_file(file().string() + suffix, root() / suffix);
        }
        restore(folder(), backup());
    }
    for (const char* suffix : {"-wal", "-shm"}) {
        fs::copy_file(root() / suffix, file().string() + suffix, fs::copy_options::overwrite_existing);
    }
    fail([&] { Store{folder()}; }, [&](bool) { EXPECT_EQ(contentsIn(folder()), backedUp); });
}

// There are neither hard links nor renaming without replacing.
TEST_P(FailingCallsTest, OnAPlainFileSystem) {
    const support::PlainFileSystem plain;
    fail([&] { Store{folder()}; }, [&](bool) { EXPECT_THAT(contentsIn(folder()).records, IsEmpty()); });
    makeBook("Ann");
    const Contents older = contentsIn(folder());
    fail([&] { backUp(folder(), backup(), Existing::refuse); },
         [&](bool done) {
             EXPECT_EQ(contentsIn(folder()), older);
             EXPECT_TRUE(done ? contentsOfBackup() == older
                              : !fs::exists(backup()) || contentsOfBackup() == older);
         });
    replace(root(), root() / "kept");
    backUp(folder(), backup(), Existing::replace);
    makeBook("Bea");
    const Contents newer = contentsIn(folder());
    fail([&] { restore(folder(), backup()); }, [&](bool done) { expectRestored(done, older, newer); });
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
        EXPECT_FALSE(support::isUnsynced(entry.path())) << entry.path();
    }
    EXPECT_EQ(kept, 1) << "the book that was replaced is kept";
}

} // namespace
} // namespace addressbook::test
