// Store::check(): damage that SQLite can see, and contradictions that only the address book can.

#include "frameworks/AddressBook/store/impl.h"

#include "frameworks/AddressBook/store/deflate.h"
#include "frameworks/AddressBook/store/index.h"
#include "frameworks/AddressBook/store/record_codec.h"
#include "frameworks/AddressBook/values/text.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>
#include <set>

namespace addressbook {
namespace {

// A query for rows that a sound address book does not have. Its column is the number of the row at fault.
struct Rule {
    const char* sql;
    const char* sentence; // follows "N"
};
constexpr Rule kRules[] = {
    {"SELECT id FROM record WHERE kind NOT IN (0, 1)", "records are neither person nor group"},
    {"SELECT record FROM picture WHERE record NOT IN (SELECT id FROM record)",
     "pictures belong to no record"},
    {"SELECT member FROM membership WHERE member NOT IN (SELECT id FROM record)",
     "members of groups do not exist"},
    {"SELECT parent FROM membership WHERE parent NOT IN (SELECT id FROM record WHERE kind = 1)",
     "memberships belong to no group"},
    {"SELECT member FROM membership JOIN record ON record.id = member WHERE record.kind <> membership.kind",
     "memberships take a person for a group or a group for a person"},
    {"WITH RECURSIVE below(top, id) AS (SELECT parent, member FROM membership WHERE kind = 1 UNION SELECT "
     "top, member "
     "FROM below JOIN membership ON parent = below.id WHERE kind = 1) SELECT top FROM below WHERE top = id",
     "groups contain themselves"},
    {"SELECT id FROM record WHERE id IN (SELECT id FROM deleted)", "records are noted as deleted"},
    {"SELECT id FROM definition WHERE property NOT IN (SELECT id FROM property)",
     "definitions of properties belong to no property"},
    {"SELECT id FROM collection WHERE account NOT IN (SELECT id FROM account)",
     "address books on servers belong to no account"},
    {"SELECT id FROM link WHERE collection NOT IN (SELECT id FROM collection)",
     "cards on servers belong to no address book there"},
};

// A hash over everything that is added to it, in order.
class Hash {
  public:
    Hash& number(std::int64_t value) { return word(static_cast<std::uint64_t>(value)); }
    // -0.0 and 0.0 are equal numbers and give equal hashes.
    Hash& real(double value) { return word(std::bit_cast<std::uint64_t>(value + 0.0)); }
    Hash& bytes(std::string_view bytes) {
        word(bytes.size());
        for (; bytes.size() >= 8; bytes.remove_prefix(8)) {
            std::uint64_t eight = 0;
            std::memcpy(&eight, bytes.data(), 8);
            word(eight);
        }
        std::uint64_t rest = 0;
        for (const char c : bytes) {
            rest = rest << 8 | static_cast<unsigned char>(c);
        }
        return word(rest);
    }
    std::uint64_t value() const { return state_; }

  private:
    Hash& word(std::uint64_t word) {
        state_ = (state_ ^ word) * 0x9E3779B97F4A7C15U;
        state_ = (state_ ^ state_ >> 32) * 0xD6E8FEB86659FD93U;
        state_ ^= state_ >> 29;
        return *this;
    }
    std::uint64_t state_ = 0x2545F4914F6CDD1DU;
};

// A sum of hashes that does not depend on the order in which they are added.
class Sum {
  public:
    void add(const Hash& hash) {
        total_ += hash.value();
        ++count_;
    }
    std::size_t count() const { return count_; }
    bool operator==(const Sum&) const = default;

  private:
    std::uint64_t total_ = 0;
    std::size_t count_ = 0;
};

// Hashed before each value, so that the number 1 and the text "1" differ.
enum class Typed { number, text, bytes };

void add(Hash& hash, Typed type) {
    hash.number(static_cast<int>(type));
}

void add(Hash& hash, const TermWord& word) {
    const auto* text = std::get_if<std::string_view>(&word);
    add(hash, text != nullptr ? Typed::text : Typed::number);
    text != nullptr ? hash.bytes(*text) : hash.number(std::get<std::int64_t>(word));
}

Hash hashOf(const Term& term) {
    Hash hash;
    hash.number(term.property);
    if (const auto* text = std::get_if<std::string_view>(&term.folded)) {
        add(hash, Typed::text);
        hash.bytes(*text);
    } else if (std::holds_alternative<std::monostate>(term.folded)) {
        add(hash, Typed::bytes);
        hash.bytes({});
    } else {
        const auto* whole = std::get_if<std::int64_t>(&term.folded);
        add(hash, Typed::number);
        hash.real(whole != nullptr ? static_cast<double>(*whole) : std::get<double>(term.folded));
    }
    hash.bytes(term.exact).number(term.record);
    add(hash, term.label);
    add(hash, term.key);
    return hash.number(static_cast<int>(term.type));
}

// Returns the hash of a row of the table `term`, which equals hashOf() of the Term that it was written from.
Hash hashOfTerm(const sql::Statement& statement) {
    Hash hash;
    const auto value = [&](int column) {
        if (statement.isText(column)) {
            add(hash, Typed::text);
            hash.bytes(statement.text(column));
        } else if (statement.isNumber(column)) {
            add(hash, Typed::number);
            hash.real(statement.real(column));
        } else {
            add(hash, Typed::bytes);
            hash.bytes(statement.blob(column));
        }
    };
    const auto word = [&](int column) {
        const bool isText = statement.isText(column);
        add(hash, isText ? Typed::text : Typed::number);
        isText ? hash.bytes(statement.text(column)) : hash.number(statement.integer(column));
    };
    hash.number(statement.integer(0));
    value(1);
    hash.bytes(statement.text(2)).number(statement.integer(3));
    word(4);
    word(5);
    return hash.number(statement.integer(6));
}

// Returns the hash of one occurrence of a trigram: [text] is the rowid in the index, [place] the number of
// characters before it.
Hash hashOf(Hash trigram, std::int64_t text, std::int64_t place) {
    return trigram.number(text).number(place);
}

// Which share of the time a check has taken when each of its parts is done.
constexpr double kDatabaseShare = 0.3, kRecordsShare = 0.55, kTermsShare = 0.75;

class Checker {
  public:
    Checker(const Store& store, Store::Impl& impl, Store::Depth depth, const Progress& progress)
        : store_(store), impl_(impl), db_(impl.db), indexes_(depth == Store::Depth::everything),
          progress_(progress) {}

