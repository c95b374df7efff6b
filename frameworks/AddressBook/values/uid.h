#pragma once

// The identifiers of records and of the entries of lists: making new ones, and the packed form in which the
// database keeps them.

#include "frameworks/AddressBook/values/value.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace addressbook {

// Returns a new random UUID in capitals. Throws std::system_error when the system has no random numbers.
std::string newUuid();

// Returns a new identifier of a record, as "<UUID>:ABPerson" or "<UUID>:ABGroup".
std::string newUid(Kind kind);

// Returns the packed form of a UUID in capitals: its 16 bytes; for one that ":ABPerson" or ":ABGroup"
// follows, 17 bytes. Nothing for any other text, which has no packed form.
std::optional<std::string> packUid(std::string_view text);

// Whether [bytes] have the length of a packed identifier; and the text that they stand for, nothing when they
// have not.
bool isPackedUid(std::string_view bytes);
std::optional<std::string> unpackUid(std::string_view bytes);

// A unique id in the form in which the database keeps it: packed where it can be. Few who read a record want
// its unique id as text, which takes ten times as long to make as to compare or copy the packed one.
class StoredUid {
  public:
    StoredUid() = default; // that of no record
    explicit StoredUid(std::string_view uid);
    // Returns the unique id of a packed one's bytes; nothing when they have the wrong length.
    static std::optional<StoredUid> fromPacked(std::string_view bytes);

    bool isPacked() const { return packedSize_ != 0; }
    // Returns the packed bytes, else the text; in memory of this object.
    std::string_view bytes() const {
        return isPacked() ? std::string_view(packed_.data(), packedSize_) : std::string_view(text_);
    }
    std::string text() const;
    std::size_t hash() const;
    bool operator==(const StoredUid& other) const {
        return isPacked() == other.isPacked() && bytes() == other.bytes();
    }

  private:
    static constexpr std::size_t kPackedRoom = 17;
    std::array<char, kPackedRoom> packed_{};
    std::uint8_t packedSize_ = 0; // 0: the id is text_
    std::string text_;
};

} // namespace addressbook
