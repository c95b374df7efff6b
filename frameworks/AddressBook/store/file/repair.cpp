// In this order: opening what is damaged, reading its records and what refers to them, writing the new book.

#include "frameworks/AddressBook/store/file/repair.h"

#include "frameworks/AddressBook/store/file/folder.h"
#include "frameworks/AddressBook/store/file/replace_file.h"
#include "frameworks/AddressBook/store/file/sidecars.h"
#include "frameworks/AddressBook/store/impl.h"
#include "frameworks/AddressBook/store/record_codec.h"
#include "frameworks/AddressBook/values/uid.h"

#include <sqlite3.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <map>
#include <set>

namespace addressbook {
namespace {

namespace fs = std::filesystem;
using Reason = StoreError::Reason;

constexpr std::chrono::seconds kPatience{10};
constexpr std::size_t kPageSize = 4096; // of every address book

fs::path logOf(fs::path file) {
    file += "-wal";
    return file;
}

// A rescue from the copy [damaged], whose name for errors is [file], into the new book [made].
class Rescue {
  public:
    Rescue(const fs::path& file, const fs::path& damaged, Store::Impl& made)
        : file_(file), damaged_(damaged), made_(made) {}

    std::vector<std::string> run() {
        open();
        sql::Transaction transaction(made_.db, sql::Transaction::Mode::write);
        readProperties();
        readRecords();
        readMemberships();
        readMe();
        transaction.commit();
        made_.rebuildIndexes();
        return std::move(lost_);
    }

  private:
    // Opening.
    void open();
    bool attempt();
    void lendFirstPage();

    // Calls [row] with each row that can be read; false when some cannot.
    bool scan(const std::string& sql, const std::function<void(const sql::Run&)>& row);
    // The same for a table and an order, from both ends when it breaks in the middle.
    bool scanBothWays(const std::string& select, const std::string& order,
                      const std::function<void(const sql::Run&)>& row);

    void readProperties();
    void readRecords();
    void readRecord(RowId id);
    std::string uidFor(RowId id, const sql::Run& run);
    std::map<std::string, std::string> readable(std::string_view card, Kind kind) const;
    void readPicture(RowId id, const std::string& name);
    void readMemberships();
    void readMe();

