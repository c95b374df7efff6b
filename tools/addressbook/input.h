#pragma once

// Files and standard input, read so that a signal ends the waiting for them.

#include <array>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <streambuf>
#include <string>
#include <string_view>

namespace addressbook::tool {

// A file, or standard input for "-", as a stream. Reading throws Failure when the system cannot read, and
// Interrupted when the program is to end.
class Input : private std::streambuf, public std::istream {
  public:
    // Throws Failure when the file cannot be opened.
    explicit Input(const std::string& file);
    ~Input() override;
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    // Returns how users know it.
    const std::string& name() const { return name_; }
    // Returns the file's size in bytes, 0 for what has none.
    std::uintmax_t size() const { return size_; }
    // Returns the first bytes, at most 64 KB, without taking them; call it before reading.
    std::string_view beginning();

  private:
    std::streambuf::int_type underflow() override;
    std::size_t fill(std::size_t from);
    void release() const;

    std::string name_;
    std::uintmax_t size_ = 0;
    int descriptor_;
    std::array<char, std::size_t{64} * 1024> buffer_;
};

} // namespace addressbook::tool
