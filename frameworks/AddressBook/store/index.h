#pragma once

// The search indexes. The table `term` (the index of values) has a row for each value, ordered by folded text
// or number; the table `trigram` (the index of texts) has the trigrams of each property's folded text. Both
// are made from the records and can be rebuilt at any time. terms.h says what they hold.

#include "frameworks/AddressBook/store/sql/sql.h"
#include "frameworks/AddressBook/store/terms.h"

#include <cstdint>
#include <string_view>

namespace addressbook {

// Binds a label or key, in the form of TermWord, as the next parameter; it must outlive the statement.
void bindWord(sql::Statement& statement, std::string_view word);

// Merges some segments of a small text index, inside the caller's transaction. Each IndexWriter::flush() adds
// a segment, and every search looks into all of them. The work of one call is bounded; the next one continues
// it.
void tidyTexts(sql::Connection& connection);

// Writes both indexes inside the caller's transaction. Gathers additions and removals and writes them sorted,
// which is many times faster than one by one; call flush() before the transaction ends. Throws StoreError.
class IndexWriter {
  public:
    explicit IndexWriter(sql::Connection& connection) : connection_(connection) {}

    // Adds the entries of a property's encoded [value] (encodeValue). Throws DamagedRecord as well.
    void add(std::int64_t record, std::int64_t property, std::string_view value);
    // Removes the entries that add() wrote for this [value].
    void remove(std::int64_t record, std::int64_t property, std::string_view value);
    // Writes what was gathered.
    void flush();

  private:
    void flushTexts();

    sql::Connection& connection_;
    IndexEntries added_, removed_;
};

} // namespace addressbook
