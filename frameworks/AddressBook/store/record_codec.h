#pragma once

// The codec of the properties blob, in which the database keeps a record's properties (column record.card).
// Each property in it can be found, read and replaced without reading the others. It refers to no other
// table, and a checksum reveals bytes that were changed by accident.
//
// The format, which never changes without a new schema version. "record" is the whole blob:
//
//   record      checksum, then for each property in the order of names: word (its name), bytes (its value)
//   checksum    8 bytes, little-endian, over all bytes after it; see checksum.h
//   value       1 byte that says of which type it is, then
//               0  no value          nothing
//               1  text              bytes: UTF-8, where a lone surrogate has the 3 bytes of its code point
//               2  whole number      integer
//               3  real              8 bytes, little-endian, IEEE 754
//               4  date              8 bytes, as a real: seconds since 2001-01-01 00:00:00 UTC
//               5  array             count, then as many values
//               6  dictionary        count, then as many times: word (the key), value; ordered by keys
//               7  data              bytes
//               8  date components   1 byte: bits 0 to 5 say whether year, month, day, hour, minute, second
//                                    are there; then an integer for each that is, in this order
//               9  multi-value       identifier (the primary one, empty for none), count, then as many times:
//                                    identifier, word (the label), value
//               10 floating date     8 bytes, as a real: seconds since 2001-01-01 00:00:00 on any clock
//   count       a whole number from 0, in groups of 7 bits, the lowest first; a byte below 0x80 is the last
//   integer     a count: 2n for n >= 0, -2n - 1 for n < 0
//   bytes       count, then as many bytes
//   word        count: the number of a well-known word (interned_words.h), or 0 and then bytes
//   identifier  count: twice the length, plus 1 when it is a packed UUID (packUid); then as many bytes
//
// Values are nested at most kMaxValueDepth deep. The change log's lists of unique ids (encodeUids) are a
// count and as many identifiers.

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

// Thrown for bytes that are no properties blob, or no encoded value.
class DamagedRecord : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The deepest nesting of values that is written and read, so that reading cannot exhaust the stack.
inline constexpr int kMaxValueDepth = 64;

// Returns a value as bytes, losslessly. Throws std::length_error for a value nested too deeply.
std::string encodeValue(const Value& value);
// Returns the value that encodeValue() wrote as [bytes]. Throws DamagedRecord.
Value decodeValue(std::string_view bytes);

// The following read encoded values in place: results refer to the given bytes and live as long as they do.
// They throw DamagedRecord, also for damage in parts that they do not decode.

// An identifier, perhaps packed; text() unpacks it.
struct EncodedIdentifier {
    std::string_view bytes;
    bool packed = false;
    std::string text() const;
};

// A multi-value, with the value of each entry still encoded.
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
// Calls [visit] with each entry of an encoded multi-value and the number of entries behind it; returns the
// identifier of the primary entry.
using EntryVisitor = std::function<void(const EncodedEntry& entry, std::size_t behind)>;
EncodedIdentifier visitEntries(std::string_view value, const EntryVisitor& visit);
// One of the values of a property that searches look at: a single value, an entry of a multi-value or a field
// of a dictionary; also a dictionary without fields and a multi-value without entries. Its value is encoded.
struct EncodedLeaf {
    std::string_view value;
    std::optional<std::string_view> label; // of the multi-value entry; none for a single value
    std::optional<std::string_view> key;   // of the dictionary field; none for anything else
};
// Appends the leaves of an encoded value to [leaves]; "no value" has none.
void leavesIn(std::string_view value, std::vector<EncodedLeaf>& leaves);
// Returns the text of an encoded text value; nothing for a value of another type.
std::optional<std::string_view> textIn(std::string_view value);

// In what follows, [record] is a whole properties blob.

// Calls [visit] with each property's name and encoded value, in the order of names. Throws DamagedRecord,
// also for a wrong checksum.
using PropertyVisitor = std::function<void(std::string_view name, std::string_view value)>;
void visitProperties(std::string_view record, const PropertyVisitor& visit);

// Like visitProperties(), for a damaged record: ignores the checksum, and ends where nothing more can be
// read. Names and values may be wrong.
void visitReadableProperties(std::string_view record, const PropertyVisitor& visit);

// Throws DamagedRecord when a record's checksum is wrong.
void verifyChecksum(std::string_view record);

// Returns the encoded value of one property, nothing when the record has none. Does not verify the checksum:
// call verifyChecksum() first. Throws DamagedRecord.
std::optional<std::string_view> findProperty(std::string_view record, std::string_view name);

// Returns the properties blob of these properties, given by name with their encoded values.
std::string encodeRecord(const std::map<std::string, std::string>& values);
// Returns the properties blob of a new record's values: those that a blob has (isInRecord) and that are not
// empty. Throws std::length_error for a value nested too deeply.
std::string encodeValues(const std::map<std::string, Value>& values);

// Whether the properties blob has the property: all but the unique id, the two dates and the picture, which
// have columns and a table of their own.
bool isInRecord(std::string_view property);

// Returns a list of unique ids as bytes, for the change log.
std::string encodeUids(const std::vector<std::string>& uids);
// Returns the list that encodeUids() wrote as [bytes]. Throws DamagedRecord.
std::vector<std::string> decodeUids(std::string_view bytes);

} // namespace addressbook
