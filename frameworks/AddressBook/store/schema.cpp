#include "frameworks/AddressBook/store/schema.h"

#include "frameworks/AddressBook/store/float_dates.h"
#include "frameworks/AddressBook/store/index.h"
#include "frameworks/AddressBook/values/text.h"

namespace addressbook {
namespace {

// The statements of each version describe the files that users have, and never change. A change of the format
// is one more step here, and a line in docs/storage.md.
//
// Columns without a type keep numbers, text and bytes exactly as they are given.
constexpr const char* kVersion1 = R"(
-- People and groups. A row's number is never used again, so that order is the order of adding for ever. The column card
-- is a properties blob: the values of all properties but the picture (see record_codec.h). uid is packed where it can be
-- (packUid).
CREATE TABLE record (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    kind INTEGER NOT NULL,
    uid NOT NULL UNIQUE,
    creation REAL NOT NULL,
    modification REAL NOT NULL,
    card BLOB NOT NULL
);
CREATE INDEX record_kind ON record (kind);

CREATE TABLE picture (
    record INTEGER PRIMARY KEY,
    data BLOB NOT NULL
);

-- Numbers for the names of properties, one for each kind of record.
CREATE TABLE property (
    id INTEGER PRIMARY KEY,
    kind INTEGER NOT NULL,
    name NOT NULL,
    UNIQUE (kind, name)
);

-- Properties that users added.
CREATE TABLE definition (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    property INTEGER NOT NULL UNIQUE,
    type INTEGER NOT NULL
);

-- Every value that searches look at, and every property that is set: the values in their compared forms, cut to a
-- length that is good for an index (see index.h).
CREATE TABLE term (
    property INTEGER NOT NULL,
    folded NOT NULL,
    exact NOT NULL,
    record INTEGER NOT NULL,
    label NOT NULL,
    key NOT NULL,
    type INTEGER NOT NULL,
    PRIMARY KEY (property, folded, exact, record, label, key, type)
) WITHOUT ROWID;

-- The folded text of one property of one record, by trigrams; rowid = record * 65536 + property. A large save writes
-- it in fewer and larger pieces: 16 MB are gathered in memory first.
CREATE VIRTUAL TABLE trigram USING fts5(text, content='', columnsize=0, tokenize='trigram case_sensitive 1');
INSERT INTO trigram(trigram, rank) VALUES ('hashsize', 16777216);

CREATE TABLE membership (
    parent INTEGER NOT NULL,
    place INTEGER NOT NULL,
    member INTEGER NOT NULL,
    kind INTEGER NOT NULL,
    PRIMARY KEY (parent, place)
) WITHOUT ROWID;
CREATE UNIQUE INDEX membership_member ON membership (member, parent);

-- One row per save; the lists are unique ids (encodeUids). All empty: anything may have changed.
CREATE TABLE change (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    inserted BLOB NOT NULL,
    updated BLOB NOT NULL,
    deleted BLOB NOT NULL
);

-- me: the unique id of the user's own card. unicode: whose rules the search indexes follow.
CREATE TABLE meta (
    name TEXT PRIMARY KEY,
    value
) WITHOUT ROWID;
)";

std::int64_t pragma(sql::Connection& connection, const char* sql) {
    return connection.prepare(sql).firstNumber();
}

// Which process made each save (processMark); null where a program of the version before wrote the row.
constexpr const char* kVersion2 = "ALTER TABLE change ADD COLUMN origin";

// What the search indexes still hold of the values that a small save replaced (encodeBacklog); null where
// they are up to date.
constexpr const char* kVersion3 = "ALTER TABLE change ADD COLUMN replaced";

// FTS5 merges as few as two segments of about the same size (see tidyTexts).
constexpr const char* kVersion4 = "INSERT INTO trigram(trigram, rank) VALUES ('usermerge', 2)";

// Row, kind and unique id of deleted records, in the order of deletion. Lists that were made before a
// deletion know no more of a record than its row.
constexpr const char* kVersion5 = R"(
CREATE TABLE deleted (
    number INTEGER PRIMARY KEY,
    id INTEGER NOT NULL UNIQUE,
    kind INTEGER NOT NULL,
    uid NOT NULL
);
)";

