// FM_Color_* and FM_CharacterStyle_*.
#include "host/wrapper/guard.h"
#include "host/wrapper/objects.h"

using fmx::_fmxcpt;
using fmx::CharacterStyle;
using fmx::Color;
using fmx::ColorChannel;
using fmx::ColorChannel16;
using fmx::Face;
using fmx::FontID;
using fmx::FontSize;
using host::CharacterStyleObject;
using host::ColorObject;
using host::guarded;
using host::inside;
using host::outside;
using host::self;

namespace {

// Returns a colour channel in 16 bits: 0xFF becomes 0xFFFF.
ColorChannel16 upsampled(ColorChannel channel) {
    return static_cast<ColorChannel16>(channel * 0x101);
}

} // namespace

const Color& FM_Color_Black() noexcept {
    static constexpr ColorObject kBlack{};
    return outside<Color>(kBlack);
}
const Color& FM_Color_White() noexcept {
    static constexpr ColorObject kWhite{255, 255, 255, 255};
    return outside<Color>(kWhite);
}
Color* FM_Color_Constructor1(_fmxcpt& block) noexcept {
    return guarded(block, [] { return host::made<Color>(); });
}
Color* FM_Color_Constructor2(ColorChannel red, ColorChannel green, ColorChannel blue, ColorChannel alpha,
                             _fmxcpt& block) noexcept {
    return guarded(block, [&] { return host::made<Color>(red, green, blue, alpha); });
}
Color* FM_Color_Constructor3(const Color& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return host::made<Color>(inside(other)); });
}
void FM_Color_Delete(void* object, _fmxcpt&) noexcept {
    host::destroy<Color>(object);
}
Color& FM_Color_operatorAS(void* object, const Color& other, _fmxcpt& block) noexcept {
    return outside<Color>(
        guarded(block, [&]() -> ColorObject& { return self<Color>(object) = inside(other); }));
}
bool FM_Color_operatorEQ(const void* object, const Color& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<Color>(object) == inside(other); });
}
bool FM_Color_operatorNE(const void* object, const Color& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<Color>(object) != inside(other); });
}
ColorChannel FM_Color_GetRed(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<Color>(object).red; });
}
ColorChannel FM_Color_GetGreen(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<Color>(object).green; });
}
ColorChannel FM_Color_GetBlue(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<Color>(object).blue; });
}
ColorChannel FM_Color_GetAlpha(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<Color>(object).alpha; });
}
ColorChannel16 FM_Color_GetRedUpsample(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return upsampled(self<Color>(object).red); });
}
ColorChannel16 FM_Color_GetGreenUpsample(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return upsampled(self<Color>(object).green); });
}
ColorChannel16 FM_Color_GetBlueUpsample(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return upsampled(self<Color>(object).blue); });
}
ColorChannel16 FM_Color_GetAlphaUpsample(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return upsampled(self<Color>(object).alpha); });
}
void FM_Color_SetRed(void* object, ColorChannel red, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<Color>(object).red = red; });
}
void FM_Color_SetGreen(void* object, ColorChannel green, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<Color>(object).green = green; });
}
void FM_Color_SetBlue(void* object, ColorChannel blue, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<Color>(object).blue = blue; });
}
void FM_Color_SetAlpha(void* object, ColorChannel alpha, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<Color>(object).alpha = alpha; });
}

CharacterStyle* FM_CharacterStyle_Constructor1(_fmxcpt& block) noexcept {
    return guarded(block, [] { return host::made<CharacterStyle>(); });
}
CharacterStyle* FM_CharacterStyle_Constructor2(FontID font, Face face, FontSize size, const Color& color,
                                               _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        CharacterStyleObject style = CharacterStyleObject::standard();
        style.font = font;
        style.setFaces(face);
        style.size = size;
        style.color = inside(color);
        return host::made<CharacterStyle>(style);
    });
}
CharacterStyle* FM_CharacterStyle_Constructor3(const CharacterStyle& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return host::made<CharacterStyle>(inside(other)); });
}
void FM_CharacterStyle_Delete(void* object, _fmxcpt&) noexcept {
    host::destroy<CharacterStyle>(object);
}
CharacterStyle& FM_CharacterStyle_operatorAS(void* object, const CharacterStyle& other,
                                             _fmxcpt& block) noexcept {
    return outside<CharacterStyle>(guarded(
        block, [&]() -> CharacterStyleObject& { return self<CharacterStyle>(object) = inside(other); }));
}
bool FM_CharacterStyle_operatorEQ(const void* object, const CharacterStyle& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<CharacterStyle>(object) == inside(other); });
}
bool FM_CharacterStyle_operatorNE(const void* object, const CharacterStyle& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<CharacterStyle>(object) != inside(other); });
}

