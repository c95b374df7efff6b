#include "tools/addressbook/sync/password.h"

#include "tools/addressbook/interrupt.h"
#include "tools/addressbook/output.h"
#include "tools/addressbook/sync/keyring.h"
#include "tools/addressbook/sync/places.h"
#include "tools/addressbook/terminal.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace addressbook::tool {
namespace {

using carddav::Secret;

// Longer ones are no passwords; tokens have some thousand characters at most.
constexpr std::size_t kLongest = 65'536;

// A file descriptor that is closed with its owner.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int number() const { return number_; }
    void close() {
        if (number_ >= 0) {
            ::close(number_);
        }
        number_ = -1;
    }

  private:
    int number_;
};

// Returns the first line of what can be read from a file or pipe; all of it is read, as far as it is of sensible
// length, so that who writes it can end. Throws Interrupted.
Secret firstLine(int descriptor) {
    std::string text(kLongest, '\0'); // one place in memory, which Secret overwrites
    std::size_t size = 0;
    for (;;) {
        waitForInput(descriptor);
        const ssize_t got = read(descriptor, text.data() + size, text.size() - size);
        if (got <= 0 || (size += static_cast<std::size_t>(got)) == text.size()) {
            break;
        }
    }
    std::size_t end = std::min(text.find('\n'), size);
    while (end > 0 && text[end - 1] == '\r') {
        --end;
    }
    explicit_bzero(text.data() + end, text.size() - end);
    text.resize(end);
    return Secret(std::move(text));
}

// A shell that runs a command. One that is not waited for is ended.
class Shell {
  public:
    Shell(const std::string& command, int output) {
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        sigset_t defaults; // what this program ignores
        sigemptyset(&defaults);
        sigaddset(&defaults, SIGPIPE);
        posix_spawnattr_setsigdefault(&attributes, &defaults);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
        std::string copy = command;
        std::array<char*, 4> words{const_cast<char*>("sh"), const_cast<char*>("-c"), copy.data(), nullptr};
        const int error = posix_spawn(&process_, "/bin/sh", &actions, &attributes, words.data(), environ);
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&actions);
        if (error != 0) {
            throw Failure(std::string("the command for the password cannot be run: ") + std::strerror(error));
        }
    }
    ~Shell() {
        if (process_ > 0) {
            kill(process_, SIGTERM);
            wait();
        }
    }
    Shell(const Shell&) = delete;
    Shell& operator=(const Shell&) = delete;

    // Waits for its end and returns its exit status, or 128 plus the number of the signal that ended it.
    int wait() {
        int status = 0;
        while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
        }
        process_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

  private:
    pid_t process_ = -1;
};

Secret fromCommand(const std::string& command) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw Failure(std::string("the command for the password cannot be run: ") + std::strerror(errno));
    }
    Descriptor reading(ends[0]), writing(ends[1]);
    Shell shell(command, writing.number());
    writing.close();
    Secret password = firstLine(reading.number());
    reading.close();
    if (const int status = shell.wait(); status != 0) {
        throw Failure("the command for the password ended with the exit status " + std::to_string(status) +
                      ": " + escaped(command));
    }
    if (*password.text() == '\0') {
        throw Failure("the command for the password printed none: " + escaped(command));
    }
    return password;
}

Secret fromFile(const std::string& path) {
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat facts{};
    if (file.number() < 0 || fstat(file.number(), &facts) != 0) {
        throw Failure(path + ": cannot read: " + std::strerror(errno));
    }
    if (!S_ISREG(facts.st_mode)) {
        throw Failure(path + ": the password is read from an ordinary file; --password-command takes it from "
                             "elsewhere");
    }
    if ((facts.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
        throw Failure(path + ": others than its owner may use this file; chmod 600 makes it a place for a "
                             "password");
    }
    Secret password = firstLine(file.number());
    if (*password.text() == '\0') {
        throw Failure(path + ": there is no password in its first line");
    }
    return password;
}

Secret fromKeyring(const SyncAccount& account) {
    auto password = findInKeyring(account);
    if (!password) {
        throw Failure("the desktop's keyring has no password of " + account.user + " for " + hostOf(account) +
                      "; addressbook account add --keyring puts it there");
    }
    return *std::move(password);
}

} // namespace

Secret askForPassword(const SyncAccount& account) {
    if (!canAsk()) {
        throw Failure("there is no terminal to ask for the password of " + account.user +
                      " on; --password-command, --password-file and --keyring of addressbook account add "
                      "need none");
    }
    return askPassword("Password of " + account.user + " for " + hostOf(account) + ": ");
}

Secret readPassword(const SyncAccount& account) {
    switch (account.source) {
    case PasswordSource::none:
        break;
    case PasswordSource::command:
        return fromCommand(account.password);
    case PasswordSource::file:
        return fromFile(account.password);
    case PasswordSource::keyring:
        return fromKeyring(account);
    case PasswordSource::prompt:
        return askForPassword(account);
    }
    return {};
}

} // namespace addressbook::tool
