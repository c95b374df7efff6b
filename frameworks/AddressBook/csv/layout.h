#pragma once

// People into rows of CSV: first all are measured, so that there are as many columns as the one with the most
// phones needs; then each is written.

#include "frameworks/AddressBook/values/property.h"
#include "frameworks/AddressBook/values/value.h"

#include <cstddef>
#include <map>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace addressbook::csv {

class Layout {
  public:
    // [own] are the users' properties; they must live as long as the layout.
    explicit Layout(std::span<const PropertyDefinition> own) : own_(own) {}

    // Makes room for what a person has.
    void measure(const std::map<std::string, Value>& values);

    // Returns the headers, as Google's contacts have them where those have one. What CSV has no place for is
    // not written: pictures, data, lists of lists, times of days, and lines of vCards that were kept.
    std::vector<std::string> headers() const;

    // Returns the cells of a person who was measured.
    std::vector<std::string> cells(const std::string& id, const std::map<std::string, Value>& values,
                                   const std::vector<std::string>& groups) const;

  private:
    struct List {
        std::string word, property;
        bool dictionary = false;
    };
    std::vector<List> lists() const;
    std::vector<std::pair<std::string, std::string>> fieldsOf(const List& list) const;
    std::vector<std::pair<std::string, std::string>> singles() const;

    std::span<const PropertyDefinition> own_;
    std::map<std::string, std::size_t> most_; // of entries, by property
    std::set<std::string> used_;              // properties with one value
};

} // namespace addressbook::csv
