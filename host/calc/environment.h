#pragma once

// What the Get functions return about the program around the calculations. The host and its scripts set it; a
// session alone has the defaults.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace host {

// A plug-in in the list of Get ( InstalledFMPlugins ).
struct InstalledPlugin {
    std::u16string name;
    std::u16string version;
    std::u16string state = u"Enabled";
};

struct Environment {
    std::u16string folder; // of the scripts, an absolute path; empty without one
    std::function<std::vector<InstalledPlugin>()> plugins;
    std::function<std::vector<std::u16string>()> scriptNames;
    bool allowsNetwork = false; // whether scripts may use the network

    // Of scripts.
    bool allowUserAbort = true;
    bool errorCapture = false;
    bool animation = false;
    bool revertTransactionOnError = true;
    int64_t lastMessageChoice = 0;
    std::u16string lastErrorDetail;
    std::u16string lastErrorLocation; // script, step and line, with returns between them
    std::u16string openDataFiles;     // lines of id;path
    std::u16string sessionIdentifier;
};

} // namespace host
