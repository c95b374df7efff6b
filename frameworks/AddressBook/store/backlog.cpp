#include "frameworks/AddressBook/store/backlog.h"

#include "frameworks/AddressBook/store/impl.h"
#include "frameworks/AddressBook/store/index.h"
#include "frameworks/AddressBook/store/record_codec.h"

#include <optional>

namespace addressbook {
namespace {

std::string_view bytesOf(const Bytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

} // namespace

// Writes an array of three values for each property: record, property, and the held value encoded once more,
// as it may be nested as deeply as the codec allows.
std::string encodeBacklog(const Backlog& backlog) {
    Array parts;
    for (const auto& [ref, held] : backlog) {
        parts.emplace_back(ref.record);
        parts.emplace_back(ref.property);
        parts.emplace_back(Bytes(held.begin(), held.end()));
    }
    return encodeValue(parts);
}

void decodeBacklog(std::string_view bytes, Backlog& backlog) {
    const Value value = decodeValue(bytes);
    const auto* parts = value.as<Array>();
    if (parts == nullptr || parts->size() % 3 != 0) {
        throw DamagedRecord("no list of replaced values");
    }
    for (std::size_t i = 0; i < parts->size(); i += 3) {
        const auto* record = (*parts)[i].as<std::int64_t>();
        const auto* property = (*parts)[i + 1].as<std::int64_t>();
        const auto* held = (*parts)[i + 2].as<Bytes>();
        if (record == nullptr || property == nullptr || held == nullptr) {
            throw DamagedRecord("no replaced value");
        }
        backlog.try_emplace({*property, *record}, bytesOf(*held));
    }
}

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
            index.remove(ref.record, ref.property, decodeValue(held));
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
            index.add(ref.record, ref.property, value);
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
