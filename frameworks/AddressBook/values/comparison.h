#pragma once

// The one definition of the comparisons, used by matches() on records in memory and by the store on what its
// indexes find. The head of query.h says what each comparison means.

#include "frameworks/AddressBook/values/calendar.h"
#include "frameworks/AddressBook/values/query.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace addressbook {

// How one value is compared with the wanted one. `around` and `ahead` are the intervals around and from
// today.
enum class Operation {
    equal,
    less,
    lessOrEqual,
    greater,
    greaterOrEqual,
    contains,
    prefix,
    suffix,
    bits,
    around,
    ahead
};

// One row of the table of comparisons.
struct ComparisonFacts {
    Comparison comparison;
    std::string_view name; // the framework's, without "kAB"
    Operation operation;
    bool negative;    // holds when no value meets the operation
    bool ignoresCase; // compares folded text
    bool yearless;    // looks at month and day only
};

// Returns all rows, in the framework's order.
std::span<const ComparisonFacts> comparisons();

// Returns the row of [comparison].
const ComparisonFacts& factsOf(Comparison comparison);

// One of the values that a condition looks at.
struct Leaf {
    const Value& value;
    const std::string* label; // of the multi-value entry; null for a single value
    const std::string* key; // of the dictionary field; null for anything else, the whole dictionary included
};

// Calls [visit] with each value of a property: a single value, each entry of a multi-value, a dictionary as a
// whole and each of its fields. Stops when [visit] returns true; returns whether it did.
bool visitLeaves(const Value& value, const std::function<bool(const Leaf&)>& visit);

// The days from `first` to `last`, both included, numbered as in calendar.h. No day is within when `first` is
// after `last` or either is NaN.
struct DayRange {
    double first, last;
};

// A condition prepared for being tested against many records: the wanted value is folded or converted once.
// Refers to the condition, which must outlive it.
class Matcher {
  public:
    // [now] is the moment that "today" means.
    Matcher(const Condition& condition, Date now);

    const Condition& condition() const { return condition_; }
    const ComparisonFacts& facts() const { return facts_; }

    // Whether the condition holds for a record whose property has this value (no value: it is not set).
    bool holds(const Value& value) const;

    // Whether some value meets the positive form of the comparison (equal for notEqual); with no wanted
    // value, whether the property has any that label and key admit.
    bool anyMeets(const Value& value) const;

    // Whether one value meets the positive form of the comparison, whatever its label and key.
    bool meets(const Value& value) const;

    // Like meets() for a text whose compared forms are known: [folded] is compared when case is ignored, else
    // [normalized].
    bool meetsText(std::string_view normalized, std::string_view folded) const;

    // Whether the label and key of a leaf are those that the condition asks for.
    bool admits(const Leaf& leaf) const;

    // Whether the comparison is a negative one: it holds when no value meets the positive form.
    bool negative() const { return facts_.negative; }

    // Whether no record meets the condition, not even when it is negative: no wanted value, and a comparison
    // that needs one.
    bool neverMatches() const;

    // Returns the days that a comparison with an interval looks for; yearless ones in the years around this
    // one. None for other comparisons and for a wanted value that is no number.
    const std::optional<DayRange>& wantedDays() const { return days_; }

    // Returns what the clock here shows at the wanted date, with which floating dates are compared; no value
    // when the wanted value is no date.
    const Value& wantedClock() const { return clock_; }

    // Returns the wanted text as the comparison compares it; none when the wanted value is no text.
    const std::optional<std::string>& wantedText() const { return text_; }

  private:
    bool meetsInterval(const Value& value) const;

    const Condition& condition_;
    const ComparisonFacts& facts_;
    std::optional<std::string> text_;
    Value clock_;
    std::int64_t year_ = 0; // of today
    std::optional<DayRange> days_;
};

} // namespace addressbook
