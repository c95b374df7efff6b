// Sidecars that do not belong to the book, or have no book: they are refused and kept, and nothing of them
// gets into the book.

#include "frameworks/AddressBook/store/file/backup.h"
#include "frameworks/AddressBook/store/file/paths.h"
#include "frameworks/AddressBook/store/file/repair.h"
#include "frameworks/AddressBook/store/file/replace_file.h"
#include "tests/store/behind_the_back.h"
#include "tests/store/contents.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>

namespace addressbook::test {
namespace {

namespace fs = std::filesystem;
using Reason = StoreError::Reason;
using testing::HasSubstr;

class SidecarsTest : public Scratch {
  protected:
    fs::path beside(const char* suffix) const { return (folder() / kFileName).string() + suffix; }

    // Makes a book with one person; returns its contents.
    static Contents makeBook(const fs::path& folder, const char* first) {
        Store store(folder);
        addPerson(store, {{"First", text(first)}});
        return contentsOf(store);
    }
    void expectRefused(Reason reason, const char* sentence,
                       Store::Access access = Store::Access::readWrite) const {
        const bool there = fs::exists(beside(""));
        const std::string before = bytesOf(beside(""));
        try {
            const Store store(folder(), access);
            ADD_FAILURE() << "opened";
        } catch (const StoreError& error) {
            EXPECT_EQ(error.reason(), reason) << error.what();
            EXPECT_THAT(error.what(), testing::AllOf(HasSubstr(sentence), HasSubstr(folder().string()),
                                                     testing::EndsWith(".")));
        }
        EXPECT_EQ(fs::exists(beside("")), there);
        EXPECT_TRUE(bytesOf(beside("")) == before);
    }
    // The files in the book's folder whose bytes are these.
    std::vector<std::string> named(const std::string& bytes) const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder())) {
            if (bytesOf(entry) == bytes) {
                names.push_back(entry.path().filename());
            }
        }
        return names;
    }
};

TEST_F(SidecarsTest, ALogWhoseBookIsGoneIsNoNewBook) {
    const fs::path backup = root() / "backup";
    makeBook(folder(), "Ann");
    backUp(folder(), backup, Existing::refuse);
    const Contents backedUp = contentsOf(Store(folder()));
    {
        Store store(folder());
        addPerson(store, {});
        fs::copy_file(beside("-wal"), root() / "log");
    }
    const std::string book = bytesOf(beside(""));
    fs::rename(beside(""), root() / "away");
    fs::rename(root() / "log", beside("-wal"));
    const std::string log = bytesOf(beside("-wal"));
    expectRefused(Reason::notADatabase, "is gone, but not AddressBook.db-wal beside it: put the file back");
    expectRefused(Reason::missingFolder, "There is no address book", Store::Access::readOnly);
    EXPECT_TRUE(bytesOf(beside("-wal")) == log);
    // It stays beside a book that is restored there, too.
    const fs::path kept = restore(folder(), backup).kept;
    EXPECT_THAT(named(log), testing::ElementsAre(kept.filename().string() + "-wal"));
    EXPECT_EQ(contentsOf(Store(folder())), backedUp);
    // One without anything in it is none.
    fs::remove(beside(""));
    std::ofstream(beside("-wal")).flush();
    EXPECT_EQ(Store(folder()).count(Kind::person), 0);
}

// The index of a log is made again by the first that opens a book, but its file may be that of another book.
TEST_F(SidecarsTest, ALogAndItsIndexOfAnotherBookAreRefused) {
    const Contents before = makeBook(folder(), "Ann");
    {
        Store other(root() / "other");
        addPerson(other, {{"First", text("Eve")}});
        for (const char* suffix : {"-wal", "-shm"}) {
            fs::copy_file(other.file().string() + suffix, beside(suffix));
        }
    }
    for (const Store::Access access : {Store::Access::readOnly, Store::Access::readWrite}) {
        expectRefused(Reason::damaged, "the log beside it, AddressBook.db-wal, belongs to another file",
                      access);
    }
    EXPECT_THROW(backUp(folder(), root() / "backup", Existing::refuse), std::exception);
    repair(folder());
    EXPECT_EQ(contentsOf(Store(folder())), before);
}

