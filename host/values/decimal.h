#pragma once

// The representation of large numbers. Included only by the sources of Number, as the library behind it is
// slow to compile.

#include "host/values/number.h"

#include <boost/multiprecision/cpp_int.hpp>

namespace host {

// Without expression templates, which cost more time to compile and analyse than they save.
using BigInteger =
    boost::multiprecision::number<boost::multiprecision::cpp_int_backend<>, boost::multiprecision::et_off>;

inline BigInteger sizeOf(const BigInteger& value) {
    return value.sign() < 0 ? -value : value;
}

// Returns 10 to the power of [exponent], which must not be negative.
BigInteger powerOfTen(int exponent);

// Returns the number of decimal digits; 0 for 0.
int digitCount(const BigInteger& value);

// Returns [value] divided by 10 to the power of [digits] (not negative), rounded with halves away from zero.
BigInteger shiftedDown(const BigInteger& value, int digits);

// The number mantissa * 10^exponent.
struct Number::Decimal {
    BigInteger mantissa;
    int exponent = 0;
};

} // namespace host
