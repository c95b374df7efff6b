#pragma once

// The vocabulary as the model knows it: names of properties, words for labels, fields of addresses,
// countries.

#include "tests/model/value.h"

#include <span>

namespace model {

// The type of a property that the address book has by itself for people (false) or groups (true): 1 text,
// 2 number, 4 date; with 0x100 a list, of texts, of dates, 0x106 of addresses. 0: no such property.
int builtInType(bool ofGroups, const std::string& property);

// The framework's name for what a calculation calls a property. No name at all is the identifier.
Text propertyNamed(const Text& name);

// The stored label for a word and the other way; none when it is no known word.
Text labelForWord(const Text& word);
Text wordForLabel(const std::string& label);

// The label of a new entry: from a shorter list of words, else the text itself.
Text labelForNewEntry(const Text& word);

// The field of an address for a word, when it is read; and when it is written.
Text keyForReading(const Text& word);
Text keyForWriting(const std::string& word);

bool isCountry(const std::string& code);

// The names of the search comparisons, in the order of their numbers.
std::span<const char* const> comparisonNames();

// The number of a search comparison; 0 for none and for any other text.
int comparisonNamed(const Text& name);

} // namespace model
