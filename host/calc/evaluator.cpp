#include "host/calc/evaluator.h"

#include "host/calc/operations.h"
#include "host/calc/stack_limit.h"
#include "host/calc/styled_text.h"
#include "host/values/depth.h"
#include "host/values/text.h"

#include <utility>

namespace host {

Evaluator::Evaluator(Session& session, const Calculation& calculation)
    : session_(session), calculation_(calculation), slots_(calculation.slots) {}

Evaluator::Evaluator(Session& session, const Calculation& calculation, std::vector<Value> arguments)
    : session_(session), calculation_(calculation), slots_(std::move(arguments)) {
    slots_.resize(calculation.slots);
}

Value callFunction(Session& session, const ExternalFunction& function, std::vector<Value> arguments) {
    const DepthGuard level(session.callDepth_);
    if (session.callDepth_ > session.callDepthLimit()) {
        return Value::invalid();
    }
    PendingCall call;
    Value result = Evaluator(session, *function.body(), std::move(arguments)).runBody(call);
    for (int64_t turns = 1; call.function != nullptr; ++turns) {
        if (turns >= session.recursionLimit()) {
            return Value::invalid();
        }
        const PendingCall now = std::exchange(call, {});
        result = Evaluator(session, *now.function->body(), now.arguments).runBody(call);
    }
    return result;
}

// Descends to the expression that is evaluated last: the result of Let, the branch that If chooses.
Value Evaluator::runBody(PendingCall& next) {
    const Node* node = &calculation_.root;
    for (;;) {
        if (const auto* let = std::get_if<Let>(&node->form)) {
            assign(let->assignments);
            node = let->result.get();
            continue;
        }
        const auto* builtin = std::get_if<BuiltinCall>(&node->form);
        if (builtin != nullptr && builtin->function->form == BuiltinForm::branch) {
            node = builtin->function->branch(*this, builtin->arguments);
            if (node == nullptr) {
                return {};
            }
            continue;
        }
        const auto* external = std::get_if<ExternalCall>(&node->form);
        if (external != nullptr && external->function->body() != nullptr) {
            if (const char* reason = session_.reasonToStop()) {
                fail(*node, reason);
            }
            next.arguments = evaluateAll(external->arguments);
            next.function = function(*node, *external);
            return {};
        }
        return evaluate(*node);
    }
}

void Evaluator::fail(const Node& node, std::string message) const {
    throw CalcError(ErrorKind::evaluation, CalcCode::generic, calculation_.source, node.begin,
                    std::move(message));
}

Value Evaluator::evaluate(const Node& node) {
    if (isStackShort()) {
        fail(node, "the evaluation is nested too deeply: does it call itself without an end?");
    }
    if (const char* reason = session_.reasonToStop()) {
        fail(node, reason);
    }
    try {
        return std::visit([&](const auto& form) { return evaluateForm(node, form); }, node.form);
    } catch (const DivisionByZero&) {
        session_.setEvaluationError(static_cast<int>(CalcCode::divisionByZero));
    } catch (const NumberError&) { // for instance too many digits, or the logarithm of 0
        session_.setEvaluationError(static_cast<int>(CalcCode::outOfRange));
    }
    return Value::invalid();
}

Value Evaluator::evaluateForm(const Node& /*node*/, const Literal& form) {
    return form.value;
}

Value Evaluator::evaluateForm(const Node& /*node*/, const Variable& form) {
    if (form.isLast) {
        return session_.takeVariable(form.key);
    }
    const Value* value = session_.variable(keyOf(form));
    return value == nullptr ? Value() : *value;
}

std::u16string Evaluator::keyOf(const Variable& variable) {
    if (variable.repetition == nullptr) {
        return variable.key;
    }
    return repetitionKey(variable.key, evaluate(*variable.repetition).asNumber().value_or(0).toInt64());
}

Value Evaluator::evaluateForm(const Node& /*node*/, const Slot& form) {
    return form.isLast ? std::exchange(slots_[form.index], {}) : slots_[form.index];
}

Value Evaluator::evaluateForm(const Node& /*node*/, const Unary& form) {
    return applyUnary(form.op, evaluate(*form.operand));
}

// `and` and `or` do not evaluate operands that cannot change the result. A chain of & makes one text at once.
Value Evaluator::evaluateForm(const Node& /*node*/, const Chain& form) {
    if (form.rest.front().op == Operator::join) {
        return joined(form);
    }
    Value left = evaluate(*form.first);
    for (const Chain::Link& link : form.rest) {
        const bool decided = (link.op == Operator::logicalAnd && !left.asBoolean()) ||
                             (link.op == Operator::logicalOr && left.asBoolean());
        left = decided ? truth(link.op == Operator::logicalOr)
                       : applyBinary(link.op, left, evaluate(link.operand), session_.precision());
    }
    return left;
}

// Joins the texts of a chain of &, with their styles.
Value Evaluator::joined(const Chain& chain) {
    StyledTextWriter text(evaluate(*chain.first));
    for (const Chain::Link& link : chain.rest) {
        text.append(evaluate(link.operand));
    }
    return text.take();
}

std::vector<Value> Evaluator::evaluateAll(std::span<const Node> nodes) {
    std::vector<Value> values;
    values.reserve(nodes.size());
    for (const Node& node : nodes) {
        values.push_back(evaluate(node));
    }
    return values;
}

Value Evaluator::evaluateForm(const Node& /*node*/, const BuiltinCall& form) {
    switch (form.function->form) {
    case BuiltinForm::eager:
        return form.function->owning != nullptr ? form.function->owning(session_, evaluateAll(form.arguments))
                                                : form.function->eager(session_, evaluateAll(form.arguments));
    case BuiltinForm::branch: {
        const Node* chosen = form.function->branch(*this, form.arguments);
        return chosen == nullptr ? Value() : evaluate(*chosen);
    }
    case BuiltinForm::lazy:
        return form.function->lazy(*this, form.arguments);
    default:
        evaluateAll(form.arguments); // for the variables that they set
        if (form.function->placeholder.code != CalcCode::none) {
            session_.setEvaluationError(static_cast<int>(form.function->placeholder.code));
        }
        return form.function->placeholder.value();
    }
}

ExternalFunctionPtr Evaluator::function(const Node& node, const ExternalCall& call) const {
    if (!call.function->registered()) {
        const ExternalFunctionPtr again = session_.functions_.find(call.key);
        if (again == nullptr) {
            fail(node, toUtf8(call.function->name()) + " is no longer registered");
        }
        if (!again->accepts(call.arguments.size())) {
            fail(node, toUtf8(again->name()) + " no longer takes " + std::to_string(call.arguments.size()) +
                           " arguments: " + toUtf8(again->prototype()));
        }
        call.function = again;
    }
    return call.function;
}

Value Evaluator::evaluateForm(const Node& node, const ExternalCall& form) {
    std::vector<Value> arguments = evaluateAll(form.arguments);
    const ExternalFunctionPtr callee = function(node, form);
    if (callee->body() != nullptr) {
        return callFunction(session_, *callee, std::move(arguments));
    }
    try {
        return callee->call(session_, arguments);
    } catch (const ExternalFailure& failure) {
        fail(node, toUtf8(callee->name()) + " failed: " + failure.what());
    }
}

Value Evaluator::evaluateForm(const Node& node, const Brackets& /*form*/) {
    fail(node, "a list in brackets has no value of its own");
}

void Evaluator::assign(const std::vector<Assignment>& assignments) {
    for (const Assignment& assignment : assignments) {
        Value value = evaluate(assignment.value);
        if (const auto* slot = std::get_if<Slot>(&assignment.target)) {
            slots_[slot->index] = std::move(value);
        } else {
            const auto& variable = std::get<Variable>(assignment.target);
            session_.setVariable(keyOf(variable), std::move(value));
        }
    }
}

Value Evaluator::evaluateForm(const Node& /*node*/, const Let& form) {
    assign(form.assignments);
    return evaluate(*form.result);
}

Value Evaluator::evaluateForm(const Node& /*node*/, const While& form) {
    for (const Assignment& assignment : form.logic) { // values left by the last turn of an outer loop
        if (const auto* slot = std::get_if<Slot>(&assignment.target)) {
            slots_[slot->index] = Value();
        }
    }
    assign(form.start);
    for (int64_t turns = 0; evaluate(*form.condition).asBoolean(); ++turns) {
        if (turns >= session_.recursionLimit()) {
            return Value::invalid();
        }
        assign(form.logic);
    }
    return evaluate(*form.result);
}

Value Evaluator::evaluateForm(const Node& /*node*/, const Get& form) {
    return form.row->value(session_);
}

} // namespace host
