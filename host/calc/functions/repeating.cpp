// Repetitions of variables, as there are no fields.
#include "host/calc/evaluator.h"
#include "host/calc/functions/groups.h"

#include <algorithm>

namespace host {

namespace {

const std::u16string& keyOf(const Node& node) {
    return std::get<Variable>(node.form).key;
}

Value getRepetition(Evaluator& evaluator, Nodes in) {
    const int64_t wanted = integer(evaluator.evaluate(in[1]));
    const Value* value =
        wanted < 1 ? nullptr : evaluator.session().variable(repetitionKey(keyOf(in[0]), wanted));
    return value == nullptr ? Value() : *value;
}

Value last(Evaluator& evaluator, Nodes in) {
    const std::vector<Value> values = evaluator.session().repetitions(keyOf(in[0]));
    const auto found =
        std::find_if(values.rbegin(), values.rend(), [](const Value& value) { return !value.isEmpty(); });
    return found == values.rend() ? Value() : *found;
}

constexpr Builtin kFunctions[] = {
    {u"Extend ( nonRepeatingField )", Refused{CalcCode::fieldRequired},
     "Makes a field stand for all repetitions of a calculation."},
    {u"GetRepetition ( repeatingField ; number )", Refused{CalcCode::fieldRequired}, getRepetition,
     "Returns one repetition of a field or variable."},
    {u"Last ( repeatingField )", Refused{CalcCode::fieldRequired}, last,
     "Returns the last repetition of a field or variable that is not empty."},
};

} // namespace

std::span<const Builtin> repeatingFunctions() {
    return kFunctions;
}

} // namespace host