// Keeping in step with servers (sync_state.h): accounts, address books there, which card is which record, and values
// that had to yield. text is the card as both sides last agreed, compressed; empty where the server has none yet.
// change.silent: the save changed no record.
// picture.checksum: of the data (checksum.h); null for a picture from an earlier version.
constexpr const char* kVersion7 = R"(
CREATE TABLE account (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    url NOT NULL,
    user NOT NULL,
    name NOT NULL UNIQUE,
    source INTEGER NOT NULL,
    password NOT NULL,
    authorities NOT NULL,
    plain INTEGER NOT NULL
);
CREATE TABLE collection (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    account INTEGER NOT NULL,
    url NOT NULL UNIQUE,
    name NOT NULL,
    state NOT NULL,
    change INTEGER NOT NULL,
    main INTEGER NOT NULL
);
CREATE TABLE link (
    id INTEGER PRIMARY KEY,
    collection INTEGER NOT NULL,
    href NOT NULL,
    uid NOT NULL,
    etag NOT NULL,
    leaves INTEGER NOT NULL,
    text BLOB,
    UNIQUE (collection, href)
);
CREATE INDEX link_uid ON link (uid, leaves);
CREATE UNIQUE INDEX link_owner ON link (uid) WHERE leaves = 0;
CREATE TABLE conflict (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    uid NOT NULL,
    property NOT NULL,
    label NOT NULL,
    value BLOB NOT NULL,
    time REAL NOT NULL,
    remote INTEGER NOT NULL
);
ALTER TABLE change ADD COLUMN silent;
ALTER TABLE picture ADD COLUMN checksum;
)";

// property.endings: 1 where the table term also has the property's texts backwards, under its negative number (terms.h).
// It is a column, as the definitions of all tables have to fit into the first page (see Rescue).
constexpr const char* kVersion8 = "ALTER TABLE property ADD COLUMN endings";

// Numbers that the SQL here and in other sources repeats.
static_assert(kMostProperties == 65536 && kTermBytes == 64 && endingsOf(1) == -1);
static_assert(static_cast<int>(Kind::person) == 0 && static_cast<int>(Kind::group) == 1);

} // namespace

std::span<const Migration> migrations() {
    static const Migration steps[] = {
        [](sql::Connection& connection) {
            connection.execute(kVersion1);
            const std::string unicode = unicodeVersion();
            connection.prepare("INSERT INTO meta(name, value) VALUES ('unicode', ?)")
                .bindText(unicode)
                .exec();
        },
        [](sql::Connection& connection) { connection.execute(kVersion2); },
        [](sql::Connection& connection) { connection.execute(kVersion3); },
        [](sql::Connection& connection) { connection.execute(kVersion4); },
        [](sql::Connection& connection) { connection.execute(kVersion5); },
        floatDates, // days are no longer moments
        [](sql::Connection& connection) { connection.execute(kVersion7); },
        [](sql::Connection& connection) { connection.execute(kVersion8); },
    };
    static_assert(std::size(steps) == kSchemaVersion);
    return steps;
}

int schemaVersion(sql::Connection& connection) {
    const auto application = pragma(connection, "PRAGMA application_id");
    const auto version = pragma(connection, "PRAGMA user_version");
    const bool isEmpty = pragma(connection, "SELECT count(*) FROM sqlite_schema") == 0;
    if (application == kApplicationId && version > 0) {
        return static_cast<int>(version);
    }
    if (application == 0 && version == 0 && isEmpty) {
        return 0;
    }
    throw StoreError(StoreError::Reason::notADatabase,
                     problemSentence("The file", connection.file(),
                                     "is a database of another program, not an address book",
                                     "move it away or choose another folder"));
}

void migrate(sql::Connection& connection, std::span<const Migration> steps) {
    const auto current = static_cast<int>(steps.size());
    const auto lacking = [&] {
        const int version = schemaVersion(connection);
        if (version > current) {
            throw StoreError(StoreError::Reason::newerSchema, connection.file(),
                             "was written by a newer version (" + std::to_string(version) +
                                 ", this one knows " + std::to_string(current) + ")",
                             "install that version to use it");
        }
        return steps.subspan(static_cast<std::size_t>(version));
    };
    if (lacking().empty()) {
        return;
    }
    sql::Transaction transaction(connection, sql::Transaction::Mode::write);
    for (const Migration& step : lacking()) { // asked again: another process may have been first
        step(connection);
    }
    connection.execute("PRAGMA application_id = " + std::to_string(kApplicationId) +
                       "; PRAGMA user_version = " + std::to_string(current));
    transaction.commit();
}

} // namespace addressbook
