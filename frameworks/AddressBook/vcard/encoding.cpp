#include "frameworks/AddressBook/vcard/encoding.h"

#include "frameworks/AddressBook/values/text.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <memory>

namespace addressbook::vcard {

namespace {

constexpr std::string_view kBase64 = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::string_view kHex = "0123456789ABCDEF";

// The bytes of the UTF-8 character that begins [bytes], a lone surrogate in three bytes included; 0 when none
// does.
std::size_t utf8Length(std::string_view bytes) {
    const auto lead = static_cast<unsigned char>(bytes[0]);
    if (lead < 0x80) {
        return 1;
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || length > bytes.size()) {
        return 0;
    }
    char32_t code = lead & (0x7Fu >> length);
    for (std::size_t at = 1; at < length; ++at) {
        if (!isContinuation(bytes[at])) {
            return 0;
        }
        code = code << 6 | (static_cast<unsigned char>(bytes[at]) & 0x3F);
    }
    return (length == 3 && code < 0x800) || (length == 4 && (code < 0x10000 || code > 0x10FFFF)) ? 0 : length;
}

// Whether the bytes are UTF-8 as the standard has it, without lone surrogates.
bool isStandardUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t length = utf8Length(bytes);
        const bool surrogate =
            length == 3 && bytes[0] == '\xED' && static_cast<unsigned char>(bytes[1]) >= 0xA0;
        if (length == 0 || surrogate) {
            return false;
        }
        bytes.remove_prefix(length);
    }
    return true;
}

struct CloseConverter {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};

// A converter that reports what is not in its character set; opened once for a run of values in one charset.
UConverter* converterFor(const std::string& charset) {
    thread_local std::string name;
    thread_local std::unique_ptr<UConverter, CloseConverter> converter;
    if (name != charset || !converter) {
        UErrorCode status = U_ZERO_ERROR;
        converter.reset(ucnv_open(charset.c_str(), &status));
        if (U_FAILURE(status)) {
            return nullptr;
        }
        ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
        name = charset;
    }
    return converter.get();
}

std::optional<std::string> convert(std::string_view bytes, const std::string& charset) {
    UConverter* converter = converterFor(charset);
    if (!converter || bytes.size() > static_cast<std::size_t>(std::numeric_limits<int32_t>::max()) / 2) {
        return std::nullopt;
    }
    UErrorCode status = U_ZERO_ERROR;
    std::u16string units(bytes.size() * 2 + 1, u'\0');
    const int32_t length = ucnv_toUChars(converter, units.data(), static_cast<int32_t>(units.size()),
                                         bytes.data(), static_cast<int32_t>(bytes.size()), &status);
    if (U_FAILURE(status) || length > static_cast<int32_t>(units.size())) {
        return std::nullopt;
    }
    units.resize(static_cast<std::size_t>(length));
    return utf8FromUtf16(units);
}

bool isBlank(char byte) {
    return byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r';
}

} // namespace

std::string toUtf8(std::string bytes, std::string_view charset) {
    const bool ascii =
        std::none_of(bytes.begin(), bytes.end(), [](char byte) { return byte < 0 || byte == 0x1B; });
    const bool writtenInAscii =
        equalsIgnoringCase(charset, "UTF-7") || equalsIgnoringCase(charset, "HZ-GB-2312");
    if (ascii && !writtenInAscii) {
        return bytes;
    }
    // Programs that say ISO-8859-1 mean the superset that Windows has.
    const bool latin = equalsIgnoringCase(charset, "ISO-8859-1");
    if (!charset.empty() && !latin && !equalsIgnoringCase(charset, "UTF-8")) {
        if (auto text = convert(bytes, std::string(charset))) {
            return *std::move(text);
        }
    }
    if (!latin && isStandardUtf8(bytes)) {
        return bytes;
    }
    if (!latin && looksLikeUtf8(bytes)) {
        return utf8FromUtf16(utf16FromUtf8(bytes));
    }
    return convert(bytes, "windows-1252").value_or(bytes);
}

bool looksLikeUtf8(std::string_view bytes) {
    std::size_t good = 0, bad = 0; // characters of more than one byte, and bytes that belong to none
    for (std::string_view rest = bytes; !rest.empty();) {
        const std::size_t length = utf8Length(rest);
        good += length > 1 ? 1 : 0;
        bad += length == 0 ? 1 : 0;
        rest.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return good > bad || bad == 0;
}

std::string decodeQuotedPrintable(std::string_view text) {
    const auto digit = [](char byte) {
        const char upper = byte >= 'a' && byte <= 'f' ? static_cast<char>(byte - 'a' + 'A') : byte;
        return kHex.find(upper);
    };
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '=' && at + 2 < text.size()) {
            const std::size_t high = digit(text[at + 1]), low = digit(text[at + 2]);
            if (high != std::string_view::npos && low != std::string_view::npos) {
                bytes.push_back(static_cast<char>(high << 4 | low));
                at += 2;
                continue;
            }
        }
        bytes.push_back(text[at]);
    }
    return bytes;
}

std::string withoutBlanks(std::string text) {
    std::erase_if(text, isBlank);
    return text;
}

