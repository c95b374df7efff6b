#pragma once

// Ctrl-C, SIGTERM and SIGHUP during long work. They do not end the program at once, but by an exception at
// the next place where nothing is left unfinished, so that temporary files are removed and locks released.

#include <atomic>
#include <chrono>
#include <csignal>

namespace addressbook::tool {

// Thrown when a signal has asked the program to end.
struct Interrupted {
    int signal = 0;
    // Returns the exit status by which shells report a program that the signal has ended: 130, 143 or 129.
    int status() const { return 128 + signal; }
};

// Makes the three signals be noted only, from now on; one that is ignored already (nohup) stays ignored.
void noteSignals();

// Throws Interrupted if a signal was noted.
void throwIfInterrupted();

// Becomes true when a signal was noted; for work that ends itself by it.
const std::atomic<bool>& interruptFlag();

// Waits until [descriptor] can be read; with [timeout] at most that long. Returns whether it can be read. Throws
// Interrupted when a signal comes first.
bool waitForInput(int descriptor, std::chrono::milliseconds timeout = std::chrono::milliseconds(-1));

// As long as it lives, the signals that are noted end the program at once: for calls of libraries that nothing else
// ends, while nothing is left unfinished.
class UnnotedSignals {
  public:
    UnnotedSignals();
    ~UnnotedSignals();
    UnnotedSignals(const UnnotedSignals&) = delete;
    UnnotedSignals& operator=(const UnnotedSignals&) = delete;

  private:
    static constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
    struct sigaction before_[3]{};
};

} // namespace addressbook::tool