    std::vector<std::string> run() {
        checkOneMoment();
        attempt([this] { checkTrigramStructure(); });
        return std::move(found_);
    }

  private:
    // In one read transaction, so that saves of other processes are not taken for contradictions.
    void checkOneMoment() {
        const Store::ReadTransaction oneMoment(store_);
        attempt([this] { checkDatabase(); });
        for (const Rule& rule : kRules) {
            attempt([&] { checkRule(rule); });
        }
        attempt([this] { checkMe(); });
        attempt([this] { checkSync(); });
        attempt([this] { checkRecords(); });
        attempt([this] { checkPictures(); });
        attempt([this] { checkTerms(); });
        if (indexes_ && recordsAreKnown_ && recordsAreSound_) {
            attempt([this] { checkTrigrams(); });
        }
    }

    void attempt(const std::function<void()>& part) {
        try {
            part();
        } catch (const StoreError& error) {
            if (error.reason() == StoreError::Reason::memory) {
                throw; // which says nothing about the book
            }
            if (found_.empty() || found_.back() != error.what()) {
                found_.emplace_back(error.what());
            }
        }
    }

    void checkDatabase() {
        auto statement = db_.prepare("PRAGMA integrity_check");
        while (statement.step()) {
            if (statement.text(0) != "ok") {
                found_.push_back("The database is damaged: " + std::string(statement.text(0)) + ".");
            }
        }
    }

    void checkRule(const Rule& rule) {
        std::size_t number = 0;
        std::int64_t first = 0;
        auto statement = db_.prepare(rule.sql);
        while (statement.step()) {
            if (number++ == 0) {
                first = statement.integer(0);
            }
        }
        if (number > 0) {
            report(number, rule.sentence, first);
        }
    }

    void checkMe() {
        auto statement = db_.prepare("SELECT value FROM meta WHERE name = 'me'");
        if (statement.step() && !impl_.record(statement.text(0))) {
            found_.push_back("The user's own card " + std::string(statement.text(0)) + " does not exist.");
        }
    }

    // Reads every record, and sums up what the indexes should hold of it.
    void checkRecords() {
        recordsAreSound_ = false;
        const Backlog backlog = readBacklog(impl_);
        endings_ = endingProperties(db_);
        recordsAreSound_ = true;
        const auto records = static_cast<std::size_t>(store_.count(Kind::person) + store_.count(Kind::group));
        auto statement =
            db_.prepare("SELECT id, kind, uid, creation, modification, card FROM record ORDER BY id");
        while (statement.step()) {
            tellProgress(progress_, rows_.size(), records, kDatabaseShare, kRecordsShare);
            rows_.push_back(statement.integer(0));
            try {
                const RecordRow row = impl_.rowFrom(statement);
                const auto current = [&](std::string_view name, std::string_view value) {
                    const PropertyRef ref{impl_.propertyId(row.kind, name).value_or(0), row.id};
                    if (!backlog.contains(ref)) {
                        expect(ref, value);
                    }
                };
                current(property::kCreation, encodeValue(row.creation));
                current(property::kModification, encodeValue(row.modification));
                impl_.visitValues(row, [&](std::string_view name, std::string_view value) {
                    isInternal(name) ? static_cast<void>(decodeValue(value)) : current(name, value);
                });
            } catch (const StoreError& error) {
                recordsAreSound_ = false;
                found_.emplace_back(error.what());
            }
        }
        for (const auto& [ref, held] : backlog) {
            if (!held.empty()) {
                try {
                    expect(ref, held);
                } catch (const DamagedRecord& error) {
                    recordsAreSound_ = false;
                    attempt([&] { impl_.reportDamage(std::string("the change log: ") + error.what()); });
                }
            }
        }
        recordsAreKnown_ = true;
    }

