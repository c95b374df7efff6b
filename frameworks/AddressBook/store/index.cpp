#include "frameworks/AddressBook/store/index.h"

#include "frameworks/AddressBook/store/interned_words.h"
#include "frameworks/AddressBook/values/comparison.h"
#include "frameworks/AddressBook/values/text.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace addressbook {
namespace {

// The most terms and texts that are gathered in memory before they are written.
constexpr std::size_t kGatheredTerms = 200'000;
constexpr std::size_t kGatheredTexts = 10'000;
// Page budget of one merge of the text index's segments. Above kSmallTextIndex pages the number of segments
// hardly matters, and merging is slow.
constexpr std::int64_t kMergedPages = 64;
constexpr std::int64_t kSmallTextIndex = 512;

// Binds a term's columns in the order of its key.
void bind(sql::Statement& statement, const Term& term) {
    const auto word = [&](const TermWord& value) {
        if (const auto* text = std::get_if<std::string>(&value)) {
            statement.bindText(*text);
        } else {
            statement.bindInteger(std::get<std::int64_t>(value));
        }
    };
    statement.bindInteger(term.property);
    if (const auto* text = std::get_if<std::string>(&term.folded)) {
        statement.bindText(*text);
    } else if (const auto* whole = std::get_if<std::int64_t>(&term.folded)) {
        statement.bindInteger(*whole);
    } else if (const auto* real = std::get_if<double>(&term.folded)) {
        statement.bindReal(*real);
    } else {
        statement.bindBlob({});
    }
    statement.bindText(term.exact).bindInteger(term.record);
    word(term.label);
    word(term.key);
    statement.bindInteger(static_cast<int>(term.type));
}

// Returns a sort key for a term: the first eight bytes of its text, or its number, in the order of the table.
std::uint64_t beginningOf(const Term& term) {
    if (const auto* text = std::get_if<std::string>(&term.folded)) {
        std::uint64_t number = 0;
        for (std::size_t i = 0; i < 8; ++i) {
            number = number << 8 | (i < text->size() ? static_cast<unsigned char>((*text)[i]) : 0U);
        }
        return number;
    }
    double number = 0;
    if (const auto* whole = std::get_if<std::int64_t>(&term.folded)) {
        number = static_cast<double>(*whole);
    } else if (const auto* real = std::get_if<double>(&term.folded)) {
        number = *real;
    }
    const auto bits = std::bit_cast<std::uint64_t>(number);
    return number < 0 ? ~bits : bits | (std::uint64_t{1} << 63);
}

// Runs a statement with the columns of each term, nearly in the order of the table. Sorts places by small
// keys, and by whole texts only where the keys are equal, which takes a fraction of the time of sorting
// terms.
void runForEach(sql::Connection& connection, const char* sql, const std::vector<Term>& terms) {
    struct Place {
        std::int64_t property;
        std::uint64_t beginning;
        const Term* term; // those of earlier records come first
    };
    std::vector<Place> places;
    places.reserve(terms.size());
    for (const Term& term : terms) {
        places.push_back({term.property, beginningOf(term), &term});
    }
    std::sort(places.begin(), places.end(), [](const Place& a, const Place& b) {
        if (a.property != b.property) {
            return a.property < b.property;
        }
        if (a.beginning != b.beginning) {
            return a.beginning < b.beginning;
        }
        const auto* text = std::get_if<std::string>(&a.term->folded);
        const auto* other = std::get_if<std::string>(&b.term->folded);
        if (text != nullptr && other != nullptr) {
            if (const int order = text->compare(*other); order != 0) {
                return order < 0;
            }
        }
        return a.term < b.term;
    });
    auto statement = connection.prepare(sql);
    for (const Place& place : places) {
        bind(statement, *place.term);
        statement.exec();
        statement.reset();
    }
}

Term termOf(std::int64_t record, std::int64_t property, const Leaf& leaf) {
    Term term;
    term.property = property;
    term.record = record;
    term.label = termWord(leaf.label);
    term.key = termWord(leaf.key);
    term.type = termType(leaf.value);
    if (const auto* text = leaf.value.as<std::string>()) {
        const std::string normalized = normalize(*text);
        const std::string folded = foldNormalized(normalized);
        term.exact = beginning(normalized, kTermBytes);
        term.folded = std::string(beginning(folded, kTermBytes));
        if (normalized.size() > kTermBytes || folded.size() > kTermBytes) {
            term.type = TermType::cutText;
        }
    } else if (const auto* whole = leaf.value.as<std::int64_t>()) {
        term.folded = *whole;
    } else if (const auto* real = leaf.value.as<double>(); real != nullptr && !std::isnan(*real)) {
        term.folded = *real;
    } else if (const auto* date = leaf.value.as<Date>(); date != nullptr && !std::isnan(date->seconds)) {
        term.folded = date->seconds;
    } else if (const auto* day = leaf.value.as<FloatingDate>(); day != nullptr && !std::isnan(day->seconds)) {
        term.folded = day->seconds;
    } else {
        term.folded = Bytes();
    }
    return term;
}

// Appends [folded] in the form that the index of texts keeps; returns whether nothing was replaced.
bool appendIndexed(std::string& out, std::string_view folded) {
    bool unchanged = true;
    for (std::size_t i = 0; i < folded.size(); ++i) {
        const char c = folded[i];
        if (c == '\0' || c == kTextBorder || c == kReplaced) {
            out.push_back(kReplaced);
            unchanged = false;
        } else if (c == '\xED' && i + 2 < folded.size() &&
                   static_cast<unsigned char>(folded[i + 1]) >= 0xA0) {
            out.push_back(kReplaced); // a surrogate
            unchanged = false;
            i += 2;
        } else if (c == '\xEF' && folded.substr(i, 2) == "\xEF\xBF" && i + 2 < folded.size() &&
                   folded[i + 2] >= '\xBD') {
            out.push_back(kReplaced); // U+FFFD, and what the tokenizer turns into it
            unchanged = false;
            i += 2;
        } else {
            out.push_back(c);
        }
    }
    return unchanged;
}

} // namespace

