#include "host/script/script_queue.h"
#include "tests/host/script/scripts_fixture.h"

#include <chrono>
#include <fstream>
#include <thread>
#include <vector>

namespace host {
namespace {

using Strings = std::vector<std::string>;

TEST_F(ScriptsTest, SetVariableAndExitWithAResult) {
    EXPECT_EQ(run("Set Variable [ $x ; Value: 20 ]\nExit Script [ Text Result: $x + 1 ]\n"), "21");
    EXPECT_EQ(run("Set Variable [ $x[1] ; Value: 2 ]\nExit Script [ Text Result: $x ]"), "2");
    EXPECT_EQ(run("Exit Script"), "");
    EXPECT_EQ(run("Exit Script [ ]"), "");
    EXPECT_EQ(run("Exit Script [ Text Result: ]"), "");
    EXPECT_EQ(run("exit   SCRIPT [ text result: 1 ]"), "1");
    EXPECT_EQ(run("Set Variable[$x;Value:1]\nExit Script[Text Result:$x]"), "1");
    EXPECT_EQ(run("Exit Script [ Text Result: 1 ]\nExit Script [ Text Result: 2 ]"), "1");
    EXPECT_EQ(run(""), "");
}

TEST_F(ScriptsTest, CommentsBlankLinesAndLineEnds) {
    EXPECT_EQ(run("# a comment [ with brackets\n\n\t \r\n#\n// Set Variable [ $off ; Value: 1 ]\r"
                  "Exit Script [ Text Result: \"x\" & $off ]\n# end"),
              "x");
    EXPECT_EQ(run("\xEF\xBB\xBF"
                  "Exit Script [ Text Result: 1 ]"),
              "1");
}

TEST_F(ScriptsTest, StepsSpanLinesInsideBrackets) {
    EXPECT_EQ(run("Set Variable [ $x ;\n  Value: Let (\n [ a = 1 ; b = \"]\" ] ; // the ] of a comment\n a & "
                  "b )\n]\n"
                  "Exit Script [ Text Result: $x ]"),
              "1]");
}

TEST_F(ScriptsTest, IfTakesOneBranch) {
    const std::string script =
        "If [ Get ( ScriptParameter ) = 1 ]\n Set Variable [ $x ; Value: \"one\" ]\n"
        "Else If [ Get ( ScriptParameter ) = 2 ]\n Set Variable [ $x ; Value: \"two\" ]\n"
        "Else If [ Get ( ScriptParameter ) = 3 ]\n"
        "Else\n Set Variable [ $x ; Value: \"many\" ]\nEnd If\nExit Script [ Text Result: $x & \".\" ]";
    EXPECT_EQ(run(script, "1"), "one.");
    EXPECT_EQ(run(script, "2"), "two.");
    EXPECT_EQ(run(script, "3"), ".");
    EXPECT_EQ(run(script, "4"), "many.");
    EXPECT_EQ(run("If [ 0 ]\nExit Script [ Text Result: 1 ]\nEnd If\nExit Script [ Text Result: 2 ]"), "2");
    EXPECT_EQ(run("If [ 1 ]\nIf [ 0 ]\nElse\nExit Script [ Text Result: \"inner\" ]\nEnd If\nEnd If"),
              "inner");
}

TEST_F(ScriptsTest, LoopsEndWhereTheySay) {
    EXPECT_EQ(run("Loop\nSet Variable [ $i ; Value: $i + 1 ]\nExit Loop If [ $i = 5 ]\nEnd Loop\nExit Script "
                  "[ Text Result: $i ]"),
              "5");
    EXPECT_EQ(
        run("Loop [ Flush: Always ]\nExit Loop If [ 1 ]\nEnd Loop\nExit Script [ Text Result: \"out\" ]"),
        "out");
    EXPECT_EQ(run("Set Variable [ $n ; Value: 0 ]\nSet Variable [ $i ; Value: 0 ]\n"
                  "Loop\n Set Variable [ $i ; Value: $i + 1 ]\n Set Variable [ $j ; Value: 0 ]\n"
                  " Loop\n  Set Variable [ $j ; Value: $j + 1 ]\n  Set Variable [ $n ; Value: $n + 1 ]\n"
                  "  If [ $j = 4 ]\n   Exit Loop If [ 1 ]\n  End If\n End Loop\n"
                  " Exit Loop If [ $i = 3 ]\nEnd Loop\nExit Script [ Text Result: $n ]"),
              "12");
}

TEST_F(ScriptsTest, DialogsAreShown) {
    EXPECT_EQ(run("Show Custom Dialog [ \"Title\" ; \"a¶b\" ]\nShow Custom Dialog [ 1 + 1 ]"), "");
    EXPECT_EQ(dialogs_, (Strings{"Title: a|b", "2: "}));
}

TEST_F(ScriptsTest, PerformScriptPassesParameterAndResult) {
    write("Twice", "Set Variable [ $x ; Value: 99 ]\nExit Script [ Text Result: Get ( ScriptName ) & Get ( "
                   "ScriptParameter ) * 2 ]");
    for (const char* name : {"“Twice”", "\"Twice\"", "\"tw\" & \"ice\"", "Specified: From list ; “Twice”",
                             "Specified: By name ; \"Twice\"", "“Twice” from file: “main”",
                             "“Twice” from file: \"MAIN.fmp12\""}) {
        EXPECT_EQ(run(std::string("Set Variable [ $x ; Value: 1 ]\nPerform Script [ ") + name +
                      " ; Parameter: 21 ]\nExit Script [ Text Result: Get ( ScriptResult ) & \"/\" & $x ]"),
                  "Twice42/1")
            << name;
    }
    EXPECT_EQ(run("Perform Script [ “Twice” ]\nExit Script [ Text Result: Get ( ScriptResult ) ]"), "Twice0");
    EXPECT_EQ(
        run("Perform Script [ “Twice” ; Parameter: ]\nExit Script [ Text Result: Get ( ScriptResult ) ]"),
        "Twice0");
}

TEST_F(ScriptsTest, AnotherDatabaseFileIsTheFolderBeside) {
    fs::create_directory(root_ / "Other");
    std::ofstream(root_ / "Other" / "Hello.fmscript") << "Exit Script [ Text Result: \"hello\" ]";
    EXPECT_EQ(run("Perform Script [ “Hello” from file: “other” ]\nExit Script [ Text Result: Get ( "
                  "ScriptResult ) ]"),
              "hello");
    EXPECT_EQ(run("Perform Script [ “Hello” from file: “nowhere” ]\nExit Script [ Text Result: Get ( "
                  "LastError ) ]"),
              "104");
}

TEST_F(ScriptsTest, AMissingScriptIsAnErrorCode) {
    EXPECT_EQ(run("Perform Script [ “Nothing” ]\nExit Script [ Text Result: Get ( LastError ) ]"), "104");
    EXPECT_EQ(run("Perform Script [ \"../main/main\" ]\nExit Script [ Text Result: Get ( LastError ) ]"),
              "104");
    write("Fine", "");
    EXPECT_EQ(run("Perform Script [ “Nothing” ]\nPerform Script [ “Fine” ]\nExit Script [ Text Result: Get ( "
                  "LastError ) ]"),
              "0");
}

TEST_F(ScriptsTest, LocalVariablesEndWithTheRunGlobalOnesStay) {
    EXPECT_EQ(run("Set Variable [ $a ; Value: 1 ]\nSet Variable [ $$b ; Value: 2 ]"), "");
    EXPECT_EQ(run("Exit Script [ Text Result: $a & \"-\" & $$b ]"), "-2");
    EXPECT_TRUE(session_.evaluate(u"$a").isEmpty());
    EXPECT_EQ(shown(session_.evaluate(u"$$b")), "2");
}

TEST_F(ScriptsTest, TraceNamesEachStepWithItsValue) {
    run("Set Variable [ $x ; Value: 1 + 1 ]\nIf [ $x = 2 ]\n\tExit Script [ Text Result: $x ]\nEnd If");
    EXPECT_EQ(traced_, (Strings{"Set Variable [ $x ; Value: 1 + 1 ] -> 2", "If [ $x = 2 ] -> 1",
                                "Exit Script [ Text Result: $x ] -> 2"}));
}

TEST_F(ScriptsTest, ParseErrorsNameThePlaceInTheFile) {
    const std::vector<std::pair<const char*, const char*>> rows = {
        {"\n\n  Set Varable [ $x ; Value: 1 ]",
         "main:3:3: there is no script step called Set Varable; did you mean Set Variable?"},
        {"Xyzzy", "main:1:1: there is no script step called Xyzzy"},
        {"\nSet Field [ Person::Name ; \"x\" ]", "main:2:1: Set Field is not supported: there are no fields "
                                                 "here; use Set Variable or Insert Calculated "
                                                 "Result with a variable"},
        {"Perform Script on Server [ \"x\" ]",
         "main:1:1: Perform Script on Server is not supported: there is no server here; use Perform Script"},
        {"Set Variable [ x ; Value: 1 ]", "main:1:16: expected a $local or $$global variable, found x"},
        {"Set Variable [ $x ; 1 ]", "main:1:21: expected \"Value:\", found 1"},
        {"Set Variable [ $x ; Value 1 ]", "main:1:21: expected \"Value:\", found Value 1"},
        {"Set Variable [ $x Value: 1 ]",
         "main:1:19: expected an operator, \";\" or the \"]\" of Set Variable, found Value"},
        {"Set Variable [ $x ]", "main:1:19: expected \"Value:\", found ]"},
        {"Set Variable [ $x ; Valu: 1 ]",
         "main:1:21: Set Variable has no parameter called Valu; did you mean Value?"},
        {"Set Error Capture [ 1 ]", "main:1:21: expected On or Off, found 1"},
        {"Read from Data File [ File ID: 1 ; Target: $x ; Read as: ASCII ]",
         "main:1:58: expected one of UTF-8, UTF-16, Bytes, found ASCII"},
        {"Set Variable [ $x ; Value: 1 ; 2 ]",
         "main:1:30: expected an operator or the \"]\" of Set Variable, found ;"},
        {"Set Variable [ $x ; Value: Lenght ( 1 ) ]",
         "main:1:28: there is no function called Lenght; did you mean Length?"},
        {"Set Variable [ $x ; Value: 1\nExit Script",
         "main:2:1: expected an operator or the \"]\" of Set Variable, found Exit Script"},
        {"Set Variable [ $x ; Value: 1",
         "main:1:29: expected an operator or the \"]\" of Set Variable, found the end"},
        {"Set Variable", "main:1:13: expected \"[\" after Set Variable"},
        {"If [ ]",
         "main:1:6: expected a value (a number, a text in quotes, a variable, a function or \"(\"), found ]"},
        {"# one\nIf [ 1 ]\n# two", "main:2:1: this If is not closed; expected End If"},
        {"If [ 1 ]\nElse\n", "main:1:1: this If is not closed; expected End If"},
        {"Loop", "main:1:1: this Loop is not closed; expected End Loop"},
        {"End If", "main:1:1: End If without an If before it"},
        {"End Loop", "main:1:1: End Loop without a Loop before it"},
        {"Else", "main:1:1: Else without an If before it"},
        {"If [ 1 ]\nElse\nElse\nEnd If", "main:3:1: Else after Else; expected End If"},
        {"If [ 1 ]\nElse\nElse If [ 1 ]\nEnd If", "main:3:1: Else If after Else; expected End If"},
        {"Loop\nEnd If", "main:2:1: End If without an If before it; expected End Loop"},
        {"If [ 1 ]\nEnd Loop", "main:2:1: End Loop without a Loop before it; expected End If"},
        {"If [ 1 ]\nExit Loop If [ 1 ]\nEnd If", "main:2:1: Exit Loop If outside a Loop"},
        {"Exit Script [ ] 1", "main:1:17: expected the end of the line after Exit Script"},
        {"Exit Script [ 1 ]", "main:1:15: expected \"Text Result:\", found 1"},
        {"Perform Script [ ]", "main:1:18: expected a value (a number, a text in quotes, a variable, a "
                               "function or \"(\"), found ]"},
        {"Perform Script [ “x ]", "main:1:18: this name is not closed; expected \"”\""},
        {"Perform Script [ “x” ; 1 ]", "main:1:24: expected \"Specified:\" or \"Parameter:\", found 1"},
    };
    for (const auto& [script, message] : rows) {
        EXPECT_EQ(run(script), std::string("error ") + message) << script;
    }
}

TEST_F(ScriptsTest, ParseErrorsShowTheLine) {
    const fs::path file = write("bad", "Set Variable [ $x ; Value: 1 ]\n\tIf [ 1 + ]\nEnd If");
    try {
        library_->load(file);
        FAIL();
    } catch (const CalcError& error) {
        EXPECT_EQ(error.report(), file.string() + ":2:11: expected a value (a number, a text in quotes, a "
                                                  "variable, a function or \"(\"), found ]\n"
                                                  "    \tIf [ 1 + ]\n    \t         ^");
    }
}

TEST_F(ScriptsTest, NothingRunsWhenTheScriptHasAMistakeAnywhere) {
    EXPECT_EQ(run("Show Custom Dialog [ \"x\" ]\nXyzzy").substr(0, 12), "error main:2");
    EXPECT_TRUE(dialogs_.empty());
}

TEST_F(ScriptsTest, PerformingEachOtherWithoutEndIsStopped) {
    EXPECT_EQ(run("Perform Script [ “main” ]"),
              "error main:1:1: scripts perform each other too deeply: at most 200 levels");
    EXPECT_EQ(run("Exit Script [ Text Result: 1 ]"), "1");
    EXPECT_FALSE(session_.runsScript());
}

TEST_F(ScriptsTest, DeepBlocksAndLongScripts) {
    std::string deep;
    for (int i = 0; i < 20'000; ++i) {
        deep += "If [ 1 ]\n";
    }
    deep += "Set Variable [ $$deep ; Value: 1 ]\n";
    for (int i = 0; i < 20'000; ++i) {
        deep += "End If\n";
    }
    EXPECT_EQ(run(deep), "");
    EXPECT_EQ(shown(session_.evaluate(u"$$deep")), "1");
}

TEST_F(ScriptsTest, FilesThatCanNotBeRead) {
    EXPECT_THROW(library_->load(root_ / "none.fmscript"), FileError);
    EXPECT_THROW(library_->load(root_), FileError);
    const fs::path bad = write("bad", "Set Variable [ $x ; Value: \"\xFF\" ]");
    try {
        library_->load(bad);
        FAIL();
    } catch (const FileError& error) {
        EXPECT_EQ(error.what(), bad.string() + " is not a UTF-8 text");
    }
}

TEST_F(ScriptsTest, AChangedFileIsReadAgain) {
    const fs::path file = write("main", "Exit Script [ Text Result: 1 ]");
    EXPECT_EQ(shown(runner_->run(file, {})), "1");
    EXPECT_EQ(library_->load(file), library_->load(file));
    write("main", "Exit Script [ Text Result: 2 ]");
    fs::last_write_time(file, fs::last_write_time(file) + std::chrono::seconds(2));
    EXPECT_EQ(shown(runner_->run(file, {})), "2");
}

TEST(ScriptQueueTest, HandsOutInOrderFromAnyThread) {
    ScriptQueue queue;
    EXPECT_FALSE(queue.pop());
    std::thread([&] { queue.push({"a", Value::number(1)}); }).join();
    queue.push({"b", Value()});
    EXPECT_EQ(queue.pop()->file, "a");
    EXPECT_EQ(queue.pop()->file, "b");
    EXPECT_FALSE(queue.pop());
}

} // namespace
} // namespace host
