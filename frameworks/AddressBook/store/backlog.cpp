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

// Three values for each property, the last one encoded by itself: it may be nested as deeply as values may.
std::string encodeBacklog(const Backlog& backlog) {
    Array parts;
    for (const auto& [slot, held] : backlog) {
        parts.emplace_back(slot.record);
        parts.emplace_back(slot.property);
        parts.emplace_back(Bytes(held.begin(), held.end()));
    }
    return encodeValue(parts);
}

void decodeBacklog(std::string_view bytes, Backlog& backlog) {
    const Value value = decodeValue(bytes);
    const auto* parts = value.as<Array>();
    if (parts == nullptr || parts->size() % 3 != 0)
        throw DamagedCard("no list of replaced values");
    for (std::size_t i = 0; i < parts->size(); i += 3) {
        const auto* record = (*parts)[i].as<std::int64_t>();
        const auto* property = (*parts)[i + 1].as<std::int64_t>();
        const auto* held = (*parts)[i + 2].as<Bytes>();
        if (record == nullptr || property == nullptr || held == nullptr)
            throw DamagedCard("no replaced value");
        backlog.try_emplace({*property, *record}, bytesOf(*held));
    }
}

Backlog readBacklog(Store::Impl& impl) {
    Backlog backlog;
    auto run = impl.db.run("SELECT replaced FROM (SELECT id, replaced FROM change ORDER BY id DESC LIMIT ?) "
                           "WHERE replaced IS NOT NULL ORDER BY id");
    run.bindInteger(kSavesInBacklog);
    try {
        while (run.step())
            decodeBacklog(run.bytes(0), backlog);
    } catch (const DamagedCard& error) {
        impl.damaged(std::string("the change log: ") + error.what());
    }
    return backlog;
}

void settle(Store::Impl& impl, IndexWriter& index, const Backlog& backlog) {
    for (const auto& [slot, held] : backlog)
        if (!held.empty())
            index.remove(slot.record, slot.property, decodeValue(held));
    std::map<RowId, std::optional<RecordRow>> rows;
    std::int64_t property = 0;
    std::string name;
    for (const auto& [slot, held] : backlog) {
        if (property != slot.property)
            name = impl.propertyName(property = slot.property);
        const auto [known, isNew] = rows.try_emplace(slot.record);
        if (isNew)
            known->second = impl.record(slot.record);
        if (!known->second)
            continue;
        if (const Value value = impl.valueOf(*known->second, name); !value.empty())
            index.add(slot.record, slot.property, value);
    }
    index.flush();
}

void settleBacklog(Store::Impl& impl, IndexWriter& index, Backlog newer) {
    Backlog backlog = readBacklog(impl);
    backlog.merge(newer);
    if (backlog.empty())
        return;
    settle(impl, index, backlog);
    impl.db
        .run("UPDATE change SET replaced = NULL WHERE replaced IS NOT NULL AND id IN (SELECT id FROM change "
             "ORDER BY id DESC LIMIT ?)")
        .bindInteger(kSavesInBacklog)
        .finish();
}

} // namespace addressbook
