#pragma once

// What makes searches fast: for each value a row in the table `term`, ordered by its folded text or its
// number, and for each property's text the trigrams of its folded form in `trigram`. Everything here follows
// from the records and can be made again. The numbers in it are stored: a change of them is a new schema
// version.

#include "frameworks/AddressBook/store/sql/sql.h"
#include "frameworks/AddressBook/values/value.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace addressbook {

// Terms keep this many bytes of a text; a longer one is looked up in its record.
inline constexpr std::size_t kTermBytes = 64;

// What a term was made of.
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
    emptyList = 9,  // a list without entries; no search finds it
    cutText = 0x101 // a text of which the term keeps the beginning
};

// Returns the type of the term that stands for a value. Only an empty list has one: others have a term for
// each entry.
TermType termType(const Value& value);

// A label or key in a term: 0 for none, a well-known word's number, or its text.
using TermWord = std::variant<std::int64_t, std::string>;
TermWord termWord(const std::string* word);
// Binds such a word as the next parameter; it must live as long as the statement.
void bindWord(sql::Statement& statement, std::string_view word);

// One row of the table `term`.
struct Term {
    std::int64_t property = 0;
    // Text: the folded and the normalized form, both perhaps cut. Numbers and dates: the number, and nothing.
    // Anything else: no bytes, and nothing.
    std::variant<std::string, std::int64_t, double, Bytes> folded;
    std::string exact;
    std::int64_t record = 0;
    TermWord label, key;
    TermType type = TermType::none;
    auto operator<=>(const Term&) const = default;
};

// Returns all terms of a property's value, ordered, each once.
std::vector<Term> termsOf(std::int64_t record, std::int64_t property, const Value& value);

// Returns the text whose trigrams are kept: each text of [value] folded, with a kTextBorder before and behind
// it; empty when there is none. Characters that the tokenizer would not take one for one are replaced by
// kReplaced.
inline constexpr char kTextBorder = '\x1F';
inline constexpr char kReplaced = '\x1E';
std::string trigramText(const Value& value);

// A folded text as trigramText() writes it; exact when nothing in it was replaced.
struct TrigramNeedle {
    std::string text;
    bool exact = true;
};
TrigramNeedle trigramNeedle(std::string_view folded);

// Returns the rowid of a property's text in the table `trigram`.
inline constexpr std::int64_t kMostProperties = 65536;
constexpr std::int64_t trigramRow(std::int64_t record, std::int64_t property) {
    return record * kMostProperties + property;
}

// Merges some segments of a small text index, inside the caller's transaction: each IndexWriter::flush()
// writes one, and a search looks into all. The work is bounded; it goes on where the last one ended.
void tidyTexts(sql::Connection& connection);

// Writes both indexes inside the caller's transaction. Gathers additions and removals and writes them in
// order, which is many times faster than one by one; call flush() before the transaction ends.
class IndexWriter {
  public:
    explicit IndexWriter(sql::Connection& connection) : connection_(connection) {}

    void add(std::int64_t record, std::int64_t property, const Value& value);
    // Removes what add() wrote for this [value].
    void remove(std::int64_t record, std::int64_t property, const Value& value);
    void flush();

  private:
    enum class Step { remove, add }; // in this order
    // One text in the trigram index.
    struct Text {
        std::int64_t row;
        Step step;
        std::string text;
        auto operator<=>(const Text&) const = default;
    };
    void flushTexts();
    void addText(std::int64_t record, std::int64_t property, const Value& value, Step step);

    sql::Connection& connection_;
    std::vector<Term> terms_, removed_;
    std::vector<Text> texts_;
};

} // namespace addressbook
