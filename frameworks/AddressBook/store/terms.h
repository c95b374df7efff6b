#pragma once

// What the search indexes hold of a property's value: terms for the index of values, a text for the index of
// texts. The numbers in this header are stored: changing one takes a new schema version.

#include "frameworks/AddressBook/store/record_codec.h"
#include "frameworks/AddressBook/values/value.h"

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace addressbook {

// Terms keep this many bytes of a text. Whether a longer one matches is decided by reading its record.
inline constexpr std::size_t kTermBytes = 64;

// What kind of value a term stands for.
enum class TermType : int {
    none = 0, // no value, as an entry of a list may be
    text = 1,
    integer = 2,
    real = 3,
    date = 4,
    dateComponents = 5,
    data = 6,
    array = 7,
    dictionary = 8,
    emptyList = 9, // a list without entries; no search finds it
    floatingDate = 10,
    cutText = 0x101 // a text of which the term keeps the beginning
};

// Returns the type of the term that stands for a value. Of multi-values only an empty one has a term of its
// own; others have a term for each entry.
TermType termType(const Value& value);

// A label or key as a term keeps it: 0 for none, the number of a well-known word, else the text.
using TermWord = std::variant<std::int64_t, std::string_view>;

// Returns the number under which the table `term` has the endings of a property's texts: terms whose texts are
// backwards (reversed) and keep the last kTermBytes bytes, so that an ending is looked up as a beginning.
constexpr std::int64_t endingsOf(std::int64_t property) {
    return -property;
}

// One row of the table `term`. Its texts belong to the IndexEntries that made it.
struct Term {
    std::int64_t property = 0; // its id, or endingsOf() it
    //                  folded                                    exact
    // Text             folded text, at most kTermBytes of it     normalized text, likewise
    // Number, date     the number, of a date its seconds         empty
    // Anything else    nothing, stored as no bytes               empty
    std::variant<std::monostate, std::string_view, std::int64_t, double> folded;
    std::string_view exact;
    std::int64_t record = 0;
    TermWord label, key;
    TermType type = TermType::none;
    auto operator<=>(const Term&) const = default;
};

// The most properties there may be, and the rowid of a property's text in the table `trigram`.
inline constexpr std::int64_t kMostProperties = 65536;
constexpr std::int64_t trigramRow(std::int64_t record, std::int64_t property) {
    return record * kMostProperties + property;
}

// The text whose trigrams the index of texts keeps of one property: each text in its value folded, with
// kTextBorder before and after it. Characters that FTS5's tokenizer would drop or change (lone surrogates,
// U+FFFD, NUL) are replaced by kReplaced.
inline constexpr char kTextBorder = '\x1F';
inline constexpr char kReplaced = '\x1E';
struct IndexedText {
    std::int64_t row = 0; // trigramRow()
    std::string_view text;
};

// A text to look for in the index of texts, in its form. `exact` is false when a character of it was replaced,
// so that hits must be checked.
struct TrigramNeedle {
    std::string text;
    bool exact = true;
};
TrigramNeedle trigramNeedle(std::string_view folded);

// Gathers the entries of values for both indexes, and keeps the texts to which they refer.
class IndexEntries {
  public:
    // Adds the entries of a property's encoded [value] (encodeValue); its terms in order, each once. A
    // property without texts has no entry in the index of texts. Throws DamagedRecord.
    void add(std::int64_t record, std::int64_t property, std::string_view value);
    // Adds the endings of the texts in the value, likewise.
    void addEndings(std::int64_t record, std::int64_t property, std::string_view value);

    const std::vector<Term>& terms() const { return terms_; }
    const std::vector<IndexedText>& texts() const { return texts_; }
    // Returns the bytes of text that are kept.
    std::size_t bytes() const { return bytes_; }
    bool empty() const { return terms_.empty() && texts_.empty(); }
    void clear();

  private:
    std::string_view keep(std::string_view text);
    TermWord word(const std::optional<std::string_view>& text);
    Term& addTerm(std::int64_t record, std::int64_t property, const EncodedLeaf& leaf);
    void sortTermsFrom(std::size_t first);
    void takeText(std::string_view text, Term& term);
    void takeEnding(std::string_view text, Term& term);

    std::pmr::monotonic_buffer_resource arena_;
    std::size_t bytes_ = 0;
    std::vector<Term> terms_;
    std::vector<IndexedText> texts_;
    std::vector<EncodedLeaf> leaves_; // of the value that is being added, as is text_
    std::string text_;
};

} // namespace addressbook
