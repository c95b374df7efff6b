#pragma once

// A row of CSV into the values of a person.

#include "frameworks/AddressBook/csv/columns.h"
#include "frameworks/AddressBook/csv/table.h"
#include "frameworks/AddressBook/values/value.h"

#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace addressbook::csv {

// In which order dates as 3/4/1980 have their parts.
enum class DateOrder { monthFirst, dayFirst };

struct Person {
    std::string id;                      // as it stands in the file; empty: none
    std::map<std::string, Value> values; // entries have fresh identifiers
    std::vector<std::string> groups;
    std::vector<std::string> problems; // what was left out, a clause each
    bool ambiguousDate = false;        // a date was read that the other order would read otherwise
};

// Cells beyond [columns] are reported, those that are missing are empty. [own] are the users' properties.
Person personFrom(const Row& row, std::span<const Column> columns, std::span<const PropertyDefinition> own,
                  DateOrder order);

} // namespace addressbook::csv
