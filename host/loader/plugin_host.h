#pragma once

// The host's side of plug-ins: loads them, sends them messages, keeps what they register, and answers their
// calls.

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

// Functions and steps that plug-ins have registered, as the console lists them.
struct RegisteredInfo {
    std::u16string plugin; // the four characters of its identifier
    int id = 0;
    std::u16string name;
    std::u16string description; // empty when there is none
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

// Called when a plug-in starts a script, on any thread. Returns 0 when the script will run, else an error
// code.
using ScriptStarter =
    std::function<int(const std::u16string& file, const std::u16string& script, const Value& parameter)>;

// A process has only one at a time, because calls from plug-ins do not say which host they are for. Use it on
// the thread that made it; plug-ins may evaluate calculations only on that thread.
class PluginHost {
  public:
    // Functions are added to the session's registry, steps to [steps].
    PluginHost(Session& session, StepRegistry& steps, ScriptStarter starter);

    // Shuts the plug-ins down and removes their functions and steps from the registries. Their libraries stay
    // loaded, as other threads may still run code of a plug-in.
    ~PluginHost();
    PluginHost(const PluginHost&) = delete;
    PluginHost& operator=(const PluginHost&) = delete;

    // Loads the plug-in in a file, bundle or folder (see pluginFile) and starts it. Throws LoadError, and
    // then nothing of it stays registered. When the plug-in crashes, the program ends with a line on standard
    // error that names it; when it hangs, LoadOptions::fatal is called.
    const PluginInfo& load(const std::filesystem::path& path, const LoadOptions& options = {});

    // Sends the idle message to the plug-ins that ask for it.
    void idle(IdleLevel level);

    std::vector<FunctionInfo> functions() const;
    std::vector<StepInfo> steps() const;

    // Whether the host refused anything that a plug-in tried to register; the warnings say what and why.
    bool hasRefused() const;

    // Returns and clears the warnings about what plug-ins did wrong, one line each.
    std::vector<std::string> takeWarnings();

  private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

} // namespace host
