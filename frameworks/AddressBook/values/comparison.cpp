#include "frameworks/AddressBook/values/comparison.h"

#include "frameworks/AddressBook/values/property.h"
#include "frameworks/AddressBook/values/text.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace addressbook {
namespace {

using enum Operation;

// Flags that make up a row together with its operation.
enum Trait : unsigned { kPlain = 0, kNegative = 1, kIgnoresCase = 2, kYearless = 4 };

constexpr ComparisonFacts row(Comparison comparison, std::string_view name, Operation operation,
                              unsigned traits) {
    return {.comparison = comparison,
            .name = name,
            .operation = operation,
            .negative = (traits & kNegative) != 0,
            .ignoresCase = (traits & kIgnoresCase) != 0,
            .yearless = (traits & kYearless) != 0};
}

// clang-format off
constexpr std::array<ComparisonFacts, kComparisonCount> kFacts{
    row(Comparison::equal, "Equal", equal, kPlain),
    row(Comparison::notEqual, "NotEqual", equal, kNegative),
    row(Comparison::lessThan, "LessThan", less, kPlain),
    row(Comparison::lessThanOrEqual, "LessThanOrEqual", lessOrEqual, kPlain),
    row(Comparison::greaterThan, "GreaterThan", greater, kPlain),
    row(Comparison::greaterThanOrEqual, "GreaterThanOrEqual", greaterOrEqual, kPlain),
    row(Comparison::equalCaseInsensitive, "EqualCaseInsensitive", equal, kIgnoresCase),
    row(Comparison::containsSubString, "ContainsSubString", contains, kPlain),
    row(Comparison::containsSubStringCaseInsensitive, "ContainsSubStringCaseInsensitive", contains, kIgnoresCase),
    row(Comparison::prefixMatch, "PrefixMatch", prefix, kPlain),
    row(Comparison::prefixMatchCaseInsensitive, "PrefixMatchCaseInsensitive", prefix, kIgnoresCase),
    row(Comparison::bitsInBitFieldMatch, "BitsInBitFieldMatch", bits, kPlain),
    row(Comparison::doesNotContainSubString, "DoesNotContainSubString", contains, kNegative),
    row(Comparison::doesNotContainSubStringCaseInsensitive, "DoesNotContainSubStringCaseInsensitive", contains, kNegative | kIgnoresCase),
    row(Comparison::notEqualCaseInsensitive, "NotEqualCaseInsensitive", equal, kNegative | kIgnoresCase),
    row(Comparison::suffixMatch, "SuffixMatch", suffix, kPlain),
    row(Comparison::suffixMatchCaseInsensitive, "SuffixMatchCaseInsensitive", suffix, kIgnoresCase),
    row(Comparison::withinIntervalAroundToday, "WithinIntervalAroundToday", around, kPlain),
    row(Comparison::withinIntervalAroundTodayYearless, "WithinIntervalAroundTodayYearless", around, kYearless),
    row(Comparison::notWithinIntervalAroundToday, "NotWithinIntervalAroundToday", around, kNegative),
    row(Comparison::notWithinIntervalAroundTodayYearless, "NotWithinIntervalAroundTodayYearless", around, kNegative | kYearless),
    row(Comparison::withinIntervalFromToday, "WithinIntervalFromToday", ahead, kPlain),
    row(Comparison::withinIntervalFromTodayYearless, "WithinIntervalFromTodayYearless", ahead, kYearless),
    row(Comparison::notWithinIntervalFromToday, "NotWithinIntervalFromToday", ahead, kNegative),
    row(Comparison::notWithinIntervalFromTodayYearless, "NotWithinIntervalFromTodayYearless", ahead, kNegative | kYearless),
};
// clang-format on

constexpr bool inOrder() {
    for (int i = 0; i < kComparisonCount; ++i) {
        if (static_cast<int>(kFacts[static_cast<std::size_t>(i)].comparison) != i) {
            return false;
        }
    }
    return true;
}
static_assert(inOrder(), "one row for each comparison, in their order");

bool isNumber(const Value& value) {
    return value.as<std::int64_t>() != nullptr || value.as<double>() != nullptr;
}

// Compares exactly, although not every integer is a double.
std::partial_ordering compare(std::int64_t whole, double real) {
    if (std::isnan(real)) {
        return std::partial_ordering::unordered;
    }
    if (real >= 0x1p63) {
        return std::partial_ordering::less;
    }
    if (real < -0x1p63) {
        return std::partial_ordering::greater;
    }
    const double truncated = std::trunc(real);
    if (const auto order = whole <=> static_cast<std::int64_t>(truncated); order != 0) {
        return order;
    }
    return truncated <=> real;
}

std::partial_ordering compareNumbers(const Value& a, const Value& b) {
    const auto* wholeA = a.as<std::int64_t>();
    const auto* wholeB = b.as<std::int64_t>();
    if (wholeA != nullptr && wholeB != nullptr) {
        return *wholeA <=> *wholeB;
    }
    if (wholeA != nullptr) {
        return compare(*wholeA, *b.as<double>());
    }
    if (wholeB != nullptr) {
        return 0 <=> compare(*wholeB, *a.as<double>());
    }
    return *a.as<double>() <=> *b.as<double>();
}

std::partial_ordering compareOrdered(const Value& a, const Value& b) {
    if (isNumber(a) && isNumber(b)) {
        return compareNumbers(a, b);
    }
    if (a.as<Date>() != nullptr && b.as<Date>() != nullptr) {
        return *a.as<Date>() <=> *b.as<Date>();
    }
    if (a.as<FloatingDate>() != nullptr && b.as<FloatingDate>() != nullptr) {
        return *a.as<FloatingDate>() <=> *b.as<FloatingDate>();
    }
    if (isDate(a) && b.as<DateComponents>() != nullptr) {
        if (const auto parts = dayParts(a)) {
            const auto dayA = dayOf(*parts);
            const auto dayB = dayOf(b);
            return dayA && dayB ? std::partial_ordering(*dayA <=> *dayB) : std::partial_ordering::unordered;
        }
    }
    return std::partial_ordering::unordered;
}

// Whether two values are equal as the comparisons see it: text in any canonically equivalent form, numbers by
// their value whatever their type, arrays and dictionaries item by item, and a date [a] with components [b]
// by its local day.
bool same(const Value& a, const Value& b) {
    if (const auto* text = a.as<std::string>()) {
        const auto* other = b.as<std::string>();
        return other != nullptr && (*text == *other || normalize(*text) == normalize(*other));
    }
    if (const auto* wanted = b.as<DateComponents>(); wanted != nullptr && isDate(a)) {
        const auto parts = dayParts(a);
        return parts && parts->year == wanted->year && parts->month == wanted->month &&
               parts->day == wanted->day;
    }
    if (isNumber(a) || isDate(a)) {
        return compareOrdered(a, b) == 0;
    }
    if (const auto* items = a.as<Array>()) {
        const auto* others = b.as<Array>();
        return others != nullptr &&
               std::equal(items->begin(), items->end(), others->begin(), others->end(), same);
    }
    if (const auto* fields = a.as<Dictionary>()) {
        const auto* others = b.as<Dictionary>();
        return others != nullptr && std::equal(fields->begin(), fields->end(), others->begin(), others->end(),
                                               [](const auto& x, const auto& y) {
                                                   return x.first == y.first && same(x.second, y.second);
                                               });
    }
    return a == b;
}

bool ordered(Operation operation, std::partial_ordering order) {
    switch (operation) {
    case equal:
        return order == 0;
    case less:
        return order < 0;
    case lessOrEqual:
        return order <= 0;
    case greater:
        return order > 0;
    case greaterOrEqual:
        return order >= 0;
    default:
        return false;
    }
}

double saturated(const Value& number) {
    const auto* whole = number.as<std::int64_t>();
    return whole != nullptr ? static_cast<double>(*whole) : *number.as<double>();
}

constexpr double kSecondsPerDay = 86400;

bool isWithin(std::int64_t day, const DayRange& days) {
    const auto number = static_cast<double>(day);
    return days.first <= number && number <= days.last;
}

bool visitOne(const Value& value, const std::string* label, const std::function<bool(const Leaf&)>& visit) {
    if (visit({value, label, nullptr})) {
        return true;
    }
    const auto* fields = value.as<Dictionary>();
    return fields != nullptr && std::any_of(fields->begin(), fields->end(), [&](const auto& field) {
               return visit({field.second, label, &field.first});
           });
}

} // namespace

