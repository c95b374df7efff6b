#pragma once

// The records that an import has met, in little memory: some 90 bytes each, as files may have very many cards.

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <unordered_map>

namespace addressbook::tool {

// What an import remembers of a record.
struct SeenRecord {
    static constexpr std::uint32_t kNotPending = std::numeric_limits<std::uint32_t>::max();

    std::uint32_t file = 0;              // the number of the last file with a card of it; 0: none yet
    std::uint32_t pending = kNotPending; // its place among the people or groups that are not saved yet
    std::uint64_t digest = 0;            // a hash of its card's digest
};

// Records by unique id. Not thread-safe.
class SeenRecords {
  public:
    // Returns the record; null when it was not met.
    SeenRecord* find(std::string_view uid);
    const SeenRecord* find(std::string_view uid) const;
    bool contains(std::string_view uid) const { return find(uid) != nullptr; }
    // Returns the record, which becomes one that was met.
    SeenRecord& operator[](std::string_view uid);

  private:
    // A UUID and the kind of the record.
    using Key = std::array<char, 17>;
    struct Hash {
        std::size_t operator()(const Key& key) const {
            return std::hash<std::string_view>()({key.data(), key.size()});
        }
    };
    static Key keyOf(std::string_view uid);

    std::unordered_map<Key, SeenRecord, Hash> records_;
};

} // namespace addressbook::tool
