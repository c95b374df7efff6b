#pragma once

// A record's values as the database keeps them: one block of bytes, the "card", in which each property can be
// found, read and replaced without reading the others. A card needs no other table to be read, and a checksum
// tells when its bytes have changed by themselves.

#include "frameworks/AddressBook/values/value.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook {

// The bytes are no card or no value.
class DamagedRecord : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// One value as bytes, losslessly. Throws std::length_error for values nested deeper than kDeepestValue.
inline constexpr int kDeepestValue = 64;
std::string encodeValue(const Value& value);
Value decodeValue(std::string_view bytes);

// Reading encoded values where they are: what is found refers to their bytes. Throws DamagedRecord, also for
// what would only be seen when the parts are decoded.

// An identifier, perhaps packed.
struct EncodedIdentifier {
    std::string_view bytes;
    bool packed = false;
    std::string text() const;
};

// A multi-value's entries, each value encoded.
struct EncodedEntry {
    EncodedIdentifier identifier;
    std::string_view label;
    std::string_view value;
};
struct EncodedList {
    EncodedIdentifier primary;
    std::vector<EncodedEntry> entries;
};

// Whether an encoded value is a multi-value, and its entries; the text that it is, nothing when it is none.
bool holdsList(std::string_view value);
EncodedList listIn(std::string_view value);
std::optional<std::string_view> textIn(std::string_view value);

// Calls [visit] with each property's name and encoded value, in the order of names. Throws DamagedRecord.
void visitProperties(std::string_view card,
                     const std::function<void(std::string_view, std::string_view)>& visit);

// The same for what can be read in a damaged card, whatever its checksum says; some of it may be wrong.
void visitReadableProperties(std::string_view card,
                             const std::function<void(std::string_view, std::string_view)>& visit);

// Throws DamagedRecord when the card's checksum is wrong.
void verifyChecksum(std::string_view card);

// The encoded value of one property, in a card that was checked. Throws DamagedRecord.
std::optional<std::string_view> findProperty(std::string_view card, std::string_view name);

// A card of these properties and their encoded values.
std::string encodeRecord(const std::map<std::string, std::string>& values);

// A list of unique ids. decodeUids throws DamagedRecord.
std::string encodeUids(const std::vector<std::string>& uids);
std::vector<std::string> decodeUids(std::string_view bytes);

} // namespace addressbook
