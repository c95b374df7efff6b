#pragma once

// A session bus for a test, and the programs on it.

#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

// A child process that ends when its standard input is closed, which the destructor does.
class Child {
  public:
    explicit Child(const std::vector<std::string>& command);
    ~Child() { end(); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    // Returns the next line that it prints; empty when it has ended.
    std::string line();
    void end();

  private:
    pid_t process_ = -1;
    int input_ = -1;
    int output_ = -1;
};

// A bus in a folder of its own, which can start the stand-in under the name [activatable]. The environment
// names the bus while this object lives.
class TestBus {
  public:
    TestBus(const std::filesystem::path& folder, const std::string& activatable,
            const std::filesystem::path& record);

    // Pings the owner of [name], which the bus may start for this; returns whether there was a reply.
    static bool ping(const std::string& name);
    // Returns the process id of the bus.
    static pid_t process();

  private:
    static std::vector<std::string> command(const std::filesystem::path& folder,
                                            const std::string& activatable,
                                            const std::filesystem::path& record);
    Child child_;
};