    void checkPictures() {
        auto statement = db_.prepare("SELECT record FROM picture");
        while (statement.step()) {
            attempt([&] { impl_.picture(statement.integer(0)); });
        }
    }

    // Adds what the indexes should hold of an encoded value to the sums.
    void expect(const PropertyRef& ref, std::string_view value) {
        entries_.clear();
        entries_.add(ref.record, ref.property, value);
        if (endings_.contains(ref.property)) {
            entries_.addEndings(ref.record, ref.property, value);
        }
        if (!indexes_) {
            return;
        }
        for (const Term& term : entries_.terms()) {
            terms_.add(hashOf(term));
        }
        for (const IndexedText& text : entries_.texts()) {
            expectTrigrams(text.text, text.row);
        }
    }

    void expectTrigrams(std::string_view text, std::int64_t row) {
        // The places where the last three characters begin.
        std::size_t starts[3] = {};
        std::int64_t characters = 0;
        const auto behind = [&](std::size_t end) {
            if (characters >= 3) {
                trigrams_.add(
                    hashOf(Hash().bytes(text.substr(starts[characters % 3], end - starts[characters % 3])),
                           row, characters - 3));
            }
        };
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (!isContinuation(text[i])) {
                behind(i);
                starts[characters++ % 3] = i;
            }
        }
        behind(text.size());
    }

    // Compares the terms with those of the records; when some record is damaged, only looks for terms of
    // records that do not exist.
    void checkTerms() {
        if (!recordsAreKnown_) {
            return;
        }
        Sum held;
        std::set<RowId> strays;
        RowId first = 0;
        std::size_t done = 0;
        auto statement = db_.prepare("SELECT property, folded, exact, record, label, key, type FROM term");
        while (statement.step()) {
            // There are as many values as the records have, when these were summed up and nothing is damaged.
            ++done;
            tellProgress(progress_, done, std::max(done, terms_.count()), kRecordsShare, kTermsShare);
            if (indexes_) {
                held.add(hashOfTerm(statement));
            }
            const RowId row = statement.integer(3);
            if (!std::binary_search(rows_.begin(), rows_.end(), row) && strays.insert(row).second &&
                strays.size() == 1) {
                first = row;
            }
        }
        if (!strays.empty()) {
            report(strays.size(), "records in the search index do not exist", first);
        }
        if (indexes_ && recordsAreSound_ && held != terms_) {
            found_.emplace_back("The search index (values) does not agree with the records.");
        }
    }

    // Reads all that is noted for servers.
    void checkSync() {
        store_.syncAccounts();
        store_.syncConflicts();
        auto statement = db_.prepare("SELECT id, text FROM link");
        while (statement.step()) {
            if (!inflated(statement.blob(1))) {
                report(1, "card as it was agreed with a server cannot be read", statement.integer(0));
                return;
            }
        }
    }

    // Compares the trigrams with those of the records. trigram_terms says how often each occurs, and
    // trigram_places where, in the same order.
    void checkTrigrams() {
        db_.execute(
            "CREATE VIRTUAL TABLE IF NOT EXISTS temp.trigram_terms USING fts5vocab(main, trigram, row);"
            "CREATE VIRTUAL TABLE IF NOT EXISTS temp.trigram_places USING fts5vocab(main, trigram, "
            "instance)");
        Sum held;
        auto terms = db_.prepare("SELECT term, cnt FROM temp.trigram_terms");
        auto places = db_.prepare("SELECT doc, offset FROM temp.trigram_places");
        while (terms.step()) {
            const Hash trigram = Hash().bytes(terms.text(0));
            for (std::int64_t left = terms.integer(1); left > 0 && places.step(); --left) {
                tellProgress(progress_, held.count(), std::max(held.count(), trigrams_.count()), kTermsShare,
                             1);
                held.add(hashOf(trigram, places.integer(0), places.integer(1)));
            }
        }
        if (held != trigrams_) {
            found_.emplace_back("The search index (text) does not agree with the records.");
        }
    }

    // FTS5's own check of the index, a statement that only a book that may be written can run.
    void checkTrigramStructure() {
        if (impl_.opened.readOnly || !indexes_) {
            return;
        }
        sql::Transaction transaction(db_, sql::Transaction::Mode::write);
        db_.prepare("INSERT INTO trigram(trigram) VALUES ('integrity-check')").exec();
    }

    void report(std::size_t number, const char* sentence, std::int64_t first) {
        found_.push_back(std::to_string(number) + " " + sentence + " (the first: " + std::to_string(first) +
                         ").");
    }

    const Store& store_;
    Store::Impl& impl_;
    sql::Connection& db_;
    bool indexes_; // whether they are compared with the records
    const Progress& progress_;
    std::vector<RowId> rows_;      // of all records, ascending
    bool recordsAreKnown_ = false; // all their rows
    bool recordsAreSound_ = true;  // and what is in them
    IndexEntries entries_;         // of one value
    EndingProperties endings_;
    Sum terms_, trigrams_;
    std::vector<std::string> found_;
};

} // namespace

std::vector<std::string> Store::check(Depth depth, const Progress& progress) const {
    return Checker(*this, *impl_, depth, progress).run();
}

} // namespace addressbook
