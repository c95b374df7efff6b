#pragma once

// Takes an input apart. Everything can be taken at any time: what is no more there is 0 or empty.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace fuzz {

class Input {
  public:
    Input(const uint8_t* data, size_t size) : bytes_(reinterpret_cast<const char*>(data), size) {}

    [[nodiscard]] bool ended() const { return bytes_.empty(); }

    // Returns a number of as many bytes as its type has, the lowest first.
    template <class Number>
    Number number() {
        Number result{};
        const std::string_view taken = bytes(sizeof result);
        std::memcpy(&result, taken.data(), taken.size());
        return result;
    }

    // Returns the next bytes, at most [count].
    std::string_view bytes(size_t count) {
        const std::string_view taken = bytes_.substr(0, count);
        bytes_.remove_prefix(taken.size());
        return taken;
    }

    // Returns what is before the next [separator], which is taken as well; all when there is none.
    std::string_view until(char separator) {
        const size_t end = std::min(bytes_.find(separator), bytes_.size());
        const std::string_view taken = bytes(end);
        bytes_.remove_prefix(std::min<size_t>(1, bytes_.size()));
        return taken;
    }

    std::string_view rest() { return bytes(bytes_.size()); }

  private:
    std::string_view bytes_;
};

} // namespace fuzz
