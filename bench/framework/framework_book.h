#pragma once

// The address book through the framework's Objective-C classes, with a C++ interface, so that only this room
// uses Objective-C.

#include "bench/generate/people.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

// The shared address book of this process. Not thread-safe.
class FrameworkBook {
  public:
    // Opens the address book in [folder], and makes it when it is missing. Sets $ADDRESSBOOK_HOME of this
    // process to the folder. Throws std::runtime_error when that fails.
    explicit FrameworkBook(const std::filesystem::path& folder);
    ~FrameworkBook();
    FrameworkBook(const FrameworkBook&) = delete;
    FrameworkBook& operator=(const FrameworkBook&) = delete;

    // Add the first [people] people, an object for each, and save them all at once. These are two functions,
    // so that saving can be timed without adding.
    void add(std::size_t people);
    void save();

    // Return the number of people that a search finds, and their unique ids in the order of the result.
    std::size_t search(Search search);
    std::vector<std::string> found(Search search);

    // Reads the names, the organization and all phones of all people; returns the number of bytes of text
    // read, in UTF-8.
    std::size_t walkedBytes();
    // Like walkedBytes(), but returns the number of texts, without converting them to UTF-8: the variant that
    // is timed.
    std::size_t walk();

    // Returns the last name of the person with this unique id.
    std::string lastName(const std::string& uid);
    // Reads the last name without converting it to std::string: the variant that is timed.
    void readLastName(const std::string& uid);

    // Sets a person's job title and saves.
    void changeJob(const std::string& uid, const std::string& job);

    // Makes the person with this unique id the held person, which the following functions read.
    void hold(const std::string& uid);
    // Makes the framework call with which the calculation that reads the same is compared.
    enum class Read { text, date, phone, phoneLabel };
    void read(Read what);
    // Returns the identifier of the held person's first phone.
    std::string firstPhone();

  private:
    struct Objects;
    std::unique_ptr<Objects> objects_;
};

} // namespace bench
