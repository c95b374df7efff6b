#pragma once

// The host put together: a session, its scripts, the plug-in.

#include "host/calc/session.h"
#include "host/loader/plugin_host.h"
#include "host/script/script_runner.h"

#include <filesystem>
#include <optional>

namespace host {

struct HostOptions {
    std::optional<std::filesystem::path> plugin; // none: the language alone
    int hostVersion = kHostVersion;
    std::chrono::seconds limit = LoadOptions().limit; // for the plug-in's start-up and shut-down; 0: none
    std::filesystem::path scripts = ".";              // the database file: a folder of scripts
    bool trace = false;                               // print the steps of scripts
};

// The plug-in that --plugin, then $FMHOST_PLUGIN, then the place beside this program names.
std::filesystem::path defaultPlugin();

class Host : private ScriptListener {
  public:
    // Loads the plug-in. Throws LoadError.
    explicit Host(const HostOptions& options);

    // Shuts the plug-in down; what was printed before is out by then.
    ~Host() override;

    Session& session() { return session_; }
    const ScriptLibrary& scripts() const { return library_; }
    std::vector<FunctionInfo> functions() const { return plugins_.functions(); }
    std::vector<StepInfo> steps() const { return plugins_.steps(); }

    // Whether the plug-in wanted to register what it must not; standard error says what.
    bool hasRefused() const { return plugins_.hasRefused(); }

    // What is known of the plug-in; null when there is none.
    const PluginInfo* plugin() const { return plugin_; }

    // Runs a script and answers its result. Throws CalcError, FileError.
    Value run(const std::filesystem::path& script, Value parameter);

    // Between two calculations or scripts: the plug-in's idle time, then the scripts that it has started.
    // Their errors go to standard error. Answers whether a script ran.
    bool idle() { return idle(IdleLevel::userIdle); }

    // Whether a script that the plug-in has started failed.
    bool startedScriptFailed() const { return startedScriptFailed_; }

  private:
    void dialog(const Value& title, const Value& message) override;
    void evaluated(const Script& script, const Step& step, const Value& result) override;
    void paused(std::chrono::duration<double> time) override;
    void beep() override;
    bool idle(IdleLevel level);
    void describeEnvironment(const HostOptions& options);
    void runStarted(const ScriptQueue::Request& request);
    void printWarnings();

    Session session_;
    StepRegistry steps_;
    ScriptLibrary library_;
    ScriptRunner runner_;
    ScriptQueue queue_;
    PluginHost plugins_;
    const PluginInfo* plugin_ = nullptr;
    bool trace_;
    bool startedScriptFailed_ = false;
};

} // namespace host
