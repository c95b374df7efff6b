#pragma once

// One plug-in, and the messages that the host sends it.

#include "host/loader/plugin_info.h"
#include "host/loader/plugin_library.h"

#include "FMWrapper/FMXExtern.h"

#include <filesystem>
#include <string>

namespace host {

// The ids of the one session, and of the one file in it.
inline constexpr fmx::ptrtype kSession = 1;
inline constexpr fmx::ptrtype kFile = 1;

// A loaded plug-in. All functions throw LoadError, also when the plug-in throws an exception.
class Plugin {
  public:
    // Loads the library, without sending a message to the plug-in.
    Plugin(const std::filesystem::path& file, int hostVersion, FMX_StartScriptCall startScript,
           FMX_CurrentEnvCall currentEnv);
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    // Asks for the plug-in's strings and sends the start-up message. Throws when the plug-in refuses to run.
    void start();

    // Sends a started plug-in the messages for the end of the file, of the session and of the host, each if
    // its options string asks for it.
    void shutDown();

    // Sends a started plug-in the idle message, if its options string asks for it.
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
