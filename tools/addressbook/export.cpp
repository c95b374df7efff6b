#include "tools/addressbook/export.h"

#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <algorithm>
#include <set>
#include <vector>

namespace addressbook::tool {

namespace {

// The groups that have the name; with none, those that have it in other letter case.
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

// A group and everything below it.
void collect(const Store& store, RowId group, std::set<RowId>& groups, std::set<RowId>& people) {
    if (!groups.insert(group).second) {
        return;
    }
    for (const RowId person : store.members(group)) {
        people.insert(person);
    }
    for (const RowId subgroup : store.subgroups(group)) {
        collect(store, subgroup, groups, people);
    }
}

std::string uuidOfRow(const Store& store, RowId row) {
    const auto record = store.find(row);
    return record ? vcard::uuidOf(record->uid) : std::string();
}

} // namespace

ExportSummary exportCards(const Store& store, const std::string& group, Output& output) {
    std::set<RowId> groups, people; // rows ascend in the order in which records were added
    if (group.empty()) {
        for (const RowId row : store.rows(Kind::person)) {
            people.insert(row);
        }
        for (const RowId row : store.rows(Kind::group)) {
            groups.insert(row);
        }
    } else {
        const std::vector<RowId> named = groupsNamed(store, group);
        if (named.empty()) {
            throw Failure("no group is named \"" + group + '"');
        }
        for (const RowId row : named) {
            collect(store, row, groups, people);
        }
    }
    ExportSummary summary;
    for (const auto* rows : {&people, &groups}) {
        for (const RowId row : *rows) {
            const auto record = store.find(row);
            if (!record) {
                continue;
            }
            vcard::Card card;
            card.kind = record->kind;
            card.uid = record->uid;
            card.values = store.values(row);
            if (Value image = store.value(row, property::kImage); !image.empty()) {
                card.values[std::string(property::kImage)] = std::move(image);
            }
            if (record->kind == Kind::group) {
                for (const auto& members : {store.members(row), store.subgroups(row)}) {
                    for (const RowId member : members) {
                        card.memberUids.push_back(uuidOfRow(store, member));
                    }
                }
                ++summary.groups;
            } else {
                ++summary.people;
            }
            output.write(vcard::write(card));
        }
    }
    output.finish();
    return summary;
}

} // namespace addressbook::tool
