// Reading what is noted for keeping in step with servers.

#include "frameworks/AddressBook/store/deflate.h"
#include "frameworks/AddressBook/store/impl.h"
#include "frameworks/AddressBook/store/record_codec.h"

namespace addressbook {
namespace {

// Returns the link in a row of collection, href, uid, etag, leaves and, if [withText], text.
SyncLink linkFrom(const Store::Impl& impl, const sql::Statement& statement, bool withText) {
    SyncLink link;
    link.collection = statement.integer(0);
    link.href = statement.text(1);
    link.uid = impl.uidIn(statement, 2).text();
    link.etag = statement.text(3);
    link.leaves = statement.integer(4) != 0;
    if (withText) {
        auto text = inflated(statement.blob(5));
        if (!text) {
            impl.reportDamage("the card of " + link.href + " as it was agreed with the server");
        }
        link.text = *std::move(text);
    }
    return link;
}

} // namespace

std::vector<SyncAccount> Store::syncAccounts() const {
    std::vector<SyncAccount> accounts;
    auto statement = impl_->db.prepare(
        "SELECT id, url, user, name, source, password, authorities, plain FROM account ORDER BY id");
    while (statement.step()) {
        accounts.push_back({statement.integer(0), std::string(statement.text(1)),
                            std::string(statement.text(2)), std::string(statement.text(3)),
                            static_cast<PasswordSource>(statement.integer(4)), std::string(statement.text(5)),
                            std::string(statement.text(6)), statement.integer(7) != 0});
    }
    return accounts;
}

std::vector<SyncCollection> Store::syncCollections() const {
    std::vector<SyncCollection> collections;
    auto statement =
        impl_->db.prepare("SELECT id, account, url, name, state, change, main FROM collection ORDER BY id");
    while (statement.step()) {
        collections.push_back({statement.integer(0), statement.integer(1), std::string(statement.text(2)),
                               std::string(statement.text(3)), std::string(statement.text(4)),
                               statement.integer(5), statement.integer(6) != 0});
    }
    return collections;
}

std::vector<SyncConflict> Store::syncConflicts() const {
    std::vector<SyncConflict> conflicts;
    auto statement =
        impl_->db.prepare("SELECT id, uid, property, label, value, time, remote FROM conflict ORDER BY id");
    while (statement.step()) {
        SyncConflict conflict;
        conflict.id = statement.integer(0);
        conflict.uid = impl_->uidIn(statement, 1).text();
        conflict.property = statement.text(2);
        conflict.label = statement.text(3);
        conflict.time = Date{statement.real(5)};
        conflict.remote = statement.integer(6) != 0;
        try {
            conflict.value = decodeValue(statement.blob(4));
        } catch (const DamagedRecord& error) {
            impl_->reportDamage("a conflict of " + conflict.uid + ": " + error.what());
        }
        conflicts.push_back(std::move(conflict));
    }
    return conflicts;
}

std::optional<SyncLink> Store::syncLink(std::int64_t collection, std::string_view href) const {
    auto statement = impl_->db.prepare(
        "SELECT collection, href, uid, etag, leaves, text FROM link WHERE collection = ? AND href = ?");
    statement.bindInteger(collection).bindText(href);
    return statement.step() ? std::optional(linkFrom(*impl_, statement, true)) : std::nullopt;
}

std::vector<SyncLink> Store::syncLinksOf(std::string_view uid) const {
    std::vector<SyncLink> links;
    const StoredUid stored(uid);
    auto statement = impl_->db.prepare(
        "SELECT collection, href, uid, etag, leaves, text FROM link WHERE uid = ? ORDER BY leaves, id");
    bindUid(statement, stored);
    while (statement.step()) {
        links.push_back(linkFrom(*impl_, statement, true));
    }
    return links;
}

void Store::visitSyncLinks(std::int64_t collection, const std::function<void(SyncLink&&)>& visit) const {
    auto statement = impl_->db.prepare(
        "SELECT collection, href, uid, etag, leaves FROM link WHERE collection = ? ORDER BY id");
    statement.bindInteger(collection);
    while (statement.step()) {
        visit(linkFrom(*impl_, statement, false));
    }
}

} // namespace addressbook
