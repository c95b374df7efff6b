#pragma once

// The names that users give to properties, and records as they show them.

#include "frameworks/AddressBook/store/store.h"

#include <string>
#include <string_view>
#include <vector>

namespace addressbook::tool {

// A column of a list. Some are worked out: id, name, groups.
struct Field {
    std::string name;     // as users write it
    std::string property; // of the address book; empty for those that are worked out
};

// Every field that a list of people can have, the properties of users' own included.
std::vector<Field> allFields(const Store& store);

// The fields named in "a,b,...", by our names or the properties' own, in any letter case. Throws
// std::invalid_argument with a message that names the nearest field.
std::vector<Field> parseFields(std::string_view list, const Store& store);

// How many letters must change to make one word the other.
std::size_t distance(std::string_view left, std::string_view right);

// The name to show for a record.
std::string displayName(const Store& store, const RecordRef& record);

// The value of a field as one text; entries are separated by "; ".
std::string fieldText(const Store& store, const RecordRef& record, const Field& field);

// A value as text, its lines kept; a label without its decoration.
std::string valueText(const Value& value);
std::string labelText(std::string_view label);

// The person or group with this unique id, or with this UUID in any letter case. Throws Failure when there is
// none.
RecordRef findRecord(const Store& store, const std::string& id);

} // namespace addressbook::tool
