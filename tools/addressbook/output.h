#pragma once

// Where results go: standard output, or a file that appears under its name only when it is whole.

#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace addressbook::tool {

// What the program's exit status says.
enum ExitCode : int {
    kDone = 0,
    kIncomplete = 1, // some cards refused, a record not found, a file not read or written, damage found
    kUsage = 2,
    kNoBook = 3 // the address book cannot be opened, read or written
};

// A failure that ends the program with kIncomplete; what() is the message.
class Failure : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The reader of standard output has gone; there is nothing left to do.
struct OutputClosed {};

class Output {
  public:
    // Standard output.
    Output();
    // A file, by way of a temporary one beside it; throws Failure. Without finish() the file stays as it was.
    // A new file is for its owner only; one that is replaced hands its permissions on.
    explicit Output(std::filesystem::path file);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    // Throws Failure or OutputClosed.
    void write(std::string_view text);
    void finish();

  private:
    [[noreturn]] void fail(int error) const;

    std::FILE* stream_;
    std::filesystem::path target_, temporary_; // empty: standard output, or written in place
    mode_t mode_ = 0600;                       // that the file gets when it is whole
};

// One line for the user on standard error: "addressbook: [message]".
void complain(std::string_view message);

// A line of text with tabs, line ends, backslashes and other control characters escaped.
std::string escaped(std::string_view text);

} // namespace addressbook::tool
