// Notifications of a watch: every save once and in order, whatever happens to the folder and the file.

#include "frameworks/AddressBook/store/watch.h"
#include "tests/store/builders.h"
#include "tests/store/scratch.h"
#include "tests/support/system_calls.h"

#include <gmock/gmock.h>
#include <sqlite3.h>
#include <sys/inotify.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <mutex>
#include <thread>

namespace {
// Whether the kernel's watches are used up.
std::atomic<bool> watchesAreUsedUp{false};
// Whether a folder can no longer be watched, though there are watches.
std::atomic<bool> foldersAreUsedUp{false};
// Whether the process has no file descriptors left.
std::atomic<bool> descriptorsAreUsedUp{false};
// Whether inotify reports nothing, as for files that another machine changes.
std::atomic<bool> kernelIsSilent{false};
} // namespace

// The program's own definition wins over the library's.
extern "C" int inotify_init1(int flags) noexcept {
    if (watchesAreUsedUp) {
        errno = EMFILE;
        return -1;
    }
    return static_cast<int>(syscall(SYS_inotify_init1, flags));
}

extern "C" int inotify_add_watch(int events, const char* path, uint32_t mask) noexcept {
    if (foldersAreUsedUp) {
        errno = ENOSPC;
        return -1;
    }
    return kernelIsSilent ? 1 : static_cast<int>(syscall(SYS_inotify_add_watch, events, path, mask));
}

extern "C" int eventfd(unsigned count, int flags) noexcept {
    if (descriptorsAreUsedUp) {
        errno = EMFILE;
        return -1;
    }
    return static_cast<int>(syscall(SYS_eventfd2, count, flags));
}

namespace addressbook::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

// A watch on a thread of its own, which records its notifications.
class Watching {
  public:
    Watching(const fs::path& file, std::int64_t since)
        : watch_(file, since,
                 {[this](const LoggedChange& change) {
                      const std::lock_guard<std::mutex> guard(lock_);
                      told_.push_back(change);
                  },
                  [this](const std::string& reason) {
                      const std::lock_guard<std::mutex> guard(lock_);
                      reasons_.push_back(reason);
                  }}),
          thread_([this] { watch_.run(); }) {}
    ~Watching() {
        watch_.stop();
        thread_.join();
    }
    Watching(const Watching&) = delete;
    Watching& operator=(const Watching&) = delete;

    // The numbers of what was told, once so many are there.
    std::vector<std::int64_t> numbers(std::size_t count) {
        std::vector<std::int64_t> numbers;
        for (const LoggedChange& change : changes(count)) {
            numbers.push_back(change.change);
        }
        return numbers;
    }
    // The number that was told last, once it is this one: how often a book is told of that was away depends
    // on when the watch finds it back.
    std::int64_t lastNumber(std::int64_t awaited) {
        const auto told = wait(told_, [&] { return !told_.empty() && told_.back().change == awaited; });
        return told.empty() ? 0 : told.back().change;
    }
    std::vector<LoggedChange> changes(std::size_t count) {
        return wait(told_, [&] { return told_.size() >= count; });
    }
    std::vector<std::string> reasons(std::size_t count) {
        return wait(reasons_, [&] { return reasons_.size() >= count; });
    }

