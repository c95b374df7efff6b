// Scripts that plug-ins start, and pauses, through the program.
#include "tests/host/console/program.h"

#include <chrono>
#include <gmock/gmock.h>

namespace host {
namespace {

using testing::HasSubstr;

class StartedScriptsTest : public ProgramTest {
  protected:
    void SetUp() override {
        write("Hello.fmscript", "Show Custom Dialog [ Get ( ScriptName ) & Get ( ScriptParameter ) & $x ]");
    }

    // What a script shows.
    std::string shown(const std::string& text) {
        write("Main.fmscript", text);
        return good("run Main.fmscript").out;
    }

    static std::string start(const std::string& script, const std::string& more = "") {
        return "Set Variable [ $started ; Value: Test_StartScript ( \"\" ; \"" + script + "\"" + more +
               " ) ]\n";
    }
};

TEST_F(StartedScriptsTest, RunWhenTheRunningOneEnds) {
    EXPECT_EQ(shown("Set Variable [ $x ; Value: \"mine\" ]\n" + start("Hello", "; 1") +
                    start("hello", "; 2") + "Show Custom Dialog [ $started & $x ]"),
              "0mine\nHello1\nHello2\n");
}

TEST_F(StartedScriptsTest, RunWhileTheRunningOnePauses) {
    EXPECT_EQ(
        shown(
            "Set Variable [ $x ; Value: \"mine\" ]\n" + start("Hello", "; 1") + start("Hello") +
            "Pause/Resume Script [ Duration (seconds): 0 ]\nShow Custom Dialog [ $x & Get ( ScriptName ) ]"),
        "Hello1\nHello\nmineMain\n");
}

TEST_F(StartedScriptsTest, APauseLetsThePluginWork) {
    // Some ten times two idle messages, the last of the level that says that a script pauses.
    EXPECT_EQ(shown("Set Variable [ $before ; Value: Test_Idle ]\n"
                    "Pause/Resume Script [ Duration (seconds): Let ( half = .5 ; half ) ]\n"
                    "Set Variable [ $levels ; Value: Mod ( Test_Idle ; 10 ) ]\n"
                    "Set Variable [ $count ; Value: Int ( ( Test_Idle - $before ) / 10 ) ]\n"
                    "Show Custom Dialog [ $levels & ( $count > 3 ) & ( $count < 26 ) ]"),
              "211\n");
}

TEST_F(StartedScriptsTest, RunFromAnIdleMessageAndFromAThread) {
    EXPECT_EQ(
        shown("Set Variable [ $s ; Value: Test_StartWhenIdle ( \"Hello\" ) ]\nShow Custom Dialog [ \"a\" ]\n"
              "Pause/Resume Script [ Duration (seconds): 0 ]\nShow Custom Dialog [ \"b\" ]"),
        "a\nHello\nb\n");
    EXPECT_EQ(
        shown(
            "Set Variable [ $s ; Value: Test_StartLater ( \"Hello\" ; 100 ) ]\nShow Custom Dialog [ \"a\" ]\n"
            "Pause/Resume Script [ Duration (seconds): 1 ]\nShow Custom Dialog [ \"b\" ]"),
        "a\nHello\nb\n");
    EXPECT_EQ(good("eval 'Test_StartWhenIdle ( \"Hello\" )' 7").out, "0\nHello\n7\n");
}

TEST_F(StartedScriptsTest, APauseTakesItsTime) {
    const auto seconds = [&](const std::string& duration) {
        const auto before = std::chrono::steady_clock::now();
        shown("Pause/Resume Script [ Duration (seconds): " + duration + " ]");
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - before).count();
    };
    EXPECT_GE(seconds(".7"), 0.7);
    for (const char* none : {"0", "-5", "\"\"", "\"soon\"", "1 / 0"}) {
        EXPECT_LT(seconds(none), 5) << none;
    }
}

TEST_F(StartedScriptsTest, WhatDoesNotExistIsAnErrorCode) {
    EXPECT_EQ(
        good("eval 'Test_StartScript ( \"\" ; \"never\" )' 'Test_StartScript ( \"nowhere\" ; \"Hello\" )' "
             "'Test_StartScript ( \"\" ; \"\" )' 'Test_StartScript' 'Test_StartScript ( \"\" ; HexDecode ( "
             "\"00\" ) & "
             "Char ( 55296 ) )' "
             "'Test_StartScript ( \"\" ; \"../x/Hello\" )'")
            .out,
        "104\n104\n104\n104\n104\n104\n");
}

TEST_F(StartedScriptsTest, EveryControlValueIsAccepted) {
    std::string calls;
    for (const char* control : {"0", "1", "2", "3", "200"}) {
        calls += start("Hello", std::string(" ; ") + control + " ; " + control);
    }
    EXPECT_EQ(shown(calls + "Show Custom Dialog [ \"still here\" ]"),
              "still here\nHello0\nHello1\nHello2\nHello3\nHello200\n");
}

TEST_F(StartedScriptsTest, MayStartOthersAndPauseThemselves) {
    write("First.fmscript",
          start("Hello", "; \"from First\"") +
              "Pause/Resume Script [ Duration (seconds): 0 ]\nShow Custom Dialog [ \"First\" ]");
    EXPECT_EQ(shown(start("First") +
                    "Pause/Resume Script [ Duration (seconds): 0 ]\nShow Custom Dialog [ \"Main\" ]"),
              "Hellofrom First\nFirst\nMain\n");
    // One that starts itself and pauses, and so on: only so many inside each other. The others find no room
    // in a pause, and run when some have ended.
    write("Again.fmscript",
          "Set Variable [ $$n ; Value: $$n + 1 ]\nSet Variable [ $$inside ; Value: $$inside + 1 ]\n"
          "Set Variable [ $$most ; Value: Case ( $$inside > $$most ; $$inside ; $$most ) ]\nIf [ $$n < 500 "
          "]\n" +
              start("Again") +
              "End If\nPause/Resume Script [ Duration (seconds): 0 ]\n"
              "Set Variable [ $$inside ; Value: $$inside - 1 ]");
    EXPECT_EQ(shown(start("Again") +
                    "Pause/Resume Script [ Duration (seconds): 0 ]\nShow Custom Dialog [ $$n ; $$most ]"),
              "500\n200\n");
}

TEST_F(StartedScriptsTest, TheirMistakesAreReportedAndTheOthersRun) {
    write("Bad.fmscript", "\nInsert File [ $f ; \"none\" ]");
    write("Unreadable.fmscript", "Bep");
    write("Main.fmscript",
          start("Bad") + start("Unreadable") + start("Hello") + "Show Custom Dialog [ \"Main\" ]");
    const Outcome result = good("run Main.fmscript");
    EXPECT_EQ(result.out, "Main\nHello\n");
    EXPECT_THAT(result.err, HasSubstr("/Bad.fmscript:2:20: can not read "));
    EXPECT_THAT(
        result.err,
        HasSubstr("/Unreadable.fmscript:1:1: there is no script step called Bep; did you mean Beep?\n"));
    EXPECT_EQ(result.status, static_cast<int>(ExitCode::failure));
    EXPECT_EQ(good("eval 'Test_StartScript ( \"\" ; \"Bad\" )' 1").status,
              static_cast<int>(ExitCode::failure));
}

TEST_F(StartedScriptsTest, PausesThatCanNotBeRead) {
    for (const char* step : {"Pause/Resume Script [ 5 ]", "Pause/Resume Script [ Duration: 5 ]",
                             "Pause/Resume Script [ Duration (minutes): 5 ]"}) {
        write("Main.fmscript", step);
        const Outcome result = plain("run Main.fmscript");
        EXPECT_EQ(result.status, static_cast<int>(ExitCode::parse)) << step;
        EXPECT_THAT(result.err, HasSubstr("Duration (seconds)")) << step;
    }
}

} // namespace
} // namespace host
