#include "host/wrapper/encodings.h"

#include "FMWrapper/FMXText.h"
#include "host/values/text.h"
#include "host/wrapper/johab.h"

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ucnv_err.h>
#include <unicode/utf16.h>
#include <vector>

namespace host {

namespace {

// ICU's converter for each encoding, by the interface's number; null for UTF-8, which needs none. ICU has
// none for the old Mac encodings of Japanese, Korean, Chinese, Arabic and Hebrew: instead, those of the
// standards that they extend are used. It has none for Johab either (johab.h), whose symbols and Chinese
// characters are those of Windows's Korean.
constexpr const char* kConverters[] = {
    nullptr,                 // Native
    nullptr,                 // UTF8
    "ibm-437",               // ASCII_DOS
    "windows-1252",          // ASCII_Windows
    "macintosh",             // ASCII_Mac
    "ISO-8859-1",            // ISO_8859_1
    "Shift_JIS",             // ShiftJIS_Mac
    "windows-31j",           // ShiftJIS_Win
    "EUC-KR",                // Korean_Mac
    "windows-949",           // Korean_Win
    "windows-949",           // Korean_Johab
    "Big5",                  // ChineseTrad_Mac
    "windows-950",           // ChineseTrad_Win
    "GB2312",                // ChineseSimp_Mac
    "GBK",                   // ChineseSimp_Win
    "x-mac-cyrillic",        // Cyrillic_Mac
    "windows-1251",          // Cyrillic_Win
    "ISO-8859-5",            // ISO_8859_5
    "x-mac-centraleurroman", // CentralEurope_Mac
    "windows-1250",          // EasternEurope_Win
    "ISO-8859-2",            // ISO_8859_2
    "x-mac-turkish",         // Turkish_Mac
    "windows-1254",          // Turkish_Win
    "ISO-8859-3",            // ISO_8859_3
    "ISO-8859-9",            // ISO_8859_9
    "windows-1257",          // Baltic_Win
    "ISO-8859-4",            // ISO_8859_4
    "ISO-8859-6",            // Arabic_Mac
    "windows-1256",          // Arabic_Win
    "ISO-8859-6",            // ISO_8859_6
    "x-mac-greek",           // Greek_Mac
    "windows-1253",          // Greek_Win
    "ISO-8859-7",            // ISO_8859_7
    "ISO-8859-8",            // Hebrew_Mac
    "windows-1255",          // Hebrew_Win
    "ISO-8859-8",            // ISO_8859_8
    "ISO-8859-15",           // ISO_8859_15
};
static_assert(std::size(kConverters) == fmx::Text::kEncoding_ISO_8859_15 + 1);

const char* converterName(fmx::int32 encoding) {
    if (encoding < 0 || static_cast<size_t>(encoding) >= std::size(kConverters)) {
        throw std::invalid_argument("no encoding has that number");
    }
    return kConverters[encoding];
}

// Whether ICU's table for an encoding is one of IBM's, in which three control characters are interchanged.
bool turnsControls(fmx::int32 encoding) {
    return encoding == fmx::Text::kEncoding_ASCII_DOS || encoding == fmx::Text::kEncoding_ShiftJIS_Mac ||
           encoding == fmx::Text::kEncoding_ShiftJIS_Win;
}

// Change the control characters of IBM's tables to the usual ones, and the other way round.
void turnBack(std::u16string& text) {
    for (char16_t& c : text) {
        c = c == u'\x1A' ? u'\x7F' : c == u'\x1C' ? u'\x1A' : c == u'\x7F' ? u'\x1C' : c;
    }
}
std::u16string turned(std::u16string_view text) {
    std::u16string result(text);
    for (char16_t& c : result) {
        c = c == u'\x1A' ? u'\x1C' : c == u'\x1C' ? u'\x7F' : c == u'\x7F' ? u'\x1A' : c;
    }
    return result;
}

// ICU's callback for bytes that cannot be read: writes U+FFFD, where some converters have a control
// character.
void replaceUnreadable(const void* /*context*/, UConverterToUnicodeArgs* arguments, const char* /*bytes*/,
                       int32_t /*length*/, UConverterCallbackReason reason, UErrorCode* error) {
    if (reason <= UCNV_IRREGULAR) {
        constexpr UChar kReplacement = 0xFFFD;
        *error = U_ZERO_ERROR;
        ucnv_cbToUWriteUChars(arguments, &kReplacement, 1, 0, error);
    }
}

void require(UErrorCode error) {
    if (error == U_MEMORY_ALLOCATION_ERROR) {
        throw std::bad_alloc();
    }
    if (U_FAILURE(error)) {
        throw std::runtime_error(std::string("text can not be converted: ") + u_errorName(error));
    }
}

using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

Converter converterCalled(const char* name) {
    UErrorCode error = U_ZERO_ERROR;
    Converter converter(ucnv_open(name, &error), ucnv_close);
    require(error);
    ucnv_setToUCallBack(converter.get(), replaceUnreadable, nullptr, nullptr, nullptr, &error);
    constexpr UChar kQuestionMark = u'?';
    ucnv_setSubstString(converter.get(), &kQuestionMark, 1, &error);
    require(error);
    return converter;
}

std::u16string decodedBy(UConverter& converter, std::string_view bytes) {
    std::u16string text;
    const char* from = bytes.data();
    UErrorCode error = U_BUFFER_OVERFLOW_ERROR;
    while (error == U_BUFFER_OVERFLOW_ERROR) {
        error = U_ZERO_ERROR;
        UChar piece[1024];
        UChar* to = piece;
        ucnv_toUnicode(&converter, &to, std::end(piece), &from, bytes.data() + bytes.size(), nullptr, true,
                       &error);
        text.append(piece, to);
    }
    require(error);
    return text;
}

std::string encodedBy(UConverter& converter, std::u16string_view text, size_t capacity) {
    std::string bytes;
    std::vector<int32_t> sources; // for each byte, the position of its character in the text
    const UChar* from = text.data();
    const UChar* const end = from + text.size();
    UErrorCode error = U_BUFFER_OVERFLOW_ERROR;
    while (error == U_BUFFER_OVERFLOW_ERROR && bytes.size() <= capacity) {
        error = U_ZERO_ERROR;
        char piece[1024];
        int32_t offsets[sizeof piece];
        char* to = piece;
        const auto start = static_cast<int32_t>(from - text.data());
        ucnv_fromUnicode(&converter, &to, piece + sizeof piece, &from, end, offsets, true, &error);
        bytes.append(piece, to);
        std::transform(offsets, offsets + (to - piece), std::back_inserter(sources),
                       [&](int32_t offset) { return offset < 0 ? offset : start + offset; });
    }
    if (error != U_BUFFER_OVERFLOW_ERROR) {
        require(error);
    }
    size_t fitting = std::min(bytes.size(), capacity);
    while (fitting > 0 && fitting < bytes.size() &&
           (sources[fitting] < 0 || sources[fitting] == sources[fitting - 1])) {
        --fitting; // in the middle of a character
    }
    bytes.resize(fitting);
    return bytes;
}

std::string encodedInJohab(UConverter& eucKr, std::u16string_view text, size_t capacity) {
    std::string result;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool isPair = U16_IS_LEAD(text[i]) && i + 1 < text.size() && U16_IS_TRAIL(text[i + 1]);
        std::string bytes = isPair ? std::string() : johabBytes(text[i], eucKr);
        i += isPair ? 1 : 0;
        if (result.size() + std::max<size_t>(bytes.size(), 1) > capacity) {
            break;
        }
        result += bytes.empty() ? "?" : bytes;
    }
    return result;
}

std::u16string decodedFromJohab(UConverter& eucKr, std::string_view bytes) {
    std::u16string text;
    while (!bytes.empty()) {
        text += takeJohab(bytes, eucKr);
    }
    return text;
}

} // namespace

