#include "fuzz/support/stop_after.h"

#include <csignal>
#include <sys/time.h>

namespace fuzz {

namespace {

std::atomic<std::atomic<bool>*> flag = nullptr;

// Starts the timer of the process's processor time; 0 ends it.
void startTimer(std::chrono::milliseconds time) {
    itimerval timer{};
    timer.it_value.tv_sec = static_cast<time_t>(time.count() / 1000);
    timer.it_value.tv_usec = static_cast<suseconds_t>(time.count() % 1000 * 1000);
    setitimer(ITIMER_PROF, &timer, nullptr);
}

} // namespace

StopAfter::StopAfter(std::atomic<bool>& wanted, std::chrono::milliseconds time) {
    flag = &wanted;
    struct sigaction action{};
    action.sa_handler = [](int) {
        if (std::atomic<bool>* set = flag) {
            *set = true;
        }
    };
    action.sa_flags = SA_RESTART;
    sigaction(SIGPROF, &action, nullptr);
    startTimer(time);
}

StopAfter::~StopAfter() {
    startTimer(std::chrono::milliseconds(0));
    flag = nullptr;
}

} // namespace fuzz