TermType termType(const Value& value) {
    struct Types {
        TermType operator()(std::monostate) const { return TermType::none; }
        TermType operator()(const std::string&) const { return TermType::text; }
        TermType operator()(std::int64_t) const { return TermType::integer; }
        TermType operator()(double) const { return TermType::real; }
        TermType operator()(const Date&) const { return TermType::date; }
        TermType operator()(const FloatingDate&) const { return TermType::floatingDate; }
        TermType operator()(const DateComponents&) const { return TermType::dateComponents; }
        TermType operator()(const Bytes&) const { return TermType::data; }
        TermType operator()(const Array&) const { return TermType::array; }
        TermType operator()(const Dictionary&) const { return TermType::dictionary; }
        TermType operator()(const MultiValue&) const { return TermType::emptyList; }
    };
    return std::visit(Types{}, static_cast<const Value::variant&>(value));
}

void bindWord(sql::Statement& statement, std::string_view word) {
    if (const int code = wordCode(word)) {
        statement.bindInteger(code);
    } else {
        statement.bindText(word);
    }
}

TermWord termWord(const std::string* word) {
    if (word == nullptr) {
        return std::int64_t{0};
    }
    if (const int code = wordCode(*word)) {
        return std::int64_t{code};
    }
    return *word;
}

std::vector<Term> termsOf(std::int64_t record, std::int64_t property, const Value& value) {
    std::vector<Term> terms;
    visitLeaves(value, [&](const Leaf& leaf) {
        // A dictionary with fields is represented by the terms of its fields.
        const auto* fields = leaf.value.as<Dictionary>();
        if (fields == nullptr || fields->empty() || leaf.key != nullptr) {
            terms.push_back(termOf(record, property, leaf));
        }
        return false;
    });
    if (terms.empty() && !value.empty()) {
        Term& term = terms.emplace_back();
        term.property = property;
        term.record = record;
        term.folded = Bytes();
        term.type = TermType::emptyList;
    }
    std::sort(terms.begin(), terms.end());
    terms.erase(std::unique(terms.begin(), terms.end()), terms.end());
    return terms;
}

std::string trigramText(const Value& value) {
    std::string out;
    visitLeaves(value, [&](const Leaf& leaf) {
        if (const auto* text = leaf.value.as<std::string>()) {
            if (out.empty()) {
                out.push_back(kTextBorder);
            }
            appendIndexed(out, fold(*text));
            out.push_back(kTextBorder);
        }
        return false;
    });
    return out;
}

TrigramNeedle trigramNeedle(std::string_view folded) {
    TrigramNeedle needle;
    needle.exact = appendIndexed(needle.text, folded);
    return needle;
}

void tidyTexts(sql::Connection& connection) {
    const bool isSmall = [&] {
        auto pages = connection.prepare("SELECT count(*) FROM (SELECT 1 FROM trigram_data LIMIT ?)");
        pages.bindInteger(kSmallTextIndex + 1);
        return pages.step() && pages.integer(0) <= kSmallTextIndex;
    }();
    if (isSmall) {
        connection.prepare("INSERT INTO trigram(trigram, rank) VALUES ('merge', ?)")
            .bindInteger(kMergedPages)
            .exec();
    }
}

void IndexWriter::add(std::int64_t record, std::int64_t property, const Value& value) {
    auto terms = termsOf(record, property, value);
    std::move(terms.begin(), terms.end(), std::back_inserter(terms_));
    addText(record, property, value, Step::add);
    if (terms_.size() >= kGatheredTerms) {
        flush();
    }
}

void IndexWriter::remove(std::int64_t record, std::int64_t property, const Value& value) {
    if (!terms_.empty()) {
        flush(); // it may have been added just now
    }
    auto terms = termsOf(record, property, value);
    std::move(terms.begin(), terms.end(), std::back_inserter(removed_));
    addText(record, property, value, Step::remove);
    if (removed_.size() >= kGatheredTerms) {
        flush();
    }
}

void IndexWriter::addText(std::int64_t record, std::int64_t property, const Value& value, Step step) {
    if (std::string text = trigramText(value); !text.empty()) {
        texts_.push_back({trigramRow(record, property), step, std::move(text)});
    }
    if (texts_.size() >= kGatheredTexts) {
        flushTexts();
    }
}

void IndexWriter::flush() {
    runForEach(
        connection_,
        "DELETE FROM term WHERE property = ? AND folded = ? AND exact = ? AND record = ? AND label = ? "
        "AND key = ? AND type = ?",
        removed_);
    removed_.clear();
    runForEach(connection_,
               "INSERT INTO term(property, folded, exact, record, label, key, type) "
               "VALUES (?, ?, ?, ?, ?, ?, ?)",
               terms_);
    terms_.clear();
    flushTexts();
}

void IndexWriter::flushTexts() {
    // In ascending order of rows: FTS5 starts a new segment whenever a row does not follow the one before.
    std::sort(texts_.begin(), texts_.end());
    auto adding = connection_.prepare("INSERT INTO trigram(rowid, text) VALUES (?, ?)");
    auto removing = connection_.prepare("INSERT INTO trigram(trigram, rowid, text) VALUES ('delete', ?, ?)");
    for (const Text& text : texts_) {
        auto& statement = text.step == Step::add ? adding : removing;
        statement.bindInteger(text.row).bindText(text.text).exec();
        statement.reset();
    }
    texts_.clear();
}

} // namespace addressbook
