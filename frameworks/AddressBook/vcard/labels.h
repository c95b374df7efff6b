#pragma once

// The labels of entries and the TYPE words that stand for them.

#include <string>
#include <string_view>
#include <vector>

namespace addressbook::vcard {

inline constexpr std::string_view kHomeLabel = "_$!<Home>!$_";
inline constexpr std::string_view kWorkLabel = "_$!<Work>!$_";
inline constexpr std::string_view kOtherLabel = "_$!<Other>!$_";
inline constexpr std::string_view kHomePageLabel = "_$!<HomePage>!$_";

// What becomes of a row of a table when a card is written.
enum class Use {
    written, // it is read, and written
    readOnly // it is read; another row writes what it says
};

// What TYPE words say about an entry.
struct TypeMeaning {
    std::string label;              // empty: none of them names a label
    bool preferred = false;         // "pref" is among them
    std::vector<std::string> words; // without those that say nothing about the entry, in their order
    std::vector<std::string> extra; // of these, those that the label does not say
};

// Reads TYPE words. A word that no table knows becomes the label itself, so that custom labels survive.
TypeMeaning meaningOf(const std::vector<std::string>& types);

// Returns the TYPE words that say [label] of such an entry; empty when only X-ABLabel can say it.
enum class Entries { telephones, any };
std::vector<std::string_view> typesFor(std::string_view label, Entries entries);

// The label of a relation that version 4.0 names by a TYPE word.
std::string relationLabel(const std::vector<std::string>& types);

} // namespace addressbook::vcard
