#pragma once

// Calculations in the host with the plug-in, in this process: the measurements at the level of users.

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

namespace bench {

// A host with the plug-in. There may be one in a process. Not thread-safe.
class Calculations {
  public:
    // Loads the plug-in, which works on the address book in $ADDRESSBOOK_HOME. Throws std::exception.
    explicit Calculations(const std::filesystem::path& plugin);
    ~Calculations();
    Calculations(const Calculations&) = delete;
    Calculations& operator=(const Calculations&) = delete;

    // A function of the host that does nothing: the cost of a call.
    static constexpr const char* kEmptyCall = "Nothing";

    // Parses a calculation, which run() then evaluates. [as] is any number by which run() refers to it.
    void prepare(int as, const std::string& calculation);
    void run(int as);
    // Evaluates a calculation and returns its result as text.
    std::string evaluate(const std::string& calculation);

    // Search all people, and walk through them as scripts do: open the next one, read three properties, open
    // each phone and read it. walk() returns the number of bytes of text read, in UTF-8, when [counting],
    // else 0.
    void searchEverybody();
    std::size_t walk(bool counting);

  private:
    struct Machine;
    std::unique_ptr<Machine> machine_;
};

} // namespace bench
