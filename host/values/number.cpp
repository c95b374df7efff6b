// Reading order: whole numbers of any size, then normalising decimals, then text, then arithmetic. A whole
// number that fits 64 bits is always kept as such, so that equal numbers have equal representations.
#include "host/values/number.h"

#include "host/values/decimal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

namespace host {

namespace mp = boost::multiprecision;

namespace {

constexpr int kPowersKept = 2 * Number::kMaxDigits + 1;

bool isDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

} // namespace

BigInteger powerOfTen(int exponent) {
    static const std::vector<BigInteger> powers = [] {
        std::vector<BigInteger> made{1};
        made.reserve(kPowersKept);
        while (made.size() < kPowersKept) {
            made.emplace_back(made.back() * 10);
        }
        return made;
    }();
    BigInteger power = powers[static_cast<size_t>(std::min(exponent, kPowersKept - 1))];
    for (int missing = exponent - (kPowersKept - 1); missing > 0; missing -= kPowersKept - 1) {
        power *= powers[static_cast<size_t>(std::min(missing, kPowersKept - 1))];
    }
    return power;
}

int digitCount(const BigInteger& value) {
    if (value.is_zero()) {
        return 0;
    }
    const BigInteger size = sizeOf(value);
    // An estimate of the decimal logarithm: its floor, or one less.
    const int power = static_cast<int>(static_cast<double>(mp::msb(size)) * std::log10(2.0));
    return size >= powerOfTen(power + 1) ? power + 2 : power + 1;
}

BigInteger shiftedDown(const BigInteger& value, int digits) {
    if (digits == 0) {
        return value;
    }
    const BigInteger divisor = powerOfTen(digits);
    const BigInteger half = divisor / 2;
    return (value.sign() < 0 ? value - half : value + half) / divisor;
}

Number::Number(Decimal&& decimal) {
    BigInteger& mantissa = decimal.mantissa;
    int& exponent = decimal.exponent;
    const int digits = digitCount(mantissa);
    if (digits == 0) {
        return;
    }
    if (digits + exponent > kMaxDigits) {
        throw NumberError("the number has more than 400 whole digits");
    }
    if (digits + exponent < -kMaxDigits) {
        return; // too small to be told from 0
    }
    const int excess = std::max({digits - kMaxDigits, -kMaxDigits - exponent, 0});
    mantissa = shiftedDown(mantissa, excess);
    exponent += excess;
    if (mantissa.is_zero()) {
        return;
    }
    if (exponent > 0) {
        mantissa *= powerOfTen(exponent);
        exponent = 0;
    }
    if (digitCount(mantissa) + exponent > kMaxDigits) { // rounding has carried into one digit more
        throw NumberError("the number has more than 400 whole digits");
    }
    BigInteger quotient;
    BigInteger rest;
    for (int step = 256; step > 0 && exponent < 0;) { // trailing zeros after the point, many at a time
        if (step > -exponent) {
            step /= 2;
            continue;
        }
        mp::divide_qr(mantissa, powerOfTen(step), quotient, rest);
        if (rest.is_zero()) {
            mantissa.swap(quotient);
            exponent += step;
        } else {
            step /= 2;
        }
    }
    if (exponent == 0 && mantissa >= std::numeric_limits<int64_t>::min() &&
        mantissa <= std::numeric_limits<int64_t>::max()) {
        small_ = static_cast<int64_t>(mantissa);
    } else {
        large_ = std::make_shared<const Decimal>(std::move(decimal));
    }
}

Number::Decimal Number::decimal() const {
    return large_ ? *large_ : Decimal{small_, 0};
}

Number Number::parsed(bool negative, std::string digits, int exponent) {
    digits.erase(0, digits.find_first_not_of('0'));
    if (digits.empty()) {
        return {};
    }
    if (static_cast<int64_t>(digits.size()) + exponent > kMaxDigits) {
        throw NumberError("the number has more than 400 whole digits");
    }
    // Digits this far after the last one that is kept cannot change it.
    constexpr size_t kept = size_t{2} * kMaxDigits;
    if (digits.size() > kept) {
        exponent += static_cast<int>(digits.size() - kept);
        digits.resize(kept);
    }
    if (digits.size() <= 18 && exponent == 0) {
        int64_t value = 0;
        std::from_chars(digits.data(), digits.data() + digits.size(), value);
        return {negative ? -value : value};
    }
    BigInteger mantissa(digits);
    return Number(Decimal{negative ? -mantissa : mantissa, exponent});
}

bool Number::standsIn(std::u16string_view text) noexcept {
    return std::any_of(text.begin(), text.end(), isDigit);
}

namespace {

// Returns the exponent of a text that is nothing but a number, where [at] is the place of its "e"; nothing
// for any other text.
std::optional<int> exponentAt(std::u16string_view text, size_t at, char16_t point) {
    std::u16string_view before = text.substr(0, at);
    if (before.starts_with(u'-') || before.starts_with(u'+')) {
        before.remove_prefix(1);
    }
    std::u16string_view after = text.substr(at + 1);
    const bool negative = after.starts_with(u'-');
    if (negative || after.starts_with(u'+')) {
        after.remove_prefix(1);
    }
    const bool plain =
        std::all_of(before.begin(), before.end(), [point](char16_t c) { return isDigit(c) || c == point; }) &&
        std::count(before.begin(), before.end(), point) <= 1 && Number::standsIn(before) && !after.empty() &&
        std::all_of(after.begin(), after.end(), isDigit);
    if (!plain) {
        return std::nullopt;
    }
    int exponent = 0;
    for (const char16_t c : after) {
        exponent = std::min(exponent * 10 + (c - u'0'), 100'000); // larger than any valid one; no overflow
    }
    return negative ? -exponent : exponent;
}

} // namespace

Number Number::fromText(std::u16string_view text, char16_t point) {
    int exponent = 0;
    if (const size_t letter = text.find_first_of(u"eE"); letter != std::u16string_view::npos) {
        if (const auto power = exponentAt(text, letter, point)) {
            exponent = *power;
            text = text.substr(0, letter);
        }
    }
    std::string digits;
    bool negative = false;
    bool inFraction = false;
    for (const char16_t c : text) {
        if (isDigit(c)) {
            digits += static_cast<char>(c);
            exponent -= inFraction ? 1 : 0;
        } else if (c == point) {
            inFraction = true;
        } else if ((c == u'-' || c == u'(') && digits.empty() && !inFraction) {
            negative = true;
        }
    }
    return parsed(negative, std::move(digits), exponent);
}

Number Number::fromDouble(double value) {
    if (!std::isfinite(value)) {
        throw NumberError("the number is not finite");
    }
    std::array<char, 32> buffer{};
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::scientific).ptr;
    return fromText(std::u16string(buffer.data(), end));
}

std::u16string Number::toText() const {
    if (!large_) {
        const std::string text = std::to_string(small_);
        return {text.begin(), text.end()};
    }
    std::string digits = sizeOf(large_->mantissa).str();
    if (large_->exponent < 0) {
        const auto places = static_cast<size_t>(-large_->exponent);
        if (digits.size() < places) {
            digits.insert(0, places - digits.size(), '0');
        }
        digits.insert(digits.size() - places, 1, '.');
    }
    if (large_->mantissa.sign() < 0) {
        digits.insert(0, 1, '-');
    }
    return {digits.begin(), digits.end()};
}

double Number::toDouble() const {
    if (!large_) {
        return static_cast<double>(small_);
    }
    const std::string text = large_->mantissa.str() + "e" + std::to_string(large_->exponent);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::result_out_of_range) {
        const bool huge = digitCount(large_->mantissa) + large_->exponent > 0;
        value = huge ? std::copysign(std::numeric_limits<double>::infinity(), sign()) : 0.0;
    }
    return value;
}

