#include "bench/baseline/baseline_book.h"

#include <algorithm>
#include <sqlite3.h>
#include <stdexcept>
#include <unicode/unistr.h>
#include <utility>

namespace bench {
namespace {

constexpr const char* kSchema = R"(
CREATE TABLE person (
    id INTEGER PRIMARY KEY, first TEXT, last TEXT, organization TEXT, job TEXT, birthday REAL, uid BLOB, note TEXT
);
CREATE TABLE person_uid (uid BLOB PRIMARY KEY, person INTEGER) WITHOUT ROWID;
CREATE TABLE phone (person INTEGER, place INTEGER, label TEXT, value TEXT, PRIMARY KEY (person, place)) WITHOUT ROWID;
CREATE TABLE email (person INTEGER, place INTEGER, label TEXT, value TEXT, PRIMARY KEY (person, place)) WITHOUT ROWID;
CREATE TABLE address (person INTEGER, place INTEGER, label TEXT, street TEXT, city TEXT, zip TEXT, country TEXT,
                      code TEXT, PRIMARY KEY (person, place)) WITHOUT ROWID;
CREATE TABLE picture (person INTEGER PRIMARY KEY, data BLOB);
CREATE TABLE team (id INTEGER PRIMARY KEY, uid BLOB, name TEXT);
CREATE TABLE member (team INTEGER, person INTEGER, PRIMARY KEY (team, person)) WITHOUT ROWID;
CREATE TABLE last_key (last TEXT, person INTEGER, PRIMARY KEY (last, person)) WITHOUT ROWID;
CREATE TABLE folded_key (folded TEXT, person INTEGER, PRIMARY KEY (folded, person)) WITHOUT ROWID;
CREATE TABLE reversed_key (reversed BLOB, person INTEGER, PRIMARY KEY (reversed, person)) WITHOUT ROWID;
CREATE TABLE city_key (city TEXT, person INTEGER, PRIMARY KEY (city, person)) WITHOUT ROWID;
CREATE TABLE phone_key (label TEXT, folded TEXT, person INTEGER, PRIMARY KEY (label, folded, person)) WITHOUT ROWID;
CREATE VIRTUAL TABLE part USING fts5(first, last, phone, email, note, content='', columnsize=0, tokenize='trigram');
INSERT INTO part(part, rank) VALUES ('hashsize', 16777216);
)";

constexpr const char* kMobile = "_$!<Mobile>!$_";

std::string fold(std::string_view text) {
    std::string folded;
    icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())))
        .foldCase()
        .toUTF8String(folded);
    return folded;
}

std::string reversed(std::string text) {
    std::reverse(text.begin(), text.end());
    return text;
}

std::string quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

// Returns the 16 bytes of the UUID in a unique id.
std::string packed(std::string_view uid) {
    std::string bytes;
    int high = -1;
    for (const char c : uid.substr(0, uid.find(':'))) {
        if (c == '-') {
            continue;
        }
        const int digit = c <= '9' ? c - '0' : c - 'A' + 10;
        if (high >= 0) {
            bytes.push_back(static_cast<char>(high << 4 | digit));
        }
        high = high >= 0 ? -1 : digit;
    }
    return bytes;
}

// Returns the least text that sorts after all texts with this prefix.
std::string behind(std::string prefix) {
    ++prefix.back();
    return prefix;
}

} // namespace

// One use of a cached statement. Bound text must outlive it.
class BaselineBook::Run {
  public:
    Run(BaselineBook& book, sqlite3_stmt* statement) : book_(book), statement_(statement) {}
    Run(Run&& other) noexcept
        : book_(other.book_), statement_(std::exchange(other.statement_, nullptr)), bound_(other.bound_) {}
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run() {
        if (statement_ != nullptr) {
            sqlite3_reset(statement_);
        }
    }

