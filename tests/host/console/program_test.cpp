// The real program: its standard output, standard error and exit status.
#include "tests/host/console/program.h"

#include <gmock/gmock.h>

namespace host {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST_F(ProgramTest, EvaluatesInOneSession) {
    expect(plain("eval '1 + 1' 'Let ( $x = 5 ; $x )' '$x * 2' '\"a¶b\"' '\"\"' '1 / 0'"), ExitCode::ok,
           "2\n5\n10\na¶b\n\n?\n", "");
}

TEST_F(ProgramTest, WhatItPrintsIsAlwaysUtf8) {
    expect(plain("eval '\"a\" & HexDecode ( \"00\" ) & Char ( 55296 ) & \"b\" & Char ( 57343 )'"),
           ExitCode::ok, "a\u2400\uFFFDb\uFFFD\n", "");
    write("Odd.fmscript",
          "Show Custom Dialog [ HexDecode ( \"00\" ) ; Char ( 55296 ) ]\nExit Script [ Text Result: "
          "HexDecode ( \"00\" ) & \"¶\" & Char ( 56320 ) ]");
    expect(plain("run Odd.fmscript"), ExitCode::ok, "\u2400\n\uFFFD\n\u2400\n\uFFFD\n", "");
}

TEST_F(ProgramTest, EvaluatesStandardInput) {
    const std::string lines = "1 + 1\n\n// comment\nLet ( a = 2 ;\r\n a )\n\"x\"";
    expect(plain("eval -", lines), ExitCode::ok, "2\n2\nx\n", "");
    expect(plain("", lines), ExitCode::ok, "2\n2\nx\n", "");
    expect(plain("eval 5 - 6", "7\n"), ExitCode::ok, "5\n7\n6\n", "");
    expect(plain("", ""), ExitCode::ok, "", "");
    expect(plain("", "1\n\n2 +\n"), ExitCode::parse, "1\n",
           "standard input:3:4: expected a value (a number, a text in quotes, a variable, a function or "
           "\"(\"), found the end\n"
           "    2 +\n       ^\n");
}

TEST_F(ProgramTest, MistakesInACalculation) {
    expect(plain("eval 1 'Lenght ( 2 )' 3"), ExitCode::parse, "1\n",
           "1:1: there is no function called Lenght; did you mean Length?\n    Lenght ( 2 )\n    ^\n");
    expect(good("eval 'Test_Throw ( \"int\" )'"), ExitCode::failure, "",
           "1:1: Test_Throw failed: it threw something that is no standard exception\n    Test_Throw ( "
           "\"int\" )\n    ^\n");
    expect(good("eval 'Test_Count ( 1 )'"), ExitCode::parse, "",
           "1:1: Test_Count takes 2 to 3 arguments, 1 given: Test_Count ( a ; b {; c } )\n    "
           "Test_Count ( 1 "
           ")\n    ^\n");
}

TEST_F(ProgramTest, PluginsThatCanNotBeLoaded) {
    const auto expectLoadError = [&](const std::string& arguments, const std::string& message) {
        expect(run(arguments), ExitCode::load, "", "fmhost: " + message + "\n");
    };
    const std::string folder = TEST_PLUGINS;
    expectLoadError("--plugin none.fmx eval 1", "there is no plug-in at none.fmx");
    expectLoadError("eval 1 --plugin " + folder + "/no_entry_plugin.fmx",
                    folder + "/no_entry_plugin.fmx is no plug-in: it has no function FMExternCallProc");
    expectLoadError("--host-version 51 --plugin " + folder + "/refusing_plugin.fmx info",
                    "the plug-in " + folder + "/refusing_plugin.fmx refused version 51");
    expectLoadError("--plugin " + folder + "/not_enabled_plugin.fmx functions",
                    "the plug-in " + folder + "/not_enabled_plugin.fmx asked not to be enabled");
    write("a.calc", "1\n= 1\n");
    expectLoadError("--plugin none.fmx test a.calc", "there is no plug-in at none.fmx");
    expectLoadError("--plugin none.fmx test a.calc a.calc", "there is no plug-in at none.fmx");
    setenv("FMHOST_PLUGIN", "from-the-environment", 1);
    expectLoadError("eval 1", "there is no plug-in at from-the-environment");
    setenv("FMHOST_PLUGIN", kGood.c_str(), 1);
    EXPECT_EQ(run("eval 'Test_Echo ( 1 )'").out, "1\n");
}

TEST_F(ProgramTest, Functions) {
    const Outcome table = good("functions");
    EXPECT_EQ(table.status, 0);
    EXPECT_THAT(table.out, HasSubstr("1    Test_Echo ( value )\n"));
    EXPECT_THAT(table.out, HasSubstr("2-3  Test_Count ( a ; b {; c } )\n"));
    EXPECT_THAT(table.out, HasSubstr("0+   Test_Join ( value ... )\n"));
    EXPECT_THAT(table.out, testing::Not(HasSubstr("Upper")));
    const std::string all = good("functions --all").out;
    EXPECT_NE(good("functions url").out.find("\nScript steps: Variables\nstep Insert from URL ["),
              std::string::npos);
    EXPECT_NE(all.find("\nstep Set Variable [ $variable ; Value: calculation ]\n"), std::string::npos);
    EXPECT_EQ(all.find("Go to Layout"), std::string::npos); // which does nothing here
    EXPECT_THAT(all, HasSubstr("\nText\n1    Char ( number )\n1    Code ( text )\n"));
    EXPECT_THAT(all, HasSubstr("\nJSON\n2    JSONDeleteElement ( json ; keyOrIndexOrPath )\n"));
    EXPECT_THAT(all, HasSubstr("\nGet\n     Get ( AccountExtendedPrivileges )\n"));
    EXPECT_THAT(all, StartsWith("1    Test_Echo"));
    const Outcome json = good("functions --json");
    EXPECT_THAT(json.out, StartsWith("[\n  {\n    \"name\": \"Test_Echo\",\n    \"kind\": \"function\",\n    "
                                     "\"prototype\": \"Test_Echo ( value )\",\n"
                                     "    \"minArguments\": 1,\n    \"maxArguments\": 1,\n    "
                                     "\"description\": \"\",\n    \"plugin\": \"TEST\",\n    \"id\": 0,\n"
                                     "    \"flags\": 65281\n  },\n"));
    EXPECT_THAT(json.out, HasSubstr("\"maxArguments\": null"));
    expect(plain("functions"), ExitCode::ok, "", "");
}

TEST_F(ProgramTest, FunctionsWithAWord) {
    expect(plain("functions FISCAL"), ExitCode::ok,
           "Date\n2    WeekOfYearFiscal ( date ; startingDay )\n         Returns the week of the year; week "
           "1 is the "
           "first with four days in the year.\n",
           "");
    EXPECT_THAT(plain("functions uuid").out, HasSubstr("\nGet\n"));
    EXPECT_EQ(good("functions test_echo").out, "1    Test_Echo ( value )\n");
    EXPECT_THAT(plain("functions --json JSONParse").out, HasSubstr("\"category\": \"JSON\""));
    expect(
        plain("functions xyzzy"), ExitCode::failure, "",
        "fmhost: no function has \"xyzzy\" in its name or description; fmhost functions --all lists them\n");
}

TEST_F(ProgramTest, FunctionsCounted) {
    const std::string all = plain("functions --all --count").out;
    EXPECT_THAT(all, HasSubstr("\nText                                  39         0         0        39\n"));
    EXPECT_THAT(all, HasSubstr("\nMobile                                 0         5         0         5\n"));
    EXPECT_THAT(all, HasSubstr("\nLogical                               16         2         5        23\n"));
    EXPECT_THAT(all, StartsWith("                                computed    absent   refused       all\n"));
    EXPECT_THAT(good("functions --count").out, HasSubstr("\nPlug-in      "));
    EXPECT_THAT(
        plain("functions --all --json JSONParsed --count").out,
        StartsWith("[\n  {\n    \"category\": \"JSON\",\n    \"computed\": 1,\n    \"absent\": 0,\n    "
                   "\"refused\": 0,\n    \"all\": 1\n  }\n]\n"));
    EXPECT_THAT(plain("functions --json GetSummary").out, HasSubstr("\"answer\": \"refused\""));
}

TEST_F(ProgramTest, Locale) {
    expect(plain("--locale de_DE eval '3,5 * 2 & \"|\" & Date ( 12 ; 5 ; 2010 )'"), ExitCode::ok,
           "7|05.12.2010\n", "");
    expect(
        plain("--locale xx_XX eval 1"), ExitCode::usage, "",
        "fmhost: there is no locale called xx_XX; expected a language and a country, for instance de_DE\n");
}

TEST_F(ProgramTest, WhatGetTellsAboutTheFolder) {
    write("scripts/B.fmscript", "");
    write("scripts/A.fmscript", "");
    write("scripts/c.txt", "");
    EXPECT_EQ(plain("--folder scripts eval 'Get ( FileName ) & \"|\" & DatabaseNames & \"|\" & ScriptNames ( "
                    "\"\" ) & "
                    "ScriptNames ( \"other\" )'")
                  .out,
              "scripts|scripts|A¶B\n");
    EXPECT_EQ(plain("--folder scripts eval 'Right ( Get ( FilePath ) ; 8 )'").out, "/scripts\n");
    EXPECT_EQ(good("eval 'Left ( Get ( InstalledFMPlugins ) ; 12 )'").out, "Test plug-in\n");
}

TEST_F(ProgramTest, Info) {
    const Outcome info = good("info");
    EXPECT_EQ(info.out, "Name:       Test plug-in\nHelp text:  Helps testing.\nHelp at:    "
                        "https://example.com/help\nOptions:    TEST1nnYYnn\nInterface:  54\n"
                        "Functions:  19\nSteps:      0\nFile:       " +
                            kGood + "\n");
    EXPECT_EQ(info.err, "");
    expect(plain("info"), ExitCode::usage, "", "fmhost: no plug-in is loaded\n");
}

TEST_F(ProgramTest, Scripts) {
    write("scripts/Main.fmscript",
          "Show Custom Dialog [ \"Title\" ; \"a¶\" & Get ( ScriptParameter ) ]\n"
          "Perform Script [ “other” ]\nExit Script [ Text Result: \"r1¶\" & Get ( ScriptResult ) ]\n");
    write("scripts/Other.fmscript", "Exit Script [ Text Result: \"r2\" ]");
    const std::string shown = "Title\na\nüx\nr1\nr2\n";
    expect(plain("run scripts/Main.fmscript --parameter üx"), ExitCode::ok, shown, "");
    expect(plain("run --folder scripts main --parameter üx"), ExitCode::ok, shown, "");
    expect(plain("run scripts/Other.fmscript --trace"), ExitCode::ok,
           "Exit Script [ Text Result: \"r2\" ]\n    → r2\n", "");
    expect(plain("run nothing"), ExitCode::usage, "",
           "fmhost: there is no script called nothing; expected a file nothing.fmscript\n");
    expect(plain("run nothing.fmscript"), ExitCode::usage, "",
           "fmhost: can not read nothing.fmscript: No such file or directory\n");
    write("bad.fmscript", "\nBep\n");
    expect(plain("run bad.fmscript"), ExitCode::parse, "",
           "bad.fmscript:2:1: there is no script step called Bep; did you mean Beep?\n    Bep\n    ^\n");
}

TEST_F(ProgramTest, ScriptsThatPluginsStartRunAfterwards) {
    write("Later.fmscript", "Show Custom Dialog [ \"later\" ; Get ( ScriptParameter ) ]");
    write("Now.fmscript", "Set Variable [ $x ; Value: Test_StartScript ( \"\" ; \"Later\" ; \"p\" ) ]\nShow "
                          "Custom Dialog [ \"now\" ]");
    EXPECT_EQ(good("run Now.fmscript").out, "now\nlater\np\n");
    EXPECT_EQ(good("eval 'Test_StartScript ( \"\" ; \"later\" ; 1 )' 2").out, "0\nlater\n1\n2\n");
    EXPECT_EQ(good("eval 'Test_StartScript ( \"\" ; \"never\" )'").out, "104\n");
    EXPECT_EQ(good("eval Test_Idle Test_Idle Test_Idle").out, "-1\n10\n20\n");
}

TEST_F(ProgramTest, Format) {
    expect(plain("format", "upper(\"a\")"), ExitCode::ok, "Upper ( \"a\" )\n", "");
    write("A.fmscript", "If[1]\nBeep\nEnd If\n");
    write("b.calc", "1 + 1\n= 2\n");
    expect(plain("format --check A.fmscript b.calc"), ExitCode::failure, "A.fmscript\n", "");
    EXPECT_EQ(read(folder_ / "A.fmscript"), "If[1]\nBeep\nEnd If\n");
    expect(plain("format --indent 2 A.fmscript b.calc"), ExitCode::ok, "A.fmscript\n", "");
    EXPECT_EQ(read(folder_ / "A.fmscript"), "If [ 1 ]\n  Beep\nEnd If\n");
    expect(plain("format --indent 0 A.fmscript"), ExitCode::ok, "A.fmscript\n", "");
    expect(plain("format A.fmscript"), ExitCode::ok, "", ""); // keeps its tabs
    expect(plain("format --width 10 -", "List ( $a ; $b )"), ExitCode::ok, "List (\n    $a ;\n    $b\n)\n",
           "");
}

TEST_F(ProgramTest, FormatLeavesWhatItCanNotRead) {
    write("a.fmscript", "If [ ( 1 ]\n");
    write("b.fmscript", "If[1]\nEnd If\n");
    write("c.txt", "1");
    expect(plain("format a.fmscript c.txt none.calc b.fmscript"), ExitCode::parse, "b.fmscript\n",
           "a.fmscript:1:6: this \"(\" is not closed\n    If [ ( 1 ]\n         ^\n"
           "fmhost: c.txt is of no kind that can be formatted; expected .fmscript, .fmfn, .calc or .md\n"
           "fmhost: can not read none.calc: No such file or directory\n");
    EXPECT_EQ(read(folder_ / "a.fmscript"), "If [ ( 1 ]\n");
}

TEST_F(ProgramTest, Usage) {
    for (const char* arguments : {"nothing", "eval", "run", "test", "--wrong", "--host-version x eval 1",
                                  "functions week day", "--host-version 99999 info"}) {
        const Outcome result = run(arguments);
        EXPECT_EQ(result.status, static_cast<int>(ExitCode::usage)) << arguments;
        EXPECT_EQ(result.out, "") << arguments;
        EXPECT_NE(result.err, "") << arguments;
    }
    for (const char* arguments : {"--help", "eval --help", "run --help", "functions --help", "test --help",
                                  "format --help", "lsp --help", "info --help"}) {
        const Outcome result = run(arguments);
        EXPECT_EQ(result.status, 0) << arguments;
        EXPECT_THAT(result.out, HasSubstr("Example")) << arguments;
        EXPECT_EQ(result.err, "") << arguments;
    }
}

} // namespace
} // namespace host