int64_t Number::toInt64() const {
    constexpr int64_t kLeast = std::numeric_limits<int64_t>::min();
    constexpr int64_t kMost = std::numeric_limits<int64_t>::max();
    if (!large_) {
        return small_;
    }
    if (*this > Number(kMost)) {
        return kMost;
    }
    if (*this < Number(kLeast)) {
        return kLeast;
    }
    return static_cast<int64_t>(large_->mantissa / powerOfTen(-large_->exponent));
}

bool Number::isInteger() const noexcept {
    return !large_ || large_->exponent == 0;
}

int Number::places() const noexcept {
    return large_ ? -large_->exponent : 0;
}

int Number::sign() const noexcept {
    return large_ ? large_->mantissa.sign() : (small_ > 0 ? 1 : 0) - (small_ < 0 ? 1 : 0);
}

Number Number::rounded(int places) const {
    Decimal value = decimal();
    const int excess = -value.exponent - std::clamp(places, -kMaxDigits - 1, kMaxDigits);
    if (excess <= 0) {
        return *this;
    }
    return Number(Decimal{shiftedDown(value.mantissa, excess), value.exponent + excess});
}

Number Number::truncated(int places) const {
    Decimal value = decimal();
    const int excess = -value.exponent - std::clamp(places, -kMaxDigits - 1, kMaxDigits);
    if (excess <= 0) {
        return *this;
    }
    return Number(Decimal{value.mantissa / powerOfTen(excess), value.exponent + excess});
}

