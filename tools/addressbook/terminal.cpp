#include "tools/addressbook/terminal.h"

#include "tools/addressbook/interrupt.h"

#include <iostream>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace addressbook::tool {
namespace {

// Keeps what is typed from being shown, as long as it lives.
class Unseen {
  public:
    Unseen() : known_(tcgetattr(STDIN_FILENO, &before_) == 0) {
        if (known_) {
            termios silent = before_;
            silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
            silent.c_lflag |= ECHONL;
            tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
        }
    }
    ~Unseen() {
        if (known_) {
            tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
        }
    }
    Unseen(const Unseen&) = delete;
    Unseen& operator=(const Unseen&) = delete;

  private:
    termios before_{};
    bool known_;
};

// Returns a line of standard input without its end. Nothing is read beyond it, and nothing left in other buffers.
std::string readLine() {
    constexpr std::size_t kLongest = 4096; // what a terminal gives at once
    std::string line;
    line.reserve(kLongest); // a password is not left behind by a text that grows
    for (char sign = 0; line.size() < kLongest;) {
        waitForInput(STDIN_FILENO);
        if (read(STDIN_FILENO, &sign, 1) != 1 || sign == '\n') {
            break;
        }
        line += sign;
    }
    return line;
}

} // namespace

bool canAsk() {
    return isatty(STDIN_FILENO) != 0 && isatty(STDERR_FILENO) != 0;
}

std::string ask(const std::string& question) {
    std::cerr << question << std::flush;
    const std::string line = readLine();
    const std::size_t first = line.find_first_not_of(" \t\r");
    return first == std::string::npos ? std::string()
                                      : line.substr(first, line.find_last_not_of(" \t\r") - first + 1);
}

bool confirm(const std::string& question) {
    const std::string answer = ask(question + " [y/N] ");
    return answer == "y" || answer == "Y" || answer == "yes";
}

carddav::Secret askPassword(const std::string& question) {
    const Unseen unseen; // before anybody types
    std::cerr << question << std::flush;
    return carddav::Secret(readLine());
}

} // namespace addressbook::tool
