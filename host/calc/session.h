#pragma once

// Everything that lasts from one calculation to the next: registered functions, variables, the running
// script, the last error. Not thread-safe, except where noted.

#include "host/calc/ast.h"
#include "host/calc/calc_error.h"
#include "host/calc/environment.h"
#include "host/calc/external_function.h"
#include "host/values/value.h"

#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace host {

// A While that turns more often than this gives "?", and so does a function that makes more tail calls;
// unless SetRecursion sets another limit.
inline constexpr int64_t kMaxRecursions = 50'000;

// The deepest nesting of calls of custom functions; a call beyond it gives "?". Tail calls are not nested.
// SetRecursion changes this limit as well.
inline constexpr int64_t kMaxCallDepth = 10'000;

// Returns the key of a variable's repetition; for repetition 1 and below, the variable's own key.
std::u16string repetitionKey(const std::u16string& key, int64_t repetition);

class Session {
  public:
    using Variables = std::unordered_map<std::u16string, Value>;

    // The state of a running script. The session's first frame is for calculations outside of scripts.
    struct Frame {
        Variables locals;
        std::u16string scriptName;
        Value parameter;
        Value scriptResult; // of the script that this one performed last
    };

    Session();

    FunctionRegistry& functions() { return functions_; }
    const FunctionRegistry& functions() const { return functions_; }

    // Evaluates a calculation. Throws CalcError of the evaluation kind. May be called during an evaluation.
    Value evaluate(const Calculation& calculation);

    // Parses and evaluates a text. Throws CalcError of any kind.
    Value evaluate(std::u16string text);

    // Gives a value to a variable, whose repetition is computed: see Parser::variableCalculation(). Throws
    // CalcError.
    void assign(const Calculation& variable, Value value);

    // Returns the value of a variable; null when it was never set. [key] is folded and has its dollar signs.
    const Value* variable(const std::u16string& key) const;
    void setVariable(const std::u16string& key, Value value);
    // Returns the value of a variable, which is empty afterwards.
    Value takeVariable(const std::u16string& key);
    // Returns the repetitions of a variable up to the last one that was set; those not set are empty.
    std::vector<Value> repetitions(const std::u16string& key) const;

    // Returns the variables of the innermost script and the global ones, ordered by their keys.
    std::map<std::u16string, Value> variables() const;

    Frame& frame() { return frames_.back(); }
    bool runsScript() const { return frames_.size() > 1; }

    // Return and set the error code of the last script step, plug-in function or performed script; 0 is
    // success.
    int lastError() const { return lastError_; }
    void setLastError(int code) { lastError_ = code; }

    // Return and set the code of the last Evaluate that failed, since it was set to 0.
    int evaluationError() const { return evaluationError_; }
    void setEvaluationError(int code) { evaluationError_ = code; }

    // The places after the point of quotients, roots and logarithms, and the limit of turns of a While and of
    // recursive calls. SetPrecision and SetRecursion change them while they evaluate their expression.
    int precision() const { return precision_; }
    void setPrecision(int places) { precision_ = places; }
    int64_t recursionLimit() const { return recursionLimit_; }
    void setRecursionLimit(int64_t turns) { recursionLimit_ = turns; }
    int64_t callDepthLimit() const {
        return recursionLimit_ == kMaxRecursions ? kMaxCallDepth : recursionLimit_;
    }

    // Returns what Get functions report about the host and its scripts.
    Environment& environment() { return environment_; }

    // Returns a flag that ends every evaluation with an error while it is set. A signal handler or another
    // thread may set it.
    std::atomic<bool>& interruptFlag() { return interrupted_; }

    // Limits how long each calculation and each script may take from its start to its end; 0 for no limit.
    void setTimeLimit(std::chrono::seconds limit) { timeLimit_ = limit; }

    // Returns why the running calculation or script must end: it was interrupted, or its time is over. Null
    // to continue. Cheap, as it reads the clock only for some of the calls.
    const char* reasonToStop() {
        if (interrupted_.load(std::memory_order_relaxed)) {
            return "stopped";
        }
        return ++ticks_ % 256 == 0 ? reasonToStopNow() : nullptr;
    }
    // Returns the same, and always reads the clock: for work that takes longer than a few nodes.
    const char* reasonToStopNow() const {
        if (interrupted_.load(std::memory_order_relaxed)) {
            return "stopped";
        }
        return works_ > 0 && std::chrono::steady_clock::now() > deadline_
                   ? "stopped: it takes longer than --timeout allows"
                   : nullptr;
    }

  private:
    friend class Evaluator;
    friend Value callFunction(Session& session, const ExternalFunction& function,
                              std::vector<Value> arguments);
    friend class ScriptFrame;
    friend class TimedWork;

    const Variables& scopeOf(const std::u16string& key) const;

    FunctionRegistry functions_;
    Variables globals_;
    std::deque<Frame> frames_; // the innermost script last; a deque, so that references stay valid
    int lastError_ = 0;
    int evaluationError_ = 0;
    int callDepth_ = 0;
    int precision_ = Number::kQuotientPlaces;
    int64_t recursionLimit_ = kMaxRecursions;
    Environment environment_;
    std::atomic<bool> interrupted_ = false;
    std::chrono::seconds timeLimit_{0};
    std::chrono::steady_clock::time_point deadline_ = std::chrono::steady_clock::time_point::max();
    int works_ = 0; // inside each other
    uint32_t ticks_ = 0;
};

// A calculation or a script that is at work; the outermost one starts the clock of the time limit.
class TimedWork {
  public:
    explicit TimedWork(Session& session);
    ~TimedWork() { --session_.works_; }
    TimedWork(const TimedWork&) = delete;
    TimedWork& operator=(const TimedWork&) = delete;

  private:
    Session& session_;
};

// Gives the session a frame for a script, for as long as it lives.
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