Number Number::floor() const {
    const Number whole = truncated();
    return whole > *this ? whole - 1 : whole;
}

Number Number::operator-() const {
    if (!large_ && small_ != std::numeric_limits<int64_t>::min()) {
        return {-small_};
    }
    Decimal value = decimal();
    value.mantissa = -value.mantissa;
    return Number(std::move(value));
}

Number operator+(const Number& left, const Number& right) {
    int64_t sum = 0;
    if (!left.large_ && !right.large_ && !__builtin_add_overflow(left.small_, right.small_, &sum)) {
        return {sum};
    }
    Number::Decimal a = left.decimal();
    Number::Decimal b = right.decimal();
    if (a.exponent < b.exponent) {
        std::swap(a, b);
    }
    a.mantissa *= powerOfTen(a.exponent - b.exponent);
    a.mantissa += b.mantissa;
    a.exponent = b.exponent;
    return Number(std::move(a));
}

Number operator*(const Number& left, const Number& right) {
    int64_t product = 0;
    if (!left.large_ && !right.large_ && !__builtin_mul_overflow(left.small_, right.small_, &product)) {
        return {product};
    }
    const Number::Decimal a = left.decimal();
    const Number::Decimal b = right.decimal();
    return Number(Number::Decimal{a.mantissa * b.mantissa, a.exponent + b.exponent});
}

Number Number::divide(const Number& left, const Number& right, int places) {
    if (right.isZero()) {
        throw DivisionByZero();
    }
    if (left.isZero()) {
        return {};
    }
    if (!left.large_ && !right.large_ && right.small_ != -1 && left.small_ % right.small_ == 0) {
        return {left.small_ / right.small_};
    }
    places = std::clamp(places, 0, kMaxDigits);
    const Decimal a = left.decimal();
    const Decimal b = right.decimal();
    // a.mantissa / b.mantissa * 10^(a.exponent - b.exponent) = quotient * 10^-places, which gives the scale.
    const int scale = a.exponent - b.exponent + places;
    const BigInteger dividend = scale > 0 ? a.mantissa * powerOfTen(scale) : a.mantissa;
    const BigInteger divisor = scale < 0 ? b.mantissa * powerOfTen(-scale) : b.mantissa;
    BigInteger quotient;
    BigInteger rest;
    mp::divide_qr(dividend, divisor, quotient, rest);
    if (sizeOf(rest) * 2 >= sizeOf(divisor)) {
        quotient += left.sign() == right.sign() ? 1 : -1;
    }
    return Number(Decimal{std::move(quotient), -places});
}

Number Number::modulo(const Number& left, const Number& right) {
    if (right.isZero()) {
        throw DivisionByZero();
    }
    Decimal a = left.decimal();
    Decimal b = right.decimal();
    const int exponent = std::min(a.exponent, b.exponent);
    a.mantissa *= powerOfTen(a.exponent - exponent);
    b.mantissa *= powerOfTen(b.exponent - exponent);
    BigInteger rest = a.mantissa % b.mantissa;
    if (!rest.is_zero() && rest.sign() != b.mantissa.sign()) {
        rest += b.mantissa;
    }
    return Number(Decimal{std::move(rest), exponent});
}

std::strong_ordering operator<=>(const Number& left, const Number& right) {
    if (!left.large_ && !right.large_) {
        return left.small_ <=> right.small_;
    }
    if (left.sign() != right.sign()) {
        return left.sign() <=> right.sign();
    }
    const Number::Decimal a = left.decimal();
    const Number::Decimal b = right.decimal();
    const int exponent = std::min(a.exponent, b.exponent);
    const BigInteger scaledA = a.mantissa * powerOfTen(a.exponent - exponent);
    const BigInteger scaledB = b.mantissa * powerOfTen(b.exponent - exponent);
    return scaledA.compare(scaledB) <=> 0;
}

} // namespace host
