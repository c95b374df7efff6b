#pragma once

// Runs the program addressbook in a temporary folder.

#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook {

struct Outcome {
    int status = -1; // exit status; 128 plus the signal's number when a signal ended it
    std::string out, err;
};

// A temporary folder with a home, an address book and files.
class Sandbox {
  public:
    Sandbox();

    const std::filesystem::path& folder() const { return folder_.path(); }
    std::filesystem::path book() const { return folder() / "book"; }

    // Writes a file into the folder and returns its path.
    std::string file(const std::string& name, std::string_view contents) const;

    // Runs the program with these arguments and standard input.
    Outcome run(const std::vector<std::string>& arguments, std::string_view input = {}) const;

    // Runs a line of the shell, in which $A is the program.
    Outcome shell(const std::string& line) const;

  private:
    Outcome execute(const std::string& command) const;

    support::TemporaryFolder folder_;
};

using support::bytesOf;

} // namespace addressbook
