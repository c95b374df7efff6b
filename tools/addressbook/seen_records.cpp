#include "tools/addressbook/seen_records.h"

#include "frameworks/AddressBook/values/uid.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <algorithm>
#include <string>

namespace addressbook::tool {

// Of a unique id that is no UUID, which another program may have made, the UUID that stands for it.
SeenRecords::Key SeenRecords::keyOf(std::string_view uid) {
    auto packed = packUid(uid);
    if (!packed || packed->size() != Key().size()) {
        packed = packUid(vcard::uuidOf(uid) + (uid.ends_with(":ABGroup") ? ":ABGroup" : ":ABPerson"));
    }
    Key key{};
    std::copy_n(packed->begin(), std::min(packed->size(), key.size()), key.begin());
    return key;
}

SeenRecord* SeenRecords::find(std::string_view uid) {
    const auto found = records_.find(keyOf(uid));
    return found == records_.end() ? nullptr : &found->second;
}

const SeenRecord* SeenRecords::find(std::string_view uid) const {
    const auto found = records_.find(keyOf(uid));
    return found == records_.end() ? nullptr : &found->second;
}

SeenRecord& SeenRecords::operator[](std::string_view uid) {
    return records_[keyOf(uid)];
}

} // namespace addressbook::tool
