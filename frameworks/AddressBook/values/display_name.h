#pragma once

#include "frameworks/AddressBook/values/query.h"

#include <cstdint>
#include <string>

namespace addressbook {

// What a person's flags (property::kPersonFlags) say about the name to show. They hold two numbers, which
// have the framework's values: how the person is shown (person or company), and the order of names.
namespace person_flags {
inline constexpr std::int64_t kShowAsMask = 007;
inline constexpr std::int64_t kShowAsCompany = 001;
inline constexpr std::int64_t kNameOrderMask = 070;
inline constexpr std::int64_t kLastNameFirst = 020;
inline constexpr std::int64_t kFirstNameFirst = 040;
} // namespace person_flags

// Returns the name to show for a record, wherever one is shown or written:
// - a group's own name;
// - for a company its organization;
// - for a person title, first, middle and last name, and suffix; with kLastNameFirst the last name before the
//   first.
// A person without any of these names is shown by organization, nickname, first e-mail address or first phone
// number, whichever is there first; a company without an organization by its personal names, then by these.
// Empty when the record has nothing of all this.
std::string displayName(const RecordView& record);

} // namespace addressbook
