// Reading records, memberships, definitions and the change log.

#include "frameworks/AddressBook/store/impl.h"

#include "frameworks/AddressBook/store/checksum.h"
#include "frameworks/AddressBook/store/record_codec.h"
#include "frameworks/AddressBook/values/uid.h"

namespace addressbook {
namespace {

std::vector<RowId> rowsOf(sql::Statement statement) {
    std::vector<RowId> rows;
    while (statement.step()) {
        rows.push_back(statement.integer(0));
    }
    return rows;
}

} // namespace

RecordRow Store::Impl::rowFrom(const sql::Statement& statement) const {
    return {.id = statement.integer(0),
            .kind = kindIn(statement, 1),
            .uid = uidIn(statement, 2),
            .creation = Date{statement.real(3)},
            .modification = Date{statement.real(4)},
            .properties = std::string(statement.blob(5))};
}

std::optional<RecordRow> Store::Impl::record(RowId id) {
    auto statement =
        db.prepare("SELECT id, kind, uid, creation, modification, card FROM record WHERE id = ?");
    statement.bindInteger(id);
    return statement.step() ? std::optional(rowFrom(statement)) : std::nullopt;
}

std::optional<RecordRow> Store::Impl::record(std::string_view uid) {
    const StoredUid stored(uid);
    auto statement =
        db.prepare("SELECT id, kind, uid, creation, modification, card FROM record WHERE uid = ?");
    bindUid(statement, stored);
    return statement.step() ? std::optional(rowFrom(statement)) : std::nullopt;
}

Value Store::Impl::value(RowId id, std::string_view property) {
    if (property == property::kUid || property == property::kCreation ||
        property == property::kModification) {
        const auto row = record(id);
        return row ? valueOf(*row, property) : Value();
    }
    auto statement = db.prepare("SELECT card FROM record WHERE id = ?");
    statement.bindInteger(id);
    if (!statement.step()) {
        return {};
    }
    try {
        verifyChecksum(statement.blob(0));
        const auto found = findProperty(statement.blob(0), property);
        return found ? decodeValue(*found) : Value();
    } catch (const DamagedRecord& error) {
        reportDamage(id, error.what());
    }
}

Value Store::Impl::valueOf(const RecordRow& row, std::string_view property) const {
    if (property == property::kUid) {
        return row.uid.text();
    }
    if (property == property::kCreation) {
        return row.creation;
    }
    if (property == property::kModification) {
        return row.modification;
    }
    try {
        const auto found = encodedIn(row, property);
        return found.empty() ? Value() : decodeValue(found);
    } catch (const DamagedRecord& error) {
        reportDamage(row.id, error.what());
    }
}

std::string_view Store::Impl::encodedIn(const RecordRow& row, std::string_view property) const {
    if (!row.checksumVerified) {
        verifyChecksum(row.properties);
    }
    row.checksumVerified = true;
    return findProperty(row.properties, property).value_or(std::string_view());
}

std::map<std::string, Value> Store::Impl::decodeProperties(const RecordRow& row) const {
    std::map<std::string, Value> values;
    visitValues(row, [&](std::string_view name, std::string_view bytes) {
        values.insert_or_assign(std::string(name), decodeValue(bytes));
    });
    return values;
}

void Store::Impl::visitValues(const RecordRow& row, const PropertyVisitor& visit) const {
    try {
        visitProperties(row.properties, visit);
    } catch (const DamagedRecord& error) {
        reportDamage(row.id, error.what());
    }
}

std::optional<Bytes> Store::Impl::picture(RowId id) {
    auto statement = db.prepare("SELECT data, checksum FROM picture WHERE record = ?");
    statement.bindInteger(id);
    if (!statement.step()) {
        return std::nullopt;
    }
    const std::string_view data = statement.blob(0);
    if (!statement.isNull(1) && static_cast<std::uint64_t>(statement.integer(1)) != checksum(data)) {
        reportDamage(id, "its picture's checksum is wrong");
    }
    return Bytes(data.begin(), data.end());
}

StoredUid Store::Impl::uidIn(const sql::Statement& statement, int column) const {
    if (statement.isText(column)) {
        return StoredUid(statement.text(column));
    }
    auto uid = StoredUid::fromPacked(statement.blob(column));
    if (!uid) {
        reportDamage("a unique id has the wrong length");
    }
    return std::move(*uid);
}

Kind Store::Impl::kindIn(const sql::Statement& statement, int column) const {
    const std::int64_t kind = statement.integer(column);
    if (kind != static_cast<int>(Kind::person) && kind != static_cast<int>(Kind::group)) {
        reportDamage("a record is neither person nor group");
    }
    return static_cast<Kind>(kind);
}

void Store::Impl::reportDamage(const std::string& what) const {
    throw StoreError(StoreError::Reason::damaged, db.file(), "is damaged (" + what + ")",
                     "check it, or restore it from a backup");
}

void Store::Impl::reportDamage(RowId row, const std::string& what) const {
    reportDamage("record " + std::to_string(row) + ": " + what);
}

std::optional<RecordRef> Store::find(std::string_view uid) const {
    const StoredUid stored(uid);
    auto statement = impl_->db.prepare("SELECT id, kind FROM record WHERE uid = ?");
    bindUid(statement, stored);
    if (!statement.step()) {
        return std::nullopt;
    }
    return RecordRef{statement.integer(0), impl_->kindIn(statement, 1), std::string(uid)};
}

std::optional<RecordRef> Store::find(RowId row) const {
    auto statement = impl_->db.prepare("SELECT kind, uid FROM record WHERE id = ?");
    statement.bindInteger(row);
    if (!statement.step()) {
        return std::nullopt;
    }
    return RecordRef{row, impl_->kindIn(statement, 0), impl_->uidIn(statement, 1).text()};
}

std::optional<RecordRef> Store::findDeleted(RowId row) const {
    auto statement = impl_->db.prepare("SELECT kind, uid FROM deleted WHERE id = ?");
    statement.bindInteger(row);
    if (!statement.step()) {
        return std::nullopt;
    }
    return RecordRef{row, impl_->kindIn(statement, 0), impl_->uidIn(statement, 1).text()};
}

std::vector<RowId> Store::rows(Kind kind) const {
    auto statement = impl_->db.prepare("SELECT id FROM record WHERE kind = ? ORDER BY id");
    statement.bindInteger(static_cast<int>(kind));
    return rowsOf(std::move(statement));
}

std::int64_t Store::count(Kind kind) const {
    auto statement = impl_->db.prepare("SELECT count(*) FROM record WHERE kind = ?");
    statement.bindInteger(static_cast<int>(kind));
    return statement.firstNumber();
}

Value Store::value(RowId row, std::string_view property) const {
    if (property == property::kImage) {
        auto picture = impl_->picture(row);
        return picture ? Value(std::move(*picture)) : Value();
    }
    return impl_->value(row, property);
}

std::map<std::string, Value> Store::values(RowId row) const {
    const auto record = impl_->record(row);
    return record ? values(*record) : std::map<std::string, Value>();
}

std::optional<RecordRow> Store::read(std::string_view uid) const {
    return impl_->record(uid);
}

std::optional<RecordRow> Store::read(RowId row) const {
    return impl_->record(row);
}

std::vector<RecordRow> Store::readFrom(RowId row, std::size_t count) const {
    auto statement =
        impl_->db.prepare("SELECT id, kind, uid, creation, modification, card FROM record WHERE id >= ? "
                          "ORDER BY id LIMIT ?");
    statement.bindInteger(row).bindInteger(static_cast<std::int64_t>(count));
    std::vector<RecordRow> records;
    records.reserve(count);
    while (statement.step()) {
        records.push_back(impl_->rowFrom(statement));
    }
    return records;
}

Value Store::value(const RecordRow& record, std::string_view property) const {
    return record.id != 0 ? impl_->valueOf(record, property) : Value();
}

std::string_view Store::encodedValue(const RecordRow& record, std::string_view property) const {
    if (record.id == 0) {
        return {};
    }
    try {
        return impl_->encodedIn(record, property);
    } catch (const DamagedRecord& error) {
        reportDamage(record, error.what());
    }
}

void Store::reportDamage(const RecordRow& record, const std::string& what) const {
    impl_->reportDamage(record.id, what);
}

std::map<std::string, Value> Store::values(const RecordRow& record) const {
    if (record.id == 0) {
        return {};
    }
    auto values = impl_->decodeProperties(record);
    values.insert_or_assign(std::string(property::kUid), record.uid.text());
    values.insert_or_assign(std::string(property::kCreation), record.creation);
    values.insert_or_assign(std::string(property::kModification), record.modification);
    return values;
}

Store::ReadTransaction::ReadTransaction(const Store& store) : store_(store) {
    store_.impl_->reopenIfChanged();
    if (store_.impl_->readTransactions == 0) {
        store_.impl_->readTransaction.emplace(store_.impl_->db, sql::Transaction::Mode::read);
    }
    ++store_.impl_->readTransactions;
}

Store::ReadTransaction::~ReadTransaction() {
    if (--store_.impl_->readTransactions != 0) {
        return;
    }
    try {
        store_.impl_->readTransaction->commit();
    } catch (const StoreError&) { // nothing was written, so that nothing is lost
    }
    store_.impl_->readTransaction.reset();
}

std::vector<RowId> Store::members(RowId group) const {
    auto statement =
        impl_->db.prepare("SELECT member FROM membership WHERE parent = ? AND kind = 0 ORDER BY place");
    statement.bindInteger(group);
    return rowsOf(std::move(statement));
}

std::vector<RowId> Store::subgroups(RowId group) const {
    auto statement =
        impl_->db.prepare("SELECT member FROM membership WHERE parent = ? AND kind = 1 ORDER BY place");
    statement.bindInteger(group);
    return rowsOf(std::move(statement));
}

std::vector<RowId> Store::parents(RowId record) const {
    auto statement = impl_->db.prepare("SELECT parent FROM membership WHERE member = ? ORDER BY parent");
    statement.bindInteger(record);
    return rowsOf(std::move(statement));
}

std::optional<std::string> Store::me() const {
    auto statement = impl_->db.prepare("SELECT value FROM meta WHERE name = 'me'");
    return statement.step() ? std::optional(std::string(statement.text(0))) : std::nullopt;
}

std::vector<PropertyDefinition> Store::definitions() const {
    auto statement =
        impl_->db.prepare("SELECT kind, name, type FROM definition JOIN property ON property.id = property "
                          "ORDER BY definition.id");
    std::vector<PropertyDefinition> definitions;
    while (statement.step()) {
        definitions.push_back({impl_->kindIn(statement, 0), std::string(statement.text(1)),
                               static_cast<int>(statement.integer(2))});
    }
    return definitions;
}

std::vector<NamedProperty> Store::endings() const {
    auto statement =
        impl_->db.prepare("SELECT kind, name FROM property WHERE endings IS NOT NULL ORDER BY kind, name");
    std::vector<NamedProperty> properties;
    while (statement.step()) {
        properties.push_back({impl_->kindIn(statement, 0), std::string(statement.text(1))});
    }
    return properties;
}

std::int64_t Store::lastChange() const {
    impl_->reopenIfChanged();
    // What every search asks first: nearly always there was no save since.
    const bool isInTransaction = impl_->readTransactions != 0;
    if (isInTransaction && impl_->knownChange && impl_->knownChange->dataVersion == impl_->db.dataVersion()) {
        return impl_->knownChange->number;
    }
    const std::int64_t number = impl_->db.prepare("SELECT max(id) FROM change").firstNumber();
    if (isInTransaction) {
        impl_->knownChange = {number, impl_->db.dataVersion()};
    }
    return number;
}

std::vector<LoggedChange> Store::changesSince(std::int64_t change) const {
    std::vector<LoggedChange> changes;
    auto statement = impl_->db.prepare(
        "SELECT id, inserted, updated, deleted, origin, silent FROM change WHERE id > ? ORDER BY id");
    statement.bindInteger(change);
    const std::string mark = processMark();
    bool first = true;
    while (statement.step()) {
        const std::int64_t id = statement.integer(0);
        if (first && id > change + 1) {
            changes.push_back(LoggedChange{.change = id - 1}); // the log no longer has the saves before
        }
        first = false;
        if (!statement.isNull(5)) {
            continue;
        }
        const bool own = statement.blob(4) == mark;
        LoggedChange one{id, {}, {}, {}, own};
        try {
            one.inserted = decodeUids(statement.blob(1));
            one.updated = decodeUids(statement.blob(2));
            one.deleted = decodeUids(statement.blob(3));
        } catch (const DamagedRecord&) {
            one = {id, {}, {}, {}, own};
        }
        changes.push_back(std::move(one));
    }
    return changes;
}

} // namespace addressbook
