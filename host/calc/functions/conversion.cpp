// The functions GetAs...: a value as another type or in another notation.
#include "host/calc/functions/groups.h"
#include "host/values/text.h"

namespace host {

namespace {

Value asDate(Session& /*session*/, Arguments in) {
    return in[0].convertedTo(ValueType::date);
}
Value asNumber(Session& /*session*/, Arguments in) {
    return in[0].convertedTo(ValueType::number);
}
Value asText(Session& /*session*/, Arguments in) {
    return in[0].type() == ValueType::text ? in[0] : Value::text(in[0].asText());
}
Value asTime(Session& /*session*/, Arguments in) {
    return in[0].convertedTo(ValueType::time);
}
Value asTimestamp(Session& /*session*/, Arguments in) {
    return in[0].convertedTo(ValueType::timestamp);
}

// Escapes every byte of the UTF-8, except those that a URL may contain as they are.
Value asUrlEncoded(Session& /*session*/, Arguments in) {
    constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_.~";
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string result;
    for (const char c : toUtf8(in[0].asText())) {
        const auto byte = static_cast<unsigned char>(c);
        if (kPlain.find(c) != std::string_view::npos) {
            result += c;
        } else {
            result += '%';
            result += kDigits[byte >> 4];
            result += kDigits[byte & 0xF];
        }
    }
    return Value::text(fromUtf8(result));
}

constexpr Builtin kFunctions[] = {
    {u"GetAsDate ( text )", asDate, "Returns the date that a text spells or a number counts."},
    {u"GetAsNumber ( text )", asNumber, "Returns the number that the digits of a text make."},
    {u"GetAsText ( data )", asText, "Returns a value as text; of a container its file name."},
    {u"GetAsTime ( text )", asTime, "Returns the time that a text spells or a number of seconds is."},
    {u"GetAsTimestamp ( text )", asTimestamp,
     "Returns the timestamp that a text spells or a number of seconds is."},
    {u"GetAsURLEncoded ( text )", asUrlEncoded, "Returns a text with percent signs, fit for a web address."},
};

} // namespace

std::span<const Builtin> conversionFunctions() {
    return kFunctions;
}

} // namespace host
