#include "frameworks/AddressBook/store/backlog.h"

#include "frameworks/AddressBook/store/impl.h"
#include "frameworks/AddressBook/store/index.h"
#include "frameworks/AddressBook/store/record_codec.h"

#include <optional>

namespace addressbook {
Backlog readBacklog(Store::Impl& impl) {
    Backlog backlog;
    auto statement =
        impl.db.prepare("SELECT replaced FROM (SELECT id, replaced FROM change ORDER BY id DESC LIMIT ?) "
                        "WHERE replaced IS NOT NULL ORDER BY id");
    statement.bindInteger(kSavesInBacklog);
    try {
        while (statement.step()) {
            decodeBacklog(statement.blob(0), backlog);
        }
    } catch (const DamagedRecord& error) {
        impl.reportDamage(std::string("the change log: ") + error.what());
    }
    return backlog;
}

void applyBacklog(Store::Impl& impl, IndexWriter& index, const Backlog& backlog) {
    for (const auto& [ref, held] : backlog) {
        if (!held.empty()) {
            index.remove(ref.record, ref.property, held);
        }
    }
    std::map<RowId, std::optional<RecordRow>> rows;
    std::int64_t property = 0;
    std::string name;
    for (const auto& [ref, held] : backlog) {
        if (property != ref.property) {
            name = impl.propertyName(property = ref.property);
        }
        const auto [known, isNew] = rows.try_emplace(ref.record);
        if (isNew) {
            known->second = impl.record(ref.record);
        }
        if (!known->second) {
            continue;
        }
        if (const Value value = impl.valueOf(*known->second, name); !value.empty()) {
            index.add(ref.record, ref.property, encodeValue(value));
        }
    }
    index.flush();
}

void flushBacklog(Store::Impl& impl, IndexWriter& index, Backlog newer) {
    Backlog backlog = readBacklog(impl);
    backlog.merge(newer);
    if (backlog.empty()) {
        return;
    }
    applyBacklog(impl, index, backlog);
    impl.db
        .prepare(
            "UPDATE change SET replaced = NULL WHERE replaced IS NOT NULL AND id IN (SELECT id FROM change "
            "ORDER BY id DESC LIMIT ?)")
        .bindInteger(kSavesInBacklog)
        .exec();
}

} // namespace addressbook
