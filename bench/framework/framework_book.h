#pragma once

// The address book through the framework's Objective-C interface, behind C++ so that only this room speaks
// Objective-C. One thread.

#include "bench/generate/people.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

class FrameworkBook {
  public:
    // Opens the address book in [folder], and makes it when it is missing; from then on the process's
    // $ADDRESSBOOK_HOME is this folder. Throws std::runtime_error when that fails.
    explicit FrameworkBook(const std::filesystem::path& folder);
    ~FrameworkBook();
    FrameworkBook(const FrameworkBook&) = delete;
    FrameworkBook& operator=(const FrameworkBook&) = delete;

    // Adds the first [people] people, as a program would: an object for each, all saved at once. The two
    // steps are apart, so that what is done before can be left out of the measure.
    void add(std::size_t people);
    void save();

    // How many a search finds; their unique ids, in the order in which they are answered.
    std::size_t search(Search search);
    std::vector<std::string> found(Search search);

    // Reads the names, the organization and all phones of everybody; answers the bytes of text that it saw,
    // as UTF-8.
    std::size_t walkedBytes();
    // The same without counting in UTF-8: what is measured. Answers how many texts there were.
    std::size_t walk();

    // The last name of the person with this unique id.
    std::string lastName(const std::string& uid);
    // Reads the last name without converting it to std::string: the variant that is timed.
    void readLastName(const std::string& uid);

    // Sets a person's job and saves.
    void changeJob(const std::string& uid, const std::string& job);

    // Keeps the person with this unique id at hand for read().
    void hold(const std::string& uid);
    // The reading calls that calculations are compared with, on the person held.
    enum class Read { text, date, phone, phoneLabel };
    void read(Read what);
    // The identifier of the held person's first phone.
    std::string firstPhone();

  private:
    struct Objects;
    std::unique_ptr<Objects> objects_;
};

} // namespace bench
