// Saving: one transaction that writes everything or nothing.

#include "frameworks/AddressBook/store/impl.h"

#include "frameworks/AddressBook/store/checksum.h"
#include "frameworks/AddressBook/store/index.h"
#include "frameworks/AddressBook/store/record_codec.h"
#include "frameworks/AddressBook/store/save_sync.h"
#include "frameworks/AddressBook/store/watch.h"

#include <algorithm>
#include <stdexcept>
#include <unordered_set>

namespace addressbook {
namespace {

using Reason = StoreError::Reason;

constexpr std::size_t kMostLogged =
    100'000; // unique ids that one save logs; with more it logs that anything may have changed
constexpr std::int64_t kLoggedSaves = 10'000; // saves that the log keeps, unless they are too large:
// A save of at least kLargeSave records also trims the log when its lists have more than kMostLogBytes bytes.
constexpr std::size_t kLargeSave = 100;
constexpr std::int64_t kMostLogBytes = 16 << 20;
// The most rows of the table `deleted`, of about 45 bytes each.
constexpr std::int64_t kMostDeleted = 1'000'000;
// A save of at most kSmallSave records and memberships may leave the search indexes to a later one, when its
// backlog (backlog.h) takes at most kMostBacklogBytes bytes.
constexpr std::size_t kSmallSave = 8;
constexpr std::size_t kMostBacklogBytes = 2048;
// A large save updates the indexes each time this many values were replaced, to bound its memory.
constexpr std::size_t kMostReplaced = 20'000;

// Whether an update never writes the property.
bool isKept(std::string_view property) {
    return !isInRecord(property) && property != property::kImage;
}

// The work of one save, inside its transaction.
class Saver {
  public:
    Saver(Store::Impl& impl, const ChangeSet& changes)
        : impl_(impl), db_(impl.db), changes_(changes), index_(db_, endingProperties(db_)) {}

    SaveResult run() {
        if (!small_) {
            flushBacklog(impl_, index_, {});
        }
        for (const PropertyDefinition& definition : changes_.removedDefinitions) {
            undefine(definition);
        }
        for (const PropertyDefinition& definition : changes_.definitions) {
            define(definition);
        }
        for (const NamedProperty& property : changes_.removedEndings) {
            endEndings(property);
        }
        for (const NamedProperty& property : changes_.endings) {
            beginEndings(property);
        }
        for (const std::string& uid : changes_.removed) {
            removeRecord(uid);
        }
        for (const RecordChange& change : changes_.records) {
            writeRecord(change);
        }
        // Removals first, so that groups which swap places never form a circle.
        for (const bool add : {false, true}) {
            for (const MembershipChange& change : changes_.memberships) {
                if (change.add == add) {
                    writeMembership(change);
                }
            }
        }
        if (changes_.me) {
            writeMe(*changes_.me);
        }
        if (!small_) {
            flushReplaced();
        }
        const bool wroteSync = saveSyncChanges(impl_, changes_.sync, result_);
        if (wroteSync || wroteSilently_ || wrote_ || !changed_.empty() || !result_.deleted.empty()) {
            log();
        }
        return std::move(result_);
    }

  private:
    // Definitions.
    void define(const PropertyDefinition& definition);
    void undefine(const PropertyDefinition& definition);

    // The index of endings.
    void beginEndings(const NamedProperty& property);
    void endEndings(const NamedProperty& property);

    // Records.
    void removeRecord(const std::string& uid);
    void writeRecord(const RecordChange& change);
    void insertRecord(const RecordChange& change);
    void updateRecord(const RecordRow& row, const std::map<std::string, Value>& values);
    void writePicture(RowId row, const Value& value);
    void touch(const RecordRow& row);
    bool updated(const RecordRow& row);

    // Changes that the search indexes do not have yet.
    void inserted(const RecordRow& row, std::string_view property, std::string_view value);
    void replaced(const RecordRow& row, std::string_view property, std::string_view before);
    void flushReplaced();

    // References to records.
    void writeMembership(const MembershipChange& change);
    bool contains(RowId group, RowId within);
    void writeMe(const std::string& uid);
    void missing(const std::string& uid);
    void log();

    [[noreturn]] void refuse(const std::string& what) const {
        throw StoreError(Reason::refused, db_.file(), "was not changed", what);
    }
    std::int64_t propertyOf(const RecordRow& row, std::string_view name) {
        return impl_.ensureProperty(row.kind, name);
    }