std::span<const ComparisonFacts> comparisons() {
    return kFacts;
}

const ComparisonFacts& factsOf(Comparison comparison) {
    return kFacts.at(static_cast<std::size_t>(comparison));
}

bool visitLeaves(const Value& value, const std::function<bool(const Leaf&)>& visit) {
    if (value.empty()) {
        return false;
    }
    const auto* list = value.as<MultiValue>();
    if (list == nullptr) {
        return visitOne(value, nullptr, visit);
    }
    return std::any_of(list->entries.begin(), list->entries.end(),
                       [&](const Entry& entry) { return visitOne(entry.value, &entry.label, visit); });
}

Matcher::Matcher(const Condition& condition, Date now)
    : condition_(condition), facts_(factsOf(condition.comparison)) {
    if (const auto* text = condition.value.as<std::string>()) {
        text_ = facts_.ignoresCase ? fold(*text) : normalize(*text);
    }
    if (const auto* date = condition.value.as<Date>()) {
        if (const auto clock = clockAt(*date)) {
            clock_ = *clock;
        }
    }
    const bool isInterval = facts_.operation == around || facts_.operation == ahead;
    if (const auto today = isInterval ? localDay(now) : std::nullopt; today && isNumber(condition.value)) {
        const auto day = static_cast<double>(*today);
        const double days = std::trunc(saturated(condition.value) / kSecondsPerDay);
        year_ = yearOf(*today);
        days_ = facts_.operation == around ? DayRange{day - days, day + days}
                                           : DayRange{day + std::min(days, 0.0), day + std::max(days, 0.0)};
    }
}

