#pragma once

// A machine with an address book of its own, which the program addressbook keeps in step with a server.

#include "tests/tools/program.h"

#include <initializer_list>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace sharing_test {

class Machine : public addressbook::Sandbox {
  public:
    // Adds an account for the book of this name at [url], of ida whose password is s3cret, with further options; fails the
    // test if that does not work.
    void join(const std::string& url, const std::string& book, const std::vector<std::string>& options = {});
    // Returns the path of a file with ida's password, which nobody else may read.
    [[nodiscard]] std::string passwordFile() const;
    // Makes a new book of this name there, and keeps this machine's in step with it.
    void found(const std::string& url, const std::string& book);

    addressbook::Outcome sync(std::initializer_list<std::string> options = {}) const;
    // Brings the book in step; fails the test when something is not as it should.
    void syncWell() const;

    // Imports cards.
    void add(const std::string& cards) const;
    void set(const std::string& uid, const std::string& assignment) const;
    void remove(const std::string& uid) const;

    // Returns what `show` prints of a record; empty when it is not there.
    [[nodiscard]] std::string show(const std::string& uid) const;
    // Returns the lines of all cards as they are exported, by UID; without what each machine notes for itself.
    [[nodiscard]] std::map<std::string, std::set<std::string>> everybody() const;

  private:
    void addAccount(const std::string& url, const std::vector<std::string>& options);
};

// Returns a card with these names, and further lines that end with CR LF.
std::string person(const std::string& uid, const std::string& first, const std::string& last,
                   const std::string& lines = {});

// Returns a group as Apple writes it.
std::string group(const std::string& uid, const std::string& name, const std::vector<std::string>& members);

inline constexpr const char* kIda = "0B1F6A52-7C11-4E3C-9A54-6B2F3C6D0001";
inline constexpr const char* kOle = "0B1F6A52-7C11-4E3C-9A54-6B2F3C6D0002";
inline constexpr const char* kEva = "0B1F6A52-7C11-4E3C-9A54-6B2F3C6D0003";
inline constexpr const char* kAda = "0B1F6A52-7C11-4E3C-9A54-6B2F3C6D0004";
inline constexpr const char* kChoir = "0B1F6A52-7C11-4E3C-9A54-6B2F3C6D0009";

} // namespace sharing_test
