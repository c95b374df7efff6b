#pragma once

// What the function of a step sees while it runs: its arguments by their place in the prototype, and what it
// can do.

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

    // The value of an argument; empty when it is not given. Throws CalcError.
    Value value(size_t place) const;
    std::u16string text(size_t place) const { return value(place).asText(); }

    // Of a flag or a choice: what the script gives, else [standard].
    int number(size_t place, int standard = 0) const;

    // A path, from the script's own folder; what FileMaker writes before a path to say what kind it is does
    // not count. Fails when it is empty.
    std::filesystem::path path(size_t place) const;

    // Gives a value to the variable of an argument; nothing when none is given.
    void assign(size_t place, Value value) const;

    // Shows a value to who follows the script step by step.
    void trace(const Value& value) const;

    // The script that an argument names; nothing when there is none.
    std::optional<std::filesystem::path> script(size_t place) const;

    // Runs a script and answers its result. Throws CalcError, also when scripts perform each other too
    // deeply.
    Value perform(const std::filesystem::path& file, Value parameter) const;

    // Runs a script again and again whenever none runs, in place of the one before.
    void installTimer(const std::filesystem::path& file, Value parameter,
                      std::chrono::duration<double> interval) const;
    void removeTimer() const;

    void showDialog(const Value& title, const Value& message) const;
    void pause(std::chrono::duration<double> time) const;
    void beep() const;

    // Ends the script with that result when the step is done.
    void exit(Value result) { result_ = std::move(result); }
    std::optional<Value>& result() { return result_; }

    // Fails with one of the codes of step_failure.h, at the place of an argument.
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
