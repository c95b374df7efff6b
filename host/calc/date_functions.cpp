#include "host/calc/function_groups.h"
#include "host/calc/session.h"

#include <optional>

namespace host {

namespace {

using Arguments = std::span<const Value>;

// A value of [type] made from [moment]; "?" when there is none.
Value made(ValueType type, const std::optional<DateTime>& moment) {
    if (!moment) {
        return Value::invalid();
    }
    switch (type) {
    case ValueType::date:
        return Value::date(*moment);
    case ValueType::time:
        return Value::time(*moment);
    default:
        return Value::timestamp(*moment);
    }
}

// Months and days outside their range carry over.
Value dateFunction(Session& /*session*/, Arguments in) {
    const std::optional<int32_t> day = dayNumber(integer(in[2]), integer(in[0]), integer(in[1]));
    return made(ValueType::date, day ? std::optional(DateTime(*day)) : std::nullopt);
}

Value timeFunction(Session& /*session*/, Arguments in) {
    const Number seconds = in[0].asNumber().value_or(0) * 3600 + in[1].asNumber().value_or(0) * 60 +
                           in[2].asNumber().value_or(0);
    return made(ValueType::time, DateTime::fromSeconds(seconds));
}

Value timestampFunction(Session& /*session*/, Arguments in) {
    const std::optional<DateTime> day = in[0].asDate();
    const std::optional<DateTime> time = in[1].isEmpty() ? DateTime() : in[1].asTime();
    if (!day || !time) {
        return Value::invalid();
    }
    return made(ValueType::timestamp, DateTime(day->day(), time->seconds()).normalized());
}

Value asDate(Session& /*session*/, Arguments in) {
    return in[0].convertedTo(ValueType::date);
}
Value asTime(Session& /*session*/, Arguments in) {
    return in[0].convertedTo(ValueType::time);
}
Value asTimestamp(Session& /*session*/, Arguments in) {
    return in[0].convertedTo(ValueType::timestamp);
}
Value asText(Session& /*session*/, Arguments in) {
    return Value::text(in[0].asText());
}

// A part of the day or the time that a value is; nothing for an empty value, "?" for one that is none.
template <class Part>
Value part(const Value& value, const std::optional<DateTime>& read, Part take) {
    if (!read) {
        return value.isEmpty() ? Value() : Value::invalid();
    }
    return Value::number(take(*read));
}
template <class Part>
Value dayPart(Arguments in, Part take) {
    return part(in[0], in[0].asDate(), take);
}
template <class Part>
Value timePart(Arguments in, Part take) {
    return part(in[0], in[0].asTime(), take);
}

Value day(Session& /*session*/, Arguments in) {
    return dayPart(in, [](const DateTime& date) { return date.calendar().day; });
}
Value month(Session& /*session*/, Arguments in) {
    return dayPart(in, [](const DateTime& date) { return date.calendar().month; });
}
Value year(Session& /*session*/, Arguments in) {
    return dayPart(in, [](const DateTime& date) { return date.calendar().year; });
}
Value dayOfWeek(Session& /*session*/, Arguments in) {
    return dayPart(in, [](const DateTime& date) { return date.dayOfWeek(); });
}
Value hour(Session& /*session*/, Arguments in) {
    return timePart(in, [](const DateTime& time) { return time.clock().hour; });
}
Value minute(Session& /*session*/, Arguments in) {
    return timePart(in, [](const DateTime& time) { return time.clock().minute; });
}
Value seconds(Session& /*session*/, Arguments in) {
    return timePart(in, [](const DateTime& time) { return time.clock().second; });
}

constexpr Builtin kFunctions[] = {
    {u"Date ( month ; day ; year )", dateFunction},
    {u"Day ( date )", day},
    {u"DayOfWeek ( date )", dayOfWeek},
    {u"GetAsDate ( data )", asDate},
    {u"GetAsText ( data )", asText},
    {u"GetAsTime ( data )", asTime},
    {u"GetAsTimestamp ( data )", asTimestamp},
    {u"Hour ( time )", hour},
    {u"Minute ( time )", minute},
    {u"Month ( date )", month},
    {u"Seconds ( time )", seconds},
    {u"Time ( hours ; minutes ; seconds )", timeFunction},
    {u"Timestamp ( date ; time )", timestampFunction},
    {u"Year ( date )", year},
};

// A moment of the clock without the fraction of its second.
DateTime clockNow() {
    const DateTime now = DateTime::now();
    return DateTime(now.day(), now.seconds().truncated());
}

constexpr GetRow kGetRows[] = {
    {u"CurrentDate", [](Session& /*session*/) { return Value::date(clockNow()); }},
    {u"CurrentTime", [](Session& /*session*/) { return Value::time(clockNow()); }},
    {u"CurrentTimestamp", [](Session& /*session*/) { return Value::timestamp(clockNow()); }},
    {u"LastError", [](Session& session) { return integerValue(session.lastError()); }},
    {u"ScriptName", [](Session& session) { return Value::text(session.frame().scriptName); }},
    {u"ScriptParameter", [](Session& session) { return session.frame().parameter; }},
    {u"ScriptResult", [](Session& session) { return session.frame().scriptResult; }},
};

} // namespace

std::span<const Builtin> dateFunctions() {
    return kFunctions;
}
std::span<const GetRow> getRows() {
    return kGetRows;
}

} // namespace host
