#pragma once

// One plug-in and its messages.

#include "host/loader/plugin_info.h"
#include "host/loader/plugin_library.h"

#include "FMWrapper/FMXExtern.h"

#include <filesystem>
#include <string>

namespace host {

// There is one session, with one file.
inline constexpr fmx::ptrtype kSession = 1;
inline constexpr fmx::ptrtype kFile = 1;

// From the library to the end of the plug-in's work. All throw LoadError, also for what the plug-in throws.
class Plugin {
  public:
    // Loads the library, without a message to the plug-in.
    Plugin(const std::filesystem::path& file, int hostVersion, FMX_StartScriptCall startScript,
           FMX_CurrentEnvCall currentEnv);
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    // Sends the start-up and asks for the strings. Throws when the plug-in does not want to run.
    void start();

    // Tells a started plug-in that the file, the session and at last the host come to their end, each if it
    // asks for such messages.
    void shutDown();

    // Tells a started plug-in that asks for it that the host has time.
    void idle(IdleLevel level);

    const PluginInfo& info() const { return info_; }

  private:
    bool asksForStartUp() const;
    bool asksFor(size_t option) const;
    std::u16string string(fmx::uchar which);
    fmx::ptrtype send(fmx::uchar message, fmx::uchar parm1 = 0, fmx::ptrtype parm2 = 0,
                      fmx::ptrtype parm3 = 0, fmx::ptrtype result = 0);

    PluginLibrary library_;
    FMX_ExternCallStruct call_{}; // the plug-in keeps its address
    PluginInfo info_;
    bool isStarted_ = false;
};

} // namespace host
