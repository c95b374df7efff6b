#pragma once

// The labels of entries as CSV files write them.

#include <string>
#include <string_view>

namespace addressbook::csv {

// Returns a text without all that is no letter or digit, case-folded: "E-mail 1 - Value" is "email1value".
std::string squeezed(std::string_view text);

// Returns the label that a word stands for: one that everybody has, else the word itself.
std::string labelFrom(std::string_view word);

// Returns the word for a label, as "Home Fax".
std::string wordFor(std::string_view label);

} // namespace addressbook::csv
