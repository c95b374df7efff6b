#include "host/values/date_time.h"

#include <chrono>
#include <ctime>

namespace host {

namespace {

constexpr int32_t kDaysIn400Years = 146097;
constexpr int kDaysBeforeMonth[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};

// Returns the number of days before the first of a month (1 to 12), for any year from 1 on.
int64_t daysBefore(int64_t year, int month) {
    const int64_t past = year - 1;
    const bool leapDay = month > 2 && year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    return past * 365 + past / 4 - past / 100 + past / 400 + kDaysBeforeMonth[month - 1] + (leapDay ? 1 : 0);
}

} // namespace

bool isLeapYear(int year) noexcept {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

int daysInMonth(int year, int month) noexcept {
    return kDaysBeforeMonth[month] - kDaysBeforeMonth[month - 1] + (month == 2 && isLeapYear(year) ? 1 : 0);
}

bool isCalendarDay(int64_t year, int64_t month, int64_t day) noexcept {
    return year >= kFirstYear && year <= kLastYear && month >= 1 && month <= 12 && day >= 1 &&
           day <= daysInMonth(static_cast<int>(year), static_cast<int>(month));
}

std::optional<int32_t> dayNumber(int64_t year, int64_t month, int64_t day) noexcept {
    // Beyond this, the sums below could overflow. No month or day beyond it can carry back into the calendar.
    constexpr int64_t kFar = 4'000'000;
    if (year < -kFar || year > kFar || month < -kFar || month > kFar || day < -kFar || day > kFar) {
        return std::nullopt;
    }
    const int64_t months = year * 12 + month - 1;
    int64_t carriedYear = months >= 0 ? months / 12 : -((-months + 11) / 12);
    const int carriedMonth = static_cast<int>(months - carriedYear * 12) + 1;
    // Years are counted in whole cycles of 400, so that the count never starts below year 1.
    constexpr int64_t kCycles = 10'000;
    carriedYear += kCycles * 400;
    const int64_t number = daysBefore(carriedYear, carriedMonth) - kCycles * kDaysIn400Years + day;
    return number >= 1 && number <= kLastDay ? std::optional(static_cast<int32_t>(number)) : std::nullopt;
}

CalendarDay calendarDay(int32_t dayNumber) noexcept {
    int32_t rest = dayNumber - 1;
    CalendarDay result;
    result.year = rest / kDaysIn400Years * 400 + 1;
    rest %= kDaysIn400Years;
    const int32_t centuries =
        rest / 36524 - rest / (kDaysIn400Years - 1); // the last day of a cycle does not begin a century
    rest -= centuries * 36524;
    const int32_t fourYears = rest / 1461;
    rest %= 1461;
    const int32_t years = rest / 365 - rest / 1460; // the last day of four years does not begin a year
    rest -= years * 365;
    result.year += centuries * 100 + fourYears * 4 + years;
    result.month = rest / 31 + 1; // the month or the one before it
    if (result.month < 12 && rest >= daysBefore(result.year, result.month + 1) - daysBefore(result.year, 1)) {
        ++result.month;
    }
    result.day =
        rest - static_cast<int32_t>(daysBefore(result.year, result.month) - daysBefore(result.year, 1)) + 1;
    return result;
}

DateTime::DateTime(int32_t dayNumber, Number seconds) : day_(dayNumber), seconds_(std::move(seconds)) {
    if (day_ < 1 || day_ > kLastDay) {
        throw NumberError("the day is outside the calendar");
    }
    if (seconds_.abs() > Number(kMaxTimeSeconds)) {
        throw NumberError("the time is too long");
    }
}

std::optional<DateTime> DateTime::fromTimestampSeconds(const Number& seconds) {
    if (seconds.sign() < 0 || seconds >= Number(kLastDay * kSecondsPerDay)) {
        return std::nullopt;
    }
    const int64_t days = seconds.toInt64() / kSecondsPerDay;
    return DateTime(static_cast<int32_t>(days) + 1, seconds - Number(days * kSecondsPerDay));
}

std::optional<DateTime> DateTime::fromSeconds(const Number& seconds) {
    return seconds.abs() > Number(kMaxTimeSeconds) ? std::nullopt : std::optional(DateTime(1, seconds));
}

ClockTime DateTime::clock() const {
    const int64_t whole = seconds_.toInt64();
    const Number fraction = seconds_ - Number(whole);
    return {whole / 3600, static_cast<int>(whole / 60 % 60), static_cast<int>(whole % 60),
            static_cast<int>((fraction * Number(1'000'000)).toInt64())};
}

Number DateTime::timestampSeconds() const {
    return Number((day_ - 1) * kSecondsPerDay) + seconds_;
}

int DateTime::dayOfYear() const noexcept {
    return static_cast<int>(day_ - daysBefore(calendar().year, 1));
}

int DateTime::weekOfYear() const noexcept {
    const int firstWeekday = static_cast<int>((daysBefore(calendar().year, 1) + 1) % 7); // 0 is Sunday
    return (dayOfYear() - 1 + firstWeekday) / 7 + 1;
}

// A week belongs to the year of its fourth day.
int DateTime::fiscalWeekOfYear(int firstDay) const noexcept {
    const int64_t weekStart = day_ - ((dayOfWeek() - firstDay) % 7 + 7) % 7;
    const int64_t middle = weekStart + 3;
    const int year = middle < 1 ? kFirstYear : calendarDay(static_cast<int32_t>(middle)).year;
    return static_cast<int>((middle - daysBefore(year, 1) - 1) / 7) + 1;
}

std::optional<DateTime> DateTime::normalized() const {
    const bool isNormal = seconds_.sign() >= 0 && seconds_ < kSecondsPerDay;
    return isNormal ? *this : fromTimestampSeconds(timestampSeconds());
}

DateTime DateTime::now() {
    const auto moment = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(moment);
    const auto micros = std::chrono::duration_cast<std::chrono::microseconds>(
        moment - std::chrono::system_clock::from_time_t(seconds));
    std::tm local{};
    localtime_r(&seconds, &local);
    const auto day = dayNumber(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
    const int64_t clock = (local.tm_hour * 60 + local.tm_min) * 60 + local.tm_sec;
    return DateTime(day.value_or(1), Number(clock) + Number::divide(micros.count(), 1'000'000, 6));
}

} // namespace host
