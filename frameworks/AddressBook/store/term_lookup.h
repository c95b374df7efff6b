#pragma once

// Looking a condition up in the index of values, the table `term`: which rows are asked for, and what each
// says of its record.

#include "frameworks/AddressBook/store/access_path.h"
#include "frameworks/AddressBook/values/comparison.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace addressbook {

// The records that a look-up found, in no order, and perhaps more than once.
struct TermRows {
    std::vector<RowId> hits;       // they meet the condition
    std::vector<RowId> candidates; // the index does not tell: read the record
};

class TermLookup {
  public:
    // All three must live as long as this does. [lookup] is what chooseAccessPath() answered for the
    // condition.
    TermLookup(sql::Connection& connection, const Matcher& matcher, const IndexLookup& lookup);

    // Returns what the index has; nothing when it would have to look at more than [mostRows] rows. Adds to
    // [indexRows] each row that it looked at. Throws StoreError.
    std::optional<TermRows> run(std::int64_t mostRows, std::int64_t& indexRows) const;

  private:
    enum class Verdict { miss, hit, candidate };
    std::string sql() const;
    void bind(sql::Statement& statement, const Span& span) const;
    Verdict judgeCovered(TermType type) const;
    Verdict judge(const sql::Statement& row, TermType type) const;

    sql::Connection& connection_;
    const Matcher& matcher_;
    const Condition& condition_;
    const IndexLookup& lookup_;
    const bool comparesExact_; // the text is looked up in the form that counts case
    const bool covered_; // what is found is then what is wanted, text for text: nothing else need be read
};

} // namespace addressbook
