// FM_Text_*.
#include "host/values/text.h"
#include "host/wrapper/encodings.h"
#include "host/wrapper/guard.h"
#include "host/wrapper/objects.h"

#include <algorithm>
#include <compare>
#include <cstring>
#include <cwchar>

using fmx::_fmxcpt;
using fmx::CharacterStyle;
using fmx::int32;
using fmx::Text;
using fmx::uint16;
using fmx::uint32;
using host::guarded;
using host::inside;
using host::self;
using host::TextObject;

namespace {

// Returns the part of a text in a range, which is cut at the text's end.
std::u16string_view rangeOf(const TextObject& text, uint32 position, uint32 size) {
    return std::u16string_view(text.characters)
        .substr(std::min<size_t>(position, text.characters.size()), size);
}

// Returns a part of a text with its styles.
TextObject partOf(const TextObject& text, uint32 position, uint32 size) {
    const std::u16string_view range = rangeOf(text, position, size);
    return {std::u16string(range),
            text.styles.part(static_cast<size_t>(range.data() - text.characters.data()), range.size())};
}

// Replaces the object's text by characters without a style.
void assign(void* object, std::u16string characters) {
    self<Text>(object) = TextObject{std::move(characters), {}};
}

std::u16string decoded(const char* bytes, size_t length, int32 encoding) {
    host::requireBuffer(bytes, length);
    return host::decoded({bytes, length}, encoding);
}

constexpr size_t npos = std::u16string::npos;

void insert(TextObject& text, size_t position, const TextObject& inserted) {
    const size_t place = std::min(position, text.characters.size());
    text.characters.insert(place, inserted.characters);
    text.styles.insert(place, inserted.styles, inserted.characters.size());
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
    std::u16string text(length, u'\0');
    if (length != 0) {
        std::memcpy(text.data(), units, length * sizeof *units);
    }
    return text;
}

size_t unitsBeforeZero(const uint16* units) {
    host::requireBuffer(units, 1);
    size_t length = 0;
    while (units[length] != 0) {
        ++length;
    }
    return length;
}

// Changes the letters of a text by [change]. One character may become several, or the other way round; they
// keep its style.
void changeLetters(const void* object, std::u16string (*change)(std::u16string_view)) {
    auto& [characters, styles] = self<Text>(const_cast<void*>(object)); // NOLINT: see the two calls
    std::u16string changed = change(characters);
    if (!styles.isEmpty() && changed.size() != characters.size()) {
        size_t place = 0;
        for (const char16_t& c : characters) {
            const size_t count = change({&c, 1}).size();
            styles.insert(place + 1, styles.part(place, 1), count > 1 ? count - 1 : 0);
            place += count;
        }
        styles = styles.part(0, changed.size());
    }
    characters = std::move(changed);
}

uint32 found(size_t position) {
    return position == std::u16string::npos ? Text::kSize_Invalid : static_cast<uint32>(position);
}

std::strong_ordering compared(const void* object, const Text& other) {
    return host::compareUnits(self<Text>(object).characters, inside(other).characters);
}

} // namespace

Text* FM_Text_Constructor1(_fmxcpt& block) noexcept {
    return guarded(block, [] { return host::made<Text>(); });
}
void FM_Text_Delete(void* object, _fmxcpt&) noexcept {
    host::destroy<Text>(object);
}
uint32 FM_Text_GetSize(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return host::size32(self<Text>(object).characters.size()); });
}

void FM_Text_Assign(void* object, const char* text, int32 encoding, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        host::requireBuffer(text, 1);
        assign(object, decoded(text, std::strlen(text), encoding));
    });
}
void FM_Text_AssignWide(void* object, const wchar_t* text, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        host::requireBuffer(text, 1);
        assign(object, decodedWide(text, std::wcslen(text)));
    });
}
void FM_Text_AssignUnicode(void* object, const uint16* text, _fmxcpt& block) noexcept {
    guarded(block, [&] { assign(object, decodedUnits(text, unitsBeforeZero(text))); });
}
void FM_Text_AssignWithLength(void* object, const char* text, uint32 length, int32 encoding,
                              _fmxcpt& block) noexcept {
    guarded(block, [&] { assign(object, decoded(text, length, encoding)); });
}
void FM_Text_AssignWideWithLength(void* object, const wchar_t* text, uint32 length, _fmxcpt& block) noexcept {
    guarded(block, [&] { assign(object, decodedWide(text, length)); });
}
void FM_Text_AssignUnicodeWithLength(void* object, const uint16* text, uint32 length,
                                     _fmxcpt& block) noexcept {
    guarded(block, [&] { assign(object, decodedUnits(text, length)); });
}

