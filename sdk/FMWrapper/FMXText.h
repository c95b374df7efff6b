#pragma once

/// Text of the host, in UTF-16, with the styles of its characters.
///
/// Positions and sizes count UTF-16 units; a range that reaches past the end of a text is cut there.

#include "FMXClient.h"

FMX_BEGIN_CALLS

FMX_API fmx::Text* FM_Text_Constructor1(fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_Delete(void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::uint32 FM_Text_GetSize(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_Assign(void* self, const char* text, fmx::int32 encoding, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_AssignWide(void* self, const wchar_t* text, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_AssignUnicode(void* self, const fmx::uint16* text, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_AssignWithLength(void* self, const char* text, fmx::uint32 length, fmx::int32 encoding,
                                      fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_AssignWideWithLength(void* self, const wchar_t* text, fmx::uint32 length,
                                          fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_AssignUnicodeWithLength(void* self, const fmx::uint16* text, fmx::uint32 length,
                                             fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_GetBytes(const void* self, char* buffer, fmx::uint32 bufferBytes, fmx::uint32 position,
                              fmx::uint32 size, fmx::int32 encoding, fmx::_fmxcpt&) noexcept;
FMX_API fmx::uint32 FM_Text_GetBytesEx(const void* self, char* buffer, fmx::uint32 bufferBytes,
                                       fmx::uint32 position, fmx::uint32 size, fmx::int32 encoding,
                                       fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_GetUnicode(const void* self, fmx::uint16* buffer, fmx::uint32 position, fmx::uint32 size,
                                fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_SetText(void* self, const fmx::Text& other, fmx::uint32 position, fmx::uint32 size,
                             fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_AppendText(void* self, const fmx::Text& other, fmx::uint32 position, fmx::uint32 size,
                                fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_InsertText(void* self, const fmx::Text& other, fmx::uint32 position,
                                fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_DeleteText(void* self, fmx::uint32 position, fmx::uint32 size, fmx::_fmxcpt&) noexcept;
FMX_API fmx::uint32 FM_Text_Find(const void* self, const fmx::Text& wanted, fmx::uint32 position,
                                 fmx::_fmxcpt&) noexcept;
FMX_API fmx::uint32 FM_Text_FindPrev(const void* self, const fmx::Text& wanted, fmx::uint32 position,
                                     fmx::_fmxcpt&) noexcept;
FMX_API fmx::uint32 FM_Text_FindIgnoringCase(const void* self, const fmx::Text& wanted, fmx::uint32 position,
                                             fmx::_fmxcpt&) noexcept;
FMX_API fmx::uint32 FM_Text_FindPrevIgnoringCase(const void* self, const fmx::Text& wanted,
                                                 fmx::uint32 position, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_Uppercase(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_Lowercase(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_GetStyle(const void* self, fmx::CharacterStyle& style, fmx::uint32 position,
                              fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_GetDefaultStyle(const void* self, fmx::CharacterStyle& style, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_SetStyle(void* self, const fmx::CharacterStyle& style, fmx::uint32 position,
                              fmx::uint32 size, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_RemoveStyle(void* self, const fmx::CharacterStyle& style, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_ResetAllStyleBuffers(void* self, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_Text_operatorEQ(const void* self, const fmx::Text& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_Text_operatorNE(const void* self, const fmx::Text& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_Text_operatorLT(const void* self, const fmx::Text& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_Text_operatorLE(const void* self, const fmx::Text& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_Text_operatorGT(const void* self, const fmx::Text& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_Text_operatorGE(const void* self, const fmx::Text& other, fmx::_fmxcpt&) noexcept;

FMX_END_CALLS

namespace fmx {

/// A text.
class Text {
  public:
    FMX_OPAQUE_CLASS(Text)
    Text& operator=(const Text&) = delete;

    /// A size that means up to the end of the text, and the position that a search returns when it finds
    /// nothing.
    enum : uint32 { kSize_End = 0xFFFFFFFF, kSize_Invalid = 0xFFFFFFFF };

    /// The encodings of text as bytes. Characters that an encoding does not have become its replacement
    /// character; bytes without a meaning become U+FFFD. Native is UTF-8.
    enum Encoding {
        kEncoding_Native = 0,
        kEncoding_UTF8 = 1,
        kEncoding_ASCII_DOS = 2,
        kEncoding_ASCII_Windows = 3,
        kEncoding_ASCII_Mac = 4,
        kEncoding_ISO_8859_1 = 5,
        kEncoding_ShiftJIS_Mac = 6,
        kEncoding_ShiftJIS_Win = 7,
        kEncoding_Korean_Mac = 8,
        kEncoding_Korean_Win = 9,
        kEncoding_Korean_Johab = 10,
        kEncoding_ChineseTrad_Mac = 11,
        kEncoding_ChineseTrad_Win = 12,
        kEncoding_ChineseSimp_Mac = 13,
        kEncoding_ChineseSimp_Win = 14,
        kEncoding_Cyrillic_Mac = 15,
        kEncoding_Cyrillic_Win = 16,
        kEncoding_ISO_8859_5 = 17,
        kEncoding_CentralEurope_Mac = 18,
        kEncoding_EasternEurope_Win = 19,
        kEncoding_ISO_8859_2 = 20,
        kEncoding_Turkish_Mac = 21,
        kEncoding_Turkish_Win = 22,
        kEncoding_ISO_8859_3 = 23,
        kEncoding_ISO_8859_9 = 24,
        kEncoding_Baltic_Win = 25,
        kEncoding_ISO_8859_4 = 26,
        kEncoding_Arabic_Mac = 27,
        kEncoding_Arabic_Win = 28,
        kEncoding_ISO_8859_6 = 29,
        kEncoding_Greek_Mac = 30,
        kEncoding_Greek_Win = 31,
        kEncoding_ISO_8859_7 = 32,
        kEncoding_Hebrew_Mac = 33,
        kEncoding_Hebrew_Win = 34,
        kEncoding_ISO_8859_8 = 35,
        kEncoding_ISO_8859_15 = 36
    };

    /// Returns the length in UTF-16 units.
    uint32 GetSize() const { return Call(FM_Text_GetSize, this); }

    /// Replace the text. Without a length, the source ends at its first zero.
    void Assign(const char* text, int32 encoding = kEncoding_Native) {
        Call(FM_Text_Assign, this, text, encoding);
    }
    void AssignWide(const wchar_t* text) { Call(FM_Text_AssignWide, this, text); }
    void AssignUnicode(const uint16* text) { Call(FM_Text_AssignUnicode, this, text); }
    void AssignWithLength(const char* text, uint32 length, int32 encoding = kEncoding_Native) {
        Call(FM_Text_AssignWithLength, this, text, length, encoding);
    }
    void AssignWideWithLength(const wchar_t* text, uint32 length) {
        Call(FM_Text_AssignWideWithLength, this, text, length);
    }
    void AssignUnicodeWithLength(const uint16* text, uint32 length) {
        Call(FM_Text_AssignUnicodeWithLength, this, text, length);
    }

    /// Copies a range as bytes, as many whole characters as fit, followed by a zero byte.
    void GetBytes(char* buffer, uint32 bufferBytes, uint32 position = 0, uint32 size = kSize_End,
                  int32 encoding = kEncoding_Native) const {
        Call(FM_Text_GetBytes, this, buffer, bufferBytes, position, size, encoding);
    }
    /// Like `GetBytes`, but returns the number of bytes written, without the zero byte.
    uint32 GetBytesEx(char* buffer, uint32 bufferBytes, uint32 position = 0, uint32 size = kSize_End,
                      int32 encoding = kEncoding_Native) const {
        return Call(FM_Text_GetBytesEx, this, buffer, bufferBytes, position, size, encoding);
    }
    /// Copies a range as UTF-16, without a terminator.
    void GetUnicode(uint16* buffer, uint32 position, uint32 size) const {
        Call(FM_Text_GetUnicode, this, buffer, position, size);
    }

    /// Replaces the text by a range of another.
    void SetText(const Text& other, uint32 position = 0, uint32 size = kSize_End) {
        Call(FM_Text_SetText, this, other, position, size);
    }
    /// Appends a range of another text.
    void AppendText(const Text& other, uint32 position = 0, uint32 size = kSize_End) {
        Call(FM_Text_AppendText, this, other, position, size);
    }
    /// Inserts another text before a position, or at the end.
    void InsertText(const Text& other, uint32 position) { Call(FM_Text_InsertText, this, other, position); }
    void DeleteText(uint32 position, uint32 size = kSize_End) {
        Call(FM_Text_DeleteText, this, position, size);
    }

    /// Returns the position of the first occurrence at or after a position; `kSize_Invalid` when there is
    /// none.
    uint32 Find(const Text& wanted, uint32 position) const {
        return Call(FM_Text_Find, this, wanted, position);
    }
    uint32 FindIgnoringCase(const Text& wanted, uint32 position) const {
        return Call(FM_Text_FindIgnoringCase, this, wanted, position);
    }
    /// Returns the position of the last occurrence at or before a position; `kSize_Invalid` when there is
    /// none.
    uint32 FindPrev(const Text& wanted, uint32 position) const {
        return Call(FM_Text_FindPrev, this, wanted, position);
    }
    uint32 FindPrevIgnoringCase(const Text& wanted, uint32 position) const {
        return Call(FM_Text_FindPrevIgnoringCase, this, wanted, position);
    }

    /// Change the letters in place, in spite of the `const`.
    void Uppercase() const { Call(FM_Text_Uppercase, this); }
    void Lowercase() const { Call(FM_Text_Lowercase, this); }

    /// Gets the style of the character at a position; after the end, the default style.
    void GetStyle(CharacterStyle& style, uint32 position) const {
        Call(FM_Text_GetStyle, this, style, position);
    }
    /// Gets the style of characters without one of their own.
    void GetDefaultStyle(CharacterStyle& style) const { Call(FM_Text_GetDefaultStyle, this, style); }
    /// Sets the attributes that are enabled in a style for a range; others stay.
    void SetStyle(const CharacterStyle& style, uint32 position = 0, uint32 size = kSize_End) {
        Call(FM_Text_SetStyle, this, style, position, size);
    }
    /// Removes the attributes of a style from the characters that have them with the same value.
    void RemoveStyle(const CharacterStyle& style) { Call(FM_Text_RemoveStyle, this, style); }
    /// Removes all styles.
    void ResetAllStyleBuffers() { Call(FM_Text_ResetAllStyleBuffers, this); }

    /// Comparisons are by UTF-16 units.
    bool operator==(const Text& other) const { return Call(FM_Text_operatorEQ, this, other); }
    bool operator!=(const Text& other) const { return Call(FM_Text_operatorNE, this, other); }
    bool operator<(const Text& other) const { return Call(FM_Text_operatorLT, this, other); }
    bool operator<=(const Text& other) const { return Call(FM_Text_operatorLE, this, other); }
    bool operator>(const Text& other) const { return Call(FM_Text_operatorGT, this, other); }
    bool operator>=(const Text& other) const { return Call(FM_Text_operatorGE, this, other); }
};

/// Owns a text, empty at first.
template <class Base>
class TextHolder : public Base {
  public:
    TextHolder() : Base(Call(FM_Text_Constructor1)) {}
};
FMX_HOLDERS(Text)

} // namespace fmx
