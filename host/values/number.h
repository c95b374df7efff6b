#pragma once

// Decimal numbers with up to 400 digits.

#include <compare>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace host {

// Thrown when arithmetic has no result: a division by zero, or more than 400 whole digits.
class NumberError : public std::domain_error {
  public:
    using std::domain_error::domain_error;
};

class DivisionByZero : public NumberError {
  public:
    DivisionByZero() : NumberError("division by zero") {}
};

// A decimal number. Sums, differences and products are exact up to 400 significant digits and 400 places
// after the point, and rounded beyond; arithmetic throws NumberError for results with more than 400 whole
// digits. Copying is cheap: copies share large numbers.
class Number {
  public:
    static constexpr int kMaxDigits = 400;
    // The places after the point of a quotient, a power, a root or a logarithm, unless given otherwise.
    static constexpr int kQuotientPlaces = 16;

    Number() noexcept = default; // 0
    Number(int64_t value) noexcept
        : small_(value) {} // NOLINT(google-explicit-constructor): a whole number is one

    // Returns the shortest decimal number that reads back as this double. Throws NumberError for NaN and
    // infinities.
    static Number fromDouble(double value);

    // Returns the number made of all digits in a text, in order: the first [point] is its decimal point, a
    // minus sign or opening parenthesis before the first digit or point makes it negative, and everything
    // else is ignored; 0 when there is no digit. A text that is nothing but a number may have an exponent
    // ("1.5e3"). Throws NumberError for more than 400 whole digits.
    static Number fromText(std::u16string_view text, char16_t point = u'.');

    // Whether a text has a digit in it, so that fromText() finds a number.
    static bool standsIn(std::u16string_view text) noexcept;

    // Returns all digits, with a point and without exponent; no zero before the point or at the end after it:
    // "-.5".
    std::u16string toText() const;

    // Returns the nearest double.
    double toDouble() const;

    // Returns the number without its fraction, or the nearest limit of 64 bits when it is beyond that.
    int64_t toInt64() const;

    bool isZero() const noexcept { return !large_ && small_ == 0; }
    bool isInteger() const noexcept;
    int sign() const noexcept;   // -1, 0 or 1
    int places() const noexcept; // digits after the point

    // Returns the number rounded to [places] digits after the point, halves away from zero; with a negative
    // [places], to a power of ten.
    Number rounded(int places) const;
    // Returns the number with the digits after [places] places cut off.
    Number truncated(int places = 0) const;
    // Returns the greatest whole number that is not above this one.
    Number floor() const;
    Number abs() const { return sign() < 0 ? -*this : *this; }

    Number operator-() const;
    friend Number operator+(const Number& left, const Number& right);
    friend Number operator-(const Number& left, const Number& right) { return left + -right; }
    friend Number operator*(const Number& left, const Number& right);
    friend Number operator/(const Number& left, const Number& right) {
        return divide(left, right, kQuotientPlaces);
    }

    // Returns the quotient, rounded to [places] digits after the point, halves away from zero. Throws
    // DivisionByZero.
    static Number divide(const Number& left, const Number& right, int places);
    // Returns left - right * floor(left / right), which has the sign of [right]. Throws DivisionByZero.
    static Number modulo(const Number& left, const Number& right);

    // Return powers, roots and logarithms, rounded to [places] digits after the point (0 to 400). Throw
    // NumberError where the result does not exist, as for the logarithm of 0.
    static Number power(const Number& base, const Number& exponent, int places = kQuotientPlaces);
    static Number squareRoot(const Number& value, int places = kQuotientPlaces);
    static Number exponential(const Number& value, int places = kQuotientPlaces);
    static Number naturalLogarithm(const Number& value, int places = kQuotientPlaces);
    static Number logarithm(const Number& value, int base, int places = kQuotientPlaces); // base 2 or 10

    friend bool operator==(const Number& left, const Number& right) { return (left <=> right) == 0; }
    friend std::strong_ordering operator<=>(const Number& left, const Number& right);

  private:
    struct Decimal; // mantissa and power of ten, for numbers that are not whole or do not fit 64 bits

    explicit Number(Decimal&& decimal); // normalises
    static Number parsed(bool negative, std::string digits, int exponent);
    Decimal decimal() const;

    int64_t small_ = 0; // the value, unless large_ is set
    std::shared_ptr<const Decimal> large_;
};

} // namespace host
