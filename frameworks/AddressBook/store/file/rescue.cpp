// In this order: opening the damaged file, reading its records and what refers to them, writing the new book.

#include "frameworks/AddressBook/store/file/rescue.h"

#include "frameworks/AddressBook/store/checksum.h"
#include "frameworks/AddressBook/store/deflate.h"
#include "frameworks/AddressBook/store/file/paths.h"
#include "frameworks/AddressBook/store/file/sidecars.h"
#include "frameworks/AddressBook/store/record_codec.h"
#include "frameworks/AddressBook/values/uid.h"

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <set>

namespace addressbook {
namespace {

namespace fs = std::filesystem;
using Reason = StoreError::Reason;

constexpr std::chrono::seconds kBusyTimeout{10};
constexpr std::int64_t kSyncVersion = 7; // of the first books that are kept in step with servers
constexpr std::size_t kPageSize = 4096;  // bytes; every address book has this size of page

// Whether an error says that something cannot be read, rather than that there is no room or no memory to do so.
bool isDamage(const StoreError& error) {
    return error.reason() != Reason::full && error.reason() != Reason::memory;
}

// A rescue from the copy [damaged], whose name for errors is [file], into the new book [made].
class Rescue {
  public:
    Rescue(const fs::path& file, const fs::path& damaged, Store::Impl& made, const Progress& progress)
        : file_(file), damaged_(damaged), made_(made), progress_(progress) {}

    std::vector<std::string> run() {
        open();
        sql::Transaction transaction(made_.db, sql::Transaction::Mode::write);
        readProperties();
        readEndings();
        readRecords();
        readMemberships();
        readMe();
        readSync();
        transaction.commit();
        made_.rebuildIndexes();
        return std::move(lost_);
    }

  private:
    // Opening.
    void open();
    bool attempt();
    void lendFirstPage();

    // Whether the damaged book's definitions have the column; those of older versions lack some.
    bool knows(const char* table, const char* column) const;
    // Calls [row] with each row that can be read, of the record [id] where the statement has a parameter; returns false
    // when some cannot. What [row] throws passes: what can be read but not written is no damage.
    bool scan(const std::string& sql, const std::function<void(const sql::Statement&)>& row,
              std::optional<RowId> id = {});
    // Calls [row] with each row of [select] in this [order], from both ends when it breaks in the middle;
    // returns false when some cannot be read.
    bool scanBothWays(const std::string& select, const std::string& order,
                      const std::function<void(const sql::Statement&)>& row);

    void readProperties();
    void readRecords();
    void readRecord(RowId id);
    std::string takeRecord(RowId id, const sql::Statement& statement);
    std::string uidFor(RowId id, const sql::Statement& statement);
    std::map<std::string, std::string> readable(std::string_view blob, Kind kind) const;
    void readPicture(RowId id, const std::string& name);
    void readEndings();
    void readMemberships();
    void readMe();
    void readSync();
    bool copyRows(const char* table, const char* columns, const char* order);

