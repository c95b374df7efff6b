// FM_Text_* and FM_Locale_*.
#include "FMWrapper/FMXText.h"

#include "host/values/text.h"
#include "host/wrapper/guard.h"
#include "host/wrapper/objects.h"

#include <algorithm>
#include <compare>
#include <cstring>
#include <cwchar>

using fmx::_fmxcpt;
using fmx::int32;
using fmx::Locale;
using fmx::Text;
using fmx::uint16;
using fmx::uint32;
using host::guarded;
using host::inside;
using host::self;

namespace {

// The part of a text that a range names.
std::u16string_view rangeOf(const std::u16string& text, uint32 position, uint32 size) {
    return std::u16string_view(text).substr(std::min<size_t>(position, text.size()), size);
}

std::u16string decoded(const char* bytes, size_t length, int32 encoding) {
    host::requireBuffer(bytes, length);
    if (encoding != Text::kEncoding_Native && encoding != Text::kEncoding_UTF8) {
        throw std::invalid_argument("an encoding that this host does not know");
    }
    return host::fromUtf8({bytes, length});
}

std::u16string decodedWide(const wchar_t* characters, size_t length) {
    host::requireBuffer(characters, length);
    std::u16string text;
    text.reserve(length);
    for (const wchar_t* at = characters; at != characters + length; ++at) {
        const auto c = static_cast<char32_t>(*at);
        if (c < 0x10000) {
            text += static_cast<char16_t>(c);
        } else if (c < 0x110000) {
            text += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            text += static_cast<char16_t>(0xDC00 + (c & 0x3FF));
        } else {
            text += u'\uFFFD';
        }
    }
    return text;
}

std::u16string decodedUnits(const uint16* units, size_t length) {
    host::requireBuffer(units, length);
    return {units, units + length};
}

size_t unitsBeforeZero(const uint16* units) {
    host::requireBuffer(units, 1);
    size_t length = 0;
    while (units[length] != 0) {
        ++length;
    }
    return length;
}

uint32 found(size_t position) {
    return position == std::u16string::npos ? Text::kSize_Invalid : static_cast<uint32>(position);
}

std::strong_ordering compared(const void* object, const Text& other) {
    return host::compareUnits(self<Text>(object), inside(other));
}

} // namespace

Locale* FM_Locale_Constructor1(int32 type, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return host::made<Locale>(type); });
}
Locale* FM_Locale_Constructor2(const Locale& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return host::made<Locale>(inside(other)); });
}
void FM_Locale_Delete(void* object, _fmxcpt&) noexcept {
    host::destroy<Locale>(object);
}
const Locale& FM_Locale_operatorAS(void* object, const Locale& other, _fmxcpt& block) noexcept {
    return host::outside<Locale>(
        guarded(block, [&]() -> const host::LocaleObject& { return self<Locale>(object) = inside(other); }));
}

Text* FM_Text_Constructor1(_fmxcpt& block) noexcept {
    return guarded(block, [] { return host::made<Text>(); });
}
void FM_Text_Delete(void* object, _fmxcpt&) noexcept {
    host::destroy<Text>(object);
}
uint32 FM_Text_GetSize(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return host::size32(self<Text>(object).size()); });
}

void FM_Text_Assign(void* object, const char* text, int32 encoding, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        host::requireBuffer(text, 1);
        self<Text>(object) = decoded(text, std::strlen(text), encoding);
    });
}
void FM_Text_AssignWide(void* object, const wchar_t* text, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        host::requireBuffer(text, 1);
        self<Text>(object) = decodedWide(text, std::wcslen(text));
    });
}
void FM_Text_AssignUnicode(void* object, const uint16* text, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<Text>(object) = decodedUnits(text, unitsBeforeZero(text)); });
}
void FM_Text_AssignWithLength(void* object, const char* text, uint32 length, int32 encoding,
                              _fmxcpt& block) noexcept {
    guarded(block, [&] { self<Text>(object) = decoded(text, length, encoding); });
}
void FM_Text_AssignWideWithLength(void* object, const wchar_t* text, uint32 length, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<Text>(object) = decodedWide(text, length); });
}
void FM_Text_AssignUnicodeWithLength(void* object, const uint16* text, uint32 length,
                                     _fmxcpt& block) noexcept {
    guarded(block, [&] { self<Text>(object) = decodedUnits(text, length); });
}

