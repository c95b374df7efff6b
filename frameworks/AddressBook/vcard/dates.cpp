#include "frameworks/AddressBook/vcard/dates.h"

#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/encoding.h"

#include <array>
#include <cstdio>

namespace addressbook::vcard {

namespace {

// [count] digits at the start of [text], taken away; -1 when they are not there.
int takeDigits(std::string_view& text, std::size_t count) {
    if (text.size() < count) {
        return -1;
    }
    int number = 0;
    for (std::size_t at = 0; at < count; ++at) {
        if (text[at] < '0' || text[at] > '9') {
            return -1;
        }
        number = number * 10 + (text[at] - '0');
    }
    text.remove_prefix(count);
    return number;
}

int daysIn(int year, int month) {
    constexpr std::array kDays{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return month == 2 && leap ? 29 : kDays[static_cast<std::size_t>(month) - 1];
}

} // namespace

std::optional<FloatingDate> parseDay(std::string_view text, int omittedYear) {
    text = trim(text);
    int year = kNoYear;
    if (text.starts_with("--")) {
        text.remove_prefix(2);
    } else {
        year = takeDigits(text, 4);
        if (year < 1) {
            return std::nullopt;
        }
        if (text.starts_with('-')) {
            text.remove_prefix(1);
        }
    }
    const int month = takeDigits(text, 2);
    if (text.starts_with('-')) {
        text.remove_prefix(1);
    }
    const int day = takeDigits(text, 2);
    if (!text.empty() && text.front() != 'T' && text.front() != 't' && text.front() != ' ') {
        return std::nullopt;
    }
    if (year == omittedYear) {
        year = kNoYear;
    }
    if (month < 1 || month > 12 || day < 1 || day > daysIn(year, month)) {
        return std::nullopt;
    }
    return noonOf(year, {month, day});
}

std::optional<std::string> dayText(const Value& date) {
    const auto day = dayOf(date);
    const auto monthDay = monthDayOf(date);
    if (!day || !monthDay || yearOf(*day) < 1 || yearOf(*day) > 9999) {
        return std::nullopt;
    }
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02d", static_cast<int>(yearOf(*day)), monthDay->month,
                  monthDay->day);
    return text.data();
}

} // namespace addressbook::vcard
