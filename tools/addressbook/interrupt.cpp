#include "tools/addressbook/interrupt.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <iterator>
#include <poll.h>
#include <unistd.h>

namespace addressbook::tool {
namespace {

volatile std::sig_atomic_t noted = 0;
std::atomic<bool> flag{false};
static_assert(std::atomic<bool>::is_always_lock_free); // so that a handler may set it
// A pipe into which the handler writes, so that a signal that comes just before poll() wakes it as well.
std::array<int, 2> wakeUp{-1, -1};

void note(int signal) {
    noted = signal;
    flag = true;
    [[maybe_unused]] const auto written = write(wakeUp[1], "", 1); // a full pipe wakes poll() as well
}

} // namespace

void noteSignals() {
    if (wakeUp[0] >= 0 || pipe2(wakeUp.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return;
    }
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action{};
        if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) {
            action.sa_handler = note;
            action.sa_flags = SA_RESTART;
            sigemptyset(&action.sa_mask);
            sigaction(signal, &action, nullptr);
        }
    }
}

void throwIfInterrupted() {
    if (noted != 0) {
        throw Interrupted{noted};
    }
}

const std::atomic<bool>& interruptFlag() {
    return flag;
}

bool waitForInput(int descriptor, std::chrono::milliseconds timeout) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + timeout;
    std::array<pollfd, 2> descriptors{pollfd{descriptor, POLLIN, 0}, pollfd{wakeUp[0], POLLIN, 0}};
    for (int left = static_cast<int>(timeout.count());
         poll(descriptors.data(), descriptors.size(), left) < 0;) {
        throwIfInterrupted();
        if (left >= 0) {
            const auto rest = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
            left = std::max(0, static_cast<int>(rest.count()));
        }
    }
    throwIfInterrupted();
    return descriptors[0].revents != 0;
}

UnnotedSignals::UnnotedSignals() {
    for (std::size_t at = 0; at < std::size(kSignals); ++at) {
        sigaction(kSignals[at], nullptr, &before_[at]);
        if (before_[at].sa_handler == note) {
            std::signal(kSignals[at], SIG_DFL);
        }
    }
}

UnnotedSignals::~UnnotedSignals() {
    for (std::size_t at = 0; at < std::size(kSignals); ++at) {
        sigaction(kSignals[at], &before_[at], nullptr);
    }
}

} // namespace addressbook::tool
