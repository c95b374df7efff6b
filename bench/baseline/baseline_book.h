#pragma once

// The measure of the benchmark: the same people in a database of a hand-written program, straight on SQLite.
// It knows nothing but the work that is measured and is laid out for exactly that: a key table for each
// search, one trigram index, nothing kept for other programs, no types, labels or properties but these.

#include "bench/generate/people.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace bench {

class BaselineBook {
  public:
    using Ids = std::vector<std::int64_t>;

    // Opens the database in [folder], and makes it when it is missing. All functions throw std::runtime_error
    // when SQLite fails. One thread.
    explicit BaselineBook(const std::filesystem::path& folder);
    ~BaselineBook();
    BaselineBook(const BaselineBook&) = delete;
    BaselineBook& operator=(const BaselineBook&) = delete;

    // Adds the people at [first] to [last] - 1 in one durable transaction; ids are places + 1.
    void add(std::size_t first, std::size_t last);
    void addGroups(std::size_t people);

    // The ids of those found, ascending.
    Ids search(Search search);

    // Reads the names, the organization and all phones of everybody; answers the bytes of text that it saw.
    std::size_t walk();

    // The last name of the person with this unique id.
    std::string lastName(std::string_view uid);

    // Sets a person's job and makes that durable.
    void changeJob(std::int64_t id, std::string_view job);

  private:
    class Run;
    class Keys;

    Run run(const char* sql);
    void execute(const char* sql);
    [[noreturn]] void fail() const;
    Ids idsOf(Run run, bool ordered);
    Ids prefixed(const char* sql, const char* label, std::string prefix);

    sqlite3* db_ = nullptr;
    std::map<const char*, sqlite3_stmt*> statements_;
};

} // namespace bench