void FM_Text_GetBytes(const void* object, char* buffer, uint32 bufferBytes, uint32 position, uint32 size,
                      int32 encoding, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        host::requireBuffer(buffer, bufferBytes);
        if (encoding != Text::kEncoding_Native && encoding != Text::kEncoding_UTF8) {
            throw std::invalid_argument("an encoding that this host does not know");
        }
        const std::string bytes = host::toUtf8(rangeOf(self<Text>(object), position, size));
        if (bufferBytes == 0) {
            return;
        }
        size_t fitting = std::min<size_t>(bytes.size(), bufferBytes - 1);
        while (fitting > 0 && fitting < bytes.size() &&
               (static_cast<unsigned char>(bytes[fitting]) & 0xC0) == 0x80) {
            --fitting; // in the middle of a character
        }
        std::copy_n(bytes.data(), fitting, buffer);
        buffer[fitting] = '\0';
    });
}
void FM_Text_GetUnicode(const void* object, uint16* buffer, uint32 position, uint32 size,
                        _fmxcpt& block) noexcept {
    guarded(block, [&] {
        const std::u16string_view range = rangeOf(self<Text>(object), position, size);
        host::requireBuffer(buffer, range.size());
        std::copy(range.begin(), range.end(), buffer);
    });
}

void FM_Text_SetText(void* object, const Text& other, uint32 position, uint32 size, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<Text>(object) = std::u16string(rangeOf(inside(other), position, size)); });
}
void FM_Text_AppendText(void* object, const Text& other, uint32 position, uint32 size,
                        _fmxcpt& block) noexcept {
    guarded(block,
            [&] { self<Text>(object).append(std::u16string(rangeOf(inside(other), position, size))); });
}
void FM_Text_InsertText(void* object, const Text& other, uint32 position, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        std::u16string& text = self<Text>(object);
        text.insert(std::min<size_t>(position, text.size()), inside(other));
    });
}
void FM_Text_DeleteText(void* object, uint32 position, uint32 size, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        std::u16string& text = self<Text>(object);
        text.erase(std::min<size_t>(position, text.size()), size);
    });
}

uint32 FM_Text_Find(const void* object, const Text& wanted, uint32 position, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return found(self<Text>(object).find(inside(wanted), position)); });
}
uint32 FM_Text_FindPrev(const void* object, const Text& wanted, uint32 position, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return found(self<Text>(object).rfind(inside(wanted), position)); });
}
uint32 FM_Text_FindIgnoringCase(const void* object, const Text& wanted, uint32 position,
                                _fmxcpt& block) noexcept {
    return guarded(
        block, [&] { return found(host::findIgnoringCase(self<Text>(object), inside(wanted), position)); });
}
uint32 FM_Text_FindPrevIgnoringCase(const void* object, const Text& wanted, uint32 position,
                                    _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        return found(host::findLastIgnoringCase(self<Text>(object), inside(wanted), position));
    });
}

void FM_Text_Uppercase(void* object, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<Text>(object) = host::toUpper(self<Text>(object)); });
}
void FM_Text_Lowercase(void* object, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<Text>(object) = host::toLower(self<Text>(object)); });
}

bool FM_Text_operatorEQ(const void* object, const Text& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return compared(object, other) == 0; });
}
bool FM_Text_operatorNE(const void* object, const Text& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return compared(object, other) != 0; });
}
bool FM_Text_operatorLT(const void* object, const Text& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return compared(object, other) < 0; });
}
bool FM_Text_operatorLE(const void* object, const Text& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return compared(object, other) <= 0; });
}
bool FM_Text_operatorGT(const void* object, const Text& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return compared(object, other) > 0; });
}
bool FM_Text_operatorGE(const void* object, const Text& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return compared(object, other) >= 0; });
}