Base64 decodeBase64(std::string_view text) {
    static const std::array<int, 256> kDigits = [] {
        std::array<int, 256> digits{};
        digits.fill(-1);
        for (std::size_t at = 0; at < kBase64.size(); ++at) {
            digits[static_cast<unsigned char>(kBase64[at])] = static_cast<int>(at);
        }
        return digits;
    }();
    Base64 result;
    Bytes& bytes = result.bytes;
    bytes.reserve(text.size() * 3 / 4);
    std::uint32_t bits = 0;
    int count = 0, padding = 0;
    for (const char byte : text) {
        if (isBlank(byte)) {
            continue;
        }
        const int digit = kDigits[static_cast<unsigned char>(byte)];
        if (byte == '=') {
            ++padding;
        } else if (digit < 0 || padding > 0) {
            return result;
        } else {
            bits = bits << 6 | static_cast<std::uint32_t>(digit);
            if (++count == 4) {
                bytes.push_back(static_cast<std::uint8_t>(bits >> 16));
                bytes.push_back(static_cast<std::uint8_t>(bits >> 8));
                bytes.push_back(static_cast<std::uint8_t>(bits));
                bits = 0;
                count = 0;
            }
        }
    }
    if (padding > 2) {
        return result;
    }
    result.valid = true;
    result.complete = count != 1;
    if (count >= 2) {
        bytes.push_back(static_cast<std::uint8_t>(bits >> (count == 2 ? 4 : 10)));
    }
    if (count == 3) {
        bytes.push_back(static_cast<std::uint8_t>(bits >> 2));
    }
    return result;
}

std::string encodeBase64(const Bytes& bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const std::size_t left = std::min<std::size_t>(3, bytes.size() - at);
        std::uint32_t bits = static_cast<std::uint32_t>(bytes[at]) << 16;
        if (left > 1) {
            bits |= static_cast<std::uint32_t>(bytes[at + 1]) << 8;
        }
        if (left > 2) {
            bits |= bytes[at + 2];
        }
        text.push_back(kBase64[bits >> 18]);
        text.push_back(kBase64[bits >> 12 & 63]);
        text.push_back(left > 1 ? kBase64[bits >> 6 & 63] : '=');
        text.push_back(left > 2 ? kBase64[bits & 63] : '=');
    }
    return text;
}

std::string unescape(std::string_view text, bool keepN) {
    if (text.find_first_of("\\\r") == std::string_view::npos) {
        return std::string(text);
    }
    std::string plain;
    plain.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char byte = text[at];
        if (byte == '\r') { // the two line ends that quoted-printable text has become one
            plain.push_back('\n');
            at += at + 1 < text.size() && text[at + 1] == '\n' ? 1 : 0;
            continue;
        }
        if (byte == '\\' && at + 1 < text.size()) {
            const char next = text[at + 1];
            if ((next == 'n' || next == 'N') && !keepN) {
                plain.push_back('\n');
                ++at;
                continue;
            }
            if (next != '\0' && std::strchr("\\,;:\"", next)) {
                plain.push_back(next);
                ++at;
                continue;
            }
        }
        plain.push_back(byte);
    }
    return plain;
}

namespace {

std::string escapeWith(std::string_view text, std::string_view special) {
    std::string escaped;
    escaped.reserve(text.size() + 8);
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char byte = text[at];
        if (byte == '\r' || byte == '\n') {
            escaped += "\\n";
            at += byte == '\r' && at + 1 < text.size() && text[at + 1] == '\n' ? 1 : 0;
            continue;
        }
        if (special.find(byte) != std::string_view::npos) {
            escaped.push_back('\\');
        }
        escaped.push_back(byte);
    }
    return escaped;
}

} // namespace

std::string escape(std::string_view text) {
    return escapeWith(text, "\\,;");
}

std::string escapeUri(std::string_view text) {
    return escapeWith(text, "\\");
}

bool hasUnescaped(std::string_view text, char separator) {
    return text.find(separator) != std::string_view::npos && splitEscaped(text, separator, 2).size() > 1;
}

std::vector<std::string_view> splitEscaped(std::string_view text, char separator, std::size_t most) {
    std::vector<std::string_view> parts;
    std::size_t start = 0;
    for (std::size_t at = 0; at < text.size() && parts.size() + 1 < most; ++at) {
        if (text[at] == '\\') {
            ++at;
        } else if (text[at] == separator) {
            parts.push_back(text.substr(start, at - start));
            start = at + 1;
        }
    }
    parts.push_back(text.substr(start));
    return parts;
}

std::vector<std::string_view> splitQuoted(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    const bool balanced = std::count(text.begin(), text.end(), '"') % 2 == 0;
    bool quoted = false;
    std::size_t start = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '"' && balanced) {
            quoted = !quoted;
        } else if (text[at] == separator && !quoted) {
            parts.push_back(text.substr(start, at - start));
            start = at + 1;
        }
    }
    parts.push_back(text.substr(start));
    return parts;
}

std::string upperCase(std::string_view text) {
    std::string upper(text);
    for (char& byte : upper) {
        if (byte >= 'a' && byte <= 'z') {
            byte = static_cast<char>(byte - 'a' + 'A');
        }
    }
    return upper;
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    for (char& byte : lower) {
        if (byte >= 'A' && byte <= 'Z') {
            byte = static_cast<char>(byte - 'A' + 'a');
        }
    }
    return lower;
}

bool equalsIgnoringCase(std::string_view left, std::string_view right) {
    const auto lower = [](char byte) {
        return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
    };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&](char a, char b) { return lower(a) == lower(b); });
}

} // namespace addressbook::vcard
