#pragma once

// Knowing again the records of an address book that a card means without naming their unique ids.

#include "frameworks/AddressBook/store/store.h"

#include <functional>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace addressbook::tool {

// The records that were in the address book before an import. Each index is made when it is first asked for,
// by one look at all records. Not thread-safe.
class KnownRecords {
  public:
    // [store] may be null, for an address book that does not exist yet.
    explicit KnownRecords(const Store* store) : store_(store) {}

    // Returns the unique id of a record that came without one and says what [values] say, as far as all
    // versions have read it alike; labels and the order of words aside. Earlier versions made the ids of such
    // records in other ways. Empty when there is none for which [isFree].
    std::string withContents(Kind kind, const std::map<std::string, Value>& values,
                             const std::function<bool(const std::string& uid)>& isFree);

    // Returns the unique id of the record whose card had a UID of this UUID beside another id; empty when there
    // is none.
    std::string withOtherUid(const std::string& uuid);

  private:
    using Index = std::unordered_map<std::string, std::vector<std::string>>;

    const Store* store_;
    bool hasContents_ = false, hasOtherUids_ = false; // the indexes are made
    Index byContents_;                                // what is said -> unique ids, in the order of adding
    std::unordered_map<std::string, std::string> byOtherUid_;
};

} // namespace addressbook::tool
