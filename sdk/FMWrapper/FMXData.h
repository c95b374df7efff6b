#pragma once

/// Values of calculations in the host. A value has a type, and can be read as any other.

#include "FMXClient.h"
#include "FMXTextStyle.h"

FMX_BEGIN_CALLS

FMX_API fmx::Data* FM_Data_Constructor1(fmx::_fmxcpt&) noexcept;
FMX_API void FM_Data_Delete(void* self, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_Data_IsEmpty(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_Data_IsValid(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_Data_IsFindRequest(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Data_Clear(void* self, fmx::int32 type, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::Text& FM_Data_GetAsText(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::FixPt& FM_Data_GetAsNumber(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::DateTime& FM_Data_GetAsDate(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::DateTime& FM_Data_GetAsTime(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::DateTime& FM_Data_GetAsTimeStamp(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_Data_GetAsBoolean(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::BinaryData& FM_Data_GetBinaryData(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::Locale& FM_Data_GetLocale(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::int32 FM_Data_GetNativeType(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Data_ConvertData(void* self, fmx::int32 type, fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_Data_SetAsText(void* self, const fmx::Text& value, const fmx::Locale& locale,
                                       fmx::int32 type, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Data_SetAsNumber(void* self, const fmx::FixPt& value, fmx::int32 type,
                                 fmx::_fmxcpt&) noexcept;
FMX_API void FM_Data_SetAsDate(void* self, const fmx::DateTime& value, fmx::int32 type,
                               fmx::_fmxcpt&) noexcept;
FMX_API void FM_Data_SetAsTime(void* self, const fmx::DateTime& value, fmx::int32 type,
                               fmx::_fmxcpt&) noexcept;
FMX_API void FM_Data_SetAsTimeStamp(void* self, const fmx::DateTime& value, fmx::int32 type,
                                    fmx::_fmxcpt&) noexcept;
FMX_API void FM_Data_SetDateTime(void* self, const fmx::DateTime& value, fmx::int32 dateTimeType,
                                 fmx::int32 nativeType, fmx::_fmxcpt&) noexcept;
FMX_API void FM_Data_SetBinaryData(void* self, const fmx::BinaryData& value, bool forceBinaryNativeType,
                                   fmx::_fmxcpt&) noexcept;
FMX_API fmx::FontID FM_Data_GetFontID(void* self, const fmx::Text& name, fmx::FontScript script,
                                      const fmx::ExprEnv& env, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_Data_GetFontInfo(const void* self, fmx::FontID font, fmx::Text& name, fmx::FontScript& script,
                                 const fmx::ExprEnv& env, fmx::_fmxcpt&) noexcept;
FMX_API fmx::FontID FM_Data_GetPostscriptFontID(const void* self, const fmx::Text& name,
                                                const fmx::ExprEnv& env, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_Data_GetPostscriptFontInfo(const void* self, fmx::FontID font, fmx::Text& name,
                                           const fmx::ExprEnv& env, fmx::_fmxcpt&) noexcept;

FMX_END_CALLS

namespace fmx {

/// A value. The result of a getter belongs to the value, and is valid until the value is set again or
/// deleted.
///
/// Setters take the native type that the value then has: a number that is set with the type text becomes its
/// text.
class Data {
  public:
    FMX_OPAQUE_CLASS(Data)
    Data& operator=(const Data&) = delete;

    /// The native types.
    enum DTNativeType {
        kDTInvalid = 0,
        kDTText = 1,
        kDTNumber = 2,
        kDTDate = 3,
        kDTTime = 4,
        kDTTimeStamp = 5,
        kDTBinary = 6,
        kDTBoolean = 7
    };

    bool IsEmpty() const { return Call(FM_Data_IsEmpty, this); }
    /// False for a value that could not be read as its type.
    bool IsValid() const { return Call(FM_Data_IsValid, this); }
    bool IsFindRequest() const { return Call(FM_Data_IsFindRequest, this); }
    /// Makes the value empty, of the given type.
    void Clear(int32 type = kDTInvalid) { Call(FM_Data_Clear, this, type); }

    const Text& GetAsText() const { return Call(FM_Data_GetAsText, this); }
    const FixPt& GetAsNumber() const { return Call(FM_Data_GetAsNumber, this); }
    const DateTime& GetAsDate() const { return Call(FM_Data_GetAsDate, this); }
    const DateTime& GetAsTime() const { return Call(FM_Data_GetAsTime, this); }
    const DateTime& GetAsTimeStamp() const { return Call(FM_Data_GetAsTimeStamp, this); }
    bool GetAsBoolean() const { return Call(FM_Data_GetAsBoolean, this); }
    const BinaryData& GetBinaryData() const { return Call(FM_Data_GetBinaryData, this); }
    const Locale& GetLocale() const { return Call(FM_Data_GetLocale, this); }
    int32 GetNativeType() const { return Call(FM_Data_GetNativeType, this); }

    /// Converts the value to another type; it becomes invalid when it cannot be read so.
    void ConvertData(int32 type) { Call(FM_Data_ConvertData, this, type); }

    errcode SetAsText(const Text& value, const Locale& locale, int32 type = kDTText) {
        return Call(FM_Data_SetAsText, this, value, locale, type);
    }
    void SetAsNumber(const FixPt& value, int32 type = kDTNumber) {
        Call(FM_Data_SetAsNumber, this, value, type);
    }
    void SetAsDate(const DateTime& value, int32 type = kDTDate) {
        Call(FM_Data_SetAsDate, this, value, type);
    }
    void SetAsTime(const DateTime& value, int32 type = kDTTime) {
        Call(FM_Data_SetAsTime, this, value, type);
    }
    void SetAsTimeStamp(const DateTime& value, int32 type = kDTTimeStamp) {
        Call(FM_Data_SetAsTimeStamp, this, value, type);
    }
    /// The first type says which part of the date-time is used: date, time or time stamp.
    void SetDateTime(const DateTime& value, int32 dateTimeType, int32 nativeType) {
        Call(FM_Data_SetDateTime, this, value, dateTimeType, nativeType);
    }
    /// Unless the native type is forced, a container that has only file names becomes their text.
    void SetBinaryData(const BinaryData& value, bool forceBinaryNativeType = true) {
        Call(FM_Data_SetBinaryData, this, value, forceBinaryNativeType);
    }

    /// Return the number of a font by its name and script, or by its PostScript name;
    /// `CharacterStyle::kInvalidFont` for an empty name. A new name gets a new number.
    FontID GetFontID(const Text& name, FontScript script, const ExprEnv& env) {
        return Call(FM_Data_GetFontID, this, name, script, env);
    }
    FontID GetPostscriptFontID(const Text& name, const ExprEnv& env) const {
        return Call(FM_Data_GetPostscriptFontID, this, name, env);
    }
    /// Get the name (and script) of a font. Return false, and leave both unchanged, for a number that no font
    /// has.
    bool GetFontInfo(FontID font, Text& name, FontScript& script, const ExprEnv& env) const {
        return Call(FM_Data_GetFontInfo, this, font, name, script, env);
    }
    bool GetPostscriptFontInfo(FontID font, Text& name, const ExprEnv& env) const {
        return Call(FM_Data_GetPostscriptFontInfo, this, font, name, env);
    }
};

/// Owns a value, an empty text at first.
template <class Base>
class DataHolder : public Base {
  public:
    DataHolder() : Base(Call(FM_Data_Constructor1)) {}
};
FMX_HOLDERS(Data)

} // namespace fmx
