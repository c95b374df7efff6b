#pragma once

// Data about a plug-in and how it is loaded, without the types of the plug-in interface.

#include "host/loader/call_watch.h"
#include "host/loader/host_release.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>

namespace host {

// How busy the host is; the level in idle messages.
enum class IdleLevel : uint8_t {
    userIdle = 0,
    userNotIdle = 1,
    scriptPaused = 2,
    scriptRunning = 3,
    unsafe = 4
};

// Data of a running plug-in. Strings that it does not provide are empty.
struct PluginInfo {
    std::filesystem::path path; // of the library itself
    std::u16string name;
    std::u16string helpText;
    std::u16string helpAddress;
    std::u16string options; // 11 characters
    int version = 0;        // the interface version that it returned from start-up
};

// How a plug-in is loaded.
struct LoadOptions {
    int hostVersion = kHostVersion;                        // the interface version that the host declares
    std::chrono::seconds limit = std::chrono::seconds(30); // for its start-up, and for its shut-down; 0: none
    FatalHandler fatal; // called when it hangs or exits the program in one of them
};

} // namespace host
