#pragma once

// The one definition of the comparisons: `matches` applies it to records in memory, the store to what its
// indexes find.

#include "frameworks/AddressBook/values/calendar.h"
#include "frameworks/AddressBook/values/query.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace addressbook {

// What a comparison does, apart from looking at one value or many.
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
// whole and each of its fields; stops when it answers true, and answers whether it did.
bool visitLeaves(const Value& value, const std::function<bool(const Leaf&)>& visit);

// Days, counted as in calendar.h; none when the first is behind the last or either is no number.
struct DayRange {
    double first, last;
};

// A condition made ready to look at many records. It keeps a reference to the condition.
class Matcher {
  public:
    // [now] is the moment that "today" means.
    Matcher(const Condition& condition, Date now);

    const Condition& condition() const { return condition_; }
    const ComparisonFacts& facts() const { return facts_; }

    // Whether the condition holds for a record whose property has this value (none when it is not set).
    bool holds(const Value& value) const;

    // Whether some value meets the positive form of the comparison; with no wanted value, whether there is
    // one.
    bool anyMeets(const Value& value) const;

    // Whether one value meets it, label and key aside.
    bool meets(const Value& value) const;

    // Whether a text does whose compared forms are known: [folded] counts when case is ignored, else
    // [normalized].
    bool meetsText(std::string_view normalized, std::string_view folded) const;

    // Whether the label and key of a leaf are those that the condition asks for.
    bool admits(const Leaf& leaf) const;

    // Holds when no value meets the positive form.
    bool negative() const { return facts_.negative; }

    // Whether no record meets the condition, not even when it is negative: no wanted value, and a comparison
    // that needs one.
    bool neverMatches() const;

    // Returns the days that a comparison with an interval looks for; yearless ones in the years around this
    // one. None for other comparisons and for a wanted value that is no number.
    const std::optional<DayRange>& wantedDays() const { return days_; }

    // Returns the wanted text as the comparison compares it; none when the wanted value is no text.
    const std::optional<std::string>& wantedText() const { return text_; }

  private:
    bool meetsInterval(const Value& value) const;

    const Condition& condition_;
    const ComparisonFacts& facts_;
    std::optional<std::string> text_;
    std::int64_t year_ = 0; // of today
    std::optional<DayRange> days_;
};

} // namespace addressbook
