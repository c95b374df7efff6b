#pragma once

// Reading files and standard input in such a way that a signal interrupts the waiting.

#include <array>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <streambuf>
#include <string>
#include <string_view>

namespace addressbook::tool {

// A file, or standard input for "-", as a stream. Reading throws Failure for errors of the system, and
// Interrupted after a signal (interrupt.h).
class Input : private std::streambuf, public std::istream {
  public:
    // Throws Failure when the file cannot be opened.
    explicit Input(const std::string& file);
    ~Input() override;
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    // Returns the name for messages: that of the file, or of standard input.
    const std::string& name() const { return name_; }
    // Returns the file's size in bytes, 0 for pipes and the like.
    std::uintmax_t size() const { return size_; }
    // Returns the first bytes, at most 64 KB, without consuming them. Call it before reading.
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
