#include "host/calc/function_groups.h"

#include <algorithm>
#include <optional>

namespace host {

namespace {

using Arguments = std::span<const Value>;

// Places behind the point that rounding looks at, to either side.
constexpr int64_t kMostPlaces = Number::kMaxDigits;

// Applies [function] to the numbers of the arguments, an empty one being 0; "?" when one could not be
// computed.
template <class Function>
Value computed(Arguments in, Function function) {
    if (std::any_of(in.begin(), in.end(), [](const Value& value) { return !value.isValid(); })) {
        return Value::invalid();
    }
    return Value::number(function([&](size_t i) { return in[i].asNumber().value_or(0); }));
}

int places(const Number& number) {
    return static_cast<int>(std::clamp(number.toInt64(), -kMostPlaces, kMostPlaces));
}

Value absolute(Session& /*session*/, Arguments in) {
    return computed(in, [](auto argument) { return argument(0).abs(); });
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

// The argument whose number comes first by [isBefore]; those without a number are left out.
template <class Order>
Value extreme(Arguments in, Order isBefore) {
    const Value* best = nullptr;
    std::optional<Number> bestNumber;
    for (const Value& value : in) {
        if (!value.isValid()) {
            return Value::invalid();
        }
        const std::optional<Number> number = value.asNumber();
        if (number && (!bestNumber || isBefore(*number, *bestNumber))) {
            best = &value;
            bestNumber = number;
        }
    }
    if (best == nullptr) {
        return {};
    }
    return best->type() == ValueType::text ? Value::number(*bestNumber) : *best;
}

Value maximum(Session& /*session*/, Arguments in) {
    return extreme(in, [](const Number& a, const Number& b) { return a > b; });
}
Value minimum(Session& /*session*/, Arguments in) {
    return extreme(in, [](const Number& a, const Number& b) { return a < b; });
}

Value asNumber(Session& /*session*/, Arguments in) {
    return in[0].convertedTo(ValueType::number);
}

constexpr Builtin kFunctions[] = {
    {u"Abs ( number )", absolute},
    {u"Ceiling ( number )", ceiling},
    {u"Floor ( number )", floorFunction},
    {u"GetAsNumber ( data )", asNumber},
    {u"Int ( number )", intFunction},
    {u"Max ( value {; value ... } )", maximum},
    {u"Min ( value {; value ... } )", minimum},
    {u"Mod ( number ; divisor )", modFunction},
    {u"Round ( number ; precision )", roundFunction},
    {u"Sign ( number )", sign},
    {u"Truncate ( number ; precision )", truncateFunction},
};

} // namespace

std::span<const Builtin> numberFunctions() {
    return kFunctions;
}

int64_t integer(const Value& value) {
    return value.asNumber().value_or(0).toInt64();
}

size_t count(const Value& value) {
    return static_cast<size_t>(std::max<int64_t>(integer(value), 0));
}

Value integerValue(int64_t number) {
    return Value::number(number);
}

} // namespace host
