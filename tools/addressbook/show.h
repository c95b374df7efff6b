#pragma once

// Showing records: lists and single ones, as text and as JSON.

#include "frameworks/AddressBook/store/store.h"
#include "tools/addressbook/fields.h"
#include "tools/addressbook/output.h"

#include <vector>

namespace addressbook::tool {

// One line a person: the unique id, then the fields, separated by tabs.
void listPeople(const Store& store, const std::vector<Field>& fields, Output& output);

// Writes the records as a JSON array with one object a line. Lists are arrays of objects with label and
// value.
void listPeopleAsJson(const Store& store, const std::vector<Field>& fields, Output& output);

// One line a group: the unique id, the name, how many members and subgroups it has.
void listGroups(const Store& store, bool json, Output& output);

// Everything about one record that users know of.
void showRecord(const Store& store, const RecordRef& record, bool json, Output& output);

} // namespace addressbook::tool
