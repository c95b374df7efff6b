#pragma once

// What others than the cycle itself changed in the address book, by its change log.

#include "frameworks/AddressBook/sync/session.h"

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

namespace addressbook::sync {

struct LocalChanges {
    std::vector<std::string> inserted, updated, deleted; // unique ids, some of them more than once
    bool unknown = false;                                // anything else may have changed as well
    [[nodiscard]] bool empty() const {
        return !unknown && inserted.empty() && updated.empty() && deleted.empty();
    }
};

class LocalLog {
  public:
    explicit LocalLog(const Session& session) : session_(session), read_(session.collection.change) {}

    // Returns what was changed since the last call; the first time since the collection's last cycle.
    LocalChanges next();

    // The number of the save up to which changes were returned.
    [[nodiscard]] std::int64_t position() const { return read_; }
    // Whether there was a save of records since the collection's last cycle.
    [[nodiscard]] bool moved() const { return moved_; }

  private:
    const Session& session_;
    std::int64_t read_;
    bool moved_ = false;
};

// Returns the unique ids of the records whose cards are in the collection, or are to be, and that are no more; by looking
// at all of them.
std::vector<std::string> deletedRecords(const Session& session);

} // namespace addressbook::sync
