#include "frameworks/AddressBook/store/deflate.h"

#include <zlib.h>

#include <cstdint>
#include <stdexcept>

namespace addressbook {
namespace {

constexpr std::size_t kLengthBytes = 4;
// No card is larger, so that damaged bytes do not ask for all memory.
constexpr std::size_t kMostBytes = std::size_t{256} * 1024 * 1024;

} // namespace

std::string deflated(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    if (text.size() > kMostBytes) {
        throw std::length_error("a card is larger than 256 MB");
    }
    uLongf size = compressBound(text.size());
    std::string bytes(kLengthBytes + size, '\0');
    for (std::size_t at = 0; at < kLengthBytes; ++at) {
        bytes[at] = static_cast<char>(text.size() >> (8 * (kLengthBytes - 1 - at)) & 0xFF);
    }
    if (compress2(reinterpret_cast<Bytef*>(bytes.data() + kLengthBytes), &size,
                  reinterpret_cast<const Bytef*>(text.data()), text.size(), Z_DEFAULT_COMPRESSION) != Z_OK) {
        throw std::bad_alloc();
    }
    bytes.resize(kLengthBytes + size);
    return bytes;
}

std::optional<std::string> inflated(std::string_view bytes) {
    if (bytes.empty()) {
        return std::string();
    }
    std::size_t length = 0;
    for (std::size_t at = 0; at < kLengthBytes && at < bytes.size(); ++at) {
        length = length << 8 | static_cast<unsigned char>(bytes[at]);
    }
    if (bytes.size() <= kLengthBytes || length == 0 || length > kMostBytes) {
        return std::nullopt;
    }
    bytes.remove_prefix(kLengthBytes);
    std::string text(length, '\0');
    uLongf size = text.size();
    const int result = uncompress(reinterpret_cast<Bytef*>(text.data()), &size,
                                  reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
    return result == Z_OK && size == length ? std::optional(std::move(text)) : std::nullopt;
}

} // namespace addressbook
