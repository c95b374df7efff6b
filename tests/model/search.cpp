// The model's search: a condition is compared with every text, number and date of a property.

#include "tests/model/book.h"

#include <chrono>
#include <cstdlib>

namespace model {
namespace {

// What the comparisons do, by their numbers.
enum class Operation {
    equal,
    less,
    lessEqual,
    greater,
    greaterEqual,
    contains,
    prefix,
    suffix,
    bits,
    interval
};

Operation operationOf(int comparison) {
    constexpr Operation kOperations[] = {
        Operation::equal,    Operation::equal,        Operation::less,   Operation::lessEqual,
        Operation::greater,  Operation::greaterEqual, Operation::equal,  Operation::contains,
        Operation::contains, Operation::prefix,       Operation::prefix, Operation::bits,
        Operation::contains, Operation::contains,     Operation::equal,  Operation::suffix,
        Operation::suffix,
    };
    return comparison < 17 ? kOperations[comparison] : Operation::interval;
}

bool isNegative(int comparison) {
    return comparison == 1 || (comparison >= 12 && comparison <= 14) || comparison == 19 ||
           comparison == 20 || comparison == 23 || comparison == 24;
}

bool ignoresCase(int comparison) {
    return comparison == 6 || comparison == 8 || comparison == 10 || comparison == 13 || comparison == 14 ||
           comparison == 16;
}

template <typename T>
bool ordered(Operation operation, const T& held, const T& wanted) {
    switch (operation) {
    case Operation::equal:
        return held == wanted;
    case Operation::less:
        return held < wanted;
    case Operation::lessEqual:
        return held <= wanted;
    case Operation::greater:
        return held > wanted;
    case Operation::greaterEqual:
        return held >= wanted;
    default:
        return false;
    }
}

bool textMeets(Operation operation, const std::string& held, const std::string& wanted) {
    switch (operation) {
    case Operation::contains:
        return held.find(wanted) != std::string::npos;
    case Operation::prefix:
        return held.starts_with(wanted);
    case Operation::suffix:
        return held.ends_with(wanted);
    default:
        return ordered(operation, held, wanted);
    }
}

std::chrono::sys_days dayOf(int year, int month, int day) {
    return std::chrono::sys_days(std::chrono::year(year) / month / day);
}

// Whether a date is within a number of whole days around or after today; with [yearless], one of its
// anniversaries.
bool intervalMeets(int comparison, const Civil& date, long long seconds) {
    const bool around = comparison <= 20;
    const bool yearless = comparison % 2 == 0;
    const long long days = seconds / 86400;
    const auto today = std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now());
    const auto within = [&](std::chrono::sys_days day) {
        const long long ahead = (day - today).count();
        if (around) {
            return std::llabs(ahead) <= days;
        }
        return days >= 0 ? ahead >= 0 && ahead <= days : ahead <= 0 && ahead >= days;
    };
    if (!yearless) {
        return within(dayOf(date.year, date.month, date.day));
    }
    const int year = static_cast<int>(std::chrono::year_month_day(today).year());
    return within(dayOf(year - 1, date.month, date.day)) || within(dayOf(year, date.month, date.day)) ||
           within(dayOf(year + 1, date.month, date.day));
}

// A moment of this test run; its time of day does not matter to any search.
Civil today() {
    const std::chrono::year_month_day date(
        std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now()));
    return {static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day()))};
}

bool meets(const Search& search, const Value& value) {
    if (search.wanted.empty()) {
        return true; // there is one
    }
    const Operation operation = operationOf(search.comparison);
    if (const auto* clock = value.as<Clock>()) {
        static_cast<void>(clock);
        return meets(search, today());
    }
    if (const auto* held = value.as<Civil>(); held != nullptr && operation == Operation::interval) {
        const auto* wanted = search.wanted.as<long long>();
        return wanted != nullptr && intervalMeets(search.comparison, *held, *wanted);
    }
    if (const auto* held = value.as<std::string>()) {
        const auto* wanted = search.wanted.as<std::string>();
        const bool fold = ignoresCase(search.comparison);
        return wanted != nullptr &&
               textMeets(operation, fold ? lower(*held) : *held, fold ? lower(*wanted) : *wanted);
    }
    if (const auto* held = value.as<Civil>()) {
        const auto* wanted = search.wanted.as<Civil>();
        return wanted != nullptr && ordered(operation, *held, *wanted);
    }
    if (const auto* held = value.as<long long>()) {
        const auto* wanted = search.wanted.as<long long>();
        if (wanted != nullptr && operation == Operation::bits) {
            return (*held & *wanted) == *wanted;
        }
        return wanted != nullptr && ordered(operation, *held, *wanted);
    }
    return false;
}

// A value that is no list: a dictionary counts as a whole, and so does each of its fields.
bool anyPartMeets(const Search& search, const Value& value) {
    const auto* address = value.as<Address>();
    if (address == nullptr) {
        return meets(search, value);
    }
    if (!search.key && meets(search, value)) {
        return true;
    }
    for (const auto& [key, text] : *address) {
        if ((!search.key || *search.key == key) && meets(search, text)) {
            return true;
        }
    }
    return false;
}

bool anyMeets(const Search& search, const Value& value) {
    if (value.empty()) {
        return false;
    }
    const auto* entries = value.as<Entries>();
    if (entries == nullptr) {
        return anyPartMeets(search, value);
    }
    for (const Entry& entry : *entries) {
        if ((!search.label || *search.label == entry.label) && anyPartMeets(search, entry.value)) {
            return true;
        }
    }
    return false;
}

} // namespace

bool Book::matches(const Book& book, const Search& search, const RecordPtr& record) {
    if (search.first) {
        const bool first = matches(book, *search.first, record);
        const bool second = matches(book, *search.second, record);
        return search.either ? first || second : first && second;
    }
    return search.ofGroups == record->isGroup &&
           anyMeets(search, book.value(record, search.property)) != isNegative(search.comparison);
}

std::vector<RecordPtr> Book::search(const Search& search) const {
    std::vector<RecordPtr> found;
    for (const RecordPtr& record : records_) {
        if (matches(*this, search, record)) {
            found.push_back(record);
        }
    }
    return found;
}

} // namespace model
