#include "frameworks/AddressBook/values/text.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <new>
#include <stdexcept>

namespace addressbook {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kFirstCombining = 0x300; // the first character that combines with one before it

bool isHigh(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}
bool isLow(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

void appendUtf8(std::string& out, char32_t code) {
    const auto byte = [&](char32_t bits) { out.push_back(static_cast<char>(bits)); };
    if (code < 0x80) {
        byte(code);
    } else if (code < 0x800) {
        byte(0xC0 | (code >> 6));
        byte(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        byte(0xE0 | (code >> 12));
        byte(0x80 | ((code >> 6) & 0x3F));
        byte(0x80 | (code & 0x3F));
    } else {
        byte(0xF0 | (code >> 18));
        byte(0x80 | ((code >> 12) & 0x3F));
        byte(0x80 | ((code >> 6) & 0x3F));
        byte(0x80 | (code & 0x3F));
    }
}

// Returns the code point at [at] and moves [at] past it. Surrogates are accepted; ill-formed bytes give
// U+FFFD.
char32_t nextCodePoint(std::string_view text, std::size_t& at) {
    const auto lead = static_cast<unsigned char>(text[at++]);
    if (lead < 0x80) {
        return lead;
    }
    int more = 0;
    char32_t code = 0;
    char32_t least = 0;
    if (lead >= 0xC2 && lead < 0xE0) {
        more = 1, code = lead & 0x1F, least = 0x80;
    } else if (lead >= 0xE0 && lead < 0xF0) {
        more = 2, code = lead & 0x0F, least = 0x800;
    } else if (lead >= 0xF0 && lead < 0xF5) {
        more = 3, code = lead & 0x07, least = 0x10000;
    } else {
        return kReplacement;
    }
    std::size_t behind = at;
    for (; more > 0; --more, ++behind) {
        if (behind == text.size() || !isContinuation(text[behind])) {
            return kReplacement;
        }
        code = (code << 6) | (static_cast<unsigned char>(text[behind]) & 0x3F);
    }
    if (code < least || code > 0x10FFFF) {
        return kReplacement;
    }
    at = behind;
    return code;
}

const UNormalizer2* composer() {
    static const UNormalizer2* const instance = [] {
        UErrorCode status = U_ZERO_ERROR;
        const UNormalizer2* nfc = unorm2_getNFCInstance(&status);
        if (U_FAILURE(status)) {
            throw std::runtime_error(std::string("ICU's normalization data is missing: ") +
                                     u_errorName(status));
        }
        return nfc;
    }();
    return instance;
}

std::int32_t unitCount(std::u16string_view text) {
    if (text.size() > INT32_MAX / 4) {
        throw std::length_error("a text is too long to compare");
    }
    return static_cast<std::int32_t>(text.size());
}

// Runs an ICU function that writes UTF-16 into a buffer, and again with a larger buffer when it asks for one.
template <typename Function>
std::u16string converted(std::size_t guess, Function function) {
    std::u16string out(guess, u'\0');
    for (;;) {
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t length = function(out.data(), static_cast<std::int32_t>(out.size()), &status);
        if (status == U_BUFFER_OVERFLOW_ERROR) {
            out.resize(static_cast<std::size_t>(length));
            continue;
        }
        if (U_FAILURE(status)) {
            throw std::runtime_error(std::string("ICU could not convert a text: ") + u_errorName(status));
        }
        out.resize(static_cast<std::size_t>(length));
        return out;
    }
}

// Whether a text is well-formed and has no character from U+0300 on: it is in NFC then, as none of those below
// combines with another, or has another composed form.
bool isSurelyComposed(std::string_view text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto lead = static_cast<unsigned char>(text[at]);
        if (lead < 0x80) {
            continue;
        }
        if (lead < 0xC2 || lead > 0xCB || ++at == text.size() || !isContinuation(text[at])) {
            return false;
        }
    }
    return true;
}

std::string asciiFolded(std::string_view text) {
    std::string out(text);
    for (char& c : out) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c + ('a' - 'A'));
        }
    }
    return out;
}

std::string foldedByIcu(std::string_view text) {
    const std::u16string wide = utf16FromUtf8(text);
    return utf8FromUtf16(
        converted(wide.size() + 16, [&](char16_t* out, std::int32_t capacity, UErrorCode* status) {
            return u_strFoldCase(out, capacity, wide.data(), unitCount(wide), U_FOLD_CASE_DEFAULT, status);
        }));
}

