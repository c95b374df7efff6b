// Opening a store, and what its sources share: unique ids, ids of properties, damage reports.

#include "frameworks/AddressBook/store/impl.h"

#include "frameworks/AddressBook/store/file/paths.h"
#include "frameworks/AddressBook/store/index.h"
#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/values/uid.h"

#include <cerrno>
#include <mutex>
#include <system_error>
#include <unistd.h>

namespace addressbook {

void bindUid(sql::Statement& statement, const StoredUid& uid) {
    if (uid.isPacked()) {
        statement.bindBlob(uid.bytes());
    } else {
        statement.bindText(uid.bytes());
    }
}

std::string processMark() {
    struct Mark {
        pid_t process = 0;
        std::string bytes;
    };
    static std::mutex lock;
    // Never destroyed: the thread of a watch may use it while the process ends.
    static Mark& mark = *new Mark;
    const std::lock_guard<std::mutex> guard(lock);
    if (mark.process != getpid()) {
        mark = {getpid(), newUuid()};
    }
    return mark.bytes;
}

Store::Impl::Impl(const std::filesystem::path& folder, Access access, std::chrono::milliseconds busyTimeout)
    : opened(openAddressBook(folder, access, busyTimeout)), db(*opened.connection) {
    if (opened.readOnly) {
        return;
    }
    const bool current = [this] {
        auto statement = db.prepare("SELECT value FROM meta WHERE name = 'unicode'");
        return statement.step() && statement.text(0) == unicodeVersion();
    }();
    if (!current) {
        rebuildIndexes();
    }
}

const Backlog& Store::Impl::backlog() {
    const std::uint32_t state = db.dataVersion();
    if (state != backlogVersion) {
        backlogVersion.reset();
        knownBacklog = readBacklog(*this);
        backlogVersion = state;
    }
    return knownBacklog;
}

void Store::Impl::rebuildIndexes() {
    sql::Transaction transaction(db, sql::Transaction::Mode::write);
    db.prepare("UPDATE change SET replaced = NULL WHERE replaced IS NOT NULL").exec();
    db.prepare("DELETE FROM term").exec();
    db.prepare("INSERT INTO trigram(trigram) VALUES ('delete-all')").exec();
    IndexWriter index(db, endingProperties(db));
    {
        auto statement =
            db.prepare("SELECT id, kind, uid, creation, modification, card FROM record ORDER BY id");
        while (statement.step()) {
            const RecordRow row = rowFrom(statement);
            index.add(row.id, ensureProperty(row.kind, property::kCreation), encodeValue(row.creation));
            index.add(row.id, ensureProperty(row.kind, property::kModification),
                      encodeValue(row.modification));
            visitValues(row, [&](std::string_view name, std::string_view held) {
                if (!isInternal(name)) {
                    index.add(row.id, ensureProperty(row.kind, name), held);
                }
            });
        }
    }
    index.flush();
    const std::string unicode = unicodeVersion();
    db.prepare("INSERT OR REPLACE INTO meta(name, value) VALUES ('unicode', ?)").bindText(unicode).exec();
    transaction.commit();
}

void Store::Impl::reopenIfChanged() {
    if (!opened.stamp || readTransactions != 0 || !opened.stamp->outdated()) {
        return;
    }
    // Wait at most 1 s; on failure the caller keeps reading the old files.
    OpenedFile now = openAddressBook(db.file().parent_path(), Access::readOnly, std::chrono::seconds(1));
    db.exchange(*now.connection);
    opened.stamp = std::move(now.stamp);
    backlogVersion.reset();
    lastSearch.reset();
    knownChange.reset();
    for (auto& known : propertyIds) {
        known.clear();
    }
}

std::optional<std::int64_t> Store::Impl::propertyId(Kind kind, std::string_view name) {
    auto& known = propertyIds[static_cast<int>(kind)];
    if (const auto found = known.find(name); found != known.end()) {
        return found->second;
    }
    auto statement = db.prepare("SELECT id FROM property WHERE kind = ? AND name = ?");
    statement.bindInteger(static_cast<int>(kind)).bindText(name);
    if (!statement.step()) {
        return std::nullopt;
    }
    return known.emplace(name, statement.integer(0)).first->second;
}

std::string Store::Impl::propertyName(std::int64_t id) {
    auto statement = db.prepare("SELECT name FROM property WHERE id = ?");
    statement.bindInteger(id);
    return statement.step() ? std::string(statement.text(0)) : std::string();
}

std::int64_t Store::Impl::ensureProperty(Kind kind, std::string_view name) {
    if (const auto known = propertyId(kind, name)) {
        return *known;
    }
    db.prepare("INSERT INTO property(kind, name) VALUES (?, ?)")
        .bindInteger(static_cast<int>(kind))
        .bindText(name)
        .exec();
    const std::int64_t id = db.lastRow();
    if (id >= kMostProperties) {
        throw StoreError(StoreError::Reason::refused, db.file(), "has room for 65535 names of properties",
                         "use one of those");
    }
    propertyIds[static_cast<int>(kind)].emplace(name, id);
    return id;
}

Store::Store(const std::filesystem::path& folder, Access access, std::chrono::milliseconds busyTimeout)
    : impl_(std::make_unique<Impl>(folder, access, busyTimeout)) {}

Store::~Store() = default;

std::filesystem::path Store::defaultFolder() {
    return addressbook::defaultFolder();
}

const std::filesystem::path& Store::file() const {
    return impl_->db.file();
}

bool Store::readOnly() const {
    return impl_->opened.readOnly;
}

bool Store::readsWithoutLocks() const {
    return impl_->opened.stamp.has_value();
}

bool Store::moved() const {
    return impl_->db.moved();
}

bool ChangeSet::empty() const {
    return definitions.empty() && removedDefinitions.empty() && endings.empty() && removedEndings.empty() &&
           records.empty() && removed.empty() && memberships.empty() && !me && sync.empty();
}

} // namespace addressbook
