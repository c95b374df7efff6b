#pragma once

// Writing an address book, or a group of it, as vCards.

#include "frameworks/AddressBook/store/progress.h"
#include "frameworks/AddressBook/store/store.h"
#include "tools/addressbook/output.h"

#include <cstddef>
#include <string>

namespace addressbook::tool {

struct ExportSummary {
    std::size_t people = 0, groups = 0;
};

// Writes all people and groups; with a [group] (its name or unique id) that group, its subgroups and their
// members. People come before groups. Throws Failure when there is no such group.
ExportSummary exportCards(const Store& store, const std::string& group, Output& output,
                          const Progress& progress = {});

} // namespace addressbook::tool
