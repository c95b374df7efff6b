#pragma once

// Decimal numbers with up to 400 digits.

#include <compare>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace host {

// What arithmetic throws when there is no answer: a division by zero, a result of more than 400 whole digits.
class NumberError : public std::domain_error {
  public:
    using std::domain_error::domain_error;
};

class DivisionByZero : public NumberError {
  public:
    DivisionByZero() : NumberError("division by zero") {}
};

// A decimal number. Sums, differences and products are exact up to 400 significant digits, of which none
// stands further than 400 places behind the point. Copying is cheap and shares what is large.
class Number {
  public:
    static constexpr int kMaxDigits = 400;
    // Places behind the point that a quotient, a power, a root or a logarithm keeps unless told otherwise.
    static constexpr int kQuotientPlaces = 16;

    Number() noexcept = default; // 0
    Number(int64_t value) noexcept
        : small_(value) {} // NOLINT(google-explicit-constructor): a whole number is one

    // The shortest decimal number that the double stands for. Throws NumberError for what is not finite.
    static Number fromDouble(double value);

    // The number that the digits of a text make, one after the other: the first [point] counts, a minus sign
    // or an opening parenthesis before all digits and points makes it negative, everything else is passed
    // over; 0 when there is no digit. A text that is nothing but a number may have an exponent ("1.5e3").
    // Throws NumberError for more than 400 whole digits.
    static Number fromText(std::u16string_view text, char16_t point = u'.');

    // Whether a text has a digit in it.
    static bool standsIn(std::u16string_view text) noexcept;

    // All digits, no exponent, no zero before the point or at the end behind it: "-.5".
    std::u16string toText() const;

    // The nearest double.
    double toDouble() const;

    // The number without its fraction, held to the range of 64 bits.
    int64_t toInt64() const;

    bool isZero() const noexcept { return !large_ && small_ == 0; }
    bool isInteger() const noexcept;
    int sign() const noexcept;   // -1, 0 or 1
    int places() const noexcept; // digits behind the point

    // Rounded to that many places behind the point, halves away from zero; a negative count rounds before the
    // point.
    Number rounded(int places) const;
    // Without what stands behind that many places.
    Number truncated(int places = 0) const;
    // The greatest whole number that is not above this one.
    Number floor() const;
    Number abs() const { return sign() < 0 ? -*this : *this; }

    Number operator-() const;
    friend Number operator+(const Number& left, const Number& right);
    friend Number operator-(const Number& left, const Number& right) { return left + -right; }
    friend Number operator*(const Number& left, const Number& right);
    friend Number operator/(const Number& left, const Number& right) {
        return divide(left, right, kQuotientPlaces);
    }

    // The quotient, rounded to that many places behind the point, halves away from zero. Throws
    // DivisionByZero.
    static Number divide(const Number& left, const Number& right, int places);
    // What the left number exceeds a whole multiple of the right one by; it has the right one's sign.
    static Number modulo(const Number& left, const Number& right);

    // Powers, roots and logarithms, rounded to that many places behind the point (0 to 400). They throw
    // NumberError where there is none: of a negative number, of 0.
    static Number power(const Number& base, const Number& exponent, int places = kQuotientPlaces);
    static Number squareRoot(const Number& value, int places = kQuotientPlaces);
    static Number exponential(const Number& value, int places = kQuotientPlaces);
    static Number naturalLogarithm(const Number& value, int places = kQuotientPlaces);
    static Number logarithm(const Number& value, int base, int places = kQuotientPlaces); // base 2 or 10

    friend bool operator==(const Number& left, const Number& right) { return (left <=> right) == 0; }
    friend std::strong_ordering operator<=>(const Number& left, const Number& right);

  private:
    struct Decimal; // whole mantissa and power of ten, for what 64 bits cannot hold

    explicit Number(Decimal&& decimal); // normalises
    static Number parsed(bool negative, std::string digits, int exponent);
    Decimal decimal() const;

    int64_t small_ = 0; // the value, unless there is a large one
    std::shared_ptr<const Decimal> large_;
};

} // namespace host
