#include "host/console/terminal_picture.h"

#include "host/values/container_file.h"
#include "host/values/picture.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace host {

namespace {

constexpr auto kLimit = std::chrono::seconds(5);
constexpr size_t kMaxOutput = size_t{16} << 20;

// The size of a character cell, in pixels, that most fonts come near to.
constexpr int64_t kCellWidth = 8;
constexpr int64_t kCellHeight = 16;

class Descriptor {
  public:
    explicit Descriptor(int number = -1) : number_(number) {}
    ~Descriptor() { reset(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return number_; }
    void reset() {
        if (number_ >= 0) {
            close(number_);
        }
        number_ = -1;
    }

  private:
    int number_;
};

// Writes bytes to a file in memory and goes to its beginning.
bool fill(int file, const Bytes& bytes) {
    for (size_t done = 0; done < bytes.size();) {
        const ssize_t written = write(file, bytes.data() + done, bytes.size() - done);
        if (written <= 0) {
            return false;
        }
        done += static_cast<size_t>(written);
    }
    return lseek(file, 0, SEEK_SET) == 0;
}

// Starts a program of the path with standard input and output; returns its id, or 0.
pid_t start(const std::vector<std::string>& command, int input, int output) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& word : command) {
        arguments.push_back(const_cast<char*>(word.c_str())); // NOLINT(*-const-cast): the interface is older
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t program = 0;
    const int failure = posix_spawnp(&program, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return failure == 0 ? program : 0;
}

// Returns what a program writes up to its end; empty when it fails, writes too much, or its time is over.
std::string readAll(pid_t program, int output) {
    const auto end = std::chrono::steady_clock::now() + kLimit;
    std::string text;
    bool isComplete = false;
    while (!isComplete && text.size() <= kMaxOutput) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        pollfd ready{output, POLLIN, 0};
        if (left.count() <= 0 || poll(&ready, 1, static_cast<int>(left.count())) <= 0) {
            break; // its time is over, or Ctrl-C was typed
        }
        char buffer[65536];
        const ssize_t size = read(output, buffer, sizeof buffer);
        if (size < 0) {
            break;
        }
        isComplete = size == 0;
        text.append(buffer, static_cast<size_t>(size));
    }
    if (!isComplete) {
        kill(program, SIGKILL);
    }
    int status = 0;
    while (waitpid(program, &status, 0) < 0 && errno == EINTR) {
    }
    return isComplete && WIFEXITED(status) && WEXITSTATUS(status) == 0 ? text : "";
}

} // namespace

std::string terminalPicture(const Container& container, size_t columns, size_t rows) {
    const Container::Stream* const stream = fileStream(container);
    const auto header = stream == nullptr ? std::nullopt : readPictureHeader(stream->bytes());
    if (!header) {
        return "";
    }
    columns = std::min<size_t>(columns, static_cast<size_t>(header->width / kCellWidth + 1));
    rows = std::min<size_t>(rows, static_cast<size_t>(header->height / kCellHeight + 1));
    Descriptor picture(memfd_create("picture", MFD_CLOEXEC));
    int ends[2];
    if (picture.get() < 0 || !fill(picture.get(), stream->bytes()) || pipe2(ends, O_CLOEXEC) != 0) {
        return "";
    }
    Descriptor output(ends[0]);
    Descriptor input(ends[1]);
    const pid_t program = start(
        {"chafa", "--animate", "off", "--size", std::to_string(columns) + "x" + std::to_string(rows), "-"},
        picture.get(), input.get());
    input.reset();
    return program == 0 ? "" : readAll(program, output.get());
}

} // namespace host
