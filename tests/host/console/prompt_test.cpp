// The interactive prompt, on a pseudo-terminal.
#include "tests/support/temporary_folder.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <poll.h>
#include <pty.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace host {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr int kPatience = 20'000; // milliseconds for an answer of the program

class PromptTest : public testing::Test {
  protected:
    PromptTest() { start(); }
    ~PromptTest() override {
        if (terminal_ >= 0) {
            close(terminal_);
            waitpid(program_, nullptr, 0);
        }
    }

    void start() {
        program_ = forkpty(&terminal_, nullptr, nullptr, nullptr);
        if (program_ == 0) {
            if (chdir(folder_.c_str()) != 0) {
                _exit(127);
            }
            setenv("XDG_STATE_HOME", (folder_ / "state").c_str(), 1);
            setenv("TERM", "dumb", 1);
            setenv("LC_ALL", "C", 1);
            execl(FMHOST, FMHOST, "--plugin", TEST_PLUGINS "/good_plugin.fmx", nullptr);
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
            pollfd input{terminal_, POLLIN, 0};
            char buffer[4096];
            ssize_t size = 0;
            if (poll(&input, 1, kPatience) > 0) {
                size = read(terminal_, buffer, sizeof buffer);
            }
            if (size <= 0) {
                FAIL() << "no " << text << " in: " << seen_;
            }
            seen_.append(buffer, static_cast<size_t>(size));
        }
    }

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
    fs::path folder_ = home_.path();
    std::string seen_;
    int terminal_ = -1;
    pid_t program_ = 0;
};

TEST_F(PromptTest, EvaluatesAndKeepsVariables) {
    enter("Let ( $x = 20 ; $x )", "20\r\n");
    enter("$x + 1", "21\r\n");
    enter("\"a¶b\"", "a\r\nb\r\n");
    enter("quit", "");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(PromptTest, HelpOnAFunction) {
    enter("help weekofyear",
          "WeekOfYear ( date )\r\n    Returns the week of the year; January 1 is in week 1.\r\n    "
          "Category: Date\r\n");
    enter("help Get", "Get ( name )\r\n");
    enter("help UUID", "Get ( UUID )\r\n");
    enter("help xyzzy", "there is no function called xyzzy\r\n");
}

TEST_F(PromptTest, AMistakeDoesNotEndIt) {
    enter("Lenght ( 1 )", "1:1: there is no function called Lenght; did you mean Length?\r\n");
    enter("Test_Throw ( \"runtime\" )", "1:1: Test_Throw failed: the printer is on fire\r\n");
    enter("1 + 1", "2\r\n");
}

TEST_F(PromptTest, AnIncompleteLineGoesOnAndControlCDropsIt) {
    enter("1 +", ". ");
    enter("2", "3\r\n");
    enter("( 1", ". ");
    type("\x03");
    waitFor("> ");
    enter("5", "5\r\n");
}

TEST_F(PromptTest, ControlCStopsACalculation) {
    type("While ( [ i = 0 ] ; i < 40000 ; [ i = i + 1 ; s = While ( j = 0 ; j < 40000 ; j = j + 1 ; j ) ] ; "
         "i )\r");
    waitFor("\n");
    usleep(100'000);
    type("\x03");
    waitFor(": stopped\r\n");
    enter("5", "5\r\n");
}

TEST_F(PromptTest, Commands) {
    enter(":type 1 + 1", "number\r\n");
    enter("Let ( $x = 20 ; $x )", "20\r\n");
    enter(":variables", "$x = 20\r\n");
    enter(":watch $x * 2", "$x * 2 \u2192 40\r\n");
    enter("Let ( $x = 1 ; $x )", "1\r\n$x * 2 \u2192 2\r\n");
    enter(":unwatch", "> ");
    enter(":time 2 + 3", "5\r\n");
    waitFor(" ms\r\n");
    enter(":nonsense", "there is no command :nonsense; :help lists them\r\n");
    enter(":time", "expected CALCULATION after :time\r\n");
    enter("?weekofyear", "WeekOfYear ( date )\r\n");
    enter(":watch 1 +", "1:4: expected a value");
    std::ofstream(folder_ / "some.txt") << "Let ( $y = 5 ;\n$y )\n";
    enter(":load some.txt", "5\r\n");
    enter(":load none.txt", "can not read none.txt: No such file or directory\r\n");
    std::ofstream(folder_ / "Greets.fmscript") << "Exit Script [ Text Result: \"hel\" & \"lo\" ]";
    enter(":run greets", "hello\r\n");
    enter(":q", "");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(PromptTest, TabCompletesNames) {
    type("weekofyearf\t");
    waitFor("WeekOfYearFiscal");
    type(" ( 1 ; 1 ) > 0\r");
    waitFor("\n1\r\n");
    type("weekofyear\t");
    waitFor("WeekOfYear ( date )\r\nWeekOfYearFiscal ( date ; startingDay )\r\n");
    type("\x03");
    enter("Let ( $longname = 7 ; 1 )", "1\r\n");
    type("$lo\t\r");
    waitFor("\n7\r\n");
    type("Get ( lastm\t");
    waitFor("LastMessageChoice");
    type("\x03");
}

TEST_F(PromptTest, ControlDLeaves) {
    type("\x04");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(PromptTest, KeepsAHistory) {
    enter("1 + 41", "42\r\n");
    enter("quit", "");
    EXPECT_EQ(exitStatus(), 0);
    std::ifstream file(folder_ / "state" / "fmhost" / "history");
    const std::string history{std::istreambuf_iterator<char>(file), {}};
    EXPECT_THAT(history, HasSubstr("1\\040+\\04041"));
    start();
    type("\x10"); // the line before
    waitFor("1 + 41");
    enter("", "42\r\n");
}

TEST_F(PromptTest, AStartedScriptRunsWhileItWaits) {
    std::ofstream(folder_ / "Greets.fmscript") << "Show Custom Dialog [ \"hel\" & \"lo\" ]";
    enter("Test_StartLater ( \"Greets\" ; 200 )", "0\r\n");
    waitFor("hello\r\n> "); // the prompt is there again
    enter("1 + 1", "2\r\n");
}

TEST_F(PromptTest, ControlCStopsAStartedScript) {
    std::ofstream(folder_ / "Endless.fmscript") << "Show Custom Dialog [ \"begins\" ]\nLoop\nEnd Loop";
    std::ofstream(folder_ / "Pauses.fmscript")
        << "Show Custom Dialog [ \"begins\" ]\nPause/Resume Script [ Duration (seconds): 1000 ]\nExit Script";
    for (const char* script : {"Endless", "Pauses"}) {
        type("Test_StartScript ( \"\" ; \"" + std::string(script) + "\" )\r");
        waitFor("begins\r\n");
        type("\x03");
        waitFor(": stopped\r\n");
        enter("1 + 1", "2\r\n");
    }
}

TEST_F(PromptTest, ThePluginIsIdleWhileItWaits) {
    usleep(600'000);
    type("Test_Idle > 0\r");
    waitFor("\n1\r\n");
}

} // namespace
} // namespace host
