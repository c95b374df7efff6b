#pragma once

// Runs the program fmhost in a temporary folder.

#include "host/console/exit_code.h"
#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>

namespace host {

inline const std::string kGood = std::string(TEST_PLUGINS) + "/good_plugin.fmx";

struct Outcome {
    int status;
    std::string out;
    std::string err;
};

class ProgramTest : public testing::Test {
  protected:
    ProgramTest() { setenv("XDG_STATE_HOME", (folder_ / "state").c_str(), 1); }

    // Runs the program with arguments in the shell's syntax.
    Outcome run(const std::string& arguments, const std::string& input = "") {
        const std::filesystem::path out = folder_ / "out";
        const std::filesystem::path err = folder_ / "err";
        write("in", input);
        const std::string command =
            "cd " + folder_.string() + " && " FMHOST " " + arguments + " <in >out 2>err";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, read(out), read(err)};
    }
    Outcome plain(const std::string& arguments, const std::string& input = "") {
        return run("--no-plugin " + arguments, input);
    }
    Outcome good(const std::string& arguments, const std::string& input = "") {
        return run("--plugin " + kGood + " " + arguments, input);
    }

    std::filesystem::path write(const std::string& name, const std::string& text) const {
        std::filesystem::path file = folder_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
        return file;
    }
    static std::string read(const std::filesystem::path& file) { return support::bytesOf(file); }

    void expect(const Outcome& result, ExitCode code, const std::string& out, const std::string& err) const {
        EXPECT_EQ(result.status, static_cast<int>(code));
        EXPECT_EQ(result.out, out);
        EXPECT_EQ(result.err, err);
    }

    support::TemporaryHome home_;
    std::filesystem::path folder_ = home_.path();
};

} // namespace host
