#pragma once

// Everything that lasts from one calculation to the next: registered functions, variables, the running
// script, the last error. One thread uses a session.

#include "host/calc/ast.h"
#include "host/calc/calc_error.h"
#include "host/calc/environment.h"
#include "host/calc/external_function.h"
#include "host/values/value.h"

#include <atomic>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace host {

// Nodes inside nodes, Evaluate and plug-in functions that evaluate included, may be this deep.
inline constexpr int kMaxEvaluationDepth = 1000;

// A While that has turned this often answers "?", unless SetRecursion says otherwise.
inline constexpr int64_t kMaxRecursions = 50'000;

// The key of a variable's repetition: of the first one, and of any below, the variable's own.
std::u16string repetitionKey(const std::u16string& key, int64_t repetition);

class Session {
  public:
    using Variables = std::unordered_map<std::u16string, Value>;

    // What belongs to a running script; the session's own frame stands for calculations outside any script.
    struct Frame {
        Variables locals;
        std::u16string scriptName;
        Value parameter;
        Value scriptResult; // of the script that this one performed last
    };

    Session();

    FunctionRegistry& functions() { return functions_; }
    const FunctionRegistry& functions() const { return functions_; }

    // Evaluates; throws CalcError of the evaluation kind. May be called while another evaluation runs.
    Value evaluate(const Calculation& calculation);

    // Parses and evaluates; throws CalcError of any kind.
    Value evaluate(std::u16string text);

    // Gives a value to a variable, whose repetition is computed: see Parser::variableCalculation(). Throws
    // CalcError.
    void assign(const Calculation& variable, Value value);

    // The value of a variable; null for one that was never set. [key] is folded and has its dollar signs.
    const Value* variable(const std::u16string& key) const;
    void setVariable(const std::u16string& key, Value value);
    // The repetitions of a variable up to the last that was set; those between that were not are empty.
    std::vector<Value> repetitions(const std::u16string& key) const;

    Frame& frame() { return frames_.back(); }
    bool runsScript() const { return frames_.size() > 1; }

    // The outcome of the last script step, plug-in function or performed script; 0 is success.
    int lastError() const { return lastError_; }
    void setLastError(int code) { lastError_ = code; }

    // The code of the last Evaluate that failed since it was last set to 0.
    int evaluationError() const { return evaluationError_; }
    void setEvaluationError(int code) { evaluationError_ = code; }

    // Places behind the point of quotients, roots and logarithms; how often a While may turn and a function
    // call itself. SetPrecision and SetRecursion set both for as long as they evaluate an expression.
    int precision() const { return precision_; }
    void setPrecision(int places) { precision_ = places; }
    int64_t recursionLimit() const { return recursionLimit_; }
    void setRecursionLimit(int64_t turns) { recursionLimit_ = turns; }

    // What Get functions answer about the host and its scripts.
    Environment& environment() { return environment_; }

    // Once set, from a signal handler or another thread, every evaluation ends with an error until it is
    // cleared.
    std::atomic<bool>& interruptFlag() { return interrupted_; }

  private:
    friend class Evaluator;
    friend class ScriptFrame;

    const Variables& scopeOf(const std::u16string& key) const;

    FunctionRegistry functions_;
    Variables globals_;
    std::deque<Frame> frames_; // the innermost script last; references stay good while scripts start and end
    int lastError_ = 0;
    int evaluationError_ = 0;
    int depth_ = 0;
    int precision_ = Number::kQuotientPlaces;
    int64_t recursionLimit_ = kMaxRecursions;
    Environment environment_;
    std::atomic<bool> interrupted_ = false;
};

// A frame of its own for a script, for as long as it lives.
class ScriptFrame {
  public:
    ScriptFrame(Session& session, std::u16string name, Value parameter);
    ~ScriptFrame();
    ScriptFrame(const ScriptFrame&) = delete;
    ScriptFrame& operator=(const ScriptFrame&) = delete;

  private:
    Session& session_;
};

} // namespace host
