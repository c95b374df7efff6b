// Times, timestamps and the clock.
#include "host/calc/functions/groups.h"
#include "host/calc/functions/moments.h"

#include <array>
#include <chrono>

namespace host {

namespace {

Value hour(Session& /*session*/, Arguments in) {
    return timePart(in, [](const DateTime& time) { return integerValue(time.clock().hour); });
}
Value minute(Session& /*session*/, Arguments in) {
    return timePart(in, [](const DateTime& time) { return integerValue(time.clock().minute); });
}
// Returns the seconds with their fraction.
Value seconds(Session& /*session*/, Arguments in) {
    return timePart(in, [](const DateTime& time) {
        const Number& all = time.seconds();
        return Value::number(all - (all / 60).truncated() * 60);
    });
}

Value timeFunction(Session& /*session*/, Arguments in) {
    const Number all = in[0].asNumber().value_or(0) * 3600 + in[1].asNumber().value_or(0) * 60 +
                       in[2].asNumber().value_or(0);
    const auto time = DateTime::fromSeconds(all);
    return time && areValid(in) ? Value::time(*time) : Value::invalid();
}

Value timestampFunction(Session& /*session*/, Arguments in) {
    const std::optional<DateTime> day = in[0].asDate();
    const std::optional<DateTime> time = in[1].isEmpty() ? DateTime() : in[1].asTime();
    return day && time ? Value::timestamp(DateTime(day->day(), time->seconds())) : Value::invalid();
}

constexpr Builtin kFunctions[] = {
    {u"Hour ( time )", hour, "Returns the hours of a time."},
    {u"Minute ( time )", minute, "Returns the minutes of a time."},
    {u"Seconds ( time )", seconds, "Returns the seconds of a time."},
    {u"Time ( hours ; minutes ; seconds )", timeFunction, "Returns the time of hours, minutes and seconds."},
    {u"Timestamp ( date ; time )", timestampFunction, "Returns the timestamp of a date and a time."},
};

// Returns the current time in whole seconds.
DateTime clockNow() {
    const DateTime now = DateTime::now();
    return DateTime(now.day(), now.seconds().truncated());
}

// Returns the number of units of time since 1 January of year 1, in UTC.
template <class Unit>
Value sinceYearOne(Session& /*session*/) {
    constexpr int64_t kSecondsBefore1970 = 62'135'596'800;
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const auto before = std::chrono::duration_cast<Unit>(std::chrono::seconds(kSecondsBefore1970));
    return integerValue((std::chrono::duration_cast<Unit>(now) + before).count());
}

constexpr GetRow kGets[] = {
    {u"CurrentDate", [](Session& /*session*/) { return Value::date(clockNow()); }, "Today's date."},
    {u"CurrentHostTimestamp", [](Session& /*session*/) { return Value::timestamp(clockNow()); },
     "The date and time of the host, to the second."},
    {u"CurrentTime", [](Session& /*session*/) { return Value::time(clockNow()); },
     "The time of day, to the second."},
    {u"CurrentTimestamp", [](Session& /*session*/) { return Value::timestamp(clockNow()); },
     "The date and time, to the second."},
    {u"CurrentTimeUTCMicroseconds", sinceYearOne<std::chrono::microseconds>,
     "Microseconds since January 1 of year 1, in Universal Time."},
    {u"CurrentTimeUTCMilliseconds", sinceYearOne<std::chrono::milliseconds>,
     "Milliseconds since January 1 of year 1, in Universal Time."},
};

} // namespace

std::span<const Builtin> timeFunctions() {
    return kFunctions;
}

std::span<const GetRow> clockGets() {
    return kGets;
}

} // namespace host
