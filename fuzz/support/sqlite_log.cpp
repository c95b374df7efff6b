#include "fuzz/support/sqlite_log.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace fuzz {

namespace {

// The format of the log, as SQLite documents it: a header, then frames of a header and a page each. Numbers have their
// highest byte first, but for those that are summed: the lowest bit of the first number says how they are read.
constexpr std::size_t kHeader = 32;
constexpr std::size_t kFrameHeader = 24;
constexpr std::size_t kPageSize = 8;
constexpr std::size_t kSalts = 16;       // in the header
constexpr std::size_t kSum = 24;         // in the header
constexpr std::size_t kFrameSalts = 8;   // in a frame's header
constexpr std::size_t kFrameSum = 16;    // in a frame's header
constexpr std::size_t kFrameNumbers = 8; // of a frame's header, what is summed before the page

std::uint32_t read(const char* from, bool highestFirst) {
    std::uint32_t number = 0;
    std::memcpy(&number, from, sizeof number);
    return highestFirst == (std::endian::native == std::endian::big) ? number : __builtin_bswap32(number);
}

void write(char* to, std::uint32_t number) {
    for (int i = 3; i >= 0; --i, number >>= 8U) {
        to[i] = static_cast<char>(number & 0xFFU);
    }
}

struct Sum {
    bool highestFirst = false;
    std::uint32_t first = 0;
    std::uint32_t second = 0;

    void add(const char* from, std::size_t size) {
        for (std::size_t at = 0; at + 8 <= size; at += 8) {
            first += read(from + at, highestFirst) + second;
            second += read(from + at + 4, highestFirst) + first;
        }
    }
    void writeTo(char* to) const {
        write(to, first);
        write(to + 4, second);
    }
};

} // namespace

void renewLogChecksums(std::string& log) {
    if (log.size() < kHeader) {
        return;
    }
    write(&log[kSalts], 1);
    write(&log[kSalts + 4], 2);
    Sum sum{(read(log.data(), true) & 1U) != 0};
    sum.add(log.data(), kSum);
    sum.writeTo(&log[kSum]);
    const std::size_t page = read(&log[kPageSize], true);
    for (std::size_t frame = kHeader; frame + kFrameHeader + page <= log.size();
         frame += kFrameHeader + page) {
        std::memcpy(&log[frame + kFrameSalts], &log[kSalts], 8);
        sum.add(&log[frame], kFrameNumbers);
        sum.add(&log[frame + kFrameHeader], page);
        sum.writeTo(&log[frame + kFrameSum]);
    }
}

} // namespace fuzz
