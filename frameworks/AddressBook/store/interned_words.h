#pragma once

// The well-known words of cards, labels, keys and names of properties, which the database writes as numbers.

#include <cstdint>
#include <string_view>

namespace addressbook {

// The number, 1 or more, that stands for a well-known label, key or property name in the database; 0 for any
// other.
int wordCode(std::string_view word);

// The word that a number stands for; empty when there is none.
std::string_view wordOf(std::uint64_t code);

} // namespace addressbook
