#include "frameworks/AddressBook/store/index.h"

#include "frameworks/AddressBook/store/interned_words.h"

#include <algorithm>
#include <bit>
#include <string>
#include <utility>
#include <vector>

namespace addressbook {
namespace {

// The most terms, and bytes of text, that are gathered in memory before they are written.
constexpr std::size_t kGatheredTerms = 80'000;
constexpr std::size_t kGatheredBytes = std::size_t{4} * 1024 * 1024;
// Rows that one statement inserts: much of what an insertion costs is spent once a statement.
constexpr std::size_t kRowsAtOnce = 16;
// Page budget of one merge of the text index's segments. Above kSmallTextIndex pages the number of segments
// hardly matters, and merging is slow.
constexpr std::int64_t kMergedPages = 64;
constexpr std::int64_t kSmallTextIndex = 512;

bool isFull(const IndexEntries& entries) {
    return entries.terms().size() >= kGatheredTerms || entries.bytes() >= kGatheredBytes;
}

void bind(sql::Statement& statement, const TermWord& word) {
    if (const auto* text = std::get_if<std::string_view>(&word)) {
        statement.bindText(*text);
    } else {
        statement.bindInteger(std::get<std::int64_t>(word));
    }
}

// Binds a term's columns in the order of its key.
void bind(sql::Statement& statement, const Term& term) {
    statement.bindInteger(term.property);
    if (const auto* text = std::get_if<std::string_view>(&term.folded)) {
        statement.bindText(*text);
    } else if (const auto* whole = std::get_if<std::int64_t>(&term.folded)) {
        statement.bindInteger(*whole);
    } else if (const auto* real = std::get_if<double>(&term.folded)) {
        statement.bindReal(*real);
    } else {
        statement.bindBlob({});
    }
    statement.bindText(term.exact).bindInteger(term.record);
    bind(statement, term.label);
    bind(statement, term.key);
    statement.bindInteger(static_cast<int>(term.type));
}

// Returns a sort key for a term: the first eight bytes of its text, or its number, in the order of the table.
std::uint64_t beginningOf(const Term& term) {
    if (const auto* text = std::get_if<std::string_view>(&term.folded)) {
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

struct Place {
    std::int64_t property;
    std::uint64_t beginning;
    const Term* term; // those of earlier records come first
};

// Returns the terms nearly in the order of the table. Sorts places by small keys, and by whole texts only
// where the keys are equal, which takes a fraction of the time of sorting terms.
std::vector<Place> sorted(const std::vector<Term>& terms) {
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
        const auto* text = std::get_if<std::string_view>(&a.term->folded);
        const auto* other = std::get_if<std::string_view>(&b.term->folded);
        if (text != nullptr && other != nullptr) {
            if (const int order = text->compare(*other); order != 0) {
                return order < 0;
            }
        }
        return a.term < b.term;
    });
    return places;
}

// Returns a statement that inserts [rows] terms. A failure need not undo the statement alone, as it ends the
// transaction: SQLite does not keep the pages as they were before it.
std::string insertion(std::size_t rows) {
    std::string sql = "INSERT OR FAIL INTO term(property, folded, exact, record, label, key, type) VALUES ";
    for (std::size_t row = 0; row < rows; ++row) {
        sql += row == 0 ? "(?, ?, ?, ?, ?, ?, ?)" : ", (?, ?, ?, ?, ?, ?, ?)";
    }
    return sql;
}

void insert(sql::Connection& connection, const std::vector<Term>& terms) {
    static const std::string kMany = insertion(kRowsAtOnce);
    static const std::string kOne = insertion(1);
    const std::vector<Place> places = sorted(terms);
    std::size_t at = 0;
    const auto insertRows = [&](const std::string& sql, std::size_t rows) {
        auto statement = connection.prepareText(sql);
        for (; places.size() - at >= rows; statement.reset()) {
            for (const std::size_t end = at + rows; at < end; ++at) {
                bind(statement, *places[at].term);
            }
            statement.exec();
        }
    };
    insertRows(kMany, kRowsAtOnce);
    insertRows(kOne, 1);
}

void remove(sql::Connection& connection, const std::vector<Term>& terms) {
    auto statement = connection.prepare(
        "DELETE FROM term WHERE property = ? AND folded = ? AND exact = ? AND record = ? AND label = ? "
        "AND key = ? AND type = ?");
    for (const Place& place : sorted(terms)) {
        bind(statement, *place.term);
        statement.exec();
        statement.reset();
    }
}

} // namespace

void bindWord(sql::Statement& statement, std::string_view word) {
    if (const int code = wordCode(word)) {
        statement.bindInteger(code);
    } else {
        statement.bindText(word);
    }
}

void tidyTexts(sql::Connection& connection) {
    const bool isSmall = [&] {
        auto pages = connection.prepare("SELECT count(*) FROM (SELECT 1 FROM trigram_data LIMIT ?)");
        pages.bindInteger(kSmallTextIndex + 1);
        return pages.firstNumber() <= kSmallTextIndex;
    }();
    if (isSmall) {
        connection.prepare("INSERT INTO trigram(trigram, rank) VALUES ('merge', ?)")
            .bindInteger(kMergedPages)
            .exec();
    }
}

EndingProperties endingProperties(sql::Connection& connection) {
    EndingProperties properties;
    auto statement = connection.prepare("SELECT id FROM property WHERE endings IS NOT NULL");
    while (statement.step()) {
        properties.insert(statement.integer(0));
    }
    return properties;
}

bool hasEndings(sql::Connection& connection, std::int64_t property) {
    auto statement = connection.prepare("SELECT 1 FROM property WHERE id = ? AND endings IS NOT NULL");
    statement.bindInteger(property);
    return statement.step();
}

void IndexWriter::add(std::int64_t record, std::int64_t property, std::string_view value) {
    added_.add(record, property, value);
    if (endings_.contains(property)) {
        added_.addEndings(record, property, value);
    }
    if (isFull(added_)) {
        flush();
    }
}

void IndexWriter::remove(std::int64_t record, std::int64_t property, std::string_view value) {
    if (!added_.empty()) {
        flush(); // it may have been added just now
    }
    removed_.add(record, property, value);
    if (endings_.contains(property)) {
        removed_.addEndings(record, property, value);
    }
    if (isFull(removed_)) {
        flush();
    }
}

void IndexWriter::flush() {
    addressbook::remove(connection_, removed_.terms());
    insert(connection_, added_.terms());
    flushTexts();
    removed_.clear();
    added_.clear();
}

bool IndexWriter::beginEndings(std::int64_t property) {
    if (!endings_.insert(property).second) {
        return false;
    }
    connection_.prepare("UPDATE property SET endings = 1 WHERE id = ?").bindInteger(property).exec();
    return true;
}

void IndexWriter::addEndings(std::int64_t record, std::int64_t property, std::string_view value) {
    added_.addEndings(record, property, value);
    if (isFull(added_)) {
        flush();
    }
}

bool IndexWriter::endEndings(std::int64_t property) {
    if (endings_.erase(property) == 0) {
        return false;
    }
    flush();
    connection_.prepare("UPDATE property SET endings = NULL WHERE id = ?").bindInteger(property).exec();
    connection_.prepare("DELETE FROM term WHERE property = ?").bindInteger(endingsOf(property)).exec();
    return true;
}

void IndexWriter::flushTexts() {
    struct Step {
        std::int64_t row;
        bool adds; // after removing
        const IndexedText* text;
    };
    std::vector<Step> steps;
    steps.reserve(removed_.texts().size() + added_.texts().size());
    for (const IndexedText& text : removed_.texts()) {
        steps.push_back({text.row, false, &text});
    }
    for (const IndexedText& text : added_.texts()) {
        steps.push_back({text.row, true, &text});
    }
    // In ascending order of rows: FTS5 starts a new segment whenever a row does not follow the one before.
    std::sort(steps.begin(), steps.end(), [](const Step& a, const Step& b) {
        return std::pair(a.row, a.adds) < std::pair(b.row, b.adds);
    });
    auto adding = connection_.prepare("INSERT INTO trigram(rowid, text) VALUES (?, ?)");
    auto removing = connection_.prepare("INSERT INTO trigram(trigram, rowid, text) VALUES ('delete', ?, ?)");
    for (const Step& step : steps) {
        auto& statement = step.adds ? adding : removing;
        statement.bindInteger(step.row).bindText(step.text->text).exec();
        statement.reset();
    }
}

} // namespace addressbook
