// What is refused as a backup, or as a place for one, and what long copies tell.

#include "frameworks/AddressBook/store/file/backup.h"
#include "tests/store/behind_the_back.h"
#include "tests/store/contents.h"
#include "tests/store/scratch.h"
#include "tests/store/stopping.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <functional>

namespace addressbook::test {
namespace {

namespace fs = std::filesystem;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class BackupTest : public Scratch {
  protected:
    BackupTest() {
        addPerson(*std::make_unique<Store>(folder()), {{"First", text("Ann")}});
        backUp(folder(), backup_, Existing::refuse);
        addPerson(*std::make_unique<Store>(folder()), {{"First", text("Bea")}});
        before_ = contentsOf(Store(folder()));
    }
    // Returns the error of what changes nothing.
    std::string refusal(const std::function<void()>& work) const {
        std::string what = "no error";
        try {
            work();
        } catch (const BackupError& error) {
            what = error.what();
        }
        expectUnchanged();
        return what;
    }
    void expectUnchanged() const {
        EXPECT_EQ(contentsOf(Store(folder())), before_);
        EXPECT_THAT(filesIn(folder()), ElementsAre(kFileName)) << "something is left, or left open";
        EXPECT_THAT(filesIn(root()), Each(Not(StartsWith(".")))) << "something is left";
    }
    void damageACard(const fs::path& file) const {
        execute(file, "UPDATE record SET card = x'00' || substr(card, 2) WHERE id = 1");
    }

    const fs::path backup_ = root() / "backup";
    Contents before_;
};

TEST_F(BackupTest, WhatIsNoneIsNotRestored) {
    const fs::path other = root() / "other", newer = root() / "newer";
    const std::string named = other.string() + ": ";
    EXPECT_EQ(refusal([&] { restore(folder(), other); }), named + "there is no such file");
    std::ofstream(other).flush();
    EXPECT_EQ(refusal([&] { restore(folder(), other); }), named + "this is no backup of an address book");
    fs::remove(other);
    fs::create_directory(other);
    EXPECT_EQ(refusal([&] { restore(folder(), other); }), named + "this is no backup of an address book");
    fs::remove(other);
    std::ofstream(other) << std::string(5000, 'x');
    EXPECT_THAT(refusal([&] { restore(folder(), other); }),
                HasSubstr(other.string() + " is no address book"));
    EXPECT_THAT(refusal([&] { restore(folder(), folder() / kFileName); }),
                HasSubstr("this is the address book itself"));
    fs::copy_file(backup_, newer);
    execute(newer, "PRAGMA user_version = 99");
    EXPECT_EQ(refusal([&] { restore(folder(), newer); }),
              newer.string() + ": it was written by a newer version; install that to restore it");
}

// The error names the backup, not the copy that was looked at.
TEST_F(BackupTest, ADamagedOneIsNotRestored) {
    damageACard(backup_);
    EXPECT_THAT(refusal([&] { restore(folder(), backup_); }),
                testing::AllOf(StartsWith(backup_.string() +
                                          ": it is damaged and was not copied: restore another "
                                          "backup (The address book " +
                                          backup_.string() + " is damaged (record 1: its checksum is wrong)"),
                               Not(HasSubstr("." + std::string(kFileName) + "-"))));
    execute(backup_, "PRAGMA writable_schema = ON; DELETE FROM sqlite_schema WHERE tbl_name = 'meta'");
    EXPECT_THAT(refusal([&] { restore(folder(), backup_); }),
                HasSubstr("restore another backup (The address book " + backup_.string() +
                          " is damaged (no such table"));
}

TEST_F(BackupTest, ADamagedBookIsNotBackedUp) {
    damageACard(folder() / kFileName);
    const std::string older = bytesOf(backup_);
    try {
        backUp(folder(), backup_, Existing::replace);
        ADD_FAILURE() << "backed up";
    } catch (const BackupError& error) {
        EXPECT_THAT(error.what(),
                    HasSubstr("it is damaged and was not copied: addressbook repair rescues what can be "
                              "read (The address book " +
                              (folder() / kFileName).string()));
    }
    EXPECT_TRUE(bytesOf(backup_) == older);
}

TEST_F(BackupTest, PlacesThatAreRefused) {
    const auto refusalOf = [this](const fs::path& place, Existing existing) {
        return refusal([&] {
            backUp(folder(), place, existing, [&](double) { ADD_FAILURE() << place << " is refused late"; });
        });
    };
    EXPECT_THAT(refusalOf(folder() / kFileName, Existing::replace),
                HasSubstr("this is the address book itself; name another file"));
    EXPECT_THAT(refusalOf(root(), Existing::replace), HasSubstr("this is no ordinary file"));
    EXPECT_THAT(refusalOf(backup_, Existing::refuse), HasSubstr("--force replaces it"));
    EXPECT_THAT(refusalOf(root() / "no" / "backup", Existing::refuse),
                HasSubstr("its folder does not exist"));
}

// While the copy is made, another program may take the name that was free.
TEST_F(BackupTest, AFileThatComesMeanwhileIsNotReplaced) {
    const fs::path file = root() / "late";
    const auto make = [&](double) { std::ofstream(file) << "precious"; };
    EXPECT_EQ(refusal([&] { backUp(folder(), file, Existing::refuse, make); }),
              file.string() + ": there is such a file; --force replaces it");
    EXPECT_EQ(bytesOf(file), "precious");
}

class LargeBackupTest : public BackupTest {
  protected:
    LargeBackupTest() { // of more pages than are copied at once
        Store store(folder());
        for (int i = 0; i < 9; ++i) {
            saveRecords(store,
                        {inserted(newUid(Kind::person), {{property::kImage.data(), Bytes(1'000'000, 'p')}})});
        }
        before_ = contentsOf(store);
    }
};

TEST_F(LargeBackupTest, TellsItsProgress) {
    std::vector<double> told;
    const auto tell = [&](double part) { told.push_back(part); };
    const auto expectTold = [&] {
        EXPECT_GE(told.size(), 3U);
        EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
        EXPECT_GE(told.front(), 0);
        EXPECT_LE(told.back(), 1);
        told.clear();
    };
    EXPECT_EQ(backUp(folder(), backup_, Existing::replace, tell).people, 11);
    expectTold();
    EXPECT_EQ(restore(folder(), backup_, tell).people, 11);
    expectTold();
    EXPECT_EQ(contentsOf(Store(folder())), before_);
}

TEST_F(LargeBackupTest, IsStopped) {
    const std::string older = bytesOf(backup_);
    EXPECT_GT(stopEverywhere(
                  [&](const Progress& progress) { backUp(folder(), backup_, Existing::replace, progress); },
                  [&] {
                      expectUnchanged();
                      EXPECT_TRUE(bytesOf(backup_) == older);
                  }),
              2);
    addPerson(*std::make_unique<Store>(folder()), {{"First", text("Cid")}});
    before_ = contentsOf(Store(folder()));
    EXPECT_GT(stopEverywhere([&](const Progress& progress) { restore(folder(), backup_, progress); },
                             [&] { expectUnchanged(); }),
              2);
}

} // namespace
} // namespace addressbook::test
