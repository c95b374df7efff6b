#pragma once

// Runs scripts.

#include "host/calc/session.h"
#include "host/script/data_files.h"
#include "host/script/error_log.h"
#include "host/script/script_library.h"
#include "host/script/script_queue.h"
#include "host/script/step_context.h"
#include "host/script/step_failure.h"

#include <chrono>
#include <optional>
#include <string>

namespace host {

// The deepest nesting of scripts that perform each other.
inline constexpr int kMaxScriptDepth = 200;

// Called for what a running script shows. Each function does nothing unless it is overridden.
class ScriptListener {
  public:
    virtual ~ScriptListener() = default;

    // Called by Show Custom Dialog.
    virtual void dialog(const Value& /*title*/, const Value& /*message*/) {}

    // Called when a step has evaluated its calculation.
    virtual void evaluated(const Script& /*script*/, const Step& /*step*/, const Value& /*result*/) {}

    // Called by Pause/Resume Script; the script continues when this returns.
    virtual void paused(std::chrono::duration<double> /*time*/) {}

    // Called by Beep.
    virtual void beep() {}
};

// A script that runs at an interval (Install OnTimer Script).
struct TimerScript {
    ScriptRequest script;
    std::chrono::duration<double> interval;
    std::chrono::steady_clock::time_point next;
};

// Runs scripts in a session. Not thread-safe.
class ScriptRunner {
  public:
    ScriptRunner(Session& session, ScriptLibrary& library, ScriptListener& listener)
        : session_(session), library_(library), listener_(listener), dataFiles_(session.environment()) {}

    // Runs the script in a file to its end and returns its result; empty when Halt Script ends it. Throws
    // CalcError, FileError.
    Value run(const std::filesystem::path& file, Value parameter);

    // Whether kMaxScriptDepth allows another script to be performed.
    bool canRun() const { return depth_ <= kMaxScriptDepth; }

    // Returns the timer's script if it is due.
    std::optional<ScriptRequest> dueScript();

  private:
    friend class StepContext;

    Value runSteps(const Script& script);
    void requireTime(const Script& script, const Step& step) const;
    void runOwn(StepContext& context, const Script& script, const Step& step);
    void runExternal(StepContext& context, const Script& script, const Step& step);
    void fail(const Script& script, const Step& step, const StepFailure& failure);

    Session& session_;
    ScriptLibrary& library_;
    ScriptListener& listener_;
    DataFiles dataFiles_;
    ErrorLog errorLog_;
    std::optional<TimerScript> timer_;
    int depth_ = 0;
};

} // namespace host
