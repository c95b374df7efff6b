#include "frameworks/AddressBook/store/backlog_codec.h"

#include "frameworks/AddressBook/store/record_codec.h"

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

} // namespace addressbook
