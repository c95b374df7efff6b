#include "host/loader/call_watch.h"

#include <array>
#include <cerrno> // program_invocation_short_name
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace host {

namespace {

constexpr std::array kCrashes = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGTRAP, SIGSYS};
constexpr size_t kSignalStackBytes = size_t{64} << 10;

// The signal handler's data, prepared so that it need not allocate.
std::string crashMessage; // without the signal and the end of the line
std::array<struct sigaction, kCrashes.size()> formerActions;

// Called when the program exits during a watched call; empty when there is none.
std::function<void()> exitDuringCall;

void write(const char* text) {
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, text, std::strlen(text));
}

void crashed(int signal, siginfo_t* info, void* context);

// Restores the former signal handlers, but leaves those that the plug-in has set.
void restoreActions() {
    for (size_t i = 0; i < kCrashes.size(); ++i) {
        struct sigaction now{};
        sigaction(kCrashes[i], nullptr, &now);
        if (now.sa_sigaction == crashed) {
            sigaction(kCrashes[i], &formerActions[i], nullptr);
        }
    }
}

// The signal handler. Calls only async-signal-safe functions.
void crashed(int signal, siginfo_t* info, void* /*context*/) {
    write(crashMessage.c_str());
    const char* name = sigdescr_np(signal);
    write(name == nullptr ? "unknown signal" : name);
    write("\n");
    restoreActions();
    if (info->si_code <= 0) {
        raise(signal); // the signal was sent by a process, and would not occur again by itself
    }
}

} // namespace

CallWatch::CallWatch(const std::string& plugin, const std::string& stage, std::chrono::seconds limit,
                     FatalHandler fatal)
    : plugin_(plugin), stage_(stage), fatal_(std::move(fatal)), signalStack_(kSignalStackBytes) {
    crashMessage = std::string(program_invocation_short_name) + ": the plug-in " + plugin_ +
                   " crashed in its " + stage_ + ": ";
    stack_t stack{};
    stack.ss_sp = signalStack_.data();
    stack.ss_size = signalStack_.size();
    sigaltstack(&stack, &formerSignalStack_);
    struct sigaction action{};
    action.sa_sigaction = crashed;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    for (size_t i = 0; i < kCrashes.size(); ++i) {
        sigaction(kCrashes[i], &action, &formerActions[i]);
    }

    [[maybe_unused]] static const int atExit = std::atexit([] {
        if (exitDuringCall) {
            exitDuringCall();
        }
    });
    if (!fatal_) {
        return;
    }
    exitDuringCall = [this] { fatal_("the plug-in " + plugin_ + " ended the program in its " + stage_); };
    if (limit.count() > 0) {
        timer_ = std::thread([this, limit] { waitFor(limit); });
    }
}

CallWatch::~CallWatch() {
    if (timer_.joinable()) {
        {
            const std::lock_guard lock(mutex_);
            hasEnded_ = true;
        }
        ended_.notify_one();
        timer_.join();
    }
    exitDuringCall = nullptr;
    restoreActions();
    stack_t now{};
    sigaltstack(nullptr, &now);
    if (now.ss_sp == signalStack_.data()) {
        sigaltstack(&formerSignalStack_, nullptr);
    }
}

void CallWatch::waitFor(std::chrono::seconds limit) {
    std::unique_lock lock(mutex_);
    if (!ended_.wait_for(lock, limit, [this] { return hasEnded_; })) {
        fatal_("the plug-in " + plugin_ + " did not answer its " + stage_ + " within " +
               std::to_string(limit.count()) + (limit.count() == 1 ? " second" : " seconds"));
    }
}

} // namespace host
