// FM_ExprEnv_*, and the hooks by which the program answers them.
#include "host/wrapper/file_paths.h"
#include "host/wrapper/get_functions.h"
#include "host/wrapper/guard.h"
#include "host/wrapper/host_hooks.h"
#include "host/wrapper/objects.h"

using fmx::_fmxcpt;
using fmx::Data;
using fmx::DataVect;
using fmx::errcode;
using fmx::ExprEnv;
using fmx::ExtPluginType;
using fmx::int16;
using fmx::int32;
using fmx::QuadChar;
using fmx::RowVect;
using fmx::Text;
using fmx::uint16;
using fmx::uint32;
using fmx::uint64;
using host::guarded;
using host::inside;
using host::outside;
using host::PathFormat;
using host::self;
using host::TextObject;

namespace {

host::HostHooks hooks;

// Asks the program; without a hook there is no one to ask.
template <class Hook, class... Arguments>
errcode ask(Hook hook, const Arguments&... arguments) {
    return hook != nullptr ? hook(hooks.context, arguments...) : host::kUnavailable;
}

errcode evaluate(const void* object, const Text& expression, Data& result) {
    const ExprEnv& environment = outside<ExprEnv>(self<ExprEnv>(object));
    return hooks.evaluate != nullptr ? hooks.evaluate(hooks.context, environment, expression, result)
                                     : host::kUnavailable;
}

using Conversion = std::optional<std::u16string> (*)(std::u16string_view path, PathFormat format);

// The result is empty when the path can not be converted.
errcode convert(const void* object, const Text& path, int32 format, Text& result, Conversion conversion) {
    static_cast<void>(self<ExprEnv>(object));
    auto converted = conversion(inside(path).characters, static_cast<PathFormat>(format));
    const bool isConverted = converted.has_value();
    inside(result) = TextObject{std::move(converted).value_or(std::u16string()), {}};
    return isConverted ? host::kSucceeded : host::kNotThatType;
}

} // namespace

void FM_Host_SetHooks(const host::HostHooks* wanted) noexcept {
    hooks = wanted != nullptr ? *wanted : host::HostHooks{};
}

ExprEnv* FM_ExprEnv_Constructor1(_fmxcpt& block) noexcept {
    return guarded(block, [] { return host::made<ExprEnv>(); });
}
void FM_ExprEnv_Delete(void* object, _fmxcpt&) noexcept {
    host::destroy<ExprEnv>(object);
}

errcode FM_ExprEnv_Evaluate(const void* object, const Text& expression, Data& result,
                            _fmxcpt& block) noexcept {
    return guarded(block, [&] { return evaluate(object, expression, result); });
}
errcode FM_ExprEnv_EvaluateGetFunction(const void* object, int16 which, Data& result,
                                       _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        static_cast<void>(self<ExprEnv>(object));
        const std::u16string_view name = host::getFunctionName(which);
        if (name.empty()) {
            inside(result).set(host::Value::invalid(), Data::kDTInvalid);
            return host::kUnavailable;
        }
        const TextObject expression{u"Get ( " + std::u16string(name) + u" )", {}};
        return evaluate(object, outside<Text>(expression), result);
    });
}
errcode FM_ExprEnv_EvaluateConvertToFileMakerPath(const void* object, const Text& path, int32 format,
                                                  Text& result, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return convert(object, path, format, result, host::hostPath); });
}
errcode FM_ExprEnv_EvaluateConvertFromFileMakerPath(const void* object, const Text& path, int32 format,
                                                    Text& result, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return convert(object, path, format, result, host::systemPath); });
}

// This host has no database: a query finds no file, and no rows.
errcode FM_ExprEnv_ExecuteFileSQL(const void* object, const Text& /*expression*/, const Text& /*fileName*/,
                                  const DataVect& /*parameters*/, RowVect& result, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        static_cast<void>(self<ExprEnv>(object));
        inside(result).rows.clear();
        return host::kNoFile;
    });
}
errcode FM_ExprEnv_ExecuteFileSQLTextResult(const void* object, const Text& /*expression*/,
                                            const Text& /*fileName*/, const DataVect& /*parameters*/,
                                            Data& result, uint16 /*columnSeparator*/, uint16 /*rowSeparator*/,
                                            _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        static_cast<void>(self<ExprEnv>(object));
        inside(result).clear(Data::kDTText);
        return host::kNoFile;
    });
}

uint64 FM_ExprEnv_SessionID(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        static_cast<void>(self<ExprEnv>(object));
        return hooks.sessionId;
    });
}
uint64 FM_ExprEnv_FileID(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        static_cast<void>(self<ExprEnv>(object));
        return hooks.fileId;
    });
}

errcode FM_ExprEnv_RegisterExternalFunction(const QuadChar& pluginId, int16 functionId, const Text& name,
                                            const Text& prototype, int16 minArgs, int16 maxArgs, uint32 flags,
                                            ExtPluginType function, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        return ask(hooks.registerFunction,
                   host::FunctionRegistration{pluginId, functionId, name, prototype, nullptr, minArgs,
                                              maxArgs, flags, function});
    });
}
errcode FM_ExprEnv_RegisterExternalFunctionEx(const QuadChar& pluginId, int16 functionId, const Text& name,
                                              const Text& prototype, const Text& description, int16 minArgs,
                                              int16 maxArgs, uint32 flags, ExtPluginType function,
                                              _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        return ask(hooks.registerFunction,
                   host::FunctionRegistration{pluginId, functionId, name, prototype, &description, minArgs,
                                              maxArgs, flags, function});
    });
}
errcode FM_ExprEnv_UnRegisterExternalFunction(const QuadChar& pluginId, int16 functionId,
                                              _fmxcpt& block) noexcept {
    return guarded(block, [&] { return ask(hooks.unregisterFunction, pluginId, functionId); });
}
errcode FM_ExprEnv_RegisterScriptStep(const QuadChar& pluginId, int16 stepId, const Text& name,
                                      const Text& definition, const Text& description, uint32 flags,
                                      ExtPluginType function, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        return ask(hooks.registerScriptStep, host::ScriptStepRegistration{pluginId, stepId, name, definition,
                                                                          description, flags, function});
    });
}
errcode FM_ExprEnv_UnRegisterScriptStep(const QuadChar& pluginId, int16 stepId, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return ask(hooks.unregisterScriptStep, pluginId, stepId); });
}
