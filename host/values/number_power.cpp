#include "host/values/decimal.h"

#include <boost/multiprecision/cpp_dec_float.hpp>

#include <iomanip>
#include <sstream>

namespace host {

namespace mp = boost::multiprecision;

namespace {

// Digits that a power with a fraction in its exponent is computed with, and those that are sure to be right.
constexpr int kComputedDigits = 100;
constexpr int kSureDigits = 80;
using Real = mp::number<mp::cpp_dec_float<kComputedDigits>, mp::et_off>;

// Keeps as much as a quotient keeps, when there is a fraction.
Number asQuotient(const Number& value) {
    return value / Number(1);
}

// By squaring: exact up to 400 digits at each step.
Number wholePower(Number base, uint64_t exponent) {
    Number result = 1;
    for (; exponent > 0; exponent /= 2) {
        if (exponent % 2 == 1) {
            result = result * base;
        }
        if (exponent > 1) {
            base = base * base;
        }
    }
    return result;
}

Real toReal(const Number& value) {
    const std::u16string text = value.toText();
    return Real(std::string(text.begin(), text.end()));
}

} // namespace

Number Number::power(const Number& base, const Number& exponent) {
    if (exponent.isZero() || base == Number(1)) {
        return 1;
    }
    if (base.isZero()) {
        if (exponent.sign() < 0) {
            throw NumberError("zero has no power below zero");
        }
        return {};
    }
    const bool whole = exponent.isInteger();
    if (base.sign() < 0 && !whole) {
        throw NumberError("a negative number has no power with a fraction");
    }
    if (base == Number(-1)) {
        return modulo(exponent, 2).isZero() ? 1 : -1;
    }
    const Real size = mp::log10(toReal(base.abs())) * toReal(exponent); // the decimal logarithm of the result
    if (size > kMaxDigits) {
        throw NumberError("the number has more than 400 whole digits");
    }
    if (size < -kMaxDigits - 1) {
        return {};
    }
    if (whole && exponent.abs() <= Number(100'000)) {
        if (exponent.sign() > 0) {
            const Number result = wholePower(base, static_cast<uint64_t>(exponent.toInt64()));
            return base.isInteger() ? result : asQuotient(result);
        }
        const Number inverse = divide(1, base, kMaxDigits);
        return asQuotient(
            inverse.isZero() ? inverse : wholePower(inverse, static_cast<uint64_t>((-exponent).toInt64())));
    }
    std::ostringstream text;
    text << std::scientific << std::setprecision(kSureDigits)
         << mp::pow(toReal(base.abs()), toReal(exponent));
    const std::string digits = text.str();
    const Number result = asQuotient(fromText(std::u16string(digits.begin(), digits.end())));
    return base.sign() < 0 && !modulo(exponent, 2).isZero() ? -result : result;
}

} // namespace host
