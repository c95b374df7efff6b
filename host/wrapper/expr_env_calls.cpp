// FM_ExprEnv_*, and the hooks by which the program answers them.
#include "host/wrapper/get_functions.h"
#include "host/wrapper/guard.h"
#include "host/wrapper/host_hooks.h"
#include "host/wrapper/objects.h"

#include <string>

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
using host::self;
using host::TextObject;

namespace {

host::HostHooks hooks;

// Calls a hook of the program; returns kUnavailable when there is none.
template <class Hook, class... Arguments>
errcode ask(Hook hook, const Arguments&... arguments) {
    return hook != nullptr ? hook(hooks.context, arguments...) : host::kUnavailable;
}

errcode evaluate(const void* object, const Text& expression, Data& result) {
    const ExprEnv& environment = outside<ExprEnv>(self<ExprEnv>(object));
    return hooks.evaluate != nullptr ? hooks.evaluate(hooks.context, environment, expression, result)
                                     : host::kUnavailable;
}

// Returns a text as a literal of the calculation language.
std::u16string quoted(const std::u16string& text) {
    std::u16string result = u"\"";
    for (const char16_t c : text) {
        result += c == u'"' || c == u'\\' ? std::u16string{u'\\', c} : std::u16string{c};
    }
    return result + u"\"";
}

// Converts a path by evaluating one of the calculation functions that do so. The result is empty when the
// path cannot be converted.
errcode convertPath(const char16_t* function, const void* object, const Text& path, int32 format,
                    Text& result) {
    const std::string number = std::to_string(format);
    const TextObject expression{std::u16string(function) + u" ( " + quoted(inside(path).characters) + u" ; " +
                                    std::u16string(number.begin(), number.end()) + u" )",
                                {}};
    host::DataObject converted;
    const errcode code = evaluate(object, outside<Text>(expression), outside<Data>(converted));
    const bool isConverted = code == host::kSucceeded && converted.value().isValid();
    inside(result) = isConverted ? TextObject{converted.text().characters, {}} : TextObject{};
    return code == host::kSucceeded && !isConverted ? host::kNotThatType : code;
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
    return guarded(block,
                   [&] { return convertPath(u"ConvertToFileMakerPath", object, path, format, result); });
}
errcode FM_ExprEnv_EvaluateConvertFromFileMakerPath(const void* object, const Text& path, int32 format,
                                                    Text& result, _fmxcpt& block) noexcept {
    return guarded(block,
                   [&] { return convertPath(u"ConvertFromFileMakerPath", object, path, format, result); });
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