    const fs::path& file_;
    const fs::path& damaged_;
    Store::Impl& made_;
    std::unique_ptr<sql::Connection> db_;
    std::set<std::string> properties_[2]; // known names
    std::map<RowId, std::string> uids_;   // as the index has them; empty when it does not
    std::map<RowId, Kind> rescued_;
    std::vector<std::string> lost_;
};

// Opening

void Rescue::open() {
    if (attempt())
        return;
    if (fs::remove(logOf(damaged_)) && attempt()) {
        lost_.emplace_back("The changes that were only in the log cannot be read.");
        return;
    }
    lendFirstPage();
    if (attempt()) {
        lost_.emplace_back("The file's first page was damaged; its log was left out.");
        return;
    }
    throw StoreError(Reason::damaged, "The address book " + file_.string() +
                                          " cannot be repaired, nothing in it can be read: restore it "
                                          "from a backup.");
}

// Whether records can be asked for.
bool Rescue::attempt() {
    try {
        db_ = std::make_unique<sql::Connection>(file_, databaseUri(damaged_),
                                                SQLITE_OPEN_READWRITE | SQLITE_OPEN_URI, kPatience);
        // Lets SQLite read on where a file is shorter than it should be or a definition makes no sense.
        db_->execute("PRAGMA writable_schema = ON; PRAGMA cell_size_check = ON; PRAGMA trusted_schema = OFF");
        db_->run("SELECT id, kind, uid, creation, modification, card FROM record WHERE id = 1").step();
        return true;
    } catch (const StoreError&) {
        // The record may be what is damaged: then the tables are known all the same.
        return db_ && sqlite3_table_column_metadata(db_->handle(), "main", "record", "card", nullptr, nullptr,
                                                    nullptr, nullptr, nullptr) == SQLITE_OK;
    }
}

// All address books of a version begin with the same page, but for some counters.
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

bool Rescue::scan(const std::string& sql, const std::function<void(const sql::Run&)>& row) {
    try {
        auto run = db_->runText(sql);
        while (run.step())
            row(run);
        return true;
    } catch (const StoreError&) {
        return false;
    }
}

bool Rescue::scanBothWays(const std::string& select, const std::string& order,
                          const std::function<void(const sql::Run&)>& row) {
    if (scan(select + " ORDER BY " + order, row))
        return true;
    std::string backwards = order + " DESC";
    for (std::size_t at = 0; (at = backwards.find(',', at)) != std::string::npos; at += 6)
        backwards.insert(at, " DESC");
    scan(select + " ORDER BY " + backwards, row);
    return false;
}

void Rescue::readProperties() {
    bool whole = scanBothWays("SELECT kind, name FROM property", "id", [this](const sql::Run& run) {
        if (const auto kind = run.integer(0); kind == 0 || kind == 1)
            properties_[kind].emplace(run.text(1));
    });
    whole &= scan("SELECT kind, name, type FROM definition JOIN property ON property.id = property "
                  "ORDER BY definition.id",
                  [this](const sql::Run& run) {
                      const auto kind = static_cast<Kind>(run.integer(0) & 1);
                      const std::string name(run.text(1));
                      if (isInternal(name) || builtInType(kind, name) != 0)
                          return;
                      made_.db.run("INSERT OR IGNORE INTO definition(property, type) VALUES (?, ?)")
                          .bindInteger(made_.ensureProperty(kind, name))
                          .bindInteger(run.integer(2))
                          .finish();
                  });
    if (!whole)
        lost_.emplace_back("Not all names and types of custom properties can be read.");
}

void Rescue::readRecords() {
    // Which records there were: every index tells it again.
    bool whole = scanBothWays("SELECT id, uid FROM record INDEXED BY sqlite_autoindex_record_1", "uid",
                              [this](const sql::Run& run) {
                                  auto& uid = uids_[run.integer(0)];
                                  if (run.isText(1))
                                      uid = run.text(1);
                                  else
                                      uid = unpackUid(run.bytes(1)).value_or("");
                              });
    const auto note = [this](const sql::Run& run) { uids_.try_emplace(run.integer(0)); };
    whole &= scanBothWays("SELECT id FROM record INDEXED BY record_kind", "kind, id", note);
    if (!scanBothWays("SELECT id FROM record NOT INDEXED", "id", note) && !whole)
        lost_.emplace_back("Records may be lost whose ids cannot be told.");
    for (const auto& [id, uid] : uids_)
        readRecord(id);
}

void Rescue::readRecord(RowId id) {
    std::string name = uids_[id].empty() ? "Record " + std::to_string(id) : uids_[id];
    bool found = false;
    try {
        auto run =
            db_->run("SELECT kind, uid, creation, modification, card FROM record NOT INDEXED WHERE id = ?");
        run.bindInteger(id);
        if (!run.step()) {
            lost_.push_back(name + " is lost.");
            return;
        }
        std::int64_t kind = run.integer(0);
        const std::string uid = uidFor(id, run);
        if (kind != 0 && kind != 1)
            kind = uid.ends_with(":ABGroup") ? 1 : 0;
        name = uid;
        std::string card(run.bytes(4));
        try {
            visitCard(card, [](std::string_view, std::string_view bytes) { decodeValue(bytes); });
        } catch (const DamagedCard&) {
            const auto values = readable(card, static_cast<Kind>(kind));
            lost_.push_back(uid + " is damaged: " + std::to_string(values.size()) +
                            " of its values were readable; look at it.");
            card = makeCard(values);
        }
        const StoredUid stored(uid);
        auto insert =
            made_.db.run("INSERT OR IGNORE INTO record(id, kind, uid, creation, modification, card) "
                         "VALUES (?, ?, ?, ?, ?, ?)");
        insert.bindInteger(id).bindInteger(kind);
        stored.bind(insert);
        insert.bindReal(run.real(2)).bindReal(run.real(3)).bindBytes(card).finish();
        found = made_.db.changes() > 0;
        rescued_.emplace(id, static_cast<Kind>(kind));
        if (!found)
            lost_.push_back("A second record " + uid + " is left out.");
    } catch (const StoreError& error) {
        if (error.reason() == Reason::full)
            throw;
        lost_.push_back(name + " is lost.");
    }
    if (found)
        readPicture(id, name);
    else
        rescued_.erase(id);
}

// The id in the row; when that is damaged, the one in the index, else a new one.
std::string Rescue::uidFor(RowId id, const sql::Run& run) {
    const auto own = run.isText(1) ? std::optional(std::string(run.text(1))) : unpackUid(run.bytes(1));
    const std::string& indexed = uids_[id];
    if (own && (indexed.empty() || *own == indexed))
        return *own;
    if (!indexed.empty()) {
        if (own)
            lost_.push_back(indexed + " had a damaged unique id, " + *own + ".");
        return indexed;
    }
    std::string made = newUid(run.integer(0) == 1 ? Kind::group : Kind::person);
    lost_.push_back("Record " + std::to_string(id) + " has lost its unique id and got " + made + ".");
    return made;
}

// The values in a damaged card that can be read and belong to known properties.
std::map<std::string, std::string> Rescue::readable(std::string_view card, Kind kind) const {
    std::map<std::string, std::string> values;
    visitDamagedCard(card, [&](std::string_view name, std::string_view bytes) {
        const std::string property(name);
        const bool known = builtInType(kind, property) != 0 || isInternal(property) ||
                           properties_[static_cast<int>(kind)].contains(property);
        try {
            if (known && !decodeValue(bytes).empty())
                values.emplace(property, bytes);
        } catch (const std::runtime_error&) { // not a value
            return;
        }
    });
    return values;
}

void Rescue::readPicture(RowId id, const std::string& name) {
    try {
        auto run = db_->run("SELECT data FROM picture WHERE record = ?");
        run.bindInteger(id);
        if (run.step())
            made_.db.run("INSERT INTO picture(record, data) VALUES (?, ?)")
                .bindInteger(id)
                .bindBytes(run.bytes(0))
                .finish();
    } catch (const StoreError& error) {
        if (error.reason() == Reason::full)
            throw;
        lost_.push_back(name + " has lost its picture, if it had one.");
    }
}

void Rescue::readMemberships() {
    std::map<std::pair<RowId, std::int64_t>, RowId> members; // by group and place
    std::set<std::pair<RowId, RowId>> known;
    const auto take = [&](const sql::Run& run) {
        if (known.emplace(run.integer(0), run.integer(2)).second)
            members.emplace(std::pair(run.integer(0), run.integer(1)), run.integer(2));
    };
    if (!scanBothWays("SELECT parent, place, member FROM membership NOT INDEXED", "parent, place", take)) {
        // What the index knows besides, behind the others.
        scanBothWays("SELECT parent, 1 << 40, member FROM membership INDEXED BY membership_member",
                     "member, parent", [&](const sql::Run& run) {
                         if (known.emplace(run.integer(0), run.integer(2)).second)
                             members.emplace(std::pair(run.integer(0), run.integer(1) + run.integer(2)),
                                             run.integer(2));
                     });
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
            .run("WITH RECURSIVE above(id) AS (VALUES (?1) UNION SELECT parent FROM membership JOIN above ON "
                 "member = above.id) INSERT OR IGNORE INTO membership(parent, place, member, kind) "
                 "SELECT ?1, (SELECT coalesce(max(place), 0) + 1 FROM membership WHERE parent = ?1), ?2, ?3 "
                 "WHERE ?2 NOT IN (SELECT id FROM above)")
            .bindInteger(place.first)
            .bindInteger(member)
            .bindInteger(static_cast<int>(record->second))
            .finish();
        dropped += made_.db.changes() > 0 ? 0 : 1;
    }
    if (dropped > 0)
        lost_.push_back(std::to_string(dropped) + " memberships in groups had lost a side and are left out.");
}

void Rescue::readMe() {
    std::string me;
    if (!scan("SELECT value FROM meta WHERE name = 'me'", [&](const sql::Run& run) { me = run.text(0); })) {
        lost_.emplace_back("Which card is the user's own cannot be read.");
    } else if (!me.empty() && !made_.record(me)) {
        lost_.emplace_back("The user's own card is lost.");
    } else if (!me.empty()) {
        made_.db.run("INSERT OR REPLACE INTO meta(name, value) VALUES ('me', ?)").bindText(me).finish();
    }
}

bool isSound(const fs::path& folder) {
    try {
        return Store(folder).check().empty();
    } catch (const StoreError& error) {
        if (error.reason() == Reason::damaged || error.reason() == Reason::notADatabase)
            return false;
        throw; // missing, newer, locked: nothing that a repair could mend
    }
}

} // namespace

RepairReport repair(const fs::path& folder) {
    RepairReport report;
    std::error_code error;
    const fs::path file = folder / kFileName;
    if (!fs::is_regular_file(file, error))
        throw StoreError(Reason::missingFolder, "There is no address book in " + folder.string() + ".");
    if (isSound(folder))
        return report;
    report.needed = true;
    std::ifstream source(file, std::ios::binary); // closed last: closing it ends the hold on the file
    const bool foreignJournal = !hasOwnJournal(file);
    HeldBook book(folder);
    const Workshop workshop(folder);
    {
        const fs::path damaged = workshop.folder() / "damaged";
        std::ofstream(damaged, std::ios::binary) << source.rdbuf();
        bool foreign = false;
        if (fs::exists(logOf(file))) {
            foreign = !hasOwnLog(file);
            if (!foreign)
                fs::copy_file(logOf(file), logOf(damaged));
        }
        Store::Impl made(workshop.folder(), Store::Access::readWrite, kPatience);
        report.lost = Rescue(file, damaged, made).run();
        if (foreign)
            report.lost.emplace_back("The log beside the file belongs to another and is left out.");
        if (foreignJournal)
            report.lost.emplace_back("The journal beside the file belongs to another and is left out.");
    }
    {
        const Store made(workshop.folder());
        if (const auto problems = made.check(Store::Depth::records); !problems.empty())
            throw StoreError(Reason::damaged, "The address book " + file.string() + " cannot be repaired (" +
                                                  problems.front() + "): restore it from a backup.");
        report.people = made.count(Kind::person);
        report.groups = made.count(Kind::group);
    }
    if (report.people + report.groups == 0 && !report.lost.empty())
        throw StoreError(Reason::damaged, "The address book " + file.string() +
                                              " cannot be repaired, no record in it can be read: restore it "
                                              "from a backup.");
    report.kept = book.replaceBy(workshop.draft());
    return report;
}

} // namespace addressbook
