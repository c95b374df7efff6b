// FM_DateTime_*.
#include "host/values/locales.h"
#include "host/wrapper/guard.h"
#include "host/wrapper/objects.h"

using fmx::_fmxcpt;
using fmx::DateTime;
using fmx::errcode;
using fmx::FixPt;
using fmx::int16;
using fmx::int32;
using fmx::int64;
using fmx::Locale;
using fmx::Text;
using host::guarded;
using host::inside;
using host::Number;
using host::self;

namespace {

using Moment = host::DateTime;

// Returns the date, the time or both that a text gives in a locale; 1 January of year 1, 0:00 when it gives
// neither.
Moment spelt(std::u16string_view text, const Locale& locale) {
    const auto moment = host::timestampIn(inside(locale).type, text);
    return moment ? *moment : Moment::timeFromText(text).value_or(Moment());
}

errcode setDay(Moment& moment, int64 year, int64 month, int64 day) {
    if (!host::isCalendarDay(year, month, day)) {
        return host::kNoDate;
    }
    moment = Moment(*host::dayNumber(year, month, day), moment.seconds());
    return host::kSucceeded;
}

errcode setTime(Moment& moment, const Number& seconds) {
    const auto time = Moment::fromSeconds(seconds);
    if (!time) {
        return host::kNoTime;
    }
    moment = Moment(moment.day(), time->seconds());
    return host::kSucceeded;
}

errcode setClock(Moment& moment, const Number& hour, const Number& minute, const Number& second) {
    const bool valid =
        hour.sign() >= 0 && minute.sign() >= 0 && minute < 60 && second.sign() >= 0 && second < 60;
    return valid ? setTime(moment, hour * 3600 + minute * 60 + second) : host::kNoTime;
}

} // namespace

DateTime* FM_DateTime_Constructor1(_fmxcpt& block) noexcept {
    return guarded(block, [] { return host::made<DateTime>(); });
}
DateTime* FM_DateTime_Constructor2(const fmx::uint16* text, fmx::uint32 length, const Locale& locale,
                                   _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        host::requireBuffer(text, length);
        return host::made<DateTime>(spelt(std::u16string(text, text + length), locale));
    });
}
DateTime* FM_DateTime_Constructor3(const Text& text, const Locale& locale, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return host::made<DateTime>(spelt(inside(text).characters, locale)); });
}
void FM_DateTime_Delete(void* object, _fmxcpt&) noexcept {
    host::destroy<DateTime>(object);
}

bool FM_DateTime_operatorEQ(const void* object, const DateTime& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<DateTime>(object) == inside(other); });
}
bool FM_DateTime_operatorNE(const void* object, const DateTime& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<DateTime>(object) != inside(other); });
}

bool FM_DateTime_IsLeapYear(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return host::isLeapYear(self<DateTime>(object).calendar().year); });
}
int16 FM_DateTime_DayOfWeek(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return static_cast<int16>(self<DateTime>(object).dayOfWeek()); });
}
int16 FM_DateTime_DayOfYear(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return static_cast<int16>(self<DateTime>(object).dayOfYear()); });
}
int16 FM_DateTime_WeekOfYear(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return static_cast<int16>(self<DateTime>(object).weekOfYear()); });
}

void FM_DateTime_Now(void* object, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<DateTime>(object) = Moment::now(); });
}
void FM_DateTime_SetDate(void* object, const DateTime& date, _fmxcpt& block) noexcept {
    guarded(block,
            [&] { self<DateTime>(object) = Moment(inside(date).day(), self<DateTime>(object).seconds()); });
}
errcode FM_DateTime_SetNormalizedDate1(void* object, int16 month, int16 day, int16 year,
                                       _fmxcpt& block) noexcept {
    return guarded(block, [&] { return setDay(self<DateTime>(object), year, month, day); });
}
errcode FM_DateTime_SetNormalizedDate2(void* object, const FixPt& year, const FixPt& month, const FixPt& day,
                                       _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        return setDay(self<DateTime>(object), inside(year).value.toInt64(), inside(month).value.toInt64(),
                      inside(day).value.toInt64());
    });
}
void FM_DateTime_SetDaysSinceEpoch(void* object, int64 days, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        Moment& moment = self<DateTime>(object);
        if (days < 1 || days > host::kLastDay) {
            throw std::out_of_range("no day of the calendar");
        }
        moment = Moment(static_cast<int32_t>(days), moment.seconds());
    });
}

