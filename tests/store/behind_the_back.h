#pragma once

// Changes of a book's database that the store knows nothing of.

#include "frameworks/AddressBook/store/file/paths.h"
#include "frameworks/AddressBook/store/sql/sql.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>

namespace addressbook::test {

// Runs SQL on the book in this file.
inline void execute(const std::filesystem::path& file, const std::string& sql) {
    sql::Connection(file, databaseUri(file), SQLITE_OPEN_READWRITE | SQLITE_OPEN_URI,
                    std::chrono::seconds(10))
        .execute(sql);
}

// Runs SQL that an index of a table does not notice, as if one of its pages were an older one. An index that a
// declaration UNIQUE made goes with that declaration; [rule] is one that does not hold meanwhile.
inline void executeUnnoticed(const std::filesystem::path& file, const std::string& table,
                             const std::string& index, const std::string& sql,
                             const std::string& rule = " UNIQUE") {
    execute(file, "PRAGMA writable_schema = ON;"
                  "CREATE TABLE kept AS SELECT * FROM sqlite_schema WHERE name IN ('" +
                      table + "', '" + index +
                      "');"
                      "DELETE FROM sqlite_schema WHERE name = '" +
                      index +
                      "';"
                      "UPDATE sqlite_schema SET sql = replace(sql, '" +
                      rule + "', '') WHERE name = '" + table + "'");
    execute(file, sql);
    execute(file, "PRAGMA writable_schema = ON;"
                  "DELETE FROM sqlite_schema WHERE name = '" +
                      table +
                      "';"
                      "INSERT INTO sqlite_schema SELECT * FROM kept ORDER BY type DESC;"
                      "DROP TABLE kept");
}

// Leaves the book in a folder in the middle of a change that a journal is to undo, as a killed process does.
inline void interruptSave(const std::filesystem::path& folder) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        sqlite3* database = nullptr;
        sqlite3_open((folder / kFileName).c_str(), &database);
        sqlite3_exec(database,
                     "PRAGMA journal_mode = DELETE; PRAGMA cache_size = 1; BEGIN; DELETE FROM record;"
                     "UPDATE sqlite_sequence SET seq = seq + 1 WHERE name = 'change';"
                     "CREATE TABLE filler(x); INSERT INTO filler VALUES (zeroblob(1000000))",
                     nullptr, nullptr, nullptr);
        kill(getpid(), SIGKILL);
    }
    waitpid(child, nullptr, 0);
    ASSERT_GT(std::filesystem::file_size((folder / kFileName).string() + "-journal"), 0U);
}

// Returns bytes as an SQL literal.
inline std::string literal(std::string_view bytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string sql = "x'";
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        sql += {kDigits[byte >> 4], kDigits[byte & 0xF]};
    }
    return sql + "'";
}

} // namespace addressbook::test
