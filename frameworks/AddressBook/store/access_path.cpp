#include "frameworks/AddressBook/store/access_path.h"

#include "frameworks/AddressBook/values/calendar.h"
#include "frameworks/AddressBook/values/text.h"

#include <algorithm>
#include <array>
#include <limits>

namespace addressbook {
namespace {

constexpr std::size_t kTrigram = 3;     // characters; shorter texts are in no trigram
constexpr double kShortYear = 365;      // days
constexpr std::size_t kMostYears = 500; // with dates; a property with more of them is scanned

// One row of the table behind fewRecordsFor().
struct PathCost {
    AccessPath path;
    std::size_t fewRecords;
};
// clang-format off
constexpr std::array kCosts{
    PathCost{AccessPath::nothing,       0},
    PathCost{AccessPath::uid,          20},
    PathCost{AccessPath::exact,        20},
    PathCost{AccessPath::prefix,      200},
    PathCost{AccessPath::ending,      200},
    PathCost{AccessPath::trigram,     500},
    PathCost{AccessPath::range,     2'000},
    PathCost{AccessPath::interval,  2'000},
    PathCost{AccessPath::scan,     20'000},
    PathCost{AccessPath::everyUid, 20'000},
};
// clang-format on
constexpr bool inOrder() {
    for (std::size_t i = 0; i < kCosts.size(); ++i) {
        if (static_cast<std::size_t>(kCosts[i].path) != i) {
            return false;
        }
    }
    return kCosts.back().path == AccessPath::everyUid;
}
static_assert(inOrder(), "one row for each path, in their order");

// Returns the span of all texts that begin with [prefix], which as UTF-8 has no byte FF.
Span spanOfPrefix(std::string prefix) {
    Span span{prefix, Bytes()}; // bytes sort behind all text
    if (!prefix.empty()) {
        ++prefix.back();
        span.high = std::move(prefix);
    }
    return span;
}

// Returns the span of the dates that may lie on these days in some time zone: a day more at either end.
Span spanOfDays(double first, double last) {
    return {utcMidnight(first - 1), utcMidnight(last + 2)};
}

// Returns the span of the values that are neither text nor number, among them date components.
Span spanOfOthers() {
    return {Bytes(), Bytes{0}};
}

// Adds the spans of these days for each year in which the property has a date.
void spanYears(Store::Impl& impl, const DayRange& days, IndexLookup& lookup) {
    const double length = days.last - days.first;
    const MonthDay begin = dayOfYear(static_cast<std::int64_t>(days.first));
    std::int64_t next = std::numeric_limits<std::int64_t>::min(); // the year whose span comes next
    Date from{-kFarthest};
    for (;;) {
        auto statement =
            impl.db.prepare("SELECT folded FROM term WHERE property = ? AND folded >= ? AND folded < '' "
                            "ORDER BY folded LIMIT 1");
        statement.bindInteger(lookup.property).bindReal(from.seconds);
        if (!statement.step()) {
            return;
        }
        ++lookup.rows;
        const auto day = utcDay(Date{statement.real(0)});
        if (!day) {
            return;
        }
        // An interval that began in the year before may last into this one, and on the last day of a UTC year
        // the local year may be the next.
        const std::int64_t year = yearOf(*day);
        for (next = std::max(next, year - 1); next <= year + 1; ++next) {
            const auto start = static_cast<double>(anniversary(next, begin));
            lookup.spans.push_back(spanOfDays(start - 1, start + length + 1)); // a leap day moves them by one
        }
        from.seconds = utcMidnight(static_cast<double>(dayNumber(year + 1, {})));
    }
}

void lookUpDays(Store::Impl& impl, const Matcher& matcher, IndexLookup& lookup) {
    const auto& days = matcher.wantedDays();
    if (!days || !(days->first <= days->last)) {
        return;
    }
    const bool yearless = matcher.facts().yearless;
    const bool allYear = yearless && days->last - days->first >= kShortYear;
    if (!yearless) {
        lookup.spans.push_back(spanOfDays(days->first, days->last));
    } else if (!allYear) {
        spanYears(impl, *days, lookup);
    }
    const bool tooMany = allYear || lookup.spans.size() > kMostYears;
    lookup.path = tooMany ? AccessPath::scan : AccessPath::interval;
    if (tooMany) {
        lookup.spans.clear();
    } else {
        lookup.spans.push_back(spanOfOthers());
    }
}

void lookUpNumber(const Matcher& matcher, IndexLookup& lookup) {
    switch (matcher.facts().operation) {
    case Operation::equal:
        lookup.path = AccessPath::exact;
        break;
    case Operation::less:
    case Operation::lessOrEqual:
    case Operation::greater:
    case Operation::greaterOrEqual:
        lookup.path = AccessPath::range;
        break;
    default:
        lookup.path = AccessPath::scan;
        return;
    }
    // A floating date has its number by the clock; a range is judged row by row.
    const Value& wanted = matcher.condition().value;
    const Value& clock = matcher.wantedClock();
    lookup.spans.push_back({wanted, {}});
    if (clock.empty()) {
        return;
    }
    const bool upwards = matcher.facts().operation == Operation::greater ||
                         matcher.facts().operation == Operation::greaterOrEqual;
    const bool isClockWider = (clock.as<FloatingDate>()->seconds < wanted.as<Date>()->seconds) == upwards;
    if (lookup.path == AccessPath::exact) {
        lookup.spans.push_back({clock, {}});
    } else if (isClockWider) {
        lookup.spans.front().low = clock;
    }
}

void lookUpText(Store::Impl& impl, const Matcher& matcher, IndexLookup& lookup) {
    const std::string& wanted = *matcher.wantedText();
    lookup.folded = matcher.facts().ignoresCase ? wanted : foldNormalized(wanted);
    // The index keeps at most kTermBytes of a text, so that a longer one is looked up by a part of it.
    std::string_view part = beginning(lookup.folded, kTermBytes);
    switch (matcher.facts().operation) {
    case Operation::equal:
        lookup.path = AccessPath::exact;
        lookup.spans.push_back({std::string(part), {}});
        return;
    case Operation::prefix:
        lookup.path = AccessPath::prefix;
        lookup.spans.push_back(spanOfPrefix(std::string(part)));
        return;
    case Operation::suffix:
        if (hasEndings(impl.db, lookup.property)) {
            lookup.path = AccessPath::ending;
            lookup.spans.push_back(spanOfPrefix(reversed(ending(lookup.folded, kTermBytes))));
            return;
        }
        break;
    case Operation::contains:
        break;
    default:
        lookup.path = AccessPath::scan;
        return;
    }
    const bool isSuffix = matcher.facts().operation == Operation::suffix;
    if (isSuffix) {
        part = ending(lookup.folded, kTermBytes);
    }
    lookup.needle = trigramNeedle(part);
    lookup.needle.exact = lookup.needle.exact && part.size() == lookup.folded.size();
    if (isSuffix) {
        lookup.needle.text.push_back(kTextBorder);
    }
    lookup.path = countCharacters(lookup.needle.text) >= kTrigram ? AccessPath::trigram : AccessPath::scan;
}

} // namespace

std::size_t fewRecordsFor(AccessPath path) {
    return kCosts[static_cast<std::size_t>(path)].fewRecords;
}

bool isNumeric(const Value& value) {
    return value.as<std::int64_t>() != nullptr || value.as<double>() != nullptr ||
           value.as<Date>() != nullptr;
}

IndexLookup chooseAccessPath(Store::Impl& impl, const Matcher& matcher) {
    IndexLookup lookup;
    const Condition& condition = matcher.condition();
    const ComparisonFacts& facts = matcher.facts();
    if (matcher.neverMatches() || isInternal(condition.property)) {
        return lookup;
    }
    if (condition.property == property::kUid) {
        const bool oneUid = facts.operation == Operation::equal && !facts.ignoresCase &&
                            condition.value.as<std::string>() != nullptr;
        lookup.path = oneUid ? AccessPath::uid : AccessPath::everyUid;
        return lookup;
    }
    const auto property = impl.propertyId(condition.kind, condition.property);
    if (!property) {
        return lookup;
    }
    lookup.property = *property;
    if (facts.operation == Operation::around || facts.operation == Operation::ahead) {
        lookUpDays(impl, matcher, lookup);
    } else if (isNumeric(condition.value)) {
        lookUpNumber(matcher, lookup);
    } else if (matcher.wantedText()) {
        lookUpText(impl, matcher, lookup);
    } else {
        lookup.path = AccessPath::scan;
    }
    if (lookup.path == AccessPath::scan) {
        lookup.spans.emplace_back();
    }
    return lookup;
}

} // namespace addressbook
