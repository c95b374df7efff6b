#pragma once

// Importing CSV: rows become cards, which the importer takes as it takes those of vCard files.

#include "frameworks/AddressBook/csv/person.h"
#include "tools/addressbook/import.h"
#include "tools/addressbook/input.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook::tool {

// How a CSV file is to be understood.
struct TableForm {
    // "Column=property/label", see PropertyPath; "Column=name", "Column=groups", "Column=id"; "Column=" leaves it out.
    std::vector<std::string> maps;
    std::string charset; // empty: guessed
    csv::DateOrder dates = csv::DateOrder::monthFirst;
    bool datesAreGiven = false; // the user has said in which order dates are
};

// What the file that begins with [beginning] is: it holds no card, and its first line is one of CSV.
bool looksLikeTable(std::string_view beginning);

// Reads one file. [note] is told once what was guessed and which columns were left out; [preview] of the first
// rows what they become. Throws Failure when no column means anything or the file is broken, std::invalid_argument for
// a wrong map; rows before that are taken.
void importTable(Input& input, const TableForm& form, const std::vector<PropertyDefinition>& own,
                 Importer& importer, const std::function<void(const std::string&)>& note,
                 const std::function<void(std::size_t line, const vcard::Card&)>& preview);

} // namespace addressbook::tool
