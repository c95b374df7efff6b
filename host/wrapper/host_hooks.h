#pragma once

// What the library of the plug-in interface offers, besides the interface itself, to the program that runs
// the plug-ins.

#include "host/wrapper/interface.h"

namespace host {

// A function that a plug-in registers for calculations.
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

// A step that a plug-in registers for scripts.
struct ScriptStepRegistration {
    const fmx::QuadChar& plugin;
    fmx::int16 id;
    const fmx::Text& name;
    const fmx::Text& definition; // XML that lists the parameters
    const fmx::Text& description;
    fmx::uint32 flags;
    fmx::ExtPluginType function;
};

// The program's side of the calls by which plug-ins use the calculation engine. Each hook returns an error
// code, 0 for success. A hook that is null or throws makes the plug-in's call fail. Hooks run on the thread
// of that call.
struct HostHooks {
    void* context = nullptr; // passed to each hook

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

// Sets the hooks, which are copied; null removes them. No other thread may be calling the interface.
FMX_API void FM_Host_SetHooks(const host::HostHooks* hooks) noexcept;

// For tests: makes the interface call after the next [afterCalls] calls do nothing and report [code], 1 or 2,
// in its exception block. Code 0 cancels that. Deleting an object never fails, and is not counted.
FMX_API void FM_Host_FailNextCall(fmx::int32 code, fmx::int32 afterCalls = 0) noexcept;

} // extern "C"
