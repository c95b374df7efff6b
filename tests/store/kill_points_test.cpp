// A process is killed at each of its system calls that change files, while it makes a book, saves,
// checkpoints, upgrades an older book, backs up, restores or repairs: the book is then either in its old or
// in its new state.

#include "frameworks/AddressBook/store/file/backup.h"
#include "frameworks/AddressBook/store/file/paths.h"
#include "frameworks/AddressBook/store/file/repair.h"
#include "tests/store/contents.h"
#include "tests/store/long_run.h"
#include "tests/store/scratch.h"
#include "tests/support/system_calls.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <functional>

namespace addressbook::test {
namespace {

namespace fs = std::filesystem;
using testing::AnyOf;
using testing::Eq;
using testing::IsEmpty;

class KillPointsTest : public Scratch {
  protected:
    ~KillPointsTest() override { munmap(answered_, sizeof(bool)); }

    fs::path file() const { return folder() / kFileName; }
    fs::path kept() const { return root() / "kept"; }
    fs::path backup() const { return root() / "backups" / "backup"; }

    // Each process begins with what is in the book's folder, and among the backups, now.
    void begin() {
        fs::create_directory(kept());
        for (const fs::path& one : {folder(), backup().parent_path()}) {
            if (fs::exists(one)) {
                fs::copy(one, kept() / one.filename(), fs::copy_options::recursive);
            }
        }
    }
    void beginAgain() {
        for (const fs::path& one : {folder(), backup().parent_path()}) {
            fs::remove_all(one);
            if (fs::exists(kept() / one.filename())) {
                fs::copy(kept() / one.filename(), one, fs::copy_options::recursive);
            }
        }
    }

    // Runs [work] in a process that is killed after so many calls; answers its calls, or nothing when it was
    // killed before [work] was done.
    std::string run(const std::function<void()>& work, int calls) {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        const pid_t child = fork();
        if (child == 0) {
            try {
                support::killAfterCalls(calls);
                work();
                const std::string made = support::callsMade();
                support::killAfterCalls(-1);
                _exit(::write(ends[1], made.data(), made.size()) > 0 ? 0 : 2);
            } catch (const std::exception& error) {
                fprintf(stderr, "%s\n", error.what());
                _exit(3);
            }
        }
        close(ends[1]);
        std::string made(1 << 14, '\0');
        made.resize(static_cast<std::size_t>(std::max(read(ends[0], made.data(), made.size()), ssize_t{0})));
        close(ends[0]);
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(made.empty() ? WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL : status == 0)
            << status;
        return made;
    }

    // Kills [work] at many of its calls, at all that change names and at others evenly spread, and looks at
    // what it left each time.
    void kill(const std::function<void()>& work, const std::function<void()>& look) {
        begin();
        const std::string made = run(work, INT_MAX);
        const auto calls = static_cast<int>(made.size());
        ASSERT_GT(calls, 10);
        look();
        const int apart = std::max(1, calls / numberFrom("VELOCARD_KILLS", 5));
        for (int call = 0; call < calls; ++call) {
            if (call % apart != 0 && made[static_cast<std::size_t>(call)] != 'n') {
                continue;
            }
            SCOPED_TRACE("killed at call " + std::to_string(call) + " of " + made);
            beginAgain();
            *answered_ = false;
            EXPECT_EQ(run(work, call), "");
            look();
            if (HasFatalFailure()) {
                return;
            }
        }
    }

    static Contents contentsIn(const fs::path& folder) {
        const Store store(folder);
        EXPECT_THAT(store.check(), IsEmpty());
        return contentsOf(store);
    }
    // What a backup holds.
    Contents contentsOfBackup() const {
        const fs::path probe = root() / "probe";
        fs::remove_all(probe);
        restore(probe, backup());
        return contentsIn(probe);
    }

