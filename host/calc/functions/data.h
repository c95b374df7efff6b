#pragma once

// Values as bytes, for functions that encode, encrypt or digest them.

#include "host/values/value.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace host {

// The bytes of a value: those of a container's file, for all other types its text in UTF-8. Refers to the
// value.
class DataBytes {
  public:
    explicit DataBytes(const Value& value);
    DataBytes(const DataBytes&) = delete;
    DataBytes& operator=(const DataBytes&) = delete;

    // Whether there are bytes; false for an invalid value, and for a container without a file.
    bool exist() const { return exist_; }
    std::span<const unsigned char> bytes() const { return bytes_; }

  private:
    std::string utf8_;
    std::span<const unsigned char> bytes_;
    bool exist_ = true;
};

// Returns a container with a file that has no name.
Value namelessFile(Bytes bytes);

// Returns decoded bytes as a value: with a name, as a container with a file of that name; without one, as the
// text that they are in UTF-8, or as a file without a name when they are not UTF-8.
Value decodedValue(Bytes bytes, std::u16string_view name);

bool isUtf8(std::span<const unsigned char> bytes);

} // namespace host
