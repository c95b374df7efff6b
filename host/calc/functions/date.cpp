#include "host/calc/functions/groups.h"
#include "host/calc/functions/moments.h"
#include "host/values/formats.h"

#include <optional>

namespace host {

namespace {

// Returns a date; months and days outside their range carry over.
Value dateFunction(Session& /*session*/, Arguments in) {
    const std::optional<int32_t> day = dayNumber(integer(in[2]), integer(in[0]), integer(in[1]));
    return day && areValid(in) ? Value::date(DateTime(*day)) : Value::invalid();
}

Value day(Session& /*session*/, Arguments in) {
    return dayPart(in, [](const DateTime& date) { return integerValue(date.calendar().day); });
}
Value dayName(Session& /*session*/, Arguments in) {
    return dayPart(in, [](const DateTime& date) {
        return Value::text(formats().dayNames.at(static_cast<size_t>(date.dayOfWeek() - 1)));
    });
}
Value dayOfWeek(Session& /*session*/, Arguments in) {
    return dayPart(in, [](const DateTime& date) { return integerValue(date.dayOfWeek()); });
}
Value dayOfYear(Session& /*session*/, Arguments in) {
    return dayPart(in, [](const DateTime& date) { return integerValue(date.dayOfYear()); });
}
Value month(Session& /*session*/, Arguments in) {
    return dayPart(in, [](const DateTime& date) { return integerValue(date.calendar().month); });
}
Value monthName(Session& /*session*/, Arguments in) {
    return dayPart(in, [](const DateTime& date) {
        return Value::text(formats().monthNames.at(static_cast<size_t>(date.calendar().month - 1)));
    });
}
Value weekOfYear(Session& /*session*/, Arguments in) {
    return dayPart(in, [](const DateTime& date) { return integerValue(date.weekOfYear()); });
}
Value weekOfYearFiscal(Session& /*session*/, Arguments in) {
    const int64_t firstDay = integer(in[1]);
    if (firstDay < 1 || firstDay > 7) {
        return Value::invalid();
    }
    return dayPart(in, [firstDay](const DateTime& date) {
        return integerValue(date.fiscalWeekOfYear(static_cast<int>(firstDay)));
    });
}
Value year(Session& /*session*/, Arguments in) {
    return dayPart(in, [](const DateTime& date) { return integerValue(date.calendar().year); });
}

constexpr Builtin kFunctions[] = {
    {u"Date ( month ; day ; year )", dateFunction, "Returns the date of a month, a day and a year."},
    {u"Day ( date )", day, "Returns the day of the month, 1 to 31."},
    {u"DayName ( date )", dayName, "Returns the name of the day of the week."},
    {u"DayOfWeek ( date )", dayOfWeek, "Returns the day of the week, 1 for Sunday to 7."},
    {u"DayOfYear ( date )", dayOfYear, "Returns the day of the year, 1 to 366."},
    {u"Month ( date )", month, "Returns the month, 1 to 12."},
    {u"MonthName ( date )", monthName, "Returns the name of the month."},
    {u"WeekOfYear ( date )", weekOfYear, "Returns the week of the year; January 1 is in week 1."},
    {u"WeekOfYearFiscal ( date ; startingDay )", weekOfYearFiscal,
     "Returns the week of the year; week 1 is the first with four days in the year."},
    {u"Year ( date )", year, "Returns the year of a date."},
};

} // namespace

std::span<const Builtin> dateFunctions() {
    return kFunctions;
}

} // namespace host
