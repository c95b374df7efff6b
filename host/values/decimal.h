#pragma once

// The inside of a large number. Only the sources of Number include this: the library behind it is slow to
// compile.

#include "host/values/number.h"

#include <boost/multiprecision/cpp_int.hpp>

namespace host {

// Without expression templates: they are slower to compile and analyse than they are faster to run.
using BigInteger =
    boost::multiprecision::number<boost::multiprecision::cpp_int_backend<>, boost::multiprecision::et_off>;

inline BigInteger sizeOf(const BigInteger& value) {
    return value.sign() < 0 ? -value : value;
}

// 10 to a power that is not negative.
BigInteger powerOfTen(int exponent);

// How many decimal digits a number has; 0 has none.
int digitCount(const BigInteger& value);

// Divides by a power of ten (not negative), halves away from zero.
BigInteger shiftedDown(const BigInteger& value, int digits);

// mantissa * 10^exponent.
struct Number::Decimal {
    BigInteger mantissa;
    int exponent = 0;
};

} // namespace host
