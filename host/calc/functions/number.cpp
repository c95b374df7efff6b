#include "host/calc/evaluator.h"
#include "host/calc/functions/groups.h"

#include <algorithm>
#include <memory>
#include <random>

namespace host {

namespace {

// The most places by which a number can be rounded, before and after the point.
constexpr int64_t kMostPlaces = Number::kMaxDigits;

// Applies [function] to the numbers of the arguments, with 0 for an empty one; returns "?" when an argument
// is invalid.
template <class Function>
Value computed(Arguments in, Function function) {
    if (!areValid(in)) {
        return Value::invalid();
    }
    return Value::number(function([&](size_t i) { return in[i].asNumber().value_or(0); }));
}

int places(const Number& number) {
    return static_cast<int>(std::clamp(number.toInt64(), -kMostPlaces, kMostPlaces));
}

// Returns the absolute value; of a time, as a time.
Value absolute(Session& /*session*/, Arguments in) {
    const Value result = computed(in, [](auto argument) { return argument(0).abs(); });
    return in[0].type() == ValueType::time ? result.convertedTo(ValueType::time) : result;
}
Value ceiling(Session& /*session*/, Arguments in) {
    return computed(in, [](auto argument) { return -(-argument(0)).floor(); });
}
Value floorFunction(Session& /*session*/, Arguments in) {
    return computed(in, [](auto argument) { return argument(0).floor(); });
}
Value intFunction(Session& /*session*/, Arguments in) {
    return computed(in, [](auto argument) { return argument(0).truncated(); });
}
// Returns the quotient rounded down: the remainder has the divisor's sign.
Value div(Session& /*session*/, Arguments in) {
    return computed(in, [](auto argument) {
        const Number rest = Number::modulo(argument(0), argument(1));
        return (argument(0) - rest) / argument(1);
    });
}
Value modFunction(Session& /*session*/, Arguments in) {
    return computed(in, [](auto argument) { return Number::modulo(argument(0), argument(1)); });
}
Value roundFunction(Session& /*session*/, Arguments in) {
    return computed(in, [](auto argument) { return argument(0).rounded(places(argument(1))); });
}
Value sign(Session& /*session*/, Arguments in) {
    return computed(in, [](auto argument) { return Number(argument(0).sign()); });
}
Value truncateFunction(Session& /*session*/, Arguments in) {
    return computed(in, [](auto argument) { return argument(0).truncated(places(argument(1))); });
}

Value exponential(Session& session, Arguments in) {
    return computed(in, [&](auto argument) { return Number::exponential(argument(0), session.precision()); });
}
Value naturalLogarithm(Session& session, Arguments in) {
    return computed(
        in, [&](auto argument) { return Number::naturalLogarithm(argument(0), session.precision()); });
}
Value binaryLogarithm(Session& session, Arguments in) {
    return computed(in,
                    [&](auto argument) { return Number::logarithm(argument(0), 2, session.precision()); });
}
Value decimalLogarithm(Session& session, Arguments in) {
    return computed(in,
                    [&](auto argument) { return Number::logarithm(argument(0), 10, session.precision()); });
}
Value squareRoot(Session& session, Arguments in) {
    return computed(in, [&](auto argument) { return Number::squareRoot(argument(0), session.precision()); });
}

// Returns the product of [factors] whole numbers from [from] down; stops at 1.
Number fallingProduct(Number from, Number factors) {
    Number product = 1;
    for (; factors.sign() > 0 && from > Number(1); factors = factors - 1, from = from - 1) {
        product = product * from;
    }
    return product;
}

Value factorial(Session& /*session*/, Arguments in) {
    return computed(in, [&in](auto argument) {
        const Number from = argument(0).truncated();
        const Number factors = in.size() > 1 ? argument(1).truncated() : from;
        if (from.sign() < 0 || factors.sign() < 0) {
            throw NumberError("a negative number has no factorial");
        }
        return fallingProduct(from, factors);
    });
}

// Multiplies and divides step by step; each step gives a whole number, the combinations of one choice more.
Value combination(Session& /*session*/, Arguments in) {
    return computed(in, [](auto argument) {
        const Number size = argument(0).truncated();
        const Number choices = argument(1).truncated();
        if (size.sign() < 0 || choices.sign() < 0) {
            throw NumberError("a set has no negative number of elements");
        }
        if (choices > size) {
            return Number();
        }
        const Number steps = std::min(choices, size - choices);
        Number result = 1;
        for (Number step = 1; step <= steps; step = step + 1) {
            result = result * (size - step + 1) / step;
        }
        return result;
    });
}

// Returns a random number of 20 digits, from 0 to less than 1.
Value random(Session& /*session*/, Arguments /*in*/) {
    thread_local std::mt19937_64 generator{std::random_device{}()};
    std::uniform_int_distribution<int> digit(0, 9);
    std::u16string text = u".";
    for (int i = 0; i < 20; ++i) {
        text += static_cast<char16_t>(u'0' + digit(generator));
    }
    return Value::number(Number::fromText(text));
}

// Evaluates an expression with the given number of places after the point.
Value setPrecision(Evaluator& evaluator, Nodes in) {
    constexpr int64_t kMost = Number::kMaxDigits;
    Session& session = evaluator.session();
    const int64_t wanted = integer(evaluator.evaluate(in[1]));
    const auto restore = [&session](const int* before) { session.setPrecision(*before); };
    const int before = session.precision();
    const std::unique_ptr<const int, decltype(restore)> guard(&before, restore);
    session.setPrecision(static_cast<int>(std::clamp<int64_t>(wanted, Number::kQuotientPlaces, kMost)));
    return evaluator.evaluate(in[0]);
}

constexpr Builtin kFunctions[] = {
    {u"Abs ( number )", absolute, "Returns a number without its sign."},
    {u"Ceiling ( number )", ceiling, "Rounds a number up to a whole one."},
    {u"Combination ( setSize ; numberOfChoices )", combination,
     "Counts the ways to choose some elements of a set."},
    {u"Div ( number ; divisor )", div, "Divides and rounds the quotient down to a whole number."},
    {u"Exp ( number )", exponential, "Returns e raised to a power."},
    {u"Factorial ( number {; numberOfFactors } )", factorial,
     "Multiplies a whole number with those below it."},
    {u"Floor ( number )", floorFunction, "Rounds a number down to a whole one."},
    {u"Int ( number )", intFunction, "Cuts off what stands behind the point of a number."},
    {u"Lg ( number )", binaryLogarithm, "Returns the logarithm to the base 2."},
    {u"Ln ( number )", naturalLogarithm, "Returns the logarithm to the base e."},
    {u"Log ( number )", decimalLogarithm, "Returns the logarithm to the base 10."},
    {u"Mod ( number ; divisor )", modFunction,
     "Returns the rest of a division, with the sign of the divisor."},
    {u"Random", random, "Returns a random number from 0 to below 1."},
    {u"Round ( number ; precision )", roundFunction,
     "Rounds a number to so many places, halves away from 0."},
    {u"SetPrecision ( expression ; precision )", setPrecision,
     "Evaluates an expression with 16 to 400 places behind the point."},
    {u"Sign ( number )", sign, "Returns -1, 0 or 1, as the sign of a number is."},
    {u"Sqrt ( number )", squareRoot, "Returns the square root of a number."},
    {u"Truncate ( number ; precision )", truncateFunction, "Cuts a number off behind so many places."},
};

} // namespace

std::span<const Builtin> numberFunctions() {
    return kFunctions;
}

} // namespace host
