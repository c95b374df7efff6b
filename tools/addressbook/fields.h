#pragma once

// The names of properties for users, and values as text.

#include "frameworks/AddressBook/store/store.h"

#include <string>
#include <string_view>
#include <vector>

namespace addressbook::tool {

// A column of a list. Some are computed: id, name, groups.
struct Field {
    std::string name;     // as users write it
    std::string property; // the property's name in the address book; empty for computed columns
};

// Returns every field that a list of people can have, also for custom properties.
std::vector<Field> allFields(const Store& store);
std::vector<Field> allFields(const std::vector<PropertyDefinition>& definitions);

// Returns the fields in a list "a,b,...", which may also be named by their properties, in any letter case.
// Throws std::invalid_argument with a message that names the most similar field.
std::vector<Field> parseFields(std::string_view list, const Store& store);

// Returns the users' name of a property; the property's own name when there is none.
std::string friendlyName(const std::vector<Field>& fields, const std::string& property);

// Returns the number of single-letter changes that turn one word into the other.
std::size_t distance(std::string_view left, std::string_view right);

// Returns the name to show for a record (values/display_name.h).
std::string displayName(const Store& store, const RecordRef& record);

// Returns the value of a field as one text, with "; " between entries.
std::string fieldText(const Store& store, const RecordRef& record, const Field& field);

// Return a value as text, which may have several lines, and a label without its decoration, "_$!<" and
// ">!$_".
std::string valueText(const Value& value);
std::string labelText(std::string_view label);

// Returns the person or group with this unique id, or with this UUID in any letter case. Throws Failure when
// there is none.
RecordRef findRecord(const Store& store, const std::string& id);

} // namespace addressbook::tool
