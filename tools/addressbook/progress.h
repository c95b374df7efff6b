#pragma once

// The line on standard error that shows the progress of long work.

#include <chrono>
#include <string>

namespace addressbook::tool {

// On a terminal, one line that is rewritten in place, beginning after half a second; elsewhere nothing, or
// when [asked] a new line every second. The destructor clears the line.
class ProgressLine {
  public:
    // [what] names the work. [asked]: shows progress also where standard error is no terminal.
    explicit ProgressLine(std::string what, bool asked = false);
    ~ProgressLine() { clear(); }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    // Begins other work.
    void start(std::string what);

    // Shows that [part] of the work is done, from 0 to 1; negative when that is not known. Does nothing
    // shortly after the last line, unless [always]. Throws Interrupted after a signal, so that work that
    // reports its progress can be stopped.
    void update(double part, const std::string& details = "", bool always = false);

    // Removes the line, so that another text can be printed.
    void clear();

  private:
    using Clock = std::chrono::steady_clock;

    bool terminal_, shown_, dirty_ = false;
    std::string what_;
    Clock::time_point next_;
};

} // namespace addressbook::tool
