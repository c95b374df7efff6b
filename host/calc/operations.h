#pragma once

// The operators on values. They throw NumberError for a computation without a result, which the evaluator
// makes "?".

#include "host/calc/operators.h"
#include "host/values/value.h"

#include <compare>

namespace host {

// Returns the number 1 or 0.
Value truth(bool value);

// Applies +, - or not. An invalid value ("?") stays invalid.
Value applyUnary(Operator op, const Value& operand);

// Applies any operator between two values, except &. Arithmetic with an invalid value ("?") gives "?". A
// date, a time or a time stamp plus or minus a number keeps its type; the difference of two times, or of two
// time stamps, is a time. A quotient or a power is rounded to [places] digits after the point.
Value applyBinary(Operator op, const Value& left, const Value& right, int places = Number::kQuotientPlaces);

// Compares two values: as numbers when at least one of them is not text and both have a number; else as texts
// without regard to letter case. A text that is compared with a date, a time or a time stamp is read as one
// if it gives one.
std::strong_ordering compareValues(const Value& left, const Value& right);

// Appends the value's text to [text].
void appendText(std::u16string& text, const Value& value);

} // namespace host
