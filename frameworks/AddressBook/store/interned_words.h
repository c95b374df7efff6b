#pragma once

// The well-known words among labels, keys and names of properties, which the database keeps as numbers. The
// number of a word never changes and no word is ever removed, as stored numbers would then mean something
// else.

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace addressbook {

// Numbers stay below this one.
inline constexpr std::size_t kWordNumbersEnd = 256;

// Returns the number, 1 or more, that stands for a well-known word in the database; 0 for any other word.
int wordCode(std::string_view word);

// Returns the word that a number stands for; empty when there is none.
std::string_view wordOf(std::uint64_t code);

} // namespace addressbook
