#pragma once

// Running the real program in a folder of its own.

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook {

struct Outcome {
    int status = -1; // exit status; 128 and the signal's number when a signal ended it
    std::string out, err;
};

// A temporary folder with a home, an address book and files; removed at the end.
class Sandbox {
  public:
    Sandbox();
    ~Sandbox();
    Sandbox(const Sandbox&) = delete;
    Sandbox& operator=(const Sandbox&) = delete;

    const std::filesystem::path& folder() const { return folder_; }
    std::filesystem::path book() const { return folder_ / "book"; }

    // Writes a file into the folder and answers its path.
    std::string file(const std::string& name, std::string_view contents) const;

    // Runs the program with these arguments and standard input.
    Outcome run(const std::vector<std::string>& arguments, std::string_view input = {}) const;

    // Runs a line of the shell, in which $A is the program.
    Outcome shell(const std::string& line) const;

  private:
    Outcome execute(const std::string& command) const;

    std::filesystem::path folder_;
};

std::string contentsOf(const std::filesystem::path& file);

} // namespace addressbook
