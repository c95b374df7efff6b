#include "fuzz/support/other_process.h"

#include "fuzz/support/claim.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace fuzz {

namespace {

bool readAll(int file, char* to, size_t size) {
    while (size > 0) {
        const ssize_t count = read(file, to, size);
        if (count <= 0 && !(count < 0 && errno == EINTR)) {
            return false;
        }
        to += std::max<ssize_t>(count, 0);
        size -= static_cast<size_t>(std::max<ssize_t>(count, 0));
    }
    return true;
}

[[noreturn]] void serve(int orders, int answers, void (*work)(std::string_view)) {
    std::string order;
    for (uint16_t size = 0; readAll(orders, reinterpret_cast<char*>(&size), sizeof size);) {
        order.resize(size);
        if (!readAll(orders, order.data(), size)) {
            break;
        }
        work(order);
        if (write(answers, "", 1) != 1) {
            break;
        }
    }
    _exit(0);
}

} // namespace

OtherProcess::OtherProcess(void (*work)(std::string_view)) {
    std::array<int, 2> orders{};
    std::array<int, 2> answers{};
    claim(pipe(orders.data()) == 0 && pipe(answers.data()) == 0, "there can be pipes");
    process_ = fork();
    claim(process_ >= 0, "there can be another process");
    if (process_ == 0) {
        close(orders[1]);
        close(answers[0]);
        serve(orders[0], answers[1], work);
    }
    close(orders[0]);
    close(answers[1]);
    orders_ = orders[1];
    answers_ = answers[0];
}

OtherProcess::~OtherProcess() {
    close(orders_);
    close(answers_);
    waitpid(process_, nullptr, 0);
}

void OtherProcess::carryOut(std::string_view order) {
    const auto size = static_cast<uint16_t>(order.size());
    std::string bytes(reinterpret_cast<const char*>(&size), sizeof size);
    bytes += order.substr(0, size);
    char done = 0;
    claim(write(orders_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()) &&
              readAll(answers_, &done, 1),
          "the other process does what it is told");
}

} // namespace fuzz
