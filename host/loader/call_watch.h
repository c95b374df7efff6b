#pragma once

// Watches a call into a plug-in that may never return, so that the user learns which plug-in it was.

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace host {

// Called when a watched call hangs or exits the program, with one line that names the plug-in and says which.
// Must end the program, as there is no way to go on. Runs on a thread of its own while the plug-in hangs, or
// at the program's exit.
using FatalHandler = std::function<void(const std::string& message)>;

// Watches from its construction to its destruction, on one thread:
// - a signal by which the program crashes (such as SIGSEGV or SIGABRT, on any thread) first writes a line to
//   standard error, and then has its usual effect: a core dump, a sanitizer's report;
// - the handler is called when the limit is exceeded, and when the program exits meanwhile.
// There may be only one at a time.
class CallWatch {
  public:
    // [plugin] is the plug-in's file, [stage] names the call ("start-up"). 0 as the limit means none. Without
    // a handler, only crashes are watched.
    CallWatch(const std::string& plugin, const std::string& stage, std::chrono::seconds limit,
              FatalHandler fatal);
    ~CallWatch();
    CallWatch(const CallWatch&) = delete;
    CallWatch& operator=(const CallWatch&) = delete;

  private:
    void waitFor(std::chrono::seconds limit);

    std::string plugin_;
    std::string stage_;
    FatalHandler fatal_;
    std::vector<char> signalStack_; // the handler's own stack, as the crash may be a stack overflow
    stack_t formerSignalStack_{};

    std::mutex mutex_;
    std::condition_variable ended_;
    bool hasEnded_ = false;
    std::thread timer_;
};

} // namespace host
