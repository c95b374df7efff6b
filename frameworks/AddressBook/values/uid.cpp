#include "frameworks/AddressBook/values/uid.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <functional>
#include <pthread.h>
#include <system_error>
#include <unistd.h>

namespace addressbook {
namespace {

constexpr std::size_t kUuidBytes = 16;

// Returns the value of a digit, in capitals; -1 for anything else.
constexpr int hexDigit(char c) {
    return c >= '0' && c <= '9' ? c - '0' : c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

constexpr bool isDash(std::size_t at) {
    return at == 8 || at == 13 || at == 18 || at == 23;
}
constexpr std::size_t kUuidText = 36;

// The number of times that this process is a fork of another: a child must not give the random numbers that
// its parent has in store.
std::atomic<unsigned> forks{0};

// Returns random bytes for a UUID. Asks the system for those of several at a time.
std::string randomBytes() {
    static const int noticesForks = pthread_atfork(nullptr, nullptr, [] { ++forks; });
    struct Stock {
        std::array<char, 16 * kUuidBytes> bytes; // as many as the system gives at once
        std::size_t left = 0;
        unsigned fork = 0;
    };
    thread_local Stock stock;
    if (stock.left == 0 || stock.fork != forks || noticesForks != 0) {
        if (getentropy(stock.bytes.data(), stock.bytes.size()) != 0) {
            throw std::system_error(errno, std::generic_category(), "no random number can be had");
        }
        stock.left = stock.bytes.size();
        stock.fork = forks;
    }
    stock.left -= kUuidBytes;
    return {stock.bytes.data() + stock.left, kUuidBytes};
}

// Writes the packed form of a text, at most 17 bytes; returns its size, 0 when there is none.
std::size_t pack(std::string_view text, char* packed) {
    if (text.size() < kUuidText) {
        return 0;
    }
    const std::string_view kind = text.substr(kUuidText);
    if (!kind.empty() && kind != ":ABPerson" && kind != ":ABGroup") {
        return 0;
    }
    const char* const begin = packed;
    for (std::size_t at = 0; at < kUuidText; ++at) {
        if (isDash(at)) {
            if (text[at] != '-') {
                return 0;
            }
            continue;
        }
        const int high = hexDigit(text[at]);
        const int low = hexDigit(text[at + 1]);
        if (high < 0 || low < 0) {
            return 0;
        }
        *packed++ = static_cast<char>(high * 16 + low);
        ++at;
    }
    if (!kind.empty()) {
        *packed++ = kind == ":ABPerson" ? 'P' : 'G';
    }
    return static_cast<std::size_t>(packed - begin);
}

} // namespace

std::optional<std::string> packUid(std::string_view text) {
    std::array<char, kUuidBytes + 1> packed{};
    const std::size_t size = pack(text, packed.data());
    return size != 0 ? std::optional(std::string(packed.data(), size)) : std::nullopt;
}

bool isPackedUid(std::string_view bytes) {
    return bytes.size() == kUuidBytes || bytes.size() == kUuidBytes + 1;
}

std::optional<std::string> unpackUid(std::string_view bytes) {
    if (!isPackedUid(bytes)) {
        return std::nullopt;
    }
    static constexpr char kDigits[] = "0123456789ABCDEF";
    char text[kUuidText];
    std::size_t at = 0;
    for (const char c : bytes.substr(0, kUuidBytes)) {
        if (isDash(at)) {
            text[at++] = '-';
        }
        const auto byte = static_cast<unsigned char>(c);
        text[at++] = kDigits[byte >> 4];
        text[at++] = kDigits[byte & 0xF];
    }
    const std::string_view kind = bytes.size() == kUuidBytes ? ""
                                  : bytes.back() == 'P'      ? ":ABPerson"
                                                             : ":ABGroup";
    std::string uid;
    uid.reserve(kUuidText + kind.size());
    uid.append(text, kUuidText).append(kind);
    return uid;
}

StoredUid::StoredUid(std::string_view uid)
    : packedSize_(static_cast<std::uint8_t>(pack(uid, packed_.data()))) {
    if (!isPacked()) {
        text_ = uid;
    }
}

std::optional<StoredUid> StoredUid::fromPacked(std::string_view bytes) {
    if (!isPackedUid(bytes)) {
        return std::nullopt;
    }
    StoredUid uid;
    std::copy(bytes.begin(), bytes.end(), uid.packed_.begin());
    uid.packedSize_ = static_cast<std::uint8_t>(bytes.size());
    return uid;
}

std::string StoredUid::text() const {
    return isPacked() ? unpackUid(bytes()).value() : text_;
}

std::size_t StoredUid::hash() const {
    if (!isPacked()) {
        return std::hash<std::string>()(text_);
    }
    std::size_t random = 0; // as UUIDs are
    std::memcpy(&random, packed_.data(), sizeof random);
    return random;
}

std::string newUuid() {
    std::string bytes = randomBytes();
    bytes[6] = static_cast<char>((bytes[6] & 0x0F) | 0x40); // random, as opposed to made from a clock
    bytes[8] = static_cast<char>((bytes[8] & 0x3F) | 0x80);
    return *unpackUid(bytes);
}

std::string newUid(Kind kind) {
    return newUuid() + (kind == Kind::person ? ":ABPerson" : ":ABGroup");
}

} // namespace addressbook
