#pragma once

// The host's side of plug-ins: loads them, sends them messages, keeps what they register, answers what they
// ask.

#include "host/calc/session.h"
#include "host/loader/load_error.h"
#include "host/loader/plugin_info.h"
#include "host/script/external_step.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace host {

// What plug-ins have registered, as the console lists it.
struct RegisteredInfo {
    std::u16string plugin; // the four characters of its identifier
    int id = 0;
    std::u16string name;
    std::u16string description; // empty when it was registered without
    uint32_t flags = 0;
};
struct FunctionInfo : RegisteredInfo {
    std::u16string prototype;
    int minArguments = 0;
    int maxArguments = 0; // ExternalFunction::kAnyNumber for no limit
};
struct StepInfo : RegisteredInfo {
    std::u16string prototype; // how scripts write it
};

// Called when a plug-in starts a script, on any thread. Answers 0 when the script will run, else an error
// code.
using ScriptStarter =
    std::function<int(const std::u16string& file, const std::u16string& script, const Value& parameter)>;

// There is one in a process at a time, because plug-ins call back without saying whom. Functions run, and may
// evaluate, on the thread that made it.
class PluginHost {
  public:
    // Functions go into the session's registry, steps into [steps].
    PluginHost(Session& session, StepRegistry& steps, ScriptStarter starter);

    // Shuts the plug-ins down and takes their functions and steps out of the registries. Their libraries stay
    // loaded: code of a plug-in may still be on other threads.
    ~PluginHost();
    PluginHost(const PluginHost&) = delete;
    PluginHost& operator=(const PluginHost&) = delete;

    // Loads the plug-in in a file, bundle or folder (see pluginFile) and starts it. Throws LoadError, and
    // then nothing stays registered. A plug-in that crashes ends the program, with a line that names it on
    // standard error; one that hangs is handed to the options' handler.
    const PluginInfo& load(const std::filesystem::path& path, const LoadOptions& options = {});

    // Tells the plug-ins that want to know that the host has time.
    void idle(IdleLevel level);

    std::vector<FunctionInfo> functions() const;
    std::vector<StepInfo> steps() const;

    // Whether anything that a plug-in wanted to register was refused; the warnings say what and why.
    bool hasRefused() const;

    // What plug-ins did wrong so far without being stopped, one line each; asking forgets it.
    std::vector<std::string> takeWarnings();

  private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

} // namespace host