    const fs::path& file_;
    const fs::path& damaged_;
    Store::Impl& made_;
    const Progress& progress_;
    std::unique_ptr<sql::Connection> db_;
    std::optional<StoreError> problem_;   // of the last attempt to open it
    std::set<std::string> properties_[2]; // names of known properties, by Kind
    std::map<RowId, std::string> uids_;   // by the index of unique ids; empty text when it has none
    std::map<RowId, Kind> rescued_;
    std::vector<std::string> lost_;
};

// Opening

void Rescue::open() {
    if (attempt()) {
        return;
    }
    db_.reset();
    fs::remove(sidecarPath(damaged_, "-shm"));
    if (fs::remove(sidecarPath(damaged_, "-wal")) && attempt()) {
        lost_.emplace_back("The changes that were only in the log cannot be read.");
        return;
    }
    lendFirstPage();
    if (attempt()) {
        lost_.emplace_back("The file's first page was damaged; its log was left out.");
        return;
    }
    if (problem_ && problem_->reason() == Reason::io) {
        throw *problem_; // such as a disk without room for SQLite's own files
    }
    throw StoreError(Reason::damaged, file_, "cannot be repaired, nothing in it can be read",
                     "restore it from a backup");
}

// Opens the damaged copy; returns whether the table of records can be queried.
bool Rescue::attempt() {
    try {
        db_ = std::make_unique<sql::Connection>(file_, databaseUri(damaged_),
                                                SQLITE_OPEN_READWRITE | SQLITE_OPEN_URI, kBusyTimeout);
        setWalAtClose(*db_, WalAtClose::keep); // the log may be what is damaged
        // Lets SQLite read a file that is too short or has damaged definitions.
        db_->execute("PRAGMA writable_schema = ON; PRAGMA cell_size_check = ON; PRAGMA trusted_schema = OFF");
        db_->prepare("SELECT id, kind, uid, creation, modification, card FROM record WHERE id = 1").step();
        return true;
    } catch (const StoreError& error) {
        if (!isDamage(error)) {
            throw;
        }
        problem_ = error;
        // Only that record may be damaged, so look whether the table is known.
        return db_ && knows("record", "card");
    }
}

bool Rescue::knows(const char* table, const char* column) const {
    const int code = sqlite3_table_column_metadata(db_->handle(), "main", table, column, nullptr, nullptr,
                                                   nullptr, nullptr, nullptr);
    if (code == SQLITE_NOMEM) {
        db_->fail(code);
    }
    return code == SQLITE_OK;
}

// Replaces the first page, which holds the definitions of all tables, by that of the new book: but for some
// counters it is the same in every address book of a version.
void Rescue::lendFirstPage() {
    db_.reset();
    made_.db.execute("PRAGMA wal_checkpoint(TRUNCATE)");
    std::string page(kPageSize, '\0');
    std::ifstream(made_.db.file(), std::ios::binary).read(page.data(), kPageSize);
    const std::uintmax_t pages = fs::file_size(damaged_) / kPageSize;
    for (std::size_t i = 0; i < 4; ++i) {
        page[28 + i] = static_cast<char>(pages >> (24 - 8 * i)); // how many pages there are
        page[32 + i] = page[36 + i] = 0;                         // no free ones
    }
    std::fstream out(damaged_, std::ios::binary | std::ios::in | std::ios::out);
    out.write(page.data(), kPageSize);
}

// Reading

bool Rescue::scan(const std::string& sql, const std::function<void(const sql::Statement&)>& row,
                  std::optional<RowId> id) {
    std::optional<sql::Statement> statement;
    bool whole = true;
    const auto next = [&] {
        try {
            if (!statement) {
                statement.emplace(db_->prepareText(sql));
                if (id) {
                    statement->bindInteger(*id);
                }
            }
            return statement->step();
        } catch (const StoreError& error) {
            if (!isDamage(error)) {
                throw;
            }
            return whole = false;
        }
    };
    while (next()) {
        row(*statement);
    }
    return whole;
}

bool Rescue::scanBothWays(const std::string& select, const std::string& order,
                          const std::function<void(const sql::Statement&)>& row) {
    if (scan(select + " ORDER BY " + order, row)) {
        return true;
    }
    std::string backwards = order + " DESC";
    for (std::size_t at = 0; (at = backwards.find(',', at)) != std::string::npos; at += 6) {
        backwards.insert(at, " DESC");
    }
    scan(select + " ORDER BY " + backwards, row);
    return false;
}

void Rescue::readProperties() {
    bool whole =
        scanBothWays("SELECT kind, name FROM property", "id", [this](const sql::Statement& statement) {
            if (const auto kind = statement.integer(0); kind == 0 || kind == 1) {
                properties_[kind].emplace(statement.text(1));
            }
        });
    whole &= scan("SELECT kind, name, type FROM definition JOIN property ON property.id = property "
                  "ORDER BY definition.id",
                  [this](const sql::Statement& statement) {
                      const auto kind = static_cast<Kind>(statement.integer(0) & 1);
                      const std::string name(statement.text(1));
                      if (isInternal(name) || builtInType(kind, name) != 0) {
                          return;
                      }
                      made_.db.prepare("INSERT OR IGNORE INTO definition(property, type) VALUES (?, ?)")
                          .bindInteger(made_.ensureProperty(kind, name))
                          .bindInteger(statement.integer(2))
                          .exec();
                  });
    if (!whole) {
        lost_.emplace_back("Not all names and types of custom properties can be read.");
    }
}

// Which properties have an index of endings, which is made anew with the others. A book before version 8 has none.
void Rescue::readEndings() {
    const bool whole = !knows("property", "endings") ||
                       scan("SELECT kind, name FROM property WHERE endings IS NOT NULL",
                            [this](const sql::Statement& statement) {
                                const auto kind = static_cast<Kind>(statement.integer(0) & 1);
                                const std::string name(statement.text(1));
                                made_.db.prepare("UPDATE property SET endings = 1 WHERE id = ?")
                                    .bindInteger(made_.ensureProperty(kind, name))
                                    .exec();
                            });
    if (!whole) {
        lost_.emplace_back("Not all properties with an index of endings can be read.");
    }
}

void Rescue::readRecords() {
    // The rows of all records, which each index lists again.
    bool whole = scanBothWays("SELECT id, uid FROM record INDEXED BY sqlite_autoindex_record_1", "uid",
                              [this](const sql::Statement& statement) {
                                  auto& uid = uids_[statement.integer(0)];
                                  if (statement.isText(1)) {
                                      uid = statement.text(1);
                                  } else {
                                      uid = unpackUid(statement.blob(1)).value_or("");
                                  }
                              });
    const auto note = [this](const sql::Statement& statement) { uids_.try_emplace(statement.integer(0)); };
    whole &= scanBothWays("SELECT id FROM record INDEXED BY record_kind", "kind, id", note);
    if (!scanBothWays("SELECT id FROM record NOT INDEXED", "id", note) && !whole) {
        lost_.emplace_back("Records may be lost whose ids cannot be told.");
    }
    std::size_t done = 0;
    for (const auto& [id, uid] : uids_) {
        tellProgress(progress_, done++, uids_.size());
        readRecord(id);
    }
}

void Rescue::readRecord(RowId id) {
    std::string name = uids_[id].empty() ? "Record " + std::to_string(id) : uids_[id];
    bool read = false;
    scan(
        "SELECT kind, uid, creation, modification, card FROM record NOT INDEXED WHERE id = ?",
        [&](const sql::Statement& statement) {
            read = true;
            name = takeRecord(id, statement);
        },
        id);
    if (!read) {
        lost_.push_back(name + " is lost.");
    } else if (rescued_.contains(id)) {
        readPicture(id, name);
    }
}

// Writes the record in the row, or what can be read of it, into the new book; returns its unique id.
std::string Rescue::takeRecord(RowId id, const sql::Statement& statement) {
    std::int64_t kind = statement.integer(0);
    const std::string uid = uidFor(id, statement);
    if (kind != 0 && kind != 1) {
        kind = uid.ends_with(":ABGroup") ? 1 : 0;
    }
    std::string card(statement.blob(4));
    try {
        visitProperties(card, [](std::string_view, std::string_view bytes) { decodeValue(bytes); });
    } catch (const DamagedRecord&) {
        const auto values = readable(card, static_cast<Kind>(kind));
        lost_.push_back(uid + " is damaged: " + std::to_string(values.size()) +
                        " of its values were readable; look at it.");
        card = encodeRecord(values);
    }
    const StoredUid stored(uid);
    auto insert = made_.db.prepare("INSERT OR IGNORE INTO record(id, kind, uid, creation, modification, "
                                   "card) VALUES (?, ?, ?, ?, ?, ?)");
    insert.bindInteger(id).bindInteger(kind);
    bindUid(insert, stored);
    insert.bindReal(statement.real(2)).bindReal(statement.real(3)).bindBlob(card).exec();
    if (made_.db.changes() > 0) {
        rescued_.emplace(id, static_cast<Kind>(kind));
    } else {
        lost_.push_back("A second record " + uid + " is left out.");
    }
    return uid;
}

// Returns the unique id in the row; when that is damaged, the one in the index, else a new one.
std::string Rescue::uidFor(RowId id, const sql::Statement& statement) {
    const auto own =
        statement.isText(1) ? std::optional(std::string(statement.text(1))) : unpackUid(statement.blob(1));
    const std::string& indexed = uids_[id];
    if (own && (indexed.empty() || *own == indexed)) {
        return *own;
    }
    if (!indexed.empty()) {
        if (own) {
            lost_.push_back(indexed + " had a damaged unique id, " + *own + ".");
        }
        return indexed;
    }
    std::string made = newUid(statement.integer(0) == 1 ? Kind::group : Kind::person);
    lost_.push_back("Record " + std::to_string(id) + " has lost its unique id and got " + made + ".");
    return made;
}

// Returns the encoded values in a damaged properties blob that can be read and belong to known properties.
std::map<std::string, std::string> Rescue::readable(std::string_view blob, Kind kind) const {
    std::map<std::string, std::string> values;
    visitReadableProperties(blob, [&](std::string_view name, std::string_view bytes) {
        const std::string property(name);
        const bool known = builtInType(kind, property) != 0 || isInternal(property) ||
                           properties_[static_cast<int>(kind)].contains(property);
        try {
            if (known && !decodeValue(bytes).empty()) {
                values.emplace(property, bytes);
            }
        } catch (const std::runtime_error&) { // not a value
            return;
        }
    });
    return values;
}

void Rescue::readPicture(RowId id, const std::string& name) {
    // Books before version 7 have no checksum.
    const bool checked = knows("picture", "checksum");
    const bool whole = scan(
        checked ? "SELECT data, checksum FROM picture WHERE record = ?"
                : "SELECT data, NULL FROM picture WHERE record = ?",
        [&](const sql::Statement& statement) {
            const auto sum = static_cast<std::int64_t>(checksum(statement.blob(0)));
            if (!statement.isNull(1) && statement.integer(1) != sum) {
                lost_.push_back(name + " has a damaged picture, which is kept as it is.");
            }
            made_.db.prepare("INSERT INTO picture(record, data, checksum) VALUES (?, ?, ?)")
                .bindInteger(id)
                .bindBlob(statement.blob(0))
                .bindInteger(sum)
                .exec();
        },
        id);
    if (!whole) {
        lost_.push_back(name + " has lost its picture, if it had one.");
    }
}

void Rescue::readMemberships() {
    std::map<std::pair<RowId, std::int64_t>, RowId> members; // by group and place
    std::set<std::pair<RowId, RowId>> known;
    const auto take = [&](const sql::Statement& statement) {
        if (known.emplace(statement.integer(0), statement.integer(2)).second) {
            members.emplace(std::pair(statement.integer(0), statement.integer(1)), statement.integer(2));
        }
    };
    const bool tableIsWhole =
        scanBothWays("SELECT parent, place, member FROM membership NOT INDEXED", "parent, place", take);
    std::set<std::pair<RowId, RowId>> indexed;
    const bool indexIsWhole =
        scanBothWays("SELECT parent, member FROM membership INDEXED BY membership_member", "member, parent",
                     [&](const sql::Statement& statement) {
                         indexed.emplace(statement.integer(0), statement.integer(1));
                     });
    if (!tableIsWhole ||
        (indexIsWhole && indexed != known)) { // memberships that only the index has come last
        constexpr std::int64_t kBehindAll = std::int64_t{1} << 40;
        for (const auto& [group, member] : indexed) {
            if (known.emplace(group, member).second) {
                members.emplace(std::pair(group, kBehindAll + member), member);
            }
        }
        lost_.emplace_back("Groups may have lost members, or their order.");
    }
    std::int64_t dropped = 0;
    for (const auto& [place, member] : members) {
        const auto group = rescued_.find(place.first);
        const auto record = rescued_.find(member);
        if (group == rescued_.end() || group->second != Kind::group || record == rescued_.end()) {
            ++dropped;
            continue;
        }
        made_.db
            .prepare(
                "WITH RECURSIVE above(id) AS (VALUES (?1) UNION SELECT parent FROM membership JOIN above ON "
                "member = above.id) INSERT OR IGNORE INTO membership(parent, place, member, kind) "
                "SELECT ?1, (SELECT coalesce(max(place), 0) + 1 FROM membership WHERE parent = ?1), ?2, ?3 "
                "WHERE ?2 NOT IN (SELECT id FROM above)")
            .bindInteger(place.first)
            .bindInteger(member)
            .bindInteger(static_cast<int>(record->second))
            .exec();
        dropped += made_.db.changes() > 0 ? 0 : 1;
    }
    if (dropped > 0) {
        lost_.push_back(std::to_string(dropped) + " memberships in groups had lost a side and are left out.");
    }
}

void Rescue::readMe() {
    std::string me;
    if (!scan("SELECT value FROM meta WHERE name = 'me'",
              [&](const sql::Statement& statement) { me = statement.text(0); })) {
        lost_.emplace_back("Which card is the user's own cannot be read.");
    } else if (!me.empty() && !made_.record(me)) {
        lost_.emplace_back("The user's own card is lost.");
    } else if (!me.empty()) {
        made_.db.prepare("INSERT OR REPLACE INTO meta(name, value) VALUES ('me', ?)").bindText(me).exec();
    }
}

// Copies the rows of a table that can be read; returns false when some cannot, or do not go together.
bool Rescue::copyRows(const char* table, const char* columns, const char* order) {
    const std::string list(columns);
    std::string places = "?";
    for (const char byte : list) {
        places += byte == ',' ? ", ?" : "";
    }
    const std::string insert =
        "INSERT OR IGNORE INTO " + std::string(table) + "(" + list + ") VALUES (" + places + ")";
    const int count = static_cast<int>(std::count(list.begin(), list.end(), ',')) + 1;
    std::set<RowId> copied, refused;
    const bool whole = scanBothWays("SELECT " + list + " FROM " + table + " NOT INDEXED", order,
                                    [&](const sql::Statement& row) {
                                        auto statement = made_.db.prepareText(insert);
                                        for (int column = 0; column < count; ++column) {
                                            if (row.isNull(column)) {
                                                statement.bindReal(std::nan("")); // null
                                            } else if (row.isText(column)) {
                                                statement.bindText(row.text(column));
                                            } else if (row.isReal(column)) {
                                                statement.bindReal(row.real(column));
                                            } else if (row.isNumber(column)) {
                                                statement.bindInteger(row.integer(column));
                                            } else {
                                                statement.bindBlob(row.blob(column));
                                            }
                                        }
                                        statement.exec();
                                        (made_.db.changes() > 0 ? copied : refused).insert(row.integer(0));
                                    });
    return whole && std::includes(copied.begin(), copied.end(), refused.begin(), refused.end());
}

// What was agreed with servers. Where some of it is lost, the listings are read anew and each card is compared, so that
// nothing is taken for deleted. A book of an older version has none of it.
void Rescue::readSync() {
    std::int64_t version = 0;
    scan("PRAGMA user_version", [&](const sql::Statement& row) { version = row.integer(0); });
    if (version < kSyncVersion && !knows("link", "href")) {
        return;
    }
    std::vector<std::int64_t> bad;
    bool whole = copyRows("account", "id, url, user, name, source, password, authorities, plain", "id");
    whole &= copyRows("collection", "id, account, url, name, state, change, main", "id");
    whole &= copyRows("link", "id, collection, href, uid, etag, leaves, text", "id");
    whole &= copyRows("conflict", "id, uid, property, label, value, time, remote", "id");
    made_.db.execute("DELETE FROM collection WHERE account NOT IN (SELECT id FROM account);"
                     "DELETE FROM link WHERE collection NOT IN (SELECT id FROM collection)");
    for (auto statement = made_.db.prepare("SELECT id, text FROM link"); statement.step();) {
        if (!inflated(statement.blob(1))) {
            bad.push_back(statement.integer(0));
        }
    }
    for (const std::int64_t id : bad) { // as though it were the first meeting of the two
        made_.db.prepare("UPDATE link SET text = x'', etag = '' WHERE id = ?").bindInteger(id).exec();
        whole = false;
    }
    // The change log is new, and not all records may be there: neither tells what was changed or deleted here.
    made_.db.execute("UPDATE collection SET change = -1, state = ''");
    if (!whole) {
        lost_.emplace_back(
            "Not all that was agreed with servers can be read; the next sync compares all cards.");
    }
}

} // namespace

std::vector<std::string> rescue(const fs::path& file, const fs::path& damaged, Store::Impl& made,
                                const Progress& progress) {
    return Rescue(file, damaged, made, progress).run();
}

} // namespace addressbook
