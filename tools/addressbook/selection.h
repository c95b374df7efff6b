#pragma once

// Which records a command is about.

#include "frameworks/AddressBook/store/store.h"

#include <set>
#include <string>

namespace addressbook::tool {

// Rows ascend in the order in which records were added.
struct Selection {
    std::set<RowId> people, groups;
};

// Returns all people and groups.
Selection everything(const Store& store);

// Returns the group of this name or unique id, its subgroups and the members of them all; when several have the name,
// all of these. Without one, letter case does not matter. Throws Failure when there is no such group.
Selection contentsOfGroup(const Store& store, const std::string& group);

} // namespace addressbook::tool
