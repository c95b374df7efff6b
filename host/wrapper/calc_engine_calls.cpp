// FM_DataVect_* and FM_ExprEnv_*, and the hooks by which the program answers the latter.
#include "FMWrapper/FMXCalcEngine.h"

#include "host/wrapper/guard.h"
#include "host/wrapper/host_hooks.h"
#include "host/wrapper/objects.h"

using fmx::_fmxcpt;
using fmx::Data;
using fmx::DataVect;
using fmx::errcode;
using fmx::ExprEnv;
using fmx::QuadChar;
using fmx::Text;
using fmx::uint32;
using host::DataObject;
using host::guarded;
using host::inside;
using host::outside;
using host::self;

namespace {

host::HostHooks hooks;

// Throws for an index that is not below the size.
const DataObject& valueAt(const void* object, uint32 index) {
    return *self<DataVect>(object).values.at(index);
}

} // namespace

void FM_Host_SetHooks(const host::HostHooks* wanted) noexcept {
    hooks = wanted != nullptr ? *wanted : host::HostHooks{};
}

DataVect* FM_DataVect_Constructor1(_fmxcpt& block) noexcept {
    return guarded(block, [] { return host::made<DataVect>(); });
}
void FM_DataVect_Delete(void* object, _fmxcpt&) noexcept {
    host::destroy<DataVect>(object);
}
uint32 FM_DataVect_Size(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return host::size32(self<DataVect>(object).values.size()); });
}
void FM_DataVect_Clear(void* object, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<DataVect>(object).values.clear(); });
}
bool FM_DataVect_IsEmpty(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<DataVect>(object).values.empty(); });
}
void FM_DataVect_PushBack(void* object, const Data& value, _fmxcpt& block) noexcept {
    guarded(block,
            [&] { self<DataVect>(object).values.push_back(std::make_unique<DataObject>(inside(value))); });
}
Data* FM_DataVect_PopBack(void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&]() -> Data* {
        auto& values = self<DataVect>(object).values;
        if (values.empty()) {
            return nullptr;
        }
        DataObject* last = values.back().release();
        values.pop_back();
        return reinterpret_cast<Data*>(last);
    });
}

const Data& FM_DataVect_At(const void* object, uint32 index, _fmxcpt& block) noexcept {
    return outside<Data>(guarded(block, [&]() -> const DataObject& { return valueAt(object, index); }));
}
const Text& FM_DataVect_AtAsText(const void* object, uint32 index, _fmxcpt& block) noexcept {
    return outside<Text>(
        guarded(block, [&]() -> const std::u16string& { return valueAt(object, index).text(); }));
}
const fmx::FixPt& FM_DataVect_AtAsNumber(const void* object, uint32 index, _fmxcpt& block) noexcept {
    return outside<fmx::FixPt>(
        guarded(block, [&]() -> const host::FixPtObject& { return valueAt(object, index).number(); }));
}
const fmx::DateTime& FM_DataVect_AtAsDate(const void* object, uint32 index, _fmxcpt& block) noexcept {
    return outside<fmx::DateTime>(
        guarded(block, [&]() -> const host::DateTime& { return valueAt(object, index).date(); }));
}
const fmx::DateTime& FM_DataVect_AtAsTime(const void* object, uint32 index, _fmxcpt& block) noexcept {
    return outside<fmx::DateTime>(
        guarded(block, [&]() -> const host::DateTime& { return valueAt(object, index).time(); }));
}
const fmx::DateTime& FM_DataVect_AtAsTimeStamp(const void* object, uint32 index, _fmxcpt& block) noexcept {
    return outside<fmx::DateTime>(
        guarded(block, [&]() -> const host::DateTime& { return valueAt(object, index).timestamp(); }));
}
bool FM_DataVect_AtAsBoolean(const void* object, uint32 index, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return valueAt(object, index).value().asBoolean(); });
}
const fmx::BinaryData& FM_DataVect_AtAsBinaryData(const void* object, uint32 index, _fmxcpt& block) noexcept {
    return outside<fmx::BinaryData>(guarded(
        block, [&]() -> const host::Container& { return valueAt(object, index).value().asContainer(); }));
}

ExprEnv* FM_ExprEnv_Constructor1(_fmxcpt& block) noexcept {
    return guarded(block, [] { return host::made<ExprEnv>(); });
}
void FM_ExprEnv_Delete(void* object, _fmxcpt&) noexcept {
    host::destroy<ExprEnv>(object);
}
errcode FM_ExprEnv_Evaluate(const void* object, const Text& expression, Data& result,
                            _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        const ExprEnv& environment = outside<ExprEnv>(self<ExprEnv>(object));
        return hooks.evaluate != nullptr ? hooks.evaluate(hooks.context, environment, expression, result)
                                         : host::kUnavailable;
    });
}
errcode FM_ExprEnv_RegisterExternalFunction(const QuadChar& pluginId, short functionId, const Text& name,
                                            const Text& prototype, short minArgs, short maxArgs, uint32 flags,
                                            fmx::ExtPluginType function, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        return hooks.registerFunction != nullptr
                   ? hooks.registerFunction(hooks.context, pluginId, functionId, name, prototype, minArgs,
                                            maxArgs, flags, function)
                   : host::kUnavailable;
    });
}
errcode FM_ExprEnv_UnRegisterExternalFunction(const QuadChar& pluginId, short functionId,
                                              _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        return hooks.unregisterFunction != nullptr
                   ? hooks.unregisterFunction(hooks.context, pluginId, functionId)
                   : host::kUnavailable;
    });
}
