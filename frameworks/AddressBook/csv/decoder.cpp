#include "frameworks/AddressBook/csv/decoder.h"

#include "frameworks/AddressBook/values/charset_guess.h"

#include <unicode/ucnv.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace addressbook::csv {
namespace {

bool isAscii(std::string_view bytes) {
    return std::none_of(bytes.begin(), bytes.end(),
                        [](char c) { return static_cast<unsigned char>(c) >= 0x80 || c == '\0'; });
}

// Whether the bytes are UTF-8, of which the last character may be cut.
bool isUtf8(std::string_view bytes) {
    for (std::size_t at = 0; at < bytes.size();) {
        const auto first = static_cast<unsigned char>(bytes[at]);
        const std::size_t length = first < 0x80       ? 1
                                   : first >> 5 == 6  ? 2
                                   : first >> 4 == 14 ? 3
                                   : first >> 3 == 30 ? 4
                                                      : 0;
        if (length == 0) {
            return false;
        }
        for (std::size_t next = at + 1; next < std::min(at + length, bytes.size()); ++next) {
            if ((static_cast<unsigned char>(bytes[next]) & 0xC0) != 0x80) {
                return false;
            }
        }
        at += length;
    }
    return true;
}

// UTF-16 without a mark has a zero in every other byte of ASCII; empty when it is not that.
std::string utf16Without(std::string_view bytes) {
    std::array<std::size_t, 2> zeros{};
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        zeros[at % 2] += bytes[at] == '\0' ? 1 : 0;
    }
    const std::size_t many = bytes.size() / 6;
    return zeros[0] > many && zeros[0] > zeros[1] ? "UTF-16BE" : zeros[1] > many ? "UTF-16LE" : "";
}

} // namespace

struct Decoder::Converter {
    explicit Converter(const std::string& charset) {
        UErrorCode error = U_ZERO_ERROR;
        from = ucnv_open(charset.c_str(), &error);
        if (U_FAILURE(error)) {
            throw std::invalid_argument("no character set is named \"" + charset + '"');
        }
    }
    ~Converter() { ucnv_close(from); }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    UConverter* from;
};

Decoder::Decoder(std::string charset) : charset_(std::move(charset)) {
    if (!charset_.empty()) {
        converter_ = std::make_unique<Converter>(charset_);
    }
}

Decoder::~Decoder() = default;

void Decoder::choose(std::string_view bytes) {
    UErrorCode error = U_ZERO_ERROR;
    const char* marked = begun_ ? nullptr
                                : ucnv_detectUnicodeSignature(
                                      bytes.data(), static_cast<std::int32_t>(bytes.size()), nullptr, &error);
    if (marked != nullptr) {
        charset_ = marked;
    } else if (isAscii(bytes)) {
        return;
    } else if (charset_ = begun_ ? "" : utf16Without(bytes); !charset_.empty()) {
        // told by its zeros
    } else if (isUtf8(bytes)) {
        charset_ = "UTF-8";
    } else {
        charset_ = guessed_ = likelyCharset(bytes);
    }
    converter_ = std::make_unique<Converter>(charset_);
}

std::string Decoder::decode(std::string_view bytes, bool last) {
    if (!converter_) {
        choose(bytes);
    }
    const bool first = !begun_;
    begun_ = begun_ || !bytes.empty();
    if (!converter_) {
        return std::string(bytes);
    }
    std::u16string units(2 * bytes.size() + 64, u'\0');
    char16_t* target = units.data();
    const char* source = bytes.data();
    UErrorCode error = U_ZERO_ERROR;
    ucnv_toUnicode(converter_->from, &target, target + units.size(), &source, source + bytes.size(), nullptr,
                   static_cast<UBool>(last), &error);
    units.resize(static_cast<std::size_t>(target - units.data()));
    if (first && units.starts_with(u'\xFEFF')) {
        units.erase(0, 1);
    }
    std::string text;
    icu::UnicodeString(false, units.data(), static_cast<std::int32_t>(units.size())).toUTF8String(text);
    return text;
}

} // namespace addressbook::csv
