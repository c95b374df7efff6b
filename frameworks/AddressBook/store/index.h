#pragma once

// The search indexes. The table `term` (the index of values) has a row for each value, ordered by folded text
// or number; the table `trigram` (the index of texts) has the trigrams of each property's folded text. Both
// are made from the records and can be rebuilt at any time. terms.h says what they hold.

#include "frameworks/AddressBook/store/sql/sql.h"
#include "frameworks/AddressBook/store/terms.h"

#include <cstdint>
#include <set>
#include <string_view>

namespace addressbook {

// Binds a label or key, in the form of TermWord, as the next parameter; it must outlive the statement.
void bindWord(sql::Statement& statement, std::string_view word);

// Merges some segments of a small text index, inside the caller's transaction. Each IndexWriter::flush() adds
// a segment, and every search looks into all of them. The work of one call is bounded; the next one continues
// it.
void tidyTexts(sql::Connection& connection);

// The ids of the properties whose texts the index of values also has by their endings (endingsOf), as their user asked
// for it: property.endings. Nobody keeps them beyond a transaction, as another process may change them.
using EndingProperties = std::set<std::int64_t>;
EndingProperties endingProperties(sql::Connection& connection);
bool hasEndings(sql::Connection& connection, std::int64_t property);

// Writes both indexes inside the caller's transaction. Gathers additions and removals and writes them sorted,
// which is many times faster than one by one; call flush() before the transaction ends. Throws StoreError.
class IndexWriter {
  public:
    // [endings] are the endingProperties() of the open transaction.
    IndexWriter(sql::Connection& connection, EndingProperties endings)
        : connection_(connection), endings_(std::move(endings)) {}

    // Adds the entries of a property's encoded [value] (encodeValue). Throws DamagedRecord as well.
    void add(std::int64_t record, std::int64_t property, std::string_view value);
    // Removes the entries that add() wrote for this [value].
    void remove(std::int64_t record, std::int64_t property, std::string_view value);
    // Writes what was gathered.
    void flush();

    // Begins to keep the endings of a property's texts; returns false when they were kept already. The caller then
    // calls addEndings() for each record's value that the indexes have.
    bool beginEndings(std::int64_t property);
    void addEndings(std::int64_t record, std::int64_t property, std::string_view value);
    // Keeps them no more, and removes them. Returns false when they were not kept.
    bool endEndings(std::int64_t property);

  private:
    void flushTexts();

    sql::Connection& connection_;
    EndingProperties endings_;
    IndexEntries added_, removed_;
};

} // namespace addressbook
