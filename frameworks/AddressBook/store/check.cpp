// Looking for damage: what SQLite can see, and what only the address book knows.

#include "impl.h"

#include "card.h"
#include "index.h"

#include <functional>

namespace addressbook {
namespace {

// Rows that a sound address book does not have, and how to say so; one column names the culprit.
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
    {"SELECT id FROM definition WHERE property NOT IN (SELECT id FROM property)",
     "definitions of properties belong to no property"},
    {"SELECT DISTINCT record FROM term WHERE record NOT IN (SELECT id FROM record)",
     "records in the search index do not exist"},
};

// A sum that does not depend on the order in which things are added to it.
class Sum {
  public:
    void add(const std::string& thing) {
        total_ += std::hash<std::string>()(thing);
        ++count_;
    }
    bool operator==(const Sum&) const = default;

  private:
    std::size_t total_ = 0;
    std::size_t count_ = 0;
};

std::string joined(std::initializer_list<std::string_view> parts) {
    std::string out;
    for (const std::string_view part : parts) {
        out += std::to_string(part.size());
        out += ':';
        out += part;
    }
    return out;
}

std::string wordText(const TermWord& word) {
    const auto* text = std::get_if<std::string>(&word);
    return text != nullptr ? "t" + *text : "n" + std::to_string(std::get<std::int64_t>(word));
}

std::string numberText(double value) {
    return "n" + std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

std::string termText(const Term& term) {
    std::string folded = "b";
    if (const auto* text = std::get_if<std::string>(&term.folded))
        folded = "t" + *text;
    else if (const auto* whole = std::get_if<std::int64_t>(&term.folded))
        folded = numberText(static_cast<double>(*whole));
    else if (const auto* real = std::get_if<double>(&term.folded))
        folded = numberText(*real + 0.0);
    return joined({std::to_string(term.property), folded, term.exact, std::to_string(term.record),
                   wordText(term.label), wordText(term.key), std::to_string(term.type)});
}

class Checker {
  public:
    Checker(Store::Impl& impl, Store::Depth depth)
        : impl_(impl), db_(impl.db), indexes_(depth == Store::Depth::everything) {}

    std::vector<std::string> run() {
        attempt([this] { checkDatabase(); });
        for (const Rule& rule : kRules)
            attempt([&] { checkRule(rule); });
        attempt([this] { checkMe(); });
        attempt([this] { checkRecords(); });
        if (recordsAreSound_ && indexes_) {
            attempt([this] { checkTerms(); });
            attempt([this] { checkTrigrams(); });
        }
        return std::move(found_);
    }

  private:
    void attempt(const std::function<void()>& part) {
        try {
            part();
        } catch (const StoreError& error) {
            if (found_.empty() || found_.back() != error.what())
                found_.emplace_back(error.what());
        }
    }

    void checkDatabase() {
        auto run = db_.run("PRAGMA integrity_check");
        while (run.step())
            if (run.text(0) != "ok")
                found_.push_back("The database is damaged: " + std::string(run.text(0)) + ".");
        if (!impl_.opened.readOnly && indexes_) {
            sql::Transaction transaction(db_, sql::Transaction::Mode::write);
            db_.run("INSERT INTO trigram(trigram) VALUES ('integrity-check')").finish();
        }
    }

    void checkRule(const Rule& rule) {
        std::int64_t number = 0;
        std::string first;
        auto run = db_.run(rule.sql);
        while (run.step())
            if (number++ == 0)
                first = std::to_string(run.integer(0));
        if (number > 0)
            found_.push_back(std::to_string(number) + " " + rule.sentence + " (the first: " + first + ").");
    }

    void checkMe() {
        auto run = db_.run("SELECT value FROM meta WHERE name = 'me'");
        if (run.step() && !impl_.record(run.text(0)))
            found_.push_back("The user's own card " + std::string(run.text(0)) + " does not exist.");
    }

    // Every card must be whole; what the indexes should hold is summed up on the way.
    void checkRecords() {
        recordsAreSound_ = false;
        const Backlog backlog = readBacklog(impl_);
        recordsAreSound_ = true;
        auto run = db_.run("SELECT id, kind, uid, creation, modification, card FROM record");
        while (run.step()) {
            try {
                const RecordRow row = impl_.rowFrom(run);
                const auto current = [&](std::string_view name, const Value& value) {
                    const Slot slot{impl_.propertyId(row.kind, name).value_or(0), row.id};
                    if (!backlog.contains(slot))
                        expect(slot, value);
                };
                current(property::kCreation, row.creation);
                current(property::kModification, row.modification);
                for (const auto& [name, value] : impl_.cardValues(row))
                    if (!isInternal(name))
                        current(name, value);
            } catch (const StoreError& error) {
                recordsAreSound_ = false;
                found_.emplace_back(error.what());
            }
        }
        for (const auto& [slot, held] : backlog)
            if (!held.empty())
                expect(slot, decodeValue(held));
    }

    // The indexes should hold this value.
    void expect(const Slot& slot, const Value& value) {
        if (!indexes_)
            return;
        for (const Term& term : termsOf(slot.record, slot.property, value))
            terms_.add(termText(term));
        const std::string text = trigramText(value);
        std::vector<std::size_t> starts;
        for (std::size_t i = 0; i < text.size(); ++i)
            if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80)
                starts.push_back(i);
        starts.push_back(text.size());
        for (std::size_t i = 0; i + 3 < starts.size(); ++i)
            trigrams_.add(
                joined({text.substr(starts[i], starts[i + 3] - starts[i]),
                        std::to_string(trigramRow(slot.record, slot.property)), std::to_string(i)}));
    }

    void checkTerms() {
        Sum held;
        auto run = db_.run("SELECT property, folded, exact, record, label, key, type FROM term");
        const auto word = [&](int column) {
            return run.isText(column) ? TermWord(std::string(run.text(column)))
                                      : TermWord(run.integer(column));
        };
        while (run.step()) {
            Term term;
            term.property = run.integer(0);
            if (run.isText(1))
                term.folded = std::string(run.text(1));
            else if (run.isReal(1))
                term.folded = run.real(1);
            else if (run.isNumber(1))
                term.folded = run.integer(1);
            else
                term.folded = Bytes();
            term.exact = run.text(2);
            term.record = run.integer(3);
            term.label = word(4);
            term.key = word(5);
            term.type = static_cast<int>(run.integer(6));
            held.add(termText(term));
        }
        if (held != terms_)
            found_.emplace_back("The search index (values) does not agree with the records.");
    }

    void checkTrigrams() {
        db_.execute(
            "CREATE VIRTUAL TABLE IF NOT EXISTS temp.trigram_words USING fts5vocab(main, trigram, instance)");
        Sum held;
        auto run = db_.run("SELECT term, doc, offset FROM temp.trigram_words");
        while (run.step())
            held.add(joined({run.text(0), std::to_string(run.integer(1)), std::to_string(run.integer(2))}));
        if (held != trigrams_)
            found_.emplace_back("The search index (text) does not agree with the records.");
    }

    Store::Impl& impl_;
    sql::Connection& db_;
    bool indexes_; // whether they are compared with the records
    bool recordsAreSound_ = true;
    Sum terms_, trigrams_;
    std::vector<std::string> found_;
};

} // namespace

std::vector<std::string> Store::check(Depth depth) const {
    return Checker(*impl_, depth).run();
}

} // namespace addressbook
