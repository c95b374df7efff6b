#pragma once

// Calculations in the host with the plug-in, in this process: what is measured at the level of users. One of
// these in a process; one thread.

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

namespace bench {

class Calculations {
  public:
    // Loads the plug-in, which works on the address book in $ADDRESSBOOK_HOME. Throws std::exception.
    explicit Calculations(const std::filesystem::path& plugin);
    ~Calculations();
    Calculations(const Calculations&) = delete;
    Calculations& operator=(const Calculations&) = delete;

    // A function of the host that does nothing, to compare calls with.
    static constexpr const char* kEmptyCall = "Nothing";

    // Reads a calculation; run() evaluates it. [as] is a number of the caller's choice.
    void prepare(int as, const std::string& calculation);
    void run(int as);
    // Evaluates a calculation and answers its result as text.
    std::string evaluate(const std::string& calculation);

    // Searches everybody; then walks them as scripts do: opens the next, reads three properties, opens each
    // phone and reads it. Answers the bytes of text that it saw, as UTF-8, when [counting], else nothing.
    void searchEverybody();
    std::size_t walk(bool counting);

  private:
    struct Machine;
    std::unique_ptr<Machine> machine_;
};

} // namespace bench
