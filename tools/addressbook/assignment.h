#pragma once

// One change in the words of a user: PATH=VALUE, or PATH+=VALUE to add an entry; see property_path.h.

#include "frameworks/AddressBook/model/book.h"
#include "tools/addressbook/property_path.h"

#include <string>

namespace addressbook::tool {

struct Assignment {
    PropertyPath path;
    bool further = false; // adds an entry, whatever entries are there
    std::string value;    // empty: removes the value
};

// Returns the change that [text] describes. Throws std::invalid_argument.
Assignment parseAssignment(const std::string& text, Kind kind, const Store& store);

// Returns the property's value after the change, "no value" to remove it. Without a label the change is to
// the only entry, or adds one. Throws std::invalid_argument when the value does not have the property's type,
// or when it is ambiguous which of several entries is meant.
Value assigned(const Assignment& assignment, const Value& before);

} // namespace addressbook::tool
