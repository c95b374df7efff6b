#pragma once

// The checksum of records and pictures, by which bytes that were changed by accident are noticed.

#include <cstdint>
#include <string_view>

namespace addressbook {

// Returns the checksum of [bytes], equal on all machines. Every step is one-to-one, so that a change of a single word
// of eight bytes always changes the result.
std::uint64_t checksum(std::string_view bytes);

} // namespace addressbook
