#pragma once

// Searches: a condition on one property, or several joined. `matches` is the one definition of every
// comparison; the store answers the same from its indexes and is tested against it.
//
// What a condition looks at. Of a single value: that value. Of a multi-value: every entry, or with a label
// those with exactly this label. Of a dictionary, single or in an entry: every field, and without a key the
// dictionary as a whole; with a key only that field. A label says nothing about single values, a key nothing
// about what is no dictionary. UID, Creation and Modification are searched like any property; internal
// properties (a leading dot) are never set here.
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
// - The interval comparisons take a number of seconds. The n whole days in it are compared with the calendar
//   days from today to a date or to date components. Around today: at most n before or after, none for n < 0.
//   From today: 0 to n ahead, or for n < 0 0 to -n ago. Yearless: some anniversary of month and day lies
//   there, across the turn of the year too, and 29 February falls on 28 February where there is none.
//   Components without a year have only yearless intervals.

#include "frameworks/AddressBook/values/value.h"

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

// A condition, or children joined by "and" or "or". Of no children, all hold and none does.
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
