#pragma once

// The search indexes. The table `term` (the index of values) has a row for each value, ordered by folded text
// or number; the table `trigram` (the index of texts) has the trigrams of each property's folded text. Both
// are made from the records and can be rebuilt at any time. The numbers in this header are stored: changing
// one takes a new schema version.

#include "frameworks/AddressBook/store/sql/sql.h"
#include "frameworks/AddressBook/values/value.h"

#include <cstdint>
#include <map>
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
using TermWord = std::variant<std::int64_t, std::string>;
// Returns [word], which may be null, in this form.
TermWord termWord(const std::string* word);
// Binds [word] in this form as the next parameter; it must outlive the statement.
void bindWord(sql::Statement& statement, std::string_view word);

// One row of the table `term`.
struct Term {
    std::int64_t property = 0;
    //                  folded                                    exact
    // Text             folded text, at most kTermBytes of it     normalized text, likewise
    // Number, date     the number, of a date its seconds         empty
    // Anything else    no bytes                                  empty
    std::variant<std::string, std::int64_t, double, Bytes> folded;
    std::string exact;
    std::int64_t record = 0;
    TermWord label, key;
    TermType type = TermType::none;
    auto operator<=>(const Term&) const = default;
};

// Returns all terms of a property's value, ordered, each once.
std::vector<Term> termsOf(std::int64_t record, std::int64_t property, const Value& value);

// Returns the text whose trigrams the index keeps: each text in [value] folded, with kTextBorder before and
// after it; empty when there is none. Characters that FTS5's tokenizer would drop or change (lone surrogates,
// U+FFFD, NUL) are replaced by kReplaced.
inline constexpr char kTextBorder = '\x1F';
inline constexpr char kReplaced = '\x1E';
std::string trigramText(const Value& value);

// A text to look for in the index of texts, in the form that trigramText() writes. `exact` is false when a
// character of it was replaced, so that hits must be checked.
struct TrigramNeedle {
    std::string text;
    bool exact = true;
};
TrigramNeedle trigramNeedle(std::string_view folded);

// The most properties there may be, and the rowid of a property's text in the table `trigram`.
inline constexpr std::int64_t kMostProperties = 65536;
constexpr std::int64_t trigramRow(std::int64_t record, std::int64_t property) {
    return record * kMostProperties + property;
}

// Merges some segments of a small text index, inside the caller's transaction. Each IndexWriter::flush() adds
// a segment, and every search looks into all of them. The work of one call is bounded; the next one continues
// it.
void tidyTexts(sql::Connection& connection);

// Writes both indexes inside the caller's transaction. Gathers additions and removals and writes them sorted,
// which is many times faster than one by one; call flush() before the transaction ends. Throws StoreError.
class IndexWriter {
  public:
    explicit IndexWriter(sql::Connection& connection) : connection_(connection) {}

    // Adds the entries of a property's [value].
    void add(std::int64_t record, std::int64_t property, const Value& value);
    // Removes the entries that add() wrote for this [value].
    void remove(std::int64_t record, std::int64_t property, const Value& value);
    // Writes what was gathered.
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
