// Functions of any number of values, which ignore empty ones.
#include "host/calc/functions/groups.h"
#include "host/calc/operations.h"
#include "host/calc/session.h"
#include "host/calc/styled_text.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace host {

namespace {

// Returns the numbers of the arguments that have one. Throws NumberError for an invalid argument.
std::vector<Number> numbers(Arguments in) {
    std::vector<Number> result;
    for (const Value& value : in) {
        if (!value.isValid()) {
            throw NumberError("an argument could not be computed");
        }
        if (auto number = value.asNumber()) {
            result.push_back(std::move(*number));
        }
    }
    return result;
}

Number sumOf(const std::vector<Number>& values) {
    Number sum;
    for (const Number& value : values) {
        sum = sum + value;
    }
    return sum;
}

Value average(Session& session, Arguments in) {
    const std::vector<Number> values = numbers(in);
    return values.empty() ? Value()
                          : Value::number(Number::divide(sumOf(values), static_cast<int64_t>(values.size()),
                                                         session.precision()));
}

Value countFunction(Session& /*session*/, Arguments in) {
    return integerValue(
        std::count_if(in.begin(), in.end(), [](const Value& value) { return !value.isEmpty(); }));
}

// Returns the values that are not empty, separated by carriage returns.
// Goes on with the first text, so that a list that grows value by value is not copied each time.
Value list(Session& /*session*/, std::vector<Value> in) {
    std::optional<StyledTextWriter> result;
    for (Value& value : in) {
        if (value.isEmpty()) {
            continue;
        }
        if (result) {
            result->append(u'\r');
            result->append(value);
        } else {
            result.emplace(std::move(value));
        }
    }
    return result ? result->take() : Value();
}

// Returns the argument that comes first by [isBefore]. When all are texts they are compared as such, else as
// numbers; arguments without a number are then ignored.
template <class Order>
Value extreme(Arguments in, Order isBefore) {
    const bool areTexts =
        std::all_of(in.begin(), in.end(), [](const Value& value) { return value.type() == ValueType::text; });
    const Value* best = nullptr;
    for (const Value& value : in) {
        if (!value.isValid()) {
            return Value::invalid();
        }
        const bool counts = areTexts ? !value.isEmpty() : value.asNumber().has_value();
        if (!counts) {
            continue;
        }
        const bool better = best == nullptr || (areTexts ? isBefore(compareValues(value, *best))
                                                         : isBefore(*value.asNumber() <=> *best->asNumber()));
        best = better ? &value : best;
    }
    if (best == nullptr) {
        return {};
    }
    return best->type() == ValueType::text && !areTexts ? Value::number(*best->asNumber()) : *best;
}

Value maximum(Session& /*session*/, Arguments in) {
    return extreme(in, [](std::strong_ordering order) { return order > 0; });
}
Value minimum(Session& /*session*/, Arguments in) {
    return extreme(in, [](std::strong_ordering order) { return order < 0; });
}

Value sum(Session& /*session*/, Arguments in) {
    return Value::number(sumOf(numbers(in)));
}

// Returns the sum of the squared distances from the mean, divided by the number of values minus [fewer].
// Divides only once, at the end, to stay exact.
Number varianceOf(const std::vector<Number>& values, int64_t fewer, int places) {
    const auto size = static_cast<int64_t>(values.size());
    Number squares;
    for (const Number& value : values) {
        squares = squares + value * value;
    }
    const Number total = sumOf(values);
    return Number::divide(squares * size - total * total, Number(size) * (size - fewer), places);
}

template <int64_t fewer>
Value variance(Session& session, Arguments in) {
    const std::vector<Number> values = numbers(in);
    return values.empty() ? Value() : Value::number(varianceOf(values, fewer, session.precision()));
}

template <int64_t fewer>
Value deviation(Session& session, Arguments in) {
    const std::vector<Number> values = numbers(in);
    if (values.empty()) {
        return {};
    }
    const int places = session.precision();
    const int twice = std::min(2 * places + 2, Number::kMaxDigits); // the root halves the significant places
    return Value::number(Number::squareRoot(varianceOf(values, fewer, twice), places));
}

constexpr Builtin kFunctions[] = {
    {u"Average ( field {; field... } )", average, "Returns the mean of the numbers."},
    {u"Count ( field {; field... } )", countFunction, "Counts the values that are not empty."},
    {u"List ( field {; field... } )", list, "Returns the values that are not empty as a list."},
    {u"Max ( field {; field... } )", maximum, "Returns the highest value."},
    {u"Min ( field {; field... } )", minimum, "Returns the lowest value."},
    {u"StDev ( field {; field... } )", deviation<1>, "Returns the standard deviation of a sample."},
    {u"StDevP ( field {; field... } )", deviation<0>, "Returns the standard deviation of a population."},
    {u"Sum ( field {; field... } )", sum, "Returns the sum of the numbers."},
    {u"Variance ( field {; field... } )", variance<1>, "Returns the variance of a sample."},
    {u"VarianceP ( field {; field... } )", variance<0>, "Returns the variance of a population."},
};

} // namespace

std::span<const Builtin> aggregateFunctions() {
    return kFunctions;
}

} // namespace host