uint32 FM_Text_GetBytesEx(const void* object, char* buffer, uint32 bufferBytes, uint32 position, uint32 size,
                          int32 encoding, _fmxcpt& block) noexcept {
    return guarded(block, [&]() -> uint32 {
        host::requireBuffer(buffer, bufferBytes);
        const std::string bytes = host::encoded(rangeOf(self<Text>(object), position, size), encoding,
                                                bufferBytes == 0 ? 0 : bufferBytes - 1);
        if (bufferBytes != 0) {
            std::copy(bytes.begin(), bytes.end(), buffer);
            buffer[bytes.size()] = '\0';
        }
        return static_cast<uint32>(bytes.size());
    });
}
void FM_Text_GetBytes(const void* object, char* buffer, uint32 bufferBytes, uint32 position, uint32 size,
                      int32 encoding, _fmxcpt& block) noexcept {
    FM_Text_GetBytesEx(object, buffer, bufferBytes, position, size, encoding, block);
}
void FM_Text_GetUnicode(const void* object, uint16* buffer, uint32 position, uint32 size,
                        _fmxcpt& block) noexcept {
    guarded(block, [&] {
        const std::u16string_view range = rangeOf(self<Text>(object), position, size);
        host::requireBuffer(buffer, range.size());
        if (!range.empty()) {
            std::memcpy(buffer, range.data(), range.size() * sizeof *buffer);
        }
    });
}

void FM_Text_SetText(void* object, const Text& other, uint32 position, uint32 size, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<Text>(object) = partOf(inside(other), position, size); });
}
void FM_Text_AppendText(void* object, const Text& other, uint32 position, uint32 size,
                        _fmxcpt& block) noexcept {
    guarded(block, [&] { insert(self<Text>(object), npos, partOf(inside(other), position, size)); });
}
void FM_Text_InsertText(void* object, const Text& other, uint32 position, _fmxcpt& block) noexcept {
    guarded(block, [&] { insert(self<Text>(object), position, TextObject(inside(other))); });
}
void FM_Text_DeleteText(void* object, uint32 position, uint32 size, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        auto& [characters, styles] = self<Text>(object);
        const size_t from = std::min<size_t>(position, characters.size());
        const size_t count = std::min<size_t>(size, characters.size() - from);
        characters.erase(from, count);
        styles.erase(from, count);
    });
}

void FM_Text_GetStyle(const void* object, CharacterStyle& style, uint32 position, _fmxcpt& block) noexcept {
    guarded(block, [&] { inside(style) = self<Text>(object).styles.at(position); });
}
void FM_Text_GetDefaultStyle(const void* object, CharacterStyle& style, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        static_cast<void>(self<Text>(object));
        inside(style) = host::CharacterStyleObject::standard();
    });
}
void FM_Text_SetStyle(void* object, const CharacterStyle& style, uint32 position, uint32 size,
                      _fmxcpt& block) noexcept {
    guarded(block, [&] {
        auto& [characters, styles] = self<Text>(object);
        const size_t from = std::min<size_t>(position, characters.size());
        styles.apply(inside(style), from, std::min<size_t>(size, characters.size() - from));
    });
}
void FM_Text_RemoveStyle(void* object, const CharacterStyle& style, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<Text>(object).styles.forget(inside(style)); });
}
void FM_Text_ResetAllStyleBuffers(void* object, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<Text>(object).styles.clear(); });
}

uint32 FM_Text_Find(const void* object, const Text& wanted, uint32 position, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        return found(self<Text>(object).characters.find(inside(wanted).characters, position));
    });
}
uint32 FM_Text_FindPrev(const void* object, const Text& wanted, uint32 position, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        return found(self<Text>(object).characters.rfind(inside(wanted).characters, position));
    });
}
uint32 FM_Text_FindIgnoringCase(const void* object, const Text& wanted, uint32 position,
                                _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        return found(
            host::findIgnoringCase(self<Text>(object).characters, inside(wanted).characters, position));
    });
}
uint32 FM_Text_FindPrevIgnoringCase(const void* object, const Text& wanted, uint32 position,
                                    _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        return found(
            host::findLastIgnoringCase(self<Text>(object).characters, inside(wanted).characters, position));
    });
}

// The interface declares these two as const, although they change the text.
void FM_Text_Uppercase(const void* object, _fmxcpt& block) noexcept {
    guarded(block, [&] { changeLetters(object, host::toUpper); });
}
void FM_Text_Lowercase(const void* object, _fmxcpt& block) noexcept {
    guarded(block, [&] { changeLetters(object, host::toLower); });
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
