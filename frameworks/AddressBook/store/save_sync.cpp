#include "frameworks/AddressBook/store/save_sync.h"

#include "frameworks/AddressBook/store/deflate.h"
#include "frameworks/AddressBook/store/impl.h"
#include "frameworks/AddressBook/store/record_codec.h"

namespace addressbook {
namespace {

using Reason = StoreError::Reason;

class SyncSaver {
  public:
    SyncSaver(Store::Impl& impl, const SyncChanges& changes, SaveResult& result)
        : db_(impl.db), changes_(changes), result_(result) {}

    bool run() {
        for (const std::int64_t id : changes_.removedAccounts) {
            remove("DELETE FROM link WHERE collection IN (SELECT id FROM collection WHERE account = ?)", id);
            remove("DELETE FROM collection WHERE account = ?", id);
            remove("DELETE FROM account WHERE id = ?", id);
        }
        for (const std::int64_t id : changes_.removedCollections) {
            remove("DELETE FROM link WHERE collection = ?", id);
            remove("DELETE FROM collection WHERE id = ?", id);
        }
        for (const std::int64_t id : changes_.removedConflicts) {
            remove("DELETE FROM conflict WHERE id = ?", id);
        }
        for (const auto& [collection, href] : changes_.removedLinks) {
            db_.prepare("DELETE FROM link WHERE collection = ? AND href = ?")
                .bindInteger(collection)
                .bindText(href)
                .exec();
            note();
        }
        for (const SyncAccount& account : changes_.accounts) {
            write(account);
        }
        for (const SyncCollection& collection : changes_.collections) {
            write(collection);
        }
        for (const SyncLink& link : changes_.links) {
            write(link);
        }
        for (const SyncConflict& conflict : changes_.conflicts) {
            write(conflict);
        }
        return wrote_;
    }

  private:
    [[noreturn]] void refuse(const std::string& what) const {
        throw StoreError(Reason::refused, db_.file(), "was not changed", what);
    }

    bool note() {
        const bool changed = db_.changes() > 0;
        wrote_ = wrote_ || changed;
        return changed;
    }

    void remove(const char* sql, std::int64_t id) {
        db_.prepare(sql).bindInteger(id).exec();
        note();
    }

    void write(const SyncAccount& account) {
        const bool isNew = account.id == 0;
        auto statement = db_.prepare(
            isNew ? "INSERT OR IGNORE INTO account(url, user, name, source, password, authorities, plain) "
                    "VALUES (?, ?, ?, ?, ?, ?, ?)"
                  : "UPDATE OR IGNORE account SET url = ?, user = ?, name = ?, source = ?, password = ?, "
                    "authorities = ?, plain = ? WHERE id = ?");
        statement.bindText(account.url).bindText(account.user).bindText(account.name);
        statement.bindInteger(static_cast<int>(account.source)).bindText(account.password);
        statement.bindText(account.caFile).bindInteger(account.allowHttp ? 1 : 0);
        if (!isNew) {
            statement.bindInteger(account.id);
        }
        statement.exec();
        if (!note()) {
            refuse("there is already an account " + account.name + ", or this one is gone");
        }
        if (isNew) {
            result_.accounts.push_back(db_.lastRow());
        }
    }

    void write(const SyncCollection& collection) {
        const bool isNew = collection.id == 0;
        std::int64_t account = collection.account;
        if (account == 0 && result_.accounts.empty()) {
            refuse("the address book " + collection.url + " belongs to no account");
        }
        account = account == 0 ? result_.accounts.back() : account;
        if (collection.isDefault) {
            db_.prepare("UPDATE collection SET main = 0 WHERE main <> 0").exec();
        }
        auto statement = db_.prepare(isNew ? "INSERT OR IGNORE INTO collection(account, url, name, state, "
                                             "change, main) VALUES (?, ?, ?, ?, ?, ?)"
                                           : "UPDATE OR IGNORE collection SET account = ?, url = ?, name = "
                                             "?, state = ?, change = ?, main = ? "
                                             "WHERE id = ?");
        statement.bindInteger(account).bindText(collection.url).bindText(collection.name);
        statement.bindText(collection.state)
            .bindInteger(collection.change)
            .bindInteger(collection.isDefault ? 1 : 0);
        if (!isNew) {
            statement.bindInteger(collection.id);
        }
        statement.exec();
        if (!note()) {
            refuse("the address book " + collection.url + " is there already, or is gone");
        }
        if (isNew) {
            result_.collections.push_back(db_.lastRow());
        }
    }

    void write(const SyncLink& link) {
        const StoredUid uid(link.uid);
        if (!link.leaves) { // an index allows no second, and would not say which
            auto owner = db_.prepare(
                "SELECT 1 FROM link WHERE uid = ? AND leaves = 0 AND NOT (collection = ? AND href = ?)");
            bindUid(owner, uid);
            owner.bindInteger(link.collection).bindText(link.href);
            if (owner.step()) {
                refuse("the record " + link.uid + " belongs to another card already");
            }
        }
        const std::string text = deflated(link.text);
        auto statement = db_.prepare(
            "INSERT INTO link(collection, href, uid, etag, leaves, text) SELECT id, ?, ?, ?, ?, ? FROM "
            "collection WHERE id = ? ON CONFLICT (collection, href) DO UPDATE SET uid = excluded.uid, "
            "etag = excluded.etag, leaves = excluded.leaves, text = excluded.text");
        statement.bindText(link.href);
        bindUid(statement, uid);
        statement.bindText(link.etag)
            .bindInteger(link.leaves ? 1 : 0)
            .bindBlob(text)
            .bindInteger(link.collection);
        statement.exec();
        if (!note()) {
            refuse("the address book of the card " + link.href + " is gone");
        }
    }

    void write(const SyncConflict& conflict) {
        const StoredUid uid(conflict.uid);
        const std::string value = encodeValue(conflict.value);
        auto statement = db_.prepare(
            "INSERT INTO conflict(uid, property, label, value, time, remote) VALUES (?, ?, ?, ?, ?, ?)");
        bindUid(statement, uid);
        statement.bindText(conflict.property).bindText(conflict.label).bindBlob(value);
        statement.bindReal(conflict.time.seconds).bindInteger(conflict.remote ? 1 : 0).exec();
        note();
    }

    sql::Connection& db_;
    const SyncChanges& changes_;
    SaveResult& result_;
    bool wrote_ = false;
};

} // namespace

bool SyncChanges::empty() const {
    return removedAccounts.empty() && removedCollections.empty() && removedConflicts.empty() &&
           removedLinks.empty() && accounts.empty() && collections.empty() && links.empty() &&
           conflicts.empty();
}

bool saveSyncChanges(Store::Impl& impl, const SyncChanges& changes, SaveResult& result) {
    return SyncSaver(impl, changes, result).run();
}

} // namespace addressbook
