#pragma once

// A password or token. It is on the heap once, is not copied, and is overwritten before its memory is given back.

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

namespace addressbook::carddav {

class Secret {
  public:
    Secret() = default;

    // Takes [text] over: the string that it came in is overwritten, too.
    explicit Secret(std::string&& text) : size_(text.size()), bytes_(new char[size_ + 1]) {
        text.copy(bytes_.get(), size_);
        bytes_[size_] = '\0';
        explicit_bzero(text.data(), text.size());
        text.clear();
    }
    ~Secret() { wipe(); }
    Secret(Secret&& other) noexcept : size_(other.size_), bytes_(std::move(other.bytes_)) { other.size_ = 0; }
    Secret& operator=(Secret&& other) noexcept {
        std::swap(size_, other.size_);
        std::swap(bytes_, other.bytes_);
        other.wipe();
        return *this;
    }

    // Returns the text, which ends with NUL; empty when there is none. Valid as long as this object.
    [[nodiscard]] const char* text() const { return bytes_ ? bytes_.get() : ""; }

  private:
    void wipe() noexcept {
        if (bytes_) {
            explicit_bzero(bytes_.get(), size_);
        }
        bytes_.reset();
        size_ = 0;
    }

    std::size_t size_ = 0;
    std::unique_ptr<char[]> bytes_;
};

} // namespace addressbook::carddav
