#include "frameworks/AddressBook/store/checksum.h"

#include <bit>
#include <cstring>

namespace addressbook {

std::uint64_t checksum(std::string_view bytes) {
    constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15U;
    std::uint64_t sum = bytes.size() * kMultiplier;
    const auto add = [&sum](const char* from, std::size_t size) {
        std::uint64_t word = 0;
        std::memcpy(&word, from, size);
        if constexpr (std::endian::native == std::endian::big) {
            word = __builtin_bswap64(word);
        }
        sum = (sum ^ word) * kMultiplier;
        sum ^= sum >> 32;
    };
    std::size_t at = 0;
    for (; at + 8 <= bytes.size(); at += 8) {
        add(bytes.data() + at, 8);
    }
    if (at < bytes.size()) {
        add(bytes.data() + at, bytes.size() - at);
    }
    return sum;
}

} // namespace addressbook
