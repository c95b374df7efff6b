#include "frameworks/AddressBook/sync/local_changes.h"

#include "frameworks/AddressBook/sync/links.h"

#include <algorithm>
#include <iterator>

namespace addressbook::sync {

LocalChanges LocalLog::next() {
    LocalChanges changes;
    const std::int64_t last = session_.store.lastChange();
    if (read_ < 0 || last < read_) { // the book was repaired, or an older state of it restored
        changes.unknown = true;
        moved_ = true;
        read_ = last;
        return changes;
    }
    if (last == read_) {
        return changes;
    }
    const auto take = [](std::vector<std::string>& from, std::vector<std::string>& to) {
        to.insert(to.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
    };
    for (LoggedChange& save : session_.store.changesSince(read_)) {
        moved_ = true;
        read_ = save.change;
        if (session_.isOwn(save.change)) {
            continue;
        }
        changes.unknown = changes.unknown || save.tellsNothing();
        take(save.inserted, changes.inserted);
        take(save.updated, changes.updated);
        take(save.deleted, changes.deleted);
    }
    read_ = std::max(read_, last);
    return changes;
}

std::vector<std::string> deletedRecords(const Session& session) {
    std::vector<std::string> deleted;
    if (session.recovers()) {
        return deleted;
    }
    session.store.visitSyncLinks(session.collection.id, [&](SyncLink&& link) {
        const bool isRecord = isOfRecord(link) || categoryOf(link.href);
        if (isRecord && !link.leaves && !session.store.find(link.uid)) {
            deleted.push_back(std::move(link.uid));
        }
    });
    return deleted;
}

} // namespace addressbook::sync
