#pragma once

// Evaluates parsed calculations.

#include "host/calc/ast.h"
#include "host/calc/session.h"

#include <span>
#include <vector>

namespace host {

// A call that is still to be made.
struct PendingCall {
    ExternalFunctionPtr function; // null for none
    std::vector<Value> arguments;
};

// Calls a custom function and returns its result; "?" beyond the limits of recursion. A call that is the last
// thing that the function does takes no room on the stack (a tail call). Throws CalcError.
Value callFunction(Session& session, const ExternalFunction& function, std::vector<Value> arguments);

// One evaluation of one calculation.
class Evaluator {
  public:
    Evaluator(Session& session, const Calculation& calculation);

    // [arguments] become the values of the calculation's first slots.
    Evaluator(Session& session, const Calculation& calculation, std::vector<Value> arguments);

    // Returns the calculation's value. Throws CalcError.
    Value run() { return evaluate(calculation_.root); }

    // Returns the value of the body of a function; when the last thing that it does is to call a function
    // that a user has defined, puts that call into [next] instead, and the value does not count. Throws
    // CalcError.
    Value runBody(PendingCall& next);

    // Returns the value of a node of the calculation. Throws CalcError.
    Value evaluate(const Node& node);
    Session& session() { return session_; }

    // Returns the key of a variable's repetition; see repetitionKey().
    std::u16string keyOf(const Variable& variable);

    // Throws a CalcError of the evaluation kind at the place of [node].
    [[noreturn]] void fail(const Node& node, std::string message) const;

  private:
    Value evaluateForm(const Node& node, const Literal& form);
    Value evaluateForm(const Node& node, const Variable& form);
    Value evaluateForm(const Node& node, const Slot& form);
    Value evaluateForm(const Node& node, const Unary& form);
    Value evaluateForm(const Node& node, const Chain& form);
    Value evaluateForm(const Node& node, const BuiltinCall& form);
    Value evaluateForm(const Node& node, const ExternalCall& form);
    Value evaluateForm(const Node& node, const Brackets& form);
    Value evaluateForm(const Node& node, const Let& form);
    Value evaluateForm(const Node& node, const While& form);
    Value evaluateForm(const Node& node, const Get& form);

    std::vector<Value> evaluateAll(std::span<const Node> nodes);
    Value joined(const Chain& chain);
    void assign(const std::vector<Assignment>& assignments);
    ExternalFunctionPtr function(const Node& node, const ExternalCall& call) const;

    Session& session_;
    const Calculation& calculation_;
    std::vector<Value> slots_;
};

} // namespace host
