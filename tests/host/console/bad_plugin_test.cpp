// Plug-ins that fail, in the real program: one line on standard error names the plug-in and the reason.
#include "tests/host/console/program.h"

#include <gmock/gmock.h>

namespace host {
namespace {

using testing::StartsWith;

class BadPluginTest : public ProgramTest {
  protected:
    static std::string file(const std::string& name) { return TEST_PLUGINS "/" + name + ".fmx"; }
    Outcome with(const std::string& name, const std::string& arguments) {
        return run("--plugin " + file(name) + " " + arguments);
    }
};

// The signal still has its usual effect: the shell prints how the program ended, a sanitizer reports it.
TEST_F(BadPluginTest, ACrashNamesThePlugin) {
    const auto expectCrash = [&](const std::string& name, const std::string& signal) {
        const Outcome result = with(name, "eval 1");
        EXPECT_THAT(result.err, StartsWith("fmhost: the plug-in " + file(name) +
                                           " crashed in its start-up: " + signal + "\n"));
        EXPECT_NE(result.status, 0);
        EXPECT_EQ(result.out, "");
    };
    expectCrash("crashing_plugin", "Segmentation fault");
    expectCrash("aborting_plugin", "Aborted");
}

TEST_F(BadPluginTest, ExitingNamesThePlugin) {
    expect(with("exiting_plugin", "eval 1"), ExitCode::load, "",
           "fmhost: the plug-in " + file("exiting_plugin") + " ended the program in its start-up\n");
}

TEST_F(BadPluginTest, SilenceHasALimit) {
    expect(with("hanging_plugin", "eval 1 --timeout 1"), ExitCode::load, "",
           "fmhost: the plug-in " + file("hanging_plugin") +
               " did not answer its start-up within 1 second\n");
    expect(with("lingering_plugin", "eval 1 --timeout 1"), ExitCode::load, "1\n",
           "fmhost: the plug-in " + file("lingering_plugin") +
               " did not answer its shut-down within 1 second\n");
    expect(good("eval 1 --timeout 0"), ExitCode::ok, "1\n", "");
}

TEST_F(BadPluginTest, MissingLibrariesAreNamed) {
    expect(with("lonely_plugin", "eval 1"), ExitCode::load, "",
           "fmhost: can not load " + file("lonely_plugin") +
               ": libgone.so: cannot open shared object file: No such file or directory\n");
}

// Functions that were registered can be used; the exit status says that not all were.
TEST_F(BadPluginTest, RefusedRegistrationsFailTheCommand) {
    const Outcome result = with("bad_functions_plugin", "eval 'Bad_Good & 1'");
    EXPECT_EQ(result.status, static_cast<int>(ExitCode::load));
    EXPECT_EQ(result.out, "1\n");
    EXPECT_THAT(result.err, StartsWith("fmhost: the plug-in function Bad_Backwards (TEST 1) of " +
                                       file("bad_functions_plugin") +
                                       " is not registered: it needs 3 "
                                       "arguments and can be given 1 at most\n"));
    write("a.calc", "1\n= 1\n");
    EXPECT_EQ(with("bad_functions_plugin", "test a.calc").out,
              "a.calc: the plug-in registered what it must not\n1 passed, 1 failed\n");
}

} // namespace
} // namespace host
