// fmhost check, custom functions and --timeout, from the outside.
#include "tests/host/console/program.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace host {
namespace {

using testing::HasSubstr;

class CheckCommandTest : public ProgramTest {
  protected:
    CheckCommandTest() {
        write("scripts/functions.fmfn", "Twice ( x ) = x * 2\n");
        write("scripts/good.fmscript", "Exit Script [ Text Result: Twice ( 4 ) ]\n");
    }
};

TEST_F(CheckCommandTest, AFolderIsReadWithItsFunctions) {
    expect(plain("check scripts"), ExitCode::ok, "", "2 files: 0 errors, 0 warnings\n");
    write("scripts/sub/bad.fmscript",
          "Twice\nPerform Script [ \"none\" ]\nExit Script [ Text Result: Twice ( 1 ) ]\n");
    expect(plain("check scripts"), ExitCode::parse,
           "scripts/sub/bad.fmscript:1:1: error: there is no script step called Twice\n"
           "scripts/sub/bad.fmscript:2:1: warning: there is no script called none\n"
           "scripts/sub/bad.fmscript:3:28: error: there is no function called Twice\n",
           "3 files: 2 errors, 1 warning\n");
    expect(plain("--folder scripts check scripts/sub/bad.fmscript"), ExitCode::parse,
           "scripts/sub/bad.fmscript:1:1: error: there is no script step called Twice\n"
           "scripts/sub/bad.fmscript:2:1: warning: there is no script called none\n",
           "1 file: 1 error, 1 warning\n");
    EXPECT_THAT(plain("check nothing.txt").err, HasSubstr("can not check nothing.txt; expected a file"));
    EXPECT_EQ(plain("check nothing.calc").status, static_cast<int>(ExitCode::usage));
    EXPECT_EQ(plain("check --format xml scripts").status, static_cast<int>(ExitCode::usage));
}

TEST_F(CheckCommandTest, FormatsForMachines) {
    write("a,b.calc", "1 +\n= 1\n");
    EXPECT_EQ(
        plain("check --format github a,b.calc").out,
        "::error file=a%2Cb.calc,line=1,endLine=1,col=4,endColumn=4::expected a value (a number, a text in "
        "quotes, a variable, a function or \"(\"), found the end\n");
    const auto list = nlohmann::json::parse(plain("check --format json a,b.calc").out);
    EXPECT_EQ(list.at(0).at("file"), "a,b.calc");
    EXPECT_EQ(list.at(0).at("begin").at("column"), 4);
    EXPECT_EQ(list.at(0).at("code"), 1204);
    const auto sarif = nlohmann::json::parse(plain("check --format sarif a,b.calc").out);
    EXPECT_EQ(sarif.at("version"), "2.1.0");
    const auto& result = sarif.at("runs").at(0).at("results").at(0);
    EXPECT_EQ(result.at("level"), "error");
    EXPECT_EQ(result.at("locations").at(0).at("physicalLocation").at("region").at("startColumn"), 4);
    EXPECT_EQ(nlohmann::json::parse(plain("check --format json scripts").out), nlohmann::json::array());
}

TEST_F(CheckCommandTest, CustomFunctionsAreKnownToAllCommands) {
    expect(plain("--folder scripts eval 'Twice ( 21 )'"), ExitCode::ok, "42\n", "");
    expect(plain("run scripts/good.fmscript"), ExitCode::ok, "8\n", "");
    write("scripts/z.fmfn", "Wrong ( x ) = x +");
    expect(plain("--folder scripts eval 1"), ExitCode::parse, "",
           "scripts/z.fmfn:1:18: expected a value (a number, a text in quotes, a variable, a function or "
           "\"(\"), found "
           "the end\n    Wrong ( x ) = x +\n                     ^\n");
}

TEST_F(CheckCommandTest, TimeoutEndsCalculationsAndScripts) {
    write("endless.fmscript", "Loop\nEnd Loop\n");
    expect(plain("--timeout 1 run endless.fmscript"), ExitCode::failure, "",
           "endless.fmscript:2:1: stopped: it takes longer than --timeout allows\n    End Loop\n    ^\n");
    write("pausing.fmscript", "Set Error Capture [ On ]\nPause/Resume Script [ Duration (seconds): 3600 ]\n");
    expect(plain("--timeout 1 run pausing.fmscript"), ExitCode::failure, "",
           "pausing.fmscript:2:1: stopped: it takes longer than --timeout allows\n    Pause/Resume Script [ "
           "Duration (seconds): 3600 ]\n    ^\n");
    EXPECT_THAT(plain("--timeout 1 eval 'SetRecursion ( While ( i = 0 ; 1 ; i = i + 1 ; i ) ; 10^15 )'").err,
                HasSubstr("stopped: it takes longer than --timeout allows"));
}

} // namespace
} // namespace host
