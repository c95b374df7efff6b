#pragma once

// The bytes of values, for functions that write them in other forms.

#include "host/values/value.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace host {

// The bytes that a value is: of a container its file, of everything else the UTF-8 of its text.
class DataBytes {
  public:
    explicit DataBytes(const Value& value);
    DataBytes(const DataBytes&) = delete;
    DataBytes& operator=(const DataBytes&) = delete;

    // False for an error and for a container without a file.
    bool exist() const { return exist_; }
    std::span<const unsigned char> bytes() const { return bytes_; }

  private:
    std::string utf8_;
    std::span<const unsigned char> bytes_;
    bool exist_ = true;
};

// A container with a file that has no name.
Value namelessFile(Bytes bytes);

// Decoded bytes: with a name a container with that file; without one the text that they spell in UTF-8, a
// file without a name when they spell none.
Value decodedValue(Bytes bytes, std::u16string_view name);

bool isUtf8(std::span<const unsigned char> bytes);

} // namespace host
