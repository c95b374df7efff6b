// Opening: where the book is, how it is made, and everything that can be wrong with it.

#include "frameworks/AddressBook/store/file/paths.h"
#include "frameworks/AddressBook/store/schema.h"
#include "tests/store/builders.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <functional>

namespace addressbook::test {
namespace {

namespace fs = std::filesystem;
using Reason = StoreError::Reason;

class OpenTest : public Scratch {
  protected:
    fs::path file() const { return folder() / kFileName; }

    void write(std::string_view content) const {
        fs::create_directories(folder());
        std::ofstream(file(), std::ios::binary) << content;
    }
    std::string content() const {
        if (!fs::is_regular_file(file())) {
            return {};
        }
        std::ifstream in(file(), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    void run(const char* sql) const {
        sqlite3* database = nullptr;
        ASSERT_EQ(sqlite3_open(file().c_str(), &database), SQLITE_OK);
        ASSERT_EQ(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(database);
        sqlite3_close(database);
    }
    // Opening fails for this reason with a sentence that names the place, and leaves the file as it is.
    void expectFailure(Reason reason, Store::Access access = Store::Access::readWrite) const {
        const std::string before = content();
        try {
            const Store store(folder(), access, std::chrono::milliseconds(30));
            ADD_FAILURE() << "opened";
        } catch (const StoreError& error) {
            EXPECT_EQ(error.reason(), reason) << error.what();
            EXPECT_THAT(error.what(), testing::HasSubstr(folder().string()));
            EXPECT_THAT(error.what(),
                        testing::AllOf(testing::EndsWith("."), testing::Not(testing::HasSubstr("\n"))));
        }
        EXPECT_EQ(content(), before);
    }
};

TEST_F(OpenTest, TheEnvironmentSaysWhere) {
    setenv("HOME", "/h", 1);
    unsetenv("XDG_DATA_HOME");
    EXPECT_EQ(Store::defaultFolder(), "/h/.local/share/AddressBook");
    setenv("XDG_DATA_HOME", "/x", 1);
    EXPECT_EQ(Store::defaultFolder(), "/x/AddressBook");
    setenv("ADDRESSBOOK_HOME", "/a", 1);
    EXPECT_EQ(Store::defaultFolder(), "/a");
    setenv("ADDRESSBOOK_HOME", "", 1);
    EXPECT_EQ(Store::defaultFolder(), "/x/AddressBook");
}

TEST_F(OpenTest, MakesFolderAndFilesForTheirOwnerOnly) {
    const mode_t old = umask(0);
    {
        Store store(folder());
        addPerson(store, {});
        for (const auto& entry : fs::directory_iterator(folder())) {
            EXPECT_EQ(entry.status().permissions(), fs::perms::owner_read | fs::perms::owner_write) << entry;
        }
        EXPECT_EQ(fs::status(folder()).permissions(), fs::perms::owner_all);
    }
    umask(old);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder()), {}), 1) << "something is left beside the file";
}

TEST_F(OpenTest, RemovesWhatAKilledProcessLeftLongAgo) {
    const fs::path old = folder() / (std::string(".") + kFileName + "-AbCdEf");
    const fs::path recent = folder() / (std::string(".") + kFileName + "-GhIjKl");
    const fs::path other = folder() / "other";
    for (const fs::path& one : {old, recent, other}) {
        fs::create_directories(one);
        std::ofstream(one / kFileName) << "x";
    }
    for (const fs::path& one : {old, other}) {
        fs::last_write_time(one, fs::file_time_type::clock::now() - std::chrono::hours(25));
    }
    {
        const Store store(folder());
    }
    EXPECT_FALSE(fs::exists(old));
    EXPECT_TRUE(fs::exists(recent / kFileName));
    EXPECT_TRUE(fs::exists(other / kFileName));
}

TEST_F(OpenTest, MakesTheDefaultFolderWithItsParents) {
    setenv("XDG_DATA_HOME", (root() / "a/b").c_str(), 1);
    Store store(Store::defaultFolder());
    EXPECT_TRUE(fs::exists(root() / "a/b/AddressBook" / kFileName));
}

TEST_F(OpenTest, AMissingHomeIsAnErrorAndNoNewBook) {
    setenv("ADDRESSBOOK_HOME", folder().c_str(), 1);
    expectFailure(Reason::missingFolder);
    EXPECT_FALSE(fs::exists(folder()));
    unsetenv("ADDRESSBOOK_HOME");
    expectFailure(Reason::missingFolder, Store::Access::readOnly);
    EXPECT_THROW(Store(root() / "no/such"), StoreError);
    fs::create_directory(folder());
    expectFailure(Reason::missingFolder, Store::Access::readOnly);
    EXPECT_FALSE(fs::exists(file()));
}

TEST_F(OpenTest, AFileInPlaceOfTheFolder) {
    std::ofstream(folder()) << "x";
    expectFailure(Reason::missingFolder);
}

TEST_F(OpenTest, WhatIsNoDatabase) {
    write("This is a letter, not an address book. " + std::string(5000, '.'));
    expectFailure(Reason::notADatabase);
    write("short");
    expectFailure(Reason::notADatabase);
    write("");
    expectFailure(Reason::notADatabase);
    fs::remove(file());
    fs::create_directory(file());
    expectFailure(Reason::notADatabase);
}

TEST_F(OpenTest, TheDatabaseOfAnotherProgram) {
    fs::create_directory(folder());
    run("CREATE TABLE other(x)");
    expectFailure(Reason::notADatabase);
}

TEST_F(OpenTest, ANewerVersion) {
    {
        const Store store(folder());
    }
    run("PRAGMA user_version = 99");
    expectFailure(Reason::newerSchema);
    expectFailure(Reason::newerSchema, Store::Access::readOnly);
}

TEST_F(OpenTest, ADamagedSchema) {
    {
        const Store store(folder());
    }
    std::fstream out(file(), std::ios::binary | std::ios::in | std::ios::out);
    out.seekp(100);
    out << std::string(600, '\xEE');
    out.close();
    expectFailure(Reason::damaged);
}

TEST_F(OpenTest, AFileLockedByAnotherProgram) {
    {
        const Store store(folder());
    }
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(file().c_str(), &database), SQLITE_OK);
    sqlite3_exec(database, "PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE", nullptr, nullptr, nullptr);
    try {
        const Store store(folder(), Store::Access::readWrite, std::chrono::milliseconds(30));
        ADD_FAILURE() << "opened";
    } catch (const StoreError& error) {
        EXPECT_EQ(error.reason(), Reason::locked) << error.what();
    }
    sqlite3_close(database);
    EXPECT_NO_THROW(Store{folder()});
}

TEST_F(OpenTest, AReadOnlyStoreReadsAndDoesNotWrite) {
    std::string uid;
    {
        Store store(folder());
        uid = addPerson(store, {{"First", text("Ada")}});
    }
    Store store(folder(), Store::Access::readOnly);
    EXPECT_TRUE(store.readOnly());
    EXPECT_EQ(found(store, query("First", Comparison::containsSubString, text("Ada"))), std::vector{uid});
    EXPECT_THAT(store.check(), testing::IsEmpty());
    try {
        addPerson(store, {});
        ADD_FAILURE() << "saved";
    } catch (const StoreError& error) {
        EXPECT_EQ(error.reason(), Reason::readOnly);
    }
}

// Runs [part] in a process that has no rights beyond those of the files' modes; its answer is the process's
// success.
void expectWithoutRights(const std::function<bool()>& part) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) {
            _exit(2);
        }
        try {
            _exit(part() ? 0 : 1);
        } catch (const std::exception& error) {
            fprintf(stderr, "%s\n", error.what());
            _exit(3);
        }
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

