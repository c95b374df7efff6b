// Reading records, memberships, definitions and the change log.

#include "frameworks/AddressBook/store/impl.h"

#include "frameworks/AddressBook/store/record_codec.h"
#include "frameworks/AddressBook/values/uid.h"

namespace addressbook {
namespace {

std::vector<RowId> rowsOf(sql::Run run) {
    std::vector<RowId> rows;
    while (run.step())
        rows.push_back(run.integer(0));
    return rows;
}

} // namespace

RecordRow Store::Impl::rowFrom(const sql::Run& run) const {
    RecordRow row;
    row.id = run.integer(0);
    row.kind = kindIn(run, 1);
    row.uid = uidIn(run, 2);
    row.creation = Date{run.real(3)};
    row.modification = Date{run.real(4)};
    row.card = run.bytes(5);
    return row;
}

std::optional<RecordRow> Store::Impl::record(RowId id) {
    auto run = db.run("SELECT id, kind, uid, creation, modification, card FROM record WHERE id = ?");
    run.bindInteger(id);
    return run.step() ? std::optional(rowFrom(run)) : std::nullopt;
}

std::optional<RecordRow> Store::Impl::record(std::string_view uid) {
    const StoredUid stored(uid);
    auto run = db.run("SELECT id, kind, uid, creation, modification, card FROM record WHERE uid = ?");
    stored.bind(run);
    return run.step() ? std::optional(rowFrom(run)) : std::nullopt;
}

Value Store::Impl::value(RowId id, std::string_view property) {
    if (property == property::kUid || property == property::kCreation ||
        property == property::kModification) {
        const auto row = record(id);
        return row ? valueOf(*row, property) : Value();
    }
    auto run = db.run("SELECT card FROM record WHERE id = ?");
    run.bindInteger(id);
    if (!run.step())
        return {};
    try {
        checkCard(run.bytes(0));
        const auto found = findInCard(run.bytes(0), property);
        return found ? decodeValue(*found) : Value();
    } catch (const DamagedCard& error) {
        damaged(id, error.what());
    }
}

Value Store::Impl::valueOf(const RecordRow& row, std::string_view property) const {
    if (property == property::kUid)
        return row.uid;
    if (property == property::kCreation)
        return row.creation;
    if (property == property::kModification)
        return row.modification;
    try {
        const auto found = encodedIn(row, property);
        return found.empty() ? Value() : decodeValue(found);
    } catch (const DamagedCard& error) {
        damaged(row.id, error.what());
    }
}

std::string_view Store::Impl::encodedIn(const RecordRow& row, std::string_view property) const {
    if (!row.sound)
        checkCard(row.card);
    row.sound = true;
    return findInCard(row.card, property).value_or(std::string_view());
}

std::map<std::string, Value> Store::Impl::cardValues(const RecordRow& row) const {
    std::map<std::string, Value> values;
    try {
        visitCard(row.card, [&](std::string_view name, std::string_view bytes) {
            values.insert_or_assign(std::string(name), decodeValue(bytes));
        });
    } catch (const DamagedCard& error) {
        damaged(row.id, error.what());
    }
    return values;
}

std::string Store::Impl::uidIn(const sql::Run& run, int column) const {
    if (run.isText(column))
        return std::string(run.text(column));
    auto uid = unpackUid(run.bytes(column));
    if (!uid)
        damaged("a unique id has the wrong length");
    return std::move(*uid);
}

Kind Store::Impl::kindIn(const sql::Run& run, int column) const {
    const std::int64_t kind = run.integer(column);
    if (kind != static_cast<int>(Kind::person) && kind != static_cast<int>(Kind::group))
        damaged("a record is neither person nor group");
    return static_cast<Kind>(kind);
}

void Store::Impl::damaged(const std::string& what) const {
    throw StoreError(StoreError::Reason::damaged, "The address book " + db.file().string() + " is damaged (" +
                                                      what + "): check it, or restore it from a backup.");
}

void Store::Impl::damaged(RowId row, const std::string& what) const {
    damaged("record " + std::to_string(row) + ": " + what);
}

std::optional<RecordRef> Store::find(std::string_view uid) const {
    const StoredUid stored(uid);
    auto run = impl_->db.run("SELECT id, kind FROM record WHERE uid = ?");
    stored.bind(run);
    if (!run.step())
        return std::nullopt;
    return RecordRef{run.integer(0), impl_->kindIn(run, 1), std::string(uid)};
}

std::optional<RecordRef> Store::find(RowId row) const {
    auto run = impl_->db.run("SELECT kind, uid FROM record WHERE id = ?");
    run.bindInteger(row);
    if (!run.step())
        return std::nullopt;
    return RecordRef{row, impl_->kindIn(run, 0), impl_->uidIn(run, 1)};
}

std::vector<RowId> Store::rows(Kind kind) const {
    auto run = impl_->db.run("SELECT id FROM record WHERE kind = ? ORDER BY id");
    run.bindInteger(static_cast<int>(kind));
    return rowsOf(std::move(run));
}

std::int64_t Store::count(Kind kind) const {
    auto run = impl_->db.run("SELECT count(*) FROM record WHERE kind = ?");
    run.bindInteger(static_cast<int>(kind));
    return run.step() ? run.integer(0) : 0;
}

Value Store::value(RowId row, std::string_view property) const {
    if (property == property::kImage) {
        auto run = impl_->db.run("SELECT data FROM picture WHERE record = ?");
        run.bindInteger(row);
        if (!run.step())
            return {};
        const std::string_view data = run.bytes(0);
        return Bytes(data.begin(), data.end());
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
    auto run = impl_->db.run("SELECT id, kind, uid, creation, modification, card FROM record WHERE id >= ? "
                             "ORDER BY id LIMIT ?");
    run.bindInteger(row).bindInteger(static_cast<std::int64_t>(count));
    std::vector<RecordRow> records;
    while (run.step())
        records.push_back(impl_->rowFrom(run));
    return records;
}

Value Store::value(const RecordRow& record, std::string_view property) const {
    return record.id != 0 ? impl_->valueOf(record, property) : Value();
}

std::string_view Store::encodedValue(const RecordRow& record, std::string_view property) const {
    if (record.id == 0)
        return {};
    try {
        return impl_->encodedIn(record, property);
    } catch (const DamagedCard& error) {
        damaged(record, error.what());
    }
}

void Store::damaged(const RecordRow& record, const std::string& what) const {
    impl_->damaged(record.id, what);
}

std::map<std::string, Value> Store::values(const RecordRow& record) const {
    if (record.id == 0)
        return {};
    auto values = impl_->cardValues(record);
    values.insert_or_assign(std::string(property::kUid), record.uid);
    values.insert_or_assign(std::string(property::kCreation), record.creation);
    values.insert_or_assign(std::string(property::kModification), record.modification);
    return values;
}

Store::Reading::Reading(const Store& store) : store_(store) {
    store_.impl_->follow();
    if (store_.impl_->readings == 0)
        store_.impl_->reading.emplace(store_.impl_->db, sql::Transaction::Mode::read);
    ++store_.impl_->readings;
}

Store::Reading::~Reading() {
    if (--store_.impl_->readings != 0)
        return;
    try {
        store_.impl_->reading->commit();
    } catch (const StoreError&) { // nothing was written; it is undone
    }
    store_.impl_->reading.reset();
}

std::vector<RowId> Store::members(RowId group) const {
    auto run = impl_->db.run("SELECT member FROM membership WHERE parent = ? AND kind = 0 ORDER BY place");
    run.bindInteger(group);
    return rowsOf(std::move(run));
}

std::vector<RowId> Store::subgroups(RowId group) const {
    auto run = impl_->db.run("SELECT member FROM membership WHERE parent = ? AND kind = 1 ORDER BY place");
    run.bindInteger(group);
    return rowsOf(std::move(run));
}

std::vector<RowId> Store::parents(RowId record) const {
    auto run = impl_->db.run("SELECT parent FROM membership WHERE member = ? ORDER BY parent");
    run.bindInteger(record);
    return rowsOf(std::move(run));
}

std::optional<std::string> Store::me() const {
    auto run = impl_->db.run("SELECT value FROM meta WHERE name = 'me'");
    return run.step() ? std::optional(std::string(run.text(0))) : std::nullopt;
}

std::vector<PropertyDefinition> Store::definitions() const {
    auto run =
        impl_->db.run("SELECT kind, name, type FROM definition JOIN property ON property.id = property "
                      "ORDER BY definition.id");
    std::vector<PropertyDefinition> definitions;
    while (run.step())
        definitions.push_back(
            {impl_->kindIn(run, 0), std::string(run.text(1)), static_cast<int>(run.integer(2))});
    return definitions;
}

std::int64_t Store::lastChange() const {
    impl_->follow();
    auto run = impl_->db.run("SELECT max(id) FROM change");
    return run.step() ? run.integer(0) : 0;
}

std::vector<LoggedChange> Store::changesSince(std::int64_t change) const {
    std::vector<LoggedChange> changes;
    auto run =
        impl_->db.run("SELECT id, inserted, updated, deleted, origin FROM change WHERE id > ? ORDER BY id");
    run.bindInteger(change);
    const std::string mark = processMark();
    while (run.step()) {
        const std::int64_t id = run.integer(0);
        if (changes.empty() && id > change + 1)
            changes.push_back({id - 1, {}, {}, {}, false}); // the log no longer tells what happened before
        const bool own = run.bytes(4) == mark;
        LoggedChange one{id, {}, {}, {}, own};
        try {
            one.inserted = decodeUids(run.bytes(1));
            one.updated = decodeUids(run.bytes(2));
            one.deleted = decodeUids(run.bytes(3));
        } catch (const DamagedCard&) {
            one = {id, {}, {}, {}, own};
        }
        changes.push_back(std::move(one));
    }
    return changes;
}

} // namespace addressbook
