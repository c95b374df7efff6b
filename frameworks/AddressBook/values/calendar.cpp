#include "frameworks/AddressBook/values/calendar.h"

#include "frameworks/AddressBook/values/property.h"

#include <chrono>
#include <cmath>
#include <ctime>

namespace addressbook {
namespace {

constexpr double kSecondsPerDay = 86400;
constexpr double kNoon = kSecondsPerDay / 2;

struct Civil {
    std::int64_t year;
    MonthDay day;
};

bool isLeap(std::int64_t year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

std::int64_t floorDivide(std::int64_t a, std::int64_t b) {
    return a / b - (a % b < 0 ? 1 : 0);
}

// Counted in eras of 400 years that begin on 1 March, so that the leap day is a year's last.
Civil civil(std::int64_t number) {
    const std::int64_t shifted = number + 719468;
    const std::int64_t era = floorDivide(shifted, 146097);
    const std::int64_t inEra = shifted - era * 146097;
    const std::int64_t yearInEra = (inEra - inEra / 1460 + inEra / 36524 - inEra / 146096) / 365;
    const std::int64_t inYear = inEra - (365 * yearInEra + yearInEra / 4 - yearInEra / 100);
    const std::int64_t fromMarch = (5 * inYear + 2) / 153;
    const auto day = static_cast<int>(inYear - (153 * fromMarch + 2) / 5 + 1);
    const auto month = static_cast<int>(fromMarch < 10 ? fromMarch + 3 : fromMarch - 9);
    return {yearInEra + era * 400 + (month <= 2 ? 1 : 0), {month, day}};
}

std::optional<MonthDay> checked(const DateComponents& parts) {
    static constexpr int kLongest[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (!parts.month || !parts.day || *parts.month < 1 || *parts.month > 12 || *parts.day < 1 ||
        *parts.day > kLongest[*parts.month - 1]) {
        return std::nullopt;
    }
    return MonthDay{*parts.month, *parts.day};
}

// What clock and calendar show here; none for what is no moment.
std::optional<std::tm> localTime(Date date) {
    if (!(std::fabs(date.seconds) < kFarthest)) {
        return std::nullopt;
    }
    const auto moment = static_cast<std::time_t>(std::floor(date.seconds + kReferenceDate));
    std::tm parts{};
    return localtime_r(&moment, &parts) != nullptr ? std::optional(parts) : std::nullopt;
}

std::int64_t dayNumberOf(const std::tm& parts) {
    return dayNumber(std::int64_t{parts.tm_year} + 1900, {parts.tm_mon + 1, parts.tm_mday});
}

} // namespace

Date currentTime() {
    const std::chrono::duration<double> since1970 = std::chrono::system_clock::now().time_since_epoch();
    return {since1970.count() - kReferenceDate};
}

std::int64_t dayNumber(std::int64_t year, MonthDay day) {
    const std::int64_t fromMarch = day.month > 2 ? day.month - 3 : day.month + 9;
    const std::int64_t shifted = day.month > 2 ? year : year - 1;
    const std::int64_t era = floorDivide(shifted, 400);
    const std::int64_t yearInEra = shifted - era * 400;
    const std::int64_t inYear = (153 * fromMarch + 2) / 5 + day.day - 1;
    return era * 146097 + yearInEra * 365 + yearInEra / 4 - yearInEra / 100 + inYear - 719468;
}

std::int64_t yearOf(std::int64_t dayNumber) {
    return civil(dayNumber).year;
}

double utcMidnight(double dayNumber) {
    return dayNumber * kSecondsPerDay - kReferenceDate;
}

std::optional<std::int64_t> utcDay(Date date) {
    if (!(std::fabs(date.seconds) < kFarthest)) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(std::floor((date.seconds + kReferenceDate) / kSecondsPerDay));
}

std::optional<std::int64_t> localDay(Date date) {
    const auto parts = localTime(date);
    return parts ? std::optional(dayNumberOf(*parts)) : std::nullopt;
}

bool isDate(const Value& value) {
    return value.as<Date>() != nullptr || value.as<FloatingDate>() != nullptr;
}

FloatingDate noonOf(int year, MonthDay day) {
    return {utcMidnight(static_cast<double>(dayNumber(year, day))) + kNoon};
}

bool isNoon(FloatingDate date) {
    return std::fmod(date.seconds - kNoon, kSecondsPerDay) == 0;
}

std::optional<FloatingDate> clockAt(Date date) {
    const auto parts = localTime(date);
    if (!parts) {
        return std::nullopt;
    }
    const double midnight = utcMidnight(static_cast<double>(dayNumberOf(*parts)));
    const double second = parts->tm_hour * 3600 + parts->tm_min * 60 + parts->tm_sec;
    return FloatingDate{midnight + second + (date.seconds - std::floor(date.seconds))};
}

Date momentOf(FloatingDate date) {
    const auto number = utcDay(Date{date.seconds}); // that clock's days are as long as those of UTC
    if (!number) {
        return {date.seconds};
    }
    const Civil day = civil(*number);
    const double ofDay = date.seconds - utcMidnight(static_cast<double>(*number));
    std::tm parts{};
    parts.tm_year = static_cast<int>(day.year - 1900);
    parts.tm_mon = day.day.month - 1;
    parts.tm_mday = day.day.day;
    parts.tm_sec = static_cast<int>(ofDay);
    parts.tm_isdst = -1;
    parts.tm_hour = parts.tm_sec / 3600;
    parts.tm_min = parts.tm_sec / 60 % 60;
    parts.tm_sec %= 60;
    return {static_cast<double>(std::mktime(&parts)) - kReferenceDate + (ofDay - std::floor(ofDay))};
}

Value storedDate(std::string_view property, Date date) {
    const auto clock = clockAt(date);
    if (!clock || momentOf(*clock) != date) {
        return date;
    }
    return property == property::kBirthday || isNoon(*clock) ? Value(*clock) : Value(date);
}

std::optional<DateComponents> dayParts(const Value& date) {
    const auto number = isDate(date) ? dayOf(date) : std::nullopt;
    if (!number) {
        return std::nullopt;
    }
    const Civil day = civil(*number);
    DateComponents parts;
    parts.month = day.day.month;
    parts.day = day.day.day;
    if (day.year != kNoYear) {
        parts.year = static_cast<int>(day.year);
    }
    return parts;
}

std::optional<std::int64_t> dayOf(const Value& value) {
    if (const auto* date = value.as<Date>()) {
        return localDay(*date);
    }
    if (const auto* day = value.as<FloatingDate>()) {
        return utcDay(Date{day->seconds});
    }
    const auto* parts = value.as<DateComponents>();
    if (parts == nullptr || !parts->year) {
        return std::nullopt;
    }
    const auto day = checked(*parts);
    return day ? std::optional(anniversary(*parts->year, *day)) : std::nullopt;
}

MonthDay dayOfYear(std::int64_t dayNumber) {
    return civil(dayNumber).day;
}

std::optional<MonthDay> monthDayOf(const Value& value) {
    if (const auto* parts = value.as<DateComponents>()) {
        return checked(*parts);
    }
    const auto day = dayOf(value);
    return day ? std::optional(dayOfYear(*day)) : std::nullopt;
}

std::int64_t anniversary(std::int64_t year, MonthDay day) {
    if (day.month == 2 && day.day == 29 && !isLeap(year)) {
        day.day = 28;
    }
    return dayNumber(year, day);
}

} // namespace addressbook