bool opensForReadingOnly(const fs::path& folder) {
    Store store(folder);
    try {
        addPerson(store, {});
        return false;
    } catch (const StoreError& error) {
        return store.readOnly() && store.count(Kind::person) == 1 && error.reason() == Reason::readOnly;
    }
}

TEST_F(OpenTest, AFileOrFolderThatMayNotBeWrittenIsRead) {
    {
        Store store(folder());
        addPerson(store, {});
    }
    fs::permissions(root(), fs::perms(0755));
    fs::permissions(folder(), fs::perms(0555));
    fs::permissions(file(), fs::perms(0444));
    expectWithoutRights([&] { return opensForReadingOnly(folder()); });
    fs::permissions(folder(), fs::perms(0777));
    expectWithoutRights([&] { return opensForReadingOnly(folder()); });
    fs::permissions(file(), fs::perms(0600));
    fs::permissions(folder(), fs::perms(0700));
}

TEST_F(OpenTest, WhatMayNotBeReadOrMadeSaysSo) {
    {
        const Store store(folder());
    }
    fs::permissions(root(), fs::perms(0755));
    const auto reason = [](const fs::path& place) {
        try {
            Store store(place);
        } catch (const StoreError& error) {
            return std::optional(error.reason());
        }
        return std::optional<Reason>();
    };
    fs::permissions(folder(), fs::perms(0));
    if (geteuid() == 0) { // others' rights are none; the owner's would not stop us
        expectWithoutRights([&] { return reason(folder()) == Reason::readOnly; });
    }
    fs::permissions(folder(), fs::perms(0755));
    fs::permissions(file(), fs::perms(0));
    expectWithoutRights([&] { return reason(folder()) == Reason::io; });
    if (geteuid() == 0) {
        expectWithoutRights([&] { return reason(root() / "new") == Reason::readOnly; });
    }
}