FontID FM_CharacterStyle_GetFont(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<CharacterStyle>(object).font; });
}
void FM_CharacterStyle_SetFont(void* object, FontID font, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        self<CharacterStyle>(object).font = font;
        self<CharacterStyle>(object).hasFont = true;
    });
}
void FM_CharacterStyle_EnableFont(void* object, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<CharacterStyle>(object).hasFont = true; });
}
void FM_CharacterStyle_DisableFont(void* object, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<CharacterStyle>(object).hasFont = false; });
}
bool FM_CharacterStyle_IsFontEnabled(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<CharacterStyle>(object).hasFont; });
}

Face FM_CharacterStyle_GetFace(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<CharacterStyle>(object).faces; });
}
void FM_CharacterStyle_SetFace(void* object, Face face, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<CharacterStyle>(object).setFaces(face); });
}
void FM_CharacterStyle_EnableFace(void* object, Face face, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<CharacterStyle>(object).addFaces(face); });
}
void FM_CharacterStyle_DisableFace(void* object, Face face, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<CharacterStyle>(object).dropFaces(face); });
}
void FM_CharacterStyle_DisableAllFaces(void* object, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<CharacterStyle>(object).dropFaces(CharacterStyle::kFace_AllStyles); });
}
bool FM_CharacterStyle_IsFaceEnabled(const void* object, Face face, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<CharacterStyle>(object).hasFaces(face); });
}
bool FM_CharacterStyle_IsAnyFaceEnabled(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<CharacterStyle>(object).faces != 0; });
}

FontSize FM_CharacterStyle_GetSize(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<CharacterStyle>(object).size; });
}
void FM_CharacterStyle_SetSize(void* object, FontSize size, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        self<CharacterStyle>(object).size = size;
        self<CharacterStyle>(object).hasSize = true;
    });
}
void FM_CharacterStyle_EnableSize(void* object, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<CharacterStyle>(object).hasSize = true; });
}
void FM_CharacterStyle_DisableSize(void* object, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<CharacterStyle>(object).hasSize = false; });
}
bool FM_CharacterStyle_IsSizeEnabled(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<CharacterStyle>(object).hasSize; });
}

const Color& FM_CharacterStyle_GetColor(const void* object, _fmxcpt& block) noexcept {
    return outside<Color>(
        guarded(block, [&]() -> const ColorObject& { return self<CharacterStyle>(object).color; }));
}
void FM_CharacterStyle_SetColor(void* object, const Color& color, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        self<CharacterStyle>(object).color = inside(color);
        self<CharacterStyle>(object).hasColor = true;
    });
}
void FM_CharacterStyle_EnableColor(void* object, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<CharacterStyle>(object).hasColor = true; });
}
void FM_CharacterStyle_DisableColor(void* object, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<CharacterStyle>(object).hasColor = false; });
}
bool FM_CharacterStyle_IsColorEnabled(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<CharacterStyle>(object).hasColor; });
}

void FM_CharacterStyle_GetFontInformation(void* object, FontID& font, Face& face, FontSize& size,
                                          _fmxcpt& block) noexcept {
    guarded(block, [&] {
        const CharacterStyleObject& style = self<CharacterStyle>(object);
        font = style.font;
        face = style.faces;
        size = style.size;
    });
}
void FM_CharacterStyle_SetFontInformation(void* object, FontID font, Face face, FontSize size,
                                          _fmxcpt& block) noexcept {
    guarded(block, [&] {
        CharacterStyleObject& style = self<CharacterStyle>(object);
        style.font = font;
        style.size = size;
        style.hasFont = style.hasSize = true;
        style.setFaces(face);
    });
}
void FM_CharacterStyle_DisableAll(void* object, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        CharacterStyleObject& style = self<CharacterStyle>(object);
        style.hasFont = style.hasSize = style.hasColor = false;
        style.dropFaces(CharacterStyle::kFace_AllStyles);
    });
}
bool FM_CharacterStyle_IsAllDisabled(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<CharacterStyle>(object).saysNothing(); });
}
