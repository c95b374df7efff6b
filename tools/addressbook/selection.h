#pragma once

// Which records a command is about.

#include "frameworks/AddressBook/store/store.h"

#include <set>
#include <string>

namespace addressbook::tool {

// The rows of some people and groups, ascending in the order in which they were added.
struct Selection {
    std::set<RowId> people, groups;
};

// Returns all people and groups.
Selection everything(const Store& store);

// Returns the group with a unique id, or all groups with a name, with their subgroups and the members of all
// these. When no group has exactly this name, letter case is ignored. Throws Failure when there is no such
// group.
Selection contentsOfGroup(const Store& store, const std::string& group);

} // namespace addressbook::tool