  private:
    template <typename Item, typename Done>
    std::vector<Item> wait(const std::vector<Item>& items, Done done) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        for (;;) {
            {
                const std::lock_guard<std::mutex> guard(lock_);
                if (done() || std::chrono::steady_clock::now() > end) {
                    return items;
                }
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    std::mutex lock_;
    std::vector<LoggedChange> told_;
    std::vector<std::string> reasons_;
    Watch watch_;
    std::thread thread_;
};

void sql(const fs::path& file, const std::string& statement) {
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, statement.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(database);
    sqlite3_close(database);
}

class WatchTest : public Scratch {
  protected:
    // An empty change: a save that tells nothing of records.
    static std::string emptyChange() {
        return "INSERT INTO change(inserted, updated, deleted) VALUES (x'', x'', x'')";
    }
};

TEST_F(WatchTest, TellsOfSavesBeforeAndAfterItBegan) {
    Store store(folder());
    addPerson(store, {});
    addPerson(store, {});
    addPerson(store, {});
    Watching watching(store.file(), 1);
    EXPECT_THAT(watching.numbers(2), ElementsAre(2, 3));
    addPerson(store, {});
    EXPECT_THAT(watching.numbers(3), ElementsAre(2, 3, 4));
    const std::string uid = addPerson(store, {});
    const auto changes = watching.changes(4);
    ASSERT_EQ(changes.size(), 4U);
    EXPECT_THAT(changes[3].inserted, ElementsAre(uid));
    EXPECT_THAT(watching.reasons(0), IsEmpty());
}

TEST_F(WatchTest, KnowsTheSavesOfThisProcess) {
    Store store(folder());
    Watching watching(store.file(), 0);
    addPerson(store, {});
    addPerson(store, {});
    EXPECT_THAT(watching.changes(2),
                ElementsAre(Field(&LoggedChange::own, true), Field(&LoggedChange::own, true)));
    sql(store.file(), "UPDATE change SET origin = NULL; UPDATE change SET origin = 'other' WHERE id = 2");
    EXPECT_THAT(store.changesSince(0),
                ElementsAre(Field(&LoggedChange::own, false), Field(&LoggedChange::own, false)));
}

TEST_F(WatchTest, LearnsOfAWriterThatEndedBeforeItCouldTell) {
    Store store(folder());
    Watching watching(store.file(), 0);
    addPerson(store, {});
    EXPECT_THAT(watching.numbers(1), ElementsAre(1));
    sql(store.file(), emptyChange()); // touches nothing, but closes the file
    EXPECT_THAT(watching.numbers(2), ElementsAre(1, 2));
}

TEST_F(WatchTest, TellsThatSavesAreLostFromTheLog) {
    Store store(folder());
    const std::string uid = addPerson(store, {});
    sql(store.file(), "UPDATE sqlite_sequence SET seq = 50000 WHERE name = 'change'");
    saveRecords(store, {updated(uid, {{"First", text("x")}})});
    Watching watching(store.file(), 1);
    const auto changes = watching.changes(2);
    ASSERT_EQ(changes.size(), 2U);
    EXPECT_TRUE(changes[0].tellsNothing());
    EXPECT_FALSE(changes[0].own);
    EXPECT_THAT(changes[1].updated, ElementsAre(uid));
}

TEST_F(WatchTest, TellsThatAnOlderStateWasRestored) {
    Store store(folder());
    addPerson(store, {});
    addPerson(store, {});
    Watching watching(store.file(), 0);
    EXPECT_THAT(watching.numbers(2), ElementsAre(1, 2));
    sql(store.file(), "DELETE FROM change WHERE id = 2; UPDATE sqlite_sequence SET seq = 1 "
                      "WHERE name = 'change'");
    const auto changes = watching.changes(3);
    ASSERT_EQ(changes.size(), 3U);
    EXPECT_TRUE(changes[2].tellsNothing());
    addPerson(store, {});
    EXPECT_THAT(watching.numbers(4), ElementsAre(1, 2, 1, 2));
}

TEST_F(WatchTest, GoesOnWithAnotherFileInTheBooksPlace) {
    fs::path file;
    {
        Store store(folder());
        file = store.file();
        addPerson(store, {});
    }
    Watching watching(file, 0);
    EXPECT_THAT(watching.numbers(1), ElementsAre(1));
    fs::create_directory(root() / "away");
    for (const auto& entry : fs::directory_iterator(folder())) {
        fs::rename(entry.path(), root() / "away" / entry.path().filename());
    }
    Store store(folder()); // begins a new book
    addPerson(store, {});
    // Whether it saw the new book before that save or only after, its first word is that all is new.
    const auto changes = watching.changes(2);
    ASSERT_GE(changes.size(), 2U);
    EXPECT_TRUE(changes[1].tellsNothing());
    addPerson(store, {});
    while (watching.numbers(0).back() != 2) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_THAT(watching.reasons(0), IsEmpty());
}

TEST_F(WatchTest, LooksByTheClockWhileTheFolderIsGone) {
    Store store(folder());
    addPerson(store, {});
    Watching watching(store.file(), 0);
    EXPECT_THAT(watching.numbers(1), ElementsAre(1));
    fs::rename(folder(), root() / "elsewhere");
    const auto reasons = watching.reasons(1);
    ASSERT_EQ(reasons.size(), 1U);
    EXPECT_THAT(reasons[0], testing::HasSubstr(store.file().string()));
    fs::rename(root() / "elsewhere", folder());
    addPerson(store, {});
    EXPECT_EQ(watching.lastNumber(2), 2);
    addPerson(store, {});
    EXPECT_EQ(watching.lastNumber(3), 3);
    EXPECT_EQ(watching.reasons(1).size(), 1U);
}

TEST_F(WatchTest, WaitsUntilADamagedBookCanBeReadAgain) {
    Store store(folder());
    addPerson(store, {});
    Watching watching(store.file(), 0);
    EXPECT_THAT(watching.numbers(1), ElementsAre(1));
    sql(store.file(), "ALTER TABLE change RENAME TO hidden");
    EXPECT_EQ(watching.reasons(1).size(), 1U);
    sql(store.file(), "ALTER TABLE hidden RENAME TO change");
    addPerson(store, {});
    EXPECT_EQ(watching.lastNumber(2), 2);
}

TEST_F(WatchTest, LooksByTheClockWhileTheKernelHasNoWatches) {
    watchesAreUsedUp = true;
    Store store(folder());
    Watching watching(store.file(), 0);
    EXPECT_EQ(watching.reasons(1).size(), 1U);
    addPerson(store, {});
    addPerson(store, {});
    EXPECT_THAT(watching.numbers(2), ElementsAre(1, 2));
    watchesAreUsedUp = false;
    addPerson(store, {});
    EXPECT_THAT(watching.numbers(3), ElementsAre(1, 2, 3));
    EXPECT_EQ(watching.reasons(1).size(), 1U);
}

TEST_F(WatchTest, LooksByTheClockWhileTheKernelWatchesNoMoreFolders) {
    Store store(folder());
    foldersAreUsedUp = true;
    Watching watching(folder() / "AddressBook.db", 0);
    EXPECT_THAT(watching.reasons(1), ElementsAre(testing::HasSubstr("looked at once a second instead")));
    addPerson(store, {});
    EXPECT_THAT(watching.numbers(1), ElementsAre(1));
    foldersAreUsedUp = false;
    addPerson(store, {});
    EXPECT_THAT(watching.numbers(2), ElementsAre(1, 2));
}

TEST_F(WatchTest, NeedsADescriptor) {
    const fs::path file = folder() / "AddressBook.db";
    descriptorsAreUsedUp = true;
    try {
        const Watch watch(file, 0, {});
        ADD_FAILURE() << "watches";
    } catch (const StoreError& error) {
        EXPECT_EQ(error.reason(), StoreError::Reason::io);
        EXPECT_THAT(error.what(),
                    testing::AllOf(testing::HasSubstr(file.string() + " cannot be watched for changes"),
                                   testing::EndsWith("close some files and start this program again.")));
    }
    descriptorsAreUsedUp = false;
}

TEST_F(WatchTest, LooksByTheClockAtASnapshotOfWhichNobodyTells) {
    addPerson(*std::make_unique<Store>(folder()), {});
    kernelIsSilent = true;
    const support::ReadOnlyDisk disk(root());
    Watching watching(folder() / "AddressBook.db", 0);
    EXPECT_THAT(watching.numbers(1), ElementsAre(1));
    disk.writable([&] { addPerson(*std::make_unique<Store>(folder()), {}); });
    EXPECT_THAT(watching.numbers(2), ElementsAre(1, 2));
    EXPECT_THAT(watching.reasons(0), IsEmpty());
    kernelIsSilent = false;
}

TEST_F(WatchTest, OfABookThatIsNotThereEndsWhenItIsTold) {
    for (int i = 0; i < 20; ++i) {
        Watching(folder() / "AddressBook.db", 0);
    }
}

} // namespace
} // namespace addressbook::test
