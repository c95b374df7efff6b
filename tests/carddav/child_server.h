#pragma once

// A real server on this machine, in a child process, whose files are in a temporary folder.

#include "tests/support/temporary_folder.h"

#include <functional>
#include <string>
#include <vector>

namespace carddav_test {

class ChildServer {
  public:
    // Starts a program with the arguments that [arguments] gives for a folder and a free port, and waits until it takes
    // connections. Throws std::runtime_error.
    using Arguments =
        std::function<std::vector<std::string>(const std::string& folder, const std::string& port)>;
    explicit ChildServer(const Arguments& arguments);
    // Ends it.
    ~ChildServer();
    ChildServer(const ChildServer&) = delete;
    ChildServer& operator=(const ChildServer&) = delete;

    [[nodiscard]] std::string url(const std::string& path = "/") const {
        return "http://127.0.0.1:" + std::to_string(port_) + path;
    }

    // Returns what it printed.
    [[nodiscard]] std::string log() const;

  private:
    void end();

    support::TemporaryFolder folder_;
    int process_ = -1, port_ = 0;
};

} // namespace carddav_test
