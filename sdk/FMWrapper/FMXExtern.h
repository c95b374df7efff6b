/// The messages that the host sends to a plug-in, and the structure that carries them.
///
/// A plug-in exports `FMExternCallProc(FMX_ExternCallPtr)` and defines `gFMX_ExternCallPtr`, in which it
/// keeps the structure of the message at hand: `FMX_StartScript` and `FMX_SetToCurrentEnv` call the host
/// through it.
#pragma once

#include "FMXTypes.h"

#include <cstddef>

/// The messages (`whichCall`).
enum {
    /// Start-up; `parm1` is the application, `parm2` its version text, `result` the plug-in's answer.
    kFMXT_Init = 0,
    /// Idle time; `parm1` is the idle level.
    kFMXT_Idle = 1,
    /// Shut-down.
    kFMXT_Shutdown = 4,
    /// The button of the preferences dialog.
    kFMXT_DoAppPreferences = 5,
    /// A string is wanted; `parm1` says which, `parm2` is the language, `parm3` the capacity of the buffer
    /// that
    /// `result` points to, in UTF-16 units.
    kFMXT_GetString = 7,
    /// A session ends.
    kFMXT_SessionShutdown = 8,
    /// A file is closed.
    kFMXT_FileShutdown = 9
};

/// The applications that start a plug-in (`parm1` of `kFMXT_Init`).
enum {
    kFMXT_Developer = 0,
    kFMXT_Pro = 1,
    kFMXT_Runtime = 2,
    kFMXT_Server = 3,
    kFMXT_Web = 4,
    kFMXT_Mobile = 5,
    kFMXT_ServerScripting = 7
};

/// The idle levels (`parm1` of `kFMXT_Idle`).
enum {
    kFMXT_UserIdle = 0,
    kFMXT_UserNotIdle = 1,
    kFMXT_ScriptPaused = 2,
    kFMXT_ScriptRunning = 3,
    kFMXT_Unsafe = 4
};

/// The strings that the host asks for (`parm1` of `kFMXT_GetString`).
enum { kFMXT_NameStr = 128, kFMXT_AppConfigStr = 129, kFMXT_OptionsStr = 131 };

/// The versions of this interface, and the two answers by which a plug-in refuses to start.
enum {
    k70ExtnVersion = 50,
    k80ExtnVersion = 51,
    k110ExtnVersion = 52,
    k120ExtnVersion = 53,
    k130ExtnVersion = 54,
    kBadExtnVersion = -1,
    kDoNotEnable = -2
};

/// What becomes of a script that runs already when a plug-in starts one (`control` of `FMX_StartScript`).
enum { kFMXT_Halt = 0, kFMXT_Exit = 1, kFMXT_Resume = 2, kFMXT_Pause = 3 };

extern "C" {

/// Starts the script of that name in the file of that name, with a parameter.
typedef fmx::errcode (*FMX_StartScriptCall)(const fmx::Text* fileName, const fmx::Text* scriptName,
                                            fmx::uchar control, const fmx::Data* parameter);
/// Makes an environment the one of the calculation at hand.
typedef fmx::errcode (*FMX_CurrentEnvCall)(fmx::ExprEnv* env);

typedef struct FMX_ExternCallStruct* FMX_ExternCallPtr;

#pragma pack(push, 1)
/// One message to the plug-in.
struct FMX_ExternCallStruct {
    /// The host's version of this interface.
    fmx::int16 extnVersion;
    fmx::int16 resourceID;
    /// The plug-in's entry point.
    void (*entryPoint)(FMX_ExternCallPtr);
    char cfmCalls;
    /// The message.
    fmx::uchar whichCall;
    char unsafeCalls;
    fmx::uchar parm1;
    fmx::ptrtype parm2;
    fmx::ptrtype parm3;
    /// The plug-in's own bundle: a `CFBundleRef` on macOS, the handle of the loaded library elsewhere.
    fmx::ptrtype instanceID;
    /// The answer, or where the answer goes.
    fmx::ptrtype result;
    fmx::ptrtype unused;
    FMX_StartScriptCall cStartScript;
    FMX_CurrentEnvCall cCurrentEnv;
};
#pragma pack(pop)

/// The message at hand; every plug-in defines it.
extern FMX_ExternCallPtr gFMX_ExternCallPtr;

} // extern "C"

#define FMX_StartScript(file, script, control, parameter)                                                    \
    gFMX_ExternCallPtr->cStartScript(file, script, control, parameter)
#define FMX_SetToCurrentEnv(env) gFMX_ExternCallPtr->cCurrentEnv(env)

/// Holds a field of the structure to its place, which follows from the width of a pointer.
#define FMX_ASSERT_OFFSET(field, pointers, bytes)                                                            \
    static_assert(offsetof(FMX_ExternCallStruct, field) == (pointers) * sizeof(void*) + (bytes),             \
                  "the host expects " #field " elsewhere")
FMX_ASSERT_OFFSET(extnVersion, 0, 0);
FMX_ASSERT_OFFSET(resourceID, 0, 2);
FMX_ASSERT_OFFSET(entryPoint, 0, 4);
FMX_ASSERT_OFFSET(cfmCalls, 1, 4);
FMX_ASSERT_OFFSET(whichCall, 1, 5);
FMX_ASSERT_OFFSET(unsafeCalls, 1, 6);
FMX_ASSERT_OFFSET(parm1, 1, 7);
FMX_ASSERT_OFFSET(parm2, 1, 8);
FMX_ASSERT_OFFSET(parm3, 2, 8);
FMX_ASSERT_OFFSET(instanceID, 3, 8);
FMX_ASSERT_OFFSET(result, 4, 8);
FMX_ASSERT_OFFSET(unused, 5, 8);
FMX_ASSERT_OFFSET(cStartScript, 6, 8);
FMX_ASSERT_OFFSET(cCurrentEnv, 7, 8);
static_assert(sizeof(FMX_ExternCallStruct) == 8 * sizeof(void*) + 8, "the structure has no padding");
#undef FMX_ASSERT_OFFSET
