// fmhost's prompt on a pseudo-terminal: what is typed, and what it writes.
#pragma once

#include "tests/support/temporary_folder.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <poll.h>
#include <pty.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace host {

class TerminalTest : public testing::Test {
  protected:
    static constexpr int kPatience = 20'000; // milliseconds for an answer of the program
    static constexpr unsigned short kRows = 20;
    static constexpr unsigned short kColumns = 60;

    ~TerminalTest() override {
        if (terminal_ >= 0) {
            close(terminal_);
            waitpid(program_, nullptr, 0);
        }
    }

    void start() {
        const winsize size{kRows, kColumns, 0, 0};
        program_ = forkpty(&terminal_, nullptr, nullptr, &size);
        if (program_ == 0) {
            if (chdir(folder_.c_str()) != 0) {
                _exit(127);
            }
            unsetenv("NO_COLOR");
            for (const auto& [name, value] : environment_) {
                setenv(name.c_str(), value.c_str(), 1);
            }
            std::vector<char*> words{const_cast<char*>(FMHOST)};
            for (std::string& word : arguments_) {
                words.push_back(word.data());
            }
            words.push_back(nullptr);
            execv(FMHOST, words.data());
            _exit(127);
        }
        ASSERT_GT(program_, 0) << "no pseudo-terminal: is /dev/pts there?";
        waitFor("> ");
    }

    void type(const std::string& text) {
        seen_.clear();
        ASSERT_EQ(write(terminal_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }

    // Reads until [text] has appeared since the last typing.
    void waitFor(const std::string& text) {
        while (seen_.find(text) == std::string::npos) {
            if (!readSome(kPatience)) {
                FAIL() << "no " << text << " in: " << seen_;
            }
        }
    }

    // Reads what comes within some milliseconds; false when nothing does.
    bool readSome(int patience) {
        pollfd input{terminal_, POLLIN, 0};
        char buffer[4096];
        const ssize_t size = poll(&input, 1, patience) > 0 ? read(terminal_, buffer, sizeof buffer) : 0;
        if (size > 0) {
            seen_.append(buffer, static_cast<size_t>(size));
            received({buffer, static_cast<size_t>(size)});
        }
        return size > 0;
    }

    virtual void received(const std::string& /*bytes*/) {}

    // Types a line and waits for what follows its echo.
    void enter(const std::string& line, const std::string& answer) {
        type(line + "\r");
        waitFor("\n" + answer);
    }

    int exitStatus() {
        int status = 0;
        char buffer[4096];
        pollfd output{terminal_, POLLIN, 0};
        while (poll(&output, 1, kPatience) > 0 && read(terminal_, buffer, sizeof buffer) > 0) {
        }
        if (output.revents == 0) {
            ADD_FAILURE() << "the program does not end";
            kill(program_, SIGKILL);
        }
        waitpid(program_, &status, 0);
        close(terminal_);
        terminal_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    support::TemporaryHome home_;
    std::filesystem::path folder_ = home_.path();
    std::map<std::string, std::string> environment_ = {
        {"XDG_STATE_HOME", (folder_ / "state").string()}, {"TERM", "dumb"}, {"LC_ALL", "C"}};
    std::vector<std::string> arguments_ = {"--plugin", TEST_PLUGINS "/good_plugin.fmx"};
    std::string seen_;
    int terminal_ = -1;
    pid_t program_ = 0;
};

} // namespace host