    Run& bind(std::int64_t value) {
        sqlite3_bind_int64(statement_, ++bound_, value);
        return *this;
    }
    Run& bindReal(double value) {
        sqlite3_bind_double(statement_, ++bound_, value);
        return *this;
    }
    Run& bind(std::string_view text) {
        sqlite3_bind_text64(statement_, ++bound_, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8);
        return *this;
    }
    Run& bindBytes(std::string_view bytes) {
        sqlite3_bind_blob64(statement_, ++bound_, bytes.data(), bytes.size(), SQLITE_STATIC);
        return *this;
    }
    bool step() {
        const int code = sqlite3_step(statement_);
        if (code != SQLITE_ROW && code != SQLITE_DONE) {
            book_.fail();
        }
        return code == SQLITE_ROW;
    }
    std::int64_t integer(int column) { return sqlite3_column_int64(statement_, column); }
    std::string text(int column) {
        const auto* data = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
        return {data != nullptr ? data : "",
                static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
    }

  private:
    BaselineBook& book_;
    sqlite3_stmt* statement_;
    int bound_ = 0;
};

// Gathers the rows of a key table, and writes them in the order of their keys.
class BaselineBook::Keys {
  public:
    void add(std::string key, std::int64_t person) { rows_.emplace_back(std::move(key), person); }
    // Writes the rows. The parameters of [sql] are the key and the person, after a label if there is one.
    void write(BaselineBook& book, const char* sql, bool bytes = false, const char* label = nullptr) {
        std::sort(rows_.begin(), rows_.end());
        for (const auto& [key, person] : rows_) {
            auto run = book.run(sql);
            if (label != nullptr) {
                run.bind(std::string_view(label));
            }
            bytes ? run.bindBytes(key) : run.bind(key);
            run.bind(person).step();
        }
    }

