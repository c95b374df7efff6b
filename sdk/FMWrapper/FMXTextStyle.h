#pragma once

/// Styles of characters: font, faces, size and colour.

#include "FMXClient.h"

namespace fmx {

/// A font by its number, a set of faces, a size in points, and the kind of script that a font is for.
typedef uint16 FontID;
typedef uint16 Face;
typedef uint16 FontSize;
typedef uint16 FontScript;

/// A channel of a colour, in 8 bits and in 16.
typedef uchar ColorChannel;
typedef uint16 ColorChannel16;

} // namespace fmx

FMX_BEGIN_CALLS

FMX_API fmx::Color* FM_Color_Constructor1(fmx::_fmxcpt&) noexcept;
FMX_API fmx::Color* FM_Color_Constructor2(fmx::ColorChannel red, fmx::ColorChannel green,
                                          fmx::ColorChannel blue, fmx::ColorChannel alpha,
                                          fmx::_fmxcpt&) noexcept;
FMX_API fmx::Color* FM_Color_Constructor3(const fmx::Color& other, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Color_Delete(void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::Color& FM_Color_operatorAS(void* self, const fmx::Color& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_Color_operatorEQ(const void* self, const fmx::Color& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_Color_operatorNE(const void* self, const fmx::Color& other, fmx::_fmxcpt&) noexcept;
FMX_API fmx::ColorChannel FM_Color_GetRed(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::ColorChannel FM_Color_GetGreen(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::ColorChannel FM_Color_GetBlue(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::ColorChannel FM_Color_GetAlpha(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::ColorChannel16 FM_Color_GetRedUpsample(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::ColorChannel16 FM_Color_GetGreenUpsample(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::ColorChannel16 FM_Color_GetBlueUpsample(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::ColorChannel16 FM_Color_GetAlphaUpsample(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Color_SetRed(void* self, fmx::ColorChannel red, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Color_SetGreen(void* self, fmx::ColorChannel green, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Color_SetBlue(void* self, fmx::ColorChannel blue, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Color_SetAlpha(void* self, fmx::ColorChannel alpha, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::Color& FM_Color_Black() noexcept;
FMX_API const fmx::Color& FM_Color_White() noexcept;

FMX_API fmx::CharacterStyle* FM_CharacterStyle_Constructor1(fmx::_fmxcpt&) noexcept;
FMX_API fmx::CharacterStyle* FM_CharacterStyle_Constructor2(fmx::FontID font, fmx::Face face,
                                                            fmx::FontSize size, const fmx::Color& color,
                                                            fmx::_fmxcpt&) noexcept;
FMX_API fmx::CharacterStyle* FM_CharacterStyle_Constructor3(const fmx::CharacterStyle& other,
                                                            fmx::_fmxcpt&) noexcept;
FMX_API void FM_CharacterStyle_Delete(void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::CharacterStyle& FM_CharacterStyle_operatorAS(void* self, const fmx::CharacterStyle& other,
                                                          fmx::_fmxcpt&) noexcept;
FMX_API bool FM_CharacterStyle_operatorEQ(const void* self, const fmx::CharacterStyle& other,
                                          fmx::_fmxcpt&) noexcept;
FMX_API bool FM_CharacterStyle_operatorNE(const void* self, const fmx::CharacterStyle& other,
                                          fmx::_fmxcpt&) noexcept;
FMX_API fmx::FontID FM_CharacterStyle_GetFont(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_CharacterStyle_SetFont(void* self, fmx::FontID font, fmx::_fmxcpt&) noexcept;
FMX_API void FM_CharacterStyle_EnableFont(void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_CharacterStyle_DisableFont(void* self, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_CharacterStyle_IsFontEnabled(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::Face FM_CharacterStyle_GetFace(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_CharacterStyle_SetFace(void* self, fmx::Face face, fmx::_fmxcpt&) noexcept;
FMX_API void FM_CharacterStyle_EnableFace(void* self, fmx::Face face, fmx::_fmxcpt&) noexcept;
FMX_API void FM_CharacterStyle_DisableFace(void* self, fmx::Face face, fmx::_fmxcpt&) noexcept;
FMX_API void FM_CharacterStyle_DisableAllFaces(void* self, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_CharacterStyle_IsFaceEnabled(const void* self, fmx::Face face, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_CharacterStyle_IsAnyFaceEnabled(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::FontSize FM_CharacterStyle_GetSize(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_CharacterStyle_SetSize(void* self, fmx::FontSize size, fmx::_fmxcpt&) noexcept;
FMX_API void FM_CharacterStyle_EnableSize(void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_CharacterStyle_DisableSize(void* self, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_CharacterStyle_IsSizeEnabled(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::Color& FM_CharacterStyle_GetColor(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_CharacterStyle_SetColor(void* self, const fmx::Color& color, fmx::_fmxcpt&) noexcept;
FMX_API void FM_CharacterStyle_EnableColor(void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_CharacterStyle_DisableColor(void* self, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_CharacterStyle_IsColorEnabled(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_CharacterStyle_GetFontInformation(void* self, fmx::FontID& font, fmx::Face& face,
                                                  fmx::FontSize& size, fmx::_fmxcpt&) noexcept;
FMX_API void FM_CharacterStyle_SetFontInformation(void* self, fmx::FontID font, fmx::Face face,
                                                  fmx::FontSize size, fmx::_fmxcpt&) noexcept;
FMX_API void FM_CharacterStyle_DisableAll(void* self, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_CharacterStyle_IsAllDisabled(const void* self, fmx::_fmxcpt&) noexcept;

FMX_END_CALLS

namespace fmx {

/// A colour: red, green, blue and opacity, 0 to 255 each.
class Color {
  public:
    FMX_OPAQUE_CLASS(Color)

    typedef fmx::ColorChannel ColorChannel;
    typedef fmx::ColorChannel16 ColorChannel16;

    static const Color& Black() { return FM_Color_Black(); }
    static const Color& White() { return FM_Color_White(); }

    Color& operator=(const Color& other) { return Call(FM_Color_operatorAS, this, other); }
    bool operator==(const Color& other) const { return Call(FM_Color_operatorEQ, this, other); }
    bool operator!=(const Color& other) const { return Call(FM_Color_operatorNE, this, other); }

    ColorChannel GetRed() const { return Call(FM_Color_GetRed, this); }
    ColorChannel GetGreen() const { return Call(FM_Color_GetGreen, this); }
    ColorChannel GetBlue() const { return Call(FM_Color_GetBlue, this); }
    ColorChannel GetAlpha() const { return Call(FM_Color_GetAlpha, this); }
    /// Return a channel, from 0 to 65535.
    ColorChannel16 GetRedUpsample() const { return Call(FM_Color_GetRedUpsample, this); }
    ColorChannel16 GetGreenUpsample() const { return Call(FM_Color_GetGreenUpsample, this); }
    ColorChannel16 GetBlueUpsample() const { return Call(FM_Color_GetBlueUpsample, this); }
    ColorChannel16 GetAlphaUpsample() const { return Call(FM_Color_GetAlphaUpsample, this); }

    void SetRed(ColorChannel red) { Call(FM_Color_SetRed, this, red); }
    void SetGreen(ColorChannel green) { Call(FM_Color_SetGreen, this, green); }
    void SetBlue(ColorChannel blue) { Call(FM_Color_SetBlue, this, blue); }
    void SetAlpha(ColorChannel alpha) { Call(FM_Color_SetAlpha, this, alpha); }
};

/// Owns a colour: opaque black, one of four channels, or a copy.
template <class Base>
class ColorHolder : public Base {
  public:
    ColorHolder() : Base(Call(FM_Color_Constructor1)) {}
    ColorHolder(ColorChannel red, ColorChannel green, ColorChannel blue, ColorChannel alpha = 255)
        : Base(Call(FM_Color_Constructor2, red, green, blue, alpha)) {}
    explicit ColorHolder(const Color& other) : Base(Call(FM_Color_Constructor3, other)) {}
};
FMX_HOLDERS(Color)

/// A style of characters. Font, each face, size and colour can be disabled, and are then not part of the
/// style. Setting one enables it.
class CharacterStyle {
  public:
    FMX_OPAQUE_CLASS(CharacterStyle)

    typedef fmx::FontID FontID;
    typedef fmx::Face Face;
    typedef fmx::FontSize FontSize;
    typedef fmx::FontScript FontScript;

    /// The faces. They can be combined, except for the letter cases, which share two bits.
    enum {
        kFace_Plain = 0,
        kFace_Strikethrough = 1,
        kFace_SmallCaps = 2,
        kFace_Superscript = 4,
        kFace_Subscript = 8,
        kFace_Uppercase = 16,
        kFace_Lowercase = 32,
        kFace_Titlecase = 48,
        kFace_WordUnderline = 64,
        kFace_DoubleUnderline = 128,
        kFace_Bold = 256,
        kFace_Italic = 512,
        kFace_Underline = 1024,
        kFace_Outline = 2048,
        kFace_Shadow = 4096,
        kFace_Condense = 8192,
        kFace_Extend = 16384,
        kFace_AllStyles = 32767
    };

    /// The number that no font has.
    enum { kInvalidFont = 65535 };

    /// The kinds of script that fonts are for.
    enum {
        kFontScript_Roman = 0,
        kFontScript_Greek = 1,
        kFontScript_Cyrillic = 2,
        kFontScript_CentralEurope = 3,
        kFontScript_ShiftJIS = 4,
        kFontScript_TraditionalChinese = 5,
        kFontScript_SimplifiedChinese = 6,
        kFontScript_OEM = 7,
        kFontScript_Symbol = 8,
        kFontScript_Native = 9,
        kFontScript_Other = 10,
        kFontScript_Korean = 11,
        kFontScript_Dingbats = 12,
        kFontScript_Turkish = 13
    };

    CharacterStyle& operator=(const CharacterStyle& other) {
        return Call(FM_CharacterStyle_operatorAS, this, other);
    }
    bool operator==(const CharacterStyle& other) const {
        return Call(FM_CharacterStyle_operatorEQ, this, other);
    }
    bool operator!=(const CharacterStyle& other) const {
        return Call(FM_CharacterStyle_operatorNE, this, other);
    }

    FontID GetFont() const { return Call(FM_CharacterStyle_GetFont, this); }
    void SetFont(FontID font) { Call(FM_CharacterStyle_SetFont, this, font); }
    void EnableFont() { Call(FM_CharacterStyle_EnableFont, this); }
    void DisableFont() { Call(FM_CharacterStyle_DisableFont, this); }
    bool IsFontEnabled() const { return Call(FM_CharacterStyle_IsFontEnabled, this); }

    /// Returns all faces that are set.
    Face GetFace() const { return Call(FM_CharacterStyle_GetFace, this); }
    /// Sets these faces and no others.
    void SetFace(Face face) { Call(FM_CharacterStyle_SetFace, this, face); }
    /// Add faces to those that are set, and remove them.
    void EnableFace(Face face) { Call(FM_CharacterStyle_EnableFace, this, face); }
    void DisableFace(Face face) { Call(FM_CharacterStyle_DisableFace, this, face); }
    /// Disables all faces.
    void DisableAllFaces() { Call(FM_CharacterStyle_DisableAllFaces, this); }
    bool IsFaceEnabled(Face face) const { return Call(FM_CharacterStyle_IsFaceEnabled, this, face); }
    bool IsAnyFaceEnabled() const { return Call(FM_CharacterStyle_IsAnyFaceEnabled, this); }

    FontSize GetSize() const { return Call(FM_CharacterStyle_GetSize, this); }
    void SetSize(FontSize size) { Call(FM_CharacterStyle_SetSize, this, size); }
    void EnableSize() { Call(FM_CharacterStyle_EnableSize, this); }
    void DisableSize() { Call(FM_CharacterStyle_DisableSize, this); }
    bool IsSizeEnabled() const { return Call(FM_CharacterStyle_IsSizeEnabled, this); }

    /// The colour belongs to the style.
    const Color& GetColor() const { return Call(FM_CharacterStyle_GetColor, this); }
    void SetColor(const Color& color) { Call(FM_CharacterStyle_SetColor, this, color); }
    void EnableColor() { Call(FM_CharacterStyle_EnableColor, this); }
    void DisableColor() { Call(FM_CharacterStyle_DisableColor, this); }
    bool IsColorEnabled() const { return Call(FM_CharacterStyle_IsColorEnabled, this); }

    void GetFontInformation(FontID& font, Face& face, FontSize& size) {
        Call(FM_CharacterStyle_GetFontInformation, this, font, face, size);
    }
    void SetFontInformation(FontID font, Face face, FontSize size) {
        Call(FM_CharacterStyle_SetFontInformation, this, font, face, size);
    }
    void DisableAll() { Call(FM_CharacterStyle_DisableAll, this); }
    bool IsAllDisabled() const { return Call(FM_CharacterStyle_IsAllDisabled, this); }
};

/// Owns a style: with everything disabled, with everything enabled, or a copy.
template <class Base>
class CharacterStyleHolder : public Base {
  public:
    CharacterStyleHolder() : Base(Call(FM_CharacterStyle_Constructor1)) {}
    CharacterStyleHolder(FontID font, Face face, FontSize size, const Color& color)
        : Base(Call(FM_CharacterStyle_Constructor2, font, face, size, color)) {}
    explicit CharacterStyleHolder(const CharacterStyle& other)
        : Base(Call(FM_CharacterStyle_Constructor3, other)) {}
};
FMX_HOLDERS(CharacterStyle)

} // namespace fmx