class MigrationsTest : public OpenTest {};

TEST_F(MigrationsTest, RunFromAnyOlderVersionInOneTransaction) {
    int runs = 0;
    const Migration steps[] = {
        [&](sql::Connection& db) { db.execute("CREATE TABLE a(x)"), ++runs; },
        [&](sql::Connection& db) { db.execute("INSERT INTO a VALUES (1)"), ++runs; },
        [&](sql::Connection& db) { db.execute("ALTER TABLE a ADD COLUMN y"), ++runs; },
    };
    fs::create_directory(folder());
    sql::Connection connection(file(), file(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                               std::chrono::milliseconds(0));
    EXPECT_EQ(schemaVersion(connection), 0);
    migrate(connection, std::span(steps).first(1));
    EXPECT_EQ(schemaVersion(connection), 1);
    migrate(connection, steps);
    EXPECT_EQ(schemaVersion(connection), 3);
    EXPECT_EQ(runs, 3);
    migrate(connection, steps);
    EXPECT_EQ(runs, 3);
    auto rows = connection.prepare("SELECT x, y FROM a");
    EXPECT_TRUE(rows.step());
    EXPECT_THROW(migrate(connection, std::span(steps).first(2)), StoreError);
}

TEST_F(MigrationsTest, KeepTheChangeLog) {
    fs::create_directory(folder());
    {
        sql::Connection connection(file(), file(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                                   std::chrono::milliseconds(0));
        migrate(connection, migrations().first(1));
        connection.execute("INSERT INTO change(inserted, updated, deleted) VALUES (x'', x'', x'')");
    }
    Store store(folder());
    addPerson(store, {});
    const auto log = store.changesSince(0);
    ASSERT_EQ(log.size(), 2U);
    EXPECT_FALSE(log[0].own); // who made it is not known
    EXPECT_TRUE(log[1].own);
}

TEST_F(MigrationsTest, ThatFailLeaveTheOlderVersion) {
    const Migration steps[] = {
        [](sql::Connection& db) { db.execute("CREATE TABLE a(x)"); },
        [](sql::Connection& db) { db.execute("CREATE TABLE b(x)"); },
        [](sql::Connection& db) { db.execute("INSERT INTO nowhere VALUES (1)"); },
    };
    fs::create_directory(folder());
    sql::Connection connection(file(), file(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                               std::chrono::milliseconds(0));
    migrate(connection, std::span(steps).first(1));
    EXPECT_THROW(migrate(connection, steps), StoreError);
    EXPECT_EQ(schemaVersion(connection), 1);
    EXPECT_NO_THROW(connection.execute("CREATE TABLE b(x)"));
}

} // namespace
} // namespace addressbook::test
