#pragma once

// Paths by which users name what they change: PROPERTY, PROPERTY/LABEL or PROPERTY/LABEL/FIELD, for instance
// lastname, phones/home, addresses/work/city.

#include "frameworks/AddressBook/store/store.h"
#include "tools/addressbook/fields.h"

#include <string>
#include <string_view>
#include <vector>

namespace addressbook::tool {

struct PropertyPath {
    std::string text;     // as the user wrote it
    std::string property; // the property's name in the address book
    int type = 0;         // the property's type; see value.h
    std::string label;    // the label of an entry, as the address book keeps it; empty: none was given
    std::string field;    // the key of a dictionary's field; empty: none was given

    bool isList() const { return (type & kMultiValue) != 0; }
    // Returns the type of the property, or of its entries.
    Type entryType() const { return static_cast<Type>(type & ~kMultiValue); }
};

// Returns the path in [text], of a property of people or of groups that can be set. Throws
// std::invalid_argument with a message that lists what is possible.
PropertyPath parsePath(std::string_view text, Kind kind, const std::vector<PropertyDefinition>& definitions);

// Returns the properties of people or groups that can be set, built-in and custom.
std::vector<Field> settableFields(const std::vector<PropertyDefinition>& definitions, Kind kind);

// Returns the label as the address book keeps it, for one as a user writes it: a built-in label in any letter
// case and without its decoration, else the text itself.
std::string labelNamed(std::string_view text);

// Returns the value of a type that [text] stands for. Throws std::invalid_argument with a message that says
// what is expected.
Value valueOfType(Type type, const std::string& text);

// Joins words with ", ".
std::string listed(const std::vector<std::string>& words);

} // namespace addressbook::tool
