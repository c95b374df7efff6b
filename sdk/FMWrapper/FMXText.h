/// Text of the host, in UTF-16, and the locale by which text is read and compared.
///
/// Positions and sizes count UTF-16 units; a range that reaches past the end of a text ends with the text.
#pragma once

#include "FMXTypes.h"

#include <memory>

extern "C" {

FMX_API fmx::Locale* FM_Locale_Constructor1(fmx::int32 type, fmx::_fmxcpt&) noexcept;
FMX_API fmx::Locale* FM_Locale_Constructor2(const fmx::Locale& other, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Locale_Delete(void* self, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::Locale& FM_Locale_operatorAS(void* self, const fmx::Locale& other, fmx::_fmxcpt&) noexcept;

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
FMX_API void FM_Text_Uppercase(void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Text_Lowercase(void* self, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_Text_operatorEQ(const void* self, const fmx::Text& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_Text_operatorNE(const void* self, const fmx::Text& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_Text_operatorLT(const void* self, const fmx::Text& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_Text_operatorLE(const void* self, const fmx::Text& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_Text_operatorGT(const void* self, const fmx::Text& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_Text_operatorGE(const void* self, const fmx::Text& other, fmx::_fmxcpt&) noexcept;

} // extern "C"

namespace fmx {

/// The rules of a language for reading and comparing text.
class Locale {
  public:
    FMX_OPAQUE_CLASS(Locale)

    /// The kinds of locale; the languages follow from 16 on.
    enum Type { kType_None = 0, kType_System = 1, kType_RawUnicode = 2, kType_StandardUnicode = 3 };

    const Locale& operator=(const Locale& other) { return Call(FM_Locale_operatorAS, this, other); }
};

/// Owns a locale.
class LocaleAutoPtr : public std::unique_ptr<Locale> {
  public:
    explicit LocaleAutoPtr(int32 type) { reset(Call(FM_Locale_Constructor1, type)); }
    explicit LocaleAutoPtr(const Locale& other) { reset(Call(FM_Locale_Constructor2, other)); }
};

/// A text.
class Text {
  public:
    FMX_OPAQUE_CLASS(Text)
    Text& operator=(const Text&) = delete;

    /// Up to the end of the text, and the position that a search answers when it finds nothing.
    static constexpr uint32 kSize_End = 0xFFFFFFFF;
    static constexpr uint32 kSize_Invalid = 0xFFFFFFFF;

    /// How bytes stand for characters.
    enum Encoding { kEncoding_Native = 0, kEncoding_UTF8 = 1 };

    /// The length in UTF-16 units.
    uint32 GetSize() const { return Call(FM_Text_GetSize, this); }

    /// Replaces the text; without a length, the source ends at its first zero.
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

    /// Copies a range as bytes, as many whole characters as fit, and ends them with a zero byte.
    void GetBytes(char* buffer, uint32 bufferBytes, uint32 position = 0, uint32 size = kSize_End,
                  int32 encoding = kEncoding_Native) const {
        Call(FM_Text_GetBytes, this, buffer, bufferBytes, position, size, encoding);
    }
    /// Copies a range as UTF-16, with nothing after it.
    void GetUnicode(uint16* buffer, uint32 position, uint32 size) const {
        Call(FM_Text_GetUnicode, this, buffer, position, size);
    }

    /// Replaces the text by a range of another.
    void SetText(const Text& other, uint32 position = 0, uint32 size = kSize_End) {
        Call(FM_Text_SetText, this, other, position, size);
    }
    /// Adds a range of another text at the end.
    void AppendText(const Text& other, uint32 position = 0, uint32 size = kSize_End) {
        Call(FM_Text_AppendText, this, other, position, size);
    }
    /// Inserts another text before a position, or at the end.
    void InsertText(const Text& other, uint32 position) { Call(FM_Text_InsertText, this, other, position); }
    void DeleteText(uint32 position, uint32 size = kSize_End) {
        Call(FM_Text_DeleteText, this, position, size);
    }

    /// Where the wanted text next starts at or after a position; `kSize_Invalid` when nowhere.
    uint32 Find(const Text& wanted, uint32 position) const {
        return Call(FM_Text_Find, this, wanted, position);
    }
    uint32 FindIgnoringCase(const Text& wanted, uint32 position) const {
        return Call(FM_Text_FindIgnoringCase, this, wanted, position);
    }
    /// Where the wanted text last starts at or before a position; `kSize_Invalid` when nowhere.
    uint32 FindPrev(const Text& wanted, uint32 position) const {
        return Call(FM_Text_FindPrev, this, wanted, position);
    }
    uint32 FindPrevIgnoringCase(const Text& wanted, uint32 position) const {
        return Call(FM_Text_FindPrevIgnoringCase, this, wanted, position);
    }

    void Uppercase() { Call(FM_Text_Uppercase, this); }
    void Lowercase() { Call(FM_Text_Lowercase, this); }

    /// Comparisons go by the UTF-16 units alone.
    bool operator==(const Text& other) const { return Call(FM_Text_operatorEQ, this, other); }
    bool operator!=(const Text& other) const { return Call(FM_Text_operatorNE, this, other); }
    bool operator<(const Text& other) const { return Call(FM_Text_operatorLT, this, other); }
    bool operator<=(const Text& other) const { return Call(FM_Text_operatorLE, this, other); }
    bool operator>(const Text& other) const { return Call(FM_Text_operatorGT, this, other); }
    bool operator>=(const Text& other) const { return Call(FM_Text_operatorGE, this, other); }
};

/// Owns a text, empty at first.
class TextAutoPtr : public std::unique_ptr<Text> {
  public:
    TextAutoPtr() { reset(Call(FM_Text_Constructor1)); }
};

} // namespace fmx
