#pragma once

// A record's properties as the database keeps them, in the column record.card: one block of bytes, in which
// each property can be found, read and replaced without reading the others. It needs no other table to be
// read, and a checksum tells when its bytes have changed by themselves.
//
// The bytes, for ever (a change of them is a new schema version):
//
//   record      checksum, then for each property in the order of names: word (its name), bytes (its value)
//   checksum    8 bytes, little-endian, over all bytes behind it; see checksum() in record_codec.cpp
//   value       1 byte that says of which type it is, then
//               0  no value          nothing
//               1  text              bytes: UTF-8, where a lone surrogate has the 3 bytes of its code point
//               2  whole number      integer
//               3  real              8 bytes, little-endian, IEEE 754
//               4  date              8 bytes, as a real: seconds since 2001-01-01 00:00:00 UTC
//               5  array             count, then so many values
//               6  dictionary        count, then so many times: word (the key), value; ordered by keys
//               7  data              bytes
//               8  date components   1 byte: bits 0 to 5 say whether year, month, day, hour, minute, second
//                                    are there; then an integer for each that is, in this order
//               9  multi-value       identifier (the primary one, empty for none), count, then so many times:
//                                    identifier, word (the label), value
//   count       a whole number from 0, in groups of 7 bits, the lowest first; a byte below 0x80 is the last
//   integer     a count: 2n for n >= 0, -2n - 1 for n < 0
//   bytes       count, then so many bytes
//   word        count: the number of a well-known word (interned_words.h), or 0 and then bytes
//   identifier  count: twice the length, plus 1 when it is a packed UUID (packUid); then so many bytes
//
// Values are nested at most kMaxValueDepth deep. The change log's lists of unique ids (encodeUids) are a
// count and so many identifiers.

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

// The bytes are no record or no value.
class DamagedRecord : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// A value inside this many others is neither written nor read: reading it would take the stack.
inline constexpr int kMaxValueDepth = 64;

// Returns one value as bytes, losslessly. Throws std::length_error for a value nested too deeply.
std::string encodeValue(const Value& value);
// Returns the value of such bytes. Throws DamagedRecord.
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

// Whether an encoded value is a multi-value.
bool holdsList(std::string_view value);
// Returns the entries of an encoded multi-value.
EncodedList listIn(std::string_view value);
// Returns the text that an encoded value is, nothing for a value of another type.
std::optional<std::string_view> textIn(std::string_view value);

// Calls [visit] with each property's name and encoded value, in the order of names. Throws DamagedRecord,
// also for a wrong checksum.
using PropertyVisitor = std::function<void(std::string_view name, std::string_view value)>;
void visitProperties(std::string_view record, const PropertyVisitor& visit);

// Calls [visit] with the properties that can be read in a damaged record, whatever its checksum says; some of
// it may be wrong.
void visitReadableProperties(std::string_view record, const PropertyVisitor& visit);

// Throws DamagedRecord when a record's checksum is wrong.
void verifyChecksum(std::string_view record);

// Returns the encoded value of one property, nothing when the record has none; verify its checksum first.
// Throws DamagedRecord.
std::optional<std::string_view> findProperty(std::string_view record, std::string_view name);

// Returns a record of these properties and their encoded values.
std::string encodeRecord(const std::map<std::string, std::string>& values);

// Returns a list of unique ids as bytes.
std::string encodeUids(const std::vector<std::string>& uids);
// Returns the unique ids of such bytes. Throws DamagedRecord.
std::vector<std::string> decodeUids(std::string_view bytes);

} // namespace addressbook
