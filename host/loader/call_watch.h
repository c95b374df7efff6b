#pragma once

// Watches a call into a plug-in that may not come back: says which plug-in it was.

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace host {

// Gets one line that names the plug-in and says what became of it, and ends the program: nothing else can be
// done any more. It runs on a thread of its own while the plug-in hangs, or at the program's exit.
using FatalHandler = std::function<void(const std::string& message)>;

// While one lives, on the thread that made it,
// - a signal by which the program crashes (such as SIGSEGV or SIGABRT, on any thread) first writes a line to
//   standard error, then takes the course that it would have taken: a core dump, a sanitizer's report;
// - a call that lasts longer than the limit, and one that exits the program, is handed to the handler.
// One lives at a time.
class CallWatch {
  public:
    // [plugin] is the plug-in's file, [stage] what it is about ("start-up"). A limit of 0 is none. Without a
    // handler only crashes are watched.
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
    std::vector<char> signalStack_; // a crash may be a stack that is full
    stack_t formerSignalStack_{};

    std::mutex mutex_;
    std::condition_variable ended_;
    bool hasEnded_ = false;
    std::thread timer_;
};

} // namespace host
