#pragma once

// One change that a user asks for: PATH=VALUE, or PATH+=VALUE for a further entry; see property_path.h.

#include "frameworks/AddressBook/model/book.h"
#include "tools/addressbook/property_path.h"

#include <string>

namespace addressbook::tool {

struct Assignment {
    PropertyPath path;
    bool further = false; // a further entry, whatever is there
    std::string value;    // empty: takes the value away
};

// Throws std::invalid_argument.
Assignment parseAssignment(const std::string& text, Kind kind, const Store& store);

// Returns what the property holds afterwards; no value: it is taken away. Without a label it is the only entry
// that is meant, or a new one. Throws std::invalid_argument when the value is not of the property's type, or when it
// is not clear which of several entries is meant.
Value assigned(const Assignment& assignment, const Value& before);

} // namespace addressbook::tool
