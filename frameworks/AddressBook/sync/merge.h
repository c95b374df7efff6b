#pragma once

// Bringing two changes of one card together, by what it was when both sides last agreed.

#include "frameworks/AddressBook/sync/conflict.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <optional>
#include <vector>

namespace addressbook::sync {

struct Merged {
    std::optional<vcard::Card> card; // nothing: it is deleted
    std::vector<Conflict> conflicts;
};

// Returns the card with the changes that both sides made since [base], nothing for one that is not there; where both
// changed the same, that of [winner] counts, and the other is a conflict.
//
// Each property is looked at alone, of lists each entry, of unknown lines each line, and members and categories each
// by itself. An entry is the same as long as label and value are; one that went while another of the same value or the
// same label came is changed. What was removed on one side and changed on the other stays as changed, and so does the
// card as a whole. Lists keep the order of the side that changed it; where both did, that of [winner].
//
// Identifiers of entries are those of [local] where it has the entry. The unique id, the dates of creation and
// modification and what else no card holds are those of [local]; the unique id that of [remote] without it.
Merged merge(const std::optional<vcard::Card>& base, const std::optional<vcard::Card>& local,
             const std::optional<vcard::Card>& remote, Side winner);

} // namespace addressbook::sync
