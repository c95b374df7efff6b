#include "frameworks/AppKit/codec/png.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace appkit {

namespace {

constexpr std::size_t kSignature = 8; // bytes before the first chunk
// The bytes of a chunk: its length, its type, as many as the length says, a checksum.
constexpr std::size_t kLength = 4;
constexpr std::size_t kType = 4;
constexpr std::size_t kChecksum = 4;
constexpr const char* kLastType = "IEND"; // what stands behind it does not matter

std::uint64_t number(std::span<const unsigned char> bytes) {
    std::uint64_t result = 0;
    for (const unsigned char byte : bytes.first(kLength)) {
        result = result << 8U | byte;
    }
    return result;
}

} // namespace

bool endsInsideChunk(std::span<const unsigned char> file) {
    std::span<const unsigned char> rest = file.subspan(kSignature);
    while (rest.size() >= kLength + kType) {
        const std::uint64_t size = kLength + kType + number(rest) + kChecksum;
        if (size > rest.size()) {
            return true;
        }
        if (std::memcmp(rest.data() + kLength, kLastType, kType) == 0) {
            return false;
        }
        rest = rest.subspan(size);
    }
    return !rest.empty();
}

} // namespace appkit
