#pragma once

// What the library of the plug-in interface offers to the program that runs the plug-ins, beside the
// interface itself.

#include "host/wrapper/interface.h"

namespace host {

// A function that a plug-in offers to calculations.
struct FunctionRegistration {
    const fmx::QuadChar& plugin;
    fmx::int16 id;
    const fmx::Text& name;
    const fmx::Text& prototype;
    const fmx::Text* description; // null from plug-ins that give none
    fmx::int16 minArguments;
    fmx::int16 maxArguments; // negative for no upper limit
    fmx::uint32 flags;
    fmx::ExtPluginType function;
};

// A step that a plug-in offers to scripts.
struct ScriptStepRegistration {
    const fmx::QuadChar& plugin;
    fmx::int16 id;
    const fmx::Text& name;
    const fmx::Text& definition; // XML that lists the parameters
    const fmx::Text& description;
    fmx::uint32 flags;
    fmx::ExtPluginType function;
};

// How the program answers what plug-ins ask of the calculation engine; each answers an error code, 0 for
// success. A function that is null, and one that throws, makes the plug-in's call fail. They run on the
// thread of that call.
struct HostHooks {
    void* context = nullptr; // handed to each

    fmx::errcode (*registerFunction)(void* context, const FunctionRegistration& wanted) = nullptr;
    fmx::errcode (*unregisterFunction)(void* context, const fmx::QuadChar& plugin, fmx::int16 id) = nullptr;
    fmx::errcode (*registerScriptStep)(void* context, const ScriptStepRegistration& wanted) = nullptr;
    fmx::errcode (*unregisterScriptStep)(void* context, const fmx::QuadChar& plugin, fmx::int16 id) = nullptr;
    fmx::errcode (*evaluate)(void* context, const fmx::ExprEnv& environment, const fmx::Text& expression,
                             fmx::Data& result) = nullptr;

    // The one session of the program, and the one file in it.
    fmx::uint64 sessionId = 0;
    fmx::uint64 fileId = 0;
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
