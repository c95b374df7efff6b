#pragma once

// The backlog of the search indexes, as the change log keeps it; backlog.h says what it is for.

#include <compare>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace addressbook {

// One property of one record.
struct PropertyRef {
    std::int64_t property = 0;
    std::int64_t record = 0; // its RowId
    auto operator<=>(const PropertyRef&) const = default;
};

// The properties that were changed since the indexes were last up to date, with what the indexes still hold
// of them: an encoded value (encodeValue), empty when they hold nothing.
using Backlog = std::map<PropertyRef, std::string>;

// Returns the bytes of a backlog, as a row of the change log keeps it.
std::string encodeBacklog(const Backlog& backlog);
// Adds such bytes to [backlog], oldest row first: of several changes of a property the first one says what
// the indexes hold, so that a property that is there already stays. Throws DamagedRecord.
void decodeBacklog(std::string_view bytes, Backlog& backlog);

} // namespace addressbook
