#pragma once

// What is told to a plug-in and known of it, without the plug-in interface's own types.

#include "host/loader/call_watch.h"
#include "host/loader/host_release.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>

namespace host {

// How busy the host is, as idle messages tell it.
enum class IdleLevel : uint8_t {
    userIdle = 0,
    userNotIdle = 1,
    scriptPaused = 2,
    scriptRunning = 3,
    unsafe = 4
};

// What is known of a running plug-in. Texts that it does not answer are empty.
struct PluginInfo {
    std::filesystem::path path; // of the library itself
    std::u16string name;
    std::u16string helpText;
    std::u16string helpAddress;
    std::u16string options; // 11 characters
    int version = 0;        // of the interface, as the plug-in answered to the start-up
};

// How a plug-in is loaded.
struct LoadOptions {
    int hostVersion = kHostVersion;                        // the interface version that the host says it has
    std::chrono::seconds limit = std::chrono::seconds(30); // for its start-up, and for its shut-down; 0: none
    FatalHandler fatal; // when it hangs or exits the program in one of them
};

} // namespace host
