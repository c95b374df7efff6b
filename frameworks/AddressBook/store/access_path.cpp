#include "frameworks/AddressBook/store/access_path.h"

#include "frameworks/AddressBook/values/calendar.h"
#include "frameworks/AddressBook/values/text.h"

#include <algorithm>
#include <limits>

namespace addressbook {
namespace {

constexpr std::size_t kTrigram = 3;
constexpr double kShortYear = 365;      // days
constexpr std::size_t kMostYears = 500; // that are looked up one by one

std::size_t characters(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

// The longest end of [text] that has at most [bytes] bytes and begins with a whole character.
std::string_view ending(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes)
        return text;
    text.remove_prefix(text.size() - bytes);
    while (!text.empty() && (static_cast<unsigned char>(text.front()) & 0xC0) == 0x80)
        text.remove_prefix(1);
    return text;
}

// The texts with this beginning.
Span spanOfPrefix(std::string prefix) {
    Span span{prefix, Bytes()}; // bytes sort behind all text
    while (!prefix.empty() && static_cast<unsigned char>(prefix.back()) == 0xFF)
        prefix.pop_back();
    if (!prefix.empty()) {
        ++prefix.back();
        span.high = std::move(prefix);
    }
    return span;
}

// The moments of these days in every time zone, which is up to a day earlier or later.
Span spanOfDays(double first, double last) {
    return {utcMidnight(first - 1), utcMidnight(last + 2)};
}

// What is neither text nor number; date components are.
Span spanOfOthers() {
    return {Bytes(), Bytes{0}};
}

// The same days in each year in which the property has a date.
void spanYears(Store::Impl& impl, const DayRange& days, ConditionPlan& plan) {
    const double length = days.last - days.first;
    const MonthDay begin = dayOfYear(static_cast<std::int64_t>(days.first));
    std::int64_t next = std::numeric_limits<std::int64_t>::min(); // the year whose span comes next
    Date from{-kFarthest};
    for (;;) {
        auto run = impl.db.run("SELECT folded FROM term WHERE property = ? AND folded >= ? AND folded < '' "
                               "ORDER BY folded LIMIT 1");
        run.bindInteger(plan.property).bindReal(from.seconds);
        if (!run.step())
            return;
        ++plan.rows;
        const auto day = utcDay(Date{run.real(0)});
        if (!day)
            return;
        // Days that began in a year may last into the next one; on its last day the local year may be the
        // next.
        const std::int64_t year = yearOf(*day);
        for (next = std::max(next, year - 1); next <= year + 1; ++next) {
            const auto start = static_cast<double>(anniversary(next, begin));
            plan.spans.push_back(spanOfDays(start - 1, start + length + 1)); // a leap day moves them by one
        }
        from.seconds = utcMidnight(static_cast<double>(dayNumber(year + 1, {})));
    }
}

void planDays(Store::Impl& impl, const Matcher& matcher, ConditionPlan& plan) {
    const auto& days = matcher.wantedDays();
    if (!days || !(days->first <= days->last))
        return;
    const bool yearless = matcher.facts().yearless;
    const bool allYear = yearless && days->last - days->first >= kShortYear;
    if (!yearless)
        plan.spans = {spanOfDays(days->first, days->last)};
    else if (!allYear)
        spanYears(impl, *days, plan);
    const bool tooMany = allYear || plan.spans.size() > kMostYears;
    plan.plan = tooMany ? Plan::scan : Plan::interval;
    if (tooMany)
        plan.spans.clear();
    else
        plan.spans.push_back(spanOfOthers());
}

void planNumber(const Matcher& matcher, ConditionPlan& plan) {
    switch (matcher.facts().operation) {
    case Operation::equal:
        plan.plan = Plan::exact;
        break;
    case Operation::less:
    case Operation::lessOrEqual:
    case Operation::greater:
    case Operation::greaterOrEqual:
        plan.plan = Plan::range;
        break;
    default:
        plan.plan = Plan::scan;
        return;
    }
    plan.spans = {{matcher.condition().value, {}}};
}

void planText(const Matcher& matcher, ConditionPlan& plan) {
    const std::string& wanted = *matcher.wantedText();
    plan.folded = matcher.facts().ignoresCase ? wanted : foldNormalized(wanted);
    // A long text is looked for by a part of it.
    std::string_view part = beginning(plan.folded, kTermBytes);
    switch (matcher.facts().operation) {
    case Operation::equal:
        plan.plan = Plan::exact;
        plan.spans = {{std::string(part), {}}};
        return;
    case Operation::prefix:
        plan.plan = Plan::prefix;
        plan.spans = {spanOfPrefix(std::string(part))};
        return;
    case Operation::contains:
    case Operation::suffix:
        break;
    default:
        plan.plan = Plan::scan;
        return;
    }
    const bool isSuffix = matcher.facts().operation == Operation::suffix;
    if (isSuffix)
        part = ending(plan.folded, kTermBytes);
    plan.needle = trigramNeedle(part);
    plan.needle.exact = plan.needle.exact && part.size() == plan.folded.size();
    if (isSuffix)
        plan.needle.text.push_back(kTextBorder);
    plan.plan = characters(plan.needle.text) >= kTrigram ? Plan::trigram : Plan::scan;
}

} // namespace

bool isNumeric(const Value& value) {
    return value.as<std::int64_t>() != nullptr || value.as<double>() != nullptr ||
           value.as<Date>() != nullptr;
}

ConditionPlan planOf(Store::Impl& impl, const Matcher& matcher) {
    ConditionPlan plan;
    const Condition& condition = matcher.condition();
    const ComparisonFacts& facts = matcher.facts();
    if (matcher.hopeless() || isInternal(condition.property))
        return plan;
    if (condition.property == property::kUid) {
        const bool oneUid = facts.operation == Operation::equal && !facts.ignoresCase &&
                            condition.value.as<std::string>() != nullptr;
        plan.plan = oneUid ? Plan::uid : Plan::everyUid;
        return plan;
    }
    const auto property = impl.propertyId(condition.kind, condition.property);
    if (!property)
        return plan;
    plan.property = *property;
    if (facts.operation == Operation::around || facts.operation == Operation::ahead)
        planDays(impl, matcher, plan);
    else if (isNumeric(condition.value))
        planNumber(matcher, plan);
    else if (matcher.wantedText())
        planText(matcher, plan);
    else
        plan.plan = Plan::scan;
    if (plan.plan == Plan::scan)
        plan.spans = {{}};
    return plan;
}

} // namespace addressbook
