#pragma once

// What the columns of a CSV file mean.

#include "frameworks/AddressBook/values/property.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook::csv {

// What a cell says of the person in its row.
enum class Role {
    ignored,    // nothing that an address book holds
    value,      // the value of a property, of an entry, or of a field of one
    label,      // the label of an entry
    identifier, // the unique id
    groups,     // the names of groups
    fullName    // the whole name; looked at when there is no other
};

struct Column {
    Role role = Role::ignored;
    std::string property;
    std::string label; // of the entry, as the address book keeps it; a label column of the same entry wins
    std::string field; // the key in a dictionary; empty: none
    std::size_t entry = 0; // columns of one property with one number and label are one entry
    std::size_t part = 0;  // the order of cells that together are one field: the lines of a street
    bool fallback = false; // taken only when the entry's other fields are empty
};

// A property with several values whose columns are numbered, as "Phone 1 - Value".
struct Numbered {
    std::string_view word, property;
};
std::span<const Numbered> numberedProperties();

// A field of a dictionary in such columns.
struct NumberedField {
    std::string_view property, word, key;
};
std::span<const NumberedField> numberedFields();

// A property with one value, by the header with which it is written.
struct Single {
    std::string_view header, property;
};
std::span<const Single> singleProperties();

inline constexpr std::string_view kIdentifierHeader = "ID";
inline constexpr std::string_view kGroupsHeader = "Labels";
// Stands between several names or values in one cell.
inline constexpr std::string_view kBetween = " ::: ";

// Returns what a header means: those of the contacts of Google, Outlook and Apple, and what an export writes,
// in any letter case and with any punctuation; [own] are the users' properties. Nothing when it is unknown.
std::optional<Column> columnNamed(std::string_view header, std::span<const PropertyDefinition> own);

} // namespace addressbook::csv
