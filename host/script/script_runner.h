#pragma once

// Runs scripts.

#include "host/calc/session.h"
#include "host/script/script_library.h"
#include "host/values/container_file.h"

#include <chrono>
#include <mutex>
#include <optional>
#include <queue>
#include <string>

namespace host {

// Scripts may perform each other this deep.
inline constexpr int kMaxScriptDepth = 200;

// The step codes that Get ( LastError ) answers, FileMaker's own numbers.
inline constexpr int kScriptMissing = 104;

// What a running script shows. Each function does nothing unless it is overridden.
class ScriptListener {
  public:
    virtual ~ScriptListener() = default;

    // Show Custom Dialog.
    virtual void dialog(const Value& /*title*/, const Value& /*message*/) {}

    // A step has evaluated the calculation that it depends on.
    virtual void evaluated(const Script& /*script*/, const Step& /*step*/, const Value& /*result*/) {}

    // Pause/Resume Script: the script goes on when this returns.
    virtual void paused(std::chrono::duration<double> /*time*/) {}
};

class ScriptRunner {
  public:
    ScriptRunner(Session& session, ScriptLibrary& library, ScriptListener& listener)
        : session_(session), library_(library), listener_(listener) {}

    // Runs a file's script to its end and answers its result. Throws CalcError, FileError.
    Value run(const std::filesystem::path& file, Value parameter);

    // False when as many scripts as may be are inside each other.
    bool canRun() const { return depth_ <= kMaxScriptDepth; }

  private:
    using ContainerMaker = Container (*)(std::u16string_view name, Bytes contents);

    Value run(const Script& script);
    void perform(const Script& script, const Step& step);
    Value evaluate(const Script& script, const Step& step);
    void insert(const Script& script, const Step& step, ContainerMaker make);
    void exportContents(const Script& script, const Step& step);
    void pause(const Script& script, const Step& step);
    void runExternal(const Script& script, const Step& step);
    std::filesystem::path path(const Script& script, const Calculation& calculation);
    [[noreturn]] void fail(const Script& script, const Calculation& calculation, std::string message) const;

    Session& session_;
    ScriptLibrary& library_;
    ScriptListener& listener_;
    int depth_ = 0;
};

// Scripts that plug-ins have started and that wait for their turn. Any thread may add one.
class ScriptQueue {
  public:
    struct Request {
        std::filesystem::path file;
        Value parameter;
    };

    void push(Request request);
    std::optional<Request> pop();

  private:
    std::mutex mutex_;
    std::queue<Request> waiting_;
};

} // namespace host
