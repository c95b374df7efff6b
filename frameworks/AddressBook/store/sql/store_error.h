#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

namespace addressbook {

// Says what is wrong with a file and what to do: "[subject] [file] [what]: [remedy]." [what] may be empty.
std::string problemSentence(std::string_view subject, const std::filesystem::path& file,
                            std::string_view what, std::string_view remedy);

// Why an address book could not be opened, read or written. what() is one sentence for users, which names the
// file and what to do.
class StoreError : public std::runtime_error {
  public:
    enum class Reason {
        missingFolder, // there is no folder, or no book in it, and none may be made
        notADatabase,  // the file is something else
        newerSchema,   // a later version of this program wrote it
        locked,        // another program does not let go of it
        readOnly,      // it may not be written
        damaged,       // what is in it makes no sense
        full,          // the disk is
        io,            // the system could not read or write
        refused        // the change itself is not allowed
    };
    // "The address book [file] [what]: [remedy]."
    StoreError(Reason reason, const std::filesystem::path& file, std::string_view what,
               std::string_view remedy);
    // [sentence] as it is.
    StoreError(Reason reason, const std::string& sentence) : std::runtime_error(sentence), reason_(reason) {}
    Reason reason() const { return reason_; }

  private:
    Reason reason_;
};

// What opening a book answers whose file others replaced again and again meanwhile.
StoreError replacedError(const std::filesystem::path& file);

// What a change answers where the book in [file] may only be read.
StoreError readOnlyError(const std::filesystem::path& file);

} // namespace addressbook
