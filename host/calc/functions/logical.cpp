#include "host/calc/evaluator.h"
#include "host/calc/functions/groups.h"
#include "host/calc/parser.h"
#include "host/values/text.h"

#include <memory>

namespace host {

namespace {

const Node* ifFunction(Evaluator& evaluator, Nodes in) {
    if (evaluator.evaluate(in[0]).asBoolean()) {
        return &in[1];
    }
    return in.size() > 2 ? &in[2] : nullptr;
}

// Takes pairs of test and result; a last argument without a pair is the result when no test is true.
const Node* caseFunction(Evaluator& evaluator, Nodes in) {
    size_t i = 0;
    for (; i + 1 < in.size(); i += 2) {
        if (evaluator.evaluate(in[i]).asBoolean()) {
            return &in[i + 1];
        }
    }
    return i < in.size() ? &in[i] : nullptr;
}

const Node* choose(Evaluator& evaluator, Nodes in) {
    const int64_t index = integer(evaluator.evaluate(in[0]));
    const bool known = index >= 0 && static_cast<uint64_t>(index) < in.size() - 1;
    return known ? &in[static_cast<size_t>(index) + 1] : nullptr;
}

// Evaluates a text as a calculation; "?" when it cannot be parsed or evaluated. The names of an enclosing Let
// or While are not visible in it. The further arguments, fields that trigger a new evaluation, have no
// effect.
Value evaluateFunction(Evaluator& evaluator, Nodes in) {
    Session& session = evaluator.session();
    Value expression = evaluator.evaluate(in[0]);
    if (!expression.isValid()) {
        return expression;
    }
    try {
        return session.evaluate(expression.asText());
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

Value isValidExpression(Session& session, Arguments in) {
    try {
        parseCalculation(std::make_shared<Source>("", in[0].asText()), session.functions());
        return integerValue(1);
    } catch (const CalcError&) {
        return integerValue(0);
    }
}

// Takes a variable, which may have any value; only an invalid value ("?") is not valid.
Value isValid(Evaluator& evaluator, Nodes in) {
    return integerValue(evaluator.evaluate(in[0]).isValid() ? 1 : 0);
}

Value setRecursion(Evaluator& evaluator, Nodes in) {
    Session& session = evaluator.session();
    const int64_t wanted = integer(evaluator.evaluate(in[1]));
    const auto restore = [&session](const int64_t* before) { session.setRecursionLimit(*before); };
    const int64_t before = session.recursionLimit();
    const std::unique_ptr<const int64_t, decltype(restore)> guard(&before, restore);
    session.setRecursionLimit(wanted);
    return evaluator.evaluate(in[0]);
}

// There are no fields: a name that is not empty is an error.
Value getField(Session& session, Arguments in) {
    if (in[0].isEmpty()) {
        return {};
    }
    session.setEvaluationError(static_cast<int>(CalcCode::fieldMissing));
    return Value::invalid();
}

// An invalid value ("?") counts as empty.
Value isEmpty(Session& /*session*/, Arguments in) {
    return integerValue(in[0].isEmpty() || !in[0].isValid() ? 1 : 0);
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
    {u"Case ( test1 ; result1 {; test2 ; result2 ; ... ; defaultResult } )", caseFunction,
     "Returns the result of the first test that is true."},
    {u"Choose ( test ; result0 {; result1 ; ... } )", choose,
     "Returns the result that a number chooses, from 0 on."},
    {u"Evaluate ( expression {; fields } )", evaluateFunction, "Evaluates the calculation that a text holds.",
     u"Evaluate ( expression ; [ field1 ; field2 ; ... ] )"},
    {u"EvaluationError ( expression )", evaluationError,
     "Returns the error code of evaluating an expression, 0 without an error."},
    {u"ExecuteSQL ( sqlQuery ; fieldSeparator ; rowSeparator {; arguments... } )", Placeholder{u"?"},
     "Runs an SQL query in the file's tables."},
    {u"ExecuteSQLe ( sqlQuery ; fieldSeparator ; rowSeparator {; arguments... } )",
     Placeholder{u"? ERROR: FQL0002/(1:1): There is no database."},
     "Runs an SQL query in the file's tables and answers its error as text."},
    {u"False", falseFunction, "Returns 0."},
    {u"Get ( name )", BuiltinForm::get, "Returns a fact about the system, the file or the script."},
    {u"GetAsBoolean ( data )", asBoolean,
     "Returns 1 for a number other than 0 or a container that is not empty, else 0."},
    {u"GetField ( fieldName )", getField, "Returns the contents of the field of a name."},
    {u"GetNthRecord ( field ; recordNumber )", Refused{CalcCode::fieldRequired},
     "Returns the contents of a field in another record."},
    {u"GetSummary ( summaryField ; breakField )", Refused{CalcCode::summaryFieldRequired},
     "Returns the value of a summary field for a group of records."},
    {u"If ( test ; result1 {; result2 } )", ifFunction,
     "Returns one of two results as a test is true or not."},
    {u"IsEmpty ( field )", isEmpty, "Returns 1 for a value that is empty, else 0."},
    {u"IsValid ( field )", Refused{CalcCode::fieldRequired}, isValid,
     "Returns 0 for a field or variable whose value is not valid, else 1."},
    {u"IsValidExpression ( expression )", isValidExpression,
     "Returns 1 when a text is a calculation without syntax error, else 0."},
    {u"Let ( [ var1 = expression1 {; var2 = expression2 ... } ] ; calculation )", BuiltinForm::let,
     "Sets variables for a calculation."},
    {u"Lookup ( sourceField {; failExpression } )", Refused{CalcCode::fieldRequired},
     "Returns the value of a field of a related record."},
    {u"LookupNext ( sourceField ; lowerHigherFlag )", Refused{CalcCode::fieldRequired},
     "Returns the value of a field of the related record next to a key."},
    {u"Self", Refused{CalcCode::notSupportedHere},
     "Returns the contents of the object that the calculation belongs to."},
    {u"SetRecursion ( expression ; maxIterations )", setRecursion,
     "Evaluates an expression with a limit of its own for loops and recursions."},
    {u"True", trueFunction, "Returns 1."},
    {u"While ( [ initialVariable ] ; condition ; [ logic ] ; result )", BuiltinForm::loop,
     "Repeats its logic while a condition is true."},
};

} // namespace

std::span<const Builtin> logicalFunctions() {
    return kFunctions;
}

} // namespace host
