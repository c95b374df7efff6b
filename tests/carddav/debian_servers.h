#pragma once

// The CardDAV servers of Debian that need no more than a folder.

#include "tests/carddav/child_server.h"

#include <ostream>
#include <string>
#include <vector>

namespace carddav_test {

struct DebianServer {
    const char* name;
    ChildServer::Arguments arguments;
};

inline std::ostream& operator<<(std::ostream& out, const DebianServer& server) {
    return out << server.name;
}

inline const DebianServer kRadicale{
    "radicale", [](const std::string& folder, const std::string& port) {
        return std::vector<std::string>{RADICALE, "--storage-filesystem-folder=" + folder, "--auth-type=none",
                                        "--server-hosts=127.0.0.1:" + port, "--logging-level=warning"};
    }};
inline const DebianServer kXandikos{"xandikos", [](const std::string& folder, const std::string& port) {
                                        return std::vector<std::string>{
                                            XANDIKOS,           "--defaults", "-d", folder,
                                            "--listen-address", "127.0.0.1",  "-p", port};
                                    }};

} // namespace carddav_test
