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

// Whether a row of a table is used for writing; all rows are used for reading.
enum class Use {
    written,  // it is written
    beside,   // it is written in addition to the main row, for readers that know only this form
    readOnly, // it is not written; another row has the same meaning
};

// The kinds of entries, by the TYPE words that can be a label: telephones have more of them, and e-mail
// addresses have words that only name the mail system.
enum class Entries { telephones, emails, any };

// The meaning of TYPE words for an entry.
struct TypeMeaning {
    std::optional<std::string> label; // none: no word names one; empty: a telephone that is only VOICE
    bool preferred = false;           // "pref" is among them
    std::vector<std::string> words;   // all words but "pref", in order and as written
};

// Whether two labels are the same word, be it the framework's own, as "_$!<Spouse>!$_", or just that word.
bool sameLabel(std::string_view left, std::string_view right);

// Returns the meaning of TYPE words. An unknown word becomes the label itself, so that custom labels are
// kept.
TypeMeaning meaningOf(const std::vector<std::string>& types, Entries entries);

// Returns the TYPE words for [label]; none when it can only be written as X-ABLabel.
std::vector<std::string_view> typesFor(std::string_view label, Entries entries);

// Returns the label of a relation that version 4.0 names by TYPE words: the first that the framework has a
// label for, else the first word; empty without words.
std::string relationLabel(const std::vector<std::string>& types);

// Returns the TYPE word by which version 4.0 names a relation; empty when it has none for [label].
std::string_view relationType(std::string_view label);

} // namespace addressbook::vcard
