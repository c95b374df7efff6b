#pragma once

/// Calculations: their arguments, the environment in which they are evaluated, and what plug-ins add to them.

#include "FMXClient.h"

namespace fmx {

extern "C" {
/// A function or a script step of a plug-in: gets its id, the environment and the arguments, sets the result,
/// and returns an error code.
typedef errcode (*ExtPluginType)(short functionId, const ExprEnv& env, const DataVect& arguments,
                                 Data& result);
}

} // namespace fmx

FMX_BEGIN_CALLS

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

FMX_API fmx::RowVect* FM_RowVect_Constructor1(fmx::_fmxcpt&) noexcept;
FMX_API void FM_RowVect_Delete(void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::uint32 FM_RowVect_Size(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_RowVect_IsEmpty(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::DataVect& FM_RowVect_At(const void* self, fmx::uint32 index, fmx::_fmxcpt&) noexcept;

FMX_API fmx::ExprEnv* FM_ExprEnv_Constructor1(fmx::_fmxcpt&) noexcept;
FMX_API void FM_ExprEnv_Delete(void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_ExprEnv_Evaluate(const void* self, const fmx::Text& expression, fmx::Data& result,
                                         fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_ExprEnv_EvaluateGetFunction(const void* self, fmx::int16 which, fmx::Data& result,
                                                    fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_ExprEnv_EvaluateConvertToFileMakerPath(const void* self, const fmx::Text& path,
                                                               fmx::int32 format, fmx::Text& result,
                                                               fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_ExprEnv_EvaluateConvertFromFileMakerPath(const void* self, const fmx::Text& path,
                                                                 fmx::int32 format, fmx::Text& result,
                                                                 fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_ExprEnv_ExecuteFileSQL(const void* self, const fmx::Text& expression,
                                               const fmx::Text& fileName, const fmx::DataVect& parameters,
                                               fmx::RowVect& result, fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_ExprEnv_ExecuteFileSQLTextResult(const void* self, const fmx::Text& expression,
                                                         const fmx::Text& fileName,
                                                         const fmx::DataVect& parameters, fmx::Data& result,
                                                         fmx::uint16 columnSeparator,
                                                         fmx::uint16 rowSeparator, fmx::_fmxcpt&) noexcept;
FMX_API fmx::uint64 FM_ExprEnv_SessionID(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::uint64 FM_ExprEnv_FileID(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_ExprEnv_RegisterExternalFunction(const fmx::QuadChar& pluginId, fmx::int16 functionId,
                                                         const fmx::Text& name, const fmx::Text& prototype,
                                                         fmx::int16 minArgs, fmx::int16 maxArgs,
                                                         fmx::uint32 flags, fmx::ExtPluginType function,
                                                         fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode
FM_ExprEnv_RegisterExternalFunctionEx(const fmx::QuadChar& pluginId, fmx::int16 functionId,
                                      const fmx::Text& name, const fmx::Text& prototype,
                                      const fmx::Text& description, fmx::int16 minArgs, fmx::int16 maxArgs,
                                      fmx::uint32 flags, fmx::ExtPluginType function, fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_ExprEnv_UnRegisterExternalFunction(const fmx::QuadChar& pluginId,
                                                           fmx::int16 functionId, fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_ExprEnv_RegisterScriptStep(const fmx::QuadChar& pluginId, fmx::int16 stepId,
                                                   const fmx::Text& name, const fmx::Text& definition,
                                                   const fmx::Text& description, fmx::uint32 flags,
                                                   fmx::ExtPluginType function, fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_ExprEnv_UnRegisterScriptStep(const fmx::QuadChar& pluginId, fmx::int16 stepId,
                                                     fmx::_fmxcpt&) noexcept;

FMX_END_CALLS

namespace fmx {

/// The arguments of a call. An index that is not below the size throws `std::exception`.
class DataVect {
  public:
    FMX_OPAQUE_CLASS(DataVect)
    DataVect& operator=(const DataVect&) = delete;

    uint32 Size() const { return Call(FM_DataVect_Size, this); }
    void Clear() { Call(FM_DataVect_Clear, this); }
    bool IsEmpty() const { return Call(FM_DataVect_IsEmpty, this); }
    /// Adds a copy at the end.
    void PushBack(const Data& value) { Call(FM_DataVect_PushBack, this, value); }
    /// Removes the last value and returns it; the caller owns it. Null when there is none.
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
template <class Base>
class DataVectHolder : public Base {
  public:
    DataVectHolder() : Base(Call(FM_DataVect_Constructor1)) {}
};
FMX_HOLDERS(DataVect)

/// The rows of a query's result. An index that is not below the size throws `std::exception`.
class RowVect {
  public:
    FMX_OPAQUE_CLASS(RowVect)
    RowVect& operator=(const RowVect&) = delete;

    uint32 Size() const { return Call(FM_RowVect_Size, this); }
    bool IsEmpty() const { return Call(FM_RowVect_IsEmpty, this); }
    const DataVect& At(uint32 index) const { return Call(FM_RowVect_At, this, index); }
};

/// Owns rows, none at first.
template <class Base>
class RowVectHolder : public Base {
  public:
    RowVectHolder() : Base(Call(FM_RowVect_Constructor1)) {}
};
FMX_HOLDERS(RowVect)

/// The environment of a calculation.
class ExprEnv {
  public:
    FMX_OPAQUE_CLASS(ExprEnv)
    ExprEnv& operator=(const ExprEnv&) = delete;

    /// Where a registered function is offered (`flags`, second byte).
    enum : uint32 {
        kDisplayCalcFields = 0x0100,
        kDisplayAutoEnter = 0x0200,
        kDisplayValidation = 0x0400,
        kDisplayCustomFunctions = 0x0800,
        kDisplayPrivileges = 0x1000,
        kDisplayInFuture1 = 0x2000,
        kDisplayInFuture2 = 0x4000,
        kDisplayGeneric = 0x8000,
        kDisplayInAllDialogs = 0xFF00
    };
    /// Where it may run (`flags`, first byte).
    enum : uint32 {
        kMayEvaluateOnServer = 1,
        kMacCompatible = 2,
        kWinCompatible = 4,
        kServerCompatible = 8,
        kIOSCompatible = 16,
        kCustomWebCompatible = 32,
        kWebDirectCompatible = 64,
        kAllDeviceCompatible = 126,
        kFutureCompatible = 16711806
    };
    /// The errors that are left to plug-ins.
    enum {
        kPluginErrResult1 = 1552,
        kPluginErrResult2 = 1553,
        kPluginErrResult3 = 1554,
        kPluginErrResult4 = 1555,
        kPluginErrResult5 = 1556,
        kPluginErrResult6 = 1557,
        kPluginErrResult7 = 1558,
        kPluginErrResult8 = 1559
    };

    /// Evaluates a calculation. Returns non-zero when it has an error.
    errcode Evaluate(const Text& expression, Data& result) const {
        return Call(FM_ExprEnv_Evaluate, this, expression, result);
    }
    /// Evaluates `Get ( ... )` by its number, for instance 1089 for `Get ( TemporaryPath )`.
    errcode EvaluateGetFunction(int16 which, Data& result) const {
        return Call(FM_ExprEnv_EvaluateGetFunction, this, which, result);
    }
    /// Convert a path of the operating system to one in the host's form ("/Disk/folder/file", "file:..." and
    /// the like), and back. The format of the system's path: 1 POSIX, 2 Windows, 3 path of a URL.
    errcode EvaluateConvertToFileMakerPath(const Text& path, int32 format, Text& result) const {
        return Call(FM_ExprEnv_EvaluateConvertToFileMakerPath, this, path, format, result);
    }
    errcode EvaluateConvertFromFileMakerPath(const Text& path, int32 format, Text& result) const {
        return Call(FM_ExprEnv_EvaluateConvertFromFileMakerPath, this, path, format, result);
    }

    /// Runs a query in a file. Returns non-zero when that is not possible, for instance without a database.
    errcode ExecuteFileSQL(const Text& expression, const Text& fileName, const DataVect& parameters,
                           RowVect& result) const {
        return Call(FM_ExprEnv_ExecuteFileSQL, this, expression, fileName, parameters, result);
    }
    errcode ExecuteFileSQLTextResult(const Text& expression, const Text& fileName, const DataVect& parameters,
                                     Data& result, uint16 columnSeparator, uint16 rowSeparator) const {
        return Call(FM_ExprEnv_ExecuteFileSQLTextResult, this, expression, fileName, parameters, result,
                    columnSeparator, rowSeparator);
    }

    /// The session, and the file in it, for which the calculation runs.
    uint64 SessionID() const { return Call(FM_ExprEnv_SessionID, this); }
    uint64 FileID() const { return Call(FM_ExprEnv_FileID, this); }

    /// Registers a function for calculations; a negative `maxArgs` means no upper limit. Returns non-zero
    /// when the id is taken, 1210 when the name is.
    static errcode RegisterExternalFunction(const QuadChar& pluginId, int16 functionId, const Text& name,
                                            const Text& prototype, int16 minArgs, int16 maxArgs, uint32 flags,
                                            ExtPluginType function) {
        return Call(FM_ExprEnv_RegisterExternalFunction, pluginId, functionId, name, prototype, minArgs,
                    maxArgs, flags, function);
    }
    static errcode RegisterExternalFunctionEx(const QuadChar& pluginId, int16 functionId, const Text& name,
                                              const Text& prototype, const Text& description, int16 minArgs,
                                              int16 maxArgs, uint32 flags, ExtPluginType function) {
        return Call(FM_ExprEnv_RegisterExternalFunctionEx, pluginId, functionId, name, prototype, description,
                    minArgs, maxArgs, flags, function);
    }
    static errcode UnRegisterExternalFunction(const QuadChar& pluginId, int16 functionId) {
        return Call(FM_ExprEnv_UnRegisterExternalFunction, pluginId, functionId);
    }

    /// Registers a step for scripts; the definition is XML that lists its parameters.
    static errcode RegisterScriptStep(const QuadChar& pluginId, int16 stepId, const Text& name,
                                      const Text& definition, const Text& description, uint32 flags,
                                      ExtPluginType function) {
        return Call(FM_ExprEnv_RegisterScriptStep, pluginId, stepId, name, definition, description, flags,
                    function);
    }
    static errcode UnRegisterScriptStep(const QuadChar& pluginId, int16 stepId) {
        return Call(FM_ExprEnv_UnRegisterScriptStep, pluginId, stepId);
    }
};

/// Owns an environment.
template <class Base>
class ExprEnvHolder : public Base {
  public:
    ExprEnvHolder() : Base(Call(FM_ExprEnv_Constructor1)) {}
};
FMX_HOLDERS(ExprEnv)

} // namespace fmx