// Folds a text for which isSurelyComposed() is true, each character by a table, which ICU fills once.
std::string foldedByTable(std::string_view text) {
    static const std::array<std::string, kFirstCombining>& forms = *[] {
        auto* filled = new std::array<std::string, kFirstCombining>; // stays until the process ends
        for (char16_t code = 0; code < kFirstCombining; ++code) {
            (*filled)[code] = foldedByIcu(utf8FromUtf16({&code, 1}));
        }
        return filled;
    }();
    std::string folded;
    folded.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        folded += forms[nextCodePoint(text, at)];
    }
    return folded;
}

} // namespace

std::string utf8FromUtf16(std::u16string_view text) {
    std::string out(text.size(), '\0');
    std::size_t i = 0;
    for (; i < text.size() && text[i] < 0x80; ++i) { // nearly always all of it
        out[i] = static_cast<char>(text[i]);
    }
    out.resize(i);
    for (; i < text.size(); ++i) {
        char32_t code = text[i];
        if (isHigh(code) && i + 1 < text.size() && isLow(text[i + 1])) {
            code = 0x10000 + ((code - 0xD800) << 10) + (text[++i] - 0xDC00);
        }
        appendUtf8(out, code);
    }
    return out;
}

std::size_t utf16FromUtf8(std::string_view text, char16_t* to) {
    char16_t* next = to;
    for (std::size_t at = 0; at < text.size();) {
        if (static_cast<unsigned char>(text[at]) < 0x80) {
            *next++ = static_cast<unsigned char>(text[at++]);
            continue;
        }
        const char32_t code = nextCodePoint(text, at);
        if (code < 0x10000) {
            *next++ = static_cast<char16_t>(code);
        } else {
            *next++ = static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
            *next++ = static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
        }
    }
    return static_cast<std::size_t>(next - to);
}

std::u16string utf16FromUtf8(std::string_view text) {
    std::u16string out(text.size(), u'\0');
    out.resize(utf16FromUtf8(text, out.data()));
    return out;
}

bool isAscii(std::string_view text) {
    std::size_t at = 0;
    for (; at + 8 <= text.size(); at += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + at, 8);
        if ((word & 0x8080808080808080U) != 0) {
            return false;
        }
    }
    for (; at < text.size(); ++at) {
        if (static_cast<unsigned char>(text[at]) >= 0x80) {
            return false;
        }
    }
    return true;
}

std::string normalize(std::string_view text) {
    if (isSurelyComposed(text)) {
        return std::string(text);
    }
    const std::u16string wide = utf16FromUtf8(text);
    return utf8FromUtf16(
        converted(wide.size() + 16, [&](char16_t* out, std::int32_t capacity, UErrorCode* status) {
            return unorm2_normalize(composer(), wide.data(), unitCount(wide), out, capacity, status);
        }));
}

std::string foldNormalized(std::string_view text) {
    if (isAscii(text)) {
        return asciiFolded(text);
    }
    return isSurelyComposed(text) ? foldedByTable(text) : foldedByIcu(text);
}

std::string fold(std::string_view text) {
    return isAscii(text) ? asciiFolded(text) : foldNormalized(normalize(text));
}

std::string unicodeVersion() {
    UVersionInfo version{};
    u_getUnicodeVersion(version);
    return std::to_string(version[0]) + "." + std::to_string(version[1]) + "." + std::to_string(version[2]);
}

std::string_view trim(std::string_view text) {
    constexpr std::string_view kSpace = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kSpace);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

std::size_t countCharacters(std::string_view text) {
    return text.size() - static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isContinuation));
}

std::string_view beginning(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) {
        return text;
    }
    while (bytes > 0 && isContinuation(text[bytes])) {
        --bytes;
    }
    return text.substr(0, bytes);
}

std::string_view ending(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) {
        return text;
    }
    text.remove_prefix(text.size() - bytes);
    while (!text.empty() && isContinuation(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

std::string reversed(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t end = text.size(); end > 0;) {
        std::size_t begin = end - 1;
        while (begin > 0 && isContinuation(text[begin])) {
            --begin;
        }
        out.append(text, begin, end - begin);
        end = begin;
    }
    return out;
}

} // namespace addressbook
