#pragma once

// The labels of entries and the TYPE words that stand for them.

#include <optional>
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
    written,  // it is read, and written
    beside,   // it is read, and written beside the row that holds it, for readers that know no other
    readOnly, // it is read; another row writes what it says
};

// Which words may stand for the label of an entry: telephones know more of them, and e-mail addresses have
// words that only name the mail system.
enum class Entries { telephones, emails, any };

// What TYPE words say about an entry.
struct TypeMeaning {
    std::optional<std::string> label; // none: no word names one; empty: a telephone that is only VOICE
    bool preferred = false;           // "pref" is among them
    std::vector<std::string> words;   // all but "pref", in their order and as they were written
};

// Reads TYPE words. A word that no table knows becomes the label itself, so that custom labels survive.
TypeMeaning meaningOf(const std::vector<std::string>& types, Entries entries);

// Returns the TYPE words that say [label] of such an entry; none when only X-ABLabel can say it.
std::vector<std::string_view> typesFor(std::string_view label, Entries entries);

// Returns the label of a relation that version 4.0 names by TYPE words: the first that the framework has a
// label for, else the first word; empty without words.
std::string relationLabel(const std::vector<std::string>& types);

// Returns the TYPE word by which version 4.0 names a relation; empty when it has none for [label].
std::string_view relationType(std::string_view label);

} // namespace addressbook::vcard
