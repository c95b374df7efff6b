#pragma once

// Searches: a condition on one property, or several joined. `matches` is the one definition of every
// comparison; the store answers the same from its indexes and is tested against it.

#include "value.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace addressbook {

// Numbered as the framework numbers them.
enum class Comparison : int {
    equal = 0,
    notEqual,
    lessThan,
    lessThanOrEqual,
    greaterThan,
    greaterThanOrEqual,
    equalCaseInsensitive,
    containsSubString,
    containsSubStringCaseInsensitive,
    prefixMatch,
    prefixMatchCaseInsensitive,
    bitsInBitFieldMatch,
    doesNotContainSubString,
    doesNotContainSubStringCaseInsensitive,
    notEqualCaseInsensitive,
    suffixMatch,
    suffixMatchCaseInsensitive,
    withinIntervalAroundToday,
    withinIntervalAroundTodayYearless,
    notWithinIntervalAroundToday,
    notWithinIntervalAroundTodayYearless,
    withinIntervalFromToday,
    withinIntervalFromTodayYearless,
    notWithinIntervalFromToday,
    notWithinIntervalFromTodayYearless
};
inline constexpr int kComparisonCount = 25;

// One condition; it finds only records of its own kind.
struct Condition {
    Kind kind = Kind::person;
    std::string property;
    std::optional<std::string> label; // only entries with this label
    std::optional<std::string> key;   // only this field of dictionary values
    Value value;                      // no value: equal = the property is set, notEqual = it is not
    Comparison comparison = Comparison::equal;
};

// A condition, or children joined by "and" or "or".
struct Query {
    enum class Join : int { all = 0, any = 1 };
    struct Compound {
        Join join = Join::all;
        std::vector<Query> children;
    };
    std::variant<Condition, Compound> node;
};

// What a query looks at: a record in memory or in the database.
class RecordView {
  public:
    virtual ~RecordView() = default;
    virtual Kind kind() const = 0;
    // The value of [property], no value when it is not set. The reference lives until the next call.
    virtual const Value& value(std::string_view property) const = 0;
};

// Whether the record meets the query. [now] is the moment that "today" means for the interval comparisons;
// days are those of the process's time zone.
bool matches(const Query& query, const RecordView& record, Date now);

} // namespace addressbook
