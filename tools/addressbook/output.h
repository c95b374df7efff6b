#pragma once

// The output of commands: standard output, or a file that gets its name only when it is complete.

#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace addressbook::tool {

// The exit statuses of the program.
enum ExitCode : int {
    kDone = 0,
    kIncomplete = 1, // cards were refused, a record not found, a file not read or written, damage found
    kUsage = 2,
    kNoBook = 3,   // the address book cannot be opened, read or written
    kNoServer = 4, // a server cannot be reached, or does not let the account in
    kHeldBack = 5  // more than half of the people would vanish on one side
};

// Thrown to end the program with kIncomplete; what() is the message.
class Failure : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Thrown when the reader of standard output has closed it, so that the program can end.
struct OutputClosed {};

// A destination for text.
class Output {
  public:
    // Writes to standard output.
    Output();
    // Writes to a file, by way of a temporary file beside it: without finish() the file is unchanged. Only
    // its owner may read a new file; a replaced one keeps its permissions. Throws Failure.
    explicit Output(std::filesystem::path file);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    // Write text, and complete the output. Throw Failure or OutputClosed.
    void write(std::string_view text);
    void finish();

  private:
    [[noreturn]] void fail(int error) const;

    std::FILE* stream_;
    std::filesystem::path target_, temporary_; // empty: standard output, or written in place
    mode_t mode_ = 0600;                       // the permissions of the complete file
};

// Writes a line to standard error: "addressbook: [message]".
void complain(std::string_view message);

// Returns a text with tabs, line ends, backslashes and other control characters escaped.
std::string escaped(std::string_view text);

} // namespace addressbook::tool