std::u16string decoded(std::string_view bytes, fmx::int32 encoding) {
    const char* name = converterName(encoding);
    if (name == nullptr) {
        return fromUtf8(bytes);
    }
    const Converter converter = converterCalled(name);
    if (encoding == fmx::Text::kEncoding_Korean_Johab) {
        return decodedFromJohab(*converter, bytes);
    }
    std::u16string text = decodedBy(*converter, bytes);
    if (turnsControls(encoding)) {
        turnBack(text);
    }
    return text;
}

std::string encoded(std::u16string_view text, fmx::int32 encoding, size_t capacity) {
    if (const char* name = converterName(encoding)) {
        const Converter converter = converterCalled(name);
        if (encoding == fmx::Text::kEncoding_Korean_Johab) {
            return encodedInJohab(*converter, text, capacity);
        }
        return turnsControls(encoding) ? encodedBy(*converter, turned(text), capacity)
                                       : encodedBy(*converter, text, capacity);
    }
    std::string bytes = toUtf8(text);
    size_t fitting = std::min(bytes.size(), capacity);
    while (fitting > 0 && fitting < bytes.size() &&
           (static_cast<unsigned char>(bytes[fitting]) & 0xC0) == 0x80) {
        --fitting; // in the middle of a character
    }
    bytes.resize(fitting);
    return bytes;
}

} // namespace host
