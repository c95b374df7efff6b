#include "tools/addressbook/selection.h"

#include "frameworks/AddressBook/values/text.h"
#include "tools/addressbook/output.h"

#include <vector>

namespace addressbook::tool {
namespace {

// Returns the groups with a name; when there are none, those with the name in other letter case.
std::vector<RowId> groupsNamed(const Store& store, const std::string& name) {
    std::vector<RowId> exact, similar;
    for (const RowId row : store.rows(Kind::group)) {
        const Value value = store.value(row, property::kGroupName);
        const auto* text = value.as<std::string>();
        const auto record = store.find(row);
        if ((text && normalize(*text) == normalize(name)) || (record && record->uid == name)) {
            exact.push_back(row);
        } else if (text && fold(*text) == fold(name)) {
            similar.push_back(row);
        }
    }
    return exact.empty() ? similar : exact;
}

// Adds a group and everything in it to the selection.
void collect(const Store& store, RowId group, Selection& selection) {
    if (!selection.groups.insert(group).second) {
        return;
    }
    for (const RowId person : store.members(group)) {
        selection.people.insert(person);
    }
    for (const RowId subgroup : store.subgroups(group)) {
        collect(store, subgroup, selection);
    }
}

} // namespace

Selection everything(const Store& store) {
    Selection selection;
    for (const RowId row : store.rows(Kind::person)) {
        selection.people.insert(row);
    }
    for (const RowId row : store.rows(Kind::group)) {
        selection.groups.insert(row);
    }
    return selection;
}

Selection contentsOfGroup(const Store& store, const std::string& group) {
    const std::vector<RowId> named = groupsNamed(store, group);
    if (named.empty()) {
        throw Failure("no group is named \"" + group + '"');
    }
    Selection selection;
    for (const RowId row : named) {
        collect(store, row, selection);
    }
    return selection;
}

} // namespace addressbook::tool
