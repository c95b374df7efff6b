#pragma once

// Accounts on a real server on this machine, and a user who types.

#include "tests/carddav/child_server.h"
#include "tests/tools/program.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace addressbook {

// A sandbox with a server that many may use: the password of everybody is kPassword.
class ServerSandbox : public Sandbox {
  public:
    static constexpr const char* kPassword = "open-sesame-42";

    // Starts the server, or gives the one that is running; it lives as long as somebody has it.
    static std::shared_ptr<carddav_test::ChildServer> startServer();

    ServerSandbox();

    // Returns the server's address.
    std::string url(const std::string& path = "/") const { return server_->url(path); }

    // Returns somebody whom nobody has been before.
    static std::string newUser();

    // Runs `account add` for a user with the command that prints the password, and makes a book.
    Outcome add(const std::string& user, const std::string& book,
                const std::vector<std::string>& further = {}) const;

    // Runs a line of the shell on a terminal, in which $A is the program. When one of the texts has been printed, what
    // follows it is typed, with the Enter key. Returns what the terminal shows as `out`.
    Outcome onTerminal(const std::string& line,
                       const std::vector<std::pair<std::string, std::string>>& typed) const;

  private:
    std::shared_ptr<carddav_test::ChildServer> server_;
};

} // namespace addressbook
