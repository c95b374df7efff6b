// The commands `conflicts`, `conflicts take` and `conflicts drop`.

#include "tools/addressbook/commands.h"

#include "tools/addressbook/fields.h"
#include "tools/addressbook/json.h"
#include "tools/addressbook/output.h"

#include "frameworks/AddressBook/values/calendar.h"
#include "frameworks/AddressBook/values/uid.h"

#include <algorithm>
#include <iostream>
#include <stdexcept>

namespace addressbook::tool {
namespace {

// What users see of a conflict.
struct Shown {
    std::string name, property, value, side, time;
};

Shown shown(const Store& store, const std::vector<Field>& fields, const SyncConflict& conflict) {
    const auto record = store.find(conflict.uid);
    std::string property = friendlyName(fields, conflict.property);
    if (!conflict.label.empty()) {
        property += '/' + labelText(conflict.label);
    }
    return {record ? displayName(store, *record) : "(deleted)", std::move(property),
            valueText(conflict.value), conflict.remote ? "server" : "here", valueText(conflict.time)};
}

// Throws when the book may not be written.
void requireWritable(const Store& store) {
    if (store.readOnly()) {
        throw readOnlyError(store.file());
    }
}

// Returns the conflict of an id. Throws Failure when there is none.
SyncConflict conflictOf(const std::vector<SyncConflict>& conflicts, std::int64_t id) {
    const auto found = std::find_if(conflicts.begin(), conflicts.end(),
                                    [&](const SyncConflict& conflict) { return conflict.id == id; });
    if (found == conflicts.end()) {
        throw Failure("no conflict has the id " + std::to_string(id) + "; addressbook conflicts lists them");
    }
    return *found;
}

// Returns the value of a property after the one that had to yield is put back. An entry of a list takes the place of
// the only one with its label; where there is none or several, it is added.
Value putBack(const SyncConflict& conflict, const Value& now) {
    const auto* list = now.as<MultiValue>();
    const bool isEntry = list != nullptr || !conflict.label.empty();
    if (!isEntry || conflict.value.as<MultiValue>() != nullptr) {
        return conflict.value;
    }
    MultiValue entries = list != nullptr ? *list : MultiValue();
    const auto hasLabel = [&](const Entry& entry) { return entry.label == conflict.label; };
    const auto same = std::find_if(entries.entries.begin(), entries.entries.end(), [&](const Entry& entry) {
        return hasLabel(entry) && entry.value == conflict.value;
    });
    if (same != entries.entries.end()) {
        return now;
    }
    if (std::count_if(entries.entries.begin(), entries.entries.end(), hasLabel) == 1) {
        std::find_if(entries.entries.begin(), entries.entries.end(), hasLabel)->value = conflict.value;
    } else {
        entries.entries.push_back({newUuid(), conflict.label, conflict.value});
    }
    return entries;
}

} // namespace

int runConflicts(const Options& options) {
    const Store store = open(options, Store::Access::readOnly);
    const std::vector<Field> fields = allFields(store);
    const std::vector<SyncConflict> conflicts = store.syncConflicts();
    Output output;
    if (options.json) {
        JsonLines lines(output);
        for (const SyncConflict& conflict : conflicts) {
            const Shown show = shown(store, fields, conflict);
            lines.add({{"id", conflict.id},
                       {"record", conflict.uid},
                       {"name", show.name},
                       {"property", friendlyName(fields, conflict.property)},
                       {"label", labelText(conflict.label)},
                       {"value", jsonOf(conflict.value)},
                       {"from", show.side},
                       {"time", show.time}});
        }
        lines.finish();
    } else {
        for (const SyncConflict& conflict : conflicts) {
            const Shown show = shown(store, fields, conflict);
            std::string line = std::to_string(conflict.id);
            for (const std::string& column : {show.name, show.property, show.value, show.side, show.time}) {
                line += '\t' + escaped(column);
            }
            output.write(line + '\n');
        }
    }
    output.finish();
    if (conflicts.empty()) {
        std::cerr << "no conflicts\n";
    }
    return kDone;
}

int runConflictsTake(const Options& options) {
    Store store = open(options, Store::Access::readWrite);
    requireWritable(store);
    const std::vector<Field> fields = allFields(store);
    const std::vector<SyncConflict> conflicts = store.syncConflicts();
    for (const std::int64_t id : options.conflicts) { // all are looked up before any is taken
        if (const SyncConflict conflict = conflictOf(conflicts, id); !store.find(conflict.uid)) {
            throw Failure("the record of the conflict " + std::to_string(id) +
                          " is deleted; addressbook conflicts drop forgets the value");
        }
    }
    for (const std::int64_t id : options.conflicts) {
        const SyncConflict conflict = conflictOf(conflicts, id);
        const RecordRef record = findRecord(store, conflict.uid);
        const Value now = store.value(record.row, conflict.property);
        ChangeSet changes;
        changes.time = currentTime();
        changes.records.push_back({.uid = record.uid,
                                   .kind = record.kind,
                                   .values = {{conflict.property, putBack(conflict, now)}}});
        changes.sync.removedConflicts.push_back(id);
        if (!store.save(changes).missing.empty()) {
            throw Failure(record.uid + " was deleted by another program just now");
        }
        const Shown show = shown(store, fields, conflict);
        std::cerr << escaped(show.name + ": " + show.property + " is " + show.value) << " again\n";
    }
    return kDone;
}

int runConflictsDrop(const Options& options) {
    Store store = open(options, Store::Access::readWrite);
    requireWritable(store);
    const std::vector<SyncConflict> conflicts = store.syncConflicts();
    ChangeSet changes;
    changes.time = currentTime();
    for (const std::int64_t id : options.conflicts) {
        changes.sync.removedConflicts.push_back(conflictOf(conflicts, id).id);
    }
    store.save(changes);
    std::cerr << counted(changes.sync.removedConflicts.size(), "value", "values") << " forgotten\n";
    return kDone;
}

} // namespace addressbook::tool
