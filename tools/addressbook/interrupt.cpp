#include "tools/addressbook/interrupt.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace addressbook::tool {
namespace {

volatile std::sig_atomic_t noted = 0;
// A pipe into which the handler writes, so that a signal that comes just before poll() wakes it as well.
std::array<int, 2> wakeUp{-1, -1};

void note(int signal) {
    noted = signal;
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

void waitForInput(int descriptor) {
    std::array<pollfd, 2> descriptors{pollfd{descriptor, POLLIN, 0}, pollfd{wakeUp[0], POLLIN, 0}};
    while (poll(descriptors.data(), descriptors.size(), -1) < 0) {
        throwIfInterrupted();
    }
    throwIfInterrupted();
}

} // namespace addressbook::tool
