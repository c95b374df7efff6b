// The command `move`.

#include "tools/addressbook/commands.h"

#include "tools/addressbook/fields.h"
#include "tools/addressbook/output.h"
#include "tools/addressbook/show.h"
#include "tools/addressbook/sync/places.h"

#include "frameworks/AddressBook/sync/links.h"
#include "frameworks/AddressBook/values/calendar.h"

#include <algorithm>
#include <iostream>
#include <optional>
#include <set>
#include <stdexcept>

namespace addressbook::tool {
namespace {

// Adds to [changes] what has a record belong to [book], 0 for none. Returns false when it does already.
bool move(const Store& store, const std::string& uid, std::int64_t book, SyncChanges& changes) {
    std::vector<SyncLink> links = store.syncLinksOf(uid);
    const bool belongs = !links.empty() && !links.front().leaves;
    if (belongs ? links.front().collection == book : book == 0) {
        return false;
    }
    if (belongs) { // its card there is deleted by the next cycle, if there is one
        SyncLink& from = links.front();
        if (sync::categoryOf(from.href)) {
            throw Failure(uid + " is a category of people on the server; it goes where they are");
        }
        if (from.href.starts_with('/')) { // which those do not that are no cards yet
            from.leaves = true;
            changes.links.push_back(from);
        } else {
            changes.removedLinks.emplace_back(from.collection, from.href);
        }
    }
    if (book == 0) {
        return true;
    }
    // One that comes back before its card was deleted keeps that.
    const auto back = std::find_if(links.begin(), links.end(), [&](const SyncLink& link) {
        return link.collection == book && link.leaves;
    });
    if (back != links.end()) {
        back->leaves = false;
        changes.links.push_back(*back);
    } else {
        changes.links.push_back(sync::unsentLink(book, uid));
    }
    return true;
}

// Whether a record is a category of people on a server, which goes where they are.
bool isCategory(const Store& store, const std::string& uid) {
    const std::vector<SyncLink> links = store.syncLinksOf(uid);
    return !links.empty() && sync::categoryOf(links.front().href).has_value();
}

// Returns the records that the options name: by their ids, or all that belong to a place.
std::vector<RecordRef> chosenRecords(const Store& store, const Options& options) {
    std::vector<RecordRef> records;
    records.reserve(options.move.ids.size());
    for (const std::string& id : options.move.ids) {
        records.push_back(findRecord(store, id));
    }
    if (!options.move.from.empty()) {
        for (const RowId row : rowsIn(store, options.move.from)) {
            if (auto record = store.find(row); record && !isCategory(store, record->uid)) {
                records.push_back(*std::move(record));
            }
        }
    }
    return records;
}

} // namespace

int runMove(const Options& options) {
    if (options.move.ids.empty() && options.move.from.empty()) {
        throw std::invalid_argument("move needs ids, or --from with what all is to be moved from");
    }
    Store store = open(options, Store::Access::readWrite);
    if (store.readOnly()) {
        throw readOnlyError(store.file());
    }
    const Places places(store);
    const std::int64_t book = options.move.to == kLocal ? 0 : places.book(options.move.to).id;
    std::vector<RecordRef> moved;
    std::set<RowId> seen;
    ChangeSet changes;
    changes.time = currentTime();
    for (RecordRef& record : chosenRecords(store, options)) { // all are looked up before any is moved
        if (seen.insert(record.row).second && move(store, record.uid, book, changes.sync)) {
            // The change log tells of the record, by which the next cycle, and who watches, learn of it.
            changes.records.push_back({.uid = record.uid, .kind = record.kind, .values = {}});
            moved.push_back(std::move(record));
        }
    }
    store.save(changes);
    Output output;
    writeNames(store, moved, false, output);
    output.finish();
    std::cerr << counted(moved.size(), "record", "records") << " moved to " << escaped(places.nameOf(book))
              << (moved.size() < seen.size() ? "; the others belong to it already\n" : "\n");
    return kDone;
}

} // namespace addressbook::tool
