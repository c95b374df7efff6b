#pragma once

// What had to yield when two sides changed the same.

#include "frameworks/AddressBook/values/value.h"

#include <string>

namespace addressbook::sync {

// The two sides of a card: this address book and the server.
enum class Side { local, remote };

// A value that had to yield, since the other side changed the same one.
struct Conflict {
    std::string property;
    Side side = Side::local; // whose value this is
    std::string label;       // of an entry of a list
    Value value;             // of the property, or of the entry
    bool operator==(const Conflict&) const = default;
};

} // namespace addressbook::sync
