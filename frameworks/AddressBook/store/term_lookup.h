#pragma once

// Looking a condition up in the index of values, the table `term`: the SQL for each access path, and what
// each row found says about its record.

#include "frameworks/AddressBook/store/access_path.h"
#include "frameworks/AddressBook/values/comparison.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook {

// The records that a look-up found, in no order; a record may be there several times and in both lists.
struct TermRows {
    std::vector<RowId> hits;       // meet the condition
    std::vector<RowId> candidates; // may meet it: read the record to find out
};

// The look-up of one condition.
class TermLookup {
  public:
    // [lookup] is the result of chooseAccessPath() for the condition of [matcher]. All three arguments must
    // outlive this object.
    TermLookup(sql::Connection& connection, const Matcher& matcher, const IndexLookup& lookup);

    // Returns the records that the index finds; nothing when that would take more than [mostRows] rows. Adds
    // the number of rows that were looked at to [indexRows]. Throws StoreError.
    std::optional<TermRows> run(std::int64_t mostRows, std::int64_t& indexRows) const;

  private:
    enum class Verdict { miss, hit, candidate };
    std::string sql() const;
    void bind(sql::Statement& statement, const Span& span) const;
    Verdict judgeCovered(TermType type) const;
    bool meetsText(std::string_view exact, std::string_view folded) const;
    Verdict judge(const sql::Statement& row, TermType type) const;

    sql::Connection& connection_;
    const Matcher& matcher_;
    const Condition& condition_;
    const IndexLookup& lookup_;
    const bool comparesExact_; // the wanted text is compared with case
    const bool covered_;       // the SQL compares whole texts, so that rows found need no further comparison
};

} // namespace addressbook
