#pragma once

/// Dates, times and time stamps of the host: an object holds a day and a time of day.
///
/// The calendar is the Gregorian one for all years, 1 to 4000; the epoch is the start of 1 January of year 1.

#include "FMXClient.h"

FMX_BEGIN_CALLS

FMX_API fmx::DateTime* FM_DateTime_Constructor1(fmx::_fmxcpt&) noexcept;
FMX_API fmx::DateTime* FM_DateTime_Constructor2(const fmx::uint16* text, fmx::uint32 length,
                                                const fmx::Locale& locale, fmx::_fmxcpt&) noexcept;
FMX_API fmx::DateTime* FM_DateTime_Constructor3(const fmx::Text& text, const fmx::Locale& locale,
                                                fmx::_fmxcpt&) noexcept;
FMX_API void FM_DateTime_Delete(void* self, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_DateTime_operatorEQ(const void* self, const fmx::DateTime& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_DateTime_operatorNE(const void* self, const fmx::DateTime& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_DateTime_IsLeapYear(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::int16 FM_DateTime_DayOfWeek(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::int16 FM_DateTime_DayOfYear(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::int16 FM_DateTime_WeekOfYear(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_DateTime_Now(void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_DateTime_SetDate(void* self, const fmx::DateTime& date, fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_DateTime_SetNormalizedDate1(void* self, fmx::int16 month, fmx::int16 day,
                                                    fmx::int16 year, fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_DateTime_SetNormalizedDate2(void* self, const fmx::FixPt& year,
                                                    const fmx::FixPt& month, const fmx::FixPt& day,
                                                    fmx::_fmxcpt&) noexcept;
FMX_API void FM_DateTime_SetDaysSinceEpoch(void* self, fmx::int64 days, fmx::_fmxcpt&) noexcept;
FMX_API void FM_DateTime_SetTime(void* self, const fmx::DateTime& time, fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_DateTime_SetNormalizedTime1(void* self, fmx::int64 hour, fmx::int16 minute,
                                                    fmx::int16 second, fmx::int32 microseconds,
                                                    fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_DateTime_SetNormalizedTime2(void* self, const fmx::FixPt& hour,
                                                    const fmx::FixPt& minute, const fmx::FixPt& second,
                                                    fmx::_fmxcpt&) noexcept;
FMX_API void FM_DateTime_SetSecsSinceMidnight(void* self, const fmx::FixPt& seconds, fmx::_fmxcpt&) noexcept;
FMX_API void FM_DateTime_SetSecondsSinceEpoch(void* self, const fmx::FixPt& seconds, fmx::_fmxcpt&) noexcept;
FMX_API fmx::int16 FM_DateTime_GetYear(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::int16 FM_DateTime_GetMonth(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::int16 FM_DateTime_GetDay(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::int32 FM_DateTime_GetDaysSinceEpoch(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::int32 FM_DateTime_GetHour(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::int16 FM_DateTime_GetMinute(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::int16 FM_DateTime_GetSec(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::int32 FM_DateTime_GetUSec(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_DateTime_GetSeconds(const void* self, fmx::FixPt& seconds, fmx::_fmxcpt&) noexcept;
FMX_API void FM_DateTime_GetSecsSinceMidnight(const void* self, fmx::FixPt& seconds, fmx::_fmxcpt&) noexcept;
FMX_API void FM_DateTime_GetSecondsSinceEpoch(const void* self, fmx::FixPt& seconds, fmx::_fmxcpt&) noexcept;

FMX_END_CALLS

namespace fmx {

/// A day and a time of day. A new one is 1 January of year 1 at 0:00:00.
///
/// A setter that returns an error code other than 0 leaves the object unchanged.
class DateTime {
  public:
    FMX_OPAQUE_CLASS(DateTime)
    DateTime& operator=(const DateTime&) = delete;

    bool operator==(const DateTime& other) const { return Call(FM_DateTime_operatorEQ, this, other); }
    bool operator!=(const DateTime& other) const { return Call(FM_DateTime_operatorNE, this, other); }

    bool IsLeapYear() const { return Call(FM_DateTime_IsLeapYear, this); }
    /// 1 is Sunday.
    int16 DayOfWeek() const { return Call(FM_DateTime_DayOfWeek, this); }
    /// 1 is 1 January.
    int16 DayOfYear() const { return Call(FM_DateTime_DayOfYear, this); }
    /// The week that holds 1 January is 1; weeks start on Sunday.
    int16 WeekOfYear() const { return Call(FM_DateTime_WeekOfYear, this); }

    /// Sets the current local day and time.
    void Now() { Call(FM_DateTime_Now, this); }

    /// Sets the day to that of another object; the time stays.
    void SetDate(const DateTime& date) { Call(FM_DateTime_SetDate, this, date); }
    /// Sets the day. Returns non-zero for a day that the calendar does not have.
    errcode SetNormalizedDate(int16 month, int16 day, int16 year) {
        return Call(FM_DateTime_SetNormalizedDate1, this, month, day, year);
    }
    errcode SetNormalizedDate(const FixPt& year, const FixPt& month, const FixPt& day) {
        return Call(FM_DateTime_SetNormalizedDate2, this, year, month, day);
    }
    /// The epoch's own day is 1.
    void SetDaysSinceEpoch(int64 days) { Call(FM_DateTime_SetDaysSinceEpoch, this, days); }

    /// Sets the time to that of another object; the day stays.
    void SetTime(const DateTime& time) { Call(FM_DateTime_SetTime, this, time); }
    /// Sets the time. The hour may be more than 23. Returns non-zero for a negative part, for minutes or
    /// seconds of 60 and more, and for microseconds that make a second.
    errcode SetNormalizedTime(int64 hour, int16 minute, int16 second, int32 microseconds) {
        return Call(FM_DateTime_SetNormalizedTime1, this, hour, minute, second, microseconds);
    }
    errcode SetNormalizedTime(const FixPt& hour, const FixPt& minute, const FixPt& second) {
        return Call(FM_DateTime_SetNormalizedTime2, this, hour, minute, second);
    }
    /// A time may be negative, and longer than a day.
    void SetSecsSinceMidnight(const FixPt& seconds) { Call(FM_DateTime_SetSecsSinceMidnight, this, seconds); }
    /// Sets day and time.
    void SetSecondsSinceEpoch(const FixPt& seconds) { Call(FM_DateTime_SetSecondsSinceEpoch, this, seconds); }

    int16 GetYear() const { return Call(FM_DateTime_GetYear, this); }
    int16 GetMonth() const { return Call(FM_DateTime_GetMonth, this); }
    int16 GetDay() const { return Call(FM_DateTime_GetDay, this); }
    int32 GetDaysSinceEpoch() const { return Call(FM_DateTime_GetDaysSinceEpoch, this); }
    int32 GetHour() const { return Call(FM_DateTime_GetHour, this); }
    int16 GetMinute() const { return Call(FM_DateTime_GetMinute, this); }
    int16 GetSec() const { return Call(FM_DateTime_GetSec, this); }
    int32 GetUSec() const { return Call(FM_DateTime_GetUSec, this); }
    /// The seconds of the minute, with their fraction.
    void GetSeconds(FixPt& seconds) const { Call(FM_DateTime_GetSeconds, this, seconds); }
    void GetSecsSinceMidnight(FixPt& seconds) const { Call(FM_DateTime_GetSecsSinceMidnight, this, seconds); }
    void GetSecondsSinceEpoch(FixPt& seconds) const { Call(FM_DateTime_GetSecondsSinceEpoch, this, seconds); }
};

/// Owns a date-time: the epoch, or the one that a text gives.
template <class Base>
class DateTimeHolder : public Base {
  public:
    DateTimeHolder() : Base(Call(FM_DateTime_Constructor1)) {}
    DateTimeHolder(const uint16* text, uint32 length, const Locale& locale)
        : Base(Call(FM_DateTime_Constructor2, text, length, locale)) {}
    DateTimeHolder(const Text& text, const Locale& locale)
        : Base(Call(FM_DateTime_Constructor3, text, locale)) {}
};
FMX_HOLDERS(DateTime)

} // namespace fmx