TEST_F(SidecarsTest, AJournalOfItsOwnIsUndone) {
    const Contents before = makeBook(folder(), "Ann");
    for (const Store::Access access : {Store::Access::readOnly, Store::Access::readWrite}) {
        interruptSave(folder());
        EXPECT_EQ(contentsOf(Store(folder(), access)), before);
        EXPECT_FALSE(fs::exists(beside("-journal")));
    }
}

TEST_F(SidecarsTest, AJournalOfAnotherBookIsRefused) {
    const Contents before = makeBook(folder(), "Ann");
    makeBook(root() / "other", "Eve");
    interruptSave(root() / "other");
    fs::copy_file(root() / "other" / "AddressBook.db-journal", beside("-journal"));
    for (const Store::Access access : {Store::Access::readOnly, Store::Access::readWrite}) {
        expectRefused(Reason::damaged,
                      "the journal beside it, AddressBook.db-journal, belongs to another file", access);
    }
    repair(folder());
    EXPECT_EQ(contentsOf(Store(folder())), before);
}

TEST_F(SidecarsTest, AJournalOfAnOlderStateIsRefused) {
    makeBook(folder(), "Ann");
    interruptSave(folder());
    fs::copy_file(beside("-journal"), root() / "journal");
    for (const char* first : {"Bea", "Cid", "Dan"}) {
        makeBook(folder(), first);
    }
    const Contents before = contentsOf(Store(folder()));
    fs::copy_file(root() / "journal", beside("-journal"));
    expectRefused(Reason::damaged, "to an older state");
    fs::remove(beside("-journal"));
    EXPECT_EQ(contentsOf(Store(folder())), before);
}

TEST_F(SidecarsTest, AFileThatIsNoJournalDoesNoHarm) {
    const Contents before = makeBook(folder(), "Ann");
    std::ofstream(beside("-journal")) << std::string(5000, 'x');
    EXPECT_EQ(contentsOf(Store(folder())), before);
}

// What a restore leaves that is killed between its two steps: the new book, and the log of the old one.
TEST_F(SidecarsTest, ALogOfTheBookThatWasReplacedIsRemoved) {
    const fs::path backup = root() / "backup";
    makeBook(folder(), "Ann");
    backUp(folder(), backup, Existing::refuse);
    const Contents backedUp = contentsOf(Store(folder()));
    {
        Store store(folder());
        addPerson(store, {});
        for (const char* suffix : {"-wal", "-shm"}) {
            fs::copy_file(beside(suffix), root() / suffix);
        }
        restore(folder(), backup);
    }
    const auto leave = [&] {
        for (const char* suffix : {"-wal", "-shm"}) {
            fs::copy_file(root() / suffix, beside(suffix), fs::copy_options::overwrite_existing);
        }
    };
    for (const Store::Access access : {Store::Access::readOnly, Store::Access::readWrite}) {
        leave();
        const Store store(folder(), access);
        EXPECT_EQ(contentsOf(store), backedUp);
        EXPECT_TRUE(named(bytesOf(root() / "-wal")).size() == 1); // beside the book that was kept
    }
    // Others that open it, or read it already, do no harm to each other.
    leave();
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
            Store store(folder());
            addPerson(store, {{"First", text("Eve")}});
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const Store store(folder());
    EXPECT_EQ(store.count(Kind::person), 9);
    EXPECT_THAT(store.check(), testing::IsEmpty());
}

