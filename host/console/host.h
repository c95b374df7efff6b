#pragma once

// The host as a whole: a session, its scripts, the plug-in.

#include "host/calc/custom_functions.h"
#include "host/calc/session.h"
#include "host/loader/plugin_host.h"
#include "host/script/script_runner.h"

#include <filesystem>
#include <optional>

namespace host {

struct HostOptions {
    std::optional<std::filesystem::path> plugin; // none: only the language
    int hostVersion = kHostVersion;
    std::chrono::seconds limit = LoadOptions().limit; // for the plug-in's start-up and shut-down; 0: none
    std::filesystem::path scripts = ".";              // the folder of scripts, which is the database file
    bool trace = false;                               // print the steps of scripts
    bool allowsNetwork = false;                       // for scripts
    bool loadsCustomFunctions = true;                 // those of the folder of scripts
    std::chrono::seconds workLimit{0};                // for each calculation and script; 0: none
};

// Returns the plug-in to use when --plugin does not name one: that of $FMHOST_PLUGIN, else the one installed
// with this program.
std::filesystem::path defaultPlugin();

class Host : private ScriptListener {
  public:
    // Loads the plug-in, then the custom functions of the folder. Throws LoadError, and CalcError or
    // FileError for the first error in a custom function.
    explicit Host(const HostOptions& options);

    // Shuts the plug-in down, after flushing the output.
    ~Host() override;

    Session& session() { return session_; }
    const StepRegistry& stepRegistry() const { return steps_; }
    const CustomFunctions& customFunctions() const { return customFunctions_; }
    const ScriptLibrary& scripts() const { return library_; }
    std::vector<FunctionInfo> functions() const { return plugins_.functions(); }
    std::vector<StepInfo> steps() const { return plugins_.steps(); }

    // Whether anything that the plug-in tried to register was refused; standard error says what.
    bool hasRefused() const { return plugins_.hasRefused(); }

    // Returns data of the plug-in; null when there is none.
    const PluginInfo* plugin() const { return plugin_; }

    // Runs a script and returns its result. Throws CalcError, FileError.
    Value run(const std::filesystem::path& script, Value parameter);

    // To be called between calculations or scripts: sends the plug-in the idle message, then runs the scripts
    // that it has started, whose errors are written to standard error. Calls [beforeScript], if any, before the
    // first of them. Returns whether a script ran.
    bool idle(const std::function<void()>& beforeScript = {}) {
        return idle(IdleLevel::userIdle, beforeScript);
    }

    // Whether a script that the plug-in has started failed.
    bool startedScriptFailed() const { return startedScriptFailed_; }

  private:
    void dialog(const Value& title, const Value& message) override;
    void evaluated(const Script& script, const Step& step, const Value& result) override;
    void paused(std::chrono::duration<double> time) override;
    void beep() override;
    bool idle(IdleLevel level, const std::function<void()>& beforeScript = {});
    void describeEnvironment(const HostOptions& options);
    void runStarted(const ScriptQueue::Request& request);
    void printWarnings();

    Session session_;
    CustomFunctions customFunctions_;
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
