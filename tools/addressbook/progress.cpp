#include "tools/addressbook/progress.h"

#include "tools/addressbook/interrupt.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <unistd.h>
#include <utility>

namespace addressbook::tool {
namespace {

using std::chrono::milliseconds;
constexpr milliseconds kBeforeFirstLine{500}; // on a terminal; shorter work shows no line there
constexpr milliseconds kBetweenLinesOnTerminal{100};
constexpr milliseconds kBetweenLinesElsewhere{1000};
constexpr const char* kClearLine = "\r\x1B[K";

} // namespace

ProgressLine::ProgressLine(std::string what, bool asked)
    : terminal_(isatty(STDERR_FILENO) != 0), shown_(terminal_ || asked) {
    start(std::move(what));
}

void ProgressLine::start(std::string what) {
    what_ = std::move(what);
    next_ = Clock::now() + (terminal_ ? kBeforeFirstLine : kBetweenLinesElsewhere);
}

void ProgressLine::update(double part, const std::string& details, bool always) {
    throwIfInterrupted();
    const Clock::time_point now = Clock::now();
    if (!shown_ || (now < next_ && (!always || terminal_))) {
        return;
    }
    next_ = now + (terminal_ ? kBetweenLinesOnTerminal : kBetweenLinesElsewhere);
    std::string line = what_ + ": " + details;
    if (part >= 0) {
        line += (details.empty() ? "" : ", ") +
                std::to_string(static_cast<int>(std::floor(std::min(part, 1.0) * 100))) + " %";
    }
    std::cerr << (terminal_ ? kClearLine : "") << line << (terminal_ ? "" : "\n") << std::flush;
    dirty_ = terminal_;
}

void ProgressLine::clear() {
    if (dirty_) {
        std::cerr << kClearLine << std::flush;
    }
    dirty_ = false;
}

} // namespace addressbook::tool
