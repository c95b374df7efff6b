#pragma once

// Searches: a condition on one property, or several joined. matches() is the one definition of every
// comparison; the store finds exactly the records for which it is true, by way of its indexes, and is tested
// against it.
//
// What a condition looks at. Of a single value: that value. Of a multi-value: every entry, or with a label
// those with exactly this label. Of a dictionary, single or in an entry: the dictionary as a whole and every
// field, or with a key only that field. The label is ignored for single values, the key for values that are
// no dictionaries. UID, Creation and Modification are searched like any property; internal properties (a
// leading dot) count as not set.
//
// When it holds. A positive comparison holds when some value meets it. A negative one (its name has "not" in
// it) holds when no value meets the positive one, so also for records without the property. Without a wanted
// value, equal holds when there is some value to look at, notEqual when there is none, and every other
// comparison never.
//
// How values compare. A value of another type than the wanted one never meets a comparison; integers and
// reals are one type and compare exactly, and dates compare with wanted date components by their local day.
// - Text compares in composed form (NFC), so canonically equivalent text is equal. The comparisons that
//   ignore case compare with full Unicode case folding. Accents always count. Order is that of code points.
// - Equality is for every type, item by item in arrays and dictionaries; case is ignored in text alone.
//   A date without a year equals components without one.
// - Order is for text, numbers and dates with a year; contained text, prefix and suffix are for text.
// - A bit field matches when (value & wanted) == wanted; both are integers.
// - The wanted value of an interval comparison is a number of seconds, n whole days. Dates and date
//   components meet it by their local day. Around today: at most n days before or after today, none for a
//   negative n. From today: from today to n days ahead, or for a negative n from -n days ago to today.
//   Yearless: some anniversary of month and day lies in the interval, which may cross the turn of the year;
//   29 February falls on 28 February in a year that has none. Components without a year meet only yearless
//   comparisons.

#include "frameworks/AddressBook/values/value.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace addressbook {

// The comparisons, with the framework's numbers.
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

// A condition on one property. Only records of its kind can meet it.
struct Condition {
    Kind kind = Kind::person;
    std::string property;
    std::optional<std::string> label; // only entries with this label
    std::optional<std::string> key;   // only this field of dictionary values
    Value value;                      // no value: equal = the property is set, notEqual = it is not
    Comparison comparison = Comparison::equal;
};

// A condition, or child queries joined by "and" (all) or "or" (any). Without children, `all` holds for every
// record and `any` for none. A shared query stands for another one, which several have as their part: so a
// search that is joined with one more condition again and again is never copied.
struct Query {
    enum class Join : int { all = 0, any = 1 };
    struct Compound {
        Join join = Join::all;
        std::vector<Query> children;
    };
    using Shared = std::shared_ptr<const Query>;
    std::variant<Condition, Compound, Shared> node;

    // Returns the query that this one stands for: a condition or a compound.
    const Query& resolved() const;
};

// Returns a query that stands for [query] and is cheap to copy. However deep shared queries are nested, the
// last holder frees them without recursion.
Query shared(Query query);

// Whether [holds] is true for one of the conditions of [query].
bool anyCondition(const Query& query, const std::function<bool(const Condition&)>& holds);

// The record that a query is tested against, whether it is in memory or in the database.
class RecordView {
  public:
    virtual ~RecordView() = default;
    virtual Kind kind() const = 0;
    // Returns the value of [property], no value when it is not set. The reference is valid until the next
    // call.
    virtual const Value& value(std::string_view property) const = 0;
};

// Whether the record meets the query. [now] is the moment that "today" means for the interval comparisons;
// days are those of the process's time zone.
bool matches(const Query& query, const RecordView& record, Date now);

} // namespace addressbook
