// The host's side of plug-ins: loads them, sends them messages, keeps what they register, answers what they
// ask.
#pragma once

#include "host/calc/session.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace host {

// The interface version that the host says it has, unless told otherwise.
inline constexpr int kHostVersion = 54;

// A plug-in that can not be loaded; what() is one line that names it and says why.
class LoadError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// How busy the host is, as idle messages tell it.
enum class IdleLevel : uint8_t {
    userIdle = 0,
    userNotIdle = 1,
    scriptPaused = 2,
    scriptRunning = 3,
    unsafe = 4
};

// What is known of a running plug-in.
struct PluginInfo {
    std::filesystem::path path; // of the library itself
    std::u16string name;
    std::u16string helpText;
    std::u16string options; // 11 characters
    int version = 0;        // of the interface, as the plug-in answered to the start-up
};

// A registered function, as the console lists it.
struct FunctionInfo {
    std::u16string plugin; // the four characters of its identifier
    int id = 0;
    std::u16string name;
    std::u16string prototype;
    int minArguments = 0;
    int maxArguments = 0; // ExternalFunction::kAnyNumber for no limit
    uint32_t flags = 0;
};

// Called when a plug-in starts a script, on any thread. Answers 0 when the script will run, else an error
// code.
using ScriptStarter =
    std::function<int(const std::u16string& file, const std::u16string& script, const Value& parameter)>;

// There is one in a process at a time, because plug-ins call back without saying whom. Functions run, and may
// evaluate, on the thread that made it.
class PluginHost {
  public:
    PluginHost(Session& session, ScriptStarter starter);

    // Shuts the plug-ins down and takes their functions out of the session. Their libraries stay loaded: code
    // of a plug-in may still be on other threads.
    ~PluginHost();
    PluginHost(const PluginHost&) = delete;
    PluginHost& operator=(const PluginHost&) = delete;

    // Loads a library, or the one .fmx file in a folder, and starts it. Throws LoadError, and then nothing
    // stays registered.
    const PluginInfo& load(const std::filesystem::path& path, int hostVersion = kHostVersion);

    // Tells the plug-ins that want to know that the host has time.
    void idle(IdleLevel level);

    std::vector<FunctionInfo> functions() const;

    // What plug-ins did wrong so far without being stopped, one line each; asking forgets it.
    std::vector<std::string> takeWarnings();

  private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

} // namespace host