    // A book of some records.
    void makeBook() {
        Store store(folder());
        ChangeSet changes = changesAt(1);
        changes.records.push_back(inserted(group_, {{"GroupName", text("Friends")}}, Kind::group));
        for (const std::string& uid : people_) {
            changes.records.push_back(inserted(uid, {{"First", text("Ann")}, {"own", text("x")}}));
            changes.memberships.push_back({group_, uid, true});
        }
        changes.definitions = {{Kind::person, "own", 1}};
        changes.me = people_[0];
        store.save(changes);
    }
    // A save that does everything that a save can do.
    ChangeSet largeSave(std::size_t pictureSize) const {
        ChangeSet changes = changesAt(2);
        const std::string inner = uid(7, "ABGroup");
        changes.records = {updated(people_[1], {{"First", text("Bea")}, {"own", Value()}}),
                           updated(group_, {{"GroupName", text("Family")}}, Kind::group),
                           inserted(inner, {{"GroupName", text("Inner")}}, Kind::group)};
        for (int i = 0; i < 5; ++i) {
            const std::string added = uid(10 + i, "ABPerson");
            changes.records.push_back(inserted(
                added, {{"First", text("Cid")}, {property::kImage.data(), Bytes(pictureSize, 'p')}}));
            changes.memberships.push_back({inner, added, true});
        }
        changes.memberships.push_back({group_, inner, true});
        changes.memberships.push_back({group_, people_[1], false});
        changes.removed = {people_[0]};
        changes.definitions = {{Kind::group, "theirs", 1}};
        changes.me = people_[2];
        return changes;
    }
    static std::string uid(int number, const char* kind) {
        char uid[64];
        std::snprintf(uid, sizeof uid, "00000000-0000-4000-8000-%012d:%s", number, kind);
        return uid;
    }
    void execute(const char* statements) const {
        sqlite3* database = nullptr;
        ASSERT_EQ(sqlite3_open(file().c_str(), &database), SQLITE_OK);
        ASSERT_EQ(sqlite3_exec(database, statements, nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(database);
    }
    // A save and the end of its store, which takes the log over into the file.
    void killAtSaving(std::size_t pictureSize) {
        makeBook();
        const Contents before = contentsIn(folder());
        const ChangeSet changes = largeSave(pictureSize);
        std::optional<Contents> after;
        kill(
            [&] {
                Store store(folder());
                store.save(changes);
                *answered_ = true;
            },
            [&] {
                const Contents now = contentsIn(folder());
                if (!after) {
                    after = now;
                }
                EXPECT_TRUE(now == *after || (now == before && !*answered_));
            });
        EXPECT_FALSE(*after == before);
        EXPECT_EQ(after->members.at(group_).size(), 2U);
    }
    // A book of the version before.
    void killAtMigrating(const char* journal) {
        makeBook();
        flushIndexes(*std::make_unique<Store>(folder()));
        execute(downgradeTo(1).c_str());
        execute(journal);
        const Contents before = contentsOf(Store(folder()));
        execute(downgradeTo(1).c_str());
        execute(journal);
        kill([&] { Store{folder()}; },
             [&] {
                 EXPECT_EQ(contentsIn(folder()), before);
                 EXPECT_EQ(Store(folder()).changesSince(0).size(), 1U);
             });
    }

    // Whether the save of the killed process had returned; in memory that it shares.
    bool* const answered_ = static_cast<bool*>(
        mmap(nullptr, sizeof(bool), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    const std::vector<std::string> people_{uid(1, "ABPerson"), uid(2, "ABPerson"), uid(3, "ABPerson")};
    const std::string group_ = uid(4, "ABGroup");
};

TEST_F(KillPointsTest, OfMakingABook) {
    kill([&] { addPerson(*std::make_unique<Store>(folder()), {}); },
         [&] {
             Store store(folder());
             EXPECT_LE(store.count(Kind::person), 1);
             addPerson(store, {});
             EXPECT_THAT(store.check(), IsEmpty());
         });
}

TEST_F(KillPointsTest, OfASave) {
    killAtSaving(6'000);
}

// One that is so large that the log is taken over in the middle of it.
TEST_F(KillPointsTest, OfALargeSave) {
    killAtSaving(1'000'000);
}

TEST_F(KillPointsTest, OfBringingAnOlderBookUpToDate) {
    killAtMigrating("PRAGMA journal_mode = WAL");
}

// As it is after a backup was copied into the book's place by hand.
TEST_F(KillPointsTest, OfBringingAnOlderBackupUpToDate) {
    killAtMigrating("PRAGMA journal_mode = DELETE");
}

// Then there is either no index of endings, or a whole one: contentsIn() checks the book.
TEST_F(KillPointsTest, OfMakingAnIndexOfEndings) {
    makeBook();
    const Contents before = contentsIn(folder());
    ChangeSet changes;
    changes.endings = {{Kind::person, "First"}, {Kind::group, "GroupName"}};
    kill(
        [&] {
            Store store(folder());
            store.save(changes);
            *answered_ = true;
        },
        [&] {
            EXPECT_EQ(contentsIn(folder()), before);
            const std::size_t made = Store(folder()).endings().size();
            EXPECT_TRUE(made == 2 || (made == 0 && !*answered_));
        });
}

TEST_F(KillPointsTest, OfABackup) {
    makeBook();
    fs::create_directory(backup().parent_path());
    backUp(folder(), backup(), Existing::refuse);
    const Contents older = contentsIn(folder());
    Store(folder()).save(largeSave(6'000));
    const Contents newer = contentsIn(folder());
    kill([&] { backUp(folder(), backup(), Existing::replace); },
         [&] {
             EXPECT_THAT(contentsOfBackup(), AnyOf(Eq(older), Eq(newer)));
             EXPECT_EQ(contentsIn(folder()), newer);
         });
}

TEST_F(KillPointsTest, OfRestoring) {
    makeBook();
    fs::create_directory(backup().parent_path());
    backUp(folder(), backup(), Existing::refuse);
    const Contents older = contentsIn(folder());
    addPerson(*std::make_unique<Store>(folder()), {}); // what the file says without its log
    {
        Store store(folder()); // while it lives, its save is in the log
        store.save(largeSave(6'000));
        fs::copy(folder(), root() / "killed");
    }
    const Contents newer = contentsIn(folder());
    fs::remove_all(folder());
    fs::rename(root() / "killed", folder());
    kill([&] { restore(folder(), backup()); },
         [&] {
             EXPECT_THAT(contentsIn(folder()), AnyOf(Eq(older), Eq(newer)));
             EXPECT_EQ(contentsOfBackup(), older);
         });
}

TEST_F(KillPointsTest, OfARepair) {
    makeBook();
    std::string bytes = bytesOf(file());
    bytes[bytes.find("Ann")] = 'E';
    std::ofstream(file(), std::ios::binary) << bytes;
    kill([&] { repair(folder()); },
         [&] {
             if (bytesOf(file()) == bytes) {
                 return;
             }
             EXPECT_EQ(contentsIn(folder()).records.size(), 4U);
             bool found = false;
             for (const auto& entry : fs::directory_iterator(folder())) {
                 found =
                     found || (entry.path() != file() && entry.is_regular_file() && bytesOf(entry) == bytes);
             }
             EXPECT_TRUE(found) << "the damaged book is not kept";
         });
}

using DurableTest = KillPointsTest;

TEST_F(DurableTest, WhatIsSavedIsOnTheDiskWhenTheSaveAnswers) {
    const auto expectSynced = [&](const char* when) {
        for (const char* suffix : {"", "-wal"}) {
            EXPECT_FALSE(support::isUnsynced(file().string() + suffix)) << when << suffix;
        }
    };
    std::ofstream(root() / "other") << "never synced";
    EXPECT_TRUE(support::isUnsynced(root() / "other"));
    makeBook();
    expectSynced("made");
    Store store(folder());
    store.save(largeSave(6'000));
    expectSynced("saved");
    for (int i = 0; i < 50; ++i) { // beyond the size at which the log is taken over
        addPerson(store, {{property::kImage.data(), Bytes(100'000, 'p')}});
    }
    expectSynced("log taken over");
    fs::create_directory(backup().parent_path());
    backUp(folder(), backup(), Existing::refuse);
    EXPECT_FALSE(support::isUnsynced(backup()));
    restore(folder(), backup());
    expectSynced("restored");
}

} // namespace
} // namespace addressbook::test
