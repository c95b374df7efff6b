// The interactive prompt, on a pseudo-terminal.
#include "tests/host/console/terminal.h"

#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <utility>

namespace host {
namespace {

using testing::HasSubstr;

class PromptTest : public TerminalTest {
  protected:
    PromptTest() { start(); }

    int exitOf(const std::string& line) {
        type(line + "\r");
        return exitStatus();
    }
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
    enter("help weekofy", "there is no function called weekofy; did you mean WeekOfYear?\r\n");
}

TEST_F(PromptTest, AMistakeDoesNotEndIt) {
    enter("Lenght ( 1 )", "1:1: there is no function called Lenght; did you mean Length?\r\n");
    enter("Test_Throw ( \"runtime\" )", "1:1: Test_Throw failed: the printer is on fire\r\n");
    enter("1 + 1", "2\r\n");
}

TEST_F(PromptTest, ControlCDropsALine) {
    type("( 1 + 2");
    waitFor("2");
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
    enter(":wacth 1", "there is no command :wacth; did you mean :watch? :help lists them\r\n");
    enter(":time", "expected CALCULATION after :time\r\n");
    enter("?weekofyear", "WeekOfYear ( date )\r\n");
    enter(":watch 1 + )", "1:5: expected a value");
    enter(":watch )", "1:1: expected a value");
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

TEST_F(PromptTest, TabCompletesCommandsAndTheirArguments) {
    std::ofstream(folder_ / "Greets all.fmscript") << "Exit Script [ Text Result: \"hel\" & \"lo\" ]";
    std::filesystem::create_directory(folder_ / "inner");
    std::ofstream(folder_ / "inner" / "some.txt") << "40 + 2\n";
    type(":unw\t");
    waitFor("atch");
    type("\x03");
    waitFor("> ");
    type(":run gre\t\r");
    waitFor("\nhello\r\n");
    type(":load inn\tso\t\r");
    waitFor("\n42\r\n");
    type("?lastmess\t\r");
    waitFor("\nGet ( LastMessageChoice )\r\n");
    type(":type Weekofyearf\t");
    waitFor("WeekOfYearFiscal");
    type("\x03");
}

TEST_F(PromptTest, ControlDLeaves) {
    type("\x04");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(PromptTest, KeepsAHistory) {
    enter("1 + 41", "42\r\n");
    enter("2 + 41", "43\r\n");
    const auto history = [&] {
        std::ifstream file(folder_ / "state" / "fmhost" / "history");
        return std::string{std::istreambuf_iterator<char>(file), {}};
    };
    // Each entry is written at once: a plug-in that crashes costs none.
    EXPECT_EQ(history(), "_HiStOrY_V2_\n1\\040+\\04041\n2\\040+\\04041\n");
    enter("quit", "");
    EXPECT_EQ(exitStatus(), 0);
    EXPECT_THAT(history(), Not(HasSubstr("quit")));
    start();
    type("\x10\x10"); // two lines before
    waitFor("1 + 41");
    enter("", "42\r\n");
}

TEST_F(PromptTest, TwoAtOnceKeepEachOthersHistory) {
    enter("1 + 41", "42\r\n");
    int otherTerminal = std::exchange(terminal_, -1);
    pid_t other = std::exchange(program_, 0);
    start();
    enter("2 + 41", "43\r\n");
    std::swap(terminal_, otherTerminal);
    std::swap(program_, other);
    enter("3 + 41", "44\r\n");
    EXPECT_EQ(exitOf("quit"), 0);
    terminal_ = otherTerminal;
    program_ = other;
    enter("4 + 41", "45\r\n");
    type("\x10\x10"); // a prompt has its own entries, and those that were there when it began
    waitFor("2 + 41");
    enter("", "43\r\n");
    EXPECT_EQ(exitOf("quit"), 0);
    std::ifstream file(folder_ / "state" / "fmhost" / "history");
    EXPECT_EQ(
        (std::string{std::istreambuf_iterator<char>(file), {}}),
        "_HiStOrY_V2_\n1\\040+\\04041\n2\\040+\\04041\n3\\040+\\04041\n4\\040+\\04041\n2\\040+\\04041\n");
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
