#pragma once

// What the function of a step can use while it runs: its arguments, by their place in the prototype, and the
// services of the runner.

#include "host/calc/session.h"
#include "host/script/script.h"
#include "host/script/step_failure.h"

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

namespace host {

class DataFiles;
class ErrorLog;
class ScriptRunner;

class StepContext {
  public:
    StepContext(ScriptRunner& runner, const Script& script, const Step& step)
        : runner_(runner), script_(script), step_(step) {}

    Session& session() const;
    DataFiles& dataFiles() const;
    ErrorLog& errorLog() const;

    bool isGiven(size_t place) const { return step_.arguments[place].isGiven; }

    // Returns the value of an argument; empty when it is not given. Throws CalcError.
    Value value(size_t place) const;
    std::u16string text(size_t place) const { return value(place).asText(); }

    // Returns the number of a flag or a choice; [standard] when it is not given.
    int number(size_t place, int standard = 0) const;

    // Returns an argument as a path, relative to the script's folder, without the prefix by which FileMaker
    // marks the kind of path. Fails when it is empty.
    std::filesystem::path path(size_t place) const;

    // Returns a path relative to the script's folder.
    std::filesystem::path fileBeside(const std::string& name) const;

    // Throws CalcError when the script must end (Session::reasonToStopNow).
    void requireTime() const;

    // Sets the variable of an argument; does nothing when it is not given.
    void assign(size_t place, Value value) const;

    // Passes a value to ScriptListener::evaluated().
    void trace(const Value& value) const;

    // Returns the file of the script that an argument names; nothing when there is none.
    std::optional<std::filesystem::path> script(size_t place) const;

    // Runs a script and returns its result. Throws CalcError, also when scripts are nested deeper than
    // kMaxScriptDepth.
    Value perform(const std::filesystem::path& file, Value parameter) const;

    // Makes a script run at an interval while no other script runs; replaces the one before.
    void installTimer(const std::filesystem::path& file, Value parameter,
                      std::chrono::duration<double> interval) const;
    void removeTimer() const;

    void showDialog(const Value& title, const Value& message) const;
    void pause(std::chrono::duration<double> time) const;
    void beep() const;

    // Ends the script with a result when the step is done.
    void exit(Value result) { result_ = std::move(result); }
    std::optional<Value>& result() { return result_; }

    // Throws StepFailure with a StepCode, at the place of an argument.
    [[noreturn]] void fail(int code, const std::string& message, size_t place) const;

  private:
    ScriptRunner& runner_;
    const Script& script_;
    const Step& step_;
    std::optional<Value> result_;
};

// Thrown by Halt Script: ends all scripts that perform each other.
struct ScriptsHalted {};

} // namespace host
