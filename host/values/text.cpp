#include "host/values/text.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>
#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

namespace host {

namespace {

// Returns the text's length as ICU counts, in 32 bits. Throws std::length_error for a longer text.
int32_t length32(std::u16string_view text) {
    if (text.size() > static_cast<size_t>(std::numeric_limits<int32_t>::max())) {
        throw std::length_error("the text is too long");
    }
    return static_cast<int32_t>(text.size());
}

// Runs an ICU conversion (buffer, capacity, status), once more when the first buffer was too small.
template <class Convert>
std::u16string converted(std::u16string_view text, Convert convert) {
    std::u16string result(text.size(), u'\0');
    for (;;) {
        UErrorCode status = U_ZERO_ERROR;
        const int32_t length = convert(result.data(), length32(result), &status);
        if (status == U_MEMORY_ALLOCATION_ERROR) {
            throw std::bad_alloc();
        }
        if (status != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(status)) {
            throw std::runtime_error(u_errorName(status));
        }
        const bool fitted = static_cast<size_t>(length) <= result.size();
        result.resize(static_cast<size_t>(length));
        if (fitted) {
            return result;
        }
    }
}

bool isAscii(std::u16string_view text) {
    return std::all_of(text.begin(), text.end(), [](char16_t c) { return c < 0x80; });
}

// Changes the case of the ASCII letters from [first] to [last]; a fast path, as most texts have no others.
std::u16string shifted(std::u16string_view text, char16_t first, char16_t last) {
    std::u16string result(text);
    for (char16_t& c : result) {
        c = static_cast<char16_t>(c >= first && c <= last ? c ^ 0x20 : c);
    }
    return result;
}

UChar32 foldedAt(std::u16string_view text, size_t& at) {
    UChar32 c = 0;
    const UChar* units = text.data();
    U16_NEXT(units, at, text.size(), c);
    return u_foldCase(c, U_FOLD_CASE_DEFAULT);
}

bool matchesAt(std::u16string_view text, size_t at, std::u16string_view wanted) {
    for (size_t i = 0; i < wanted.size();) {
        if (at >= text.size() || foldedAt(text, at) != foldedAt(wanted, i)) {
            return false;
        }
    }
    return true;
}

} // namespace

std::string toUtf8(std::u16string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    const UChar* units = text.data();
    for (size_t i = 0; i < text.size();) {
        if (units[i] < 0x80) {
            bytes += static_cast<char>(units[i++]);
            continue;
        }
        UChar32 c = 0;
        U16_NEXT_OR_FFFD(units, i, text.size(), c);
        char buffer[U8_MAX_LENGTH];
        size_t length = 0;
        U8_APPEND_UNSAFE(buffer, length, c);
        bytes.append(buffer, length);
    }
    return bytes;
}

std::u16string fromUtf8(std::string_view bytes) {
    std::u16string text;
    text.reserve(bytes.size());
    const char* data = bytes.data();
    for (size_t i = 0; i < bytes.size();) {
        if (static_cast<unsigned char>(data[i]) < 0x80) {
            text += static_cast<char16_t>(data[i++]);
            continue;
        }
        UChar32 c = 0;
        U8_NEXT_OR_FFFD(data, i, bytes.size(), c);
        if (U_IS_BMP(c)) {
            text += static_cast<char16_t>(c);
        } else {
            text += U16_LEAD(c);
            text += U16_TRAIL(c);
        }
    }
    return text;
}

std::u16string foldCase(std::u16string_view text) {
    if (isAscii(text)) {
        return shifted(text, u'A', u'Z');
    }
    return converted(text, [text](UChar* to, int32_t capacity, UErrorCode* status) {
        return u_strFoldCase(to, capacity, text.data(), length32(text), U_FOLD_CASE_DEFAULT, status);
    });
}

std::u16string toUpper(std::u16string_view text) {
    if (isAscii(text)) {
        return shifted(text, u'a', u'z');
    }
    return converted(text, [text](UChar* to, int32_t capacity, UErrorCode* status) {
        return u_strToUpper(to, capacity, text.data(), length32(text), "", status);
    });
}

std::u16string toLower(std::u16string_view text) {
    if (isAscii(text)) {
        return shifted(text, u'A', u'Z');
    }
    return converted(text, [text](UChar* to, int32_t capacity, UErrorCode* status) {
        return u_strToLower(to, capacity, text.data(), length32(text), "", status);
    });
}

// The C library looks for the first unit's lower byte, many bytes at a time. Not for a byte that is 0, which is every
// other one of a text in Latin letters.
size_t findUnits(std::u16string_view text, std::u16string_view wanted, size_t position) {
    const int byte = wanted.front() & 0xFF;
    if (std::endian::native != std::endian::little || byte == 0) {
        return text.find(wanted, position);
    }
    const auto* const begin = reinterpret_cast<const char*>(text.data());
    const size_t end = text.size() < wanted.size() ? 0 : text.size() - wanted.size() + 1;
    for (size_t at = position; at < end;) {
        const void* hit = std::memchr(text.data() + at, byte, (end - at) * sizeof(char16_t));
        if (hit == nullptr) {
            break;
        }
        const auto offset = static_cast<size_t>(static_cast<const char*>(hit) - begin);
        at = offset / sizeof(char16_t);
        if (offset % sizeof(char16_t) == 0 && text.compare(at, wanted.size(), wanted) == 0) {
            return at;
        }
        ++at;
    }
    return std::u16string_view::npos;
}

size_t findIgnoringCase(std::u16string_view text, std::u16string_view wanted, size_t position) {
    for (size_t at = position; at <= text.size(); ++at) {
        if (matchesAt(text, at, wanted)) {
            return at;
        }
    }
    return std::u16string_view::npos;
}

size_t findLastIgnoringCase(std::u16string_view text, std::u16string_view wanted, size_t position) {
    for (size_t at = std::min(position, text.size()) + 1; at-- > 0;) {
        if (matchesAt(text, at, wanted)) {
            return at;
        }
    }
    return std::u16string_view::npos;
}

} // namespace host
