// Folders of every name and kind in which a book is, or is to be.

#include "frameworks/AddressBook/store/file/backup.h"
#include "frameworks/AddressBook/store/file/open_file.h"
#include "frameworks/AddressBook/store/file/repair.h"
#include "tests/store/behind_the_back.h"
#include "tests/store/contents.h"
#include "tests/store/scratch.h"
#include "tests/support/system_calls.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <climits>
#include <functional>

namespace addressbook::test {
namespace {

namespace fs = std::filesystem;
using Reason = StoreError::Reason;
using testing::HasSubstr;
using testing::IsEmpty;

class PlacesTest : public Scratch {
  protected:
    static void expectError(const std::function<void()>& work, Reason reason, const std::string& sentence) {
        try {
            work();
            ADD_FAILURE() << "no error: " << sentence;
        } catch (const StoreError& error) {
            EXPECT_EQ(error.reason(), reason) << error.what();
            EXPECT_THAT(error.what(), testing::AllOf(HasSubstr(sentence), testing::EndsWith(".")));
        }
    }
    static void addFirst(const fs::path& folder, const char* first) {
        Store store(folder);
        addPerson(store, {{"First", text(first)}});
    }
};

// SQLite takes a file's name as a URI, in which these have a meaning.
TEST_F(PlacesTest, NamesMayHaveWhatHasAMeaningInAUri) {
    for (const char* name : {"100%", "a%41", "what?mode=memory", "no. #1", "Zoë's & \"Ümläut\" \xFF"}) {
        SCOPED_TRACE(name);
        const fs::path place = root() / name;
        const fs::path backup = root() / (std::string(name) + ".backup");
        addFirst(place, "Ann");
        ASSERT_TRUE(fs::is_regular_file(place / kFileName));
        backUp(place, backup, Existing::refuse);
        const Contents before = contentsOf(Store(place, Store::Access::readOnly));
        addFirst(place, "Bea");
        restore(place, backup);
        EXPECT_EQ(contentsOf(Store(place)), before);
        execute(place / kFileName, "UPDATE record SET kind = 7");
        EXPECT_TRUE(repair(place).needed);
        EXPECT_EQ(contentsOf(Store(place)), before);
        EXPECT_FALSE(fs::exists(root() / "aA"));
    }
}

TEST_F(PlacesTest, APathThatBecomesTooLongIsToldAsSuch) {
    fs::path place = root();
    while (place.string().size() + 210 < PATH_MAX) {
        place /= std::string(200, 'd');
    }
    place /= std::string(static_cast<std::size_t>(PATH_MAX) - place.string().size() - 5, 'd');
    fs::create_directories(place);
    expectError([&] { Store{place}; }, Reason::io, "Could not look for the address book " + place.string());
}

TEST_F(PlacesTest, WhereABookCouldBeMadeIsKnownBefore) {
    requirePlaceForBook(folder());
    EXPECT_FALSE(fs::exists(folder())) << "asking makes nothing";
    setenv("XDG_DATA_HOME", (root() / "a/b").c_str(), 1);
    requirePlaceForBook(Store::defaultFolder());
    EXPECT_FALSE(fs::exists(root() / "a"));
    expectError([&] { requirePlaceForBook(root() / "no" / "such"); }, Reason::missingFolder,
                "does not exist: make it");
    {
        const support::ReadOnlyDisk disk(root());
        for (const fs::path& place : {folder(), Store::defaultFolder()}) {
            expectError([&] { requirePlaceForBook(place); }, Reason::readOnly,
                        "Could not write in the folder " + root().string() +
                            " (Read-only file system): make it writable, or choose another.");
        }
    }
    fs::create_directory(folder());
    requirePlaceForBook(folder());
    std::ofstream(folder() / (std::string(kFileName) + "-wal")) << "saves";
    expectError([&] { requirePlaceForBook(folder()); }, Reason::notADatabase, "is gone, but not");
}

TEST_F(PlacesTest, WithoutAHomeItIsBelowTheRoot) {
    for (const char* name : {"HOME", "XDG_DATA_HOME", "ADDRESSBOOK_HOME"}) {
        unsetenv(name);
    }
    EXPECT_EQ(Store::defaultFolder(), "/.local/share/AddressBook");
}

TEST_F(PlacesTest, TheReasonTellsWhyAFolderCannotBeMade) {
    const std::pair<int, Reason> rows[] = {{EACCES, Reason::readOnly}, {EPERM, Reason::readOnly},
                                           {EROFS, Reason::readOnly},  {ENOSPC, Reason::full},
                                           {EDQUOT, Reason::full},     {EIO, Reason::io}};
    for (const auto& [error, reason] : rows) {
        support::failAfterCalls(0, error);
        expectError([&] { Store{folder()}; }, reason, "Could not make the address book's folder");
        EXPECT_TRUE(support::stopFailing());
        EXPECT_FALSE(fs::exists(folder()));
    }
    // Another process may have made it at this moment.
    support::failAfterCalls(0, EEXIST);
    EXPECT_THROW(Store{folder()}, StoreError) << "it is not there";
    EXPECT_TRUE(support::stopFailing());
}

} // namespace
} // namespace addressbook::test