  private:
    std::vector<std::pair<std::string, std::int64_t>> rows_;
};

BaselineBook::BaselineBook(const std::filesystem::path& folder) {
    const std::string file = folder / "Baseline.db";
    const bool isNew = !std::filesystem::exists(file);
    if (sqlite3_open_v2(file.c_str(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                        nullptr) != SQLITE_OK) {
        fail();
    }
    execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL; PRAGMA mmap_size = 4294967296; "
            "PRAGMA cache_size = -65536");
    if (isNew) {
        execute(kSchema);
    }
}

BaselineBook::~BaselineBook() {
    for (const auto& [sql, statement] : statements_) {
        sqlite3_finalize(statement);
    }
    sqlite3_close(db_);
}

BaselineBook::Run BaselineBook::run(const char* sql) {
    sqlite3_stmt*& statement = statements_[sql];
    if (statement == nullptr &&
        sqlite3_prepare_v3(db_, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) != SQLITE_OK) {
        fail();
    }
    return {*this, statement};
}

void BaselineBook::execute(const char* sql) {
    if (sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
        fail();
    }
}

void BaselineBook::fail() const {
    throw std::runtime_error(std::string("the baseline's database: ") + sqlite3_errmsg(db_));
}

void BaselineBook::add(std::size_t first, std::size_t last) {
    add([at = first, last]() mutable {
        return at < last ? std::optional(bench::person(at++)) : std::nullopt;
    });
}

std::int64_t BaselineBook::lastId() {
    auto found = run("SELECT coalesce(max(id), 0) FROM person");
    found.step();
    return found.integer(0);
}

void BaselineBook::add(const std::function<std::optional<Person>()>& next) {
    Keys uids, lasts, folded, backwards, cities;
    std::map<std::string, Keys> phones;
    execute("BEGIN IMMEDIATE");
    for (std::int64_t id = lastId() + 1; const auto given = next(); ++id) {
        const Person& person = *given;
        const std::string uid = packed(person.uid);
        run("INSERT INTO person VALUES (?, ?, ?, ?, ?, ?, ?, ?)")
            .bind(id)
            .bind(person.first)
            .bind(person.last)
            .bind(person.organization)
            .bind(person.jobTitle)
            .bindReal(person.birthday)
            .bindBytes(uid)
            .bind(person.note)
            .step();
        std::string numbers;
        for (std::size_t i = 0; i < person.phones.size(); ++i) {
            const auto& [label, value] = person.phones[i];
            run("INSERT INTO phone VALUES (?, ?, ?, ?)")
                .bind(id)
                .bind(static_cast<std::int64_t>(i))
                .bind(label)
                .bind(value)
                .step();
            phones[label].add(fold(value), id);
            numbers += value + "\n";
        }
        run("INSERT INTO email VALUES (?, 0, ?, ?)")
            .bind(id)
            .bind(person.email.label)
            .bind(person.email.value)
            .step();
        const Address& address = person.address;
        run("INSERT INTO address VALUES (?, 0, ?, ?, ?, ?, ?, ?)")
            .bind(id)
            .bind(address.label)
            .bind(address.street)
            .bind(address.city)
            .bind(address.zip)
            .bind(address.country)
            .bind(address.countryCode)
            .step();
        if (!person.picture.empty()) {
            run("INSERT INTO picture VALUES (?, ?)")
                .bind(id)
                .bindBytes({reinterpret_cast<const char*>(person.picture.data()), person.picture.size()})
                .step();
        }
        run("INSERT INTO part(rowid, first, last, phone, email, note) VALUES (?, ?, ?, ?, ?, ?)")
            .bind(id)
            .bind(person.first)
            .bind(person.last)
            .bind(numbers)
            .bind(person.email.value)
            .bind(person.note)
            .step();
        const std::string key = fold(person.last);
        uids.add(uid, id);
        lasts.add(person.last, id);
        folded.add(key, id);
        backwards.add(reversed(key), id);
        cities.add(address.city, id);
    }
    uids.write(*this, "INSERT INTO person_uid VALUES (?, ?)", true);
    lasts.write(*this, "INSERT INTO last_key VALUES (?, ?)");
    folded.write(*this, "INSERT INTO folded_key VALUES (?, ?)");
    backwards.write(*this, "INSERT INTO reversed_key VALUES (?, ?)", true);
    cities.write(*this, "INSERT INTO city_key VALUES (?, ?)");
    for (auto& [label, keys] : phones) {
        keys.write(*this, "INSERT OR IGNORE INTO phone_key VALUES (?, ?, ?)", false, label.c_str());
    }
    execute("COMMIT");
}

void BaselineBook::addGroups(std::size_t people) {
    execute("BEGIN IMMEDIATE");
    for (std::size_t group = 0; group <= kEverybody; ++group) {
        const auto id = static_cast<std::int64_t>(group + 1);
        const std::string uid = packed(groupUid(group));
        const std::string name = groupName(group);
        run("INSERT INTO team VALUES (?, ?, ?)").bind(id).bindBytes(uid).bind(name).step();
        for (const std::size_t place : membersOf(group, people)) {
            run("INSERT INTO member VALUES (?, ?)")
                .bind(id)
                .bind(static_cast<std::int64_t>(place + 1))
                .step();
        }
    }
    execute("COMMIT");
}

BaselineBook::Ids BaselineBook::idsOf(Run run, bool ordered) {
    Ids ids;
    while (run.step()) {
        ids.push_back(run.integer(0));
    }
    if (!ordered) {
        std::sort(ids.begin(), ids.end());
        ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    }
    return ids;
}

BaselineBook::Ids BaselineBook::prefixed(const char* sql, const char* label, std::string prefix) {
    const std::string end = behind(prefix);
    auto statement = run(sql);
    if (label != nullptr) {
        statement.bind(std::string_view(label));
    }
    statement.bind(prefix).bind(end);
    return idsOf(std::move(statement), false);
}

BaselineBook::Ids BaselineBook::search(Search search) {
    constexpr const char* kParts = "SELECT rowid FROM part WHERE part MATCH ? ORDER BY rowid";
    const auto parts = [&](std::string match) { return idsOf(std::move(run(kParts).bind(match)), true); };
    switch (search) {
    case Search::lastEqual:
        return idsOf(
            std::move(run("SELECT person FROM last_key WHERE last = ? ORDER BY person").bind(wanted::kLast)),
            true);
    case Search::lastContains:
        return parts("last:" + quoted(wanted::kLastPart));
    case Search::phoneContains:
        return parts("phone:" + quoted(wanted::kPhonePart));
    case Search::noteContains:
        return parts("note:" + quoted(wanted::kNotePart));
    case Search::lastPrefix:
        return prefixed("SELECT person FROM folded_key WHERE folded >= ? AND folded < ?", nullptr,
                        fold(wanted::kLastPrefix));
    case Search::lastSuffix: {
        const std::string key = reversed(fold(wanted::kLastSuffix));
        const std::string end = behind(key);
        return idsOf(std::move(run("SELECT person FROM reversed_key WHERE reversed >= ? AND reversed < ?")
                                   .bindBytes(key)
                                   .bindBytes(end)),
                     false);
    }
    case Search::cityEqual:
        return idsOf(
            std::move(run("SELECT person FROM city_key WHERE city = ? ORDER BY person").bind(wanted::kCity)),
            true);
    case Search::mobilePrefix:
        return prefixed("SELECT person FROM phone_key WHERE label = ? AND folded >= ? AND folded < ?",
                        kMobile, fold(wanted::kMobilePrefix));
    case Search::compound: {
        // Intersects the two key tables first, which leaves few people, whose texts are then compared.
        const std::string key = fold(wanted::kLastPrefix);
        const std::string end = behind(key);
        const std::string word = fold(wanted::kNoteWord);
        const std::string mail = fold(wanted::kMailPart);
        Ids ids;
        auto found = run("SELECT f.person, p.note, e.value FROM folded_key f "
                         "CROSS JOIN city_key c ON c.city = ?3 AND c.person = f.person "
                         "CROSS JOIN person p ON p.id = f.person CROSS JOIN email e ON e.person = f.person "
                         "WHERE f.folded >= ?1 AND f.folded < ?2");
        found.bind(key).bind(end).bind(wanted::kCity);
        while (found.step()) {
            if (fold(found.text(1)).find(word) != std::string::npos &&
                fold(found.text(2)).find(mail) != std::string::npos) {
                ids.push_back(found.integer(0));
            }
        }
        std::sort(ids.begin(), ids.end());
        ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
        return ids;
    }
    }
    return {};
}

std::size_t BaselineBook::walk() {
    std::size_t bytes = 0;
    execute("BEGIN");
    {
        auto people = run("SELECT id, first, last, organization FROM person ORDER BY id");
        auto phones = run("SELECT person, value FROM phone ORDER BY person, place");
        bool more = phones.step();
        while (people.step()) {
            const std::int64_t id = people.integer(0);
            for (int column = 1; column <= 3; ++column) {
                bytes += people.text(column).size();
            }
            for (; more && phones.integer(0) == id; more = phones.step()) {
                bytes += phones.text(1).size();
            }
        }
    }
    execute("COMMIT");
    return bytes;
}

std::string BaselineBook::lastName(std::string_view uid) {
    const std::string key = packed(uid);
    auto found = run("SELECT last FROM person_uid CROSS JOIN person ON person.id = person_uid.person "
                     "WHERE person_uid.uid = ?");
    found.bindBytes(key);
    return found.step() ? found.text(0) : std::string();
}

std::string BaselineBook::namesOfEverybody() {
    std::string names;
    auto found = run("SELECT first, last FROM member CROSS JOIN person ON person.id = member.person "
                     "WHERE member.team = ? ORDER BY member.person");
    found.bind(static_cast<std::int64_t>(kEverybody + 1));
    while (found.step()) {
        names += (names.empty() ? "" : "\r") + found.text(0) + " " + found.text(1) + " ";
    }
    return names;
}

void BaselineBook::changeJob(std::int64_t id, std::string_view job) {
    run("UPDATE person SET job = ? WHERE id = ?").bind(job).bind(id).step();
}

} // namespace bench