// The same with a journal, which was not the old book's either.
TEST_F(SidecarsTest, AJournalThatTheReplacedBookHadIsRemoved) {
    const fs::path backup = root() / "backup";
    makeBook(folder(), "Ann");
    backUp(folder(), backup, Existing::refuse);
    const Contents backedUp = contentsOf(Store(folder()));
    makeBook(root() / "other", "Eve");
    interruptSave(root() / "other");
    const fs::path journal = root() / "other" / "AddressBook.db-journal";
    for (const Store::Access access : {Store::Access::readOnly, Store::Access::readWrite}) {
        makeBook(folder(), "Bea");
        fs::copy_file(journal, beside("-journal"));
        const fs::path kept = restore(folder(), backup).kept;
        EXPECT_TRUE(bytesOf(kept.string() + "-journal") == bytesOf(journal));
        fs::copy_file(journal, beside("-journal")); // as though it had been killed before it removed it
        EXPECT_EQ(contentsOf(Store(folder(), access)), backedUp);
        EXPECT_FALSE(fs::exists(beside("-journal")));
    }
}

// A link could lead a save into any file of the user's.
TEST_F(SidecarsTest, SymbolicLinksInPlaceOfFilesAreRefused) {
    const Contents before = makeBook(folder(), "Ann");
    fs::create_directory(root() / "elsewhere");
    const auto refused = [&](const std::string& name) {
        for (const Store::Access access : {Store::Access::readOnly, Store::Access::readWrite}) {
            try {
                const Store store(folder(), access);
                ADD_FAILURE() << name;
            } catch (const StoreError& error) {
                EXPECT_EQ(error.reason(), Reason::notADatabase);
                EXPECT_THAT(error.what(),
                            HasSubstr("The file " + (folder() / name).string() +
                                      " is a symbolic link, which address books do not follow: put the "
                                      "file itself there, or make the folder a link."));
            }
        }
        EXPECT_THROW(restore(folder(), root() / "backup"), StoreError);
        EXPECT_THROW(repair(folder()), StoreError);
        EXPECT_TRUE(fs::is_symlink(folder() / name));
    };
    backUp(folder(), root() / "backup", Existing::refuse);
    for (const char* suffix : {"-wal", "-shm", "-journal"}) {
        const fs::path target = root() / "elsewhere" / "victim";
        std::ofstream(target) << "precious";
        fs::remove(beside(suffix));
        fs::create_symlink(target, beside(suffix));
        refused(beside(suffix).filename());
        EXPECT_EQ(bytesOf(target), "precious") << suffix;
        fs::remove(beside(suffix));
    }
    fs::rename(beside(""), root() / "elsewhere" / kFileName);
    for (const char* target : {"elsewhere/AddressBook.db", "nowhere"}) {
        fs::create_symlink(root() / target, beside(""));
        refused(kFileName);
        fs::remove(beside(""));
    }
    EXPECT_FALSE(fs::exists(root() / "nowhere"));
    // The folder may be one.
    fs::create_directory_symlink(root() / "elsewhere", root() / "link");
    EXPECT_EQ(contentsOf(Store(root() / "link")), before);
    restore(root() / "link", root() / "backup");
    EXPECT_EQ(contentsOf(Store(root() / "elsewhere")), before);
    // So is no file that a backup is written to; what it leads to stays.
    std::ofstream(root() / "victim") << "precious";
    fs::create_symlink(root() / "victim", root() / "copy");
    EXPECT_THROW(backUp(root() / "link", root() / "copy", Existing::replace), BackupError);
    EXPECT_EQ(bytesOf(root() / "victim"), "precious");
}

// Closing a database takes its log over, but says nothing when it cannot.
TEST_F(SidecarsTest, ALogOfWhatReplacesABookIsTakenOver) {
    makeBook(folder(), "Ann");
    const fs::path made = root() / "made";
    Contents newer;
    {
        Store store(root() / "other");
        addPerson(store, {{"First", text("Eve")}});
        newer = contentsOf(store);
        fs::copy(root() / "other", made);
    }
    const fs::path kept = LockedBook(folder()).replaceWith(made / kFileName);
    EXPECT_EQ(contentsOf(Store(folder())), newer);
    EXPECT_TRUE(fs::exists(kept));
}

} // namespace
} // namespace addressbook::test
