#pragma once

// The model's vocabulary: names of properties, words for labels, fields of addresses, countries.

#include "tests/model/value.h"

#include <span>

namespace model {

// Returns the type of a built-in property of people (false) or groups (true): 1 text, 2 number, 4 date; 0x101
// a list of texts, 0x104 of dates, 0x106 of addresses; 0 when there is no such property.
int builtInType(bool ofGroups, const std::string& property);

// Returns the framework's name for a property as calculations name it; the identifier's for no name.
Text propertyNamed(const Text& name);

// Return the stored label for a word, and the word for a label; none for unknown ones.
Text labelForWord(const Text& word);
Text wordForLabel(const std::string& label);

// Returns the label of a new entry: by a shorter list of words, else the text itself.
Text labelForNewEntry(const Text& word);

// Return the field of an address for a word, when reading and when writing.
Text keyForReading(const Text& word);
Text keyForWriting(const std::string& word);

bool isCountry(const std::string& code);

// Returns the names of the comparisons, in the order of their numbers.
std::span<const char* const> comparisonNames();

// Returns the number of a comparison; 0 for no text and for any other.
int comparisonNamed(const Text& name);

} // namespace model
