#pragma once

// Showing records: lists and single ones, as text and as JSON.

#include "frameworks/AddressBook/store/store.h"
#include "tools/addressbook/fields.h"
#include "tools/addressbook/output.h"

#include <cstddef>
#include <limits>
#include <map>
#include <string>
#include <vector>

namespace addressbook::tool {

// Writes one line for each record: the unique id and the fields, separated by tabs.
void listRecords(const Store& store, const std::vector<RowId>& rows, const std::vector<Field>& fields,
                 Output& output);

// Writes the records as a JSON array with one object a line. Lists are arrays of objects with label and
// value.
void listRecordsAsJson(const Store& store, const std::vector<RowId>& rows, const std::vector<Field>& fields,
                       Output& output);

// Writes one line for each group: the unique id, the name, and the numbers of members and subgroups.
void listGroups(const Store& store, const std::vector<RowId>& rows, bool json, Output& output);

// Writes values as showRecord() shows them, in the order of [fields], without those that only the book knows.
void showValues(std::map<std::string, Value> values, const std::vector<Field>& fields, Output& output);

// Writes the names of the groups that a record is in, as showRecord() shows them.
void showGroupNames(const std::vector<std::string>& names, Output& output);

// Writes one line for each record: the unique id and the name.
void writeNames(const Store& store, const std::vector<RecordRef>& records, bool json, Output& output);

// Writes everything about a record except internal properties; of a group's members and subgroups at most
// [limit].
void showRecord(const Store& store, const RecordRef& record, bool json, Output& output,
                std::size_t limit = std::numeric_limits<std::size_t>::max());

} // namespace addressbook::tool
