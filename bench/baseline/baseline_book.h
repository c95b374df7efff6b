#pragma once

// The baseline of the benchmark: the same people in a hand-written SQLite database that is laid out for
// exactly the work that is measured: a key table for each search, one trigram index, no change log, and no
// types, labels or properties but those of the benchmark.

#include "bench/generate/people.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace bench {

// An open baseline database. All functions throw std::runtime_error when SQLite fails. Not thread-safe.
class BaselineBook {
  public:
    using Ids = std::vector<std::int64_t>;

    // Opens the database in [folder], and makes it when it is missing.
    explicit BaselineBook(const std::filesystem::path& folder);
    ~BaselineBook();
    BaselineBook(const BaselineBook&) = delete;
    BaselineBook& operator=(const BaselineBook&) = delete;

    // Adds the people with numbers [first] to [last] - 1 in one durable transaction. A person's id is the
    // number + 1.
    void add(std::size_t first, std::size_t last);
    // Adds the people that [next] gives until it gives none, in one durable transaction.
    void add(const std::function<std::optional<Person>()>& next);
    void addGroups(std::size_t people);

    // Returns the ids of the people found, ascending.
    Ids search(Search search);

    // Reads the names, the organization and all phones of all people; returns the number of bytes of text
    // read.
    std::size_t walk();

    // Returns the last name of the person with this unique id.
    std::string lastName(std::string_view uid);

    // Returns the names of the members of the group kEverybody, as KORU_GetListOfValues writes them: each name
    // ends in a blank, and carriage returns stand between them.
    std::string namesOfEverybody();

    // Sets a person's job title, durably.
    void changeJob(std::int64_t id, std::string_view job);

  private:
    class Run;
    class Keys;

    std::int64_t lastId();
    Run run(const char* sql);
    void execute(const char* sql);
    [[noreturn]] void fail() const;
    Ids idsOf(Run run, bool ordered);
    Ids prefixed(const char* sql, const char* label, std::string prefix);

    sqlite3* db_ = nullptr;
    std::map<const char*, sqlite3_stmt*> statements_;
};

} // namespace bench
