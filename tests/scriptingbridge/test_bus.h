#pragma once

// A session bus of a test's own, and the programs on it.

#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

// A child process that ends when its standard input does, which is when this object goes.
class Child {
  public:
    explicit Child(const std::vector<std::string>& command);
    ~Child() { end(); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    // The next line that it prints; empty when it has ended.
    std::string line();
    void end();

  private:
    pid_t process_ = -1;
    int input_ = -1;
    int output_ = -1;
};

// A bus in a folder of its own. It knows how to start the stand-in as [activatable]; the environment names it
// while it lives.
class TestBus {
  public:
    TestBus(const std::filesystem::path& folder, const std::string& activatable,
            const std::filesystem::path& record);

    // Asks the owner of [name] whether it is there and lets the bus start one; whether somebody answered.
    static bool ping(const std::string& name);
    // The process of the bus itself.
    static pid_t process();

  private:
    static std::vector<std::string> command(const std::filesystem::path& folder,
                                            const std::string& activatable,
                                            const std::filesystem::path& record);
    Child child_;
};
