#pragma once

/// Codes of four characters, and the locale by which texts are read and compared.

#include "FMXClient.h"

FMX_BEGIN_CALLS

FMX_API fmx::QuadChar* FM_QuadChar_Constructor1(fmx::_fmxcpt&) noexcept;
FMX_API fmx::QuadChar* FM_QuadChar_Constructor2(char c0, char c1, char c2, char c3, fmx::_fmxcpt&) noexcept;
FMX_API fmx::QuadChar* FM_QuadChar_Constructor3(const fmx::QuadChar& other, fmx::_fmxcpt&) noexcept;
FMX_API void FM_QuadChar_Delete(void* self, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::QuadChar& FM_QuadChar_operatorAS(void* self, const fmx::QuadChar& other,
                                                    fmx::_fmxcpt&) noexcept;
FMX_API fmx::uchar FM_QuadChar_operatorAR(void* self, fmx::int32 index, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::uchar FM_QuadChar_operatorCAR(const void* self, fmx::int32 index, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_QuadChar_operatorEQ(const void* self, const fmx::QuadChar& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_QuadChar_operatorNE(const void* self, const fmx::QuadChar& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_QuadChar_operatorLT(const void* self, const fmx::QuadChar& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_QuadChar_operatorLE(const void* self, const fmx::QuadChar& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_QuadChar_operatorGT(const void* self, const fmx::QuadChar& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_QuadChar_operatorGE(const void* self, const fmx::QuadChar& other, fmx::_fmxcpt&) noexcept;
FMX_API fmx::uint32 FM_QuadChar_GetMacType(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_QuadChar_SetMacType(void* self, fmx::uint32 type, fmx::_fmxcpt&) noexcept;

FMX_API fmx::Locale* FM_Locale_Constructor1(fmx::int32 type, fmx::_fmxcpt&) noexcept;
FMX_API fmx::Locale* FM_Locale_Constructor2(const fmx::Locale& other, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Locale_Delete(void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::Locale& FM_Locale_operatorAS(void* self, const fmx::Locale& other, fmx::_fmxcpt&) noexcept;

FMX_END_CALLS

namespace fmx {

/// A code of four characters: the type of a stream, the identifier of a plug-in.
class QuadChar {
  public:
    FMX_OPAQUE_CLASS(QuadChar)

    const QuadChar& operator=(const QuadChar& other) { return Call(FM_QuadChar_operatorAS, this, other); }
    /// One of the four characters; the index is 0 to 3.
    uchar operator[](int32 index) { return Call(FM_QuadChar_operatorAR, this, index); }
    uchar operator[](int32 index) const { return Call(FM_QuadChar_operatorCAR, this, index); }

    bool operator==(const QuadChar& other) const { return Call(FM_QuadChar_operatorEQ, this, other); }
    bool operator!=(const QuadChar& other) const { return Call(FM_QuadChar_operatorNE, this, other); }
    bool operator<(const QuadChar& other) const { return Call(FM_QuadChar_operatorLT, this, other); }
    bool operator<=(const QuadChar& other) const { return Call(FM_QuadChar_operatorLE, this, other); }
    bool operator>(const QuadChar& other) const { return Call(FM_QuadChar_operatorGT, this, other); }
    bool operator>=(const QuadChar& other) const { return Call(FM_QuadChar_operatorGE, this, other); }

    /// The code as one number, the first character in its highest byte.
    uint32 GetMacType() const { return Call(FM_QuadChar_GetMacType, this); }
    void SetMacType(uint32 type) { Call(FM_QuadChar_SetMacType, this, type); }
};

/// Owns a code: four zeros, four characters, or a copy.
template <class Base>
class QuadCharHolder : public Base {
  public:
    QuadCharHolder() : Base(Call(FM_QuadChar_Constructor1)) {}
    QuadCharHolder(char c0, char c1, char c2, char c3)
        : Base(Call(FM_QuadChar_Constructor2, c0, c1, c2, c3)) {}
    explicit QuadCharHolder(const QuadChar& other) : Base(Call(FM_QuadChar_Constructor3, other)) {}
};
FMX_HOLDERS(QuadChar)

/// The rules of a language for reading and comparing text.
class Locale {
  public:
    FMX_OPAQUE_CLASS(Locale)

    /// The kinds of locale; the languages follow from 16 on.
    enum Type {
        kType_None = 0,
        /// What the system's user has chosen.
        kType_System = 1,
        /// The units of UTF-16 alone.
        kType_UnicodeRaw = 2,
        /// Unicode's own order, of no language.
        kType_UnicodeStandard = 3,
        kType_Catalog = 4,

        kType_CAT = 16,
        kType_HRV = 17,
        kType_CES = 18,
        kType_DAN = 19,
        kType_NLD = 20,
        kType_ENG = 21,
        kType_FIN = 22,
        kType_FIN_fmi = 23,
        kType_FRA = 24,
        kType_DEU = 25,
        kType_DEU_dictionary = 26,
        kType_ELL = 27,
        kType_HUN = 28,
        kType_ISL = 29,
        kType_ITA = 30,
        kType_JPN = 31,
        kType_NOR = 32,
        kType_POL = 33,
        kType_POR = 34,
        kType_RON = 35,
        kType_RUS = 36,
        kType_SLK = 37,
        kType_SLV = 38,
        kType_SPA = 39,
        kType_SPA_traditional = 40,
        kType_SWE = 41,
        kType_SWE_fmi = 42,
        kType_TUR = 43,
        kType_UKR = 44,
        kType_CHI = 45,
        kType_CHI_stroke = 46,
        kType_HE = 47,
        kType_HI = 48,
        kType_AR = 49,
        kType_ET = 50,
        kType_LT = 51,
        kType_LV = 52,
        kType_SR = 53,
        kType_FA = 54,
        kType_BG = 55,
        kType_VI = 56,
        kType_TH = 57,
        kType_ELL_Mixed = 58,
        kType_BEN = 59,
        kType_TEL = 60,
        kType_MAR = 61,
        kType_TAM = 62,
        kType_GUJ = 63,
        kType_KAN = 64,
        kType_MAL = 65,
        kType_ORI = 66,
        kType_PAN = 67,
        kType_SIN = 68,
        kType_URD = 69,
        kType_DIV = 70,
        kType_BUR = 71,
        kType_SAN = 72,
        kType_LAO = 73,
        kType_KHM = 74,
        kType_BOD = 75,
        kType_KOR = 76,

        kType_Invalid = 0xFFFF
    };

    Locale& operator=(const Locale& other) { return Call(FM_Locale_operatorAS, this, other); }
};

/// Owns a locale.
template <class Base>
class LocaleHolder : public Base {
  public:
    explicit LocaleHolder(int32 type = Locale::kType_System) : Base(Call(FM_Locale_Constructor1, type)) {}
    explicit LocaleHolder(const Locale& other) : Base(Call(FM_Locale_Constructor2, other)) {}
};
FMX_HOLDERS(Locale)

} // namespace fmx