    Store::Impl& impl_;
    sql::Connection& db_;
    const ChangeSet& changes_;
    IndexWriter index_;
    Backlog replaced_; // properties that this save changed, and whose index entries are not updated yet
    SaveResult result_;
    std::unordered_set<RowId> changed_; // inserted or updated
    bool wrote_ = false;                // something was written that belongs to no record
    bool wroteSilently_ = false;        // something was written that tells nobody
    std::unordered_set<std::string> missing_;
    const std::unordered_set<std::string_view> removed_{changes_.removed.begin(), changes_.removed.end()};
    const bool small_ = removed_.empty() && changes_.removedDefinitions.empty() && changes_.endings.empty() &&
                        changes_.removedEndings.empty() &&
                        changes_.records.size() + changes_.memberships.size() <= kSmallSave;
};

void Saver::define(const PropertyDefinition& definition) {
    if (isInternal(definition.name) || builtInType(definition.kind, definition.name) != 0) {
        refuse("the property \"" + definition.name + "\" belongs to the address book itself");
    }
    db_.prepare("INSERT OR IGNORE INTO definition(property, type) VALUES (?, ?)")
        .bindInteger(impl_.ensureProperty(definition.kind, definition.name))
        .bindInteger(definition.type)
        .exec();
    wrote_ |= db_.changes() > 0;
}

void Saver::undefine(const PropertyDefinition& definition) {
    const auto property = impl_.propertyId(definition.kind, definition.name);
    if (!property) {
        return;
    }
    db_.prepare("DELETE FROM definition WHERE property = ?").bindInteger(*property).exec();
    if (db_.changes() == 0) {
        return;
    }
    wrote_ = true;
    std::vector<RowId> rows;
    for (auto statement =
             std::move(db_.prepare("SELECT DISTINCT record FROM term WHERE property = ? ORDER BY record")
                           .bindInteger(*property));
         statement.step();) {
        rows.push_back(statement.integer(0));
    }
    for (const RowId id : rows) {
        if (const auto row = impl_.record(id)) {
            updateRecord(*row, {{definition.name, Value()}});
        }
    }
    index_.endEndings(*property);
}

// Adds the endings of all texts that the records have of the property. The indexes have the same of them: the backlog
// is empty, as this is no small save, and what this one changes in records comes later.
void Saver::beginEndings(const NamedProperty& property) {
    if (isInternal(property.name) || property.name == property::kUid) {
        refuse("the property \"" + property.name + "\" has no endings that are looked up");
    }
    const std::int64_t id = impl_.ensureProperty(property.kind, property.name);
    if (!index_.beginEndings(id)) {
        return;
    }
    wroteSilently_ = true;
    auto statement =
        db_.prepare("SELECT id, kind, uid, creation, modification, card FROM record WHERE kind = ?");
    statement.bindInteger(static_cast<int>(property.kind));
    while (statement.step()) {
        const RecordRow row = impl_.rowFrom(statement);
        if (const std::string_view value = impl_.encodedIn(row, property.name); !value.empty()) {
            index_.addEndings(row.id, id, value);
        }
    }
    index_.flush();
}

void Saver::endEndings(const NamedProperty& property) {
    if (const auto id = impl_.propertyId(property.kind, property.name)) {
        wroteSilently_ |= index_.endEndings(*id);
    }
}

void Saver::removeRecord(const std::string& uid) {
    flushReplaced();
    const auto row = impl_.record(uid);
    if (!row) {
        return;
    }
    impl_.visitValues(*row, [&](std::string_view name, std::string_view value) {
        if (!isInternal(name)) {
            index_.remove(row->id, propertyOf(*row, name), value);
        }
    });
    index_.remove(row->id, propertyOf(*row, property::kCreation), encodeValue(row->creation));
    index_.remove(row->id, propertyOf(*row, property::kModification), encodeValue(row->modification));
    db_.prepare("DELETE FROM picture WHERE record = ?").bindInteger(row->id).exec();
    db_.prepare("DELETE FROM membership WHERE parent = ?").bindInteger(row->id).exec();
    db_.prepare("DELETE FROM membership WHERE member = ?").bindInteger(row->id).exec();
    db_.prepare("DELETE FROM meta WHERE name = 'me' AND value = ?").bindText(uid).exec();
    db_.prepare("DELETE FROM record WHERE id = ?").bindInteger(row->id).exec();
    const StoredUid stored(uid);
    auto statement = db_.prepare("INSERT OR REPLACE INTO deleted(id, kind, uid) VALUES (?, ?, ?)");
    statement.bindInteger(row->id).bindInteger(static_cast<int>(row->kind));
    bindUid(statement, stored);
    statement.exec();
    result_.deleted.push_back(uid);
}

void Saver::writeRecord(const RecordChange& change) {
    if (change.insert) {
        return insertRecord(change);
    }
    if (const auto row = impl_.record(change.uid)) {
        updateRecord(*row, change.values);
    } else if (!removed_.contains(change.uid)) {
        missing(change.uid);
    }
}

void Saver::insertRecord(const RecordChange& change) {
    RecordRow row{.id = 0,
                  .kind = change.kind,
                  .uid = StoredUid(change.uid),
                  .creation = changes_.time,
                  .modification = changes_.time,
                  .properties = change.card.empty() ? encodeValues(change.values) : change.card};
    if (const auto creation = change.values.find(std::string(property::kCreation));
        creation != change.values.end()) {
        if (const auto* date = creation->second.as<Date>()) {
            row.creation = *date;
        }
    }
    {
        auto statement = db_.prepare(
            "INSERT OR IGNORE INTO record(kind, uid, creation, modification, card) VALUES (?, ?, ?, ?, ?)");
        statement.bindInteger(static_cast<int>(row.kind));
        bindUid(statement, row.uid);
        statement.bindReal(row.creation.seconds)
            .bindReal(row.modification.seconds)
            .bindBlob(row.properties)
            .exec();
    }
    if (db_.changes() == 0) {
        refuse("there is already a record " + change.uid);
    }
    row.id = db_.lastRow();
    if (const auto picture = change.values.find(std::string(property::kImage));
        picture != change.values.end()) {
        writePicture(row.id, picture->second);
    }
    visitProperties(row.properties, [&](std::string_view name, std::string_view value) {
        if (!isInternal(name)) {
            inserted(row, name, value);
        }
    });
    inserted(row, property::kCreation, encodeValue(row.creation));
    inserted(row, property::kModification, encodeValue(row.modification));
    changed_.insert(row.id);
    result_.inserted.push_back(change.uid);
    result_.insertedRows.push_back(row.id);
}

void Saver::updateRecord(const RecordRow& row, const std::map<std::string, Value>& values) {
    std::map<std::string, std::string> kept;
    try {
        visitProperties(row.properties,
                        [&](std::string_view name, std::string_view bytes) { kept.emplace(name, bytes); });
        for (const auto& [name, value] : values) {
            if (isKept(name)) {
                continue;
            }
            if (name == property::kImage) {
                writePicture(row.id, value);
                continue;
            }
            const auto old = kept.find(name);
            std::string bytes = value.empty() ? std::string() : encodeValue(value);
            if (old == kept.end() ? value.empty() : old->second == bytes) {
                continue;
            }
            if (!isInternal(name)) {
                replaced(row, name, old == kept.end() ? std::string_view() : old->second);
            }
            if (value.empty()) {
                kept.erase(old);
            } else {
                kept.insert_or_assign(name, std::move(bytes));
            }
        }
    } catch (const DamagedRecord& error) {
        impl_.reportDamage(row.id, error.what());
    }
    const std::string card = encodeRecord(kept);
    db_.prepare("UPDATE record SET card = ?, modification = ? WHERE id = ?")
        .bindBlob(card)
        .bindReal(changes_.time.seconds)
        .bindInteger(row.id)
        .exec();
    updated(row);
    if (replaced_.size() >= kMostReplaced) {
        flushReplaced();
    }
}

void Saver::writePicture(RowId row, const Value& value) {
    if (value.empty()) {
        db_.prepare("DELETE FROM picture WHERE record = ?").bindInteger(row).exec();
        return;
    }
    const auto* data = value.as<Bytes>();
    if (data == nullptr) {
        refuse("a picture must be data");
    }
    const std::string_view bytes(reinterpret_cast<const char*>(data->data()), data->size());
    db_.prepare("INSERT OR REPLACE INTO picture(record, data, checksum) VALUES (?, ?, ?)")
        .bindInteger(row)
        .bindBlob(bytes)
        .bindInteger(static_cast<std::int64_t>(checksum(bytes)))
        .exec();
}

// Writes the date of this save as a record's modification date.
void Saver::touch(const RecordRow& row) {
    if (!updated(row)) {
        return;
    }
    db_.prepare("UPDATE record SET modification = ? WHERE id = ?")
        .bindReal(changes_.time.seconds)
        .bindInteger(row.id)
        .exec();
}

// Notes that a record was changed by this save; returns false when that was noted already.
bool Saver::updated(const RecordRow& row) {
    if (!changed_.insert(row.id).second) {
        return false;
    }
    result_.updated.push_back(row.uid.text());
    if (row.modification == changes_.time) {
        return false;
    }
    replaced(row, property::kModification, encodeValue(row.modification));
    return true;
}

// Notes a new record's encoded value for the indexes.
void Saver::inserted(const RecordRow& row, std::string_view property, std::string_view value) {
    if (small_) {
        replaced(row, property, {});
    } else {
        index_.add(row.id, propertyOf(row, property), value);
    }
}

// Notes for the indexes that a value was replaced. [before] is the old value, encoded; empty when there was
// none.
void Saver::replaced(const RecordRow& row, std::string_view property, std::string_view before) {
    replaced_.try_emplace({propertyOf(row, property), row.id}, before);
}

void Saver::flushReplaced() {
    applyBacklog(impl_, index_, replaced_);
    replaced_.clear();
}

void Saver::writeMembership(const MembershipChange& change) {
    if (removed_.contains(change.group)) {
        return;
    }
    const auto group = impl_.record(change.group);
    if (!group || group->kind != Kind::group) {
        return missing(change.group);
    }
    const auto member = impl_.record(change.member);
    if (!member) {
        if (change.add && !removed_.contains(change.member)) {
            missing(change.member);
        }
        return;
    }
    if (change.add) {
        if (member->kind == Kind::group && contains(member->id, group->id)) {
            result_.circular.push_back(change);
            return;
        }
        db_.prepare("INSERT OR IGNORE INTO membership(parent, place, member, kind) VALUES "
                    "(?1, (SELECT coalesce(max(place), 0) + 1 FROM membership WHERE parent = ?1), ?2, ?3)")
            .bindInteger(group->id)
            .bindInteger(member->id)
            .bindInteger(static_cast<int>(member->kind))
            .exec();
    } else {
        db_.prepare("DELETE FROM membership WHERE member = ? AND parent = ?")
            .bindInteger(member->id)
            .bindInteger(group->id)
            .exec();
    }
    if (db_.changes() > 0) {
        touch(*group);
    }
}

// Whether [group] is [within], or inside it through any number of groups.
bool Saver::contains(RowId group, RowId within) {
    auto statement = db_.prepare(
        "WITH RECURSIVE above(id) AS (VALUES (?1) UNION SELECT parent FROM membership JOIN above ON "
        "member = above.id) SELECT 1 FROM above WHERE id = ?2");
    statement.bindInteger(within).bindInteger(group);
    return statement.step();
}

void Saver::writeMe(const std::string& uid) {
    if (uid.empty()) {
        db_.prepare("DELETE FROM meta WHERE name = 'me'").exec();
        wrote_ |= db_.changes() > 0;
        return;
    }
    if (removed_.contains(uid)) {
        return;
    }
    if (!impl_.record(uid)) {
        return missing(uid);
    }
    db_.prepare("INSERT OR REPLACE INTO meta(name, value) VALUES ('me', ?)").bindText(uid).exec();
    wrote_ = true;
}

void Saver::missing(const std::string& uid) {
    if (missing_.insert(uid).second) {
        result_.missing.push_back(uid);
    }
}

void Saver::log() {
    const std::size_t count = result_.inserted.size() + result_.updated.size() + result_.deleted.size();
    const bool all = count > kMostLogged;
    const bool silent = count == 0 && !wrote_; // only what tells nobody was written
    const auto encoded = [&](const std::vector<std::string>& uids) {
        return encodeUids(all ? std::vector<std::string>() : uids);
    };
    const std::string inserted = encoded(result_.inserted);
    const std::string updated = encoded(result_.updated);
    const std::string deleted = encoded(result_.deleted);
    const std::string mark = processMark();
    const std::string backlog = replaced_.empty() ? std::string() : encodeBacklog(replaced_);
    const bool leaves = !backlog.empty() && backlog.size() <= kMostBacklogBytes;
    {
        auto statement = db_.prepare("INSERT INTO change(inserted, updated, deleted, origin, silent, "
                                     "replaced) VALUES (?, ?, ?, ?, nullif(?, 0), ?)");
        statement.bindBlob(inserted).bindBlob(updated).bindBlob(deleted).bindBlob(mark).bindInteger(
            silent ? 1 : 0);
        if (leaves) {
            statement.bindBlob(backlog);
        }
        statement.exec();
    }
    result_.change = db_.lastRow();
    const bool tidies = result_.change % kSavesInBacklog == 0;
    if (tidies || !(leaves || backlog.empty())) {
        flushBacklog(impl_, index_, std::move(replaced_));
    }
    if (tidies) {
        tidyTexts(db_);
    }
    if (!tidies && count < kLargeSave) {
        return;
    }
    db_.prepare("DELETE FROM change WHERE id <= ?").bindInteger(result_.change - kLoggedSaves).exec();
    db_.prepare("DELETE FROM deleted WHERE number <= (SELECT max(number) FROM deleted) - ?")
        .bindInteger(kMostDeleted)
        .exec();
    if (count < kLargeSave) {
        return;
    }
    db_.prepare("DELETE FROM change WHERE id < ?1 AND id IN (SELECT id FROM (SELECT id, "
                "sum(length(inserted) + length(updated) + length(deleted)) OVER (ORDER BY id DESC) AS bytes "
                "FROM change) WHERE bytes > ?2)")
        .bindInteger(result_.change)
        .bindInteger(kMostLogBytes)
        .exec();
}

// Whether one of the saves after changes.basis was about a record that [changes] is about, or may have been.
bool isOutdated(const Store& store, sql::Connection& db, const ChangeSet& changes) {
    const std::int64_t basis = *changes.basis;
    auto silent = db.prepare("SELECT 1 FROM change WHERE id > ? AND silent IS NOT NULL");
    silent.bindInteger(basis);
    if (silent.step()) {
        return true;
    }
    const std::vector<LoggedChange> saves = store.changesSince(basis);
    if (saves.empty()) {
        return false;
    }
    std::unordered_set<std::string_view> about(changes.removed.begin(), changes.removed.end());
    for (const RecordChange& change : changes.records) {
        about.insert(change.uid);
    }
    for (const MembershipChange& change : changes.memberships) {
        about.insert(change.group);
        about.insert(change.member);
    }
    for (const SyncLink& link : changes.sync.links) {
        about.insert(link.uid);
    }
    const auto isAbout = [&](const std::vector<std::string>& uids) {
        return std::any_of(uids.begin(), uids.end(),
                           [&](const std::string& uid) { return about.contains(uid); });
    };
    return std::any_of(saves.begin(), saves.end(), [&](const LoggedChange& save) {
        return save.tellsNothing() || isAbout(save.inserted) || isAbout(save.updated) ||
               isAbout(save.deleted);
    });
}

} // namespace

SaveResult Store::save(const ChangeSet& changes) {
    if (changes.empty()) {
        return {};
    }
    if (impl_->opened.readOnly) {
        throw readOnlyError(file());
    }
    const auto forgetIds = [this] { // those that were given in the transaction are undone with it
        for (auto& known : impl_->propertyIds) {
            known.clear();
        }
    };
    try {
        sql::Transaction transaction(impl_->db, sql::Transaction::Mode::write);
        if (moved()) {
            throw StoreError(Reason::io, file(), "was moved, removed or replaced while it was open",
                             "put it back, or start this program again");
        }
        if (changes.basis && isOutdated(*this, impl_->db, changes)) {
            SaveResult nothing;
            nothing.outdated = true;
            return nothing;
        }
        SaveResult result = Saver(*impl_, changes).run();
        transaction.commit();
        if (result.change != 0) {
            notifyWatchers(file());
        }
        return result;
    } catch (const std::length_error& error) {
        forgetIds();
        throw StoreError(Reason::refused, file(), "was not changed", error.what());
    } catch (const DamagedRecord& error) { // a record of which values are changed or removed
        forgetIds();
        impl_->reportDamage(error.what());
    } catch (...) {
        forgetIds();
        throw;
    }
}

} // namespace addressbook
