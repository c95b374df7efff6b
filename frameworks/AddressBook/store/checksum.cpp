#include "frameworks/AddressBook/store/checksum.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace addressbook {

std::uint64_t checksum(std::string_view bytes) {
    constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15U;
    std::uint64_t sum = bytes.size() * kMultiplier;
    while (!bytes.empty()) {
        std::uint64_t word = 0;
        const std::size_t size = std::min<std::size_t>(bytes.size(), 8);
        std::memcpy(&word, bytes.data(), size);
        if constexpr (std::endian::native == std::endian::big) {
            word = __builtin_bswap64(word);
        }
        sum = (sum ^ word) * kMultiplier;
        sum ^= sum >> 32;
        bytes.remove_prefix(size);
    }
    return sum;
}

} // namespace addressbook
