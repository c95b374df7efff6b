// What the library of the plug-in interface offers to the program that runs the plug-ins, beside the
// interface itself.
#pragma once

#include "FMWrapper/FMXCalcEngine.h"

namespace host {

// How the program answers what plug-ins ask of the calculation engine. A function that is null, and one that
// throws, makes the plug-in's call fail. They run on the thread of that call.
struct HostHooks {
    void* context = nullptr; // handed to each

    fmx::errcode (*registerFunction)(void* context, const fmx::QuadChar& pluginId, short functionId,
                                     const fmx::Text& name, const fmx::Text& prototype, short minArgs,
                                     short maxArgs, fmx::uint32 flags, fmx::ExtPluginType function) = nullptr;
    fmx::errcode (*unregisterFunction)(void* context, const fmx::QuadChar& pluginId,
                                       short functionId) = nullptr;
    fmx::errcode (*evaluate)(void* context, const fmx::ExprEnv& environment, const fmx::Text& expression,
                             fmx::Data& result) = nullptr;
};

} // namespace host

extern "C" {

// Sets the hooks, which are copied; null takes them away. Not while another thread calls the interface.
FMX_API void FM_Host_SetHooks(const host::HostHooks* hooks) noexcept;

// For tests: lets [afterCalls] calls of the interface pass and makes the one after them do nothing and report
// [code], 1 or 2, in its exception block. Code 0 calls it off. Deleting an object never fails, and does not
// count.
FMX_API void FM_Host_FailNextCall(fmx::int32 code, fmx::int32 afterCalls = 0) noexcept;

} // extern "C"
