#pragma once

// Properties as users name them to change one: PROPERTY, PROPERTY/LABEL or PROPERTY/LABEL/FIELD, as lastname,
// phones/home, addresses/work/city.

#include "frameworks/AddressBook/store/store.h"

#include <string>
#include <string_view>
#include <vector>

namespace addressbook::tool {

struct PropertyPath {
    std::string text;     // as the user wrote it
    std::string property; // by the address book's name
    int type = 0;         // of the property; see value.h
    std::string label;    // of an entry, as the address book keeps it; empty: none was written
    std::string field;    // of a dictionary, by its key; empty: none was written

    bool isList() const { return (type & kMultiValue) != 0; }
    // Returns the type of the property, or of its entries.
    Type entryType() const { return static_cast<Type>(type & ~kMultiValue); }
};

// Reads a path of a property of people or of groups that can be set. Throws std::invalid_argument with a
// message that lists what is possible.
PropertyPath parsePath(std::string_view text, Kind kind, const Store& store);

// Returns the label as the address book keeps it for one that a user wrote: one that everybody has in any
// letter case, without its decoration, else the text itself.
std::string labelNamed(std::string_view text);

// Returns the value of this type that [text] says. Throws std::invalid_argument that says what is expected.
Value valueOfType(Type type, const std::string& text);

// Joins words with ", ".
std::string listed(const std::vector<std::string>& words);

} // namespace addressbook::tool