void FM_DateTime_SetTime(void* object, const DateTime& time, _fmxcpt& block) noexcept {
    guarded(block,
            [&] { self<DateTime>(object) = Moment(self<DateTime>(object).day(), inside(time).seconds()); });
}
errcode FM_DateTime_SetNormalizedTime1(void* object, int64 hour, int16 minute, int16 second,
                                       int32 microseconds, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        Moment& moment = self<DateTime>(object);
        const bool valid = hour >= 0 && hour <= host::kMaxTimeSeconds / 3600 && minute >= 0 && minute < 60 &&
                           second >= 0 && second < 60 && microseconds >= 0 && microseconds <= 999'999;
        if (!valid) {
            return host::kNoTime;
        }
        const int64 whole = hour * 3600 + int64{minute} * 60 + second;
        return setTime(moment, microseconds == 0 ? Number(whole)
                                                 : whole + Number::divide(microseconds, 1'000'000, 6));
    });
}
errcode FM_DateTime_SetNormalizedTime2(void* object, const FixPt& hour, const FixPt& minute,
                                       const FixPt& second, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        return setClock(self<DateTime>(object), inside(hour).value, inside(minute).value,
                        inside(second).value);
    });
}
void FM_DateTime_SetSecsSinceMidnight(void* object, const FixPt& seconds, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        if (setTime(self<DateTime>(object), inside(seconds).value) != host::kSucceeded) {
            throw std::out_of_range("a longer time than there is");
        }
    });
}
void FM_DateTime_SetSecondsSinceEpoch(void* object, const FixPt& seconds, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        Moment& moment = self<DateTime>(object);
        const auto wanted = Moment::fromTimestampSeconds(inside(seconds).value);
        if (!wanted) {
            throw std::out_of_range("no day of the calendar");
        }
        moment = *wanted;
    });
}

int16 FM_DateTime_GetYear(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return static_cast<int16>(self<DateTime>(object).calendar().year); });
}
int16 FM_DateTime_GetMonth(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return static_cast<int16>(self<DateTime>(object).calendar().month); });
}
int16 FM_DateTime_GetDay(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return static_cast<int16>(self<DateTime>(object).calendar().day); });
}
int32 FM_DateTime_GetDaysSinceEpoch(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return int32{self<DateTime>(object).day()}; });
}
int32 FM_DateTime_GetHour(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return static_cast<int32>(self<DateTime>(object).clock().hour); });
}
int16 FM_DateTime_GetMinute(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return static_cast<int16>(self<DateTime>(object).clock().minute); });
}
int16 FM_DateTime_GetSec(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return static_cast<int16>(self<DateTime>(object).clock().second); });
}
int32 FM_DateTime_GetUSec(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return int32{self<DateTime>(object).clock().microsecond}; });
}
void FM_DateTime_GetSeconds(const void* object, FixPt& seconds, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        const Number& all = self<DateTime>(object).seconds();
        host::assign(inside(seconds), all - Number(all.toInt64() / 60 * 60));
    });
}
void FM_DateTime_GetSecsSinceMidnight(const void* object, FixPt& seconds, _fmxcpt& block) noexcept {
    guarded(block, [&] { host::assign(inside(seconds), self<DateTime>(object).seconds()); });
}
void FM_DateTime_GetSecondsSinceEpoch(const void* object, FixPt& seconds, _fmxcpt& block) noexcept {
    guarded(block, [&] { host::assign(inside(seconds), self<DateTime>(object).timestampSeconds()); });
}
