#include "host/calc/evaluator.h"
#include "host/calc/function_groups.h"
#include "host/values/text.h"

namespace host {

namespace {

using Arguments = std::span<const Value>;
using Nodes = std::span<const Node>;

Value ifFunction(Evaluator& evaluator, Nodes in) {
    if (evaluator.evaluate(in[0]).asBoolean()) {
        return evaluator.evaluate(in[1]);
    }
    return in.size() > 2 ? evaluator.evaluate(in[2]) : Value();
}

// Pairs of test and result; an odd last argument is the result when no test is true.
Value caseFunction(Evaluator& evaluator, Nodes in) {
    size_t i = 0;
    for (; i + 1 < in.size(); i += 2) {
        if (evaluator.evaluate(in[i]).asBoolean()) {
            return evaluator.evaluate(in[i + 1]);
        }
    }
    return i < in.size() ? evaluator.evaluate(in[i]) : Value();
}

Value choose(Evaluator& evaluator, Nodes in) {
    const int64_t index = integer(evaluator.evaluate(in[0]));
    const bool known = index >= 0 && static_cast<uint64_t>(index) < in.size() - 1;
    return known ? evaluator.evaluate(in[static_cast<size_t>(index) + 1]) : Value();
}

// The calculation that a text holds; "?" when it can not be parsed or evaluated. It sees no names of Let and
// While around it.
Value evaluateFunction(Session& session, Arguments in) {
    try {
        return session.evaluate(in[0].asText());
    } catch (const CalcError& error) {
        session.setEvaluationError(static_cast<int>(error.code()));
        return Value::invalid();
    }
}

Value evaluationError(Evaluator& evaluator, Nodes in) {
    Session& session = evaluator.session();
    session.setEvaluationError(0);
    evaluator.evaluate(in[0]);
    return integerValue(session.evaluationError());
}

Value isEmpty(Session& /*session*/, Arguments in) {
    return integerValue(in[0].isEmpty() ? 1 : 0);
}
Value asBoolean(Session& /*session*/, Arguments in) {
    return integerValue(in[0].asBoolean() ? 1 : 0);
}
Value trueFunction(Session& /*session*/, Arguments /*in*/) {
    return integerValue(1);
}
Value falseFunction(Session& /*session*/, Arguments /*in*/) {
    return integerValue(0);
}

constexpr Builtin kFunctions[] = {
    {u"Case ( test1 ; result1 {; test2 ; result2 ; ... ; defaultResult } )", caseFunction},
    {u"Choose ( test ; result0 {; result1 ; ... } )", choose},
    {u"Evaluate ( expression )", evaluateFunction},
    {u"EvaluationError ( expression )", evaluationError},
    {u"False", falseFunction},
    {u"Get ( name )", BuiltinForm::get},
    {u"GetAsBoolean ( data )", asBoolean},
    {u"If ( test ; resultIfTrue {; resultIfFalse } )", ifFunction},
    {u"IsEmpty ( data )", isEmpty},
    {u"Let ( [ name = value {; ... } ] ; calculation )", BuiltinForm::let},
    {u"True", trueFunction},
    {u"While ( [ initial ] ; condition ; [ logic ] ; result )", BuiltinForm::loop},
};

} // namespace

std::span<const Builtin> logicFunctions() {
    return kFunctions;
}

} // namespace host