bool Matcher::neverMatches() const {
    return condition_.value.empty() && condition_.comparison != Comparison::equal &&
           condition_.comparison != Comparison::notEqual;
}

bool Matcher::holds(const Value& value) const {
    return !neverMatches() && anyMeets(value) != facts_.negative;
}

bool Matcher::anyMeets(const Value& value) const {
    return visitLeaves(value, [&](const Leaf& leaf) { return admits(leaf) && meets(leaf.value); });
}

bool Matcher::admits(const Leaf& leaf) const {
    if (condition_.label && leaf.label != nullptr && *leaf.label != *condition_.label) {
        return false;
    }
    if (!condition_.key) {
        return true;
    }
    return leaf.key != nullptr ? *leaf.key == *condition_.key : leaf.value.as<Dictionary>() == nullptr;
}

bool Matcher::meets(const Value& value) const {
    if (condition_.value.empty()) {
        return condition_.comparison == Comparison::equal || condition_.comparison == Comparison::notEqual;
    }
    if (const auto* text = value.as<std::string>()) {
        if (!text_) {
            return false;
        }
        return facts_.ignoresCase ? meetsText({}, fold(*text)) : meetsText(normalize(*text), {});
    }
    const bool byClock = value.as<FloatingDate>() != nullptr && !clock_.empty();
    const Value& wanted = byClock ? clock_ : condition_.value;
    switch (facts_.operation) {
    case equal:
        return same(value, wanted);
    case less:
    case lessOrEqual:
    case greater:
    case greaterOrEqual:
        return ordered(facts_.operation, compareOrdered(value, wanted));
    case bits: {
        const auto* held = value.as<std::int64_t>();
        const auto* mask = wanted.as<std::int64_t>();
        return held != nullptr && mask != nullptr && (*held & *mask) == *mask;
    }
    case around:
    case ahead:
        return meetsInterval(value);
    case contains:
    case prefix:
    case suffix:
        return false;
    }
    return false;
}

bool Matcher::meetsText(std::string_view normalized, std::string_view folded) const {
    if (!text_) {
        return false;
    }
    const std::string_view text = facts_.ignoresCase ? folded : normalized;
    switch (facts_.operation) {
    case contains:
        return text.find(*text_) != std::string_view::npos;
    case prefix:
        return text.starts_with(*text_);
    case suffix:
        return text.ends_with(*text_);
    default:
        // The byte order of UTF-8 is the order of code points.
        return ordered(facts_.operation, text <=> std::string_view(*text_));
    }
}

bool Matcher::meetsInterval(const Value& value) const {
    if (!days_) {
        return false;
    }
    if (!facts_.yearless) {
        const auto day = dayOf(value);
        return day && isWithin(*day, *days_);
    }
    const auto day = monthDayOf(value);
    if (!day) {
        return false;
    }
    for (std::int64_t candidate = year_ - 1; candidate <= year_ + 1; ++candidate) {
        if (isWithin(anniversary(candidate, *day), *days_)) {
            return true;
        }
    }
    return false;
}

namespace {

bool meets(const Condition& condition, const RecordView& record, Date now) {
    if (condition.kind != record.kind()) {
        return false;
    }
    static const Value kNone;
    return Matcher(condition, now)
        .holds(isInternal(condition.property) ? kNone : record.value(condition.property));
}

} // namespace

bool matches(const Query& query, const RecordView& record, Date now) {
    // The last child decides when those before it do not: a search to which conditions were joined one by one
    // has all earlier ones as its last child, and is followed without recursion.
    const Query* rest = &query.resolved();
    while (const auto* compound = std::get_if<Query::Compound>(&rest->node)) {
        const bool decisive = compound->join == Query::Join::any;
        if (compound->children.empty()) {
            return !decisive;
        }
        const auto last = std::prev(compound->children.end());
        if (std::any_of(compound->children.begin(), last,
                        [&](const Query& part) { return matches(part, record, now) == decisive; })) {
            return decisive;
        }
        rest = &last->resolved();
    }
    return meets(std::get<Condition>(rest->node), record, now);
}

} // namespace addressbook
