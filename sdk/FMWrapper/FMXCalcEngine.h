/// Calculations: their arguments, and the environment in which they are evaluated.
#pragma once

#include "FMXData.h"

namespace fmx {

extern "C" {
/// A function of a plug-in: gets its number, the environment and the arguments, and sets the result.
typedef errcode (*ExtPluginType)(short functionId, const ExprEnv& env, const DataVect& arguments,
                                 Data& result);
}

} // namespace fmx

extern "C" {

FMX_API fmx::DataVect* FM_DataVect_Constructor1(fmx::_fmxcpt&) noexcept;
FMX_API void FM_DataVect_Delete(void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::uint32 FM_DataVect_Size(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_DataVect_Clear(void* self, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_DataVect_IsEmpty(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_DataVect_PushBack(void* self, const fmx::Data& value, fmx::_fmxcpt&) noexcept;
FMX_API fmx::Data* FM_DataVect_PopBack(void* self, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::Data& FM_DataVect_At(const void* self, fmx::uint32 index, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::Text& FM_DataVect_AtAsText(const void* self, fmx::uint32 index, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::FixPt& FM_DataVect_AtAsNumber(const void* self, fmx::uint32 index, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::DateTime& FM_DataVect_AtAsDate(const void* self, fmx::uint32 index,
                                                  fmx::_fmxcpt&) noexcept;
FMX_API const fmx::DateTime& FM_DataVect_AtAsTime(const void* self, fmx::uint32 index,
                                                  fmx::_fmxcpt&) noexcept;
FMX_API const fmx::DateTime& FM_DataVect_AtAsTimeStamp(const void* self, fmx::uint32 index,
                                                       fmx::_fmxcpt&) noexcept;
FMX_API bool FM_DataVect_AtAsBoolean(const void* self, fmx::uint32 index, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::BinaryData& FM_DataVect_AtAsBinaryData(const void* self, fmx::uint32 index,
                                                          fmx::_fmxcpt&) noexcept;

FMX_API fmx::ExprEnv* FM_ExprEnv_Constructor1(fmx::_fmxcpt&) noexcept;
FMX_API void FM_ExprEnv_Delete(void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_ExprEnv_Evaluate(const void* self, const fmx::Text& expression, fmx::Data& result,
                                         fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_ExprEnv_RegisterExternalFunction(const fmx::QuadChar& pluginId, short functionId,
                                                         const fmx::Text& name, const fmx::Text& prototype,
                                                         short minArgs, short maxArgs, fmx::uint32 flags,
                                                         fmx::ExtPluginType function, fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_ExprEnv_UnRegisterExternalFunction(const fmx::QuadChar& pluginId, short functionId,
                                                           fmx::_fmxcpt&) noexcept;

} // extern "C"

namespace fmx {

/// The arguments of a call. An index that is not below the size is a failure of the host (`std::exception`).
class DataVect {
  public:
    FMX_OPAQUE_CLASS(DataVect)
    DataVect& operator=(const DataVect&) = delete;

    uint32 Size() const { return Call(FM_DataVect_Size, this); }
    void Clear() { Call(FM_DataVect_Clear, this); }
    bool IsEmpty() const { return Call(FM_DataVect_IsEmpty, this); }
    /// Adds a copy at the end.
    void PushBack(const Data& value) { Call(FM_DataVect_PushBack, this, value); }
    /// Takes the last value out; the caller owns it. Null when there is none.
    Data* PopBack() { return Call(FM_DataVect_PopBack, this); }

    const Data& At(uint32 index) const { return Call(FM_DataVect_At, this, index); }
    const Text& AtAsText(uint32 index) const { return Call(FM_DataVect_AtAsText, this, index); }
    const FixPt& AtAsNumber(uint32 index) const { return Call(FM_DataVect_AtAsNumber, this, index); }
    const DateTime& AtAsDate(uint32 index) const { return Call(FM_DataVect_AtAsDate, this, index); }
    const DateTime& AtAsTime(uint32 index) const { return Call(FM_DataVect_AtAsTime, this, index); }
    const DateTime& AtAsTimeStamp(uint32 index) const { return Call(FM_DataVect_AtAsTimeStamp, this, index); }
    bool AtAsBoolean(uint32 index) const { return Call(FM_DataVect_AtAsBoolean, this, index); }
    const BinaryData& AtAsBinaryData(uint32 index) const {
        return Call(FM_DataVect_AtAsBinaryData, this, index);
    }
};

/// Owns a vector of arguments, empty at first.
class DataVectAutoPtr : public std::unique_ptr<DataVect> {
  public:
    DataVectAutoPtr() { reset(Call(FM_DataVect_Constructor1)); }
};

/// The environment of a calculation.
class ExprEnv {
  public:
    FMX_OPAQUE_CLASS(ExprEnv)
    ExprEnv& operator=(const ExprEnv&) = delete;

    /// Where a registered function is offered and may run (`flags`).
    enum : uint32 { kMayEvaluateOnServer = 0x0001, kDisplayInAllDialogs = 0xFF00 };

    /// Evaluates a calculation; non-zero when it has an error.
    errcode Evaluate(const Text& expression, Data& result) const {
        return Call(FM_ExprEnv_Evaluate, this, expression, result);
    }

    /// Offers a function to calculations; a negative `maxArgs` sets no upper limit.
    static errcode RegisterExternalFunction(const QuadChar& pluginId, short functionId, const Text& name,
                                            const Text& prototype, short minArgs, short maxArgs, uint32 flags,
                                            ExtPluginType function) {
        return Call(FM_ExprEnv_RegisterExternalFunction, pluginId, functionId, name, prototype, minArgs,
                    maxArgs, flags, function);
    }
    static errcode UnRegisterExternalFunction(const QuadChar& pluginId, short functionId) {
        return Call(FM_ExprEnv_UnRegisterExternalFunction, pluginId, functionId);
    }
};

/// Owns an environment.
class ExprEnvAutoPtr : public std::unique_ptr<ExprEnv> {
  public:
    ExprEnvAutoPtr() { reset(Call(FM_ExprEnv_Constructor1)); }
};

} // namespace fmx
