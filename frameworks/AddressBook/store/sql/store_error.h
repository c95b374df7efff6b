#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

namespace addressbook {

// Returns a sentence that says what is wrong with a file and what to do about it: "[subject] [file] [what]:
// [remedy]." [what] may be empty.
std::string problemSentence(std::string_view subject, const std::filesystem::path& file,
                            std::string_view what, std::string_view remedy);

// Thrown when an address book cannot be opened, read or written. what() is one sentence for users, which
// names the file and says what to do.
class StoreError : public std::runtime_error {
  public:
    enum class Reason {
        missingFolder, // there is no folder, or no book in it, and none may be made
        notADatabase,  // the file is not an address book
        newerSchema,   // a newer version of this program wrote the file
        locked,        // another program kept the file locked for longer than the busy timeout
        readOnly,      // the file may not be written
        damaged,       // the file's contents are damaged
        full,          // the disk is full
        memory,        // memory ran out
        io,            // the system could not read or write the file
        refused        // the change or the request is not valid
    };
    // An error whose sentence is "The address book [file] [what]: [remedy]."
    StoreError(Reason reason, const std::filesystem::path& file, std::string_view what,
               std::string_view remedy);
    // An error with this sentence.
    StoreError(Reason reason, const std::string& sentence) : std::runtime_error(sentence), reason_(reason) {}
    Reason reason() const { return reason_; }

  private:
    Reason reason_;
};

// Returns the error for a book whose file was replaced each time it was being opened.
StoreError replacedError(const std::filesystem::path& file);

// Returns the error for a change to a book that may only be read.
StoreError readOnlyError(const std::filesystem::path& file);

} // namespace addressbook
