// What is refused as a backup, or as a place for one, and what long copies tell.

#include "frameworks/AddressBook/store/file/backup.h"
#include "tests/store/behind_the_back.h"
#include "tests/store/contents.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <functional>

namespace addressbook::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
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
        EXPECT_EQ(contentsOf(Store(folder())), before_);
        for (const auto& entry : fs::directory_iterator(folder())) {
            EXPECT_THAT(entry.path().filename(), StartsWith(kFileName)) << "something is left";
        }
        return what;
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
                               testing::Not(HasSubstr("." + std::string(kFileName) + "-"))));
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
    EXPECT_THAT(refusal([&] { backUp(folder(), folder() / kFileName, Existing::replace); }),
                HasSubstr("this is the address book itself; name another file"));
    EXPECT_THAT(refusal([&] { backUp(folder(), root(), Existing::replace); }),
                HasSubstr("this is no ordinary file"));
    EXPECT_THAT(refusal([&] { backUp(folder(), backup_, Existing::refuse); }),
                HasSubstr("--force replaces it"));
    EXPECT_THAT(refusal([&] { backUp(folder(), root() / "no" / "backup", Existing::refuse); }),
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
        for (int i = 0; i < 6; ++i) {
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
        EXPECT_GE(told.size(), 2U);
        EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
        EXPECT_GE(told.front(), 0);
        EXPECT_LE(told.back(), 1);
        told.clear();
    };
    EXPECT_EQ(backUp(folder(), backup_, Existing::replace, tell).people, 8);
    expectTold();
    EXPECT_EQ(restore(folder(), backup_, tell).people, 8);
    expectTold();
    EXPECT_EQ(contentsOf(Store(folder())), before_);
}

TEST_F(LargeBackupTest, IsStopped) {
    struct Stopped {};
    const std::string older = bytesOf(backup_);
    for (const double at : {0.0, 0.3, 0.5}) { // while it copies, and while it looks at the copy
        const auto stop = [&](double part) {
            if (part >= at) {
                throw Stopped();
            }
        };
        refusal([&] { EXPECT_THROW(backUp(folder(), backup_, Existing::replace, stop), Stopped) << at; });
        EXPECT_TRUE(bytesOf(backup_) == older) << at;
        refusal([&] { EXPECT_THROW(restore(folder(), folder() / "../backup", stop), Stopped) << at; });
    }
}

} // namespace
} // namespace addressbook::test
