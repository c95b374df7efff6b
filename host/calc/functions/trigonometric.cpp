// Trigonometry, computed with doubles whatever the precision; the results have 17 significant digits.
#include "host/calc/functions/groups.h"

#include <charconv>
#include <cmath>
#include <string>

namespace host {

namespace {

constexpr std::u16string_view kPi = u"3.1415926535897932";

Number pi() {
    return Number::fromText(kPi);
}

// Returns a double as a decimal number of 17 significant digits.
Number decimal(double value) {
    constexpr int kDigitsBehindFirst = 16;
    if (!std::isfinite(value)) {
        throw NumberError("there is no such angle");
    }
    char buffer[40];
    const auto end = std::to_chars(std::begin(buffer), std::end(buffer), value, std::chars_format::scientific,
                                   kDigitsBehindFirst)
                         .ptr;
    return Number::fromText(std::u16string(std::begin(buffer), end));
}

template <class Function>
Value computed(Arguments in, Function function) {
    return in[0].isValid() ? Value::number(function(in[0].asNumber().value_or(0))) : Value::invalid();
}

template <double (*function)(double)>
Value binary(Session& /*session*/, Arguments in) {
    return computed(in, [](const Number& number) { return decimal(function(number.toDouble())); });
}

Value degrees(Session& /*session*/, Arguments in) {
    return computed(in, [](const Number& number) { return number * 180 / pi(); });
}
Value radians(Session& /*session*/, Arguments in) {
    return computed(in, [](const Number& number) { return number * pi() / 180; });
}
Value piFunction(Session& /*session*/, Arguments /*in*/) {
    return Value::number(pi());
}

constexpr Builtin kFunctions[] = {
    {u"Acos ( number )", binary<std::acos>, "Returns the angle that has a cosine."},
    {u"Asin ( number )", binary<std::asin>, "Returns the angle that has a sine."},
    {u"Atan ( number )", binary<std::atan>, "Returns the angle that has a tangent."},
    {u"Cos ( angleInRadians )", binary<std::cos>, "Returns the cosine of an angle."},
    {u"Degrees ( angleInRadians )", degrees, "Converts an angle from radians to degrees."},
    {u"Pi", piFunction, "Returns the ratio of a circle's circumference to its diameter."},
    {u"Radians ( angleInDegrees )", radians, "Converts an angle from degrees to radians."},
    {u"Sin ( angleInRadians )", binary<std::sin>, "Returns the sine of an angle."},
    {u"Tan ( angleInRadians )", binary<std::tan>, "Returns the tangent of an angle."},
};

} // namespace

std::span<const Builtin> trigonometricFunctions() {
    return kFunctions;
}

} // namespace host
