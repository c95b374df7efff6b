// Powers, roots, exponentials and logarithms of decimal numbers.
#include "host/values/decimal.h"

#include <boost/multiprecision/cpp_dec_float.hpp>

#include <algorithm>
#include <iomanip>
#include <sstream>
#include <type_traits>

namespace host {

namespace mp = boost::multiprecision;

namespace {

// The precisions, in digits, with which results are computed: few where that is enough, as it is much faster.
// kReserve digits more than asked for are computed, so that those asked for are right.
constexpr int kFewDigits = 100;
constexpr int kAllDigits = 480;
constexpr int kReserve = 20;
template <int Digits>
using Real = mp::number<mp::cpp_dec_float<Digits>, mp::et_off>;

template <class R>
R toReal(const Number& value) {
    const std::u16string text = value.toText();
    return R(std::string(text.begin(), text.end()));
}

template <class R>
Number toNumber(const R& value, int places) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << std::scientific << std::setprecision(std::numeric_limits<R>::digits10 - kReserve / 2) << value;
    const std::string digits = text.str();
    return Number::fromText(std::u16string(digits.begin(), digits.end())).rounded(places);
}

// Runs [function] with a real number type that has enough digits for a result with [wholeDigits] digits
// before and [places] digits after the point.
template <class Function>
Number computed(int wholeDigits, int places, Function function) {
    if (std::max(wholeDigits, 0) + places + kReserve <= kFewDigits) {
        return toNumber(function(Real<kFewDigits>()), places);
    }
    return toNumber(function(Real<kAllDigits>()), places);
}

// Returns the power by repeated squaring, in which each step is exact up to 400 digits.
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

// Returns the number of digits that a power has before the point; 0 or less for one below 1. Throws
// NumberError for a power that is too large, returns nothing for one too small to be told from 0.
std::optional<int> wholeDigitsOf(const Real<kFewDigits>& decimalLogarithm) {
    if (decimalLogarithm > Number::kMaxDigits) {
        throw NumberError("the number has more than 400 whole digits");
    }
    if (decimalLogarithm < -Number::kMaxDigits - 1) {
        return std::nullopt;
    }
    return static_cast<int>(decimalLogarithm) + 1;
}

void requirePositive(const Number& value) {
    if (value.sign() <= 0) {
        throw NumberError("only a number above 0 has a logarithm");
    }
}

} // namespace

Number Number::power(const Number& base, const Number& exponent, int places) {
    constexpr int64_t kMostSquarings = 100'000;
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
    using Few = Real<kFewDigits>;
    const auto wholeDigits = wholeDigitsOf(mp::log10(toReal<Few>(base.abs())) * toReal<Few>(exponent));
    if (!wholeDigits) {
        return {};
    }
    const bool isExact = exponent.sign() > 0 || *wholeDigits > 2 - kMaxDigits; // the inverse is not too large
    if (whole && isExact && exponent.abs() <= Number(kMostSquarings)) {
        const Number power = wholePower(base, static_cast<uint64_t>(exponent.abs().toInt64()));
        if (exponent.sign() < 0) {
            return divide(1, power, places);
        }
        return power.isInteger() ? power : power.rounded(places);
    }
    const Number result = computed(*wholeDigits, places, [&](const auto& real) {
        using R = std::remove_cvref_t<decltype(real)>;
        return R(mp::pow(toReal<R>(base.abs()), toReal<R>(exponent)));
    });
    return base.sign() < 0 && !modulo(exponent, 2).isZero() ? -result : result;
}

// Takes the whole root of the number scaled to one digit more than wanted; rounding that digit away is exact.
Number Number::squareRoot(const Number& value, int places) {
    if (value.sign() < 0) {
        throw NumberError("a negative number has no square root");
    }
    const Decimal decimal = value.decimal();
    const int kept = places + 1;
    const int scale = decimal.exponent + 2 * kept;
    const BigInteger scaled =
        scale >= 0 ? decimal.mantissa * powerOfTen(scale) : decimal.mantissa / powerOfTen(-scale);
    return Number(Decimal{mp::sqrt(scaled), -kept}).rounded(places);
}

Number Number::exponential(const Number& value, int places) {
    if (value.isZero()) {
        return 1;
    }
    const Real<kFewDigits> logarithm = toReal<Real<kFewDigits>>(value) / mp::log(Real<kFewDigits>(10));
    const auto wholeDigits = wholeDigitsOf(logarithm);
    return wholeDigits ? computed(*wholeDigits, places,
                                  [&](const auto& real) {
                                      using R = std::remove_cvref_t<decltype(real)>;
                                      return R(mp::exp(toReal<R>(value)));
                                  })
                       : Number();
}

Number Number::naturalLogarithm(const Number& value, int places) {
    requirePositive(value);
    return computed(3, places, [&](const auto& real) {
        using R = std::remove_cvref_t<decltype(real)>;
        return R(mp::log(toReal<R>(value)));
    });
}

Number Number::logarithm(const Number& value, int base, int places) {
    requirePositive(value);
    return computed(4, places, [&](const auto& real) {
        using R = std::remove_cvref_t<decltype(real)>;
        return R(mp::log(toReal<R>(value)) / mp::log(R(base)));
    });
}

} // namespace host
