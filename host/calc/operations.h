#pragma once

// What the operators do with values. A computation that has no answer throws NumberError: the evaluator makes
// it "?".

#include "host/calc/operators.h"
#include "host/values/value.h"

#include <compare>

namespace host {

// The number 1 or 0.
Value truth(bool value);

// +, - or not. A value that could not be computed ("?") stays what it is.
Value applyUnary(Operator op, const Value& operand);

// Any operator between two values but joining; `and`, `or` and `xor` get both. A value that could not be
// computed stays "?" in arithmetic. A day, a time or a moment plus or minus a number stays one; the distance
// of two times, or of two moments, is a time. A quotient or a power keeps [places] places behind the point.
Value applyBinary(Operator op, const Value& left, const Value& right, int places = Number::kQuotientPlaces);

// How two values compare: as numbers when one of them is no text and the other has a number in it, else as
// texts without regard to letter case. A text that is compared with a day, a time or a time stamp is read as
// one if it spells one.
std::strong_ordering compareValues(const Value& left, const Value& right);

// Adds the value's text.
void appendText(std::u16string& text, const Value& value);

} // namespace host
