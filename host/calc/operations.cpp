#include "host/calc/operations.h"

#include "host/values/text_order.h"

#include <optional>

namespace host {

namespace {

bool isDateOrTime(ValueType type) {
    return type == ValueType::date || type == ValueType::time || type == ValueType::timestamp;
}

// Returns the type of a sum or difference. A date, a time or a time stamp and a number give the same type as
// the former, and a time moves a time stamp. The sum or difference of two times is a time, and so is the
// difference of two time stamps; that of two dates is a number of days.
ValueType resultType(Operator op, ValueType left, ValueType right) {
    const bool isSum = op == Operator::add;
    if (isDateOrTime(left) && !isDateOrTime(right)) {
        return left;
    }
    if (isSum && isDateOrTime(right) && !isDateOrTime(left)) {
        return right;
    }
    if (right == ValueType::time && (left == ValueType::time || left == ValueType::timestamp)) {
        return left;
    }
    if (isSum && left == ValueType::time && right == ValueType::timestamp) {
        return ValueType::timestamp;
    }
    return !isSum && left == ValueType::timestamp && right == ValueType::timestamp ? ValueType::time
                                                                                   : ValueType::number;
}

Number compute(Operator op, const Number& left, const Number& right, int places) {
    switch (op) {
    case Operator::add:
        return left + right;
    case Operator::subtract:
        return left - right;
    case Operator::multiply:
        return left * right;
    case Operator::divide:
        return Number::divide(left, right, places);
    default:
        return Number::power(left, right, places);
    }
}

Value arithmetic(Operator op, const Value& left, const Value& right, int places) {
    if (!left.isValid() || !right.isValid()) {
        return Value::invalid();
    }
    const Value number =
        Value::number(compute(op, left.asNumber().value_or(0), right.asNumber().value_or(0), places));
    const bool isSum = op == Operator::add || op == Operator::subtract;
    return isSum ? number.convertedTo(resultType(op, left.type(), right.type())) : number;
}

// Returns the number by which [value] is compared with a value of type [other]; nothing when it has none.
std::optional<Number> comparable(const Value& value, ValueType other) {
    if (value.type() == ValueType::text && isDateOrTime(other)) {
        const Value read = value.convertedTo(other);
        return read.isValid() ? read.asNumber() : std::nullopt;
    }
    return value.asNumber();
}

// Compares containers by their names, then by their streams, so that only those with equal streams are equal.
std::strong_ordering compareContainers(const Value& left, const Value& right) {
    const auto names = compareTexts(left.asText(), right.asText());
    return names != 0 ? names : left.asContainer() <=> right.asContainer();
}

bool holds(Operator op, std::strong_ordering order) {
    switch (op) {
    case Operator::equal:
        return order == 0;
    case Operator::notEqual:
        return order != 0;
    case Operator::less:
        return order < 0;
    case Operator::lessOrEqual:
        return order <= 0;
    case Operator::greater:
        return order > 0;
    default:
        return order >= 0;
    }
}

} // namespace

Value truth(bool value) {
    return Value::number(value ? 1 : 0);
}

Value applyUnary(Operator op, const Value& operand) {
    if (!operand.isValid()) {
        return operand;
    }
    if (op == Operator::logicalNot) {
        return truth(!operand.asBoolean());
    }
    return op == Operator::add ? operand : Value::number(-operand.asNumber().value_or(0));
}

Value applyBinary(Operator op, const Value& left, const Value& right, int places) {
    switch (op) {
    case Operator::logicalAnd:
        return truth(left.asBoolean() && right.asBoolean());
    case Operator::logicalOr:
        return truth(left.asBoolean() || right.asBoolean());
    case Operator::logicalXor:
        return truth(left.asBoolean() != right.asBoolean());
    case Operator::power:
    case Operator::multiply:
    case Operator::divide:
    case Operator::add:
    case Operator::subtract:
        return arithmetic(op, left, right, places);
    default:
        return truth(holds(op, compareValues(left, right)));
    }
}

std::strong_ordering compareValues(const Value& left, const Value& right) {
    if (left.type() == ValueType::container && right.type() == ValueType::container) {
        return compareContainers(left, right);
    }
    if (left.type() != ValueType::text || right.type() != ValueType::text) {
        const std::optional<Number> leftNumber = comparable(left, right.type());
        const std::optional<Number> rightNumber = comparable(right, left.type());
        if (leftNumber && rightNumber) {
            return *leftNumber <=> *rightNumber;
        }
        return compareTexts(left.asText(), right.asText());
    }
    return compareTexts(left.storedText(), right.storedText());
}

void appendText(std::u16string& text, const Value& value) {
    if (value.type() == ValueType::text) {
        text += value.storedText();
    } else {
        text += value.asText();
    }
}

} // namespace host
