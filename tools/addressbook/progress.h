#pragma once

// The line that tells on standard error how far long work is.

#include <chrono>
#include <string>

namespace addressbook::tool {

// On a terminal one line that is rewritten in place, from half a second on; else nothing, or a new line every
// second when that was asked for. The destructor clears it.
class ProgressLine {
  public:
    // [asked]: also where standard error is no terminal.
    explicit ProgressLine(std::string what, bool asked = false);
    ~ProgressLine() { clear(); }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    // Begins to tell of other work.
    void start(std::string what);

    // Tells that [part] of the work is done, of 1; negative when nobody knows. [always] tells it even if the
    // line before is young. Throws Interrupted when the program is to end, so that whoever tells how far it
    // is can be stopped.
    void update(double part, const std::string& details = "", bool always = false);

    // Makes room for another line.
    void clear();

  private:
    using Clock = std::chrono::steady_clock;

    bool terminal_, shown_, dirty_ = false;
    std::string what_;
    Clock::time_point next_;
};

} // namespace addressbook::tool
